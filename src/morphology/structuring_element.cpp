// Structuring elements: what they ask of images, and the three that the library keeps for callers.
#include "morphology/structuring_element.h"

#include <algorithm>
#include <cstddef>

namespace zel {
namespace {

template <size_t positions>
struct Ones {
  int32_t members[positions] = {};

  constexpr Ones() {
    for (int32_t& member : members) member = 1;
  }
};

template <int32_t side>
StructuringElement* SquareOfOnes() {
  static Ones<size_t{side} * side> ones;
  static StructuringElement square{side, side, ones.members, 0};
  return &square;
}

}  // namespace

int64_t ElementPositions(const StructuringElement& element) {
  if (element.width < 1 || element.height < 1) return 0;
  return int64_t{element.width} * element.height;
}

int64_t ElementMembers(const StructuringElement& element) {
  const int64_t positions = ElementPositions(element);
  if (positions < LEAST_ELEMENT_POSITIONS) return 0;
  return std::count_if(element.elements, element.elements + positions,
                       [](int32_t number) { return number != 0; });
}

int32_t ElementBorder(const StructuringElement& element) {
  return (std::max({element.width, element.height, 1}) - 1) / 2;
}

bool ElementIsMissing(const StructuringElement* element) {
  if (!element) return true;
  return !element->elements && ElementPositions(*element) >= LEAST_ELEMENT_POSITIONS;
}

}  // namespace zel

StructuringElement* ZEL_Get_MO_STD3X3Ptr() {
  return zel::SquareOfOnes<3>();
}

StructuringElement* ZEL_Get_MO_STD5X5Ptr() {
  return zel::SquareOfOnes<5>();
}

StructuringElement* ZEL_Get_MO_STD7X7Ptr() {
  return zel::SquareOfOnes<7>();
}
