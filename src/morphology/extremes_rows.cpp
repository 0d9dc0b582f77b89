// Row routines of morphology.
#include "morphology/extremes_rows.h"

#include <algorithm>
#include <cstddef>
#include <type_traits>
#include <utility>

#include "engine/vectors.h"

namespace zel::ZEL_LEVEL {
namespace {

// ---- rules, for vectors as for single pixels. `first` counts where both are equal.

struct Largest {
  template <class T>
  static constexpr T START = NEAREST<T>;
  template <class V>
  ZEL_INLINE static V Of(V first, V second) {
    return second > first ? second : first;
  }
};

struct Smallest {
  template <class T>
  static constexpr T START = FARTHEST<T>;
  template <class V>
  ZEL_INLINE static V Of(V first, V second) {
    return second < first ? second : first;
  }
};

template <class V>
ZEL_INLINE V All(uint8_t value) {
  return static_cast<V>(V{} + value);
}

template <Finish finish, class V>
ZEL_INLINE V Finished(V extreme, V centre) {
  if constexpr (finish == FINISH_VALUE) {
    return extreme;
  } else {
    const V none = All<V>(0);
    const V mark = Smallest::Of(extreme, All<V>(1));
    if constexpr (finish == FINISH_MARK) return mark;
    if constexpr (finish == FINISH_KEEP) return extreme != none ? centre : none;
    if constexpr (finish == FINISH_ADD) return Largest::Of(centre, mark);
    if constexpr (finish == FINISH_ADD_MARK) {
      return Smallest::Of(static_cast<V>(extreme | centre), All<V>(1));
    }
    // By comparisons alone: g++ 12 fails at -O1 and -O2 on a minimum of which some become 0.
    if constexpr (finish == FINISH_OUTER) {
      return ((centre != none) | (extreme == none)) ? none : All<V>(1);
    }
    if constexpr (finish == FINISH_INNER) {
      return ((extreme != none) | (centre == none)) ? none : All<V>(1);
    }
  }
}

// ---- loops

// step(V{}, x) for vectors that cover all columns: the last one may cover some of those before it
// again, so that doing a column twice must change nothing.
template <class T, class Step>
ZEL_INLINE void EachVector(int64_t begin, int64_t columns, const Step& step) {
  constexpr int64_t lanes = LANES_OF<T>;
  if (columns < lanes) {
    for (int64_t x = begin; x < columns; x++) step(T{}, x);
    return;
  }
  int64_t x = begin;
  for (; x + lanes <= columns; x += lanes) step(Vector<T>{}, x);
  if (x < columns) step(Vector<T>{}, columns - lanes);
}

template <class T, class Rule, class V>
ZEL_INLINE V Start() {
  return static_cast<V>(V{} + Rule::template START<T>);
}

// The extreme of pixels at `count` distances from each one, for count up to 4.
template <class T, class Rule, int32_t count>
void Reach(const T* from, const int32_t* distances, T* to, int64_t columns) {
  const T* const second = from + distances[count > 1 ? 1 : 0];
  const T* const third = from + distances[count > 2 ? 2 : 0];
  const T* const fourth = from + distances[count > 3 ? 3 : 0];
  EachVector<T>(0, columns, [=](auto kind, int64_t x) {
    using V = decltype(kind);
    V extreme = Load<V>(from + x);
    if constexpr (std::is_same_v<T, float>) {
      extreme = Rule::Of(Start<T, Rule, V>(), extreme);
    }
    if constexpr (count > 1) extreme = Rule::Of(extreme, Load<V>(second + x));
    if constexpr (count > 2) extreme = Rule::Of(extreme, Load<V>(third + x));
    if constexpr (count > 3) extreme = Rule::Of(extreme, Load<V>(fourth + x));
    Store(to + x, extreme);
  });
}

constexpr int32_t GROWTH = 4;

template <class T, class Rule>
constexpr decltype(&Reach<T, Rule, 1>) REACHES[GROWTH] = {&Reach<T, Rule, 1>, &Reach<T, Rule, 2>,
                                                          &Reach<T, Rule, 3>, &Reach<T, Rule, 4>};

// A pass makes spans up to four times as long as those before it, which may overlap in it.
template <class T, class Rule>
void Span(const void* source, int32_t length, void* memory, void* result, int64_t columns) {
  const auto* from = static_cast<const T*>(source);
  T* free = static_cast<T*>(memory);
  T* next = free ? free + columns + length - 1 : nullptr;  // short spans need no memory
  int32_t distances[GROWTH] = {0, 1, 2, 3};
  int32_t covered = std::min(length, GROWTH);
  int32_t count = covered;
  while (covered < length) {
    REACHES<T, Rule>[count - 1](from, distances, free, columns + length - covered);
    from = free;
    std::swap(free, next);
    const int32_t reached = length / GROWTH >= covered ? covered * GROWTH : length;
    count = (reached + covered - 1) / covered;
    for (int32_t i = 1; i < count - 1; i++) distances[i] = i * covered;
    distances[count - 1] = reached - covered;
    covered = reached;
  }
  REACHES<T, Rule>[count - 1](from, distances, static_cast<T*>(result), columns);
}

template <class T, class Rule>
void Join(const void* first, const void* second, void* to, int64_t columns) {
  const auto* a = static_cast<const T*>(first);
  const auto* b = static_cast<const T*>(second);
  auto* results = static_cast<T*>(to);
  EachVector<T>(0, columns, [=](auto kind, int64_t x) {
    using V = decltype(kind);
    Store(results + x, Rule::Of(Load<V>(a + x), Load<V>(b + x)));
  });
}

template <class T, class V>
ZEL_INLINE V PixelAt(const void* row, int64_t x) {
  return Load<V>(static_cast<const T*>(row) + x);
}

// Vectors side by side that a list is looked through for at once.
constexpr int32_t BLOCK = 4;

template <class T, class Rule>
struct Block {
  Vector<T> values[BLOCK];

