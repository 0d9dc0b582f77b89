#include "harness/playground.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "core/heap.h"
#include "core/images.h"
#include "core/pixel_types.h"

namespace test {
namespace {

constexpr int32_t SMALL_SIDE = 40;

[[noreturn]] void Stop(const char* what) {
  std::fprintf(stderr, "playground: %s\n", what);
  std::abort();
}

// The record of an image that really holds its pixels: an opaque one can be of any size. Without a
// word to the error reporter, which the call to come is held against.
const zel::Image* RecordOf(ImageRef image) {
  zel::Image* record = nullptr;
  zel::ImageLookup(image, &record);
  return record && zel::TypeHasPixels(record->type) ? record : nullptr;
}

}  // namespace

Playground::Playground(Input* input) : input_(input) {
  for (ImageRef& slot : slots_) {
    const auto type = static_cast<int16_t>(input->Byte() % 6);
    const int32_t border = input->Byte() % 5;
    if (ZEL_Create(&slot, type, border) != 0) continue;
    if (ZEL_SetImageSize(slot, input->Byte() % SMALL_SIDE, input->Byte() % SMALL_SIDE) != 0)
      continue;
    ImageInfo info{};
    if (ZEL_GetImageInfo(slot, &info) != 0 || !info.firstPixel) continue;
    // A pattern of few levels with structure, so that particles, holes and ties come up.
    const uint8_t levels = static_cast<uint8_t>(input->Byte() | 1);
    uint32_t state = input->Word() | 1;
    for (int32_t y = 0; y < info.height; y++) {
      uint8_t* row = static_cast<uint8_t*>(info.firstPixel) + int64_t{y} * info.lineBytes;
      for (int32_t i = 0; i < info.width * info.pixelBytes; i++) {
        state = state * 1664525u + 1013904223u;
        const auto level = static_cast<uint8_t>((state >> 24) % levels);
        if ((state >> 20 & 7) >= 3) row[i] = level;  // fresh pixels are 0
      }
    }
  }
}

Playground::~Playground() {
  for (void* block : {static_cast<void*>(basicReports_), static_cast<void*>(particleReports_),
                      static_cast<void*>(regionReports_)}) {
    ZEL_free(block);
  }
  ZEL_CloseSys();
  if (zel::HeapHooksGet()->liveBlocks != 0) Stop("blocks are left after closing");
}

ImageRef Playground::Image() {
  const uint8_t kind = input_->Byte();
  if (kind < 232) return slots_[kind % SLOTS];
  if (kind < 244) return 0;
  return kind < 250 ? 0xFFFFFFFF : input_->Word();
}

void* Playground::Output(size_t bytes) {
  if (input_->Byte() % 32 == 31) return nullptr;
  arrays_.emplace_back(bytes, uint8_t{0xA5});
  // An empty vector has no address; one byte stands for an array that may not be touched.
  if (bytes == 0) arrays_.back().resize(1);
  return arrays_.back().data();
}

const void* Playground::Array(size_t bytes) {
  auto* array = static_cast<uint8_t*>(Output(bytes));
  if (!array) return nullptr;
  const size_t given = std::min<size_t>(bytes, input_->Byte());
  for (size_t i = 0; i < given; i++) array[i] = input_->Byte();
  for (size_t i = given; given != 0 && i < bytes; i++) array[i] = array[i - given];
  return array;
}

size_t Playground::SideOf(ImageRef image) const {
  const zel::Image* record = RecordOf(image);
  return record ? static_cast<size_t>(std::max(record->width, record->height)) : 0;
}

size_t Playground::PixelsOf(ImageRef image) const {
  const zel::Image* record = RecordOf(image);
  return record ? static_cast<size_t>(record->width) * static_cast<size_t>(record->height) : 0;
}

const char* Playground::Path() {
  static const char* const paths[] = {"a", "b", "c", "", "missing", nullptr};
  return paths[input_->Byte() % std::size(paths)];
}

}  // namespace test
