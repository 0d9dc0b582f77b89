// Row routines between the samples of files and the pixels of images.
#include "files/samples_rows.h"

#if defined(ZEL_VECTORS) && defined(__SSE2__)
#include <immintrin.h>
#endif

#include <cmath>
#include <cstring>

#include "core/numbers.h"
#include "files/bytes.h"

namespace zel::ZEL_LEVEL {
namespace {

// A sample as every kind of pixel: the value's low bits for integers, the value for floats.
struct Gray {
  uint8_t byte;
  int16_t word;
  float value;
};

template <class T>
ZEL_INLINE Gray GrayOf(T value) {
  return {static_cast<uint8_t>(value), static_cast<int16_t>(value), static_cast<float>(value)};
}

// The mean of three colours: a third in integers, and a third as a factor in floats.
ZEL_INLINE Gray MeanOf(uint32_t red, uint32_t green, uint32_t blue) {
  const uint32_t sum = red + green + blue;
  const auto third = static_cast<uint16_t>(sum / 3);
  return {static_cast<uint8_t>(third), static_cast<int16_t>(third),
          static_cast<float>(sum * (1.0 / 3.0))};
}

// Cut toward zero, low bits kept. The processor's own conversion gives what CutLow promises: beyond
// 64 bits, and for what is no number, only the topmost bit is set.
template <class T>
ZEL_INLINE T CutBits(double value) {
#if defined(ZEL_VECTORS) && defined(__SSE2__)
  return static_cast<T>(_mm_cvttsd_si64(_mm_set_sd(value)));
#else
  return CutLow<T>(value);
#endif
}

ZEL_INLINE Gray MagnitudeOf(double real, double imaginary) {
  const double magnitude = std::sqrt(real * real + imaginary * imaginary);
  return {CutBits<uint8_t>(magnitude), CutBits<int16_t>(magnitude), static_cast<float>(magnitude)};
}

struct Complex {
  float real, imaginary;
};

ZEL_INLINE uint32_t InAllColours(uint8_t value) {
  return value * TABLE_GRAY_STEP;
}

// The sources. Each loads sample number i; colours differ from gray in a target that has colours,
// and complex samples in one that has two parts.
template <int Bits>
struct PackedBits {
  ZEL_INLINE static uint8_t At(const uint8_t* samples, int64_t i) {
    constexpr int perByte = 8 / Bits;
    const int shift = 8 - Bits - Bits * static_cast<int>(i % perByte);
    return static_cast<uint8_t>(samples[i / perByte] >> shift & ((1 << Bits) - 1));
  }
  ZEL_INLINE static Gray Load(const uint8_t* samples, int64_t i) { return GrayOf(At(samples, i)); }
};

template <class T>
struct Integers {
  ZEL_INLINE static T At(const uint8_t* samples, int64_t i) {
    T value;
    std::memcpy(&value, samples + i * static_cast<int64_t>(sizeof(T)), sizeof(T));
    return value;
  }
  ZEL_INLINE static Gray Load(const uint8_t* samples, int64_t i) { return GrayOf(At(samples, i)); }
};

struct Floats {
  ZEL_INLINE static Gray Load(const uint8_t* samples, int64_t i) {
    const float value = Integers<float>::At(samples, i);
    const auto wide = static_cast<double>(value);
    return {CutBits<uint8_t>(wide), CutBits<int16_t>(wide), value};
  }
};

struct Colours15 {
  ZEL_INLINE static uint32_t Colours(const uint8_t* samples, int64_t i) {
    const uint32_t word = Integers<uint16_t>::At(samples, i);
    return (word & 31) | (word >> 5 & 31) << 8 | (word >> 10 & 31) << 16;
  }
};

struct RedFirst24 {
  ZEL_INLINE static uint32_t Colours(const uint8_t* samples, int64_t i) {
    const uint8_t* at = samples + 3 * i;
    return uint32_t{at[0]} << 16 | uint32_t{at[1]} << 8 | at[2];
  }
};

struct BlueFirst24 {
  ZEL_INLINE static uint32_t Colours(const uint8_t* samples, int64_t i) {
    const uint8_t* at = samples + 3 * i;
    return uint32_t{at[2]} << 16 | uint32_t{at[1]} << 8 | at[0];
  }
};

struct Pixels32 {
  ZEL_INLINE static uint32_t Colours(const uint8_t* samples, int64_t i) {
    return Integers<uint32_t>::At(samples, i);
  }
};

struct Complex24 {
  ZEL_INLINE static int32_t PartAt(const uint8_t* at) {
    const uint32_t bits = uint32_t{at[0]} << 8 | uint32_t{at[1]} << 16 | uint32_t{at[2]} << 24;
    return static_cast<int32_t>(bits) >> 8;
  }
  ZEL_INLINE static Complex Parts(const uint8_t* samples, int64_t i) {
    return {static_cast<float>(PartAt(samples + 6 * i)),
            static_cast<float>(PartAt(samples + 6 * i + 3))};
  }
};

struct Complex64 {
  ZEL_INLINE static Complex Parts(const uint8_t* samples, int64_t i) {
    return Integers<Complex>::At(samples, i);
  }
};

// Colour and complex sources as gray.
template <class Source>
struct AsMean {
  ZEL_INLINE static Gray Load(const uint8_t* samples, int64_t i) {
    const uint32_t colours = Source::Colours(samples, i);
    return MeanOf(colours >> 16 & 0xFF, colours >> 8 & 0xFF, colours & 0xFF);
  }
};

template <class Source>
struct AsMagnitude {
  ZEL_INLINE static Gray Load(const uint8_t* samples, int64_t i) {
    const Complex parts = Source::Parts(samples, i);
    return MagnitudeOf(static_cast<double>(parts.real), static_cast<double>(parts.imaginary));
  }
};

template <class Source>
void ToU8(const uint8_t* samples, int64_t first, int64_t count, void* pixels) {
  auto* to = static_cast<uint8_t*>(pixels);
  for (int64_t i = 0; i < count; i++) to[i] = Source::Load(samples, first + i).byte;
}

template <class Source>
void ToI16(const uint8_t* samples, int64_t first, int64_t count, void* pixels) {
  auto* to = static_cast<int16_t*>(pixels);
  for (int64_t i = 0; i < count; i++) to[i] = Source::Load(samples, first + i).word;
}

template <class Source>
void ToSgl(const uint8_t* samples, int64_t first, int64_t count, void* pixels) {
  auto* to = static_cast<float*>(pixels);
  for (int64_t i = 0; i < count; i++) to[i] = Source::Load(samples, first + i).value;
}

template <class Source>
void ToRealPart(const uint8_t* samples, int64_t first, int64_t count, void* pixels) {
  auto* to = static_cast<Complex*>(pixels);
  for (int64_t i = 0; i < count; i++) to[i] = {Source::Load(samples, first + i).value, 0.0f};
}

template <class Source>
void ToAllColours(const uint8_t* samples, int64_t first, int64_t count, void* pixels) {
  auto* to = static_cast<uint32_t*>(pixels);
  for (int64_t i = 0; i < count; i++) to[i] = InAllColours(Source::Load(samples, first + i).byte);
}

template <class Source>
void ToColours(const uint8_t* samples, int64_t first, int64_t count, void* pixels) {
  auto* to = static_cast<uint32_t*>(pixels);
  for (int64_t i = 0; i < count; i++) to[i] = Source::Colours(samples, first + i);
}

template <class Source>
void ToComplex(const uint8_t* samples, int64_t first, int64_t count, void* pixels) {
  auto* to = static_cast<Complex*>(pixels);
  for (int64_t i = 0; i < count; i++) to[i] = Source::Parts(samples, first + i);
}

void CopyBytes(const uint8_t* samples, int64_t first, int64_t count, void* pixels) {
  std::memcpy(pixels, samples + first, static_cast<size_t>(count));
}

// Planes: the first one sets the pixels, the others join in.
void RedPlane(const uint8_t* samples, int64_t first, int64_t count, void* pixels) {
  auto* to = static_cast<uint32_t*>(pixels);
  for (int64_t i = 0; i < count; i++) to[i] = uint32_t{samples[first + i]} << 16;
}

template <int Byte>
void OneColourPlane(const uint8_t* samples, int64_t first, int64_t count, void* pixels) {
  auto* to = static_cast<uint8_t*>(pixels);
  for (int64_t i = 0; i < count; i++) to[4 * i + Byte] = samples[first + i];
}

void MeanWithSecondPlane(const uint8_t* samples, int64_t first, int64_t count, void* pixels) {
  auto* to = static_cast<uint8_t*>(pixels);
  for (int64_t i = 0; i < count; i++) {
    to[i] = static_cast<uint8_t>((samples[first + i] + to[i]) >> 1);
  }
}

void MeanWithThirdPlane(const uint8_t* samples, int64_t first, int64_t count, void* pixels) {
  auto* to = static_cast<uint8_t*>(pixels);
  for (int64_t i = 0; i < count; i++) {
    to[i] = static_cast<uint8_t>(static_cast<uint32_t>(samples[first + i] + 2 * to[i]) / 3);
  }
}

void Reverse16(const void* from, int64_t count, void* to) {
  const auto* in = static_cast<const uint8_t*>(from);
  auto* out = static_cast<uint8_t*>(to);
#pragma GCC ivdep
  for (int64_t i = 0; i < count; i++) {
    uint16_t word;
    std::memcpy(&word, in + 2 * i, 2);
    word = static_cast<uint16_t>(word << 8 | word >> 8);
    std::memcpy(out + 2 * i, &word, 2);
  }
}

void Reverse32(const void* from, int64_t count, void* to) {
  const auto* in = static_cast<const uint8_t*>(from);
  auto* out = static_cast<uint8_t*>(to);
#pragma GCC ivdep
  for (int64_t i = 0; i < count; i++) {
    uint32_t word;
    std::memcpy(&word, in + 4 * i, 4);
    word = __builtin_bswap32(word);
    std::memcpy(out + 4 * i, &word, 4);
  }
}

void InvertBytes(void* bytes, int64_t count) {
  auto* to = static_cast<uint8_t*>(bytes);
  for (int64_t i = 0; i < count; i++) to[i] = static_cast<uint8_t>(~to[i]);
}

// Byte shuffles between 3 and 4 bytes a pixel. Each does whole groups and answers how many pixels
// that were; the plain loop finishes.
#if defined(ZEL_LEVEL_v4)

constexpr int64_t GROUP = 16;

ZEL_INLINE __m512i WideningOrder(bool redFirst) {
  alignas(64) uint8_t order[64];
  for (int i = 0; i < 16; i++) {
    order[4 * i] = static_cast<uint8_t>(3 * i + (redFirst ? 2 : 0));
    order[4 * i + 1] = static_cast<uint8_t>(3 * i + 1);
    order[4 * i + 2] = static_cast<uint8_t>(3 * i + (redFirst ? 0 : 2));
    order[4 * i + 3] = 0;
  }
  return _mm512_load_si512(order);
}

template <bool RedFirst>
ZEL_INLINE int64_t WidenGroups(const uint8_t* from, int64_t count, uint8_t* to) {
  constexpr __mmask64 colours = 0x7777777777777777;
  constexpr __mmask64 threeQuarters = 0x0000FFFFFFFFFFFF;
  const __m512i order = WideningOrder(RedFirst);
  int64_t i = 0;
  for (; i + GROUP <= count; i += GROUP) {
    const __m512i packed = _mm512_maskz_loadu_epi8(threeQuarters, from + 3 * i);
    _mm512_storeu_si512(to + 4 * i, _mm512_maskz_permutexvar_epi8(colours, order, packed));
  }
  return i;
}

ZEL_INLINE __m512i PackingOrder(bool redFirst) {
  alignas(64) uint8_t order[64] = {};
  for (int i = 0; i < 16; i++) {
    order[3 * i] = static_cast<uint8_t>(4 * i + (redFirst ? 2 : 0));
    order[3 * i + 1] = static_cast<uint8_t>(4 * i + 1);
    order[3 * i + 2] = static_cast<uint8_t>(4 * i + (redFirst ? 0 : 2));
  }
  return _mm512_load_si512(order);
}

template <bool RedFirst>
ZEL_INLINE int64_t PackGroups(const uint8_t* from, int64_t count, uint8_t* to) {
  constexpr __mmask64 threeQuarters = 0x0000FFFFFFFFFFFF;
  const __m512i order = PackingOrder(RedFirst);
  int64_t i = 0;
  for (; i + GROUP <= count; i += GROUP) {
    const __m512i pixels = _mm512_loadu_si512(from + 4 * i);
    const __m512i packed = _mm512_maskz_permutexvar_epi8(threeQuarters, order, pixels);
    _mm512_mask_storeu_epi8(to + 3 * i, threeQuarters, packed);
  }
  return i;
}

#elif defined(ZEL_LEVEL_v3)

constexpr int64_t GROUP = 8;

template <bool RedFirst>
ZEL_INLINE int64_t WidenGroups(const uint8_t* from, int64_t count, uint8_t* to) {
  constexpr char r = RedFirst ? 2 : 0;
  constexpr char b = RedFirst ? 0 : 2;
  const __m256i order = _mm256_setr_epi8(
      r, 1, b, -1, 3 + r, 4, 3 + b, -1, 6 + r, 7, 6 + b, -1, 9 + r, 10, 9 + b, -1,  //
      r, 1, b, -1, 3 + r, 4, 3 + b, -1, 6 + r, 7, 6 + b, -1, 9 + r, 10, 9 + b, -1);
  // Each half takes 12 bytes; the second one's load ends 4 bytes behind them.
  int64_t i = 0;
  for (; i + GROUP + 2 <= count; i += GROUP) {
    const auto* at = reinterpret_cast<const __m128i*>(from + 3 * i);
    const auto* next = reinterpret_cast<const __m128i*>(from + 3 * i + 12);
    const __m256i packed = _mm256_set_m128i(_mm_loadu_si128(next), _mm_loadu_si128(at));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + 4 * i), _mm256_shuffle_epi8(packed, order));
  }
  return i;
}

