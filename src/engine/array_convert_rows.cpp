// The conversion of one element for each pair of numeric types, and the table of the loops.
#include "engine/array_convert_rows.h"

#include <cstring>
#include <type_traits>

#include "core/numbers.h"

namespace zel::ZEL_LEVEL {
namespace {

template <class T>
constexpr bool IS_INTEGER = static_cast<T>(0.5) == T{0};

// Short rows go in blocks: a call for each would cost more than its bytes.
void CopyRows(const PointViews& views, const NoRule&) {
  constexpr int64_t blockBytes = 64;
  constexpr int64_t longRow = 1024;
  // Copies, as the compiler takes bytes that are written for any others.
  const PixelView source = views.first;
  const PixelView result = views.result;
  const int64_t bytes = result.RowBytes();
  const int64_t inBlocks = bytes < longRow ? bytes / blockBytes * blockBytes : 0;
  for (int64_t y = 0; y < result.height; y++) {
    const auto* from = source.Row<uint8_t>(y);
    auto* to = result.Row<uint8_t>(y);
    for (int64_t i = 0; i < inBlocks; i += blockBytes) std::memcpy(to + i, from + i, blockBytes);
    if (inBlocks < bytes) {
      std::memcpy(to + inBlocks, from + inBlocks, static_cast<size_t>(bytes - inBlocks));
    }
  }
}

template <class Source, class Destination>
void Convert(const PointViews& views, const NoRule& none) {
  if constexpr (std::is_same_v<Source, Destination>) {
    CopyRows(views, none);
  } else if constexpr (!IS_INTEGER<Source> && IS_INTEGER<Destination>) {
    MapSamePlace<Source, Destination>(
        views, [](Source value) { return CutLow<Destination>(static_cast<double>(value)); });
  } else {
    // A double holds every integer of these types, so that the way through it changes nothing.
    MapSamePlace<Source, Destination>(views,
                                      [](Source value) { return static_cast<Destination>(value); });
  }
}

template <class Source>
constexpr ArrayConverters FROM = {{
    &Convert<Source, int8_t>,
    &Convert<Source, int32_t>,
    &Convert<Source, int16_t>,
    &Convert<Source, float>,
    &Convert<Source, double>,
    nullptr,
    &Convert<Source, uint16_t>,
    &Convert<Source, uint32_t>,
    &Convert<Source, uint8_t>,
}};

}  // namespace

extern const ArrayRows arrayRows = {{FROM<int8_t>,
                                     FROM<int32_t>,
                                     FROM<int16_t>,
                                     FROM<float>,
                                     FROM<double>,
                                     {},
                                     FROM<uint16_t>,
                                     FROM<uint32_t>,
                                     FROM<uint8_t>}};

}  // namespace zel::ZEL_LEVEL
