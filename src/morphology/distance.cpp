// Distances counted in erosions.
#include <algorithm>

#include "engine/bit_rows.h"
#include "engine/operands.h"
#include "morphology/erosion.h"
#include "morphology/structuring_element.h"

namespace zel {
namespace {

constexpr int32_t MOST_COUNTED = 255;

// A pixel of the image in raster order.
struct Place {
  int32_t x, y;
  bool operator==(const Place&) const = default;
};

// The first set pixel from a place on.
bool Search(const BitPlane& plane, Place* place) {
  for (; place->y < plane.height(); *place = {0, place->y + 1}) {
    const uint64_t* row = plane.Row(place->y);
    while (place->x < plane.width()) {
      const uint64_t bits = row[place->x / 64] >> (place->x % 64);
      if (bits == 0) {
        place->x = (place->x / 64 + 1) * 64;
        continue;
      }
      place->x += __builtin_ctzll(bits);
      if (place->x < plane.width()) return true;
    }
  }
  return false;
}

void StoreAll(const BitPlane& plane, const PixelView& to) {
  for (int32_t y = 0; y < to.height; y++) {
    bitRows().store(to.Row<uint8_t>(y), plane.Row(y), to.width, MOST_COUNTED);
  }
}

void CountAll(const BitPlane& plane, const PixelView& to) {
  for (int32_t y = 0; y < to.height; y++) {
    bitRows().count(to.Row<uint8_t>(y), plane.Row(y), to.width);
  }
}

// Stores how many steps they have survived in the pixels that the last one took away.
void StoreLost(const Erosion& erosion, int32_t steps, uint64_t* lost, const PixelView& to) {
  const int32_t words = erosion.Left().usedWords();
  for (int32_t y = 0; y < to.height; y++) {
    const uint64_t* before = erosion.LeftBefore().Row(y);
    const uint64_t* after = erosion.Left().Row(y);
    uint64_t any = 0;
    for (int32_t i = 0; i < words; i++) any |= lost[i] = before[i] & ~after[i];
    if (any == 0) continue;
    bitRows().store(to.Row<uint8_t>(y), lost, to.width, static_cast<uint8_t>(steps));
  }
}

// Each step leaves a part of what was there, so that each pixel is stored once.
void CountShrinking(Erosion* erosion, uint64_t* lost, const PixelView& to) {
  Place place{0, 0};
  for (int32_t steps = 1; Search(erosion->Left(), &place); steps++) {
    erosion->Step();
    if (steps == MOST_COUNTED || erosion->IsLikeBefore(1)) {
      StoreAll(erosion->LeftBefore(), to);
      return;
    }
    StoreLost(*erosion, steps, lost, to);
  }
}

// Steps can set pixels too. They end when none is found from where the last one was, so that one
// that comes up before is not seen; where they would go on for ever, what is set now or was before
// the last step is counted without end.
void CountChanging(Erosion* erosion, const PixelView& to) {
  Place place{0, 0};
  Place before = place;
  Place beforeThat = place;
  const int64_t most = 8 * (int64_t{to.width} + to.height) + 512;
  for (int64_t steps = 0; steps < most; steps++) {
    CountAll(erosion->Left(), to);
    erosion->Step();
    beforeThat = before;
    before = place;
    if (!Search(erosion->Left(), &place)) return;
    if ((place == before && erosion->IsLikeBefore(1)) ||
        (place == beforeThat && erosion->IsLikeBefore(2))) {
      StoreAll(erosion->Left(), to);
      StoreAll(erosion->LeftBefore(), to);
      return;
    }
  }
}

Status Distance(ImageRef source, ImageRef destination, const StructuringElement* element) {
  Operands operands;
  bool isDone = false;
  Status status = ErosionSettle(source, destination, element, &operands, &isDone);
  if (status != STATUS_OK || isDone) return status;

  Erosion erosion;
  WorkArray<uint64_t> lost;
  status = erosion.Start(operands.From(), *element);
  if (status != STATUS_OK) return status;
  if (!lost.Allocate(static_cast<uint64_t>(erosion.Left().usedWords()))) return STATUS_MEMORY_FULL;
  operands.TakeSize();
  operands.TakeInfo();
  if (operands.HasFailed()) return operands.status();
  ImageClearAll(destination != 0 ? destination : source);
  if (erosion.Shrinks()) {
    CountShrinking(&erosion, lost.data(), operands.To());
  } else {
    CountChanging(&erosion, operands.To());
  }
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_Distance(ImageRef source, ImageRef dest, const StructuringElement* element) {
  return ZEL_ProcessError("ZEL_Distance", zel::Distance(source, dest, element));
}
