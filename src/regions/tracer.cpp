// Outlines of masks, followed on planes of one bit a pixel.
#include "regions/tracer.h"

#include <algorithm>
#include <bit>

#include "core/images.h"
#include "core/numbers.h"
#include "morphology/bit_plane.h"
#include "morphology/flood.h"
#include "regions/descriptors.h"
#include "regions/flat_builder.h"

namespace zel {
namespace {

// ---- the flat form, and the rectangle around its points

class OutlineList {
 public:
  OutlineList(Handle vector, int64_t limit) : pairs_(vector, limit) {}

  bool IsFull() const { return pairs_.IsFull(); }
  // Each is dropped at the limit. STATUS_MEMORY_FULL.
  Status AppendMarker(int32_t marker, int32_t type) { return pairs_.Append(marker, type); }
  Status AppendVertex(PointInt point) {
    // One that could be taken for a marker is not looked at.
    if (!IsFull() && point.x >= 0) {
      rect_.left = std::min(rect_.left, point.x);
      rect_.top = std::min(rect_.top, point.y);
      rect_.right = std::max(rect_.right, point.x);
      rect_.bottom = std::max(rect_.bottom, point.y);
    }
    return pairs_.Append(point.x, point.y);
  }
  Status Finish() {
    return pairs_.Finish(
        {rect_.left, rect_.top, SumWrapped(rect_.right, 1), SumWrapped(rect_.bottom, 1)});
  }

 private:
  FlatBuilder pairs_;
  KernelRect rect_{32000, 32000, 0, 0};
};

// ---- planes

// Of set pixels those that have a clear one above, below or beside them. Around the image all is
// clear.
void EdgesTake(const BitPlane& plane, BitPlane* edges) {
  for (int32_t y = 0; y < plane.height(); y++) {
    const uint64_t* row = plane.Row(y);
    const uint64_t* above = plane.Row(y - 1);
    const uint64_t* below = plane.Row(y + 1);
    uint64_t* to = edges->Row(y);
    for (int32_t i = 0; i < plane.words(); i++) {
      const uint64_t left = row[i] << 1 | row[i - 1] >> 63;
      const uint64_t right = row[i] >> 1 | row[i + 1] << 63;
      to[i] = row[i] & ~(left & right & above[i] & below[i]);
    }
  }
}

// ---- outlines

// Directions clockwise from up-left.
constexpr PointInt STEPS[8] = {{-1, -1}, {0, -1}, {1, -1}, {1, 0},
                               {1, 1},   {0, 1},  {-1, 1}, {-1, 0}};

class Tracer {
 public:
  Tracer(BitPlane* edges, OutlineList* outlines, PointInt offset)
      : edges_(edges), outlines_(outlines), offset_(offset) {}

  Status TraceAll(int32_t marker);

 private:
  Status Trace(PointInt at, int32_t marker);
  uint32_t Neighbours(PointInt at) const;
  uint32_t ThreeBits(const uint64_t* row, int32_t x) const;
  Status AppendVertex(PointInt at);

