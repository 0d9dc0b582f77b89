// Rank filters by selection networks: strips of columns are worked through from the top to the
// bottom of a band, with the values of a plan in registers or in rows of scratch memory.
#include <algorithm>
#include <cstring>

#include "filters/rank_pass.h"

namespace zel {
namespace {

constexpr int32_t AT_THE_END = INT32_MAX;
constexpr uint16_t NO_CARRY = 0xFFFF;

// ---- which value lies in which row of scratch memory: carries in the first ones, then the new
// source rows of a group, then others that are given to values and taken back

uint16_t RowTake(RankProgram* program, uint16_t value, int32_t step) {
  const RankProgram::Plan& plan = program->plan;
  const uint16_t carry = program->carryOf[value];
  // The place of the carry that hands it on, once nobody reads what the last group left there.
  if (carry != NO_CARRY && program->lastUse[plan.carries[carry].into] <= step) return carry;
  if (program->freeCount > 0) return program->freeRows[--program->freeCount];
  return static_cast<uint16_t>(program->rows++);
}

void RowGiveBack(RankProgram* program, uint16_t value, int32_t step) {
  const uint16_t row = program->rowOf[value];
  if (program->lastUse[value] != step || row < program->plan.carryCount) return;
  program->lastUse[value] = AT_THE_END;  // given back once, also by a step that reads it twice
  program->freeRows[program->freeCount++] = row;
}

void FindLastUses(RankProgram* program) {
  const RankProgram::Plan& plan = program->plan;
  std::fill_n(program->lastUse, plan.values, -1);
  std::fill_n(program->carryOf, plan.values, NO_CARRY);
  for (int32_t i = 0; i < plan.stepCount; i++) {
    program->lastUse[plan.steps[i].first.value] = i;
    program->lastUse[plan.steps[i].second.value] = i;
  }
  for (int32_t i = 0; i < plan.group; i++) program->lastUse[plan.results[i].value] = AT_THE_END;
  for (int32_t i = 0; i < plan.carryCount; i++) {
    const uint16_t value = plan.carries[i].from.value;
    program->lastUse[value] = AT_THE_END;
    program->carryOf[value] = static_cast<uint16_t>(i);
  }
}

void RowRename(const RankProgram& program, NetworkTerm* term) {
  term->value = program.rowOf[term->value];
}

void AllocateRows(RankProgram* program) {
  RankProgram::Plan& plan = program->plan;
  const int32_t oldRows = plan.rows - plan.group;
  for (int32_t i = 0; i < plan.carryCount; i++) {
    program->rowOf[plan.carries[i].into] = static_cast<uint16_t>(i);
  }
  for (int32_t i = 0; i < plan.group; i++) {
    program->rowOf[oldRows + i] = static_cast<uint16_t>(plan.carryCount + i);
  }
  program->rows = plan.carryCount + plan.group;
  program->freeCount = 0;
  for (int32_t i = 0; i < plan.stepCount; i++) {
    NetworkStep& step = plan.steps[i];
    const NetworkStep values = step;
    RowRename(*program, &step.first);
    RowRename(*program, &step.second);
    RowGiveBack(program, values.first.value, i);
    RowGiveBack(program, values.second.value, i);
    for (uint16_t* value : {&step.low, &step.high}) {
      if (*value == NO_VALUE) continue;
      const uint16_t row = RowTake(program, *value, i);
      program->rowOf[*value] = row;
      *value = row;
    }
  }
}

// Values that are not yet where the next group looks for them are copied there, upper blocks first:
// what one hands on may lie in the place of a lower one.
bool AppendCarries(RankProgram* program) {
  RankProgram::Plan& plan = program->plan;
  for (int32_t row = 0; row < plan.rows; row++) {
    for (int32_t i = 0; i < plan.carryCount; i++) {
      const NetworkCarry& carry = plan.carries[i];
      NetworkTerm from = carry.from;
      RowRename(*program, &from);
      if (carry.firstRow != row || from.value == i) continue;
      if (plan.stepCount == static_cast<int32_t>(PROGRAM_STEPS)) return false;
      plan.steps[plan.stepCount++] = {from, from, static_cast<uint16_t>(i), NO_VALUE, 0};
    }
  }
  return true;
}

// ---- strips

constexpr int32_t NARROWEST_STRIP = 256;       // bytes
constexpr int32_t WIDEST_STRIP = 8192;         // long pieces of rows are fetched ahead
constexpr int32_t SCRATCH_BUDGET = 28 * 1024;  // that stays in the first cache beside the pixels

// `rowsInUse` are those that are read and written again and again.
void SettleStrips(const PixelView& source, int32_t rowsInUse, RankNetwork* network) {
  const int64_t margin = int64_t{network->window.width - 1} * source.pixelBytes;
  const int64_t narrowest = std::max<int64_t>(NARROWEST_STRIP, 2 * WholeVectors(margin));
  const int64_t wished = std::min(SCRATCH_BUDGET / std::max(rowsInUse, 1), WIDEST_STRIP);
  const int64_t bytes = WholeVectors(source.RowBytes());
  const int64_t widest = std::max(narrowest, wished);
  const int64_t strips = std::max<int64_t>((bytes + widest - 1) / widest, 1);
  network->stripBytes = static_cast<int32_t>(WholeVectors((bytes + strips - 1) / strips));
  // Steps on the last columns read whole vectors at any shift. An odd number of vectors keeps rows
  // in different sets of a cache.
  const int64_t pitch = network->stripBytes + WholeVectors(margin) + RANK_VECTOR_BYTES;
  network->pitch = pitch | RANK_VECTOR_BYTES;
}

struct Strip {
  int32_t x, columns;
  bool whole;  // whole vectors: no pixel beyond the strip's own need be read or written
};

// One strip of one band.
struct NetworkPass {
  const RankNetwork& network;
  const WindowBand& band;
  Strip strip;
  uint32_t floatMarks;

