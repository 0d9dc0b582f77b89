// One pixel gives one pixel: operators, casts, thresholds, lookups.
#include <array>
#include <tuple>

#include "harness/sweep/sweep.h"

namespace test {
namespace {

constexpr float CONSTANTS[] = {3.0f, 0.7f, -5.0f, 0.0f, 300.5f};

void Operators(Sweep& sweep) {
  const auto& [first, second, result] = std::tie(sweep.first, sweep.second, sweep.result);
  for (const auto& operation :
       {ZEL_Add, ZEL_Subtract, ZEL_Multiply, ZEL_Divide, ZEL_Modulo, ZEL_MulDiv}) {
    sweep.Add(operation(first, second, result, 2.5f));
    sweep.Add(operation(second, first, result, 2.5f));
    for (const float constant : CONSTANTS) sweep.Add(operation(first, 0, result, constant));
    sweep.Add(operation(second, 0, result, 1.7f));
  }
  for (const auto& operation : {ZEL_And, ZEL_Or, ZEL_Xor}) {
    for (const int16_t invert : {int16_t{0}, int16_t{1}}) {
      sweep.Add(operation(first, second, result, invert, 0));
      sweep.Add(operation(first, 0, result, invert, 0x5A3C));
    }
  }
  sweep.Add(ZEL_LogDiff(first, second, result, 0));
  for (int32_t operation = COMPARISON_MEAN; operation <= COMPARISON_KEEP_NOT_ABOVE; operation++) {
    sweep.Add(ZEL_Compare(first, second, result, operation, 0));
    sweep.Add(ZEL_Compare(second, 0, result, operation, 40));
  }
  sweep.Add(ZEL_Mask(first, sweep.mask, result));
}

void Conversions(Sweep& sweep) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_RGB, IMAGE_COMPLEX}) {
    const TestImage other(type, 2, 2, 1, 9);
    for (const TestImage* source : {&sweep.first, &sweep.second}) {
      const int32_t converted = ZEL_Convert(*source, other);
      sweep.AddImage(converted, other);
      ZEL_Copy(*source, sweep.result);
      sweep.Add(ZEL_Cast(sweep.result, type));
      ZEL_Cast(sweep.result, sweep.type);
    }
  }
  const TestImage bytes(IMAGE_U8, 2, 2, 1, 9);
  sweep.AddImage(ZEL_Shift16To8(sweep.first, bytes, 3), bytes);
}

void Lookups(Sweep& sweep) {
  std::array<double, 300> table{};
  for (size_t i = 0; i < table.size(); i++) table[i] = static_cast<double>(i * 37 % 251) - 3.25;
  const auto count = static_cast<int32_t>(table.size());
  sweep.Add(ZEL_UserLookup(sweep.first, sweep.mask, sweep.result, ARRAY_DBL, table.data(), count));
  sweep.Add(ZEL_ConvertByLookup(sweep.first, sweep.result, ARRAY_DBL, table.data(), count));
  for (int32_t law = MATH_LINEAR; law <= MATH_POWER1X; law++) {
    for (const float exponent : {0.3f, 2.0f, -1.5f, 1e-15f, -3e-18f, 1e-22f, 4000.0f}) {
      sweep.Add(ZEL_MathLookup(sweep.first, 0, sweep.result, law, exponent, 0, 0));
      sweep.Add(ZEL_MathLookup(sweep.first, sweep.mask, sweep.result, law, exponent, 11, 199));
    }
  }
  sweep.Add(ZEL_Equalize(sweep.first, sweep.mask, sweep.result, nullptr, 0, nullptr, 0, 0));
}

void Thresholds(Sweep& sweep) {
  sweep.Add(ZEL_Threshold(sweep.first, sweep.result, 20, 90, 7, 1));
  sweep.Add(ZEL_Threshold(sweep.second, sweep.result, 20.5f, 90.5f, 7, 0));
  const std::array<ThresholdClass, 2> classes = {{{10, 90, 1, 1}, {80, 200, 2, 0}}};
  sweep.Add(ZEL_MultiThreshold(sweep.second, sweep.result, 2, classes.data()));
  for (int32_t method = AUTOB_CLUSTERING; method <= AUTOB_INTERCLASS; method++) {
    std::array<float, 256> lookup{};
    int32_t threshold = 0;
    const int32_t status =
        ZEL_AutoBThreshold(sweep.first, method, ARRAY_SGL, lookup.data(), &threshold);
    sweep.Add(status, lookup.data(), lookup.size());
    sweep.Add(threshold, &threshold, 1);
  }
}

}  // namespace

void SweepPoint(Sweep& sweep) {
  Operators(sweep);
  Conversions(sweep);
  Lookups(sweep);
  Thresholds(sweep);
}

}  // namespace test
