// The Fourier transform of images and back: rows first, then columns, several side by side.
#include <algorithm>
#include <bit>
#include <cmath>

#include "core/heap.h"
#include "core/numbers.h"
#include "engine/bands.h"
#include "frequency/fourier_rows.h"
#include "frequency/spectra.h"
#include "orlune_ptk.h"

namespace zel {
namespace {

enum class Direction { FORWARD, INVERSE };

constexpr int32_t LEAST_SIDE = 16;
constexpr int32_t LARGEST_SIDE = 16384;

bool IsSide(int32_t length) {
  return length >= LEAST_SIDE && length <= LARGEST_SIDE &&
         std::has_single_bit(static_cast<uint32_t>(length));
}

// The factors of butterflies. The angle grows by a step that is rounded, and is rounded itself each
// time: spectra hold what that gives, not the nearest sines.
void TwiddlesMake(int32_t length, Direction direction, Twiddle* twiddles) {
  const int32_t count = length / 2;
  const auto step = static_cast<float>(PI / count);
  float angle = 0;
  for (int32_t k = 0; k < count; k++) {
    const auto wide = static_cast<double>(angle);
    const auto cosine = static_cast<float>(std::cos(wide));
    const auto sine = static_cast<double>(static_cast<float>(std::sin(wide)));
    twiddles[k] = {static_cast<double>(cosine), direction == Direction::FORWARD ? -sine : sine};
    angle += step;
  }
}

FourierCopy CopyOf(const FourierCopies& copies, int32_t type) {
  switch (type) {
    case IMAGE_U8:
      return copies.u8;
    case IMAGE_I16:
      return copies.i16;
    case IMAGE_SGL:
      return copies.sgl;
    default:
      return copies.complex;
  }
}

// Groups of columns that go through together: so many elements stay in the second-level cache, and
// the pixels that a row has of them are some neighbouring cache lines.
constexpr int32_t ELEMENTS_TOGETHER = 8192;
constexpr int32_t GROUPS_AT_MOST = 8;

int32_t GroupsOfColumns(const PixelView& image) {
  return std::clamp(ELEMENTS_TOGETHER / image.height, 1,
                    std::min(GROUPS_AT_MOST, image.width / FOURIER_SIGNALS));
}

// What is computed on a pixel in one pass, beside an addition of bytes.
constexpr int64_t BYTES_A_PIXEL = 128;

// What a pass over an image is worth in bytes.
int64_t BytesOfPass(const PixelView& image) {
  return BYTES_A_PIXEL * image.width * image.height;
}

// The work memory of a transform: factors, and signals for each worker.
class FourierWork {
 public:
  Status Allocate(const PixelView& image) {
    const int64_t ofColumns = int64_t{GroupsOfColumns(image)} * StrideOf(image.height);
    perWorker_ = std::max(ofColumns, StrideOf(image.width));
    const int64_t workers = BandWorkersFor(BytesOfPass(image));
    // One more, to begin on a boundary of cache lines.
    const auto elements = static_cast<uint64_t>(perWorker_ * workers + 1);
    const auto factors = static_cast<uint64_t>(std::max(image.width, image.height) / 2);
    const bool isHad = twiddles_.Allocate(factors) && elements_.Allocate(elements);
    return isHad ? STATUS_OK : STATUS_MEMORY_FULL;
  }

  void PrepareFor(int32_t length, Direction direction) {
    if (length == prepared_) return;
    TwiddlesMake(length, direction, twiddles_.data());
    prepared_ = length;
  }

  FourierSignals SignalsOf(int32_t worker, int32_t groups) {
    const auto address = reinterpret_cast<uintptr_t>(elements_.data());
    constexpr uintptr_t line = sizeof(FourierElements);
    auto* first = reinterpret_cast<FourierElements*>((address + line - 1) / line * line);
    return {first + worker * perWorker_, prepared_, groups, StrideOf(prepared_), twiddles_.data()};
  }

 private:
  // One more than the length, so that the same element of several groups lies in different sets of
  // the caches.
  static int64_t StrideOf(int32_t length) { return int64_t{length} + 1; }

