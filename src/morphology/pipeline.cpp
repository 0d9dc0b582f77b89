// Stages of passes, and bands of rows put through them.
#include "morphology/pipeline.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "core/side_fill.h"

namespace zel {
namespace {

// Rectangles of more rows are put together from blocks; measured at x86-64-v4.
constexpr int32_t MOST_ROWS_AT_ONCE = 9;

int64_t RowsKeptFor(const MorphologyPass& reader) {
  const PassReach& reach = reader.reach;
  const bool looksBack = !reader.isRectangle || reach.bottom < 0;
  const int64_t above = looksBack ? std::max(-reach.top, 0) : 0;
  return above + std::max(reach.bottom, 0) + 1;
}

// Margins are filled in whole stores, which rings have room for: usual ones take a single store.
int32_t WholeStores(int32_t columns, int32_t pixelBytes) {
  const int32_t pixels = SIDE_STORE_BYTES / pixelBytes;
  return (columns + pixels - 1) / pixels * pixels;
}

template <class T>
void Replicate(uint8_t* row, int32_t width, int32_t left, int32_t right) {
  T* const first = reinterpret_cast<T*>(row);
  T* const behind = first + width;
  SideFill(first - left, left, *first);
  SideFill(behind, right, behind[-1]);
}

}  // namespace

void RowRing::Take(Arena* arena, int64_t rows, int64_t first, int64_t columns, int32_t pixelBytes) {
  const int64_t before = OnCacheLines(std::max<int64_t>(-first, 0) * pixelBytes);
  const auto taken = static_cast<int64_t>(std::bit_ceil(static_cast<uint64_t>(rows)));
  last_ = taken - 1;
  pitch_ = before + OnCacheLines((first + columns) * pixelBytes);
  uint8_t* memory = arena->Take<uint8_t>(taken * pitch_);
  columnZero_ = memory ? memory + before : nullptr;
}

// ---- input

void PassInput::TakeRing(const MorphologyPass& reader, Arena* arena) {
  isRing_ = true;
  left_ = WholeStores(std::max(-reader.reach.left, 0), reader.pixelBytes);
  right_ = WholeStores(std::max(reader.reach.right, 0), reader.pixelBytes);
  ring_.Take(arena, RowsKeptFor(reader), -left_, int64_t{left_} + image_.width + right_,
             reader.pixelBytes);
}

void PassInput::TakeCopies(const PixelView& image, const MorphologyPass& reader, Arena* arena) {
  TakeImage(image);
  TakeRing(reader, arena);
}

void PassInput::TakeRows(const PixelView& image, PassStage* maker, const MorphologyPass& reader,
                         Arena* arena) {
  TakeCopies(image, reader, arena);
  maker_ = maker;
}

void PassInput::Begin(int64_t row) {
  next_ = Inside(row);
  if (maker_) maker_->Begin(next_);
}

void PassInput::MakeUpTo(int64_t row) {
  if (!isRing_) return;
  const int64_t last = Inside(row);
  for (; next_ <= last; next_++) {
    uint8_t* to = ring_.Row(next_);
    if (maker_) {
      maker_->Make(next_, to);
    } else {
      std::memcpy(to, image_.Row<uint8_t>(next_), static_cast<size_t>(image_.RowBytes()));
    }
    MarginsFill(to);
  }
}

void PassInput::MarginsFill(uint8_t* row) const {
  switch (image_.pixelBytes) {
    case 1:
      return Replicate<uint8_t>(row, image_.width, left_, right_);
    case 2:
      return Replicate<uint16_t>(row, image_.width, left_, right_);
    default:
      return Replicate<uint32_t>(row, image_.width, left_, right_);
  }
}

// ---- spans for runs

void SpanRows::Take(const MorphologyPass& pass, const RunPlan& plan,
                    const ExtremeRoutines& extremes, int32_t width, Arena* arena) {
  pass_ = &pass;
  plan_ = &plan;
  extremes_ = &extremes;
  columns_ = int64_t{width} + pass.reach.Columns() - 1;
  places_ = arena->Take<const void*>(plan.places);
  rings_ = arena->Take<RowRing>(plan.doublings);
  for (int32_t i = 0; i < plan.doublings; i++) {
    RowRing ring;
    ring.Take(arena, pass.reach.Rows(), pass.reach.left, columns_, pass.pixelBytes);
    if (rings_) rings_[i] = ring;
  }
}

void SpanRows::MakeUpTo(int64_t row, PassInput* input) {
  if (plan_->doublings == 0) return;
  const int64_t last = input->Inside(row);
  const int64_t left = int64_t{pass_->reach.left} * pass_->pixelBytes;
  for (; next_ <= last; next_++) {
    const uint8_t* from = input->Row(next_) + left;
    for (int32_t i = 0; i < plan_->doublings; i++) {
      const int64_t half = int64_t{1} << i;
      uint8_t* to = rings_[i].Row(next_) + left;
      const int64_t columns = columns_ - 2 * half + 1;
      if (i == 0) {
        extremes_->span(from, 2, nullptr, to, columns);
      } else {
        extremes_->join(from, from + half * pass_->pixelBytes, to, columns);
      }
      from = to;
    }
  }
}

PixelList SpanRows::PlacesAround(int64_t row, const PassInput& input) {
  const PassReach& reach = pass_->reach;
  const bool areInImage = plan_->doublings == 0 && !pass_->hexagonal;
  const auto count = static_cast<int32_t>(plan_->places);
  if (areInImage && row == around_ + 1 &&
      input.FollowInImage(row + reach.top, row + reach.bottom)) {
    const int64_t pitch = input.pitch();
    const void** places = places_;
    for (int32_t i = 0; i < count; i++) {
      places[i] = static_cast<const uint8_t*>(places[i]) + pitch;
    }
  } else {
    PlacesFind(row, input);
  }
  around_ = row;
  return {places_, count};
}

void SpanRows::PlacesFind(int64_t row, const PassInput& input) {
  int32_t count = 0;
  const bool shifts = pass_->hexagonal && (row & 1) != 0;
  for (int32_t i = 0; i < plan_->list.count; i++) {
    const ElementRun& run = plan_->list.runs[i];
    int32_t doublings = plan_->doublings;
    while ((1 << doublings) > run.length) doublings--;
    const int64_t at = input.Inside(row + run.row);
    const uint8_t* pixels = doublings == 0 ? input.Row(at) : rings_[doublings - 1].Row(at);
    const int32_t first = run.column + (shifts ? run.row & 1 : 0);
    const int32_t span = 1 << doublings;
    for (int32_t covered = 0; covered < run.length; covered += span) {
      const int32_t column = first + std::min(covered, run.length - span);
      places_[count++] = pixels + int64_t{column} * pass_->pixelBytes;
    }
  }
}

// ---- tall rectangles

void ColumnBlocks::Take(const MorphologyPass& pass, int32_t width, Arena* arena) {
  pass_ = &pass;
  width_ = width;
  pitch_ = OnCacheLines(int64_t{width} * pass.pixelBytes);
  places_ = arena->Take<uint8_t>(pass.reach.Rows() * pitch_);
  beginning_ = arena->Take<uint8_t>(pitch_);
}

void ColumnBlocks::Push(int64_t row, int32_t place, PassInput* input, void* spanMemory) {
  const PassReach& reach = pass_->reach;
  input->MakeUpTo(row);
  const uint8_t* from = input->Row(row) + int64_t{reach.left} * pass_->pixelBytes;
  pass_->extremes->span(from, reach.Columns(), spanMemory, Place(place), width_);
}

// The extremes from each row to the end of the block take the rows' places, all but the first.
PixelList ColumnBlocks::Complete() {
  for (int32_t i = pass_->reach.Rows() - 2; i > 0; i--) {
    pass_->extremes->join(Place(i), Place(i + 1), Place(i), width_);
  }
  filled_ = 0;
  found_[0] = Place(0);
  found_[1] = Place(1);
  return {found_, 2};
}

PixelList ColumnBlocks::PlacesAround(int64_t row, PassInput* input, void* spanMemory) {
  const PassReach& reach = pass_->reach;
  if (filled_ == EMPTY) {
    for (int32_t i = 0; i < reach.Rows(); i++) Push(row + reach.top + i, i, input, spanMemory);
    return Complete();
  }
  Push(row + reach.bottom, filled_, input, spanMemory);
  filled_++;
  if (filled_ == reach.Rows()) return Complete();
  if (filled_ == 1) {
    found_[1] = Place(0);
  } else {
    pass_->extremes->join(found_[1], Place(filled_ - 1), beginning_, width_);
    found_[1] = beginning_;
  }
  found_[0] = Place(filled_);
  return {found_, 2};
}

// ---- stages

bool PassStage::IsTall() const {
  return pass_->reach.Rows() > MOST_ROWS_AT_ONCE;
}

void PassStage::Take(const MorphologyPass& pass, PassInput* input, Arena* arena) {
  pass_ = &pass;
  input_ = input;
  const int32_t width = input->width();
  if (!pass.isRectangle) {
    members_.Take(pass, pass.members, *pass.extremes, width, arena);
    if (pass.otherExtremes) {
      others_.Take(pass, pass.others, *pass.otherExtremes, width, arena);
    }
    return;
  }
  const int64_t spanColumns = int64_t{width} + pass.reach.Columns() - 1;
  spanMemory_ = arena->Take<uint8_t>(2 * spanColumns * pass.pixelBytes);
  if (IsTall()) {
    blocks_.Take(pass, width, arena);
  } else {
    spans_.Take(arena, pass.reach.Rows(), 0, width, pass.pixelBytes);
    rows_ = arena->Take<const void*>(pass.reach.Rows());
  }
}

void PassStage::Begin(int64_t row) {
  const int64_t first = row + pass_->reach.top;
  input_->Begin(std::min(first, row));
  nextSpans_ = input_->Inside(first);
  members_.Begin(nextSpans_);
  others_.Begin(nextSpans_);
  blocks_.Begin();
  hasRows_ = false;
}

void PassStage::MakeSpansUpTo(int64_t row) {
  const PassReach& reach = pass_->reach;
  const int64_t last = input_->Inside(row);
  for (; nextSpans_ <= last; nextSpans_++) {
    input_->MakeUpTo(nextSpans_);
    const uint8_t* from = input_->Row(nextSpans_) + int64_t{reach.left} * pass_->pixelBytes;
    pass_->extremes->span(from, reach.Columns(), spanMemory_, spans_.Row(nextSpans_),
                          input_->width());
  }
}

PixelList PassStage::RectangleAround(int64_t row) {
  const PassReach& reach = pass_->reach;
  const int32_t count = reach.Rows();
  MakeSpansUpTo(row + reach.bottom);
  // From one row to the next they move up, and one comes in.
  int32_t known = 0;
  for (; hasRows_ && known < count - 1; known++) rows_[known] = rows_[known + 1];
  for (int32_t i = known; i < count; i++) {
    rows_[i] = spans_.Row(input_->Inside(row + reach.top + i));
  }
  hasRows_ = true;
  return {rows_, count};
}

PixelList PassStage::PlacesAround(int64_t row) {
  if (pass_->isRectangle) {
    return IsTall() ? blocks_.PlacesAround(row, input_, spanMemory_) : RectangleAround(row);
  }
  input_->MakeUpTo(row + pass_->reach.bottom);
  members_.MakeUpTo(row + pass_->reach.bottom, input_);
  return members_.PlacesAround(row, *input_);
}

void PassStage::Make(int64_t row, void* to) {
  const int32_t width = input_->width();
  const PixelList places = PlacesAround(row);
  input_->MakeUpTo(row);  // the pixels themselves, where the element lies above them
  const void* centre = input_->Row(row);
  if (!pass_->otherExtremes) {
    pass_->extremes->list[pass_->finish](places, centre, to, width);
    return;
  }
  others_.MakeUpTo(row + pass_->reach.bottom, input_);
  morphologyRows().match[pass_->finish](places, others_.PlacesAround(row, *input_), centre, to,
                                        width);
}

// ---- chains

void Pipeline::Take(const PassChain& chain, const PixelView& source, int32_t border, Arena* arena) {
  count_ = chain.count;
  for (int32_t i = 0; i < count_; i++) {
    const MorphologyPass& pass = *chain.passes[i];
    const bool isServed = -pass.reach.left <= border && pass.reach.right <= border;
    if (i > 0) {
      inputs_[i].TakeRows(source, &stages_[i - 1], pass, arena);
    } else if (isServed) {
      inputs_[i].TakeImage(source);
    } else {
      inputs_[i].TakeCopies(source, pass, arena);
    }
    stages_[i].Take(pass, &inputs_[i], arena);
  }
}

namespace {

// A band's pipelines, and a row of each before they are combined.
struct BandStages {
  Pipeline first, second;
  uint8_t* firstRow = nullptr;
  uint8_t* secondRow = nullptr;

