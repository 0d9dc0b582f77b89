// Image files.
#include "harness/calls/calls.h"
#include "harness/calls/draws.h"

namespace test {
namespace {

using namespace draw;

constexpr int32_t TABLE_ENTRIES = 256;

int32_t ColourCount(Playground& play) {
  return Below<8>(play) == 0 ? Int(play) : Below<256>(play);
}

int32_t WriteFile(Playground& play) {
  const struct {
    ImageRef image;
    const char* path;
    int32_t format, count;
  } a{Source(play), Path(play), Below<5>(play), ColourCount(play)};
  const auto* table = play.ArrayOf<RGBValue>(Held(std::min(a.count, TABLE_ENTRIES)));
  return ZEL_WriteFile(a.image, a.path, a.format, table, a.count);
}

constexpr Leftovers OF_READ[] = {{ANY_FAILURE, OUTPUTS},
                                 {-101, CALIBRATION | SIZE | PIXELS},
                                 {-300, CALIBRATION | SIZE},
                                 {-511, CALIBRATION | SIZE | PIXELS},
                                 {-514, CALIBRATION | SIZE | PIXELS}};
// The rows are left moved together.
constexpr Leftovers OF_WRITE[] = {{-511, PIXELS | BORDER}, {-512, PIXELS | BORDER}};

constexpr ApiCall ROWS[] = {
    {61, "ZEL_PtkFileInfo", Call<ZEL_PtkFileInfo, Path, Output<FileInfo>>},
    {62, "ZEL_ReadFile",
     Call<ZEL_ReadFile, Destination, Path, Below<2>, Output<RGBValue, TABLE_ENTRIES>,
          Output<int32_t>>,
     STATUS, OF_READ},
    {63, "ZEL_WriteFile", WriteFile, STATUS, OF_WRITE},
};

}  // namespace

constinit const std::span<const ApiCall> FILE_CALLS{ROWS};

}  // namespace test
