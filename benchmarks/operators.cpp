// Operators between images and with constants.
#include <cstring>
#include <opencv2/imgproc.hpp>

#include "benchmarks/pairs.h"

namespace {

using bench::Images;
using bench::INTEGERS;
using bench::Mats;
using bench::PLAIN_LOOP;
using bench::SCALARS;

constexpr char NOTES[] = R"(
`modulo` and `muldiv` stand beside a plain loop, as no peer has them. OpenCV computes something else
here and there: `divide` rounds and gives 0 for a divisor of 0, and `mean` is its weighted sum, which
rounds. `keep_above` is its `compare` with `bitwise_and` or a masked copy, `mask` a masked copy into a
cleared image.

`memory_copy` is the floor: a copy that reads and writes together as many bytes a pixel as its name
says. An operation on two U8 images touches 3, one with a constant 2.
)";

int32_t CopyBytes(Images& i) {
  const size_t half = i.array.size() / 2;
  std::memcpy(i.array.data(), i.array.data() + half, half);
  return 0;
}

bench::Pair MemoryCopy(size_t bytes) {
  return {.operation = "memory_copy_" + std::to_string(bytes),
          .prepare =
              [bytes](Images& i, Mats&) {
                i.array.assign(static_cast<size_t>(bench::Area(i.size)) * bytes, 7);
                return 0;
              },
          .ours = CopyBytes};
}

int32_t CopyFirst(Images& i, Mats& m) {
  m.a.copyTo(m.to);
  return ZEL_Convert(i.a, i.to);
}

// Calls the loop for the pixels' type.
template <class Loop>
void ForType(Mats& m, Loop loop) {
  m.to.create(m.a.size(), m.a.type());
  for (int y = 0; y < m.a.rows; y++) {
    if (m.a.type() == CV_8U) {
      loop(m.a.ptr<uint8_t>(y), m.b.ptr<uint8_t>(y), m.to.ptr<uint8_t>(y), m.a.cols);
    } else {
      loop(m.a.ptr<int16_t>(y), m.b.ptr<int16_t>(y), m.to.ptr<int16_t>(y), m.a.cols);
    }
  }
}

void Modulo(Mats& m) {
  ForType(m, []<class T>(const T* a, const T* b, T* to, int width) {
    for (int x = 0; x < width; x++) to[x] = b[x] == 0 ? a[x] : static_cast<T>(a[x] % b[x]);
  });
}

void ModuloConstant(Mats& m) {
  ForType(m, []<class T>(const T* a, const T*, T* to, int width) {
    for (int x = 0; x < width; x++) to[x] = static_cast<T>(a[x] % 37);
  });
}

void MulDiv(Mats& m) {
  ForType(m, []<class T>(const T* a, const T* b, T* to, int width) {
    for (int x = 0; x < width; x++) {
      to[x] = b[x] == 0 ? a[x] : cv::saturate_cast<T>(a[x] * 3.7 / b[x]);
    }
  });
}

void KeepAbove(Mats& m) {
  cv::Mat& above = m.scratch[0];
  cv::compare(m.a, m.b, above, cv::CMP_GT);
  if (m.a.type() == CV_8U) {
    cv::bitwise_and(m.a, above, m.to);
  } else {
    m.to.create(m.a.size(), m.a.type());
    m.to.setTo(0);
    m.a.copyTo(m.to, above);
  }
}

void Mask(Mats& m) {
  m.to.create(m.a.size(), m.a.type());
  m.to.setTo(0);
  m.a.copyTo(m.to, m.mask);
}

