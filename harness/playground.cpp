#include "harness/playground.h"

#include <algorithm>
#include <iterator>

#include "core/heap.h"
#include "core/images.h"
#include "core/pixel_types.h"
#include "harness/checks.h"
#include "platform/memory_desktop.h"

namespace test {
namespace {

constexpr int32_t SMALL_SIDE = 40;

}  // namespace

Playground::Playground(Input* input) : input_(input) {
  zel::DesktopUse(&zel::MEMORY_DESKTOP);
  for (ImageRef& slot : slots_) {
    const auto type = static_cast<int16_t>(input->Byte() % 6);
    const int32_t border = input->Byte() % 5;
    if (ZEL_Create(&slot, type, border) != 0) continue;
    if (const char* fault = CallModel::IssueFault(slot)) Require(false, fault);
    const int32_t width = input->Byte() % SMALL_SIDE;
    const int32_t height = input->Byte() % SMALL_SIDE;
    if (ZEL_SetImageSize(slot, width, height) != 0) continue;
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
                      static_cast<void*>(regionReports_), static_cast<void*>(circleReports_),
                      static_cast<void*>(text_)}) {
    ZEL_free(block);
  }
  ZEL_CloseSys();
  zel::MemoryDesktopReset();
  Require(zel::HeapHooksGet()->liveBlocks == 0, "blocks are left after closing");
}

ImageRef Playground::Image(Changes allowed) {
  const uint8_t kind = input_->Byte();
  ImageRef image = 0;
  if (kind < 232) {
    image = slots_[kind % SLOTS];
  } else if (kind >= 244) {
    image = kind < 250 ? 0xFFFFFFFF : input_->Word();
  }
  model_.Names(image, allowed);
  return image;
}

ImageRef* Playground::Slot() {
  ImageRef* slot = &slots_[input_->Below(SLOTS)];
  model_.Names(*slot, MADE | KIND | SIZE | CALIBRATION | EXTENDED);
  return slot;
}

Playground::Shape Playground::ShapeOf(ImageRef image) const {
  // An opaque image can say any size. Without a word to the error reporter, which the call to come
  // is held against.
  zel::Image* record = nullptr;
  zel::ImageLookup(image, &record);
  if (!record || !zel::TypeHasPixels(record->type)) return {};
  return {record->type, record->width, record->height};
}

void* Playground::Output(const ArrayLayout& layout) {
  const uint8_t choice = input_->Byte();
  if (choice % 32 == 31) return nullptr;
  ArrayPlace place = ArrayPlace::Heap;
  if (choice / 32 == 0) place = ArrayPlace::BeforeGuardPage;
  if (choice / 32 == 1) place = ArrayPlace::Misaligned;
  uint8_t* array = arrays_.Make(layout, place);
  model_.Brings(array, layout.bytes);
  return array;
}

void* Playground::Array(const ArrayLayout& layout) {
  auto* array = static_cast<uint8_t*>(Output(layout));
  if (!array) return nullptr;
  const size_t given = std::min<size_t>(layout.bytes, input_->Byte());
  for (size_t i = 0; i < given; i++) array[i] = input_->Byte();
  for (size_t i = given; given != 0 && i < layout.bytes; i++) array[i] = array[i - given];
  model_.Gives(array);
  return array;
}

const char* Playground::Path() {
  static const char* const paths[] = {"a", "b", "c", "", "missing", nullptr};
  return paths[input_->Byte() % std::size(paths)];
}

}  // namespace test
