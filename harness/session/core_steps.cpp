// Images are made; those that follow work on them.
#include "harness/session/session.h"

namespace test {
namespace {

constexpr int32_t BORDER = 2;

// Makes an image with its size. After a failure nothing is left of it, so that it can be tried
// again.
template <ImageRef Session::*member, int16_t type, int32_t width = Session::WIDTH,
          int32_t height = Session::HEIGHT>
int32_t Make(Session& s) {
  ImageRef* image = &(s.*member);
  int32_t result = ZEL_Create(image, type, BORDER);
  if (result == 0) result = ZEL_SetImageSize(*image, width, height);
  if (result != 0) {
    if (*image != 0 && *image != 0xFFFFFFFF) ZEL_Dispose(*image);
    *image = 0;
  }
  return result;
}

constexpr Step ROWS[] = {
    {"ZEL_InitSys", [](Session&) { return ZEL_InitSys(); }},
    {"ZEL_Create", Make<&Session::u8, IMAGE_U8>},
    {"ZEL_Create", Make<&Session::other, IMAGE_U8>},
    {"ZEL_Create", Make<&Session::mask, IMAGE_U8, 20, 15>},
    {"ZEL_Create", Make<&Session::i16, IMAGE_I16>},
    {"ZEL_Create", Make<&Session::sgl, IMAGE_SGL>},
    {"ZEL_Create", Make<&Session::complex, IMAGE_COMPLEX>},
    {"ZEL_Create", Make<&Session::rgb, IMAGE_RGB>},
    {"ZEL_Create", Make<&Session::target, IMAGE_U8, 0, 0>},
    {"ZEL_Create", Make<&Session::target16, IMAGE_I16, 0, 0>},
    {"ZEL_Create", Make<&Session::targetFloat, IMAGE_SGL, 0, 0>},
    {"ZEL_SetImageSize",
     [](Session& s) {
       const int32_t result = ZEL_SetImageSize(s.target, Session::WIDTH, Session::HEIGHT);
       if (result == 0) ZEL_ClearPixels(s.target);  // which the digest sees
       return result;
     }},
    {"ZEL_GetImageReference",
     [](Session& s) {
       ImageRef second = 0;
       int32_t count = 0;
       const int32_t result = ZEL_GetImageReference(1, &second, &count);
       s.Out(second == s.other);
       s.Out(count);
       return result;
     }},
    {"ZEL_SetImageOffset", [](Session& s) { return ZEL_SetImageOffset(s.mask, 5, 4); }},
    {"ZEL_SetImageCalibration",
     [](Session& s) { return ZEL_SetImageCalibration(s.u8, 3, 0.5f, 0.25f); }},
    {"ZEL_GetImageInfo",
     [](Session& s) {
       ImageInfo info{};
       const int32_t result = ZEL_GetImageInfo(s.u8, &info);
       s.Out(info.width);
       return result;
     }},
    {"ZEL_GetPixelAddress",
     [](Session& s) {
       void* address = nullptr;
       return ZEL_GetPixelAddress(s.u8, 0, 0, &address);
     }},
};

}  // namespace

constinit const std::span<const Step> CORE_STEPS{ROWS};

}  // namespace test
