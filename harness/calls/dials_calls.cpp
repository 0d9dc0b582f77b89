// Meters and displays.
#include <cmath>

#include "harness/calls/calls.h"
#include "harness/calls/draws.h"
#include "harness/drawn_display.h"
#include "platform/message_box.h"

namespace test {
namespace {

using namespace draw;

// A block of the library in a caller's variable, for the time of one call: NULL at first, or some
// bytes.
template <class T>
class Block {
 public:
  explicit Block(Playground& play) {
    if (Below<2>(play) == 0) data_ = static_cast<T*>(ZEL_malloc(8));
  }
  Block(const Block&) = delete;
  Block& operator=(const Block&) = delete;
  ~Block() { ZEL_free(data_); }

  T** AddressOrNull(Playground& play) { return Below<16>(play) == 0 ? nullptr : &data_; }

 private:
  T* data_ = nullptr;
};

// A caller's message box that shows nothing, for the time of one call: a missing region is told to
// the person at the machine whatever the error mode.
class UnseenMessages {
 public:
  UnseenMessages() {
    static constexpr zel::MessageBox unseen{[](const char*, const char*) {}};
    zel::MessageBoxUse(&unseen);
  }
  UnseenMessages(const UnseenMessages&) = delete;
  UnseenMessages& operator=(const UnseenMessages&) = delete;
  ~UnseenMessages() { zel::MessageBoxUse(nullptr); }
};

constexpr int32_t MOST_CONTOURS = 3;
constexpr int32_t MOST_POINTS = 5;

// A contour of a few points in memory of the caller's own, mostly of the type asked for.
RoiContour* Contour(Playground& play, int32_t usualType, int32_t usualPoints) {
  const struct {
    int32_t kind, type, points;
  } a{Below<8>(play) == 0 ? Int(play) : ROI_EXTERNAL, Below<16>(play) == 0 ? Int(play) : usualType,
      Below<8>(play) == 0 ? Below<MOST_POINTS + 1>(play) : usualPoints};
  auto* contour = static_cast<RoiContour*>(
      play.Output({sizeof(RoiContour) + static_cast<size_t>(a.points) * sizeof(PointInt),
                   alignof(RoiContour)}));
  if (!contour) return nullptr;
  contour->contourKind = a.kind;
  contour->contourType = a.type;
  contour->pointCount = a.points;
  for (int32_t i = 0; i < a.points; i++) contour->points[i] = {Int(play), Int(play)};
  play.model().Gives(contour);
  return contour;
}

RoiDescriptor* Region(Playground& play, int32_t contours, int32_t usualType, int32_t usualPoints) {
  auto* roi = static_cast<RoiDescriptor*>(play.Output(
      {sizeof(RoiDescriptor) + MOST_CONTOURS * sizeof(RoiContour*), alignof(RoiDescriptor)}));
  if (!roi) return nullptr;
  roi->globalRect = {};
  roi->contourCount = contours;
  for (int32_t i = 0; i < contours; i++) roi->contours[i] = Contour(play, usualType, usualPoints);
  play.model().Gives(roi);
  return roi;
}

int32_t CalibrateMeter(Playground& play) {
  const UnseenMessages unseen;
  Block<PointFloat> arc(play);
  const struct { int32_t contours; } a{Below<8>(play) == 0 ? Below<4>(play) : 2};
  const RoiDescriptor* roi = Region(play, a.contours, ROI_LINE, 2);
  const struct {
    PointFloat* base;
    PointFloat** arc;
    int32_t* count;
  } out{Output<PointFloat>(play), arc.AddressOrNull(play), Output<int32_t>(play)};
  return ZEL_CalibrateMeter(roi, out.base, out.arc, out.count);
}

// The longest circles would cost a second.
float Coordinate(Playground& play) {
  const float value = Float(play);
  return std::fabs(value) <= METER_COORDINATE_LIMIT ? std::fmod(value, 4096.0f) : value;
}

int32_t CalibrateMeter2(Playground& play) {
  Block<PointFloat> arc(play);
  const struct {
    float baseX, baseY, startX, startY, endX, endY;
  } a{Coordinate(play), Coordinate(play), Coordinate(play),
      Coordinate(play), Coordinate(play), Coordinate(play)};
  const struct {
    PointFloat** arc;
    int32_t* count;
  } out{arc.AddressOrNull(play), Output<int32_t>(play)};
  return ZEL_CalibrateMeter2(a.baseX, a.baseY, a.startX, a.startY, a.endX, a.endY, out.arc,
                             out.count);
}

int32_t ReadMeter(Playground& play) {
  const UnseenMessages unseen;
  const struct {
    ImageRef image;
    float baseX, baseY;
    int32_t count, lightNeedle;
  } a{Source(play), Float(play), Float(play), Count(play), Below<2>(play)};
  const auto* arc = play.ArrayOf<PointFloat>(Held(a.count));
  const struct {
    float* percent;
    PointFloat* needleTip;
  } out{Output<float>(play), Output<PointFloat>(play)};
  return ZEL_ReadMeter(a.image, a.baseX, a.baseY, arc, a.count, a.lightNeedle, out.percent,
                       out.needleTip);
}

// The picture of a display, for the time of one call. Without memory there is none, and no report
// of that is left behind.
class DisplayPicture {
 public:
  DisplayPicture() {
    if (DrawDisplay(&image_) == 0) return;
    ZEL_GetLastError(nullptr);
  }
  DisplayPicture(const DisplayPicture&) = delete;
  DisplayPicture& operator=(const DisplayPicture&) = delete;
  ~DisplayPicture() {
    if (image_ != 0) ZEL_Dispose(image_);
  }
  ImageRef image() const { return image_; }

