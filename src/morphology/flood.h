// Floods: all pixels that are connected with some of them through open ones, in planes of bits.
#pragma once

#include <cstddef>
#include <cstdint>

#include "core/heap.h"
#include "morphology/bit_plane.h"

namespace zel {

// Where a flood gets a row of open pixels from when it first comes by: clear bits behind the last
// one, and one clear word before and behind them.
using OpenRow = const uint64_t* (*)(void* pixels, int32_t y);

// Words of a row are looked at when words around them have changed, so that all looks together are
// linear in the pixels. Each look sets whole runs. Like a lift the flood goes on down as long as
// rows wait there, and then up.
class Flood {
 public:
  // Nothing is reached yet. False when there is no memory.
  [[nodiscard]] bool Create(int32_t width, int32_t height, bool connectivity8);

  // A flood starts in one of these ways.
  // From the open pixels on the image's edge.
  void StartFromEdge(const BitPlane& open);
  // From a pixel, if it is open.
  void StartFromPixel(int32_t x, int32_t y, const uint64_t* open);
  // From the open pixels of a row that are set in another row of bits, too. Rows in rising order.
  void StartFromBits(int32_t y, const uint64_t* open, const uint64_t* bits);

  // Reaches all that is connected with what is reached.
  void Run(OpenRow openRow, void* pixels);
  void Run(BitPlane* open);

  const BitPlane& reached() const { return reached_; }
  // Clears in a plane of this size what is reached.
  void ReachedRemove(BitPlane* pixels) const;
  // All pixels that are not reached, in such a plane.
  void OthersTake(BitPlane* pixels) const;

 private:
  static constexpr int32_t NO_ROW = -1;

  int32_t NextRow();
  uint64_t GroupOf(int32_t word) const { return uint64_t{1} << (word >> groupShift_); }
  uint64_t GroupsAround(uint64_t groups) const;
  bool WordEnter(uint64_t* row, const uint64_t* open, int32_t word, uint64_t entered,
                 uint64_t* changed) const;
  uint64_t RowGrow(int32_t y, const uint64_t* open);
  void RowStart(int32_t y, uint64_t changed);
  void NeighboursWait(int32_t y, uint64_t changed);
  void Wait(int32_t y, uint64_t groups, bool isAbove);

  BitPlane reached_;
  WorkArray<uint64_t> toLookAt_;  // by row: a bit for each group of words
  // Rows that wait: those above where the flood is from the array's start on, those below from its
  // end on. The last one of each is the nearest.
  WorkArray<int32_t> waiting_;
  size_t rows_ = 0;
  size_t above_ = 0;  // how many these are
  size_t below_ = 0;
  bool goesDown_ = true;
  int32_t lastWord_ = 0;
  int32_t groupShift_ = 0;  // groups have so many words that at most 64 make a row
  uint64_t corners_ = 0;    // all bits set where pixels touch by corners, too
};

// The set pixels of a U8 image, or the clear ones. False when there is no memory.
[[nodiscard]] bool SetPixelsTake(const PixelView& view, BitPlane* plane);
[[nodiscard]] bool ClearPixelsTake(const PixelView& view, BitPlane* plane);

}  // namespace zel
