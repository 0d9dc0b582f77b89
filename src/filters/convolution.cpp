// Convolution: the sum of a pixel's neighbours, each times a coefficient of a matrix.
#include <algorithm>
#include <cstring>

#include "engine/window.h"
#include "filters/convolution_plan.h"

namespace zel {
namespace {

constexpr int64_t FEWEST_COEFFICIENTS = 3;  // a matrix of less copies

WindowReach ReachOf(const ConvolutionMatrix& matrix) {
  return {.above = (matrix.height - 1) / 2, .below = matrix.height / 2};
}

// The border that is asked for, and the one that is read.
int32_t BorderNeeded(const ConvolutionMatrix& matrix) {
  return (std::max({matrix.width, matrix.height, 1}) - 1) / 2;
}
int32_t BorderRead(const ConvolutionMatrix& matrix) {
  return std::max(matrix.width, matrix.height) / 2;
}

BorderFill FillOf(int32_t borderFill) {
  switch (borderFill) {
    case BORDER_FILL_MIRROR:
      return BORDER_MIRROR;
    case BORDER_FILL_REPLICATE:
      return BORDER_REPLICATE;
    default:
      return BORDER_ZERO;
  }
}

// ---- a border that is too narrow by one

// Fills what lies one pixel beyond the border on the right and below, as if the border were wider.
// `pixels` has the border of `border` pixels filled and room for one more.
void BorderExtend(const PixelView& pixels, int32_t border, BorderFill fill) {
  const auto bytes = static_cast<size_t>(pixels.pixelBytes);
  const auto at = [&](int64_t x, int64_t y) {
    return pixels.Row<uint8_t>(y) + x * pixels.pixelBytes;
  };
  const bool isZero = fill == BORDER_ZERO;
  const bool isMirror = fill == BORDER_MIRROR;
  const int64_t fromX = pixels.width - 1 - (isMirror ? border : 0);
  const int64_t fromY = pixels.height - 1 - (isMirror ? border : 0);
  for (int64_t y = -border; y < int64_t{pixels.height} + border; y++) {
    uint8_t* to = at(int64_t{pixels.width} + border, y);
    if (isZero) {
      std::memset(to, 0, bytes);
    } else {
      std::memcpy(to, at(fromX, y), bytes);
    }
  }
  uint8_t* to = at(-border, int64_t{pixels.height} + border);
  const auto rowBytes =
      static_cast<size_t>(int64_t{pixels.width} + 2 * int64_t{border} + 1) * bytes;
  if (isZero) {
    std::memset(to, 0, rowBytes);
  } else {
    std::memcpy(to, at(-border, fromY), rowBytes);
  }
}

// A copy of an image whose border is wider by one pixel.
Status WidenedCopy(const Image& source, BorderFill fill, ScratchImage* copy) {
  const int32_t border = source.border;
  const Status status = copy->Create(source.type, source.width, source.height, border + 1);
  if (status != STATUS_OK) return status;
  const PixelView from = ViewOf(source);
  const PixelView to = ViewOf(*copy->image());
  const int64_t before = int64_t{border} * from.pixelBytes;
  const auto bytes = static_cast<size_t>(from.RowBytes() + 2 * before);
  for (int64_t y = -border; y < int64_t{from.height} + border; y++) {
    std::memcpy(to.Row<uint8_t>(y) - before, from.Row<uint8_t>(y) - before, bytes);
  }
  BorderExtend(to, border, fill);
  return STATUS_OK;
}

// ---- the pass by factors

// The sums of the rows that a window covers, in a ring.
void BandByFactors(const WindowBand& band, const ConvolutionPlan& plan,
                   const ConvolutionRoutine& routine) {
  const ConvolutionRows& rows = convolutionRows();
  const ConvolutionFactors& factors = plan.factors;
  const PixelView& source = band.views.source;
  const int64_t bytes = ConvolutionSumsBytes(source.width);
  const int32_t count = factors.rows;
  const int32_t above = (count - 1) / 2;
  const auto place = [&](int64_t y) {
    return band.memory + (y - band.begin + above) % count * bytes;
  };
  const auto sum = [&](int64_t y) {
    rows.across(source.Row<const void*>(y), place(y), source.width, factors);
  };
  const int32_t wrapped = plan.rule.wrappedColumns;
  for (int64_t y = int64_t{band.begin} - above; y < int64_t{band.begin} + count / 2; y++) sum(y);
  for (int32_t y = band.begin; y < band.end; y++) {
    sum(int64_t{y} + count / 2);
    const uint8_t* sums[CONVOLUTION_MOST_FACTOR_ROWS];
    const void* pixels[CONVOLUTION_MOST_FACTOR_ROWS];
    for (int32_t j = 0; j < count; j++) {
      const int64_t row = int64_t{y} - above + j;
      sums[j] = place(row);
      pixels[j] = source.Row<uint8_t>(row) + wrapped;
    }
    auto* to = static_cast<uint8_t*>(band.RowBegin(y));
    routine.down(sums, source.Row<const void*>(y), to, factors, plan.rule);
    if (wrapped < source.width) {
      rows.whole.u8(pixels, to + wrapped, source.width - wrapped, plan.rule);
    }
    band.RowEnd(y);
  }
}

// ---- the pass of floats

// What a worker sums up: the rows that windows cover, from their first columns on, and a block of
// their numbers.
class RealBand {
 public:
  static int64_t MemoryBytes(const ConvolutionRule& rule) {
    return ConvolutionBlockNumbers(rule) * static_cast<int64_t>(sizeof(double)) +
           Count(rule) * static_cast<int64_t>(sizeof(void*));
  }