  uint8_t* ScratchRow(int32_t row) const { return band.memory + row * network.pitch; }
  bool WritesInPlace() const {
    return network.routine && strip.whole && band.views.mask.SelectsAll();
  }
  bool ReadsInPlace() const { return network.routine && strip.whole; }
};

// The pixels that the i-th new row of the group at output row y has in the windows of the strip.
// Groups before the band's first one and beyond its last row repeat rows: nothing that is kept
// depends on them.
const uint8_t* SourceRow(const NetworkPass& pass, int32_t y, int32_t i) {
  const RankWindow& window = pass.network.window;
  const int64_t last = int64_t{pass.band.end} - 1 + window.height - 1;
  const int64_t row =
      std::clamp<int64_t>(int64_t{y} + window.height - 1 + i, pass.band.begin, last);
  const PixelView& source = pass.band.views.source;
  const int64_t column = int64_t{pass.strip.x} - (window.width - 1) / 2;
  return source.Row<uint8_t>(row - (window.height - 1) / 2) + column * source.pixelBytes;
}

void TakeSourceRows(NetworkPass* pass, int32_t y, RankGroup* group) {
  const RankNetwork& network = pass->network;
  const int32_t columns = pass->strip.columns + network.window.width - 1;
  for (int32_t i = 0; i < network.group; i++) {
    const uint8_t* row = SourceRow(*pass, y, i);
    group->rows[i] = row;
    if (pass->ReadsInPlace()) continue;
    uint8_t* copy = pass->ScratchRow(network.carries + i);
    std::memcpy(copy, row,
                static_cast<size_t>(int64_t{columns} * pass->band.views.source.pixelBytes));
    group->rows[i] = copy;
  }
}

// After the group has run: its source rows are near then, while their copies are overwritten.
void MarkFloats(int32_t y, NetworkPass* pass) {
  if (pass->band.views.source.type != IMAGE_SGL) return;
  const int32_t columns = pass->strip.columns + pass->network.window.width - 1;
  for (int32_t i = 0; i < pass->network.group; i++) {
    const void* pixels = SourceRow(*pass, y, i);
    pass->floatMarks |= rankRows().floatMarks(static_cast<const float*>(pixels), columns);
  }
}

void RunGroup(const NetworkPass& pass, int32_t y, RankGroup* group) {
  const RankNetwork& network = pass.network;
  const int32_t type = pass.band.views.source.type;
  if (network.program) {
    const RankProgram::Plan& plan = network.program->plan;
    rankRows().steps[type](plan.steps, plan.stepCount,
                           {pass.band.memory, network.pitch, group->columns});
    for (int32_t i = 0; i < network.group; i++) {
      group->results[i] = pass.ScratchRow(plan.results[i].value) +
                          int64_t{plan.results[i].shift} * pass.band.views.source.pixelBytes;
    }
  } else {
    for (int32_t i = 0; i < network.group; i++) {
      const bool inPlace =
          pass.WritesInPlace() && y + i >= pass.band.begin && y + i < pass.band.end;
      group->results[i] = inPlace ? pass.band.views.result.Row<uint8_t>(y + i) +
                                        int64_t{pass.strip.x} * pass.band.views.result.pixelBytes
                                  : pass.ScratchRow(network.carries + network.group + i);
    }
    network.routine->byType[type](*group);
  }
}

void RunStrip(NetworkPass* pass) {
  const RankNetwork& network = pass->network;
  const WindowBand& band = pass->band;
  const int32_t pixelBytes = pass->band.views.source.pixelBytes;
  RankGroup group{};
  group.carries = band.memory;
  group.pitch = network.pitch;
  group.columns =
      static_cast<int32_t>(WholeVectors(int64_t{pass->strip.columns} * pixelBytes) / pixelBytes);
  // Groups before the first output row fill the carries.
  const int32_t before =
      (network.window.height - 1 + network.group - 1) / network.group * network.group;
  for (int32_t y = band.begin - before; y < band.end; y += network.group) {
    TakeSourceRows(pass, y, &group);
    RunGroup(*pass, y, &group);
    MarkFloats(y, pass);
    if (pass->WritesInPlace()) continue;
    const int32_t last = std::min(y + network.group, band.end);
    for (int32_t row = std::max(y, band.begin); row < last; row++) {
      WindowStore(band.views, pass->strip.x, row, pass->strip.columns, group.results[row - y]);
    }
  }
}

}  // namespace

bool RankProgramMake(RankWindow window, int32_t stepsAtMost, RankProgram* program) {
  if (window.height > static_cast<int32_t>(PROGRAM_ROWS / 2)) return false;
  if (!PlanNetwork(program->plan, window, true)) return false;
  if (program->plan.stepCount > int64_t{stepsAtMost} * program->plan.group) return false;
  FindLastUses(program);
  AllocateRows(program);
  if (!AppendCarries(program)) return false;
  for (int32_t i = 0; i < program->plan.group; i++) RowRename(*program, &program->plan.results[i]);
  return true;
}

RankNetwork RankNetworkOf(const RankRoutine& routine, const PixelView& source) {
  RankNetwork network{};
  network.window = routine.window;
  network.routine = &routine;
  network.group = routine.group;
  network.carries = routine.carries;
  network.rows = routine.carries + 2 * routine.group;
  SettleStrips(source, routine.carries, &network);
  return network;
}

RankNetwork RankNetworkOf(const RankProgram& program, const PixelView& source) {
  RankNetwork network{};
  network.window = program.plan.window;
  network.program = &program;
  network.group = program.plan.group;
  network.carries = program.plan.carryCount;
  network.rows = program.rows;
  SettleStrips(source, program.rows, &network);
  return network;
}

int64_t RankNetworkBytes(const RankNetwork& network, const PixelView& source) {
  const int64_t floats =
      source.type == IMAGE_SGL
          ? RankFloatsBytes(network.window, network.stripBytes / source.pixelBytes)
          : 0;
  return network.rows * network.pitch + floats;
}

void RankNetworkRun(const RankNetwork& network, const WindowBand& band) {
  const PixelView& source = band.views.source;
  const int64_t scratchBytes = network.rows * network.pitch;
  std::memset(band.memory, 0, static_cast<size_t>(scratchBytes));
  const int32_t stripColumns = network.stripBytes / source.pixelBytes;
  const int32_t lanes = RANK_VECTOR_BYTES / source.pixelBytes;
  for (int32_t x = 0; x < source.width;) {
    int32_t columns = std::min(stripColumns, source.width - x);
    if (network.routine && columns > lanes) columns = columns / lanes * lanes;
    NetworkPass pass{network, band, {x, columns, columns % lanes == 0}, 0};
    RunStrip(&pass);
    RankFloatsMend(network.window, band.views,
                   {x, band.begin, columns, band.end - band.begin, pass.floatMarks},
                   band.memory + scratchBytes);
    x += columns;
  }
}

}  // namespace zel
