// The conversion of one element for each pair of numeric types, and the table of the loops.
#include "engine/array_convert_rows.h"

#include "core/numbers.h"

namespace zel::ZEL_LEVEL {
namespace {

template <class T>
constexpr bool IS_INTEGER = static_cast<T>(0.5) == T{0};

template <class Source, class Destination>
void Convert(const void* source, void* destination, int64_t count) {
  const auto* from = static_cast<const Source*>(source);
  auto* to = static_cast<Destination*>(destination);
  if constexpr (IS_INTEGER<Source>) {
    // A double holds every integer of these types, so that the way through it changes nothing.
    for (int64_t i = 0; i < count; i++) to[i] = static_cast<Destination>(from[i]);
  } else if constexpr (IS_INTEGER<Destination>) {
    for (int64_t i = 0; i < count; i++) {
      to[i] = CutLow<Destination>(static_cast<double>(from[i]));
    }
  } else {
    for (int64_t i = 0; i < count; i++) to[i] = static_cast<Destination>(from[i]);
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
