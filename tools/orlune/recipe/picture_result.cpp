// What was found in a picture, as bytes on their way from a worker.
#include "orlune/recipe/picture_result.h"

#include "orlune/shared/parcel.h"

namespace front {

std::string_view NameOf(Verdict verdict) {
  switch (verdict) {
    case Verdict::Passed:
      return "passed";
    case Verdict::Failed:
      return "failed";
    case Verdict::Error:
      return "error";
    default:
      return "";
  }
}

std::string Packed(const PictureResult& result) {
  ParcelWriter parcel;
  parcel.Put(result.file).Put(result.verdict).Put(result.reason).Put(result.seconds);
  parcel.Put(result.thumbnail).Put(result.steps.size());
  for (const StepResult& step : result.steps) {
    parcel.Put(step.step).Put(step.verdict).Put(step.reason).Put(step.values.size());
    for (const StepValue& value : step.values) {
      parcel.Put(value.object).Put(value.name).Put(value.number.has_value());
      parcel.Put(value.number.value_or(0)).Put(value.text).Put(value.unit).Put(value.verdict);
    }
  }
  return parcel.Take();
}

PictureResult UnpackedResult(const std::string& bytes, bool withSteps) {
  ParcelReader parcel(bytes);
  PictureResult result;
  result.file = parcel.Text();
  result.verdict = parcel.Get<Verdict>();
  result.reason = parcel.Text();
  result.seconds = parcel.Get<double>();
  result.thumbnail = parcel.Text();
  if (!withSteps) return result;
  result.steps.resize(parcel.Get<size_t>());
  for (StepResult& step : result.steps) {
    step.step = parcel.Text();
    step.verdict = parcel.Get<Verdict>();
    step.reason = parcel.Text();
    step.values.resize(parcel.Get<size_t>());
    for (StepValue& value : step.values) {
      value.object = parcel.Text();
      value.name = parcel.Text();
      const bool known = parcel.Get<bool>();
      const auto number = parcel.Get<double>();
      if (known) value.number = number;
      value.text = parcel.Text();
      value.unit = parcel.Text();
      value.verdict = parcel.Get<Verdict>();
    }
  }
  return result;
}

PictureResult ErrorOf(const std::string& file, const std::string& reason) {
  PictureResult result;
  result.file = file;
  result.verdict = Verdict::Error;
  result.reason = reason;
  return result;
}

}  // namespace front
