// Column histograms of bytes, and the wanted rank in windows that slide along them.
#include "filters/rank_histogram_rows.h"

#include <cstring>

#include "core/numbers.h"

#if defined(ZEL_VECTORS)
#include <immintrin.h>
#endif

namespace zel::ZEL_LEVEL {
namespace {

// Running sums of columns, and of windows of up to 65535 pixels.
using Counts [[gnu::vector_size(RANK_SEGMENTS * sizeof(uint16_t))]] = uint16_t;

// Running sums of larger windows.
using HalfCounts [[gnu::vector_size(RANK_SEGMENTS / 2 * sizeof(uint16_t))]] = uint16_t;
using HalfWideCounts [[gnu::vector_size(RANK_SEGMENTS / 2 * sizeof(uint32_t))]] = uint32_t;
struct WideCounts {
  HalfWideCounts half[2];
};

template <class T>
ZEL_INLINE T Load(const void* at) {
  T counts;
  std::memcpy(&counts, at, sizeof(T));
  return counts;
}

template <class T>
ZEL_INLINE void Store(void* at, const T& counts) {
  std::memcpy(at, &counts, sizeof(T));
}

// What one pixel adds to running sums.
struct StepTable {
  alignas(32) uint16_t row[RANK_SEGMENTS][RANK_SEGMENTS];
};
constexpr StepTable StepsMake() {
  StepTable table{};
  for (int32_t from = 0; from < RANK_SEGMENTS; from++) {
    for (int32_t i = from; i < RANK_SEGMENTS; i++) table.row[from][i] = 1;
  }
  return table;
}
constexpr StepTable STEPS = StepsMake();

ZEL_INLINE Counts StepsFrom(uint32_t from) {
  return Load<Counts>(STEPS.row[from]);
}

ZEL_INLINE void Add(uint16_t* at, const Counts& counts) {
  Store(at, static_cast<Counts>(Load<Counts>(at) + counts));
}

void Enter(const RankHistogram& histogram, const uint8_t* row) {
  uint16_t* segments = histogram.segmentCounts;
  uint16_t* places = histogram.placeCounts;
  const int64_t pitch = histogram.pitch;
  const int64_t columns = int64_t{histogram.columns} + histogram.width - 1;
  for (int64_t x = 0; x < columns; x++) {
    const uint32_t pixel = row[x];
    Add(segments + x * RANK_SEGMENTS, StepsFrom(pixel >> 4));
    Add(places + ((pixel >> 4) * pitch + x) * RANK_SEGMENTS, StepsFrom(pixel & 15));
  }
}

void Exchange(const RankHistogram& histogram, const uint8_t* enters, const uint8_t* leaves) {
  uint16_t* segments = histogram.segmentCounts;
  uint16_t* places = histogram.placeCounts;
  const int64_t pitch = histogram.pitch;
  const int64_t columns = int64_t{histogram.columns} + histogram.width - 1;
  for (int64_t x = 0; x < columns; x++) {
    const uint32_t pixel = enters[x];
    const uint32_t former = leaves[x];
    Add(segments + x * RANK_SEGMENTS,
        static_cast<Counts>(StepsFrom(pixel >> 4) - StepsFrom(former >> 4)));
    Add(places + ((pixel >> 4) * pitch + x) * RANK_SEGMENTS, StepsFrom(pixel & 15));
    Add(places + ((former >> 4) * pitch + x) * RANK_SEGMENTS,
        static_cast<Counts>(-StepsFrom(former & 15)));
  }
}

// How many of the running sums are at most the limit: which one is the first above it.
ZEL_INLINE uint32_t SumsUpTo(const Counts& sums, uint32_t limit) {
#if defined(ZEL_LEVEL_v4) || defined(ZEL_LEVEL_v3)
  const auto lanes = reinterpret_cast<__m256i>(sums);
  const __m256i most = _mm256_set1_epi16(static_cast<int16_t>(limit));
  const __m256i within = _mm256_cmpeq_epi16(_mm256_min_epu16(lanes, most), lanes);
  return static_cast<uint32_t>(
             __builtin_popcount(static_cast<uint32_t>(_mm256_movemask_epi8(within)))) /
         2;
#elif defined(ZEL_VECTORS)
  __m128i halves[2];
  std::memcpy(halves, &sums, sizeof(halves));
  const __m128i most = _mm_set1_epi16(static_cast<int16_t>(limit));
  const __m128i zero = _mm_setzero_si128();
  const __m128i first = _mm_cmpeq_epi16(_mm_subs_epu16(halves[0], most), zero);
  const __m128i second = _mm_cmpeq_epi16(_mm_subs_epu16(halves[1], most), zero);
  const auto within = static_cast<uint32_t>(_mm_movemask_epi8(_mm_packs_epi16(first, second)));
  return static_cast<uint32_t>(__builtin_ctz(~within));
#else
  const auto most = static_cast<uint16_t>(limit);
  uint16_t kept[RANK_SEGMENTS];
  Store(kept, sums);
  uint32_t count = 0;
  for (const uint16_t sum : kept) count += static_cast<uint32_t>(sum <= most);
  return count;
#endif
}

ZEL_INLINE uint32_t SumsUpTo(const WideCounts& sums, uint32_t limit) {
  uint32_t kept[RANK_SEGMENTS];
  Store(kept, sums);
  uint32_t count = 0;
  for (const uint32_t sum : kept) count += static_cast<uint32_t>(sum <= limit);
  return count;
}

ZEL_INLINE void AddColumn(Counts& counts, const uint16_t* column) {
  counts += Load<Counts>(column);
}

ZEL_INLINE void AddColumn(WideCounts& counts, const uint16_t* column) {
  for (int32_t i = 0; i < 2; i++) {
    const auto half = Load<HalfCounts>(column + i * RANK_SEGMENTS / 2);
    counts.half[i] += __builtin_convertvector(half, HalfWideCounts);
  }
}

ZEL_INLINE void TakeColumn(Counts& counts, const uint16_t* column) {
  counts -= Load<Counts>(column);
}

ZEL_INLINE void TakeColumn(WideCounts& counts, const uint16_t* column) {
  for (int32_t i = 0; i < 2; i++) {
    const auto half = Load<HalfCounts>(column + i * RANK_SEGMENTS / 2);
    counts.half[i] -= __builtin_convertvector(half, HalfWideCounts);
  }
}

// Moves the counts of a window from the one at `former` to the one at x.
template <class Sums>
ZEL_INLINE void Move(Sums& sums, const uint16_t* columns, int64_t former, int64_t x,
                     int64_t width) {
  if (2 * (x - former) > width) {
    sums = Sums{};
    for (int64_t i = x; i < x + width; i++) AddColumn(sums, columns + i * RANK_SEGMENTS);
    return;
  }
  for (int64_t i = former; i < x; i++) {
    AddColumn(sums, columns + (i + width) * RANK_SEGMENTS);
    TakeColumn(sums, columns + i * RANK_SEGMENTS);
  }
}

template <class Sums, class T>
ZEL_INLINE void SelectWith(const RankHistogram& histogram, uint8_t* to) {
  constexpr int64_t nowhere = INT32_MIN;
  const int64_t width = histogram.width;
  const int64_t columns = histogram.columns;
  const auto order = static_cast<uint32_t>(histogram.order);
  const uint16_t* segmentColumns = histogram.segmentCounts;
  const uint16_t* placeColumns = histogram.placeCounts;
  const int64_t pitch = int64_t{histogram.pitch} * RANK_SEGMENTS;
  T* windowPlaces = reinterpret_cast<T*>(histogram.windowPlaces);
  int64_t placesAt[RANK_SEGMENTS];  // the window of windowPlaces
  for (int64_t& x : placesAt) x = nowhere;

  alignas(64) T kept[2 * RANK_SEGMENTS] = {};  // the upper half; nothing is below the first segment
  Sums segments{};
  int64_t former = nowhere;
  for (int64_t x = 0; x < columns; x++) {
    Move(segments, segmentColumns, former, x, width);
    former = x;
    const uint32_t segment = SumsUpTo(segments, order);
    Store(kept + RANK_SEGMENTS, segments);

    T* windowPlace = windowPlaces + segment * RANK_SEGMENTS;
    auto places = Load<Sums>(windowPlace);
    Move(places, placeColumns + segment * pitch, placesAt[segment], x, width);
    Store(windowPlace, places);
    placesAt[segment] = x;
    const uint32_t place = SumsUpTo(places, order - kept[RANK_SEGMENTS - 1 + segment]);
    to[x] = static_cast<uint8_t>(segment * RANK_SEGMENTS + place);
  }
}

void Select(const RankHistogram& histogram, uint8_t* to) {
  if (histogram.pixels <= UINT16_MAX) {
    SelectWith<Counts, uint16_t>(histogram, to);
  } else {
    SelectWith<WideCounts, uint32_t>(histogram, to);
  }
}

}  // namespace

extern const RankHistogramRows rankHistogramRows = {
    .enter = &Enter,
    .exchange = &Exchange,
    .select = &Select,
};

}  // namespace zel::ZEL_LEVEL
