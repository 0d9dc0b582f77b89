// The conversion of one element for each pair of numeric types, and the table of the loops.
#include "engine/array_convert_rows.h"

#include <type_traits>

#include "core/numbers.h"
#include "engine/rows_copy.h"

namespace zel::ZEL_LEVEL {
namespace {

template <class T>
constexpr bool IS_INTEGER = static_cast<T>(0.5) == T{0};

template <class Source, class Destination>
void Convert(const PointViews& views, const NoRule&) {
  if constexpr (std::is_same_v<Source, Destination>) {
    RowsCopy(views.first, views.result);
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