template <bool RedFirst>
ZEL_INLINE int64_t PackGroups(const uint8_t* from, int64_t count, uint8_t* to) {
  constexpr char r = RedFirst ? 2 : 0;
  constexpr char b = RedFirst ? 0 : 2;
  const __m256i order = _mm256_setr_epi8(
      r, 1, b, 4 + r, 5, 4 + b, 8 + r, 9, 8 + b, 12 + r, 13, 12 + b, -1, -1, -1, -1,  //
      r, 1, b, 4 + r, 5, 4 + b, 8 + r, 9, 8 + b, 12 + r, 13, 12 + b, -1, -1, -1, -1);
  const __m256i together = _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 7, 7);
  int64_t i = 0;
  for (; i + GROUP <= count; i += GROUP) {
    const __m256i pixels = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + 4 * i));
    const __m256i packed =
        _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(pixels, order), together);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to + 3 * i), _mm256_castsi256_si128(packed));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(to + 3 * i + 16),
                     _mm256_extracti128_si256(packed, 1));
  }
  return i;
}

#else

// Four pixels are three words.
template <bool RedFirst>
ZEL_INLINE int64_t WidenGroups(const uint8_t* from, int64_t count, uint8_t* to) {
  int64_t i = 0;
  for (; i + 2 <= count; i++) {
    const uint32_t packed = LittleAt32(from + 3 * i);
    LittlePut32(to + 4 * i, RedFirst ? __builtin_bswap32(packed) >> 8 : packed & 0xFFFFFF);
  }
  return i;
}

