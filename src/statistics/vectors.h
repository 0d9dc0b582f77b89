// Vectors as wide as the registers of the processor level, for row routines.
#pragma once

#include <cstdint>
#include <cstring>

#include "core/numbers.h"

namespace zel::ZEL_LEVEL {
namespace {

#if defined(ZEL_LEVEL_v4)
constexpr int32_t VECTOR_BYTES = 64;
#elif defined(ZEL_LEVEL_v3)
constexpr int32_t VECTOR_BYTES = 32;
#else
constexpr int32_t VECTOR_BYTES = 16;
#endif

constexpr int32_t FLOAT_LANES = VECTOR_BYTES / 4;
constexpr int32_t DOUBLE_LANES = VECTOR_BYTES / 8;
using Floats = float __attribute__((vector_size(VECTOR_BYTES)));
using Doubles = double __attribute__((vector_size(VECTOR_BYTES)));
using DoubleMasks = int64_t __attribute__((vector_size(VECTOR_BYTES)));

// By address: a vector passed by value has an ABI that depends on the level.
template <class Vector>
ZEL_INLINE void Load(const void* from, Vector* vector) {
  std::memcpy(vector, from, sizeof(Vector));
}
template <class Vector>
ZEL_INLINE void Store(const Vector* vector, void* to) {
  std::memcpy(to, vector, sizeof(Vector));
}

}  // namespace
}  // namespace zel::ZEL_LEVEL
