// The row routines of morphology: the largest and the smallest pixel at a list of places, and what
// binary operations make of it.
#pragma once

#include <cstdint>

#include "engine/levels.h"
#include "orlune_ptk.h"

namespace zel {

enum Extreme : int32_t { LARGEST, SMALLEST, EXTREMES };

// What is stored for an extreme e around a pixel c. Everything but FINISH_VALUE is for bytes.
enum Finish : int32_t {
  FINISH_VALUE,     // e
  FINISH_MARK,      // 1 where e is not 0
  FINISH_KEEP,      // c where e is not 0, else 0
  FINISH_ADD,       // c, and 1 where only e is not 0
  FINISH_ADD_MARK,  // 1 where either is not 0
  FINISH_OUTER,     // 1 where e is not 0 and c is
  FINISH_INNER,     // 1 where c is not 0 and e is
  FINISHES
};

// The least of all largest and the largest of all smallest pixels, also those of no places. Floats
// beyond them, and NaN, never show.
template <class T>
inline constexpr T FARTHEST = static_cast<T>(1e38f);
template <>
inline constexpr uint8_t FARTHEST<uint8_t> = UINT8_MAX;
template <>
inline constexpr int16_t FARTHEST<int16_t> = INT16_MAX;
template <class T>
inline constexpr T NEAREST = static_cast<T>(-1e38f);
template <>
inline constexpr uint8_t NEAREST<uint8_t> = 0;
template <>
inline constexpr int16_t NEAREST<int16_t> = INT16_MIN;

// For each of `columns` pixels of a row, those at the same column from each of these addresses. Of
// equal ones the first counts: zeros have signs.
struct PixelList {
  const void* const* pixels;
  int32_t count;
};

// The largest or the smallest pixels of one type.
struct ExtremeRoutines {
  // Of `length` pixels from each one on. `memory`: of two rows with length - 1 columns more.
  void (*span)(const void* from, int32_t length, void* memory, void* to, int64_t columns);
  // Of two pixels. The result may take the place of one of them.
  void (*join)(const void* first, const void* second, void* to, int64_t columns);
  // By Finish; null where the type has none.
  void (*list[FINISHES])(const PixelList& list, const void* centre, void* to, int64_t columns);
};

// Whether a list of pixels is all set and another one all clear, by Finish.
using MatchRow = void (*)(const PixelList& set, const PixelList& clear, const void* centre,
                          void* to, int64_t columns);

struct MorphologyRows {
  ExtremeRoutines u8[EXTREMES], i16[EXTREMES], sgl[EXTREMES];
  MatchRow match[FINISHES];
  // The first less the second, at least 0: bytes.
  void (*subtract)(const void* first, const void* second, void* to, int64_t columns);

  const ExtremeRoutines& For(int32_t type, Extreme extreme) const {
    return (type == IMAGE_U8 ? u8 : type == IMAGE_I16 ? i16 : sgl)[extreme];
  }
};
ZEL_ROW_TABLE(MorphologyRows, morphologyRows)

}  // namespace zel
