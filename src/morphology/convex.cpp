// Convex hulls of labelled particles.
#include <algorithm>

#include "engine/operands.h"
#include "morphology/extents.h"
#include "morphology/whole_images.h"
#include "utilities/lines.h"

namespace zel {
namespace {

// The columns of each row of one hull.
class HullRows {
 public:
  // For particles of an image of so many rows. False when there is no memory.
  [[nodiscard]] bool Create(int32_t height);

  void Find(const LabelExtents& extents, uint32_t label);
  template <class T>
  void Fill(T value, const PixelView& view) const;

 private:
  struct Chain {
    WorkArray<LinePoint> points;
    size_t count = 0;
  };

  void Append(Chain* chain, LinePoint point, int64_t side);
  void Walk(const Chain& chain);
  void Include(LinePoint point);

  struct Columns {
    int32_t least, most;
  };
  WorkArray<Columns> rows_;  // of the image
  Chain left_, right_;
  int32_t top_ = 0;
  int32_t bottom_ = 0;
};

bool HullRows::Create(int32_t height) {
  const auto count = static_cast<uint64_t>(height);
  return rows_.Allocate(count) && left_.points.Allocate(count) && right_.points.Allocate(count);
}

void HullRows::Include(LinePoint point) {
  Columns& row = rows_[static_cast<size_t>(point.y)];
  row.least = std::min(row.least, point.x);
  row.most = std::max(row.most, point.x);
}

// Drops the points before that the hull does not turn at. `side` is 1 for the left chain and -1 for
// the right one.
void HullRows::Append(Chain* chain, LinePoint point, int64_t side) {
  const WorkArray<LinePoint>& points = chain->points;
  while (chain->count >= 2) {
    const LinePoint from = points[chain->count - 2];
    const LinePoint turn = points[chain->count - 1];
    const int64_t across = int64_t{turn.x - from.x} * (point.y - from.y) -
                           int64_t{point.x - from.x} * (turn.y - from.y);
    if (across * side < 0) break;
    chain->count--;
  }
  chain->points[chain->count++] = point;
}

void HullRows::Walk(const Chain& chain) {
  for (size_t i = 1; i < chain.count; i++) {
    LinePoint point = chain.points[i - 1];
    const LinePoint end = chain.points[i];
    LineSteps steps({point.x, point.y, end.x, end.y});
    for (int64_t n = 1; n < steps.points(); n++) {
      const LinePoint step = steps.Next();
      point = {point.x + step.x, point.y + step.y};
      Include(point);
    }
  }
}

// The edges along rows, at the top and the bottom, need no walk: their ends are in the chains.
void HullRows::Find(const LabelExtents& extents, uint32_t label) {
  left_.count = right_.count = 0;
  top_ = bottom_ = extents[extents.First(label)].y;
  for (uint32_t i = extents.First(label); i != NO_EXTENT; i = extents[i].next) {
    const RowExtent& extent = extents[i];
    Append(&left_, {extent.left, extent.y}, 1);
    Append(&right_, {extent.right, extent.y}, -1);
    bottom_ = extent.y;
  }
  for (int32_t y = top_; y <= bottom_; y++) rows_[static_cast<size_t>(y)] = {INT32_MAX, -1};
  Include(left_.points[0]);
  Include(right_.points[0]);
  Walk(left_);
  Walk(right_);
}

template <class T>
void HullRows::Fill(T value, const PixelView& view) const {
  for (int32_t y = top_; y <= bottom_; y++) {
    const Columns& row = rows_[static_cast<size_t>(y)];
    std::fill(view.At<T>(row.least, y), view.At<T>(row.most, y) + 1, value);
  }
}

template <class T>
void HullsFill(const LabelExtents& extents, HullRows* hull, const PixelView& view) {
  for (uint32_t label = 1; label < extents.labels(); label++) {
    if (extents.First(label) == NO_EXTENT) continue;
    hull->Find(extents, label);
    hull->Fill(static_cast<T>(label), view);
  }
}

Status Convex(ImageRef source, ImageRef destination) {
  Operands operands;
  operands.Source(source, &TypeIsInteger);
  operands.Destination(destination);
  if (operands.HasFailed()) return operands.status();

  // All is measured before anything is written, so that no hull hides a label from the next.
  const PixelView from = operands.From();
  LabelExtents extents;
  HullRows hull;
  const Status status = extents.Find(from);
  if (status != STATUS_OK) return status;
  if (!hull.Create(from.height)) return STATUS_MEMORY_FULL;

  operands.TakeSize();
  operands.TakeInfo();
  if (operands.HasFailed()) return operands.status();
  const PixelView to = operands.To();
  PixelsClear(to);
  if (to.type == IMAGE_U8) {
    HullsFill<uint8_t>(extents, &hull, to);
  } else {
    HullsFill<uint16_t>(extents, &hull, to);
  }
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_Convex(ImageRef source, ImageRef dest) {
  return ZEL_ProcessError("ZEL_Convex", zel::Convex(source, dest));
}
