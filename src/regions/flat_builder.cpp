// The flat form of a region as it grows.
#include "regions/flat_builder.h"

#include <algorithm>

namespace zel {

Status FlatBuilder::Grow() {
  const int64_t grown = std::min(2 * capacity_ + 512, limit_);
  const Status status = Resize(grown);
  if (status == STATUS_OK) capacity_ = grown;
  return status;
}

Status FlatBuilder::Resize(int64_t pairs) {
  const Status status = VectorResize(vector_, sizeof(int32_t), 2 * static_cast<uint64_t>(pairs));
  if (status == STATUS_OK) pairs_ = VectorData<PointInt>(vector_);
  return status;
}

Status FlatBuilder::Finish(const KernelRect& rect) {
  const Status status = Resize(count_);
  if (status != STATUS_OK) return status;
  pairs_[0] = {rect.left, rect.top};
  pairs_[1] = {rect.right, rect.bottom};
  return STATUS_OK;
}

}  // namespace zel
