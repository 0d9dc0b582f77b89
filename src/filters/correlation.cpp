// Normalised correlation: how alike a template and the pixels under it are, wherever it is laid.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "engine/window.h"
#include "filters/correlation_rows.h"
#include "platform/processor.h"

namespace zel {
namespace {

// ---- the rectangle

struct Range {
  int32_t begin, size;
};

// A side beyond the image lies on its last pixel; one that ends with it stays.
Range RangeLimited(int32_t begin, int32_t size, int32_t imageSize) {
  const auto limited = [&](int64_t side) { return side > imageSize ? imageSize - 1 : side; };
  const int64_t end = limited(int64_t{begin} + size);
  const int64_t first = limited(std::max(begin, 0));
  return {static_cast<int32_t>(first), static_cast<int32_t>(std::max<int64_t>(end - first, 0))};
}

OverlapRect RectLimited(const ApiRect& rect, const Image& image) {
  const Range columns = RangeLimited(rect.left, rect.width, image.width);
  const Range rows = RangeLimited(rect.top, rect.height, image.height);
  return {.imageX = columns.begin,
          .imageY = rows.begin,
          .maskX = 0,
          .maskY = 0,
          .width = columns.size,
          .height = rows.size};
}

bool IsAllZero(const PixelView& pixels) {
  const auto bytes = static_cast<size_t>(std::max(pixels.width, 0));
  for (int32_t y = 0; y < pixels.height; y++) {
    const auto* row = pixels.Row<uint8_t>(y);
    if (std::any_of(row, row + bytes, [](uint8_t pixel) { return pixel != 0; })) return false;
  }
  return true;
}

// ---- the template

struct Template {
  int32_t width = 0, height = 0;
  int64_t sum = 0;
  double root = 0;  // T
  int64_t rowWeights = 0;
  WorkArray<uint32_t> weights;  // with rows of 0 above and below

  bool IsLarge() const { return int64_t{width} * height > CORRELATION_MOST_PIXELS; }
  // Columns begin at a multiple of what a weight stands for.
  CorrelationTemplate Part(int64_t row, int64_t rows, int64_t column, int64_t columns) const {
    const int64_t weightColumns = correlationRows().weightColumns;
    return {
        weights.data() + (row + CORRELATION_TILE_ROWS - 1) * rowWeights + column / weightColumns,
        rowWeights, (columns + weightColumns - 1) / weightColumns, rows};
  }
};

Status TemplateTake(const Image& image, Template* pattern) {
  const CorrelationRows& rows = correlationRows();
  const PixelView pixels = ViewOf(image);
  pattern->width = pixels.width;
  pattern->height = pixels.height;
  pattern->rowWeights = (int64_t{pixels.width} + rows.weightColumns - 1) / rows.weightColumns;
  const int64_t allRows = int64_t{pixels.height} + 2 * (CORRELATION_TILE_ROWS - 1);
  if (!pattern->weights.AllocateZeroed(static_cast<uint64_t>(allRows * pattern->rowWeights))) {
    return STATUS_MEMORY_FULL;
  }
  int64_t squares = 0;
  uint32_t* weights = pattern->weights.data() + (CORRELATION_TILE_ROWS - 1) * pattern->rowWeights;
  for (int32_t y = 0; y < pixels.height; y++, weights += pattern->rowWeights) {
    const auto* row = pixels.Row<uint8_t>(y);
    rows.pack(row, pixels.width, weights);
    for (int32_t x = 0; x < pixels.width; x++) {
      pattern->sum += row[x];
      squares += int64_t{row[x]} * row[x];
    }
  }
  pattern->root = std::sqrt(static_cast<double>(squares));
  return STATUS_OK;
}

// ---- the source

// What tiles and windows at the rectangle's pixels look at, with 0 outside the image.
struct SourceCopy {
  WorkArray<CorrelationPixel> pixels;
  int64_t pitch = 0;

  // Of the window whose first pixel is the first of all.
  const CorrelationPixel* At(int64_t x, int64_t y) const { return pixels.data() + y * pitch + x; }
};

Status SourceTake(const Image& source, const OverlapRect& rect, const Template& pattern,
                  SourceCopy* copy) {
  const PixelView pixels = ViewOf(source);
  copy->pitch =
      int64_t{rect.width} + pattern.width + CORRELATION_TILE_COLUMNS + CORRELATION_MOST_COLUMNS;
  const int64_t height = int64_t{rect.height} + pattern.height + CORRELATION_TILE_ROWS;
  // Without overflow: the block of an image has more bytes than its sides.
  if (!copy->pixels.Allocate(static_cast<uint64_t>(copy->pitch) * static_cast<uint64_t>(height))) {
    return STATUS_MEMORY_FULL;
  }
  std::memset(copy->pixels.data(), -CORRELATION_BIAS, static_cast<size_t>(copy->pitch * height));
  const int64_t left = int64_t{rect.imageX} - pattern.width / 2;
  const int64_t top = int64_t{rect.imageY} - pattern.height / 2;
  const int64_t first = std::max<int64_t>(left, 0);
  const int64_t count = std::min<int64_t>(left + copy->pitch, pixels.width) - first;
  const int64_t end = std::min<int64_t>(top + height, pixels.height);
  for (int64_t y = std::max<int64_t>(top, 0); y < end && count > 0; y++) {
    correlationRows().bias(pixels.At<uint8_t>(first, y),
                           copy->pixels.data() + (y - top) * copy->pitch + first - left, count);
  }
  return STATUS_OK;
}

// ---- the pass

// Results of a range of columns, in which windows are placed alike.
struct CorrelationPass {
  const Template& pattern;
  const SourceCopy& source;
  int64_t column, row;  // of the copy, where the window of the first result begins
  CorrelationRule rule;

