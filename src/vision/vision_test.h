// What tests of signals and edges share: paths, images from numbers, result tables, and edges by
// the rule in its plainest words.
#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <vector>

#include "harness/test_image.h"
#include "orlune_ptk.h"

namespace test::paths {

using Path = std::vector<PointInt>;

inline Path RowPath(int32_t count, int32_t y = 0) {
  Path path;
  for (int32_t x = 0; x < count; x++) path.push_back({x, y});
  return path;
}

// An image of one row.
template <class T>
TestImage RowImage(int32_t type, const std::vector<T>& values) {
  TestImage image(type, static_cast<int32_t>(values.size()), 1);
  for (size_t x = 0; x < values.size(); x++) image.Set<T>(static_cast<int32_t>(x), 0, values[x]);
  return image;
}

// Owns a result table of the library.
template <class T>
struct Table {
  T* records = nullptr;
  int32_t count = -1;

  Table() = default;
  Table(const Table&) = delete;
  Table& operator=(const Table&) = delete;
  ~Table() { ZEL_free(records); }
  const T& operator[](int32_t i) const { return records[i]; }
  std::vector<T> Copy() const { return {records, records + count}; }
};

inline int32_t Count(const Path& path) {
  return static_cast<int32_t>(path.size());
}

inline std::vector<float> Interpolated(ImageRef image, const Path& path, int32_t method,
                                       int32_t oversampling) {
  Table<float> values;
  EXPECT_EQ(ZEL_Interpolate1D(image, path.data(), Count(path), method, oversampling,
                              &values.records, &values.count),
            0);
  return values.Copy();
}

struct OracleEdge {
  float position, contrast;
  int32_t polarity;
  float x, y;
};

inline PointFloat OraclePoint(const Path& path, float position) {
  const auto k = static_cast<size_t>(std::floor(position));
  if (k + 1 >= path.size()) {
    return {static_cast<float>(path.back().x), static_cast<float>(path.back().y)};
  }
  const float f = position - std::floor(position);
  const auto along = [f](int32_t a, int32_t b) {
    volatile float step = (static_cast<float>(b) - static_cast<float>(a)) * f;
    return a == b ? static_cast<float>(a) : static_cast<float>(a) + step;
  };
  return {along(path[k].x, path[k + 1].x), along(path[k].y, path[k + 1].y)};
}

// The gradient as an array, every window summed from its first value on.
inline std::vector<float> OracleGradient(const std::vector<float>& s, int64_t w, int64_t g) {
  const auto n = static_cast<int64_t>(s.size());
  std::vector<float> d(s.size(), 0.0f);
  const auto sum = [&](int64_t from) {
    double total = 0;
    for (int64_t k = 0; k < w; k++) total += static_cast<double>(s[static_cast<size_t>(from + k)]);
    return static_cast<float>(total);
  };
  const int64_t off = g + w + 1;
  const int64_t zeros = w + 1 + (g + 1) / 2;
  for (int64_t i = 0; i + off + w <= n; i++) {
    volatile float difference = sum(i + off) - sum(i);
    d[static_cast<size_t>(zeros + i)] = difference;
  }
  return d;
}

// Edges of finite signals.
inline std::vector<OracleEdge> OracleEdges(const std::vector<float>& s, int32_t oversampling,
                                           int32_t threshold, int32_t edgeWidth, int32_t gap,
                                           const Path& path) {
  const auto n = static_cast<int64_t>(s.size());
  const int64_t factor = oversampling > 0 ? oversampling + 1 : 1;
  const int64_t w = (edgeWidth < 1 ? 2 : edgeWidth) * factor;
  const int64_t g = (gap < 0 ? 0 : gap) * factor;
  std::vector<OracleEdge> edges;
  if (g + 2 * w >= n) return edges;
  const std::vector<float> d = OracleGradient(s, w, g);
  const int64_t th = threshold * w;
  const int64_t steps = std::min(n + g - 2 * w, n);
  const auto at = [&](int64_t i) { return i < 0 ? 0.0f : d[static_cast<size_t>(i)]; };
  const auto reaches = [&](int64_t i) { return std::fabs(at(i)) >= static_cast<float>(th); };
  const auto append = [&](int64_t i, float contrast, int32_t polarity) {
    const auto position = static_cast<float>(static_cast<double>(i) / static_cast<double>(factor));
    const PointFloat p = OraclePoint(path, position);
    edges.push_back({position, contrast, polarity, p.x, p.y});
  };
  int64_t i = 0;
  while (i < steps) {
    if (static_cast<int64_t>(std::fabs(at(i))) < th) {
      i++;
    } else if (std::bit_cast<int32_t>(at(i)) > 0) {
      append(i, static_cast<float>(static_cast<int64_t>(at(i))) / static_cast<float>(w), 1);
      for (i++; i < steps && reaches(i) && !(at(i) < 0); i++) {
      }
    } else {
      if (i + 1 < steps) {
        append(i, std::fabs(at(i - 1)) / static_cast<float>(w), -1);
      }
      const int64_t start = i;
      while (i < steps && reaches(i) && !(at(i) > 0)) i++;
      if (i == start) i++;
    }
  }
  return edges;
}

}  // namespace test::paths
