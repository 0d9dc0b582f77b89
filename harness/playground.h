// What a caller holds while it plays with the library: images in slots, arrays of exact size,
// result tables, and file names.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "harness/input.h"
#include "orlune_ptk.h"

namespace test {

class Playground {
 public:
  static constexpr uint32_t SLOTS = 6;

  // Makes a few images of types, sizes and borders that the input chooses.
  explicit Playground(Input* input);
  Playground(const Playground&) = delete;
  Playground& operator=(const Playground&) = delete;
  // Disposes of everything, closes the library, and stops the program if a block is left.
  ~Playground();

  Input& input() { return *input_; }

  // Mostly the image of a slot, else 0 or a reference that names nothing.
  ImageRef Image();
  ImageRef* Slot() { return &slots_[input_->Below(SLOTS)]; }
  int32_t ImageType() { return input_->Byte() % 16 == 0 ? input_->Int() : input_->Byte() % 6; }

  // An array of exactly this size that a call writes, or NULL now and then. Lives until the next
  // call, and a sanitizer watches its ends.
  void* Output(size_t bytes);
  template <class T>
  T* OutputOf(size_t count = 1) {
    return static_cast<T*>(Output(count * sizeof(T)));
  }
  // The same, filled by the input (and by what the input began, where it ends early).
  const void* Array(size_t bytes);

  // Pixels of the larger side, or of the whole of an image: what an array of its must hold.
  size_t SideOf(ImageRef image) const;
  size_t PixelsOf(ImageRef image) const;

  // A name of a small set of files, or NULL, or nonsense.
  const char* Path();

  // Variables of result tables: NULL or a block of the library, kept from call to call.
  BasicParticleReport** BasicReports() { return &basicReports_; }
  ParticleReport** ParticleReports() { return &particleReports_; }
  QuantifyReport** RegionReports() { return &regionReports_; }
  int32_t* Count() { return &count_; }

  void EndCall() { arrays_.clear(); }

 private:
  Input* input_;
  ImageRef slots_[SLOTS] = {};
  std::vector<std::vector<uint8_t>> arrays_;
  BasicParticleReport* basicReports_ = nullptr;
  ParticleReport* particleReports_ = nullptr;
  QuantifyReport* regionReports_ = nullptr;
  int32_t count_ = 0;
};

}  // namespace test
