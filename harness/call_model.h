// What one call may change, and what all of it did: images that it does not name stay, of those
// that it names only that changes which its row allows, arrays that it reads stay, and a call that
// fails leaves everything but what its row tells.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/images.h"
#include "orlune_ptk.h"

namespace test {

// A set of these.
using Changes = uint32_t;
enum Change : Changes {
  CALIBRATION = 1,  // unit, steps and offset
  SIZE = 2,         // and with it every byte of the block
  KIND = 4,         // type and width of the border, and with them every byte of the block
  PIXELS = 8,
  BORDER = 16,     // what lies around the pixels, padding too
  GONE = 32,       // the image is disposed of
  EXTENDED = 64,   // bytes keep their place in the block, and those that are added are 0
  MADE = 128,      // the call may make one new image
  MIRRORED = 256,  // the border is filled by mirroring, which in an image smaller than its border
                   // reaches the pixels
  OUTPUTS = 512,   // what the caller brought for the call to write
  ANYTHING = CALIBRATION | SIZE | KIND | PIXELS | BORDER | OUTPUTS,
};

class CallModel {
 public:
  // Looks at the world before a call.
  void Begin();

  // An image that the call names. A reference of 0 stands for the first image named, whose place
  // the result takes then. A border that alone may change is filled before the call can fail; one
  // that is part of a result changes with it.
  void Names(ImageRef image, Changes allowed);
  void AllImagesMayGo() { allMayGo_ = true; }

  // An array of the caller, as it is now: the call may write it if it succeeds.
  void Brings(void* array, size_t bytes);
  // ... it only reads it.
  void Gives(const void* array);
  // ... it may write it all the same.
  void Lends(const void* array);

  // What the call did that it may not have done, or null. `leftovers`: what a failing call may have
  // changed.
  const char* Fault(bool failed, Changes leftovers);

  // References are never used again, in this process: every new one passes here.
  static const char* IssueFault(ImageRef made);

 private:
  struct State {
    ImageRef reference;
    const zel::Image* record;  // null for an image that could not be made
    zel::Image copy;
    std::vector<uint8_t> block;
  };
  struct Named {
    ImageRef reference;
    Changes allowed;
    Changes beforeFailures;
  };
  struct CallerArray {
    uint8_t* place;
    bool mayChange;
    std::vector<uint8_t> copy;
  };

  Changes AllowedOf(const State& state, bool failed, Changes leftovers) const;
  const char* ImagesFault(bool failed, Changes leftovers) const;
  const char* NewImagesFault() const;
  const char* ArraysFault(bool failed, Changes leftovers) const;
  CallerArray* ArrayAt(const void* place);

  std::vector<State> before_;
  std::vector<Named> named_;
  std::vector<CallerArray> arrays_;
  bool allMayGo_ = false;
};

}  // namespace test