  ZEL_INLINE Block() {
    for (Vector<T>& value : values) value = Start<T, Rule, Vector<T>>();
  }
  ZEL_INLINE void Add(const void* pixels, int64_t x) {
    for (int32_t i = 0; i < BLOCK; i++) {
      values[i] = Rule::Of(values[i], PixelAt<T, Vector<T>>(pixels, x + i * LANES_OF<T>));
    }
  }
};

template <class T, class Rule, class V>
ZEL_INLINE V ExtremeOf(const PixelList& list, int64_t x) {
  V extreme = Start<T, Rule, V>();
  for (int32_t i = 0; i < list.count; i++) {
    extreme = Rule::Of(extreme, PixelAt<T, V>(list.pixels[i], x));
  }
  return extreme;
}

template <class T, Finish finish, class V>
ZEL_INLINE void StoreFinished(V extreme, const void* centre, void* to, int64_t x) {
  V pixel{};
  if constexpr (finish != FINISH_VALUE && finish != FINISH_MARK) pixel = PixelAt<T, V>(centre, x);
  Store(static_cast<T*>(to) + x, Finished<finish>(extreme, pixel));
}

template <class T, Finish finish, class Rule>
ZEL_INLINE void StoreFinished(const Block<T, Rule>& block, const void* centre, void* to,
                              int64_t x) {
  for (int32_t i = 0; i < BLOCK; i++) {
    StoreFinished<T, finish>(block.values[i], centre, to, x + i * LANES_OF<T>);
  }
}

// A list of so many places, which stay in registers.
template <class T, class Rule, Finish finish, size_t count>
void ListOf(const PixelList& list, const void* centre, void* to, int64_t columns) {
  const T* places[count];
  for (size_t i = 0; i < count; i++) places[i] = static_cast<const T*>(list.pixels[i]);
  EachVector<T>(0, columns, [=](auto kind, int64_t x) {
    using V = decltype(kind);
    V extreme = Start<T, Rule, V>();
    for (size_t i = 0; i < count; i++) extreme = Rule::Of(extreme, Load<V>(places[i] + x));
    StoreFinished<T, finish>(extreme, centre, to, x);
  });
}

template <class T, class Rule, Finish finish>
void LongList(const PixelList& list, const void* centre, void* to, int64_t columns) {
  const PixelList pixels = list;
  int64_t done = 0;
  for (; done + BLOCK * LANES_OF<T> <= columns; done += BLOCK * LANES_OF<T>) {
    Block<T, Rule> block;
    for (int32_t i = 0; i < pixels.count; i++) block.Add(pixels.pixels[i], done);
    StoreFinished<T, finish>(block, centre, to, done);
  }
  EachVector<T>(done, columns, [=](auto kind, int64_t x) {
    using V = decltype(kind);
    StoreFinished<T, finish>(ExtremeOf<T, Rule, V>(pixels, x), centre, to, x);
  });
}

template <class T, class Rule, Finish finish>
void List(const PixelList& list, const void* centre, void* to, int64_t columns) {
  switch (list.count) {
    case 2:
      return ListOf<T, Rule, finish, 2>(list, centre, to, columns);
    case 3:
      return ListOf<T, Rule, finish, 3>(list, centre, to, columns);
    case 5:
      return ListOf<T, Rule, finish, 5>(list, centre, to, columns);
    case 7:
      return ListOf<T, Rule, finish, 7>(list, centre, to, columns);
    case 9:
      return ListOf<T, Rule, finish, 9>(list, centre, to, columns);
    default:
      return LongList<T, Rule, finish>(list, centre, to, columns);
  }
}

// Not 0 where all of the first list are set, and none of the second.
template <class V>
ZEL_INLINE V Matched(V smallestSet, V largestClear) {
  return largestClear != V{} ? V{} : smallestSet;
}

template <Finish finish>
void Match(const PixelList& setList, const PixelList& clearList, const void* centre, void* to,
           int64_t columns) {
  const PixelList set = setList;
  const PixelList clear = clearList;
  constexpr int64_t blockColumns = BLOCK * LANES_OF<uint8_t>;
  int64_t done = 0;
  for (; done + blockColumns <= columns; done += blockColumns) {
    Block<uint8_t, Smallest> smallest;
    Block<uint8_t, Largest> largest;
    for (int32_t i = 0; i < set.count; i++) smallest.Add(set.pixels[i], done);
    for (int32_t i = 0; i < clear.count; i++) largest.Add(clear.pixels[i], done);
    for (int32_t i = 0; i < BLOCK; i++) {
      smallest.values[i] = Matched(smallest.values[i], largest.values[i]);
    }
    StoreFinished<uint8_t, finish>(smallest, centre, to, done);
  }
  EachVector<uint8_t>(done, columns, [=](auto kind, int64_t x) {
    using V = decltype(kind);
    const V smallest = ExtremeOf<uint8_t, Smallest, V>(set, x);
    const V largest = ExtremeOf<uint8_t, Largest, V>(clear, x);
    StoreFinished<uint8_t, finish>(Matched(smallest, largest), centre, to, x);
  });
}

void Subtract(const void* first, const void* second, void* to, int64_t columns) {
  const auto* a = static_cast<const uint8_t*>(first);
  const auto* b = static_cast<const uint8_t*>(second);
  auto* results = static_cast<uint8_t*>(to);
  EachVector<uint8_t>(0, columns, [=](auto kind, int64_t x) {
    using V = decltype(kind);
    const V larger = Load<V>(a + x);
    Store(results + x, static_cast<V>(larger - Smallest::Of(larger, Load<V>(b + x))));
  });
}

template <class Rule>
constexpr ExtremeRoutines BYTES = {
    .span = &Span<uint8_t, Rule>,
    .join = &Join<uint8_t, Rule>,
    .list = {&List<uint8_t, Rule, FINISH_VALUE>, &List<uint8_t, Rule, FINISH_MARK>,
             &List<uint8_t, Rule, FINISH_KEEP>, &List<uint8_t, Rule, FINISH_ADD>,
             &List<uint8_t, Rule, FINISH_ADD_MARK>, &List<uint8_t, Rule, FINISH_OUTER>,
             &List<uint8_t, Rule, FINISH_INNER>},
};

template <class T, class Rule>
constexpr ExtremeRoutines LEVELS = {
    .span = &Span<T, Rule>,
    .join = &Join<T, Rule>,
    .list = {&List<T, Rule, FINISH_VALUE>},
};

}  // namespace

extern const MorphologyRows morphologyRows = {
    .u8 = {BYTES<Largest>, BYTES<Smallest>},
    .i16 = {LEVELS<int16_t, Largest>, LEVELS<int16_t, Smallest>},
    .sgl = {LEVELS<float, Largest>, LEVELS<float, Smallest>},
    .match = {nullptr, &Match<FINISH_MARK>, &Match<FINISH_KEEP>, &Match<FINISH_ADD>,
              &Match<FINISH_ADD_MARK>, nullptr, &Match<FINISH_INNER>},
    .subtract = &Subtract,
};

}  // namespace zel::ZEL_LEVEL