template <bool RedFirst>
ZEL_INLINE int64_t PackGroups(const uint8_t* from, int64_t count, uint8_t* to) {
  int64_t i = 0;
  for (; i + 4 <= count; i += 4) {
    uint32_t pixels[4];
    for (int k = 0; k < 4; k++) {
      const uint32_t pixel = LittleAt32(from + 4 * (i + k));
      pixels[k] = RedFirst ? __builtin_bswap32(pixel) >> 8 : pixel & 0xFFFFFF;
    }
    uint8_t* at = to + 3 * i;
    LittlePut32(at, pixels[0] | pixels[1] << 24);
    LittlePut32(at + 4, pixels[1] >> 8 | pixels[2] << 16);
    LittlePut32(at + 8, pixels[2] >> 16 | pixels[3] << 8);
  }
  return i;
}

#endif

template <class Source, bool RedFirst>
void WidenColours(const uint8_t* samples, int64_t first, int64_t count, void* pixels) {
  auto* to = static_cast<uint8_t*>(pixels);
  const int64_t done = WidenGroups<RedFirst>(samples + 3 * first, count, to);
  ToColours<Source>(samples, first + done, count - done, to + 4 * done);
}

template <bool RedFirst>
void PackColours(const void* from, int64_t count, void* to) {
  const auto* in = static_cast<const uint8_t*>(from);
  auto* out = static_cast<uint8_t*>(to);
  for (int64_t i = PackGroups<RedFirst>(in, count, out); i < count; i++) {
    out[3 * i] = in[4 * i + (RedFirst ? 2 : 0)];
    out[3 * i + 1] = in[4 * i + 1];
    out[3 * i + 2] = in[4 * i + (RedFirst ? 0 : 2)];
  }
}

}  // namespace

