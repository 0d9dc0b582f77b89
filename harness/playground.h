// What a caller holds while it plays with the library: images in slots, arrays of exact size,
// result tables, and file names.
#pragma once

#include <cstdint>

#include "harness/call_model.h"
#include "harness/caller_arrays.h"
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

  CallModel& model() { return model_; }

  // Mostly the image of a slot, else 0 or a reference that names nothing; and what the call may
  // change of it.
  ImageRef Image(Changes allowed);
  // A variable that the call may give a new image.
  ImageRef* Slot();

  struct Shape {
    int32_t type, width, height;
  };
  // Of an image that holds pixels; else all 0.
  Shape ShapeOf(ImageRef image) const;

  // An array that a call writes, or NULL now and then. Lives until the next call.
  void* Output(const ArrayLayout& layout);
  template <class T>
  T* OutputOf(size_t count) {
    return static_cast<T*>(Output(LayoutOf<T>(count)));
  }
  // An array that a call reads, filled by the input (and by what the input began, where it ends
  // early).
  void* Array(const ArrayLayout& layout);
  template <class T>
  T* ArrayOf(size_t count) {
    return static_cast<T*>(Array(LayoutOf<T>(count)));
  }

  // A name of a small set of files, or NULL, or nonsense.
  const char* Path();

  // Variables of result tables: NULL or a block of the library, kept from call to call.
  BasicParticleReport** BasicReports() { return &basicReports_; }
  ParticleReport** ParticleReports() { return &particleReports_; }
  QuantifyReport** RegionReports() { return &regionReports_; }
  CircleReport** CircleReports() { return &circleReports_; }

  char** Text() { return &text_; }

  void EndCall() { arrays_.Clear(); }

 private:
  Input* input_;
  ImageRef slots_[SLOTS] = {};
  CallerArrays arrays_;
  CallModel model_;
  BasicParticleReport* basicReports_ = nullptr;
  ParticleReport* particleReports_ = nullptr;
  QuantifyReport* regionReports_ = nullptr;
  CircleReport* circleReports_ = nullptr;
  char* text_ = nullptr;
};

}  // namespace test
