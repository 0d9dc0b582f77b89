// Segmentation: zones of labels, grown by one pixel in each pass.
#include "morphology/zones.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "engine/operands.h"
#include "morphology/bit_pass_rows.h"
#include "morphology/bit_plane.h"
#include "particles/runs_rows.h"

namespace zel {
namespace {

// The neighbours of a pixel in raster order: their rows from the one above on, and their columns
// beside the pixel's.
constexpr uint32_t NEIGHBOURS = 8;
constexpr int32_t ROW_OF[NEIGHBOURS] = {0, 0, 0, 1, 1, 2, 2, 2};
constexpr int32_t COLUMN_OF[NEIGHBOURS] = {-1, 0, 1, -1, 1, -1, 0, 1};

// Bits of the labelled pixels say where a pass finds something to do.
class ZoneGrowth {
 public:
  bool Create(const PixelView& view);
  // True when something was set.
  bool Pass();

 private:
  // Rows of the state before the pass, with the neighbours of their first and last pixel beyond.
  struct Rows {
    const uint64_t* bits[3];  // above, the row itself, below
    int32_t numbers[3];
  };

  void RowMarginsSet(uint64_t* bits) const;
  bool RowGrow(int32_t y, const Rows& rows, uint64_t* bits);
  template <class T>
  void WordGrow(int32_t y, const Rows& rows, int32_t word, uint64_t open);
  int32_t ColumnOf(int32_t x) const;

