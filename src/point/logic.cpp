// Bitwise operators on whole pixels.
#include "point/logic_rows.h"
#include "point/operators.h"

namespace zel {
namespace {

// One bitwise operation: its routine for two images, and what it does with a constant.
struct BitOperation {
  PointRoutine<NoRule> LogicRows::*images;
  BitConstant (*withConstant)(uint32_t constant);
};

constexpr uint32_t ALL_BITS = 0xFFFFFFFF;

constexpr BitOperation AND = {&LogicRows::bitAnd,
                              [](uint32_t c) { return BitConstant{.keep = c, .flip = 0}; }};
constexpr BitOperation NOT_AND = {
    &LogicRows::notAnd, [](uint32_t c) { return BitConstant{.keep = c, .flip = ALL_BITS}; }};
constexpr BitOperation OR = {&LogicRows::bitOr,
                             [](uint32_t c) { return BitConstant{.keep = ~c, .flip = c}; }};
constexpr BitOperation NOT_OR = {&LogicRows::notOr,
                                 [](uint32_t c) { return BitConstant{.keep = ~c, .flip = ~c}; }};
constexpr BitOperation XOR = {&LogicRows::bitXor,
                              [](uint32_t c) { return BitConstant{.keep = ALL_BITS, .flip = c}; }};
constexpr BitOperation NOT_XOR = {
    &LogicRows::notXor, [](uint32_t c) { return BitConstant{.keep = ALL_BITS, .flip = ~c}; }};
constexpr BitOperation DIFFERENCE = {&LogicRows::difference,
                                     [](uint32_t c) { return BitConstant{.keep = ~c, .flip = 0}; }};

PixelView AsBytes(const PixelView& view) {
  PixelView bytes = view;
  bytes.width *= view.pixelBytes;
  bytes.pixelBytes = 1;
  return bytes;
}

Status CombineBits(const BitOperation& operation, ImageRef first, ImageRef second,
                   ImageRef destination, uint32_t constant) {
  OperatorOperands operands;
  const Status status = BitOperandsSettle(first, second, destination, &operands);
  if (status != STATUS_OK || operands.isDone) return status;

  const LogicRows& rows = logicRows();
  const PointViews& views = operands.views;
  if (operands.hasSecond) {
    const PointViews bytes = {.first = AsBytes(views.first),
                              .second = AsBytes(views.second),
                              .result = AsBytes(views.result),
                              .mask = {}};
    PointWalk(bytes, rows.*operation.images, NoRule());
  } else {
    PointWalk(views, rows.keepAndFlip[PixelWidthOf(views.first)], operation.withConstant(constant));
  }
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_And(ImageRef first, ImageRef second, ImageRef destination, int16_t invert,
                uint32_t constant) {
  return ZEL_ProcessError("ZEL_And", zel::CombineBits(invert != 0 ? zel::NOT_AND : zel::AND, first,
                                                      second, destination, constant));
}

int32_t ZEL_Or(ImageRef first, ImageRef second, ImageRef destination, int16_t invert,
               uint32_t constant) {
  return ZEL_ProcessError("ZEL_Or", zel::CombineBits(invert != 0 ? zel::NOT_OR : zel::OR, first,
                                                     second, destination, constant));
}

int32_t ZEL_Xor(ImageRef first, ImageRef second, ImageRef destination, int16_t invert,
                uint32_t constant) {
  return ZEL_ProcessError("ZEL_Xor", zel::CombineBits(invert != 0 ? zel::NOT_XOR : zel::XOR, first,
                                                      second, destination, constant));
}

int32_t ZEL_LogDiff(ImageRef first, ImageRef second, ImageRef destination, uint32_t constant) {
  return ZEL_ProcessError("ZEL_LogDiff",
                          zel::CombineBits(zel::DIFFERENCE, first, second, destination, constant));
}
