// Plans selection networks: what is smaller and what is larger of two values, step by step, until
// the value of one rank among the pixels of a window is left. A plan is made by the compiler for
// windows that have a routine of their own, and during the call for others.
//
// The pixels of a window are sorted row by row, and sorted rows are merged. What several output
// rows need is computed once: a plan gives a group of output rows, and hands sorted blocks of
// source rows on to the next group. A value is dropped as soon as its rank in a merged list shows
// that it is above or below the wanted one whatever is merged later.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zel {

// The value of rank `order`, from 0 for the smallest, of width x height pixels.
struct RankWindow {
  int32_t width, height, order;
};

// A row of values, read from `shift` columns further right.
struct NetworkTerm {
  uint16_t value;
  uint16_t shift;
};

constexpr uint16_t NO_VALUE = 0xFFFF;
constexpr int32_t NETWORK_GROUP_LIMIT = 16;
constexpr int32_t NETWORK_BLOCK_LEVELS = 5;  // blocks of 1, 2, 4, 8 and 16 rows

// Each value is written by one step. One that nobody reads is NO_VALUE.
struct NetworkStep {
  NetworkTerm first, second;
  uint16_t low, high;  // the smaller and the larger of both
  uint16_t columns;    // beyond the width of the output that later steps read
};

// Pixels in ascending order, less those that can't have the wanted rank.
struct SortedList {
  int32_t first;    // in the terms of the plan
  int32_t count;    // 0: not known yet
  int32_t dropped;  // pixels below the first
  int32_t pixels;   // in all
};

// What the next group finds under the value `into`.
struct NetworkCarry {
  int32_t firstRow, level, member;  // of a sorted block of 2^level source rows
  uint16_t into;
  NetworkTerm from;
};

// Source row 0 is the first one in the window of the group's first output row. Values 0 to rows - 1
// are the pixels of source rows. With carries only the last `group` of them are read.
template <size_t STEPS, size_t ROWS>
struct NetworkPlan {
  RankWindow window;
  int32_t group;  // output rows, a power of two
  int32_t rows;   // source rows
  // Values of a step are kept as rows, which later steps may read at a shift, so that one sort
  // serves all columns. Otherwise only pixels are read at a shift.
  bool shifts;
  bool full;  // there was no room: no plan

  int32_t values;
  NetworkStep steps[STEPS];
  int32_t stepCount;
  NetworkTerm terms[4 * STEPS];
  int32_t termCount;
  SortedList blocks[NETWORK_BLOCK_LEVELS][ROWS];
  NetworkCarry carries[STEPS / 2];
  int32_t carryCount;
  NetworkTerm results[NETWORK_GROUP_LIMIT];

  // By value; work memory of who reads the plan as well.
  static constexpr size_t VALUES = ROWS + 5 * STEPS / 2;
  int32_t reach[VALUES];  // the columns that are read of it, or UNUSED
};

