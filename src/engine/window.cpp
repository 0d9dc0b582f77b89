// The window walk: rows of pointers slid down the image, and results put under the mask.
#include "engine/window.h"

#include <algorithm>
#include <cstring>

#include "core/cache_lines.h"
#include "engine/window_rows.h"
#include "platform/processor.h"

namespace zel {
namespace {

// Windows of so many rows need no memory for their row pointers.
constexpr int32_t FEW_ROWS = 32;

void BandWalk(const WindowBand& band, WindowReach reach, const WindowWork& work) {
  const PixelView& source = band.views.source;
  const int32_t count = reach.Rows();
  const void* few[FEW_ROWS];
  const void** rows = count <= FEW_ROWS ? few : reinterpret_cast<const void**>(band.memory);
  const int64_t first = int64_t{band.begin} - reach.above;
  for (int32_t i = 0; i < count; i++) rows[i] = source.Row<const void*>(first + i);
  for (int32_t y = band.begin; y < band.end; y++) {
    const bool odd = ((band.views.firstRow + y) & 1) != 0;
    work.run(work, rows, band.RowBegin(y), source.width, odd);
    band.RowEnd(y);
    for (int32_t i = 0; i < count; i++) {
      rows[i] = static_cast<const uint8_t*>(rows[i]) + source.pitch;
    }
  }
}

}  // namespace

void WindowOperandsSettle(const WindowImages& images, BorderFill fill, int32_t border,
                          Operands* operands) {
  operands->Source(images.source, &TypeIsScalar);
  operands->Border(fill, border);
  operands->Destination(images.destination);
  operands->Mask(images.mask);
  operands->WriteBeside(Operands::CANNOT_RUN_IN_PLACE);
  if (operands->HasMask()) {
    operands->TakePixels();
  } else {
    operands->TakeSize();
  }
  operands->TakeInfo();
}

WindowViews WindowViewsOf(const Operands& operands) {
  const int32_t firstRow = operands.HasMask() ? operands.overlap().imageY : 0;
  return {operands.From(), operands.To(), operands.MaskOver(), firstRow};
}

int32_t WindowGroupedColumns(const WindowViews& views, int32_t groupColumns) {
  if (MmxAvailable() == 0 || !views.mask.SelectsAll()) return 0;
  return views.result.width / groupColumns * groupColumns;
}

BandPlan WindowBandPlan(const WindowViews& views, const WindowPlan& plan) {
  constexpr int64_t rowsOfAnAddition = 3;
  const int64_t imageBytes = views.result.RowBytes() * views.result.height;
  return {.units = views.result.height,
          .bytes = imageBytes * rowsOfAnAddition * plan.effort,
          .startUnits = plan.startRows};
}

Status WindowMemory::Allocate(const WindowViews& views, const WindowPlan& plan,
                              const BandPlan& bands) {
  spareBytes_ = views.mask.SelectsAll() ? 0 : OnCacheLines(views.result.RowBytes());
  workerBytes_ = spareBytes_ + OnCacheLines(plan.memoryBytes);
  if (workerBytes_ == 0) return STATUS_OK;
  const int64_t workers = BandWorkersFor(bands.bytes);
  const auto bytes = static_cast<uint64_t>(workers * workerBytes_ + CACHE_LINE);
  return block_.Allocate(bytes) ? STATUS_OK : STATUS_MEMORY_FULL;
}

WindowBand WindowMemory::BandOf(const WindowViews& views, const Band& band) {
  uint8_t* first = block_.data();
  if (first) first += BytesToCacheLine(first) + band.worker * workerBytes_;
  return WindowBand(views, band, first + spareBytes_, first);
}

void WindowBand::RowEnd(int32_t y) const {
  if (!views.mask.SelectsAll()) WindowStore(views, 0, y, views.result.width, spareRow_);
}

void WindowStore(const WindowViews& views, int32_t x, int32_t y, int32_t columns,
                 const void* pixels) {
  const int32_t pixelBytes = views.result.pixelBytes;
  uint8_t* to = views.result.Row<uint8_t>(y) + int64_t{x} * pixelBytes;
  if (views.mask.SelectsAll()) {
    std::memcpy(to, pixels, static_cast<size_t>(columns) * static_cast<size_t>(pixelBytes));
  } else {
    windowMaskRows().For(pixelBytes)(pixels, views.mask.Row(y) + x, to, columns);
  }
}

Status WindowWalk(const WindowViews& views, WindowReach reach, RowEffort effort,
                  const WindowWork& work) {
  const int32_t count = reach.Rows();
  const int64_t pointerBytes = int64_t{count} * static_cast<int64_t>(sizeof(void*));
  const WindowPlan plan{.memoryBytes = count <= FEW_ROWS ? 0 : pointerBytes, .effort = effort};
  return WindowBandsRun(views, plan, [&](const WindowBand& band) { BandWalk(band, reach, work); });
}

}  // namespace zel