  RealBand(const WindowBand& band, const ConvolutionRule& rule, const ConvolutionRealRows& routines)
      : band_(band),
        rule_(rule),
        routines_(routines),
        numbers_(reinterpret_cast<double*>(band.memory)),
        rows_(reinterpret_cast<const void**>(numbers_ + ConvolutionBlockNumbers(rule))) {}

  void Run() {
    // Under a mask there is a place for one row of results.
    const bool atOnce = band_.views.mask.SelectsAll();
    int32_t y = band_.begin;
    for (; atOnce && band_.end - y >= CONVOLUTION_ROWS_AT_ONCE; y += CONVOLUTION_ROWS_AT_ONCE) {
      Sum(y, CONVOLUTION_ROWS_AT_ONCE, routines_.atOnce);
    }
    for (; y < band_.end; y++) Sum(y, 1, routines_.one);
  }

 private:
  static int64_t Count(const ConvolutionRule& rule) {
    return int64_t{rule.rows} + CONVOLUTION_ROWS_AT_ONCE - 1;
  }

  // Rows of results from y on.
  void Sum(int32_t y, int32_t results, ConvolutionRealRow row) {
    const PixelView& pixels = band_.views.source;
    const int64_t above = (rule_.rows - 1) / 2;
    const int64_t left = (rule_.columns - 1) / 2;
    for (int64_t j = 0; j < rule_.rows + results - 1; j++) {
      rows_[j] = pixels.Row<uint8_t>(y - above + j) - left * pixels.pixelBytes;
    }
    void* to[CONVOLUTION_ROWS_AT_ONCE];
    for (int32_t i = 0; i < results; i++) to[i] = band_.RowBegin(y + i);
    row(rows_, to, pixels.width, rule_, numbers_);
    for (int32_t i = 0; i < results; i++) band_.RowEnd(y + i);
  }

  const WindowBand& band_;
  const ConvolutionRule& rule_;
  const ConvolutionRealRows& routines_;
  double* numbers_;
  const void** rows_;
};

Status WalkOfFloats(const WindowViews& views, const ConvolutionRule& rule, RowEffort effort) {
  const ConvolutionRealRows& routines = convolutionRealRows().For(views.source.type);
  const WindowPlan plan{
      .memoryBytes = RealBand::MemoryBytes(rule), .effort = effort, .startRows = 1};
  return WindowBandsRun(views, plan,
                        [&](const WindowBand& band) { RealBand(band, rule, routines).Run(); });
}

Status Walk(const WindowViews& views, const ConvolutionMatrix& matrix, ConvolutionPlan* plan) {
  const RowEffort effort = 1 + std::min(plan->rule.tapCount, INT16_MAX) / 2;
  if (plan->isFractional || views.source.type == IMAGE_SGL) {
    return WalkOfFloats(views, plan->rule, effort);
  }
  const ConvolutionRoutine routine = ConvolutionRoutineOf(views, plan);
  if (!routine.down) return WindowWalk(views, ReachOf(matrix), effort, routine.row, plan->rule);
  const WindowPlan windowPlan{
      .memoryBytes = matrix.height * ConvolutionSumsBytes(views.source.width),
      .effort = matrix.height,
      .startRows = matrix.height};
  return WindowBandsRun(views, windowPlan,
                        [&](const WindowBand& band) { BandByFactors(band, *plan, routine); });
}

Status Convolute(const WindowImages& images, ConvolutionMatrix* matrix, int32_t borderFill) {
  if (!matrix) return STATUS_NULL_POINTER;
  const bool copies = ConvolutionCount(*matrix) < FEWEST_COEFFICIENTS;
  if (!copies && !matrix->coefficients) return STATUS_NULL_POINTER;

  const BorderFill fill = FillOf(borderFill);
  Operands operands;
  WindowOperandsSettle(images, fill, BorderNeeded(*matrix), &operands);
  if (operands.HasFailed()) return operands.status();
  if (copies) {
    operands.TakePixels();
    return operands.status();
  }

  ConvolutionPlan plan;
  Status status = ConvolutionPlanMake(*matrix, operands.source().type, &plan);
  if (status != STATUS_OK) return status;
  matrix->divider = plan.rule.divider;

  WindowViews views = WindowViewsOf(operands);
  ScratchImage widened;
  if (!views.IsEmpty() && operands.source().border < BorderRead(*matrix)) {
    status = WidenedCopy(operands.source(), fill, &widened);
    if (status != STATUS_OK) return status;
    const PixelView pixels = ViewOf(*widened.image());
    views.source = operands.HasMask() ? pixels.Part(operands.overlap()) : pixels;
  }
  status = Walk(views, *matrix, &plan);
  if (status == STATUS_OK) operands.Written();
  return status;
}

}  // namespace
}  // namespace zel

int32_t ZEL_Convolute(ImageRef source, ImageRef mask, ImageRef dest, ConvolutionMatrix* matrix,
                      int32_t borderFill) {
  return ZEL_ProcessError("ZEL_Convolute",
                          zel::Convolute({source, mask, dest}, matrix, borderFill));
}
