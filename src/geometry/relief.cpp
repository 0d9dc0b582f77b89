// The relief view: pixels as bars of gray on an oblique grid.
#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

#include "core/numbers.h"
#include "core/pixel_types.h"
#include "engine/operands.h"

namespace zel {
namespace {

constexpr View3DOptions DEFAULT_OPTIONS = {
    .alpha = 30.0f, .beta = 30.0f, .border = 20, .background = 85, .plane = VIEW_PLANE_MAGNITUDE};
constexpr double RADIANS_A_DEGREE = 0.017453292;
constexpr int32_t LEAST_SAMPLES = 8;  // in each direction, where the image has so many pixels

// Compared as the integers that the bits are: NaN counts as a large number of its sign.
float AngleLimited(float angle) {
  constexpr float low = 15.0f;
  constexpr float high = 45.0f;
  const auto bits = std::bit_cast<int32_t>(angle);
  if (bits < std::bit_cast<int32_t>(low)) return low;
  return bits > std::bit_cast<int32_t>(high) ? high : angle;
}

// What is drawn, within its limits.
struct ReliefRequest {
  int32_t reduction, maxHeight, direction;
  View3DOptions options;

  ReliefRequest(int32_t anyReduction, int32_t anyHeight, int32_t anyDirection,
                const View3DOptions* anyOptions)
      : reduction(anyReduction),
        maxHeight(std::clamp(anyHeight, 2, 256)),
        direction(std::clamp(anyDirection, 0, 3)),
        options(anyOptions ? *anyOptions : DEFAULT_OPTIONS) {
    options.alpha = AngleLimited(options.alpha);
    options.beta = AngleLimited(options.beta);
    options.border = std::clamp(options.border, 0, 64);
    options.background = std::clamp(options.background, 0, 255);
    options.plane = std::clamp<int32_t>(options.plane, VIEW_PLANE_REAL, VIEW_PLANE_PHASE);
  }
};

int64_t EvenUp(int64_t number) {
  return number + (number & 1);
}

int32_t CeilDivide(int32_t number, int32_t by) {
  return static_cast<int32_t>((int64_t{number} + by - 1) / by);
}

// The grid on which the samples stand. Its first axis runs to the right and down, its second one to
// the right and up; the picture is drawn as seen from below.
class Grid {
 public:
  Grid(const Image& source, const ReliefRequest& request)
      : reduction_(std::max(1, std::min({request.reduction, source.width / LEAST_SAMPLES,
                                         source.height / LEAST_SAMPLES}))),
        direction_(request.direction),
        samplesX_(CeilDivide(source.width, reduction_)),
        samplesY_(CeilDivide(source.height, reduction_)),
        first_(static_cast<double>(request.options.alpha) * RADIANS_A_DEGREE),
        second_(static_cast<double>(request.options.beta) * RADIANS_A_DEGREE),
        left_(request.options.border),
        top_(request.options.border + request.maxHeight - 1) {
    const float columns = static_cast<float>(source.width) / static_cast<float>(reduction_);
    const float rows = static_cast<float>(source.height) / static_cast<float>(reduction_);
    const auto along = static_cast<double>(IsSideways() ? rows : columns);
    const auto across = static_cast<double>(IsSideways() ? columns : rows);
    const double width = first_.cosine * along + second_.cosine * across;
    const double height = first_.sine * along + second_.sine * across;
    const int64_t border = request.options.border;
    width_ = EvenUp(2 * border + static_cast<int64_t>(width));
    height_ = EvenUp(request.maxHeight + static_cast<int64_t>(height)) + 2 * border;
  }

  int64_t width() const { return width_; }
  int64_t height() const { return height_; }
  int32_t CountAlong() const { return IsSideways() ? samplesY_ : samplesX_; }
  int32_t CountAcross() const { return IsSideways() ? samplesX_ : samplesY_; }

