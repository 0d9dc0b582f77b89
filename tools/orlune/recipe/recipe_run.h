// A recipe carried out on pictures, one after the other.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "orlune/recipe/recipe.h"
#include "pictures/library.h"

namespace front {

enum class Verdict : uint8_t {
  None,    // nothing was asked
  Passed,  // all that was asked holds
  Failed,  // something does not
  Error    // that could not be told: the picture or what is asked of it is broken
};
std::string_view NameOf(Verdict verdict);

struct StepValue {
  std::string object;  // number of a particle or match; empty for the picture
  std::string name;    // "Area", "head", "count", "text"
  std::optional<double> number;
  std::string text;  // of readings
  std::string unit;
  Verdict verdict = Verdict::None;
};

struct StepResult {
  std::string step;
  Verdict verdict = Verdict::None;
  std::string reason;  // why it did not pass
  std::vector<StepValue> values;
};

struct PictureResult {
  std::string file;
  Verdict verdict = Verdict::Passed;
  std::string reason;  // of the first step that did not pass
  std::vector<StepResult> steps;
  double seconds = 0;
  std::string thumbnail;  // PNG; empty for none
};
std::string Packed(const PictureResult& result);
PictureResult UnpackedResult(const std::string& bytes, bool withSteps);

// What a picture without a verdict is told by.
PictureResult ErrorOf(const std::string& file, const std::string& reason);

// What is made of a picture beside its result.
struct PictureOutputs {
  std::string annotated;    // BMP file with what was found; empty for none
  bool thumbnail = false;   // the same, small
  std::string stepsFolder;  // for a picture after each step; empty for none
};

class RecipeRun {
 public:
  struct Prepared;  // what a step needs of files

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
  std::vector<std::unique_ptr<Prepared>> steps_;
  pictures::SpareImages spares_;  // from one picture to the next
};

}  // namespace front
