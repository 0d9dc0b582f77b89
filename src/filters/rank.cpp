// Rank filters: the pixel that comes at a place when those of a window are sorted.
#include <algorithm>

#include "filters/rank_pass.h"

namespace zel {
namespace {

// What steps of a network may cost before another way is cheaper; measured at x86-64-v3.
constexpr int32_t MOST_STEPS[RANK_TYPES] = {240, 700, 350};

// In times of adding two rows.
constexpr RowEffort STEPS_OF_AN_EFFORT = 2;
constexpr RowEffort HISTOGRAM_EFFORT = 100;
constexpr RowEffort TILE_EFFORT = 500;

const RankRoutine* RoutineOf(const RankWindow& window) {
  for (const RankRoutine& routine : rankRows().routines) {
    const RankWindow& own = routine.window;
    if (own.width == window.width && own.height == window.height && own.order == window.order) {
      return &routine;
    }
  }
  return nullptr;
}

Status NetworkFilter(const WindowViews& views, const RankNetwork& network, RowEffort effort) {
  const WindowPlan plan{.memoryBytes = RankNetworkBytes(network, views.source),
                        .effort = effort,
                        .startRows = network.window.height};
  return WindowBandsRun(views, plan,
                        [&](const WindowBand& band) { RankNetworkRun(network, band); });
}

// Large windows, whose cost does not hang on the number of their pixels.
Status LargeFilter(const WindowViews& views, RankWindow window) {
  const bool bytes = views.source.type == IMAGE_U8;
  const WindowPlan plan{.memoryBytes = bytes ? RankHistogramBytes(views.source, window)
                                             : RankTilesBytes(views.source, window),
                        .effort = bytes ? HISTOGRAM_EFFORT : TILE_EFFORT,
                        .startRows = window.height};
  return WindowBandsRun(views, plan, [&](const WindowBand& band) {
    if (bytes) {
      RankHistogramRun(window, band);
    } else {
      RankTilesRun(window, band);
    }
  });
}

// Sorted lists of a network have no more entries than pixels on the shorter side of the wanted one,
// and it takes some steps for each.
bool NetworkMayPay(int32_t type, const RankWindow& window) {
  const int64_t pixels = int64_t{window.width} * window.height;
  return std::min<int64_t>(window.order + 1, pixels - window.order) <= MOST_STEPS[type];
}

Status Filter(const WindowViews& views, RankWindow window) {
  const int32_t type = views.source.type;
  if (const RankRoutine* routine = RoutineOf(window)) {
    return NetworkFilter(views, RankNetworkOf(*routine, views.source), routine->carries);
  }
  if (!NetworkMayPay(type, window)) return LargeFilter(views, window);
  WorkArray<RankProgram> program;
  if (!program.Allocate(1)) return STATUS_MEMORY_FULL;
  if (!RankProgramMake(window, MOST_STEPS[type], program.data())) return LargeFilter(views, window);
  return NetworkFilter(views, RankNetworkOf(program[0], views.source),
                       1 + program[0].StepsOfARow() / STEPS_OF_AN_EFFORT);
}

Status NthOrder(const WindowImages& images, int32_t width, int32_t height, int32_t order) {
  Operands operands;
  WindowOperandsSettle(images, BORDER_MIRROR, std::max({width, height, 0}) / 2, &operands);
  if (operands.HasFailed()) return operands.status();
  const int64_t pixels = int64_t{width} * height;
  if (width < 1 || height < 1 || pixels < 2) {
    operands.TakePixels();
    return operands.status();
  }
  const WindowViews views = WindowViewsOf(operands);
  if (views.IsEmpty()) {
    operands.Written();
    return STATUS_OK;
  }
  // Fits 32 bits: an image's block is large enough for the window.
  const auto wanted = static_cast<int32_t>(std::clamp<int64_t>(order, 0, pixels - 1));
  const Status status = Filter(views, {width, height, wanted});
  if (status == STATUS_OK) operands.Written();
  return status;
}

}  // namespace
}  // namespace zel

int32_t ZEL_NthOrder(ImageRef source, ImageRef mask, ImageRef destination, int32_t width,
                     int32_t height, int32_t order) {
  return ZEL_ProcessError("KORNthOrder",
                          zel::NthOrder({source, mask, destination}, width, height, order));
}
