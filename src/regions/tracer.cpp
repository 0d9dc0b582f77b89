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
  Status AppendVertex(PointInt point, bool isKept) {
    return pairs_.Append(point.x, point.y, isKept);
  }
  Status Finish();

 private:
  FlatBuilder pairs_;
};

Status OutlineList::Finish() {
  KernelRect rect{32000, 32000, 0, 0};
  for (int64_t i = FlatBuilder::RECT_PAIRS; i < pairs_.count(); i++) {
    const PointInt point = pairs_[i];
    // Markers, and what could be taken for one, are not looked at.
    if (point.x < 0) continue;
    rect.left = std::min(rect.left, point.x);
    rect.top = std::min(rect.top, point.y);
    rect.right = std::max(rect.right, point.x);
    rect.bottom = std::max(rect.bottom, point.y);
  }
  return pairs_.Finish(
      {rect.left, rect.top, SumWrapped(rect.right, 1), SumWrapped(rect.bottom, 1)});
}

// ---- planes

// Of set pixels those that have a clear one above, below or beside them. Around the image all is
// clear.
void EdgesTake(const BitPlane& plane, BitPlane* edges) {
  for (int32_t y = 0; y < plane.height(); y++) {
    const uint64_t* row = plane.Row(y);
    const uint64_t* above = plane.Row(y - 1);
    const uint64_t* below = plane.Row(y + 1);
    uint64_t* to = edges->Row(y);
    for (int32_t i = 0; i < plane.usedWords(); i++) {
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
  Status AppendVertex(PointInt at, bool isKept);
  void Clear(PointInt at) { edges_->Row(at.y)[at.x / 64] &= ~(uint64_t{1} << at.x % 64); }

  BitPlane* edges_;
  OutlineList* outlines_;
  PointInt offset_;
};

// Three pixels of a row, from the lowest bit on. The first is bit `shift` of a word.
uint32_t ThreeBits(const uint64_t* words, uint32_t shift) {
  return static_cast<uint32_t>(words[0] >> shift | words[1] << 1 << (63 - shift)) & 7;
}

// Which of the eight directions lead to a set pixel.
uint32_t Neighbours(const BitPlane& plane, PointInt at) {
  const auto first = static_cast<uint32_t>(at.x) + 63;  // from the word before the row on
  const uint64_t* row = plane.Row(at.y) - 1 + first / 64;
  const uint32_t above = ThreeBits(row - plane.pitch(), first % 64);
  const uint32_t beside = ThreeBits(row, first % 64);
  const uint32_t below = ThreeBits(row + plane.pitch(), first % 64);
  return above | (beside & 4) << 1 | (below & 4) << 2 | (below & 2) << 4 | (below & 1) << 6 |
         (beside & 1) << 7;
}

Status Tracer::AppendVertex(PointInt at, bool isKept) {
  return outlines_->AppendVertex({SumWrapped(at.x, offset_.x), SumWrapped(at.y, offset_.y)},
                                 isKept);
}

constexpr int32_t NO_WAY = -1;
constexpr int32_t NO_DIRECTION = -5;  // odd: a contour begins to the right or below

// As far to the left as set pixels go on.
int32_t NextDirection(const BitPlane& plane, PointInt at, int32_t previous) {
  const bool isOdd = (previous & 1) != 0;
  const int32_t first = (previous - (isOdd ? 1 : 2)) & 7;
  const uint32_t all = Neighbours(plane, at);
  const uint32_t tried = (all | all << 8) >> first & (isOdd ? 31 : 63);
  return tried == 0 ? NO_WAY : (first + std::countr_zero(tried)) & 7;
}

// Follows set pixels from one to the next and clears them. Only where the direction changes is
// there a vertex; as that is a matter of chance, all pixels are stored, and those kept.
Status Tracer::Trace(PointInt at, int32_t marker) {
  int32_t previous = NO_DIRECTION;
  int32_t direction = NextDirection(*edges_, at, previous);
  Status status = outlines_->AppendMarker(marker, direction == NO_WAY ? ROI_POINT : ROI_POLYGON);
  while (status == STATUS_OK && direction != NO_WAY) {
    status = AppendVertex(at, direction != previous);
    Clear(at);
    previous = direction;
    at = {at.x + STEPS[direction].x, at.y + STEPS[direction].y};
    direction = NextDirection(*edges_, at, previous);
  }
  Clear(at);
  return status != STATUS_OK ? status : AppendVertex(at, true);
}

Status Tracer::TraceAll(int32_t marker) {
  for (int32_t y = 0; y < edges_->height(); y++) {
    const uint64_t* row = edges_->Row(y);
    for (int32_t i = 0; i < edges_->usedWords(); i++) {
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
