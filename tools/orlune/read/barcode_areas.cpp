// Rectangles around bars, read one by one, and the vote of their texts.
#include "orlune/read/barcode_areas.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>
#include <vector>

namespace front {
namespace {

constexpr int32_t SPLINE = 3;
constexpr int32_t LARGEST_SCALE = 3;  // of a code whose bars are narrow
constexpr int32_t MARGINS[] = {2, 5, 10};

// The longest stretch of places that pass, gaps of a few places left out of account.
template <class Passes>
std::pair<int32_t, int32_t> LongestStretch(int32_t count, int32_t gap, Passes passes) {
  std::pair<int32_t, int32_t> best{0, -1};
  int32_t start = -1, last = -1;
  for (int32_t i = 0; i < count; ++i) {
    if (!passes(i)) continue;
    if (start < 0 || i - last > gap) start = i;
    last = i;
    if (last - start > best.second - best.first) best = {start, last};
  }
  return best;
}

// Rows of bars change along and not across; columns of bars change more than those around them.
std::optional<Bars> FindBars(const Image& gray) {
  const ImageInfo info = gray.Info();
  if (info.width < 8 || info.height < 2) return std::nullopt;
  std::vector<int64_t> rows(static_cast<size_t>(info.height - 1));
  for (int32_t y = 0; y + 1 < info.height; ++y) {
    const uint8_t* row = Row<uint8_t>(info, y);
    const uint8_t* below = Row<uint8_t>(info, y + 1);
    int64_t sum = 0;
    for (int32_t x = 0; x + 1 < info.width; ++x) {
      sum += std::abs(row[x + 1] - row[x]) - std::abs(below[x] - row[x]);
    }
    rows[static_cast<size_t>(y)] = sum;
  }
  const int64_t most = *std::max_element(rows.begin(), rows.end());
  if (most <= 0) return std::nullopt;
  const auto [top, bottom] = LongestStretch(
      info.height - 1, 1, [&](int32_t y) { return 2 * rows[static_cast<size_t>(y)] > most; });

  std::vector<int64_t> columns(static_cast<size_t>(info.width), 0);
  for (int32_t y = top; y <= bottom; ++y) {
    const uint8_t* row = Row<uint8_t>(info, y);
    for (int32_t x = 0; x + 1 < info.width; ++x) {
      columns[static_cast<size_t>(x)] += std::abs(row[x + 1] - row[x]);
    }
  }
  constexpr int32_t REACH = 12;
  std::vector<int64_t> around(columns.size());
  for (int32_t x = 0; x < info.width; ++x) {
    const int32_t from = std::max(0, x - REACH), to = std::min(info.width, x + REACH + 1);
    for (int32_t i = from; i < to; ++i)
      around[static_cast<size_t>(x)] += columns[static_cast<size_t>(i)];
  }
  std::vector<int64_t> sorted = around;
  std::sort(sorted.begin(), sorted.end());
  const int64_t usual = sorted[sorted.size() * 4 / 5];
  auto [left, right] = LongestStretch(
      info.width, 8, [&](int32_t x) { return 20 * around[static_cast<size_t>(x)] > 7 * usual; });
  if (left >= right) return std::nullopt;
  const int64_t edge = *std::max_element(columns.begin() + left, columns.begin() + right + 1) / 4;
  while (left < right && columns[static_cast<size_t>(left)] < edge) ++left;
  while (right > left && columns[static_cast<size_t>(right)] < edge) --right;
  return Bars{left, top, right, bottom + 1};
}

// Runs of dark and light between the first dark and the last one, as shares of the whole, of the
// mean of some rows.
std::vector<double> RunsOf(const Image& gray, const Bars& area, bool backward) {
  constexpr int32_t LINES = 10;
  constexpr size_t SHARE_AROUND = 16;
  const ImageInfo info = gray.Info();
  const auto count = static_cast<size_t>(area.right - area.left + 1);
  std::vector<double> profile(count, 0.0);
  for (int32_t k = 0; k < LINES; ++k) {
    const int32_t y = area.top + (area.bottom - area.top) * k / LINES;
    const uint8_t* row = Row<uint8_t>(info, y) + area.left;
    for (size_t i = 0; i < count; ++i) profile[i] += row[backward ? count - 1 - i : i];
  }
  std::vector<double> crossings;
  for (size_t i = 1; i < count; ++i) {
    // Light and blur differ from end to end: the level is that of the neighbourhood.
    const size_t reach = count / SHARE_AROUND + 4;
    const auto from = profile.begin() + static_cast<std::ptrdiff_t>(i > reach ? i - reach : 0);
    const auto to = profile.begin() + static_cast<std::ptrdiff_t>(std::min(count, i + reach));
    const auto [low, high] = std::minmax_element(from, to);
    const double level = (*low + *high) / 2;
    const double a = profile[i - 1] - level, b = profile[i] - level;
    if ((a <= 0) == (b <= 0)) continue;
    if (crossings.empty() && a <= 0) continue;  // begins dark
    crossings.push_back(static_cast<double>(i - 1) + a / (a - b));
  }
  std::vector<double> runs;
  if (crossings.size() % 2 != 0) crossings.pop_back();  // ends dark
  for (size_t i = 1; i < crossings.size(); ++i) runs.push_back(crossings[i] - crossings[i - 1]);
  const double whole = crossings.empty() ? 1.0 : crossings.back() - crossings.front();
  for (double& run : runs) run /= whole;
  return runs;
}

// How far the bars are from those of a text, in modules a run; nothing where they are not as many.
std::optional<double> Misfit(const std::vector<double>& runs, const std::string& widths) {
  if (runs.size() != widths.size()) return std::nullopt;
  double modules = 0;
  for (const char width : widths) modules += width - '0';
  double sum = 0;
  for (size_t i = 0; i < runs.size(); ++i) sum += std::fabs(runs[i] * modules - (widths[i] - '0'));
  return sum / static_cast<double>(runs.size());
}

// How far bars, or spaces, are from being of two widths, as a part of the narrow one; nothing where
// wide ones are not two to four times as wide.
std::optional<double> TwoWidthMisfit(const std::vector<double>& runs, size_t first) {
  constexpr double LEAST_RATIO = 1.5, MOST_RATIO = 4.5;
  double low = runs[first], high = runs[first];
  for (size_t i = first; i < runs.size(); i += 2) {
    low = std::min(low, runs[i]);
    high = std::max(high, runs[i]);
  }
  double sums[2] = {}, counts[2] = {};
  const auto isWide = [&](size_t i) { return runs[i] > (low + high) / 2 ? 1 : 0; };
  for (size_t i = first; i < runs.size(); i += 2) {
    sums[isWide(i)] += runs[i];
    ++counts[isWide(i)];
  }
  if (counts[1] == 0) return std::nullopt;
  const double narrow = sums[0] / counts[0], wide = sums[1] / counts[1];
  if (wide < LEAST_RATIO * narrow || wide > MOST_RATIO * narrow) return std::nullopt;
  double sum = 0;
  for (size_t i = first; i < runs.size(); i += 2) {
    sum += std::fabs(runs[i] - (isWide(i) != 0 ? wide : narrow));
  }
  return sum / (counts[0] + counts[1]) / narrow;
}

// How far the bars are from those of a text, in modules a run; nothing where they are others
// altogether, or not as many.
std::optional<double> MisfitOf(BarcodeKind kind, const std::string& text,
                               const std::vector<double>& runs) {
  constexpr double WORST = 0.35;
  // The asterisks of Code 39 frame it better than its bars, which are worn on plates.
  if (kind == BarcodeKind::Code39) return 0.0;
  if (kind == BarcodeKind::Codabar) {
    constexpr double WORST_OF_TWO_WIDTHS = 0.25;
    constexpr size_t RUNS = 8;  // of a character
    if (runs.size() != RUNS * text.size() - 1) return std::nullopt;
    const std::optional<double> ofBars = TwoWidthMisfit(runs, 0);
    const std::optional<double> ofSpaces = TwoWidthMisfit(runs, 1);
    if (!ofBars || !ofSpaces || *ofBars + *ofSpaces > 2 * WORST_OF_TWO_WIDTHS) return std::nullopt;
    return (*ofBars + *ofSpaces) / 2;
  }
  std::string widths = WidthsOf(kind, text);
  std::optional<double> misfit = Misfit(runs, widths);
  if (misfit && kind == BarcodeKind::Interleaved) {
    // Wide is two to three times narrow.
    std::replace(widths.begin(), widths.end(), '3', '2');
    misfit = std::min(*misfit, *Misfit(runs, widths));
  }
  return misfit && *misfit <= WORST ? misfit : std::nullopt;
}

// Whether a text can have come from a code: the kinds without a check have starts and stops.
bool HasFrame(BarcodeKind kind, const std::string& text) {
  constexpr size_t SHORTEST = 4;
  const auto framed = [&](std::string_view first, std::string_view last) {
    if (text.size() < SHORTEST || first.find(text.front()) == std::string_view::npos) return false;
    if (last.find(text.back()) == std::string_view::npos) return false;
    return text.find_first_of(first, 1) >= text.size() - 1;
  };
  if (kind == BarcodeKind::Codabar) return framed("ABCD", "ABCD");
  if (kind == BarcodeKind::Code39) return framed("*", "*");
  return text.size() >= SHORTEST;
}

// Of the height of the bars: their middle, narrow bands, and single rows.
std::vector<std::pair<double, double>> Bands() {
  std::vector<std::pair<double, double>> bands = {{0.1, 0.9}, {0.3, 0.7}};
  for (int i = 1; i < 8; ++i) bands.emplace_back(i / 8.0, i / 8.0 + 0.06);
  for (int i = 1; i < 16; ++i) bands.emplace_back(i / 16.0, i / 16.0);
  return bands;
}

}  // namespace

void AreaSearch::TryArea(const Image& gray, const Bars& area, int32_t scale, double angle,
                         bool backward) {
  ++attempts_;
  BarcodeCall call = {.kind = settings_.kind, .backward = backward};
  // With its check asked for, a text loses what tells whether it is one.
  const std::optional<std::string> whole = ReadBars(gray, area, call);
  if (!whole || !HasFrame(settings_.kind, *whole)) return;
  const std::optional<double> misfit =
      MisfitOf(settings_.kind, *whole, RunsOf(gray, area, backward));
  if (!misfit) return;
  call.validate = settings_.validate;
  const std::optional<std::string> text = settings_.validate ? ReadBars(gray, area, call) : whole;
  if (!text || text->empty()) return;
  Candidate& candidate = candidates_[*text];
  candidate.weight += 1 / (0.05 + *misfit * *misfit);
  BarcodeReading& reading = candidate.reading;
  if (reading.readings++ != 0) return;
  reading.text = *text;
  reading.place = {area.left / scale, area.top / scale, (area.right - area.left + scale) / scale,
                   std::max(1, (area.bottom - area.top) / scale)};
  reading.angle = angle;
  reading.backward = backward;
}

bool AreaSearch::DoBarsReachTheEnds(const Image& gray) {
  constexpr int32_t WIDEST_BAR = 12;
  const std::optional<Bars> bars = FindBars(gray);
  return bars && (bars->left <= WIDEST_BAR || bars->right >= gray.Info().width - 1 - WIDEST_BAR);
}

std::optional<BarcodeReading> AreaSearch::Best() const {
  // Where there is no code, some of hundreds of rectangles still have a text.
  constexpr int LEAST_READINGS = 3, LEAST_PART = 60;
  const Candidate* best = nullptr;
  for (const auto& [text, candidate] : candidates_) {
    if (!best || candidate.weight > best->weight) best = &candidate;
  }
  const int least = std::min(std::max(LEAST_READINGS, attempts_ / LEAST_PART + 1), attempts_);
  if (!best || best->reading.readings < least) return std::nullopt;
  BarcodeReading reading = best->reading;
  reading.attempts = attempts_;
  return reading;
}

void AreaSearch::TryPicture(const Image& gray, double angle) {
  const std::optional<Bars> bars = FindBars(gray);
  if (!bars) return;
  const ImageInfo info = gray.Info();
  for (int32_t scale = 1; scale <= LARGEST_SCALE; ++scale) {
    Image larger(IMAGE_U8);
    Check(ZEL_Resample(gray, larger, 0, 0, info.height, info.width, info.width * scale,
                       info.height * scale, SPLINE));
    const int32_t height = (bars->bottom - bars->top) * scale;
    for (const auto& [from, to] : Bands()) {
      for (const int32_t margin : MARGINS) {
        const Bars area{
            std::max(0, (bars->left - margin) * scale),
            bars->top * scale + static_cast<int32_t>(from * height),
            std::min(info.width * scale - 1, (bars->right + margin) * scale + scale - 1),
            std::min(info.height * scale - 1,
                     bars->top * scale + static_cast<int32_t>(to * height))};
        TryArea(larger, area, scale, angle, false);
        TryArea(larger, area, scale, angle, true);
      }
    }
  }
}

}  // namespace front
