// Edges along a straight line of a picture: the picture is read along the line into a row of its
// own, in which the library looks for edges.
#include "orlune/gauge/line_edges.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace front {
namespace {

constexpr int32_t PLACES = 32;     // a pixel, at which edges can lie
constexpr int32_t LEVELS = 20000;  // from the darkest to the lightest; the library's are whole

// By which the means of both sides of an edge have to differ beyond what noise makes of them: less
// than one place in a million gets so far without an edge.
constexpr double NOISE_DISTANCE = 5;

// A value between pixels; the nearest ones beyond the picture.
template <class T>
double ValueAt(const ImageInfo& info, Place place) {
  const double x = std::clamp(place.x, 0.0, info.width - 1.0);
  const double y = std::clamp(place.y, 0.0, info.height - 1.0);
  const int32_t left = std::min(static_cast<int32_t>(x), std::max(info.width - 2, 0));
  const int32_t top = std::min(static_cast<int32_t>(y), std::max(info.height - 2, 0));
  const int32_t right = std::min(left + 1, info.width - 1);
  const T* row = Row<T>(info, top);
  const T* below = Row<T>(info, std::min(top + 1, info.height - 1));
  const double u = x - left, v = y - top;
  const double upper =
      static_cast<double>(row[left]) * (1 - u) + static_cast<double>(row[right]) * u;
  const double lower =
      static_cast<double>(below[left]) * (1 - u) + static_cast<double>(below[right]) * u;
  return upper * (1 - v) + lower * v;
}

// The means across the line at each pixel of its length, and of so many pixels before its start and
// behind its end.
std::vector<double> SignalOf(const Image& picture, const Line& line, int32_t margin, int32_t band) {
  const ImageInfo info = picture.Info();
  const double length = line.Length();
  const double ux = (line.to.x - line.from.x) / length, uy = (line.to.y - line.from.y) / length;
  std::vector<double> signal(static_cast<size_t>(std::ceil(length)) + 1 +
                             2 * static_cast<size_t>(margin));
  ForPixelType(info.type, [&](auto* pixel) {
    using T = std::remove_pointer_t<decltype(pixel)>;
    for (size_t i = 0; i < signal.size(); i++) {
      const Place middle = line.At(static_cast<double>(i) - margin);
      double sum = 0;
      for (int32_t j = 0; j < band; j++) {
        const double across = j - (band - 1) / 2.0;
        sum += ValueAt<T>(info, {middle.x - across * uy, middle.y + across * ux});
      }
      signal[i] = sum / band;
    }
  });
  return signal;
}

struct Levels {
  double low = 0, high = 0;
};

Levels LevelsOf(const std::vector<double>& signal) {
  constexpr double INFINITE = std::numeric_limits<double>::infinity();
  Levels levels{INFINITE, -INFINITE};
  for (const double value : signal) {
    if (!std::isfinite(value)) continue;
    levels.low = std::min(levels.low, value);
    levels.high = std::max(levels.high, value);
  }
  return levels;
}

// The deviation of single values, by the median of what neighbours differ by: edges are few.
double NoiseOf(const std::vector<double>& signal) {
  constexpr double MEDIAN_OF_DEVIATION = 0.6745;
  std::vector<double> steps;
  for (size_t i = 1; i < signal.size(); i++) {
    const double step = std::abs(signal[i] - signal[i - 1]);
    if (std::isfinite(step)) steps.push_back(step);
  }
  if (steps.empty()) return 0;
  const auto middle = steps.begin() + static_cast<std::ptrdiff_t>(steps.size() / 2);
  std::nth_element(steps.begin(), middle, steps.end());
  return *middle / MEDIAN_OF_DEVIATION / std::sqrt(2.0);
}

double ThresholdFor(const std::vector<double>& signal, const Levels& levels,
                    const EdgeSearch& search) {
  if (search.threshold) return *search.threshold;
  const double noise = NoiseOf(signal) * std::sqrt(2.0 / search.edgeWidth);
  return std::max((levels.high - levels.low) * search.share, NOISE_DISTANCE * noise);
}

std::vector<PointInt> PathAlong(int32_t count) {
  std::vector<PointInt> path(static_cast<size_t>(count));
  for (int32_t i = 0; i < count; i++) path[static_cast<size_t>(i)] = {i, 0};
  return path;
}

// The signal along a spline as a row of whole levels, in which windows of any width slide in no
// time.
Image FineRow(const std::vector<double>& signal, const Levels& levels) {
  const auto count = static_cast<int32_t>(signal.size());
  const Image coarse(IMAGE_SGL, 0, count, 1);
  std::transform(signal.begin(), signal.end(), Row<float>(coarse.Info(), 0), [&](double value) {
    return static_cast<float>((value - levels.low) / (levels.high - levels.low));
  });
  const std::vector<PointInt> path = PathAlong(count);
  float* values = nullptr;
  int32_t valueCount = 0;
  Check(ZEL_Interpolate1D(coarse, path.data(), count, INTERP_SPLINE, PLACES - 1, &values,
                          &valueCount));
  const Block<float> owner(values);
  Image row(IMAGE_I16, 0, valueCount, 1);
  std::transform(values, values + valueCount, Row<int16_t>(row.Info(), 0), [](float value) {
    const double level = static_cast<double>(value) * LEVELS - LEVELS / 2.0;
    return static_cast<int16_t>(level >= -LEVELS && level <= LEVELS ? std::lround(level) : 0);
  });
  return row;
}

// What the library finds along a path of the row, in pixels.
struct Crossing {
  double position = 0;
  bool rises = false;
};

std::vector<Crossing> CrossingsOf(const Image& row, const std::vector<PointInt>& path,
                                  int32_t threshold, int32_t edgeWidth) {
  EdgeRecord* edges = nullptr;
  PointFloat* places = nullptr;
  int32_t count = 0;
  Check(ZEL_FindEdges(row, path.data(), static_cast<int32_t>(path.size()), INTERP_LINEAR, 0,
                      threshold, edgeWidth * PLACES, 0, &count, &edges, &places));
  const Block<EdgeRecord> edgesOwner(edges);
  const Block<PointFloat> placesOwner(places);
  std::vector<Crossing> crossings;
  crossings.reserve(static_cast<size_t>(count));
  for (int32_t i = 0; i < count; i++) {
    crossings.push_back({static_cast<double>(edges[i].position) / PLACES, edges[i].polarity > 0});
  }
  return crossings;
}

// An edge stands where the difference of two windows first reaches the threshold, which is before
// its middle. Seen from the row's other end it is as far behind it: the mean of both is the middle.
std::vector<Crossing> EdgesOf(const Image& row, int32_t threshold, int32_t edgeWidth) {
  std::vector<PointInt> path = PathAlong(row.Info().width);
  const double end = (static_cast<double>(path.size()) - 1) / PLACES;
  const std::vector<Crossing> forward = CrossingsOf(row, path, threshold, edgeWidth);
  std::reverse(path.begin(), path.end());
  std::vector<Crossing> backward = CrossingsOf(row, path, threshold, edgeWidth);
  for (Crossing& crossing : backward) {
    crossing = {end - crossing.position, !crossing.rises};
  }
  std::reverse(backward.begin(), backward.end());

  constexpr double SLACK = 0.5;  // of a difference that only just reaches the threshold
  std::vector<Crossing> edges;
  for (size_t i = 0; i < forward.size(); i++) {
    const Crossing& start = forward[i];
    const double limit = i + 1 < forward.size() ? forward[i + 1].position : end;
    const auto finish = std::find_if(backward.begin(), backward.end(), [&](const Crossing& other) {
      return other.rises == start.rises && other.position >= start.position - SLACK &&
             other.position <= limit + SLACK;
    });
    if (finish != backward.end()) {
      edges.push_back({(start.position + finish->position) / 2, start.rises});
    }
  }
  return edges;
}

}  // namespace