const std::vector<bench::Pair> PAIRS = {
    MemoryCopy(2),
    MemoryCopy(3),
    MemoryCopy(4),
    MemoryCopy(6),
    MemoryCopy(8),
    MemoryCopy(12),

    {.operation = "add",
     .kinds = SCALARS,
     .ours = [](Images& i) { return ZEL_Add(i.a, i.b, i.to, 0); },
     .theirs = [](Mats& m) { cv::add(m.a, m.b, m.to); }},
    {.operation = "add_in_place",
     .kinds = SCALARS,
     .prepare = CopyFirst,
     .ours = [](Images& i) { return ZEL_Add(i.to, i.b, 0, 0); },
     .theirs = [](Mats& m) { cv::add(m.to, m.b, m.to); }},
    {.operation = "subtract",
     .kinds = SCALARS,
     .ours = [](Images& i) { return ZEL_Subtract(i.a, i.b, i.to, 0); },
     .theirs = [](Mats& m) { cv::subtract(m.a, m.b, m.to); }},
    {.operation = "minimum",
     .kinds = SCALARS,
     .ours = [](Images& i) { return ZEL_Compare(i.a, i.b, i.to, COMPARISON_MINIMUM, 0); },
     .theirs = [](Mats& m) { cv::min(m.a, m.b, m.to); }},
    {.operation = "maximum",
     .kinds = SCALARS,
     .ours = [](Images& i) { return ZEL_Compare(i.a, i.b, i.to, COMPARISON_MAXIMUM, 0); },
     .theirs = [](Mats& m) { cv::max(m.a, m.b, m.to); }},
    {.operation = "mean",
     .kinds = SCALARS,
     .ours = [](Images& i) { return ZEL_Compare(i.a, i.b, i.to, COMPARISON_MEAN, 0); },
     .theirs = [](Mats& m) { cv::addWeighted(m.a, 0.5, m.b, 0.5, 0, m.to); }},
    {.operation = "keep_above",
     .kinds = SCALARS,
     .ours = [](Images& i) { return ZEL_Compare(i.a, i.b, i.to, COMPARISON_KEEP_ABOVE, 0); },
     .theirs = KeepAbove},
    {.operation = "multiply",
     .kinds = SCALARS,
     .ours = [](Images& i) { return ZEL_Multiply(i.a, i.b, i.to, 0); },
     .theirs = [](Mats& m) { cv::multiply(m.a, m.b, m.to); }},
    {.operation = "divide",
     .kinds = SCALARS,
     .ours = [](Images& i) { return ZEL_Divide(i.a, i.b, i.to, 0); },
     .theirs = [](Mats& m) { cv::divide(m.a, m.b, m.to); }},
    {.operation = "modulo",
     .kinds = INTEGERS,
     .ours = [](Images& i) { return ZEL_Modulo(i.a, i.b, i.to, 0); },
     .peer = PLAIN_LOOP,
     .theirs = Modulo},
    {.operation = "muldiv",
     .kinds = INTEGERS,
     .ours = [](Images& i) { return ZEL_MulDiv(i.a, i.b, i.to, 3.7f); },
     .peer = PLAIN_LOOP,
     .theirs = MulDiv},
    {.operation = "and",
     .kinds = INTEGERS,
     .ours = [](Images& i) { return ZEL_And(i.a, i.b, i.to, 0, 0); },
     .theirs = [](Mats& m) { cv::bitwise_and(m.a, m.b, m.to); }},
    {.operation = "or",
     .kinds = INTEGERS,
     .ours = [](Images& i) { return ZEL_Or(i.a, i.b, i.to, 0, 0); },
     .theirs = [](Mats& m) { cv::bitwise_or(m.a, m.b, m.to); }},
    {.operation = "xor",
     .kinds = INTEGERS,
     .ours = [](Images& i) { return ZEL_Xor(i.a, i.b, i.to, 0, 0); },
     .theirs = [](Mats& m) { cv::bitwise_xor(m.a, m.b, m.to); }},
    {.operation = "mask",
     .kinds = {{IMAGE_U8}, {IMAGE_I16}, {IMAGE_RGB}},
     .ours = [](Images& i) { return ZEL_Mask(i.a, i.mask, i.to); },
     .theirs = Mask},

    {.operation = "add_constant",
     .kinds = SCALARS,
     .ours = [](Images& i) { return ZEL_Add(i.a, 0, i.to, 40); },
     .theirs = [](Mats& m) { cv::add(m.a, cv::Scalar(40), m.to); }},
    {.operation = "subtract_constant",
     .kinds = SCALARS,
     .ours = [](Images& i) { return ZEL_Subtract(i.a, 0, i.to, 40); },
     .theirs = [](Mats& m) { cv::subtract(m.a, cv::Scalar(40), m.to); }},
    {.operation = "minimum_constant",
     .kinds = SCALARS,
     .ours = [](Images& i) { return ZEL_Compare(i.a, 0, i.to, COMPARISON_MINIMUM, 90); },
     .theirs = [](Mats& m) { cv::min(m.a, 90, m.to); }},
    {.operation = "maximum_constant",
     .kinds = SCALARS,
     .ours = [](Images& i) { return ZEL_Compare(i.a, 0, i.to, COMPARISON_MAXIMUM, 90); },
     .theirs = [](Mats& m) { cv::max(m.a, 90, m.to); }},
    {.operation = "mean_constant",
     .kinds = SCALARS,
     .ours = [](Images& i) { return ZEL_Compare(i.a, 0, i.to, COMPARISON_MEAN, 90); },
     .theirs = [](Mats& m) { m.a.convertTo(m.to, -1, 0.5, 45); }},
    {.operation = "keep_above_constant",
     .kinds = SCALARS,
     .ours = [](Images& i) { return ZEL_Compare(i.a, 0, i.to, COMPARISON_KEEP_ABOVE, 90); },
     .theirs = [](Mats& m) { cv::threshold(m.a, m.to, 90, 0, cv::THRESH_TOZERO); }},
    {.operation = "multiply_constant",
     .kinds = SCALARS,
     .ours = [](Images& i) { return ZEL_Multiply(i.a, 0, i.to, 3); },
     .theirs = [](Mats& m) { cv::multiply(m.a, cv::Scalar(3), m.to); }},
    {.operation = "divide_constant",
     .kinds = SCALARS,
     .ours = [](Images& i) { return ZEL_Divide(i.a, 0, i.to, 3.7f); },
     .theirs = [](Mats& m) { cv::divide(m.a, cv::Scalar(3.7), m.to); }},
    {.operation = "modulo_constant",
     .kinds = INTEGERS,
     .ours = [](Images& i) { return ZEL_Modulo(i.a, 0, i.to, 37); },
     .peer = PLAIN_LOOP,
     .theirs = ModuloConstant},
    {.operation = "and_constant",
     .kinds = INTEGERS,
     .ours = [](Images& i) { return ZEL_And(i.a, 0, i.to, 0, 0x5A); },
     .theirs = [](Mats& m) { cv::bitwise_and(m.a, cv::Scalar(0x5A), m.to); }},
    {.operation = "or_constant",
     .kinds = INTEGERS,
     .ours = [](Images& i) { return ZEL_Or(i.a, 0, i.to, 0, 0x5A); },
     .theirs = [](Mats& m) { cv::bitwise_or(m.a, cv::Scalar(0x5A), m.to); }},
    {.operation = "xor_constant",
     .kinds = INTEGERS,
     .ours = [](Images& i) { return ZEL_Xor(i.a, 0, i.to, 0, 0x5A); },
     .theirs = [](Mats& m) { cv::bitwise_xor(m.a, cv::Scalar(0x5A), m.to); }},
};

const bench::Registration OPERATORS({"operators", "Operators", NOTES, PAIRS});

}  // namespace
