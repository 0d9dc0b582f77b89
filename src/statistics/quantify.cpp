// Statistics of an image and of the regions that a label mask names.
#include <cstring>

#include "engine/operands.h"
#include "statistics/sums_rows.h"

namespace zel {
namespace {

constexpr int32_t LABELS = 256;  // the background, 0, among them

void AddWordsInOrder(const void* pixels, int32_t count, PixelSums* sums) {
  const auto* words = static_cast<const int16_t*>(pixels);
  for (int32_t i = 0; i < count; i++) PixelSumsAdd(sums, words[i]);
}

// The first column from x on whose label differs from that of x.
int32_t LabelRunEnd(const uint8_t* labels, int32_t x, int32_t width) {
  const uint8_t label = labels[x++];
  const uint64_t eight = uint64_t{label} * 0x0101010101010101u;
  for (; x + 8 <= width; x += 8) {
    uint64_t next = 0;
    std::memcpy(&next, labels + x, 8);
    if (next != eight) break;
  }
  while (x < width && labels[x] == label) x++;
  return x;
}

void SumLabels(const Region& region, AddRow add, PixelSums (&regions)[LABELS]) {
  const PixelView& view = region.view;
  for (int32_t y = 0; y < view.height; y++) {
    const auto* row = view.Row<uint8_t>(y);
    const uint8_t* labels = region.mask.Row(y);
    for (int32_t x = 0; x < view.width;) {
      const int32_t end = LabelRunEnd(labels, x, view.width);
      if (labels[x] != 0) add(row + int64_t{x} * view.pixelBytes, end - x, &regions[labels[x]]);
      x = end;
    }
  }
}

PixelSums SumAll(const PixelView& view, AddRow add) {
  PixelSums sums;
  for (int32_t y = 0; y < view.height; y++) add(view.Row<void>(y), view.width, &sums);
  return sums;
}

struct Scale {
  double xStep, yStep;  // of a pixel
  double imagePixels;
};

QuantifyReport ReportOf(const PixelSums& sums, const Scale& scale) {
  const auto count = static_cast<double>(sums.count);
  QuantifyReport report{};
  report.mean = static_cast<float>(sums.sum / count);
  report.stdDev = static_cast<float>(DeviationOf(sums.squares, count, report.mean));
  report.min = sums.min;
  report.max = sums.max;
  report.area = static_cast<float>(count * scale.xStep * scale.yStep);
  report.nbPixels = static_cast<int32_t>(sums.count);
  report.percent = static_cast<float>(count / scale.imagePixels * 100.0);
  return report;
}

PixelSums SumsOfImage(const PixelView& view) {
  PixelSums sums;
  if (!TypeIsScalar(view.type)) {
    sums.count = int64_t{view.width} * view.height;  // counted, but not summed
    return sums;
  }
  sums = SumAll(view, sumsRows().add[view.type]);
  // The squares of many large words are rounded as they come, pixel after pixel.
  if (view.type == IMAGE_I16 && !sums.SquaresAreExact()) sums = SumAll(view, &AddWordsInOrder);
  return sums;
}

// Sums and reports of the regions; returns the highest label.
int32_t LabelsReport(const Region& region, const Scale& scale, PixelSums* global,
                     QuantifyReport (&reports)[LABELS]) {
  PixelSums regions[LABELS];
  const int16_t type = region.view.type;
  if (TypeIsScalar(type) && !region.view.IsEmpty()) {
    SumLabels(region, sumsRows().add[type], regions);
    bool exact = true;
    for (const PixelSums& sums : regions) exact = exact && sums.SquaresAreExact();
    if (type == IMAGE_I16 && !exact) {
      for (PixelSums& sums : regions) sums = {};
      SumLabels(region, &AddWordsInOrder, regions);
    }
  }
  int32_t highest = 0;
  for (int32_t label = 1; label < LABELS; label++) {
    const PixelSums& sums = regions[label];
    reports[label] = {};
    if (sums.count == 0) continue;
    highest = label;
    reports[label] = ReportOf(sums, scale);
    global->sum += sums.sum;
    global->squares += sums.squares;
    global->count += sums.count;
    if (sums.min < global->min) global->min = sums.min;
    if (sums.max > global->max) global->max = sums.max;
  }
  return highest;
}

// `regionReports` is a vector of QuantifyReport that the call sizes, or 0. Both outputs may be
// null.
Status Quantify(ImageRef reference, ImageRef mask, QuantifyReport* globalReport,
                Handle regionReports, int32_t* nbRegions) {
  Image* image = nullptr;
  Status status = ImageLookup(reference, &image);
  if (status != STATUS_OK) return status;
  const bool isMasked = mask != 0 && mask != reference;
  Region region{};
  status = RegionOf(*image, isMasked ? mask : 0, &region);
  if (status != STATUS_OK) return status;
  const Scale scale{static_cast<double>(image->xStep), static_cast<double>(image->yStep),
                    static_cast<double>(image->width) * image->height};

  PixelSums global;
  QuantifyReport reports[LABELS];
  int32_t highest = 0;
  if (isMasked) {
    highest = LabelsReport(region, scale, &global, reports);
  } else {
    global = SumsOfImage(region.view);
  }
  if (regionReports != 0) {
    const auto count = static_cast<size_t>(highest);
    status = VectorResize(regionReports, sizeof(QuantifyReport), count);
    if (status != STATUS_OK) return status;
    if (count != 0) {
      std::memcpy(VectorData<void>(regionReports), reports + 1, count * sizeof(QuantifyReport));
    }
  }
  if (nbRegions) *nbRegions = highest;
  if (globalReport) *globalReport = ReportOf(global, scale);
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_Quantify(ImageRef image, ImageRef mask, QuantifyReport* globalReport,
                     QuantifyReport** regionReports, int32_t* nbRegions) {
  if (nbRegions) *nbRegions = 0;
  zel::ScopedWrap records;
  zel::Status status = zel::STATUS_OK;
  if (regionReports) status = records.Create(*regionReports, sizeof(QuantifyReport), 0, 0, 1);
  if (status == zel::STATUS_OK) {
    status = zel::Quantify(image, mask, globalReport, records.handle(), nbRegions);
  }
  // Whatever the status: the block may have moved.
  if (records.handle() != 0) *regionReports = static_cast<QuantifyReport*>(records.Release());
  return ZEL_ProcessError("ZEL_Quantify", status);
}
