// Regions of interest: made, painted, traced, carried along, sampled.
#include <iterator>

#include "harness/session/session.h"

namespace test {
namespace {

// A region of one step, released at the end.
struct StepRegion {
  RoiDescriptor* record = nullptr;

  StepRegion() = default;
  StepRegion(const StepRegion&) = delete;
  StepRegion& operator=(const StepRegion&) = delete;
  ~StepRegion() { ZEL_FreeROI(record); }

  int32_t Make() {
    constexpr int32_t values[] = {2,
                                  3,
                                  34,
                                  21,
                                  ROI_MARKER_EXTERNAL,
                                  ROI_OVAL,
                                  2,
                                  3,
                                  34,
                                  21,
                                  ROI_MARKER_EXTERNAL,
                                  ROI_POLYGON,
                                  3,
                                  3,
                                  30,
                                  8,
                                  12,
                                  20,
                                  ROI_MARKER_INTERNAL,
                                  ROI_RECT,
                                  10,
                                  10,
                                  14,
                                  15};
    return ZEL_ArrayToROI(values, static_cast<int32_t>(std::size(values)), &record);
  }
  void Tell(Session* s) const {
    s->Out(record->globalRect);
    for (int32_t i = 0; i < record->contourCount; i++) {
      const RoiContour* contour = record->contours[i];
      s->Out(contour->contourKind);
      s->Out(contour->contourType);
      s->Out(contour->points, static_cast<size_t>(contour->pointCount));
    }
  }
};

int32_t CoordinateReference(Session& s) {
  constexpr PointInt points[] = {{3, 4}, {30, 9}, {12, 20}};
  PointInt origin{};
  float angles[2] = {};
  const int32_t result = ZEL_CoordinateReference(points, 3, &origin, &angles[0], &angles[1]);
  s.Out(origin);
  s.Out(angles);
  return result;
}

int32_t DetectRotation(Session& s) {
  double angles[2] = {};
  const int32_t result =
      ZEL_DetectRotation(s.u8, s.i16, {18, 11}, {17.5f, 11.5f}, 9, 2, &angles[0], &angles[1]);
  s.Out(angles);
  return result;
}

int32_t Profile(Session& s, const StepRegion& region) {
  float* samples = nullptr;
  PointInt* points = nullptr;
  int32_t count = 0;
  ProfileReport report{};
  const int32_t result = ZEL_ROIProfile(s.sgl, region.record, &samples, &count, &report, &points);
  if (result == 0) {
    s.Out(report);
    s.Out(samples, static_cast<size_t>(count));
    s.Out(points, static_cast<size_t>(count));
  }
  ZEL_free(samples);
  ZEL_free(points);
  return result;
}

constexpr Step ROWS[] = {
    {"ZEL_ArrayToROI",
     [](Session& s) {
       StepRegion region;
       const int32_t result = region.Make();
       if (result == 0) region.Tell(&s);
       return result;
     }},
    {"ZEL_ROIToMask",
     [](Session& s) {
       StepRegion region;
       const int32_t result = region.Make();
       return result != 0 ? result : ZEL_ROIToMask(s.target, s.i16, region.record, 200);
     }},
    {"ZEL_MaskToROI",
     [](Session& s) {
       StepRegion region;
       int32_t limitReached = 0;
       const int32_t result = ZEL_MaskToROI(s.target, 0, 1000, &region.record, &limitReached);
       if (result == 0) region.Tell(&s);
       return result;
     }},
    {"ZEL_CoordinateReference", CoordinateReference},
    {"ZEL_DetectRotation", DetectRotation},
    {"ZEL_TransformROI",
     [](Session& s) {
       StepRegion region;
       StepRegion turned;
       int32_t result = region.Make();
       if (result != 0) return result;
       result = ZEL_TransformROI(region.record, 10, 10, 5.0f, 90, 90, 35.0f, &turned.record);
       if (result == 0) turned.Tell(&s);
       return result;
     }},
    {"ZEL_ROIProfile",
     [](Session& s) {
       StepRegion region;
       const int32_t result = region.Make();
       return result != 0 ? result : Profile(s, region);
     }},
};

}  // namespace

constinit const std::span<const Step> REGION_STEPS{ROWS};

}  // namespace test