  struct Point {
    int32_t x, y;
  };
  // The pixel of the source that stands at a place: the directions are four turns of the picture.
  Point SampleAt(int32_t i, int32_t j) const {
    switch (direction_) {
      case 0:
        return Pixel(i, samplesY_ - 1 - j);
      case 1:
        return Pixel(j, i);
      case 2:
        return Pixel(samplesX_ - 1 - i, j);
      default:
        return Pixel(samplesX_ - 1 - j, samplesY_ - 1 - i);
    }
  }
  // Where the bar of a place has its foot in the drawing.
  Point FootAt(int32_t i, int32_t j) const {
    const double x = left_ + i * first_.cosine + j * second_.cosine;
    const double y = top_ + i * first_.sine + (CountAcross() - 1 - j) * second_.sine;
    return {static_cast<int32_t>(x), static_cast<int32_t>(y)};
  }

 private:
  struct Slope {
    double sine, cosine;
    explicit Slope(double angle) : sine(std::sin(angle)), cosine(std::cos(angle)) {}
  };

  bool IsSideways() const { return (direction_ & 1) != 0; }
  Point Pixel(int32_t x, int32_t y) const { return {x * reduction_, y * reduction_}; }

  int32_t reduction_, direction_;
  int32_t samplesX_, samplesY_;
  Slope first_, second_;
  double left_, top_;
  int64_t width_ = 0, height_ = 0;
};

// ---- bars

// The gray of a bar rises by this in 256 steps.
int32_t StepOf(const ReliefRequest& request) {
  return 0x10000 / request.maxHeight;
}

// From the foot up, or down where the length is negative; what falls outside is dropped.
void BarDraw(const PixelView& to, const Grid::Point& foot, int32_t length, int32_t step) {
  if (foot.x < 0 || foot.x >= to.width) return;
  const int32_t down = length < 0 ? 1 : -1;
  for (int32_t k = 0; k <= std::abs(length); k++) {
    const int32_t y = foot.y + down * k;
    if (y >= 0 && y < to.height) *to.At<uint8_t>(foot.x, y) = static_cast<uint8_t>(k * step / 256);
  }
}

class ByteBars {
 public:
  ByteBars(const PixelView& source, int32_t step) : source_(source), step_(step) {}
  int32_t LengthAt(const Grid::Point& pixel) const {
    return *source_.At<uint8_t>(pixel.x, pixel.y) * 256 / step_;
  }

 private:
  const PixelView& source_;
  int32_t step_;
};

// A spectrum is looked at with its quadrants exchanged: low frequencies in the middle.
class ComplexBars {
 public:
  ComplexBars(const PixelView& source, int32_t plane, int32_t step)
      : source_(source),
        plane_(plane),
        scale_(static_cast<double>(step) * (plane == VIEW_PLANE_PHASE ? 1.0 : RangeOf(source))),
        longest_(65280 / step) {}

  int32_t LengthAt(const Grid::Point& pixel) const {
    const Grid::Point from = Exchanged(pixel);
    const float* number = source_.Row<float>(from.y) + 2 * int64_t{from.x};
    const auto real = static_cast<double>(number[0]);
    const auto imaginary = static_cast<double>(number[1]);
    return CutLimited(ValueOf(real, imaginary) / scale_ * 256.0, -longest_, longest_);
  }

 private:
  // By the size of the image, as its spectrum grows with that: 2^(2e + 1), where 2^e is the
  // smallest power above a 32nd of its sides.
  static double RangeOf(const PixelView& source) {
    const auto sides = static_cast<uint64_t>(int64_t{source.width} + source.height);
    return std::ldexp(1.0, 2 * static_cast<int32_t>(std::bit_width(sides / 32)) + 1);
  }

  static int32_t Opposite(int32_t place, int32_t half) {
    return place < half ? place + half : place - half;
  }

