// Straight lines over the pixels of an image: clipped to it and walked point by point.
#pragma once

#include <cstdint>

#include "core/handles.h"
#include "core/rectangles.h"
#include "core/views.h"

namespace zel {

struct LinePoint {
  int32_t x, y;
};

// Clips a line in place to the pixels of an image, by exact integers truncated at each edge:
// left, right, top, bottom in this order. `visible` is 1, or 0 with the line left as it is.
// STATUS_BAD_IMAGE.
Status LineClip(ImageRef reference, KernelLine* line, uint16_t* visible);
// The same for an image of this size. True when something is visible.
bool LineClipToSize(int32_t width, int32_t height, KernelLine* line);
// The same for ends that no 32 bits hold, up to 2^60.
struct WideLine {
  int64_t startX, startY, endX, endY;
};
bool LineClipToSize(int32_t width, int32_t height, const WideLine& line, KernelLine* clipped);

// The steps from point to point of a line, both ends included. Along the longer axis (x where both
// are equal) each step goes on by one; a step along the other one is taken on a tie too, so that a
// line and its reverse can differ.
class LineSteps {
 public:
  explicit LineSteps(const KernelLine& line);
  int64_t points() const { return points_; }
  LinePoint straight() const { return straight_; }
  LinePoint diagonal() const { return diagonal_; }
  LinePoint Next() { return NextStraight() != 0 ? straight_ : diagonal_; }
  // All bits set for a step along the longer axis alone, else 0: which it is can hardly be
  // foreseen, so that callers do best without a branch.
  int64_t NextStraight() {
    const int64_t straight = error_ >> 63;  // the sign
    error_ = (error_ + onBoth_) + (straight & lessOnMinor_);
    return straight;
  }
  // Takes so many steps at once, before the first Next, of a line whose coordinates are not
  // negative. Answers where they lead, seen from the start.
  LinePoint Skip(int64_t steps);

 private:
  int64_t points_;
  int64_t error_;
  int64_t onMajor_, onBoth_, lessOnMinor_;  // changes of the error
  LinePoint straight_, diagonal_;
};

// The pixels of a line that lies in an image, one after the other.
template <class T>
class LinePixels {
 public:
  // With a copy of the steps, of which the compiler knows that no pixel lies in them.
  LinePixels(const PixelView& view, const KernelLine& line)
      : LinePixels(view, line, LineSteps(line)) {}

  int64_t count() const { return steps_.points(); }
  T* Take() {
    auto* pixel = reinterpret_cast<T*>(next_);
    next_ += diagonal_ + (back_ & steps_.NextStraight());
    return pixel;
  }

 private:
  LinePixels(const PixelView& view, const KernelLine& line, const LineSteps& steps)
      : steps_(steps),
        next_(reinterpret_cast<uint8_t*>(view.At<T>(line.startX, line.startY))),
        diagonal_(OffsetOf(steps_.diagonal(), view.pitch)),
        back_(OffsetOf(steps_.straight(), view.pitch) - diagonal_) {}

  static int64_t OffsetOf(const LinePoint& step, int64_t pitch) {
    return step.x * static_cast<int64_t>(sizeof(T)) + step.y * pitch;
  }

  LineSteps steps_;
  uint8_t* next_;
  int64_t diagonal_, back_;  // bytes to the next pixel, and from there after a straight step
};

// Fills a vector with the points of a line, one LinePoint each; with `relative` with the steps from
// the point before, the first one 0, 0. STATUS_MEMORY_FULL.
Status LineWalk(const KernelLine& line, bool relative, Handle vector, int32_t* count);

}  // namespace zel
