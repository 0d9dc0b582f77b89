// ZEL_FindEdges: all edges along a path.
#include "vision/find_edges.h"

#include "vision/result_table.h"

namespace zel {
namespace {

Status FindEdges(ImageRef reference, const PointInt* points, int32_t pointCount, int32_t method,
                 int32_t oversampling, const EdgeRule& rule, int32_t* edgeCount, EdgeRecord** edges,
                 PointFloat** coordinates) {
  if ((!points && pointCount > 0) || !edges || !coordinates) return STATUS_NULL_POINTER;
  EdgeList found;
  const Status status =
      PathEdgesFind(reference, points, pointCount, method, oversampling, rule, &found);
  if (status != STATUS_OK) return status;

  WorkArray<EdgeRecord> records;
  WorkArray<PointFloat> places;
  if (!TableMake(&records, found.count()) || !TableMake(&places, found.count())) {
    return STATUS_MEMORY_FULL;
  }
  for (int64_t i = 0; i < found.count(); i++) {
    const ScannedEdge& edge = found[i];
    records.data()[i] = {edge.position, edge.contrast, edge.polarity, 0.0f};
    places.data()[i] = edge.at;
  }
  TableHandOver(&records, edges);
  TableHandOver(&places, coordinates);
  CountTell(found.count(), edgeCount);
  return STATUS_OK;
}

}  // namespace

Status PathEdgesFind(ImageRef reference, const PointInt* points, int32_t pointCount, int32_t method,
                     int32_t oversampling, const EdgeRule& rule, EdgeList* edges) {
  Image* image = nullptr;
  Status status = PathImageLookup(reference, &image);
  if (status != STATUS_OK) return status;
  if (pointCount < LEAST_PATH) return STATUS_TOO_FEW_POINTS;
  PathSignal signal;
  status = signal.Prepare(method, oversampling, pointCount);
  if (status != STATUS_OK) return status;
  signal.Take(ViewOf(*image), points, pointCount);
  EdgeScan scan(signal, rule, points, pointCount);
  for (ScannedEdge edge{}; scan.Next(&edge);) {
    if (!edges->Append(edge)) return STATUS_MEMORY_FULL;
  }
  return STATUS_OK;
}

}  // namespace zel

int32_t ZEL_FindEdges(ImageRef image, const PointInt* points, int32_t pointCount, int32_t method,
                      int32_t oversampling, int32_t threshold, int32_t edgeWidth, int32_t gap,
                      int32_t* edgeCount, EdgeRecord** edges, PointFloat** coordinates) {
  return ZEL_ProcessError(
      "ZEL_FindEdges", zel::FindEdges(image, points, pointCount, method, oversampling,
                                      {threshold, edgeWidth, gap}, edgeCount, edges, coordinates));
}
