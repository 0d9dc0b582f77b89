// Bar codes read.
#include "harness/printed_code.h"
#include "harness/session/session.h"

namespace test {
namespace {

template <auto function>
int32_t CallReader(ImageRef image, const RoiDescriptor* roi, char** text, int32_t* length) {
  return function(image, roi, 1, text, length);
}

template <>
int32_t CallReader<ZEL_ReadEAN13>(ImageRef image, const RoiDescriptor* roi, char** text,
                                  int32_t* length) {
  return ZEL_ReadEAN13(image, roi, 1, &PRINTED_EAN13_FIRST_DIGIT, text, length);
}

// A picture and its region come and go with the step.
template <auto function, const PrintedCode& code>
int32_t ReadCode(Session& s) {
  ImageRef image = 0;
  int32_t result = PrintCode(code, &image);
  if (result != 0) return result;
  const int32_t flat[] = {0, 0, 1000, 3, ROI_MARKER_EXTERNAL, ROI_RECT, 0, 0, 1000, 2};
  RoiDescriptor* roi = nullptr;
  result = ZEL_ArrayToROI(flat, 10, &roi);
  char* text = nullptr;
  int32_t length = 0;
  if (result == 0) result = CallReader<function>(image, roi, &text, &length);
  if (result == 0) s.Out(text, static_cast<size_t>(length));
  ZEL_free(text);
  ZEL_FreeROI(roi);
  ZEL_Dispose(image);
  return result;
}

constexpr Step ROWS[] = {
    {"ZEL_ReadCod128", ReadCode<ZEL_ReadCod128, PRINTED_CODE128>},
    {"ZEL_ReadCod25", ReadCode<ZEL_ReadCod25, PRINTED_INTERLEAVED>},
    {"ZEL_ReadCod39", ReadCode<ZEL_ReadCod39, PRINTED_CODE39>},
    {"ZEL_ReadCod93", ReadCode<ZEL_ReadCod93, PRINTED_CODE93>},
    {"ZEL_ReadCodEAN8", ReadCode<ZEL_ReadCodEAN8, PRINTED_EAN8>},
    {"ZEL_ReadCodabar", ReadCode<ZEL_ReadCodabar, PRINTED_CODABAR>},
    {"ZEL_ReadEAN13", ReadCode<ZEL_ReadEAN13, PRINTED_EAN13>},
    {"ZEL_ReadMSI", ReadCode<ZEL_ReadMSI, PRINTED_MSI>},
    {"ZEL_ReadUPCA", ReadCode<ZEL_ReadUPCA, PRINTED_UPCA>},
};

}  // namespace

constinit const std::span<const Step> BARCODE_STEPS{ROWS};

}  // namespace test
