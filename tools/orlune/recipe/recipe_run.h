// A recipe carried out on pictures, one after the other.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "orlune/recipe/picture_result.h"
#include "orlune/recipe/recipe.h"
#include "pictures/library.h"

namespace front {

// What is made of a picture beside its result.
struct PictureOutputs {
  std::string annotated;    // BMP file with what was found; empty for none
  bool thumbnail = false;   // the same, small
  std::string stepsFolder;  // for a picture after each step; empty for none
};

struct PreparedStep;

class RecipeRun {
 public:
  explicit RecipeRun(const Recipe& recipe);
  ~RecipeRun();

  // Reads the files that the recipe names, and learns where parts are in their masters. Called once
  // before all pictures. What is wrong is told by lines of the recipe.
  std::vector<Mistake> Prepare();

  // The files that Prepare reads.
  std::vector<std::string> ReadToo() const;

  // Where the pictures go that Run leaves in a folder: as it was read, and after each step.
  std::vector<std::string> StepFiles(const std::string& folder) const;

  // Never throws for what is wrong with the picture; WriteFailure for one of the outputs.
  PictureResult Run(const std::string& file, const PictureOutputs& outputs) const;

 private:
  const Recipe& recipe_;
  std::vector<std::unique_ptr<PreparedStep>> steps_;
  pictures::SpareImages spares_;  // from one picture to the next
};

}  // namespace front
