// Selection networks on vectors of pixels, and their table.
#include "filters/rank_rows.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "engine/vectors.h"

namespace zel::ZEL_LEVEL {
namespace {

static_assert(RANK_VECTOR_BYTES % VECTOR_BYTES == 0);

// ---- routines of their own: all values of a plan are registers

template <int32_t WIDTH, int32_t HEIGHT, int32_t ORDER>
constexpr auto PlanOf() {
  NetworkPlan<1024, 16> plan{};
  PlanNetwork(plan, {WIDTH, HEIGHT, ORDER}, false);
  return plan;
}
template <int32_t WIDTH, int32_t HEIGHT, int32_t ORDER>
constexpr auto PLAN = PlanOf<WIDTH, HEIGHT, ORDER>();

template <const auto& plan, class T>
struct Registers {
  const RankGroup& group;
  int64_t column;
  Vector<T> values[static_cast<size_t>(plan.values - plan.rows)];  // of steps and carries
};

template <const auto& plan, NetworkTerm term, class T>
ZEL_INLINE Vector<T> Value(const Registers<plan, T>& in) {
  constexpr int32_t oldRows = plan.rows - plan.group;
  if constexpr (term.value < plan.rows) {
    const auto* row = reinterpret_cast<const T*>(in.group.rows[term.value - oldRows]);
    return Load<Vector<T>>(row + in.column + term.shift);
  } else {
    return in.values[term.value - plan.rows];
  }
}

template <const auto& plan, NetworkStep step, class T>
ZEL_INLINE void RunStep(Registers<plan, T>& in) {
  const Vector<T> a = Value<plan, step.first>(in);
  const Vector<T> b = Value<plan, step.second>(in);
  if constexpr (step.low != NO_VALUE) in.values[step.low - plan.rows] = a < b ? a : b;
  if constexpr (step.high != NO_VALUE) in.values[step.high - plan.rows] = a > b ? a : b;
}

template <const auto& plan, class T, int32_t... STEP, int32_t... CARRY, int32_t... RESULT>
ZEL_INLINE void RunPlan(Registers<plan, T>& in, std::integer_sequence<int32_t, STEP...>,
                        std::integer_sequence<int32_t, CARRY...>,
                        std::integer_sequence<int32_t, RESULT...>) {
  const int64_t at = in.column * static_cast<int64_t>(sizeof(T));
  uint8_t* carries = in.group.carries + at;
  const int64_t pitch = in.group.pitch;
  ((in.values[plan.carries[CARRY].into - plan.rows] = Load<Vector<T>>(carries + CARRY * pitch)),
   ...);
  (RunStep<plan, plan.steps[STEP]>(in), ...);
  (Store(carries + CARRY * pitch, Value<plan, plan.carries[CARRY].from>(in)), ...);
  (Store(in.group.results[RESULT] + at, Value<plan, plan.results[RESULT]>(in)), ...);
}

template <const auto& plan, class T>
void RunGroup(const RankGroup& group) {
  const int64_t columns = group.columns;
  for (int64_t x = 0; x < columns; x += LANES_OF<T>) {
    Registers<plan, T> in{.group = group, .column = x, .values = {}};
    RunPlan<plan, T>(in, std::make_integer_sequence<int32_t, plan.stepCount>(),
                     std::make_integer_sequence<int32_t, plan.carryCount>(),
                     std::make_integer_sequence<int32_t, plan.group>());
  }
}

template <int32_t WIDTH, int32_t HEIGHT, int32_t ORDER>
constexpr RankRoutine RoutineOf() {
  constexpr const auto& plan = PLAN<WIDTH, HEIGHT, ORDER>;
  static_assert(!plan.full);
  return {.window = plan.window,
          .group = plan.group,
          .carries = plan.carryCount,
          .byType = {&RunGroup<plan, uint8_t>, &RunGroup<plan, int16_t>, &RunGroup<plan, float>}};
}

// ---- step by step

template <class T>
void RunSteps(const NetworkStep* steps, int32_t count, const RankScratch& scratch) {
  constexpr int64_t lanes = LANES_OF<T>;
  const auto row = [&scratch](uint16_t value) {
    return reinterpret_cast<T*>(scratch.rows + value * scratch.pitch);
  };
  for (int32_t i = 0; i < count; i++) {
    const NetworkStep step = steps[i];
    const int64_t columns = scratch.columns + step.columns;
    const T* first = row(step.first.value) + step.first.shift;
    const T* second = row(step.second.value) + step.second.shift;
    T* low = row(step.low == NO_VALUE ? step.high : step.low);
    T* high = row(step.high == NO_VALUE ? step.low : step.high);
    if (step.high == NO_VALUE) {
      for (int64_t x = 0; x < columns; x += lanes) {
        const auto a = Load<Vector<T>>(first + x);
        const auto b = Load<Vector<T>>(second + x);
        Store(low + x, a < b ? a : b);
      }
    } else if (step.low == NO_VALUE) {
      for (int64_t x = 0; x < columns; x += lanes) {
        const auto a = Load<Vector<T>>(first + x);
        const auto b = Load<Vector<T>>(second + x);
        Store(high + x, a > b ? a : b);
      }
    } else {
      for (int64_t x = 0; x < columns; x += lanes) {
        const auto a = Load<Vector<T>>(first + x);
        const auto b = Load<Vector<T>>(second + x);
        Store(low + x, a < b ? a : b);
        Store(high + x, a > b ? a : b);
      }
    }
  }
}

ZEL_INLINE uint32_t BitsOf(float value) {
  uint32_t bits;
  std::memcpy(&bits, &value, sizeof(bits));
  return bits;
}

constexpr uint32_t SIGN_BIT = 0x80000000;
constexpr uint32_t INFINITY_BITS = 0x7F800000;

// Moved by this, -0 and the positive NaN have the largest bits of all floats, read without a sign,
// and the negative NaN read with one: two maxima tell that a row has none of them.
constexpr uint32_t MARKED_TO_TOP = SIGN_BIT - 1;

bool MayHaveMarks(const float* row, int32_t columns) {
  uint32_t most = 0;
  int32_t mostSigned = INT32_MIN;
  for (int32_t x = 0; x < columns; x++) {
    const uint32_t moved = BitsOf(row[x]) + MARKED_TO_TOP;
    most = std::max(most, moved);
    mostSigned = std::max(mostSigned, static_cast<int32_t>(moved));
  }
  return most > INFINITY_BITS + MARKED_TO_TOP ||
         mostSigned > static_cast<int32_t>(SIGN_BIT + INFINITY_BITS + MARKED_TO_TOP);
}

uint32_t FloatMarks(const float* row, int32_t columns) {
  if (!MayHaveMarks(row, columns)) return 0;
  uint32_t nan = 0;
  uint32_t negativeZero = 0;
  for (int32_t x = 0; x < columns; x++) {
    const uint32_t bits = BitsOf(row[x]);
    nan |= static_cast<uint32_t>((bits & ~SIGN_BIT) > INFINITY_BITS);
    negativeZero |= static_cast<uint32_t>(bits == SIGN_BIT);
  }
  return nan * FLOAT_HAS_NAN | negativeZero * FLOAT_HAS_NEGATIVE_ZERO;
}

}  // namespace

extern const RankRows rankRows = {
    .routines = {RoutineOf<3, 3, 0>(), RoutineOf<3, 3, 1>(), RoutineOf<3, 3, 2>(),
                 RoutineOf<3, 3, 3>(), RoutineOf<3, 3, 4>(), RoutineOf<3, 3, 5>(),
                 RoutineOf<3, 3, 6>(), RoutineOf<3, 3, 7>(), RoutineOf<3, 3, 8>(),
                 RoutineOf<5, 5, 12>(), RoutineOf<7, 7, 24>()},
    .steps = {&RunSteps<uint8_t>, &RunSteps<int16_t>, &RunSteps<float>},
    .floatMarks = &FloatMarks,
};

}  // namespace zel::ZEL_LEVEL
