// The operations of each family over all types of image and odd sizes, beside the script. Calls may
// fail: what they answer is a result as well. Needs the exports alone.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "harness/digest.h"
#include "harness/test_image.h"
#include "orlune_ptk.h"

namespace test {

// The images of one type and size, and the digest of what becomes of them.
class Sweep {
 public:
  Sweep(int32_t type, int32_t width, int32_t height, Digest* digest);

  const int32_t type, width, height;
  // Random pixels. Floats of the second one are also no numbers, infinite, tiny, and beyond all
  // integers.
  const TestImage first, second;
  const TestImage mask;    // U8, smaller, with an offset
  const TestImage blobs;   // U8: particles of all shapes
  const TestImage result;  // what the operations write

  // What a call answered, and the result image.
  void Add(int32_t status);
  void AddImage(int32_t status, ImageRef image);
  // What a call answered, and what it gave out besides images.
  template <class T>
  void Add(int32_t status, const T* values, size_t count) {
    digest_->Add(status);
    for (size_t i = 0; i < count; i++) digest_->Add(values[i]);
  }
  // A table of reports, which is freed.
  template <class T>
  void AddTable(int32_t status, T* table, int32_t count) {
    digest_->Add(count);
    Add(status, table, table ? static_cast<size_t>(count) : 0);
    ZEL_free(table);
  }

 private:
  Digest* digest_;
};

struct SweepFamily {
  std::string name;  // as of the steps
  void (*run)(Sweep& sweep);
};
const std::vector<SweepFamily>& SweepFamilies();

// Runs a family over all types and sizes.
void RunSweep(const SweepFamily& family, Digest* digest);

void SweepUtilities(Sweep& sweep);
void SweepPoint(Sweep& sweep);
void SweepStatistics(Sweep& sweep);
void SweepParticles(Sweep& sweep);
void SweepFilters(Sweep& sweep);
void SweepGeometry(Sweep& sweep);
void SweepMorphology(Sweep& sweep);
void SweepParticleFilters(Sweep& sweep);
void SweepShapes(Sweep& sweep);
void SweepColour(Sweep& sweep);
void SweepFrequency(Sweep& sweep);
void SweepFiles(Sweep& sweep);
void SweepRegions(Sweep& sweep);
void SweepVision(Sweep& sweep);

}  // namespace test
