// Operators, casts, thresholds and lookups.
#include <array>

#include "harness/session/session.h"

namespace test {
namespace {

template <int32_t (*Operator)(ImageRef, ImageRef, ImageRef, float)>
int32_t Combine(Session& s) {
  return Operator(s.u8, s.other, s.target, 3.0f);
}

template <int32_t (*Operator)(ImageRef, ImageRef, ImageRef, int16_t, uint32_t)>
int32_t Logic(Session& s) {
  return Operator(s.u8, s.other, s.target, 1, 0x5A);
}

int32_t AutoThreshold(Session& s) {
  std::array<float, 256> lookup{};
  int32_t threshold = 0;
  const int32_t result =
      ZEL_AutoBThreshold(s.u8, AUTOB_CLUSTERING, ARRAY_SGL, lookup.data(), &threshold);
  s.Out(lookup);
  s.Out(threshold);
  return result;
}

int32_t AutoClasses(Session& s) {
  std::array<int32_t, 256> lookup{};
  std::array<ThresholdClass, 4> classes{};
  const int32_t result = ZEL_AutoMThreshold(s.u8, 4, ARRAY_I32, lookup.data(), classes.data());
  s.Out(lookup);
  for (const ThresholdClass& one : classes) {
    s.Out(one.rangeMin);
    s.Out(one.rangeMax);
    s.Out(one.newValue);
    s.Out(one.useNew);
  }
  return result;
}

constexpr Step ROWS[] = {
    {"ZEL_Add", &Combine<ZEL_Add>},
    {"ZEL_Subtract", &Combine<ZEL_Subtract>},
    {"ZEL_Multiply", &Combine<ZEL_Multiply>},
    {"ZEL_Divide", &Combine<ZEL_Divide>},
    {"ZEL_Modulo", &Combine<ZEL_Modulo>},
    {"ZEL_MulDiv", &Combine<ZEL_MulDiv>},
    {"ZEL_And", &Logic<ZEL_And>},
    {"ZEL_Or", &Logic<ZEL_Or>},
    {"ZEL_Xor", &Logic<ZEL_Xor>},
    {"ZEL_LogDiff", [](Session& s) { return ZEL_LogDiff(s.u8, s.other, s.target, 0); }},
    {"ZEL_Compare", [](Session& s) { return ZEL_Compare(s.u8, 0, s.target, 4, 100); }},
    {"ZEL_Mask", [](Session& s) { return ZEL_Mask(s.other, s.mask, s.target); }},
    {"ZEL_Mask", [](Session& s) { return ZEL_Mask(s.other, s.mask, 0); }},
    {"ZEL_Convert", [](Session& s) { return ZEL_Convert(s.rgb, s.target); }},
    {"ZEL_Cast", [](Session& s) { return ZEL_Cast(s.complex, IMAGE_SGL); }},
    {"ZEL_ConvertByLookup",
     [](Session& s) {
       const double table[3] = {5, 6, 7};
       return ZEL_ConvertByLookup(s.i16, s.target, ARRAY_DBL, table, 3);
     }},
    {"ZEL_Shift16To8", [](Session& s) { return ZEL_Shift16To8(s.i16, s.target, 2); }},
    {"ZEL_Threshold", [](Session& s) { return ZEL_Threshold(s.i16, s.target16, 50, 150, 1, 1); }},
    {"ZEL_MultiThreshold",
     [](Session& s) {
       const ThresholdClass classes[2] = {{10, 90, 1, 1}, {80, 200, 2, 1}};
       return ZEL_MultiThreshold(s.u8, s.target, 2, classes);
     }},
    {"ZEL_AutoBThreshold", &AutoThreshold},
    {"ZEL_AutoMThreshold", &AutoClasses},
    {"ZEL_UserLookup",
     [](Session& s) {
       const int32_t table[4] = {9, 8, 7, 6};
       return ZEL_UserLookup(s.u8, s.mask, s.target, ARRAY_I32, table, 4);
     }},
    {"ZEL_UserLookup",
     [](Session& s) {
       const int32_t table[4] = {9, 8, 7, 6};
       return ZEL_UserLookup(s.i16, 0, s.target16, ARRAY_I32, table, 4);
     }},
    {"ZEL_MathLookup", [](Session& s) { return ZEL_MathLookup(s.i16, 0, s.target16, 4, 2, 0, 0); }},
    {"ZEL_Equalize",
     [](Session& s) {
       return ZEL_Equalize(s.sgl, s.mask, s.targetFloat, nullptr, 0, nullptr, 0, 0);
     }},
};

}  // namespace

constinit const std::span<const Step> POINT_STEPS{ROWS};

}  // namespace test
