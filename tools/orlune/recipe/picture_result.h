// What was found in a picture, and the verdict on it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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

}  // namespace front
