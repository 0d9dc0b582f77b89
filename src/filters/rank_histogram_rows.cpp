// Column histograms of bytes, and the wanted rank in windows that slide along them.
#include "filters/rank_histogram_rows.h"

#include "engine/vectors.h"

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

// By reference: levels without registers of that size pass vectors in memory.
template <class T>
ZEL_INLINE void Read(T& counts, const void* at) {
  std::memcpy(&counts, at, sizeof(T));
}

template <class T>
ZEL_INLINE void Write(const T& counts, void* at) {
  std::memcpy(at, &counts, sizeof(T));
}

ZEL_INLINE void Add(Counts& counts, const uint16_t* other) {
  Counts added;
  Read(added, other);
  counts += added;
}

ZEL_INLINE void Subtract(Counts& counts, const uint16_t* other) {
  Counts subtracted;
  Read(subtracted, other);
  counts -= subtracted;
}

ZEL_INLINE void Add(WideCounts& counts, const uint16_t* other) {
  for (int32_t i = 0; i < 2; i++) {
    HalfCounts added;
    Read(added, other + i * RANK_SEGMENTS / 2);
    counts.half[i] += __builtin_convertvector(added, HalfWideCounts);
  }
}

ZEL_INLINE void Subtract(WideCounts& counts, const uint16_t* other) {
  for (int32_t i = 0; i < 2; i++) {
    HalfCounts subtracted;
    Read(subtracted, other + i * RANK_SEGMENTS / 2);
    counts.half[i] -= __builtin_convertvector(subtracted, HalfWideCounts);
  }
}

ZEL_INLINE void AddAt(uint16_t* at, const uint16_t* steps) {
  Counts counts;
  Read(counts, at);
  Add(counts, steps);
  Write(counts, at);
}

ZEL_INLINE void SubtractAt(uint16_t* at, const uint16_t* steps) {
  Counts counts;
  Read(counts, at);
  Subtract(counts, steps);
  Write(counts, at);
}

void Enter(const RankHistogram& histogram, const uint8_t* row) {
  uint16_t* segments = histogram.segmentCounts;
  uint16_t* places = histogram.placeCounts;
  const int64_t pitch = histogram.pitch;
  const int64_t columns = int64_t{histogram.columns} + histogram.width - 1;
  for (int64_t x = 0; x < columns; x++) {
    const uint32_t pixel = row[x];
    AddAt(segments + x * RANK_SEGMENTS, STEPS.row[pixel >> 4]);
    AddAt(places + ((pixel >> 4) * pitch + x) * RANK_SEGMENTS, STEPS.row[pixel & 15]);
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
    Counts counts;
    Read(counts, segments + x * RANK_SEGMENTS);
    Add(counts, STEPS.row[pixel >> 4]);
    Subtract(counts, STEPS.row[former >> 4]);
    Write(counts, segments + x * RANK_SEGMENTS);
    AddAt(places + ((pixel >> 4) * pitch + x) * RANK_SEGMENTS, STEPS.row[pixel & 15]);
    SubtractAt(places + ((former >> 4) * pitch + x) * RANK_SEGMENTS, STEPS.row[former & 15]);
  }
}

// How many of the running sums are at most the limit: which one is the first above it.
ZEL_INLINE uint32_t SumsUpTo(const Counts& sums, uint32_t limit) {
#if defined(ZEL_WIDE_VECTORS)
  const auto lanes = reinterpret_cast<__m256i>(sums);
  const __m256i most = _mm256_set1_epi16(static_cast<int16_t>(limit));
  const __m256i within = _mm256_cmpeq_epi16(_mm256_min_epu16(lanes, most), lanes);
  return static_cast<uint32_t>(
             __builtin_popcount(static_cast<uint32_t>(_mm256_movemask_epi8(within)))) /
         2;
#elif defined(ZEL_VECTORS) && defined(__SSE2__)
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
  Write(sums, kept);
  uint32_t count = 0;
  for (const uint16_t sum : kept) count += static_cast<uint32_t>(sum <= most);
  return count;
#endif
}

ZEL_INLINE uint32_t SumsUpTo(const WideCounts& sums, uint32_t limit) {
  uint32_t kept[RANK_SEGMENTS];
  Write(sums, kept);
  uint32_t count = 0;
  for (const uint32_t sum : kept) count += static_cast<uint32_t>(sum <= limit);
  return count;
}

// Moves the counts of a window from the one at `former` to the one at x.
template <class Sums>
ZEL_INLINE void Move(Sums& sums, const uint16_t* columns, int64_t former, int64_t x,
                     int64_t width) {
  if (2 * (x - former) > width) {
    sums = Sums{};
    for (int64_t i = x; i < x + width; i++) Add(sums, columns + i * RANK_SEGMENTS);
    return;
  }
  for (int64_t i = former; i < x; i++) {
    Add(sums, columns + (i + width) * RANK_SEGMENTS);
    Subtract(sums, columns + i * RANK_SEGMENTS);
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
    Write(segments, kept + RANK_SEGMENTS);

    T* windowPlace = windowPlaces + segment * RANK_SEGMENTS;
    Sums places;
    Read(places, windowPlace);
    Move(places, placeColumns + segment * pitch, placesAt[segment], x, width);
    Write(places, windowPlace);
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
