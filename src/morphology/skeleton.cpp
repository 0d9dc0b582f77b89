// Skeletons: particles thinned by masks in eight directions, round by round.
#include <algorithm>

#include "engine/operands.h"
#include "morphology/bit_pass_rows.h"
#include "morphology/bit_plane.h"

namespace zel {
namespace {

constexpr int32_t EXTRA_ROUNDS = 3;  // beyond the particles' depth
constexpr int32_t DEEPEST = 255;     // that is counted

BitRows RowsAt(const BitPlane& plane, int32_t y) {
  return {plane.Row(y - 1), plane.Row(y), plane.Row(y + 1)};
}

// Whether a row or one of those around it, up to eight away, is marked.
class NearbyRows {
 public:
  NearbyRows(const uint8_t* marks, int32_t height) : marks_(marks), height_(height) {
    for (int32_t y = 0; y < REACH && y < height; y++) count_ += marks[y];
  }
  // For the rows 0, 1, 2...
  bool Next() {
    const int32_t y = next_++;
    if (y + REACH < height_) count_ += marks_[y + REACH];
    if (y - REACH - 1 >= 0) count_ -= marks_[y - REACH - 1];
    return count_ > 0;
  }

 private:
  static constexpr int32_t REACH = SKELETON_PASSES;

  const uint8_t* marks_;
  int32_t height_;
  int32_t next_ = 0;
  int32_t count_ = 0;
};

// The pixels that are left, in two planes that passes go back and forth between.
class Thinning {
 public:
  [[nodiscard]] bool Create(const PixelView& view);

  // One pass.
  void Run(BitPass pass);
  // As many rounds of eight passes as the depth of the particles asks for. One that changes nothing
  // is the last, as all that follow would be like it.
  void RoundsRun(const BitPass* passes);
  void Invert();
  void EdgeClear();

  const BitPlane& pixels() const { return planes_[0]; }

 private:
  bool Round(const BitPass* passes);
  void DepthStart();
  bool DepthGoesOn();