  CorrelationSource SourceAt(int64_t x, int64_t y) const {
    return {source.At(column + x, row + y), source.pitch};
  }
};

// Sums of 32 bits, for tiles of results.
struct TileSums {
  using Product = int32_t;
  using Energy = uint32_t;
  static constexpr int64_t ROWS = CORRELATION_TILE_ROWS;

  static const CorrelationEnergy<Energy>& Energies() { return correlationRows().energy; }
  static auto Results() { return correlationRows().results; }

  // Of as many rows as a tile has.
  static void Compute(const CorrelationPass& pass, int64_t y, int64_t pitch, Product* products) {
    const CorrelationTemplate whole =
        pass.pattern.Part(0, pass.pattern.height, 0, pass.pattern.width);
    std::fill_n(products, ROWS * pitch, 0);
    for (int64_t x = 0; x < pitch; x += CORRELATION_TILE_COLUMNS) {
      correlationRows().tile(pass.SourceAt(x, y), whole, {products + x, pitch});
    }
  }
};

// Sums of 64 bits, for templates whose sums may need them: part after part.
struct PartSums {
  using Product = int64_t;
  using Energy = uint64_t;
  static constexpr int64_t ROWS = 1;

  static const CorrelationEnergy<Energy>& Energies() { return correlationRows().largeEnergy; }
  static auto Results() { return correlationRows().largeResults; }

  static void Compute(const CorrelationPass& pass, int64_t y, int64_t pitch, Product* products) {
    constexpr int64_t mostColumns =
        CORRELATION_MOST_PIXELS / CORRELATION_MOST_COLUMNS * CORRELATION_MOST_COLUMNS;
    const Template& pattern = pass.pattern;
    const int64_t columns = std::min<int64_t>(pattern.width, mostColumns);
    const int64_t rows = CORRELATION_MOST_PIXELS / columns;
    std::fill_n(products, pitch, 0);
    for (int64_t j = 0; j < pattern.height; j += rows) {
      for (int64_t i = 0; i < pattern.width; i += columns) {
        const CorrelationTemplate part = pattern.Part(j, std::min(rows, pattern.height - j), i,
                                                      std::min(columns, pattern.width - i));
        for (int64_t x = 0; x < pitch; x += CORRELATION_TILE_COLUMNS) {
          int32_t sums[CORRELATION_TILE_COLUMNS] = {};
          correlationRows().tileRow(pass.SourceAt(x + i, y + j), part, {sums, 0});
          for (int64_t k = 0; k < CORRELATION_TILE_COLUMNS; k++) products[x + k] += sums[k];
        }
      }
    }
  }
};

template <class Sums>
struct CorrelationMemory {
  int64_t productPitch, columns;

  CorrelationMemory(int64_t width, int64_t templateWidth)
      : productPitch((width + CORRELATION_TILE_COLUMNS - 1) / CORRELATION_TILE_COLUMNS *
                     CORRELATION_TILE_COLUMNS),
        columns(width + templateWidth - 1) {}