  BitPlane* edges_;
  OutlineList* outlines_;
  PointInt offset_;
};

// Pixels x - 1 to x + 1 of a row, from the lowest bit on.
uint32_t Tracer::ThreeBits(const uint64_t* row, int32_t x) const {
  const int32_t first = x + 63;  // of x - 1, from the word before the row on
  const uint64_t* words = row - 1 + first / 64;
  const int32_t shift = first % 64;
  return static_cast<uint32_t>(words[0] >> shift | words[1] << 1 << (63 - shift)) & 7;
}

// Which of the eight directions lead to a set pixel.
uint32_t Tracer::Neighbours(PointInt at) const {
  const uint32_t above = ThreeBits(edges_->Row(at.y - 1), at.x);
  const uint32_t beside = ThreeBits(edges_->Row(at.y), at.x);
  const uint32_t below = ThreeBits(edges_->Row(at.y + 1), at.x);
  return above | (beside & 4) << 1 | (below & 4) << 2 | (below & 2) << 4 | (below & 1) << 6 |
         (beside & 1) << 7;
}

Status Tracer::AppendVertex(PointInt at) {
  return outlines_->AppendVertex({SumWrapped(at.x, offset_.x), SumWrapped(at.y, offset_.y)});
}

// Follows set pixels from one to the next, as far to the left as they go on, and clears them. Only
// where the direction changes is there a vertex.
Status Tracer::Trace(PointInt at, int32_t marker) {
  constexpr int32_t none = -5;  // odd: a contour begins to the right or below
  int32_t previous = none;
  while (true) {
    edges_->Row(at.y)[at.x / 64] &= ~(uint64_t{1} << at.x % 64);
    const bool isOdd = (previous & 1) != 0;
    const int32_t first = (previous - (isOdd ? 1 : 2)) & 7;
    const uint32_t all = Neighbours(at);
    const uint32_t tried = (all | all << 8) >> first & (isOdd ? 31 : 63);
    if (tried == 0) break;
    const int32_t direction = (first + std::countr_zero(tried)) & 7;
    if (direction != previous) {
      Status status = previous == none ? outlines_->AppendMarker(marker, ROI_POLYGON) : STATUS_OK;
      if (status == STATUS_OK) status = AppendVertex(at);
      if (status != STATUS_OK) return status;
      previous = direction;
    }
    at = {at.x + STEPS[direction].x, at.y + STEPS[direction].y};
  }
  const Status status = previous == none ? outlines_->AppendMarker(marker, ROI_POINT) : STATUS_OK;
  return status != STATUS_OK ? status : AppendVertex(at);
}

Status Tracer::TraceAll(int32_t marker) {
  for (int32_t y = 0; y < edges_->height(); y++) {
    const uint64_t* row = edges_->Row(y);
    for (int32_t i = 0; i < edges_->words(); i++) {
      while (row[i] != 0) {
        if (outlines_->IsFull()) return STATUS_OK;  // all that follows is dropped
        const Status status = Trace({64 * i + std::countr_zero(row[i]), y}, marker);
        if (status != STATUS_OK) return status;
      }
    }
  }
  return STATUS_OK;
}

Status OutlinesAppend(const PixelView& view, PointInt offset, bool externalOnly,
                      OutlineList* outlines) {
  BitPlane holes;
  BitPlane filled;
  BitPlane edges;
  Flood outside;
  if (!ClearPixelsTake(view, &holes) || !outside.Create(view.width, view.height, false) ||
      !filled.Create(view.width, view.height, 1) || !edges.Create(view.width, view.height, 1)) {
    return STATUS_MEMORY_FULL;
  }
  // Background that does not reach the image's edge, side by side, is a hole.
  outside.StartFromEdge(holes);
  outside.Run(&holes);
  outside.ReachedRemove(&holes);
  outside.OthersTake(&filled);
  Tracer tracer(&edges, outlines, offset);
  EdgesTake(filled, &edges);
  const Status status = tracer.TraceAll(ROI_MARKER_EXTERNAL);
  if (status != STATUS_OK || externalOnly) return status;
  EdgesTake(holes, &edges);
  return tracer.TraceAll(ROI_MARKER_INTERNAL);
}

}  // namespace

Status RoiFromMask(ImageRef reference, int32_t maxPoints, bool externalOnly, Handle vector,
                   bool* limitReached) {
  Image* mask = nullptr;
  Status status = ImageLookup(reference, &mask);
  if (status != STATUS_OK) return status;
  if (mask->type != IMAGE_U8) return STATUS_BAD_TYPE;
  const PixelView view = ViewOf(*mask);
  OutlineList outlines(vector, std::max<int64_t>(maxPoints, FlatBuilder::RECT_PAIRS));
  if (!view.IsEmpty()) {
    status = OutlinesAppend(view, {mask->offsetX, mask->offsetY}, externalOnly, &outlines);
  }
  if (status == STATUS_OK) status = outlines.Finish();
  if (status == STATUS_OK) *limitReached = outlines.IsFull();
  return status;
}

}  // namespace zel

int32_t ZEL_MaskToROI(ImageRef mask, uint16_t externalOnly, int32_t maxPoints, RoiDescriptor** roi,
                      int32_t* limitReached) {
  if (!roi) return ZEL_ProcessError("ZEL_MaskToROI", zel::STATUS_NULL_POINTER);
  zel::ScopedVector vector;
  zel::Status status = vector.Create();
  bool isFull = false;
  if (status == zel::STATUS_OK) {
    status = zel::RoiFromMask(mask, maxPoints, externalOnly != 0, vector.handle(), &isFull);
  }
  if (status == zel::STATUS_OK) status = zel::RoiReplaceFromVector(vector.handle(), roi);
  if (status == zel::STATUS_OK && limitReached) *limitReached = isFull ? 1 : 0;
  return ZEL_ProcessError("ZEL_MaskToROI", status);
}