  BitPlane planes_[2];
  // Pixels whose depth is at least the one that is reached. A pixel's depth is one more than the
  // least of those on its left and above.
  BitPlane depths_[2];
  int32_t depthNow_ = 0;
  WorkArray<uint8_t> changed_;  // rows that the last round has changed,
  WorkArray<uint8_t> active_;   // and those that the next one can change
};

bool Thinning::Create(const PixelView& view) {
  for (BitPlane* plane : {&planes_[0], &planes_[1], &depths_[0], &depths_[1]}) {
    if (!plane->Create(view.width, view.height, 1)) return false;
  }
  const auto height = static_cast<uint64_t>(view.height);
  if (!changed_.Allocate(height) || !active_.Allocate(height)) return false;
  planes_[0].Take(view);
  return true;
}

void Thinning::Run(BitPass pass) {
  const BitPlane& from = planes_[0];
  for (int32_t y = 0; y < from.height(); y++) {
    pass(planes_[1].Row(y), RowsAt(from, y), from.words());
  }
  planes_[0].CopyFrom(planes_[1]);
}

void Thinning::Invert() {
  BitPlane& plane = planes_[0];
  for (int32_t y = 0; y < plane.height(); y++) {
    uint64_t* row = plane.Row(y);
    for (int32_t i = 0; i < plane.words(); i++) row[i] = ~row[i];
    plane.RowCut(y);
  }
}

void Thinning::EdgeClear() {
  BitPlane& plane = planes_[0];
  const int32_t width = plane.width();
  const int32_t height = plane.height();
  for (int32_t y = 0; y < height; y++) {
    uint64_t* row = plane.Row(y);
    if (y == 0 || y == height - 1) std::fill_n(row, plane.words(), 0);
    row[0] &= ~uint64_t{1};
    row[(width - 1) / 64] &= ~(uint64_t{1} << ((width - 1) % 64));
  }
}

void Thinning::DepthStart() {
  depthNow_ = 0;
  depths_[0].CopyFrom(planes_[0]);
}

bool Thinning::DepthGoesOn() {
  const BitPlane& from = depths_[depthNow_];
  depthNow_ = 1 - depthNow_;
  BitPlane& to = depths_[depthNow_];
  bool any = false;
  for (int32_t y = 0; y < from.height(); y++) {
    bitPassRows().shrink(to.Row(y), RowsAt(from, y), from.words());
    any = any || BitsAreSet(to.Row(y), 0, to.width());
  }
  return any;
}

// A row changes only if a row that reaches it within the eight passes has changed in the round
// before; else both planes hold it as it is.
bool Thinning::Round(const BitPass* passes) {
  const int32_t height = planes_[0].height();
  const int32_t words = planes_[0].words();
  NearbyRows nearby(changed_.data(), height);
  for (int32_t y = 0; y < height; y++) active_[static_cast<size_t>(y)] = nearby.Next();
  for (int32_t y = 0; y < height; y++) changed_[static_cast<size_t>(y)] = 0;
  bool any = false;
  // Each pass goes two rows behind the one before: what it reads is in the nearest cache, but not
  // just being written.
  for (int64_t front = 0; front < int64_t{height} + 2 * (SKELETON_PASSES - 1); front++) {
    for (int32_t pass = 0; pass < SKELETON_PASSES; pass++) {
      const auto y = static_cast<int32_t>(front - 2 * pass);
      if (y < 0 || y >= height || active_[static_cast<size_t>(y)] == 0) continue;
      const BitRows from = RowsAt(planes_[pass % 2], y);
      if (passes[pass](planes_[1 - pass % 2].Row(y), from, words)) {
        changed_[static_cast<size_t>(y)] = 1;
        any = true;
      }
    }
  }
  return any;
}

void Thinning::RoundsRun(const BitPass* passes) {
  std::fill_n(changed_.data(), static_cast<size_t>(planes_[0].height()), uint8_t{1});
  DepthStart();
  for (int32_t rounds = 0; Round(passes); rounds++) {
    const int32_t depth = rounds + 2 - EXTRA_ROUNDS;  // that the next round needs
    if (depth > DEEPEST) return;
    if (depth > 1 && !DepthGoesOn()) return;
  }
}

void SkeletonMake(Thinning* thinning, int32_t skeletonType) {
  const BitPassRows& rows = bitPassRows();
  if (skeletonType != SKELETON_INFLUENCE_ZONES) {
    thinning->RoundsRun(skeletonType == SKELETON_SET_A ? rows.setA : rows.setB);
    return;
  }
  thinning->Run(rows.despeckle);
  thinning->EdgeClear();
  thinning->Invert();
  thinning->RoundsRun(rows.zones);
  thinning->Run(rows.outline);
}

bool IsSkeletonType(int32_t type) {
  return type >= SKELETON_SET_A && type <= SKELETON_INFLUENCE_ZONES;
}

Status Skeleton(ImageRef source, ImageRef destination, int32_t skeletonType) {
  Operands operands;
  operands.Source(source, &TypeIsU8);
  if (operands.HasFailed()) return operands.status();
  if (operands.source().border < 1) return STATUS_BORDER_TOO_SMALL;
  operands.Destination(destination, IMAGE_U8, STATUS_BAD_TYPE);
  if (operands.HasFailed()) return operands.status();
  if (!IsSkeletonType(skeletonType)) {
    if (operands.destination() != &operands.source()) operands.TakePixels();
    operands.TakeInfo();
    return operands.status();
  }

  operands.Border(BORDER_ZERO, 1);
  Thinning thinning;
  const PixelView from = operands.From();
  if (!from.IsEmpty()) {
    if (!thinning.Create(from)) return STATUS_MEMORY_FULL;
    SkeletonMake(&thinning, skeletonType);
  }
  operands.TakeSize();
  operands.TakeInfo();
  if (!operands.HasFailed() && !from.IsEmpty()) thinning.pixels().Write(operands.To());
  return operands.status();
}

}  // namespace
}  // namespace zel

int32_t ZEL_Skeleton(ImageRef source, ImageRef dest, int32_t skeletonType) {
  return ZEL_ProcessError("ZEL_Skeleton", zel::Skeleton(source, dest, skeletonType));
}