double Line::Length() const {
  return std::hypot(to.x - from.x, to.y - from.y);
}

Place Line::At(double along) const {
  const double part = along / Length();
  return {from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part};
}

std::vector<LineEdge> EdgesAlong(const Image& picture, const Line& line, const EdgeSearch& search) {
  const ImageInfo info = picture.Info();
  const double length = line.Length();
  if (info.width == 0 || info.height == 0 || !(length > 0)) return {};
  // What the windows need on both sides of an edge at the line's very ends.
  const int32_t margin = 2 * search.edgeWidth + 2;
  const std::vector<double> signal = SignalOf(picture, line, margin, search.band);
  const Levels levels = LevelsOf(signal);
  const double threshold = ThresholdFor(signal, levels, search);
  if (!(levels.high - levels.low >= threshold && threshold > 0)) return {};

  const double level = threshold / (levels.high - levels.low) * LEVELS;
  const int32_t least = std::max(static_cast<int32_t>(std::lround(level)), 1);
  std::vector<LineEdge> edges;
  for (const Crossing& found : EdgesOf(FineRow(signal, levels), least, search.edgeWidth)) {
    const double along = found.position - margin;
    if (along < 0 || along > length) continue;
    const auto at = static_cast<size_t>(std::lround(found.position));
    const auto reach = static_cast<size_t>(search.edgeWidth);
    const double contrast =
        signal[std::min(at + reach, signal.size() - 1)] - signal[at - std::min(at, reach)];
    edges.push_back({along, found.rises, contrast});
  }
  return edges;
}

}  // namespace front
