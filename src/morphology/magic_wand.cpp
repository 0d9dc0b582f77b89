// The region around a pixel: a fill that begins at a seed.
#include "core/numbers.h"
#include "engine/operands.h"
#include "morphology/bit_plane.h"
#include "morphology/flood.h"
#include "morphology/magic_wand_rows.h"
#include "morphology/whole_images.h"
#include "particles/runs_rows.h"

namespace zel {
namespace {

// The pixels of an image that lie in a range, found row by row where a fill comes by.
class OpenPixels {
 public:
  // STATUS_MEMORY_FULL.
  Status Start(const PixelView& view, const ValueRange& range);

  const uint64_t* Row(int32_t y);

 private:
  PixelView view_;
  ValueRange range_{};
  BitPlane bits_;
  WorkArray<uint8_t> isKnown_;  // by row
  WorkArray<uint8_t> flags_;    // by column
};

Status OpenPixels::Start(const PixelView& view, const ValueRange& range) {
  view_ = view;
  range_ = range;
  const bool hasMemory = bits_.Create(view.width, view.height, 0) &&
                         isKnown_.AllocateZeroed(static_cast<uint64_t>(view.height)) &&
                         flags_.AllocateZeroed((static_cast<uint64_t>(view.width) + 7) / 8 * 8);
  return hasMemory ? STATUS_OK : STATUS_MEMORY_FULL;
}

const uint64_t* OpenPixels::Row(int32_t y) {
  uint64_t* row = bits_.Row(y);
  uint8_t& isKnown = isKnown_[static_cast<size_t>(y)];
  if (isKnown != 0) return row;
  isKnown = 1;
  const MagicWandRows& rows = magicWandRows();
  const auto inRange = view_.type == IMAGE_U8    ? rows.inRangeU8
                       : view_.type == IMAGE_I16 ? rows.inRangeI16
                                                 : rows.inRangeSgl;
  inRange(view_.Row<void>(y), view_.width, range_, flags_.data());
  runRows().bitsU8(flags_.data(), view_.width, row);
  return row;
}

// The values around that of a pixel, in the pixels' own type.
ValueRange RangeAround(const PixelView& view, int32_t x, int32_t y, float tolerance) {
  const float value = view.type == IMAGE_U8    ? static_cast<float>(*view.At<uint8_t>(x, y))
                      : view.type == IMAGE_I16 ? static_cast<float>(*view.At<int16_t>(x, y))
                                               : *view.At<float>(x, y);
  ValueRange range{.low = value - tolerance, .high = value + tolerance, .lowest = 0, .highest = 0};
  if (view.type != IMAGE_SGL) {
    const IntegerLimits limits = LimitsOf(view.type);
    range.lowest = CutLimited(static_cast<double>(range.low), limits.low, limits.high);
    range.highest = CutLimited(static_cast<double>(range.high), limits.low, limits.high);
  }
  return range;
}

struct WandSeed {
  int32_t x, y;
  float tolerance;
};

Status MagicWand(ImageRef source, ImageRef destination, const WandSeed& seed, bool connectivity8,
                 float replaceValue) {
  Operands operands;
  operands.Source(source, &TypeIsScalar);
  operands.Destination(destination, IMAGE_U8, STATUS_BAD_TYPE);
  if (operands.HasFailed()) return operands.status();

  const PixelView from = operands.From();
  const auto value = CutLow<uint8_t>(static_cast<double>(replaceValue));
  // A marker of 0 holds the value already, and a tolerance below 0 or NaN includes nothing.
  const bool fills = !from.IsEmpty() && value != 0 && seed.tolerance >= 0.0f;
  const int32_t x = Clamped(seed.x, 0, from.width - 1);
  const int32_t y = Clamped(seed.y, 0, from.height - 1);
  OpenPixels open;
  Flood flood;
  if (fills) {
    const Status status = open.Start(from, RangeAround(from, x, y, seed.tolerance));
    if (status != STATUS_OK) return status;
    if (!flood.Create(from.width, from.height, connectivity8)) return STATUS_MEMORY_FULL;
    flood.StartFromPixel(x, y, open.Row(y));
    flood.Run([](void* pixels, int32_t row) { return static_cast<OpenPixels*>(pixels)->Row(row); },
              &open);
  }
  operands.WriteBeside(Operands::CANNOT_RUN_IN_PLACE);
  operands.TakeSize();
  operands.TakeInfo();
  if (operands.HasFailed()) return operands.status();

  const PixelView to = operands.To();
  if (fills) {
    flood.reached().Write(to, value);
  } else {
    PixelsClear(to);
  }
  operands.Written();
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_MagicWand(ImageRef source, ImageRef dest, int32_t x, int32_t y, float tolerance,
                      uint16_t connectivity8, float replaceValue) {
  return ZEL_ProcessError("ZEL_MagicWand", zel::MagicWand(source, dest, {x, y, tolerance},
                                                          connectivity8 != 0, replaceValue));
}
