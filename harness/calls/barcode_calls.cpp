// Bar codes.
#include "harness/calls/calls.h"
#include "harness/calls/draws.h"
#include "harness/checks.h"
#include "harness/printed_code.h"

namespace test {
namespace {

using namespace draw;

// A picture of a sound code, for the time of one call.
class CodePicture {
 public:
  // Without memory there is none, and no report of that is left behind.
  explicit CodePicture(const PrintedCode& code) {
    if (PrintCode(code, &image_) != 0) ZEL_GetLastError(nullptr);
  }
  CodePicture(const CodePicture&) = delete;
  CodePicture& operator=(const CodePicture&) = delete;
  ~CodePicture() {
    if (image_ != 0) ZEL_Dispose(image_);
  }
  ImageRef image() const { return image_; }

 private:
  ImageRef image_ = 0;
};

// A record with one contour of two points, or fewer, in memory of the caller's own.
const RoiDescriptor* Region(Playground& play, const Line& corners) {
  const struct {
    int32_t kind, type, points;
  } a{Below<2>(play), Below<8>(play) == 0 ? Int(play) : ROI_RECT,
      Below<16>(play) == 0 ? Below<2>(play) : 2};
  auto* contour = static_cast<RoiContour*>(
      play.Output({sizeof(RoiContour) + 2 * sizeof(PointInt), alignof(RoiContour)}));
  if (contour) {
    contour->contourKind = a.kind;
    contour->contourType = a.type;
    contour->pointCount = a.points;
    contour->points[0] = {corners.x1, corners.y1};
    contour->points[1] = {corners.x2, corners.y2};
    play.model().Gives(contour);
  }
  auto* record = static_cast<RoiDescriptor*>(
      play.Output({sizeof(RoiDescriptor) + sizeof(RoiContour*), alignof(RoiDescriptor)}));
  if (!record) return nullptr;
  record->globalRect = {};
  record->contourCount = 1;
  record->contours[0] = contour;
  play.model().Gives(record);
  return record;
}

// What a reader is called with, whether or not it takes a first digit.
struct ReaderArguments {
  ImageRef image;
  const RoiDescriptor* roi;
  int32_t validate;
  const uint8_t* firstDigit;
  char** text;
  int32_t* textLength;
};

template <auto function>
int32_t CallReader(const ReaderArguments& a) {
  return function(a.image, a.roi, a.validate, a.text, a.textLength);
}

template <>
int32_t CallReader<ZEL_ReadEAN13>(const ReaderArguments& a) {
  return ZEL_ReadEAN13(a.image, a.roi, a.validate, a.firstDigit, a.text, a.textLength);
}

// Half of the calls look at a sound code. One that fails leaves the text's block alone.
template <auto function, const PrintedCode& code>
int32_t ReadCode(Playground& play) {
  const CodePicture sound(code);
  const struct {
    int32_t kind;
    ImageRef image;
    Line corners;
  } a{Below<2>(play), Source(play), LineAnywhere(play)};
  const bool isSound = a.kind == 0 && sound.image() != 0;
  const RoiDescriptor* roi = Region(play, isSound ? Line{0, 0, 1000, 2} : a.corners);
  const struct {
    int32_t validate;
    const uint8_t* firstDigit;
    char** text;
    int32_t* textLength;
  } out{Below<2>(play), play.ArrayOf<uint8_t>(1), Below<16>(play) == 0 ? nullptr : play.Text(),
        Output<int32_t>(play)};
  const char* before = *play.Text();
  const int32_t result = CallReader<function>({isSound ? sound.image() : a.image, roi, out.validate,
                                               out.firstDigit, out.text, out.textLength});
  if (result != 0) Require(*play.Text() == before, "a failing reader changed the text's block");
  return result;
}

constexpr ApiCall ROWS[] = {
    {64, "ZEL_ReadCod128", ReadCode<ZEL_ReadCod128, PRINTED_CODE128>},
    {65, "ZEL_ReadCod25", ReadCode<ZEL_ReadCod25, PRINTED_INTERLEAVED>},
    {66, "ZEL_ReadCod39", ReadCode<ZEL_ReadCod39, PRINTED_CODE39>},
    {250, "ZEL_ReadCod93", ReadCode<ZEL_ReadCod93, PRINTED_CODE93>},
    {251, "ZEL_ReadCodEAN8", ReadCode<ZEL_ReadCodEAN8, PRINTED_EAN8>},
    {252, "ZEL_ReadCodabar", ReadCode<ZEL_ReadCodabar, PRINTED_CODABAR>},
    {253, "ZEL_ReadEAN13", ReadCode<ZEL_ReadEAN13, PRINTED_EAN13>},
    {254, "ZEL_ReadMSI", ReadCode<ZEL_ReadMSI, PRINTED_MSI>},
    {255, "ZEL_ReadUPCA", ReadCode<ZEL_ReadUPCA, PRINTED_UPCA>},
};

}  // namespace

constinit const std::span<const ApiCall> BARCODE_CALLS{ROWS};

}  // namespace test
