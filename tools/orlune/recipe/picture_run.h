// A picture on its way through the steps of a recipe.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "orlune/command/commands.h"
#include "orlune/gauge/line_reports.h"
#include "orlune/recipe/picture_result.h"
#include "orlune/recipe/recipe.h"
#include "orlune/shared/annotation.h"

namespace front {

// What a step needs of files, read once.
struct PreparedStep {
  bool takesOver = false;  // its picture, at which no later step looks
  std::optional<Image> mask;
  GaugeSetup gauging;
  std::string master;
  std::optional<Template> shape;
  Dial dial;
};

using Mark = std::function<void(const Canvas&)>;

// The picture at hand: gray, and its colours where a step takes them.
struct Picture {
  Account account;
  Image gray;
  std::optional<Image> colours;
};

// The picture that each step looks at, by the name of the step that left it.
std::vector<std::string> LookedAt(const Recipe& recipe);

class PictureRun {
 public:
  // Reads the picture; throws what ReadPicture throws. What is shown keeps its pictures and the
  // marks of what was found.
  PictureRun(const Recipe& recipe, std::string file, bool shown);

  const Picture& Last() const { return pictures_.at(last_); }
  const std::vector<Mark>& marks() const { return marks_; }
  void ForgetMarks() { marks_.clear(); }

  // Never throws: what is wrong is the step's verdict.
  StepResult Do(const RecipeStep& step, const PreparedStep& prepared);

  // Where the part is that a gauge step follows, as it is taught by a master.
  Pose PartFor(const RecipeStep& step, const GaugeSetup& setup) const;

 private:
  const std::string& LookedAtBy(const RecipeStep& step) const {
    return step.on.empty() ? last_ : step.on;
  }
  const Picture& PictureOf(const RecipeStep& step) const { return pictures_.at(LookedAtBy(step)); }
  bool TakesOver(const PreparedStep& prepared) const { return prepared.takesOver && !shown_; }
  Loaded PictureFor(const RecipeStep& step, const PreparedStep& prepared);
  void AddMark(Mark mark);
  bool IsFollowed(const std::string& name) const;
  const ObjectPose& PartOf(const std::string& step) const;

  void Work(const RecipeStep& step, const FilterStep& filter, const PreparedStep& prepared,
            StepResult* result);
  void Work(const RecipeStep& step, const InspectStep& inspect, const PreparedStep& prepared,
            StepResult* result);
  void Work(const RecipeStep& step, const GaugeStep& gauge, const PreparedStep& prepared,
            StepResult* result);
  void Work(const RecipeStep& step, const MatchStep& match, const PreparedStep& prepared,
            StepResult* result);
  void Work(const RecipeStep& step, const BarcodeStep& barcode, const PreparedStep& prepared,
            StepResult* result);
  void Work(const RecipeStep& step, const DialStep& dial, const PreparedStep& prepared,
            StepResult* result);

  const Recipe& recipe_;
  std::string file_;
  bool shown_;
  std::map<std::string, Picture> pictures_;  // by the steps that left them
  std::string last_ = ORIGINAL;
  std::map<std::string, ObjectPose> parts_;  // by the steps that found them
  std::vector<Mark> marks_;
};

}  // namespace front
