// Image files are written and read.
#include <array>

#include "harness/session/session.h"

namespace test {
namespace {

constexpr Step ROWS[] = {
    {"ZEL_WriteFile", [](Session& s) { return ZEL_WriteFile(s.u8, "a.orln", 1, nullptr, 0); }},
    {"ZEL_WriteFile", [](Session& s) { return ZEL_WriteFile(s.u8, "a.tif", 2, nullptr, 0); }},
    {"ZEL_WriteFile", [](Session& s) { return ZEL_WriteFile(s.i16, "b.tif", 2, nullptr, 0); }},
    {"ZEL_WriteFile", [](Session& s) { return ZEL_WriteFile(s.rgb, "c.tif", 2, nullptr, 0); }},
    {"ZEL_WriteFile", [](Session& s) { return ZEL_WriteFile(s.u8, "a.bmp", 0, nullptr, 0); }},
    {"ZEL_WriteFile", [](Session& s) { return ZEL_WriteFile(s.rgb, "c.bmp", 0, nullptr, 0); }},
    {"ZEL_PtkFileInfo",
     [](Session& s) {
       FileInfo info{};
       const int32_t result = ZEL_PtkFileInfo("b.tif", &info);
       s.Out(info);
       return result;
     }},
    {"ZEL_ReadFile",
     [](Session& s) { return ZEL_ReadFile(s.targetFloat, "a.orln", 0, nullptr, nullptr); }},
    {"ZEL_ReadFile",
     [](Session& s) {
       std::array<RGBValue, 256> table{};
       int32_t count = 0;
       const int32_t result = ZEL_ReadFile(s.target, "a.tif", 1, table.data(), &count);
       s.Out(table);
       s.Out(count);
       return result;
     }},
    {"ZEL_ReadFile",
     [](Session& s) { return ZEL_ReadFile(s.target16, "b.tif", 0, nullptr, nullptr); }},
    {"ZEL_ReadFile", [](Session& s) { return ZEL_ReadFile(s.rgb, "c.tif", 0, nullptr, nullptr); }},
    {"ZEL_ReadFile",
     [](Session& s) { return ZEL_ReadFile(s.target, "c.bmp", 0, nullptr, nullptr); }},
};

}  // namespace

constinit const std::span<const Step> FILE_STEPS{ROWS};

}  // namespace test