  // Of an odd height the last row stays whole, and of an odd width the last column.
  Grid::Point Exchanged(const Grid::Point& pixel) const {
    const int32_t halfWidth = source_.width / 2, halfHeight = source_.height / 2;
    if (pixel.x >= 2 * halfWidth || pixel.y >= 2 * halfHeight) return pixel;
    return {Opposite(pixel.x, halfWidth), Opposite(pixel.y, halfHeight)};
  }

  double ValueOf(double real, double imaginary) const {
    switch (plane_) {
      case VIEW_PLANE_REAL:
        return real;
      case VIEW_PLANE_IMAGINARY:
        return imaginary;
      case VIEW_PLANE_MAGNITUDE:
        return std::sqrt(real * real + imaginary * imaginary);
      default:
        if (std::abs(real) < 1.0) return 90.0;
        return std::atan(imaginary / real) * 180.0 / std::numbers::pi;
    }
  }

  const PixelView& source_;
  int32_t plane_;
  double scale_;
  int32_t longest_;
};

// From back to front, so that nearer bars cover farther ones.
template <class Bars>
void BarsDraw(const Grid& grid, const Bars& bars, int32_t step, const PixelView& to) {
  for (int32_t j = grid.CountAcross() - 1; j >= 0; j--) {
    for (int32_t i = 0; i < grid.CountAlong(); i++) {
      BarDraw(to, grid.FootAt(i, j), bars.LengthAt(grid.SampleAt(i, j)), step);
    }
  }
}

// ---- the call

bool AnyType(int32_t) {
  return true;
}

// What may become of the source depends on where the drawing goes.
Status TypesCheck(const Image& source, ImageRef reference, ImageRef destination) {
  const bool isBytes = source.type == IMAGE_U8;
  if (destination == 0) return isBytes ? STATUS_OK : STATUS_SECOND_IMAGE_MISSING;
  if (destination == reference) return isBytes ? STATUS_OK : STATUS_DESTINATION_TYPE_DIFFERS;
  Image* to = nullptr;
  const Status status = ImageLookup(destination, &to);
  if (status != STATUS_OK) return status;
  const bool isTaken = to->type == IMAGE_U8 && (isBytes || source.type == IMAGE_COMPLEX);
  return isTaken ? STATUS_OK : STATUS_BAD_TYPE;
}

Status ReliefView(ImageRef source, ImageRef destination, const ReliefRequest& request) {
  Operands operands;
  operands.Source(source, &AnyType);
  if (operands.HasFailed()) return operands.status();
  const Image& image = operands.source();
  const Status status = TypesCheck(image, source, destination);
  if (status != STATUS_OK) return status;

  const bool isEmpty = image.width == 0;
  const bool isComplex = image.type == IMAGE_COMPLEX;
  const Grid grid(image, request);
  const bool goesDown = isComplex && request.options.plane != VIEW_PLANE_MAGNITUDE;
  operands.DestinationOfAnyType(destination);
  operands.WriteSized(isEmpty ? 0 : grid.width(),
                      isEmpty ? 0 : grid.height() + (goesDown ? request.maxHeight : 0));
  if (operands.HasFailed()) return operands.status();
  operands.Written();

  const PixelView from = operands.From();
  const PixelView to = operands.To();
  for (int64_t y = 0; y < to.height; y++) {
    std::fill_n(to.Row<uint8_t>(y), to.width, static_cast<uint8_t>(request.options.background));
  }
  const int32_t step = StepOf(request);
  if (isComplex) {
    BarsDraw(grid, ComplexBars(from, request.options.plane, step), step, to);
  } else {
    BarsDraw(grid, ByteBars(from, step), step, to);
  }
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_3DView(ImageRef source, ImageRef dest, int32_t reduction, int32_t maxHeight,
                   int32_t direction, const View3DOptions* options) {
  const zel::ReliefRequest request(reduction, maxHeight, direction, options);
  return ZEL_ProcessError("ZEL_3DView", zel::ReliefView(source, dest, request));
}