  WorkArray<Twiddle> twiddles_;
  WorkArray<FourierElements> elements_;
  int64_t perWorker_ = 0;
  int32_t prepared_ = 0;  // the length that there are factors for
};

// A pass over all rows or columns: groups of signals are gathered from `from`, transformed and
// scattered to `to`.
struct FourierPass {
  PixelView from, to;
  FourierCopy gather, scatter;
  float scale;
  int32_t groups;  // that go through together
};

template <class PixelsOf>
void PassRun(FourierWork* work, const FourierPass& pass, int64_t signals,
             const PixelsOf& pixelsOf) {
  const auto transform = fourierRows().transform;
  const int64_t signalsTogether = int64_t{FOURIER_SIGNALS} * pass.groups;
  BandsRun({.units = signals / signalsTogether, .bytes = BytesOfPass(pass.from)},
           [&](const Band& band) {
             const FourierSignals mine = work->SignalsOf(band.worker, pass.groups);
             for (int64_t unit = band.begin; unit < band.end; unit++) {
               const int64_t first = unit * signalsTogether;
               pass.gather({pixelsOf(pass.from, first), pass.from.pitch, pass.scale}, mine);
               transform(mine);
               pass.scatter({pixelsOf(pass.to, first), pass.to.pitch, pass.scale}, mine);
             }
           });
}

// To complex pixels.
void TransformRows(FourierWork* work, const PixelView& from, const PixelView& to, float scale) {
  const FourierRows& rows = fourierRows();
  PassRun(work, {from, to, CopyOf(rows.gatherRows, from.type), rows.scatterRows, scale, 1},
          from.height, [](const PixelView& view, int64_t y) { return view.Row<uint8_t>(y); });
}

// From complex pixels.
void TransformColumns(FourierWork* work, const PixelView& from, const PixelView& to) {
  const FourierRows& rows = fourierRows();
  PassRun(work,
          {from, to, rows.gatherColumns, CopyOf(rows.scatterColumns, to.type), 1.0f,
           GroupsOfColumns(from)},
          from.width,
          [](const PixelView& view, int64_t x) { return view.origin + x * view.pixelBytes; });
}

// Complex pixels between the two passes: the result's, or if it has no complex ones, memory of the
// call.
class BetweenPasses {
 public:
  Status Allocate(const PixelView& result) {
    view_ = result;
    if (result.type == IMAGE_COMPLEX) return STATUS_OK;
    const uint64_t pixels =
        static_cast<uint64_t>(result.width) * static_cast<uint64_t>(result.height);
    if (!pixels_.Allocate(pixels)) return STATUS_MEMORY_FULL;
    view_.origin = reinterpret_cast<uint8_t*>(pixels_.data());
    view_.pitch = int64_t{result.width} * int64_t{sizeof(ComplexValue)};
    view_.type = IMAGE_COMPLEX;
    view_.pixelBytes = sizeof(ComplexValue);
    return STATUS_OK;
  }
  const PixelView& view() const { return view_; }

 private:
  WorkArray<ComplexValue> pixels_;
  PixelView view_;
};

Status TransformImage(const PixelView& from, const PixelView& to, Direction direction) {
  FourierWork work;
  BetweenPasses between;
  Status status = work.Allocate(from);
  if (status == STATUS_OK) status = between.Allocate(to);
  if (status != STATUS_OK) return status;
  // A power of 2, as the number of pixels is: products with it are the quotients.
  const float scale =
      direction == Direction::FORWARD
          ? 1.0f
          : 1.0f / (static_cast<float>(from.width) * static_cast<float>(from.height));
  work.PrepareFor(from.width, direction);
  TransformRows(&work, from, between.view(), scale);
  work.PrepareFor(from.height, direction);
  TransformColumns(&work, between.view(), to);
  return STATUS_OK;
}

// Which images a transform takes.
struct TransformRule {
  Direction direction;
  TypeTest takesSource;
  Status sourceRefusal;
  TypeTest takesDestination;
  Status destinationRefusal;
};

constexpr TransformRule FORWARD_RULE = {Direction::FORWARD, &TypeIsScalarOrComplex, STATUS_BAD_TYPE,
                                        &TypeIsComplex, STATUS_COMPLEX_EXPECTED};
constexpr TransformRule INVERSE_RULE = {Direction::INVERSE, &TypeIsComplex, STATUS_COMPLEX_EXPECTED,
                                        &TypeIsScalarOrComplex, STATUS_BAD_TYPE};

Status Fourier(ImageRef source, ImageRef destination, const TransformRule& rule) {
  Image* from = nullptr;
  Status status = LookupOfTypes(source, rule.takesSource, rule.sourceRefusal, &from);
  if (status != STATUS_OK) return status;
  if (!IsSide(from->width) || !IsSide(from->height)) return STATUS_SIZE_DIFFERS;
  if (destination == 0) return STATUS_SECOND_IMAGE_MISSING;
  Image* to = nullptr;
  status = ImageLookup(destination, &to);
  if (status != STATUS_OK) return status;
  if (to == from) return STATUS_SAME_IMAGE;
  if (!rule.takesDestination(to->type)) return rule.destinationRefusal;
  status = ImageCopyInfo(*from, to);
  if (status == STATUS_OK) status = ImageLayoutSize(to, from->width, from->height, true);
  if (status != STATUS_OK) return status;
  return TransformImage(ViewOf(*from), ViewOf(*to), rule.direction);
}

}  // namespace
}  // namespace zel

int32_t ZEL_FFT(ImageRef source, ImageRef destination) {
  return ZEL_ProcessError("ZEL_FFT", zel::Fourier(source, destination, zel::FORWARD_RULE));
}

int32_t ZEL_InverseFFT(ImageRef source, ImageRef destination) {
  return ZEL_ProcessError("ZEL_InverseFFT", zel::Fourier(source, destination, zel::INVERSE_RULE));
}
