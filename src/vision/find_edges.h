// All edges along a path of a caller's.
#pragma once

#include "vision/edge_scan.h"

namespace zel {

using EdgeList = LocalList<ScannedEdge, 64>;

// STATUS_BAD_IMAGE; STATUS_INTERNAL for an image without pixels; STATUS_TOO_FEW_POINTS;
// STATUS_BAD_INTERPOLATION where there is oversampling; STATUS_MEMORY_FULL.
Status PathEdgesFind(ImageRef image, const PointInt* points, int32_t pointCount, int32_t method,
                     int32_t oversampling, const EdgeRule& rule, EdgeList* edges);

}  // namespace zel
