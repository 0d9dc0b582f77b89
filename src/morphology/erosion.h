// Erosions of a binary image, one after the other.
#pragma once

#include <cstdint>

#include "core/status.h"
#include "engine/operands.h"
#include "morphology/bit_plane.h"
#include "morphology/element_shape.h"
#include "morphology/erosion_rows.h"

namespace zel {

// The images of an operation by erosions, of bytes and with a border for the element. An element
// that is no neighbourhood leaves nothing to erode: the source is copied, and that is all (isDone).
// STATUS_NULL_POINTER, STATUS_BORDER_TOO_SMALL, and what operands give.
Status ErosionSettle(ImageRef source, ImageRef destination, const StructuringElement* element,
                     Operands* operands, bool* isDone);

// What is left of an image as erosion goes on: the pixels around which all members of the element
// are set. Beyond the image its edge pixels continue.
class Erosion {
 public:
  // Of the non-zero pixels of a U8 image, with an element that is a neighbourhood.
  // STATUS_MEMORY_FULL.
  Status Start(const PixelView& view, const StructuringElement& element);

  // One erosion.
  void Step();
  // So many, at least one. Those that change nothing any more, or only between two images, are not
  // all run.
  void Run(int32_t count);

  // Bits beyond the image are undefined.
  const BitPlane& Left() const { return planes_[turns_[0]]; }
  const BitPlane& LeftBefore() const { return planes_[turns_[1]]; }  // the last step
  // Whether as much was left before the last step, or before the last two.
  bool IsLikeBefore(int32_t steps) const;
  // Whether each step leaves a part of what was there.
  bool Shrinks() const { return looksAtPixel_ || shape_.hasCentre(); }

 private:
  struct Block {
    int32_t begin, end;  // rows
  };

  bool IsRectangle() const;
  template <class Work>
  void EachBlock(const Work& work) const;
  int32_t WordsOf(const Block& block) const;
  bool IsClear(const Block& block) const;
  void Clear(const Block& block, BitPlane* plane) const;
  void AlongRows(const Block& block);
  void AcrossRows(const Block& block, BitPlane* to);
  void ByMembers(const Block& block, BitPlane* to);
  const uint64_t* Window(const Block& block, int32_t row, int32_t length);

  ElementShape shape_;
  bool looksAtPixel_ = false;     // also where it is no member
  bool isRectangle_ = false;      // eroded along rows first, then along columns
  BitPlane planes_[3];            // the third only where steps can go back to what was before
  BitPlane alongRows_;            // of a rectangle: what the first half of a step leaves
  int32_t turns_[3] = {0, 1, 2};  // the planes of now, before one step, before two steps
  int32_t steps_ = 0;             // not counted beyond two
  int32_t blockRows_ = 1;
  WorkArray<uint64_t> windows_;  // two for a block
  int64_t windowWords_ = 0;
  WorkArray<ShiftedRow> shifted_;
};

}  // namespace zel
