// Images mirrored in their axes and diagonals, and transposed.
#include "engine/bands.h"
#include "engine/operands.h"
#include "engine/rows_copy.h"
#include "geometry/geometry.h"
#include "geometry/symmetry_rows.h"

namespace zel {
namespace {

constexpr int64_t CACHE_LINE = 64;

// Pixels of more bytes have left the caches of one core by the time that all are transposed. The
// lines of the result follow no order that processors foresee, so that stores that read them before
// take most of the time then, from a shared cache as well.
constexpr int64_t STREAMED_BYTES = int64_t{1} << 20;

PixelView UpsideDown(const PixelView& view) {
  PixelView turned = view;
  turned.origin += (int64_t{view.height} - 1) * view.pitch;
  turned.pitch = -view.pitch;
  return turned;
}

void RowsMove(const PixelView& from, const PixelView& to) {
  BandsRun({.units = to.height, .bytes = 2 * to.Bytes()}, [&](const Band& band) {
    const auto begin = static_cast<int32_t>(band.begin);
    const auto end = static_cast<int32_t>(band.end);
    RowsCopy(from.Rows(begin, end), to.Rows(begin, end));
  });
}

void RowsReverse(const PixelView& from, const PixelView& to) {
  const ReverseRow reverse = symmetryRows().reverse.For(to.pixelBytes);
  BandsRun({.units = to.height, .bytes = 2 * to.Bytes()}, [&](const Band& band) {
    for (int64_t y = band.begin; y < band.end; y++) {
      reverse(from.Row<void>(y), to.Row<void>(y), to.width);
    }
  });
}

// Columns of the source are rows of the result: bands of them share no result.
void RowsToColumns(const PixelView& from, const PixelView& to) {
  const SymmetryRows& rows = symmetryRows();
  const auto& routines = to.Bytes() < STREAMED_BYTES ? rows.transpose : rows.transposeStreaming;
  const TransposeRoutine transpose = routines.For(to.pixelBytes);
  BandsRun({.units = from.width, .bytes = 4 * to.Bytes(), .alignment = CACHE_LINE},
           [&](const Band& band) {
             transpose({.from = from.origin + band.begin * from.pixelBytes,
                        .fromPitch = from.pitch,
                        .to = to.Row<uint8_t>(band.begin),
                        .toPitch = to.pitch,
                        .width = band.end - band.begin,
                        .height = from.height});
           });
}

void Mirror(const PixelView& from, const PixelView& to, uint8_t symmetry) {
  if (to.IsEmpty()) return;
  switch (symmetry) {
    case SYMMETRY_TOP_BOTTOM:
      return RowsMove(UpsideDown(from), to);
    case SYMMETRY_LEFT_RIGHT:
      return RowsReverse(from, to);
    case SYMMETRY_BOTH:
      return RowsReverse(UpsideDown(from), to);
    case SYMMETRY_MAIN_DIAGONAL:
      return RowsToColumns(from, to);
    default:
      return RowsToColumns(UpsideDown(from), UpsideDown(to));
  }
}

Status Symmetry(ImageRef source, ImageRef destination, uint8_t symmetry) {
  Operands operands;
  operands.Source(source, &TypeCanBeMoved);
  if (operands.HasFailed()) return operands.status();
  const Image& image = operands.source();
  const bool isDiagonal = symmetry == SYMMETRY_MAIN_DIAGONAL || symmetry == SYMMETRY_OTHER_DIAGONAL;
  if (isDiagonal && image.width != image.height) return STATUS_SIZE_DIFFERS;
  operands.Destination(destination);
  if (operands.HasFailed()) return operands.status();
  const bool isKnown = symmetry <= SYMMETRY_OTHER_DIAGONAL;
  if (!isKnown && operands.destination() == &image) return STATUS_OK;
  operands.WriteSized(image.width, image.height);
  if (operands.HasFailed() || !isKnown) return operands.status();
  operands.Written();
  Mirror(operands.From(), operands.To(), symmetry);
  return STATUS_OK;
}

Status Transpose(ImageRef source, ImageRef destination) {
  Operands operands;
  operands.Source(source, &TypeHasPixels);
  operands.Destination(destination);
  if (operands.HasFailed()) return operands.status();
  operands.WriteSized(operands.source().height, operands.source().width);
  if (operands.HasFailed()) return operands.status();
  operands.Written();
  Mirror(operands.From(), operands.To(), SYMMETRY_MAIN_DIAGONAL);
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_Symmetry(ImageRef source, ImageRef dest, uint8_t symmetry) {
  return ZEL_ProcessError("ZEL_Symmetry", zel::Symmetry(source, dest, symmetry));
}

int32_t ZEL_Transpose(ImageRef source, ImageRef dest) {
  return ZEL_ProcessError("ZEL_Transpose", zel::Transpose(source, dest));
}
