#include "harness/call_model.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "core/tables.h"
#include "display/window_records.h"

#if defined(__has_feature)
#if __has_feature(memory_sanitizer)
#include <sanitizer/msan_interface.h>
#define HARNESS_MEMORY_SANITIZER 1
#endif
#endif

namespace test {
namespace {

using zel::coreTables;
using zel::ImageEntry;

struct Bytes {
  const uint8_t* start;
  size_t count;
};

Bytes BlockOf(const zel::Image& image) {
  const zel::HandleEntry* row = zel::HandleRow(image.pixels);
  return {static_cast<const uint8_t*>(row->data), row->blockBytes};
}

const zel::Image* RecordOf(const ImageEntry& entry) {
  if (entry.recordHandle == 0) return nullptr;
  return static_cast<const zel::Image*>(zel::HandleRow(entry.recordHandle)->data);
}

const ImageEntry* EntryOf(ImageRef reference) {
  for (uint32_t row = 0; row < coreTables.imageCapacity; row++) {
    if (coreTables.images[row].reference == reference) return &coreTables.images[row];
  }
  return nullptr;
}

bool SameBits(float a, float b) {
  return std::bit_cast<uint32_t>(a) == std::bit_cast<uint32_t>(b);
}

bool SameBytes(const uint8_t* a, const uint8_t* b, size_t count) {
  return count == 0 || std::memcmp(a, b, count) == 0;
}

Changes RecordChanges(const zel::Image& a, const zel::Image& b) {
  Changes changes = 0;
  if (a.unit != b.unit || !SameBits(a.xStep, b.xStep) || !SameBits(a.yStep, b.yStep) ||
      a.offsetX != b.offsetX || a.offsetY != b.offsetY) {
    changes |= CALIBRATION;
  }
  if (a.type != b.type || a.opaqueType != b.opaqueType) changes |= KIND;
  // An opaque image has no border to be seen.
  if (a.border != b.border) changes |= a.type == IMAGE_OPAQUE ? SIZE : KIND;
  if (a.width != b.width || a.height != b.height || a.lineWidth != b.lineWidth ||
      a.opaqueSize != b.opaqueSize) {
    changes |= SIZE;
  }
  return changes;
}

// Of a block that is laid out as before.
Changes BlockChanges(const zel::Image& image, const std::vector<uint8_t>& before) {
  const Bytes block = BlockOf(image);
  if (SameBytes(block.start, before.data(), block.count)) return 0;
  const zel::PixelView view = zel::ViewOf(image);
  if (!view.origin) return PIXELS;
  Changes changes = 0;
  size_t seen = 0;
  const auto compare = [&](size_t end, Change kind) {
    if (!SameBytes(block.start + seen, before.data() + seen, end - seen)) changes |= kind;
    seen = end;
  };
  for (int32_t y = 0; y < view.height; y++) {
    const auto start = static_cast<size_t>(view.Row<const uint8_t>(y) - block.start);
    compare(start, BORDER);
    compare(start + static_cast<size_t>(view.RowBytes()), PIXELS);
  }
  compare(block.count, BORDER);
  return changes;
}

// Whether a block begins as it was and goes on with zeros.
bool IsExtended(const zel::Image& image, const std::vector<uint8_t>& before) {
  const Bytes block = BlockOf(image);
  const size_t kept = std::min(block.count, before.size());
  return SameBytes(block.start, before.data(), kept) &&
         std::all_of(block.start + kept, block.start + block.count,
                     [](uint8_t byte) { return byte == 0; });
}

const char* Complaint(Changes unallowed) {
  if ((unallowed & KIND) != 0) return "the type or the border's width of an image changed";
  if ((unallowed & SIZE) != 0) return "the size of an image changed";
  if ((unallowed & CALIBRATION) != 0) return "the calibration of an image changed";
  if ((unallowed & PIXELS) != 0) return "the pixels of an image changed";
  return "the border of an image changed";
}

void CheckInitialised([[maybe_unused]] const void* start, [[maybe_unused]] size_t count) {
#if defined(HARNESS_MEMORY_SANITIZER)
  __msan_check_mem_is_initialized(start, count);
#endif
}

}  // namespace

void CallModel::Begin() {
  named_.clear();
  arrays_.clear();
  allMayGo_ = false;
  size_t images = 0;
  for (uint32_t row = 0; row < coreTables.imageCapacity; row++) {
    const ImageEntry& entry = coreTables.images[row];
    if (entry.reference == 0 || zel::IsWindowImage(entry.reference)) continue;
    if (images == before_.size()) before_.emplace_back();
    State& state = before_[images++];
    state.reference = entry.reference;
    state.record = RecordOf(entry);
    state.block.clear();
    if (!state.record) continue;
    state.copy = *state.record;
    const Bytes block = BlockOf(state.copy);
    state.block.assign(block.start, block.start + block.count);
  }
  before_.resize(images);
}

void CallModel::Names(ImageRef image, Changes allowed) {
  if (image == 0 && !named_.empty()) {
    named_.front().allowed |= allowed;
  } else {
    constexpr Changes frame = BORDER | MIRRORED;
    named_.push_back({image, allowed, (allowed & ~frame) == 0 ? allowed : Changes{0}});
  }
}

CallModel::CallerArray* CallModel::ArrayAt(const void* place) {
  const auto array = std::find_if(arrays_.begin(), arrays_.end(),
                                  [place](const CallerArray& one) { return one.place == place; });
  return array == arrays_.end() ? nullptr : &*array;
}

void CallModel::Brings(void* array, size_t bytes) {
  auto* place = static_cast<uint8_t*>(array);
  arrays_.push_back({place, true, {place, place + bytes}});
}

void CallModel::Gives(const void* array) {
  CallerArray* given = ArrayAt(array);
  if (!given) return;
  given->mayChange = false;
  given->copy.assign(given->place, given->place + given->copy.size());
}

void CallModel::Lends(const void* array) {
  if (CallerArray* lent = ArrayAt(array)) lent->mayChange = true;
}

const char* CallModel::Fault(bool failed, Changes leftovers) {
  const char* fault = NewImagesFault();
  if (!fault) fault = ImagesFault(failed, leftovers);
  if (!fault) fault = ArraysFault(failed, leftovers);
  return fault;
}

Changes CallModel::AllowedOf(const State& state, bool failed, Changes leftovers) const {
  Changes allowed = 0;
  for (const Named& one : named_) {
    if (one.reference != state.reference) continue;
    allowed |= failed ? one.beforeFailures | leftovers : one.allowed;
  }
  const bool isSmall =
      state.record && std::min(state.copy.width, state.copy.height) < state.copy.border;
  if ((allowed & MIRRORED) != 0) allowed |= isSmall ? BORDER | PIXELS : BORDER;
  return allowed;
}

const char* CallModel::ImagesFault(bool failed, Changes leftovers) const {
  for (const State& state : before_) {
    const Changes allowed = AllowedOf(state, failed, leftovers);
    const ImageEntry* entry = EntryOf(state.reference);
    if (!entry) {
      if ((allowed & GONE) == 0 && !allMayGo_) return "an image is gone";
      continue;
    }
    const zel::Image* image = RecordOf(*entry);
    if (!image || !state.record) {
      if (!image != !state.record && (allowed & KIND) == 0) return "an image's record came or went";
      continue;
    }
    const Bytes block = BlockOf(*image);
    CheckInitialised(block.start, block.count);
    Changes changes = RecordChanges(state.copy, *image);
    if ((changes & (KIND | SIZE)) == 0) {
      changes |= block.count == state.block.size() ? BlockChanges(*image, state.block) : SIZE;
    }
    const Changes unallowed = changes & ~allowed;
    if (unallowed != 0) return Complaint(unallowed);
    if ((allowed & EXTENDED) != 0 && !IsExtended(*image, state.block)) {
      return "a resized image has other bytes than those it had, and zeros";
    }
  }
  return nullptr;
}

const char* CallModel::NewImagesFault() const {
  bool mayMake = std::any_of(named_.begin(), named_.end(),
                             [](const Named& one) { return (one.allowed & MADE) != 0; });
  for (uint32_t row = 0; row < coreTables.imageCapacity; row++) {
    const ImageEntry& entry = coreTables.images[row];
    if (entry.reference == 0 || zel::IsWindowImage(entry.reference)) continue;
    const bool isNew = std::none_of(before_.begin(), before_.end(), [&](const State& state) {
      return state.reference == entry.reference;
    });
    if (!isNew) continue;
    if (!mayMake) return "an image came from nowhere";
    mayMake = false;
    if (const char* fault = IssueFault(entry.reference)) return fault;
    const zel::Image* image = RecordOf(entry);
    if (image && !IsExtended(*image, {})) return "a new image has pixels other than 0";
  }
  return nullptr;
}

const char* CallModel::ArraysFault(bool failed, Changes leftovers) const {
  const bool outputsStay = failed && (leftovers & OUTPUTS) == 0;
  for (const CallerArray& array : arrays_) {
    CheckInitialised(array.place, array.copy.size());
    if (array.mayChange && !outputsStay) continue;
    if (!SameBytes(array.place, array.copy.data(), array.copy.size())) {
      return array.mayChange ? "a failing call wrote to an array" : "an array to read was written";
    }
  }
  return nullptr;
}

const char* CallModel::IssueFault(ImageRef made) {
  static ImageRef highest = 0;
  if (made <= highest) return "a reference was issued again";
  highest = made;
  return nullptr;
}

}  // namespace test