  void Take(const WindowViews& views, int32_t border, const PassPlan& plan, Arena* arena) {
    first.Take(plan.first, views.source, border, arena);
    if (plan.second.count > 0) second.Take(plan.second, views.source, border, arena);
    if (!plan.combine) return;
    firstRow = arena->Take<uint8_t>(views.source.RowBytes());
    secondRow = arena->Take<uint8_t>(views.source.RowBytes());
  }
};

PixelView RowAt(const PixelView& like, uint8_t* row) {
  PixelView view = like.Rows(0, 1);
  view.origin = row;
  return view;
}

void BandRun(const WindowBand& band, int32_t border, const PassPlan& plan) {
  const WindowViews& views = band.views;
  Arena arena(band.memory);
  BandStages stages;
  stages.Take(views, border, plan, &arena);
  stages.first.Begin(band.begin);
  if (plan.second.count > 0) stages.second.Begin(band.begin);
  for (int32_t y = band.begin; y < band.end; y++) {
    if (!plan.combine) {
      stages.first.Make(y, band.RowBegin(y));
      continue;
    }
    stages.first.Make(y, stages.firstRow);
    if (plan.second.count > 0) stages.second.Make(y, stages.secondRow);
    plan.combine({views.source.Rows(y, y + 1), RowAt(views.source, stages.firstRow),
                  RowAt(views.source, stages.secondRow), views.result.Rows(y, y + 1)});
  }
}

void CostAdd(const PassChain& chain, WindowPlan* cost) {
  for (int32_t i = 0; i < chain.count; i++) {
    cost->effort += chain.passes[i]->effort;
    cost->startRows += chain.passes[i]->reach.Rows();
  }
}

}  // namespace

Status PassesRun(const WindowViews& views, int32_t border, const PassPlan& plan) {
  if (views.IsEmpty()) return STATUS_OK;
  Arena counted(nullptr);
  BandStages stages;
  stages.Take(views, border, plan, &counted);
  WindowPlan cost{.memoryBytes = counted.taken(), .effort = 0};
  CostAdd(plan.first, &cost);
  CostAdd(plan.second, &cost);
  return WindowBandsRun(views, cost, [&](const WindowBand& band) { BandRun(band, border, plan); });
}

}  // namespace zel
