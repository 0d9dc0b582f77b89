// Automatic methods: how the boundary between objects and background is found.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "pictures/library.h"

namespace front {

enum class Method { Clustering, Entropy, Metric, Moments, Interclass, Otsu };

struct MethodRow {
  Method method;
  std::string_view name, meaning;
};
const std::vector<MethodRow>& AllMethods();
std::string_view MethodName(Method method);

using Histogram = std::array<uint32_t, 256>;

// The boundary of the two classes whose means lie furthest apart for their sizes: the lowest of
// those with the greatest variance between the classes.
int32_t OtsuBoundary(const Histogram& histogram);

struct Boundary {
  int32_t level = 0;   // the lowest of the light side
  std::string remark;  // what is odd about it; empty for nothing
};
// In 8-bit pixels. Of two levels there is only one boundary, of one none. Throws LibraryFailure.
std::optional<Boundary> FindBoundary(const pictures::Image& pixels, Method method);

}  // namespace front
