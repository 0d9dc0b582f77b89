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
  bool IsRectangle() const;
  void StepByRows();
  void AlongRow(int32_t y, uint64_t* to);
  void StepByMembers();
  const uint64_t* Window(const uint64_t* from, int32_t length);
  int32_t Clip(int64_t y) const;

  ElementShape shape_;
  bool looksAtPixel_ = false;     // also where it is no member
  bool isRectangle_ = false;      // eroded along rows first, then along columns
  BitPlane planes_[3];            // the third only where steps can go back to what was before
  BitPlane ring_;                 // rows eroded along rows, as many as the element has
  int32_t turns_[3] = {0, 1, 2};  // the planes of now, before one step, before two steps
  int32_t steps_ = 0;             // not counted beyond two
  WorkArray<uint64_t> windows_;
  int64_t windowWords_ = 0;
  WorkArray<ShiftedRow> shifted_;
};

}  // namespace zel