 private:
  ImageRef image_ = 0;
};

// What a display is read from: half of the calls see digits where there are some.
struct DisplayArguments {
  ImageRef image;
  const RoiDescriptor* roi;
  int32_t lightSegments;
  float threshold;
};

DisplayArguments DisplayFor(Playground& play, ImageRef sound, const int32_t* corners) {
  const struct {
    int32_t kind;
    ImageRef image;
    int32_t contours, type, lightSegments;
    float threshold;
  } a{Below<2>(play), Source(play),   1 + Below<MOST_CONTOURS>(play),
      Below<2>(play), Below<2>(play), Float(play)};
  const bool isRectangle = a.type == 0;
  RoiDescriptor* roi =
      Region(play, a.contours, isRectangle ? ROI_RECT : ROI_POLYGON, isRectangle ? 2 : 4);
  const bool isSound = a.kind == 0 && sound != 0 && roi && roi->contours[0] && isRectangle &&
                       roi->contours[0]->contourType == ROI_RECT &&
                       roi->contours[0]->pointCount == 2;
  if (!isSound) return {a.image, roi, a.lightSegments, a.threshold};
  roi->contourCount = 1;
  roi->contours[0]->contourKind = ROI_EXTERNAL;
  roi->contours[0]->points[0] = {corners[0], corners[1]};
  roi->contours[0]->points[1] = {corners[2], corners[3]};
  play.model().Gives(roi->contours[0]);
  play.model().Gives(roi);
  return {sound, roi, 0, DRAWN_DIGITS_THRESHOLD};
}

int32_t CalibrateLCD(Playground& play) {
  const UnseenMessages unseen;
  const DisplayPicture sound;
  const DisplayArguments a = DisplayFor(play, sound.image(), DRAWN_DIGITS_REGION);
  RoiDescriptor* digits = nullptr;
  RoiDescriptor** const out = Below<16>(play) == 0 ? nullptr : &digits;
  const int32_t result = ZEL_CalibrateLCD(a.image, a.roi, a.lightSegments, a.threshold, out);
  ZEL_FreeROI(digits);
  return result;
}

int32_t ReadSingleDigit(Playground& play) {
  const UnseenMessages unseen;
  const DisplayPicture sound;
  Block<char> text(play);
  const DisplayArguments a = DisplayFor(play, sound.image(), DRAWN_DIGIT);
  const struct {
    int32_t point;
    char** text;
    double* value;
    DigitSegments* segments;
  } out{Below<2>(play), text.AddressOrNull(play), Output<double>(play),
        Output<DigitSegments>(play)};
  return ZEL_ReadSingleDigit(a.image, a.roi, a.lightSegments, a.threshold, out.point, out.text,
                             out.value, out.segments);
}

int32_t ReadLCDDisplay(Playground& play) {
  const UnseenMessages unseen;
  const DisplayPicture sound;
  Block<char> text(play);
  Block<uint8_t> segments(play);
  const DisplayArguments a = DisplayFor(play, sound.image(), DRAWN_DIGIT);
  const struct {
    int32_t sign, point;
    char** text;
    double* value;
    uint8_t** segments;
    int32_t* count;
  } out{Below<2>(play),
        Below<2>(play),
        text.AddressOrNull(play),
        Output<double>(play),
        segments.AddressOrNull(play),
        Output<int32_t>(play)};
  return ZEL_ReadLCDDisplay(a.image, a.roi, a.lightSegments, a.threshold, out.sign, out.point,
                            out.text, out.value, out.segments, out.count);
}

constexpr Leftovers OF_A_DIGIT[] = {{ZEL_ERR_NO_SEGMENT, OUTPUTS},
                                    {ZEL_ERR_INEXACT_DIGIT, OUTPUTS}};

constexpr ApiCall ROWS[] = {
    {80, "ZEL_CalibrateMeter", CalibrateMeter},
    {81, "ZEL_CalibrateMeter2", CalibrateMeter2},
    {82, "ZEL_ReadMeter", ReadMeter},
    {83, "ZEL_CalibrateLCD", CalibrateLCD},
    {84, "ZEL_ReadSingleDigit", ReadSingleDigit, STATUS, OF_A_DIGIT},
    {85, "ZEL_ReadLCDDisplay", ReadLCDDisplay},
};

}  // namespace

constinit const std::span<const ApiCall> DIALS_CALLS{ROWS};

}  // namespace test
