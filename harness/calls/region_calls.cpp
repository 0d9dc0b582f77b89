// Regions of interest: made, painted, traced, carried along, sampled.
#include <utility>

#include "harness/calls/calls.h"
#include "harness/calls/draws.h"

namespace test {
namespace {

using namespace draw;

// ---- flat forms of any values

void AppendPoints(Playground& play, std::vector<int32_t>* values) {
  const int32_t kind = Below<16>(play);
  const int32_t integers = kind == 0 ? Below<64>(play) : 2 * (kind % 8);
  for (int32_t i = 0; i < integers; i++) values->push_back(Int(play));
}

void AppendContour(Playground& play, std::vector<int32_t>* values) {
  const int32_t kind = Below<16>(play);
  values->push_back(kind == 0 ? Int(play) : kind < 12 ? ROI_MARKER_EXTERNAL : ROI_MARKER_INTERNAL);
  values->push_back(Below<16>(play) == 0 ? Int(play) : Below<13>(play));
  AppendPoints(play, values);
}

std::vector<int32_t> FlatForm(Playground& play) {
  std::vector<int32_t> values;
  const int32_t contours = Below<6>(play);
  for (int32_t side = 0; side < 4; side++) values.push_back(Int(play));
  for (int32_t i = 0; i < contours; i++) AppendContour(play, &values);
  const int32_t cut = Below<32>(play);
  if (cut < 4) values.resize(values.size() - static_cast<size_t>(cut));
  return values;
}

// ---- records

// A caller's record, released at the end.
class WildRegion {
 public:
  WildRegion() = default;
  explicit WildRegion(Playground& play) {
    if (Below<16>(play) == 0) return;
    const std::vector<int32_t> values = FlatForm(play);
    ZEL_ArrayToROI(values.data(), static_cast<int32_t>(values.size()), &record_);
  }
  WildRegion(WildRegion&& other) noexcept : record_(std::exchange(other.record_, nullptr)) {}
  WildRegion(const WildRegion&) = delete;
  WildRegion& operator=(const WildRegion&) = delete;
  ~WildRegion() { ZEL_FreeROI(record_); }

  const RoiDescriptor* get() const { return record_; }
  // For a call that makes a region: without contours, since it overwrites them.
  RoiDescriptor** Target(Playground& play) {
    if (Below<16>(play) == 0) return nullptr;
    if (!record_) return &record_;
    for (int32_t i = 0; i < record_->contourCount; i++) ZEL_free(record_->contours[i]);
    record_->contourCount = 0;
    return &record_;
  }

 private:
  RoiDescriptor* record_ = nullptr;
};

// ---- calls

int32_t ArrayToRoi(Playground& play) {
  WildRegion region(play);
  RoiDescriptor** target = region.Target(play);
  if (Below<4>(play) == 0) {
    const int32_t count = Count(play);
    const auto* values = play.ArrayOf<int32_t>(Held(count));
    return ZEL_ArrayToROI(values, count, target);
  }
  const std::vector<int32_t> values = FlatForm(play);
  return ZEL_ArrayToROI(values.data(), static_cast<int32_t>(values.size()), target);
}

int32_t FreeRoi(Playground& play) {
  const WildRegion region(play);
  ZEL_FreeROI(nullptr);
  return 0;
}

int32_t RoiToMask(Playground& play) {
  const WildRegion region(play);
  const struct {
    ImageRef mask, model;
    uint32_t value;
  } a{play.Image(SIZE | PIXELS | BORDER | CALIBRATION), Source(play), Word(play)};
  return ZEL_ROIToMask(a.mask, a.model, region.get(), a.value);
}

int32_t MaskToRoi(Playground& play) {
  WildRegion region(play);
  const struct {
    ImageRef mask;
    int32_t externalOnly, limit;
    RoiDescriptor** roi;
    int32_t* limitReached;
  } a{Source(play), Below<3>(play), Int(play), region.Target(play), Output<int32_t>(play)};
  return ZEL_MaskToROI(a.mask, static_cast<uint16_t>(a.externalOnly), a.limit, a.roi,
                       a.limitReached);
}

int32_t CoordinateReference(Playground& play) {
  const int32_t count = Below<8>(play) == 0 ? Int(play) : Below<5>(play);
  auto* points = play.ArrayOf<PointInt>(Held(std::min(count, 3)));
  const int32_t given = Below<3>(play);
  for (int32_t i = 0; i < std::min(count, 3) && points && given != 0; i++) {
    points[i] = {Int(play), Int(play)};
  }
  play.model().Gives(points);
  const struct {
    PointInt* origin;
    float *degrees, *radians;
  } out{Output<PointInt>(play), Output<float>(play), Output<float>(play)};
  return ZEL_CoordinateReference(points, count, out.origin, out.degrees, out.radians);
}

PointFloat Centre(Playground& play) {
  return {Float(play), Float(play)};
}

int32_t TransformRoi(Playground& play) {
  const WildRegion region(play);
  WildRegion made(play);
  const struct {
    int32_t oldX, oldY;
    float oldAngle;
    int32_t newX, newY;
    float newAngle;
    RoiDescriptor** result;
  } a{Int(play), Int(play), Float(play), Int(play), Int(play), Float(play), made.Target(play)};
  return ZEL_TransformROI(region.get(), a.oldX, a.oldY, a.oldAngle, a.newX, a.newY, a.newAngle,
                          a.result);
}

int32_t RoiProfile(Playground& play) {
  const WildRegion region(play);
  float* samples = Below<2>(play) == 0 ? nullptr : static_cast<float*>(ZEL_malloc(12));
  PointInt* points = Below<2>(play) == 0 ? nullptr : static_cast<PointInt*>(ZEL_malloc(12));
  const struct {
    ImageRef image;
    int32_t missing;
    int32_t* count;
    ProfileReport* report;
  } a{Source(play), Below<32>(play), Output<int32_t>(play), Output<ProfileReport>(play)};
  const int32_t result = ZEL_ROIProfile(a.image, region.get(), a.missing == 0 ? nullptr : &samples,
                                        a.count, a.report, a.missing == 1 ? nullptr : &points);
  ZEL_free(samples);
  ZEL_free(points);
  return result;
}

constexpr ApiCall ROWS[] = {
    {220, "ZEL_ArrayToROI", ArrayToRoi, NO_STATUS},
    {221, "ZEL_FreeROI", FreeRoi, NO_STATUS},
    {222, "ZEL_ROIToMask", RoiToMask},
    {223, "ZEL_MaskToROI", MaskToRoi},
    {224, "ZEL_CoordinateReference", CoordinateReference},
    {225, "ZEL_DetectRotation",
     Call<ZEL_DetectRotation, Source, Source, Centre, Centre, Int, Int, Output<double>,
          Output<double>>},
    {226, "ZEL_TransformROI", TransformRoi},
    {227, "ZEL_ROIProfile", RoiProfile},
};

}  // namespace

constinit const std::span<const ApiCall> REGION_CALLS{ROWS};

}  // namespace test
