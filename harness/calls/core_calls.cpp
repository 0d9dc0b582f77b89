// Memory, images and errors.
#include "harness/calls/calls.h"
#include "harness/calls/draws.h"

namespace test {
namespace {

using namespace draw;

int32_t Memory(Playground& play) {
  const struct {
    uint32_t made, changed, count, size;
  } a{play.input().Below(300), 1 + play.input().Below(3000), play.input().Below(300),
      play.input().Below(300)};
  ZEL_free(ZEL_realloc(ZEL_malloc(a.made), a.changed));
  ZEL_free(ZEL_calloc(a.count, a.size));
  return 0;
}

int32_t CloseNowAndThen(Playground& play) {
  if (Below<64>(play) != 63) return 0;
  play.model().AllImagesMayGo();
  return ZEL_CloseSys();
}

int32_t Border(Playground& play) {
  return Below<8>(play) == 0 ? Int(play) : Below<6>(play);
}

const char* ProcedureName(Playground& play) {
  return Below<2>(play) == 0 ? nullptr : "anything";
}

int32_t ErrorMode(Playground& play) {
  return 1 + Below<3>(play);  // silent
}

// An image of a type that there is not exists after -300.
constexpr Leftovers OF_CREATE[] = {{-300, MADE | KIND | SIZE | CALIBRATION}};

constexpr ApiCall ROWS[] = {
    {0, "ZEL_malloc", Memory, NO_STATUS},
    {1, "ZEL_calloc", Memory, NO_STATUS},
    {2, "ZEL_realloc", Memory, NO_STATUS},
    {3, "ZEL_free", Memory, NO_STATUS},
    {4, "ZEL_InitSys", Call<ZEL_InitSys>},
    {5, "ZEL_CloseSys", CloseNowAndThen},
    {6, "ZEL_Create", Call<ZEL_Create, Slot, ImageType, Border>, STATUS, OF_CREATE},
    {7, "ZEL_Dispose", Call<ZEL_Dispose, ImageThatMay<GONE>>},
    {8, "ZEL_GetImageInfo", Call<ZEL_GetImageInfo, Source, Output<ImageInfo>>, NO_STATUS},
    {9, "ZEL_SetImageSize", Call<ZEL_SetImageSize, ImageThatMay<SIZE | EXTENDED>, Int, Int>},
    {10, "ZEL_SetImageCalibration",
     Call<ZEL_SetImageCalibration, ImageThatMay<CALIBRATION>, Int, Float, Float>},
    {11, "ZEL_SetImageOffset", Call<ZEL_SetImageOffset, ImageThatMay<CALIBRATION>, Int, Int>},
    {12, "ZEL_GetImageReference",
     Call<ZEL_GetImageReference, Int, Output<ImageRef>, Output<int32_t>>, NO_STATUS},
    {13, "ZEL_GetPixelAddress", Call<ZEL_GetPixelAddress, Source, Int, Int, Output<void*>>},
    {14, "ZEL_ProcessError", Call<ZEL_ProcessError, ProcedureName, Int>, STATUS, {}, ANY_NAME},
    {15, "ZEL_SetErrorMode", Call<ZEL_SetErrorMode, ErrorMode>, NO_STATUS},
    {16, "ZEL_GetErrorMode", Call<ZEL_GetErrorMode>, NO_STATUS},
    {17, "ZEL_GetLastError", Call<ZEL_GetLastError, Output<char, 256>>, NO_STATUS},
};

}  // namespace

constinit const std::span<const ApiCall> CORE_CALLS{ROWS};

}  // namespace test