  int64_t Bytes() const {
    constexpr int64_t arrays = 4;  // column sums, and what sums of windows need
    return Sums::ROWS * productPitch * static_cast<int64_t>(sizeof(typename Sums::Product)) +
           arrays * columns * static_cast<int64_t>(sizeof(typename Sums::Energy));
  }
};

template <class Sums>
void BandCorrelate(const CorrelationPass& pass, const WindowBand& band) {
  using Energy = typename Sums::Energy;
  const CorrelationEnergy<Energy>& energies = Sums::Energies();
  const Template& pattern = pass.pattern;
  const int64_t width = band.views.result.width;
  const CorrelationMemory<Sums> memory(width, pattern.width);
  auto* products = reinterpret_cast<typename Sums::Product*>(band.memory);
  auto* columnSums = reinterpret_cast<Energy*>(products + Sums::ROWS * memory.productPitch);
  Energy* windowMemory = columnSums + memory.columns;
  const auto sourceRow = [&](int64_t y) { return pass.SourceAt(0, y).pixels; };

  std::fill_n(columnSums, memory.columns, 0);
  for (int64_t j = 0; j < pattern.height; j++) {
    energies.add(sourceRow(band.begin + j), columnSums, memory.columns);
  }
  for (int32_t y = band.begin; y < band.end; y++) {
    const int64_t tileRow = (y - band.begin) % Sums::ROWS;
    if (tileRow == 0) Sums::Compute(pass, y, memory.productPitch, products);
    const Energy* windows = energies.windows(columnSums, windowMemory, pattern.width, width);
    Sums::Results()(products + tileRow * memory.productPitch, windows,
                    static_cast<uint8_t*>(band.RowBegin(y)), width, pass.rule);
    energies.slide(sourceRow(y + pattern.height), sourceRow(y), columnSums, memory.columns);
  }
}

template <class Sums>
Status PassRun(const CorrelationPass& pass, const PixelView& result) {
  // An addition of bytes takes as long as some hundred products.
  constexpr int64_t productsOfAnEffort = 128;
  const Template& pattern = pass.pattern;
  const int64_t pixels = int64_t{pattern.width} * pattern.height;
  const WindowPlan plan{.memoryBytes = CorrelationMemory<Sums>(result.width, pattern.width).Bytes(),
                        .effort = std::min<int64_t>(10 + pixels / productsOfAnEffort, INT16_MAX),
                        .startRows = 1};
  const WindowViews views{result, result, {}};
  return WindowBandsRun(views, plan,
                        [&](const WindowBand& band) { BandCorrelate<Sums>(pass, band); });
}

// The columns from `begin` to `end` of the rectangle's results.
struct ColumnPart {
  int32_t begin, end;
  bool isGrouped;
};

Status ColumnsCorrelate(const Template& pattern, const SourceCopy& source, const ColumnPart& part,
                        const PixelView& result) {
  if (part.begin == part.end) return STATUS_OK;
  // Windows of groups lie further to the right and below where sides are even.
  const CorrelationPass pass{
      .pattern = pattern,
      .source = source,
      .column = part.begin + (part.isGrouped ? 1 - pattern.width % 2 : 0),
      .row = part.isGrouped ? 1 - pattern.height % 2 : 0,
      .rule = {pattern.root, CORRELATION_BIAS * pattern.sum, part.isGrouped}};
  const PixelView columns = result.Columns(part.begin, part.end);
  return pattern.IsLarge() ? PassRun<PartSums>(pass, columns) : PassRun<TileSums>(pass, columns);
}

Status RectCorrelate(const Template& pattern, const SourceCopy& source, const PixelView& result) {
  constexpr int32_t groupColumns = 4;
  const bool hasGroups = MmxAvailable() != 0 && pattern.width % groupColumns == 0;
  const int32_t grouped = hasGroups ? result.width / groupColumns * groupColumns : 0;
  const Status status = ColumnsCorrelate(pattern, source, {0, grouped, true}, result);
  return status != STATUS_OK
             ? status
             : ColumnsCorrelate(pattern, source, {grouped, result.width, false}, result);
}

Status TemplateLookup(ImageRef reference, Image** pattern) {
  const Status status = ImageLookup(reference, pattern);
  if (status != STATUS_OK) return status;
  return (*pattern)->type == IMAGE_U8 ? STATUS_OK : STATUS_BAD_TYPE;
}

Status Correlate(ImageRef source, ImageRef templateImage, ImageRef destination,
                 const ApiRect& rect) {
  Operands operands;
  operands.Source(source, &TypeIsU8);
  if (operands.HasFailed()) return operands.status();
  Image* image = nullptr;
  Status status = TemplateLookup(templateImage, &image);
  if (status != STATUS_OK) return status;

  // Both are copied before the destination is written, which may be the template.
  const OverlapRect limited = RectLimited(rect, operands.source());
  Template pattern;
  SourceCopy copy;
  status = TemplateTake(*image, &pattern);
  if (status != STATUS_OK) return status;
  const bool isZero = pattern.root == 0.0 || limited.IsEmpty() ||
                      IsAllZero(ViewOf(operands.source()).Part(limited));
  if (!isZero) status = SourceTake(operands.source(), limited, pattern, &copy);
  if (status != STATUS_OK) return status;

  operands.Destination(destination);
  operands.WriteBeside(Operands::CANNOT_RUN_IN_PLACE);
  operands.TakeSize();
  operands.TakeInfo();
  if (operands.HasFailed()) return operands.status();
  status = ImageClearAll(operands.destination());
  if (status == STATUS_OK && !isZero)
    status = RectCorrelate(pattern, copy, operands.To().Part(limited));
  if (status == STATUS_OK) operands.Written();
  return status;
}

}  // namespace
}  // namespace zel

int32_t ZEL_Correlate(ImageRef source, ImageRef templateImage, ImageRef dest, ApiRect rect) {
  return ZEL_ProcessError("ZEL_Correlate", zel::Correlate(source, templateImage, dest, rect));
}
