// Pictures made of what was found.
#include "orlune/shared/annotation.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "orlune/shared/output.h"

namespace front {
namespace {

constexpr RGBValue KEPT_COLOUR = 0x20E850;
constexpr RGBValue LEFT_OUT_COLOUR = 0xFF4040;
constexpr RGBValue RECTANGLE_COLOUR = 0xFF9600;

// Above the rectangle where there is room, else inside it; never outside the picture.
void DrawNumber(const Canvas& canvas, uint32_t number, const ApiRect& rect) {
  const std::string text = std::to_string(number);
  const int32_t size = canvas.TextSize();
  const int32_t above = rect.top - TextHeight(size) - 2 * size - 1;
  canvas.Text(rect.left, above >= size ? above : rect.top + 2 * size, text);
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

// The template's own axes, where they lie in the match.
void DrawAxes(const Canvas& canvas, const ShapeMatch& match) {
  constexpr RGBValue COLOUR = 0xFF50FF;
  const double reach = std::max(std::sqrt(match.area) / 3, 4.0);
  const Pose pose{match.at, match.degrees.value_or(0)};
  const auto place = [&](double x, double y) { return Carried({x, y}, {}, pose); };
  canvas.Stroke(place(match.degrees ? 0 : -reach / 2, 0), place(reach, 0), 1, COLOUR);
  canvas.Stroke(place(0, -reach / 2), place(0, reach / 2), 1, COLOUR);
}

}  // namespace

void DrawParticles(const Inspection& inspection, const Canvas& canvas) {
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
}

void DrawMatches(const Matching& matching, const Canvas& canvas) {
  DrawParticles(matching.inspection, canvas);
  for (const ShapeMatch& match : matching.matches) DrawAxes(canvas, match);
}

void WriteAnnotation(const Inspection& inspection, const std::string& file) {
  const Image& gray = inspection.Gray();
  const ImageInfo info = gray.Info();
  const Image picture(IMAGE_RGB, 0, info.width, info.height);
  const Canvas canvas(picture);
  canvas.CopyGray(gray);
  DrawParticles(inspection, canvas);
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