#define ZEL_GRAY_TARGETS(Source) \
  { &ToU8<Source>, &ToI16<Source>, &ToSgl<Source>, &ToRealPart<Source>, &ToAllColours<Source> }

extern const SampleRows sampleRows = {
    {
        ZEL_GRAY_TARGETS(PackedBits<1>),
        ZEL_GRAY_TARGETS(PackedBits<2>),
        ZEL_GRAY_TARGETS(PackedBits<4>),
        {&CopyBytes, &ToI16<Integers<uint8_t>>, &ToSgl<Integers<uint8_t>>,
         &ToRealPart<Integers<uint8_t>>, &ToAllColours<Integers<uint8_t>>},
        ZEL_GRAY_TARGETS(Integers<int16_t>),
        ZEL_GRAY_TARGETS(Integers<int16_t>),
        ZEL_GRAY_TARGETS(Integers<int16_t>),
        {&ToU8<AsMean<Colours15>>, &ToI16<AsMean<Colours15>>, &ToSgl<AsMean<Colours15>>,
         &ToRealPart<AsMean<Colours15>>, &ToColours<Colours15>},
        {&ToU8<AsMean<RedFirst24>>, &ToI16<AsMean<RedFirst24>>, &ToSgl<AsMean<RedFirst24>>,
         &ToRealPart<AsMean<RedFirst24>>, &WidenColours<RedFirst24, true>},
        {},
        ZEL_GRAY_TARGETS(Integers<uint32_t>),
        ZEL_GRAY_TARGETS(Integers<int32_t>),
        {&ToU8<AsMean<Pixels32>>, &ToI16<AsMean<Pixels32>>, &ToSgl<AsMean<Pixels32>>,
         &ToRealPart<AsMean<Pixels32>>, nullptr},
        {&ToU8<Floats>, &ToI16<Floats>, nullptr, &ToRealPart<Floats>, &ToAllColours<Floats>},
        {&ToU8<AsMagnitude<Complex24>>, &ToI16<AsMagnitude<Complex24>>,
         &ToSgl<AsMagnitude<Complex24>>, &ToComplex<Complex24>,
         &ToAllColours<AsMagnitude<Complex24>>},
        {&ToU8<AsMagnitude<Complex64>>, &ToI16<AsMagnitude<Complex64>>,
         &ToSgl<AsMagnitude<Complex64>>, nullptr, &ToAllColours<AsMagnitude<Complex64>>},
    },
    {&ToU8<AsMean<RedFirst24>>, &ToI16<AsMean<RedFirst24>>, &ToSgl<AsMean<RedFirst24>>,
     &ToRealPart<AsMean<RedFirst24>>, &WidenColours<BlueFirst24, false>},
    {
        {&CopyBytes, &ToI16<Integers<uint8_t>>, &ToSgl<Integers<uint8_t>>,
         &ToRealPart<Integers<uint8_t>>, &RedPlane},
        {&MeanWithSecondPlane, nullptr, nullptr, nullptr, &OneColourPlane<1>},
        {&MeanWithThirdPlane, nullptr, nullptr, nullptr, &OneColourPlane<0>},
    },
    &Reverse16,
    &Reverse32,
    &PackColours<true>,
    &PackColours<false>,
    &InvertBytes,
};

#undef ZEL_GRAY_TARGETS

}  // namespace zel::ZEL_LEVEL
