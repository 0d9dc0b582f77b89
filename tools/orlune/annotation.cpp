// Pictures made of what was found.
#include "orlune/annotation.h"

#include <algorithm>
#include <string>
#include <vector>

#include "orlune/output.h"

namespace front {
namespace {

constexpr RGBValue KEPT_COLOUR = 0x20E850;
constexpr RGBValue LEFT_OUT_COLOUR = 0xFF4040;
constexpr RGBValue RECTANGLE_COLOUR = 0xFF9600;
constexpr RGBValue NUMBER_COLOUR = 0xFFFFFF;
constexpr RGBValue HALO_COLOUR = 0x000000;

constexpr int32_t FACE_WIDTH = 5;
constexpr int32_t FACE_HEIGHT = 7;
constexpr int32_t LARGE_PICTURE = 400;  // from this height on, numbers are drawn at double size

// A row of a digit is 5 bits, the leftmost pixel in the highest.
constexpr uint8_t DIGITS[10][FACE_HEIGHT] = {
    {0x0E, 0x11, 0x13, 0x15, 0x19, 0x11, 0x0E}, {0x04, 0x0C, 0x04, 0x04, 0x04, 0x04, 0x0E},
    {0x0E, 0x11, 0x01, 0x02, 0x04, 0x08, 0x1F}, {0x1F, 0x02, 0x04, 0x02, 0x01, 0x11, 0x0E},
    {0x02, 0x06, 0x0A, 0x12, 0x1F, 0x02, 0x02}, {0x1F, 0x10, 0x1E, 0x01, 0x01, 0x11, 0x0E},
    {0x06, 0x08, 0x10, 0x1E, 0x11, 0x11, 0x0E}, {0x1F, 0x01, 0x02, 0x04, 0x08, 0x08, 0x08},
    {0x0E, 0x11, 0x11, 0x0E, 0x11, 0x11, 0x0E}, {0x0E, 0x11, 0x11, 0x0F, 0x01, 0x02, 0x0C}};

class Canvas {
 public:
  explicit Canvas(const Image& image) : info_(image.Info()) {}

  int32_t width() const { return info_.width; }
  int32_t height() const { return info_.height; }
  RGBValue* RowAt(int32_t y) const { return Row<RGBValue>(info_, y); }

  void Dot(int32_t x, int32_t y, RGBValue colour) const {
    if (x >= 0 && x < info_.width && y >= 0 && y < info_.height) RowAt(y)[x] = colour;
  }

  void Block(int32_t left, int32_t top, int32_t size, RGBValue colour) const {
    for (int32_t y = top; y < top + size; ++y) {
      for (int32_t x = left; x < left + size; ++x) Dot(x, y, colour);
    }
  }

  void Frame(int32_t left, int32_t top, int32_t right, int32_t bottom, RGBValue colour) const {
    for (int32_t x = left; x <= right; ++x) {
      Dot(x, top, colour);
      Dot(x, bottom, colour);
    }
    for (int32_t y = top; y <= bottom; ++y) {
      Dot(left, y, colour);
      Dot(right, y, colour);
    }
  }