  PixelView view_;
  BitPlane labelled_;
  WorkArray<uint64_t> growing_;  // pixels of a row that the pass sets
  WorkArray<uint64_t> before_;   // two rows as they were before the pass
  WorkArray<uint8_t> changed_;   // whether the pass before has set something in a row
};

bool ZoneGrowth::Create(const PixelView& view) {
  view_ = view;
  if (!labelled_.Create(view.width, view.height, 1) ||
      !growing_.Allocate(static_cast<uint64_t>(labelled_.words())) ||
      !before_.Allocate(2 * static_cast<uint64_t>(labelled_.pitch())) ||
      !changed_.Allocate(2 * static_cast<uint64_t>(view.height))) {
    return false;
  }
  const auto bitsOfRow = view.type == IMAGE_U8 ? runRows().bitsU8 : runRows().bitsI16;
  for (int32_t y = 0; y < view.height; y++) {
    bitsOfRow(view.Row<void>(y), view.width, labelled_.Row(y));
    RowMarginsSet(labelled_.Row(y));
  }
  std::fill_n(changed_.data(), 2 * static_cast<size_t>(view.height), uint8_t{1});
  return true;
}

// Beyond the image a row goes on with the neighbour of its edge pixel.
int32_t ZoneGrowth::ColumnOf(int32_t x) const {
  if (x < 0) return std::min(1, view_.width - 1);
  return x < view_.width ? x : std::max(view_.width - 2, 0);
}

void ZoneGrowth::RowMarginsSet(uint64_t* bits) const {
  const auto bitAt = [bits](int32_t x) { return bits[x / 64] >> (x % 64) & 1; };
  bits[-1] = bitAt(ColumnOf(-1)) << 63;
  const uint64_t last = bitAt(ColumnOf(view_.width));
  uint64_t& word = bits[view_.width / 64];
  const uint64_t beyond = uint64_t{1} << (view_.width % 64);
  word = last != 0 ? word | beyond : word & ~beyond;
}

// The neighbours in raster order: the first that has a label gives it. Three words keep the number
// of that neighbour for all pixels of a word, so that each pixel is one copy without a search.
template <class T>
void ZoneGrowth::WordGrow(int32_t y, const Rows& rows, int32_t word, uint64_t open) {
  uint64_t numbers[3] = {};
  uint64_t left = open;
  for (uint32_t i = 0; i < NEIGHBOURS; i++) {
    const uint64_t* bits = rows.bits[ROW_OF[i]] + word;
    const int32_t step = COLUMN_OF[i];
    const uint64_t neighbours = step < 0   ? bits[0] << 1 | bits[-1] >> 63
                                : step > 0 ? bits[0] >> 1 | bits[1] << 63
                                           : bits[0];
    const uint64_t found = left & neighbours;
    left ^= found;
    for (uint32_t bit = 0; bit < 3; bit++) {
      if ((i >> bit & 1) != 0) numbers[bit] |= found;
    }
  }
  const T* from[3];
  for (int32_t row = 0; row < 3; row++) from[row] = view_.Row<T>(rows.numbers[row]);
  T* to = view_.Row<T>(y);
  for (; open != 0; open &= open - 1) {
    const int32_t bit = std::countr_zero(open);
    const uint64_t i =
        (numbers[0] >> bit & 1) | (numbers[1] >> bit & 1) << 1 | (numbers[2] >> bit & 1) << 2;
    const int32_t x = 64 * word + bit;
    to[x] = from[ROW_OF[i]][ColumnOf(x + COLUMN_OF[i])];
  }
}

bool ZoneGrowth::RowGrow(int32_t y, const Rows& rows, uint64_t* bits) {
  uint64_t* growing = growing_.data();
  bitPassRows().rim(growing, {rows.bits[0], rows.bits[1], rows.bits[2]}, labelled_.words());
  const int32_t last = (view_.width - 1) / 64;
  growing[last] &= ~uint64_t{0} >> (63 - (view_.width - 1) % 64);
  bool any = false;
  for (int32_t word = 0; word <= last; word++) {
    if (growing[word] == 0) continue;
    if (view_.type == IMAGE_U8) {
      WordGrow<uint8_t>(y, rows, word, growing[word]);
    } else {
      WordGrow<uint16_t>(y, rows, word, growing[word]);
    }
    bits[word] |= growing[word];
    any = true;
  }
  return any;
}

bool ZoneGrowth::Pass() {
  const int32_t last = view_.height - 1;
  const auto pitch = static_cast<size_t>(labelled_.pitch());
  const int32_t margin = labelled_.marginWords();
  uint64_t* self = before_.data();
  uint64_t* other = self + pitch;
  const uint64_t* above = nullptr;  // as it was before the pass
  uint8_t* changing = changed_.data();
  const uint8_t* changed = changing + view_.height;
  bool any = false;
  for (int32_t y = 0; y <= last; y++) {
    uint64_t* bits = labelled_.Row(y);
    const int32_t below = std::min(y + 1, last);
    const bool isLive = (changed[std::max(y - 1, 0)] | changed[y] | changed[below]) != 0;
    changing[y] = 0;
    const uint64_t* before = bits;
    if (isLive) {
      std::memcpy(self, bits - margin, pitch * sizeof(uint64_t));
      before = self + margin;
      const uint64_t* belowBits = below == y ? before : labelled_.Row(below);
      const Rows rows{{y == 0 ? before : above, before, belowBits}, {std::max(y - 1, 0), y, below}};
      changing[y] = RowGrow(y, rows, bits);
      if (changing[y] != 0) RowMarginsSet(bits);
      any |= changing[y] != 0;
      std::swap(self, other);
    }
    above = before;
  }
  std::memcpy(changing + view_.height, changing, static_cast<size_t>(view_.height));
  return any;
}

}  // namespace

Status ZonesGrow(const PixelView& view) {
  if (view.IsEmpty()) return STATUS_OK;
  ZoneGrowth growth;
  if (!growth.Create(view)) return STATUS_MEMORY_FULL;
  while (growth.Pass()) {
  }
  return STATUS_OK;
}

namespace {

Status Segmentation(ImageRef source, ImageRef destination) {
  Operands operands;
  operands.Source(source, &TypeIsInteger);
  if (operands.HasFailed()) return operands.status();
  if (operands.source().border < 1) return STATUS_BORDER_TOO_SMALL;
  operands.Destination(destination);
  operands.TakeSize();
  operands.Border(BORDER_REPLICATE, 1);
  if (operands.destination() != &operands.source()) operands.TakePixels();
  Status status = operands.status();
  if (status == STATUS_OK) status = ZonesGrow(operands.To());
  if (status != STATUS_OK) return status;
  operands.TakeInfo();
  return operands.status();
}

}  // namespace
}  // namespace zel

int32_t ZEL_Segmentation(ImageRef source, ImageRef dest) {
  return ZEL_ProcessError("ZEL_Segmentation", zel::Segmentation(source, dest));
}