namespace network {

constexpr int32_t UNUSED = -1;

// Every n-th term from a first one on.
struct Terms {
  int32_t first, stride, count;
};

constexpr Terms EverySecond(Terms list, int32_t from) {
  return {list.first + from * list.stride, 2 * list.stride, (list.count - from + 1) / 2};
}

template <class Plan>
constexpr bool Reserve(Plan& plan, int32_t terms, int32_t steps) {
  constexpr int32_t termLimit = sizeof(plan.terms) / sizeof(plan.terms[0]);  // NOLINT: arrays
  constexpr int32_t stepLimit = sizeof(plan.steps) / sizeof(plan.steps[0]);  // NOLINT: arrays
  plan.full = plan.full || plan.termCount + terms > termLimit ||
              plan.stepCount + steps > stepLimit || plan.values + 2 * steps >= NO_VALUE;
  return !plan.full;
}

template <class Plan>
constexpr void Append(Plan& plan, NetworkTerm term) {
  plan.terms[plan.termCount++] = term;
}

// The terms of a new list of values, the smaller of two and the larger.
template <class Plan>
constexpr Terms AppendStep(Plan& plan, NetworkTerm first, NetworkTerm second) {
  const auto low = static_cast<uint16_t>(plan.values++);
  const auto high = static_cast<uint16_t>(plan.values++);
  plan.steps[plan.stepCount++] = {first, second, low, high, 0};
  Append(plan, {low, 0});
  Append(plan, {high, 0});
  return {plan.termCount - 2, 1, 2};
}

// Odd-even merge of two ascending lists, each of any length.
template <class Plan>
constexpr Terms Merged(Plan& plan, Terms a, Terms b) {
  if (a.count == 0) return b;
  if (b.count == 0) return a;
  const int32_t count = a.count + b.count;
  if (!Reserve(plan, 2 * count, count / 2)) return a;
  if (count == 2) return AppendStep(plan, plan.terms[a.first], plan.terms[b.first]);

  const int32_t begin = plan.termCount;
  const Terms even = Merged(plan, EverySecond(a, 0), EverySecond(b, 0));
  const Terms odd = Merged(plan, EverySecond(a, 1), EverySecond(b, 1));
  if (!Reserve(plan, 2 * count, count / 2)) return a;
  const int32_t merged = plan.termCount;
  Append(plan, plan.terms[even.first]);
  for (int32_t i = 1; i < even.count || i <= odd.count; i++) {
    const NetworkTerm left = plan.terms[odd.first + (i - 1) * odd.stride];
    const NetworkTerm right = plan.terms[even.first + i * even.stride];
    if (i < even.count && i <= odd.count) {
      AppendStep(plan, left, right);
    } else {
      Append(plan, i < even.count ? right : left);
    }
  }
  for (int32_t i = 0; i < count; i++) plan.terms[begin + i] = plan.terms[merged + i];
  plan.termCount = begin + count;
  return {begin, 1, count};
}

constexpr int32_t Larger(int32_t a, int32_t b) {
  return a > b ? a : b;
}

constexpr int32_t Smaller(int32_t a, int32_t b) {
  return a < b ? a : b;
}

// Two lists of different pixels as one, with the ranks that can still be the wanted one among all
// pixels of the window.
template <class Plan>
constexpr SortedList Joined(Plan& plan, SortedList a, SortedList b) {
  const RankWindow& window = plan.window;
  const Terms merged = Merged(plan, {a.first, 1, a.count}, {b.first, 1, b.count});
  const int32_t pixels = a.pixels + b.pixels;
  const int32_t later = window.width * window.height - pixels;
  const int32_t dropped = a.dropped + b.dropped;
  const int32_t lowest = Larger(window.order - later, dropped);
  const int32_t highest = Smaller(window.order, dropped + merged.count - 1);
  return {merged.first + lowest - dropped, highest - lowest + 1, lowest, pixels};
}

template <class Plan>
constexpr SortedList PixelList(Plan& plan, int32_t row, int32_t column) {
  if (!Reserve(plan, 1, 0)) return {};
  Append(plan, {static_cast<uint16_t>(row), static_cast<uint16_t>(column)});
  return {plan.termCount - 1, 1, 0, 1};
}

template <class Plan>
constexpr SortedList Shifted(Plan& plan, SortedList list, int32_t columns) {
  if (!Reserve(plan, list.count, 0)) return {};
  for (int32_t i = 0; i < list.count; i++) {
    NetworkTerm term = plan.terms[list.first + i];
    term.shift = static_cast<uint16_t>(term.shift + columns);
    Append(plan, term);
  }
  list.first = plan.termCount - list.count;
  return list;
}

// One row of the window, by the sorted rows of 1, 2, 4, 8 pixels.
template <class Plan>
constexpr SortedList SortedRowByShifts(Plan& plan, int32_t row) {
  SortedList power = PixelList(plan, row, 0);
  SortedList sorted = {};
  for (int32_t columns = 1; columns <= plan.window.width; columns *= 2) {
    if (plan.window.width & columns) {
      sorted = sorted.count ? Joined(plan, power, Shifted(plan, sorted, columns)) : power;
    }
    if (2 * columns <= plan.window.width) {
      power = Joined(plan, power, Shifted(plan, power, columns));
    }
  }
  return sorted;
}

template <class Plan>
constexpr SortedList SortedPixels(Plan& plan, int32_t row, int32_t column, int32_t columns) {
  if (columns == 1) return PixelList(plan, row, column);
  int32_t half = 1;
  while (2 * half < columns) half *= 2;
  const SortedList left = SortedPixels(plan, row, column, half);
  return Joined(plan, left, SortedPixels(plan, row, column + half, columns - half));
}

template <class Plan>
constexpr SortedList Carried(Plan& plan, int32_t firstRow, int32_t level) {
  constexpr int32_t limit = sizeof(plan.carries) / sizeof(plan.carries[0]);  // NOLINT: arrays
  const RankWindow& window = plan.window;
  const int32_t pixels = window.width << level;
  const int32_t lowest = Larger(window.order - (window.width * window.height - pixels), 0);
  const int32_t count = Smaller(window.order, pixels - 1) - lowest + 1;
  plan.full = plan.full || plan.carryCount + count > limit;
  if (!Reserve(plan, count, count)) return {};
  for (int32_t i = 0; i < count; i++) {
    const auto value = static_cast<uint16_t>(plan.values++);
    plan.carries[plan.carryCount++] = {firstRow, level, i, value, {}};
    Append(plan, {value, 0});
  }
  return {plan.termCount - count, count, lowest, pixels};
}

// The sorted pixels of 2^level source rows. Those that the previous group has seen are carried.
template <class Plan>
constexpr SortedList SortedRows(Plan& plan, int32_t firstRow, int32_t level) {
  SortedList& block = plan.blocks[level][firstRow];
  if (block.count || plan.full) return block;
  if (firstRow + (1 << level) < plan.window.height) {
    block = Carried(plan, firstRow, level);
  } else if (level > 0) {
    const SortedList upper = SortedRows(plan, firstRow, level - 1);
    block = Joined(plan, upper, SortedRows(plan, firstRow + (1 << (level - 1)), level - 1));
  } else if (plan.shifts) {
    block = SortedRowByShifts(plan, firstRow);
  } else {
    block = SortedPixels(plan, firstRow, 0, plan.window.width);
  }
  return block;
}

// The sorted pixels of the source rows from begin to before end: of the largest blocks that any
// group could have in common with the next one. Blocks of n rows begin at rows n - 1, 2n - 1..,
// where the rows that all output rows of a group share begin.
template <class Plan>
constexpr SortedList SortedRange(Plan& plan, int32_t begin, int32_t end) {
  SortedList sorted = {};
  while (begin < end) {
    int32_t level = 0;
    while ((begin + 1) % (2 << level) == 0 && begin + (2 << level) <= end &&
           (2 << level) <= plan.group) {
      level++;
    }
    const SortedList block = SortedRows(plan, begin, level);
    sorted = sorted.count ? Joined(plan, sorted, block) : block;
    begin += 1 << level;
  }
  return sorted;
}

// The results of `count` output rows, from the sorted pixels of the source rows that they share.
template <class Plan>
constexpr void Results(Plan& plan, int32_t row, int32_t count, SortedList shared) {
  if (plan.full) return;
  if (count == 1) {
    plan.results[row] = plan.terms[shared.first];
    return;
  }
  const int32_t half = count / 2;
  const SortedList above = SortedRange(plan, row + half - 1, row + count - 1);
  Results(plan, row, half, Joined(plan, above, shared));
  const int32_t next = row + plan.window.height;
  const SortedList below = SortedRange(plan, next, next + half);
  Results(plan, row + half, half, Joined(plan, shared, below));
}

// Finds or computes what each carry hands on, which may ask for more carries.
template <class Plan>
constexpr void HandOn(Plan& plan) {
  for (int32_t i = 0; i < plan.carryCount && !plan.full; i++) {
    NetworkCarry& carry = plan.carries[i];
    const SortedList list = SortedRows(plan, carry.firstRow + plan.group, carry.level);
    carry.from = plan.terms[list.first + carry.member];
  }
}

// Takes out what does not lead to a result, and tells each step its columns.
template <class Plan>
constexpr void Prune(Plan& plan) {
  for (int32_t i = 0; i < plan.values; i++) plan.reach[i] = UNUSED;
  const auto use = [&plan](NetworkTerm term, int32_t columns) {
    plan.reach[term.value] = Larger(plan.reach[term.value], term.shift + columns);
  };
  for (int32_t i = 0; i < plan.group; i++) use(plan.results[i], 0);
  for (int32_t i = 0; i < plan.carryCount; i++) use(plan.carries[i].from, 0);

  int32_t kept = plan.stepCount;
  for (int32_t i = plan.stepCount - 1; i >= 0; i--) {
    NetworkStep step = plan.steps[i];
    const int32_t low = plan.reach[step.low];
    const int32_t high = plan.reach[step.high];
    const int32_t columns = Larger(low, high);
    if (columns == UNUSED) continue;
    use(step.first, columns);
    use(step.second, columns);
    if (low == UNUSED) step.low = NO_VALUE;
    if (high == UNUSED) step.high = NO_VALUE;
    step.columns = static_cast<uint16_t>(columns);
    plan.steps[--kept] = step;
  }
  plan.stepCount -= kept;
  for (int32_t i = 0; i < plan.stepCount; i++) plan.steps[i] = plan.steps[kept + i];
}

}  // namespace network

// Groups of more output rows share more, until all that is left of a group's common rows is too
// little to gain from.
constexpr int32_t NetworkGroup(int32_t height) {
  int32_t group = 1;
  while (4 * group <= height + 1 && group < NETWORK_GROUP_LIMIT) group *= 2;
  return group;
}

// Fills the plan for a window of at least 2 pixels and at most ROWS / 2 rows. False: there was no
// room.
template <class Plan>
constexpr bool PlanNetwork(Plan& plan, RankWindow window, bool shifts) {
  plan.window = window;
  plan.group = NetworkGroup(window.height);
  plan.rows = window.height + plan.group - 1;
  plan.shifts = shifts;
  plan.full = false;
  plan.values = plan.rows;
  plan.stepCount = plan.termCount = plan.carryCount = 0;
  for (auto& level : plan.blocks) {
    for (int32_t i = 0; i < plan.rows; i++) level[i] = {};
  }
  const SortedList shared = network::SortedRange(plan, plan.group - 1, window.height);
  network::Results(plan, 0, plan.group, shared);
  network::HandOn(plan);
  if (!plan.full) network::Prune(plan);
  return !plan.full;
}

}  // namespace zel