 private:
  ImageInfo info_;
};

// Calls function(x, y) for every pixel of the number's digits in a grid of face pixels.
template <class Function>
void ForDigitPixels(const std::string& number, Function function) {
  for (size_t i = 0; i < number.size(); ++i) {
    const uint8_t* digit = DIGITS[number[i] - '0'];
    for (int32_t y = 0; y < FACE_HEIGHT; ++y) {
      for (int32_t x = 0; x < FACE_WIDTH; ++x) {
        if (digit[y] >> (FACE_WIDTH - 1 - x) & 1) {
          function(static_cast<int32_t>(i) * (FACE_WIDTH + 1) + x, y);
        }
      }
    }
  }
}

// Above the rectangle where there is room, else inside it; never outside the picture.
void DrawNumber(const Canvas& canvas, uint32_t number, const ApiRect& rect) {
  const std::string text = std::to_string(number);
  const int32_t size = canvas.height() >= LARGE_PICTURE ? 2 : 1;
  const int32_t width = (static_cast<int32_t>(text.size()) * (FACE_WIDTH + 1) - 1) * size;
  const int32_t height = FACE_HEIGHT * size;
  const int32_t above = rect.top - height - 2 * size - 1;
  const int32_t top = above >= size ? above : rect.top + 2 * size;
  const int32_t left = std::max(size, std::min(rect.left, canvas.width() - width - size));
  ForDigitPixels(text, [&](int32_t x, int32_t y) {
    canvas.Block(left + (x - 1) * size, top + (y - 1) * size, 3 * size, HALO_COLOUR);
  });
  ForDigitPixels(text, [&](int32_t x, int32_t y) {
    canvas.Block(left + x * size, top + y * size, size, NUMBER_COLOUR);
  });
}

void CopyGray(const Image& gray, const Canvas& canvas) {
  const ImageInfo info = gray.Info();
  for (int32_t y = 0; y < info.height; ++y) {
    const uint8_t* source = Row<uint8_t>(info, y);
    std::transform(source, source + info.width, canvas.RowAt(y),
                   [](uint8_t level) { return level * RGBValue{0x010101}; });
  }
}

// Colours those pixels of particles that have a neighbour outside.
void DrawOutlines(const Inspection& inspection, const Canvas& canvas) {
  std::vector<RGBValue> colours(inspection.particles.size() + 1, LEFT_OUT_COLOUR);  // by label
  for (const Particle& particle : inspection.particles) {
    if (particle.kept) colours[particle.number] = KEPT_COLOUR;
  }
  const LabelPicture labels(inspection.labels);
  for (int32_t y = 0; y < labels.height(); ++y) {
    const uint32_t* above = labels.Row(y - 1);
    const uint32_t* here = labels.Row(y);
    const uint32_t* below = labels.Row(y + 1);
    RGBValue* row = canvas.RowAt(y);
    for (int32_t x = 0; x < labels.width(); ++x) {
      const uint32_t label = here[x];
      const bool inside =
          here[x - 1] == label && here[x + 1] == label && above[x] == label && below[x] == label;
      if (label != 0 && !inside) row[x] = colours[label];
    }
  }
}

}  // namespace

void WriteAnnotation(const Inspection& inspection, const std::string& file) {
  const Image& gray = inspection.Gray();
  const ImageInfo info = gray.Info();
  const Image picture(IMAGE_RGB, 0, info.width, info.height);
  const Canvas canvas(picture);
  CopyGray(gray, canvas);
  for (const Particle& particle : inspection.particles) {
    const ApiRect& r = particle.rect;
    if (particle.kept) {
      canvas.Frame(r.left - 2, r.top - 2, r.left + r.width + 1, r.top + r.height + 1,
                   RECTANGLE_COLOUR);
    }
  }
  DrawOutlines(inspection, canvas);
  for (const Particle& particle : inspection.particles) {
    if (particle.kept) DrawNumber(canvas, particle.number, particle.rect);
  }
  WritePicture(picture, {}, Depth::AsImage, file, PictureFormat::Bmp);
}

void WriteLabels(const Inspection& inspection, const std::string& file) {
  constexpr uint32_t MOST_IN_16_BITS = 65535;
  const Labels& labels = inspection.labels;
  const Image picture(IMAGE_SGL, 0, labels.width, labels.height);
  Check(ZEL_ClearPixels(picture));
  const ImageInfo info = picture.Info();
  for (const PixelRun& run : labels.runs) {
    if (!inspection.particles[run.label - 1].kept) continue;
    std::fill_n(Row<float>(info, run.y) + run.start, run.end - run.start,
                static_cast<float>(run.label));
  }
  WritePicture(picture, {}, labels.count <= MOST_IN_16_BITS ? Depth::Unsigned16 : Depth::AsImage,
               file, PictureFormat::Tiff);
}

}  // namespace front
