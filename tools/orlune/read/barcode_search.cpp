// The search for a bar code: turned upright and read along many lines and both ways.
#include "orlune/read/barcode_search.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <stdexcept>
#include <vector>

#include "orlune/read/barcode_areas.h"
#include "orlune/read/barcode_lines.h"

namespace front {
namespace {

constexpr int32_t SPLINE = 3;
constexpr double DEGREES = 57.29577951308232;
constexpr double LEAST_TURN = 0.3;  // degrees

struct Gradients {
  double across = 0, along = 0, mixed = 0;  // sums of squares and of products
};

Gradients GradientsOf(const Image& gray) {
  const ImageInfo info = gray.Info();
  Gradients sums;
  for (int32_t y = 0; y + 1 < info.height; ++y) {
    const uint8_t* row = Row<uint8_t>(info, y);
    const uint8_t* below = Row<uint8_t>(info, y + 1);
    for (int32_t x = 0; x + 1 < info.width; ++x) {
      const double dx = row[x + 1] - row[x], dy = below[x] - row[x];
      sums.across += dx * dx;
      sums.along += dy * dy;
      sums.mixed += dx * dy;
    }
  }
  return sums;
}

// By how much the picture has to be turned for its gradients to lie along the rows.
double UprightAngle(const Image& gray) {
  const Gradients sums = GradientsOf(gray);
  return 0.5 * std::atan2(2 * sums.mixed, sums.across - sums.along) * DEGREES;
}

// Codes along lines across an upright picture, and how many lines agree on each: the bars of a line
// are drawn anew, as whole modules, and the library reads those.
class LineSearch {
 public:
  explicit LineSearch(const BarcodeSettings& settings) : settings_(settings) {}

  // Lines of the picture's rows, and of several rows each against noise.
  void TryPicture(const Image& gray, double angle) {
    constexpr int32_t FEW = 160, MANY = 600, NEXT = 12;  // lines; rows between them
    const ImageInfo info = gray.Info();
    for (const int32_t rows : {1, 4}) {
      const int32_t step = std::max({rows, std::min(info.height / FEW, NEXT), info.height / MANY});
      for (int32_t y = 0; y + rows <= info.height; y += step) TryLine(gray, {y, rows}, angle);
    }
  }

  // What several lines agree on, and others less.
  std::optional<BarcodeReading> Best() const {
    constexpr int LEAST_LINES = 3;
    constexpr double LEAD = 2.0;
    const Candidate* best = nullptr;
    double others = 0;
    for (const auto& [text, candidate] : candidates_) {
      if (!best || candidate.weight > best->weight) {
        others = best ? best->weight : 0;
        best = &candidate;
      } else {
        others = std::max(others, candidate.weight);
      }
    }
    const int least = std::min(LEAST_LINES, attempts_);
    if (!best || best->lines < least || best->weight < LEAD * others) return std::nullopt;
    BarcodeReading reading = best->reading;
    reading.readings = best->lines;
    reading.attempts = attempts_;
    return reading;
  }

  static constexpr int32_t MARGIN = 12;  // pixels of light that a frame adds at both ends

  // What several lines agree on needs no more of them.
  static bool IsSure(const BarcodeReading&) { return true; }

 private:
  struct Candidate {
    double weight = 0;
    int lines = 0;
    BarcodeReading reading;
  };
  struct Strip {
    int32_t top, rows;
  };

  void TryLine(const Image& gray, const Strip& strip, double angle) {
    // Without the blur that a lens gives bars of few pixels, and as they are.
    constexpr double BLUR = 0.8 * SCALE;
    ++attempts_;
    const std::vector<double> levels = LevelsOf(gray, strip);
    std::map<std::string, BarcodeReading> found;
    for (const Edges& edges : {EdgesOf(levels), EdgesOf(Sharpened(levels, BLUR))}) {
      for (const bool isBackward : {false, true}) {
        const std::optional<LineCode> code =
            CodeAlong(isBackward ? Reversed(edges, levels.size()) : edges, settings_.kind);
        if (!code) continue;
        const std::string& text = TextOf(code->widths);
        if (text.empty()) continue;
        Candidate& candidate = candidates_[text];
        candidate.weight += 1 / (0.05 + code->misfit * code->misfit);
        if (found.emplace(text, ReadingOf(*code, strip, levels.size(), isBackward)).second) {
          ++candidate.lines;
        }
      }
    }
    for (auto& [text, reading] : found) {
      Candidate& candidate = candidates_[text];
      if (candidate.lines > 1) {
        // Lines of the picture as it lies and of the picture turned have no common place.
        if (candidate.reading.angle == angle) Include(reading.place, &candidate.reading.place);
        continue;
      }
      candidate.reading = reading;
      candidate.reading.text = text;
      candidate.reading.angle = angle;
    }
  }

  // Means of columns, twice as many as there are.
  static std::vector<double> LevelsOf(const Image& gray, const Strip& strip) {
    const ImageInfo info = gray.Info();
    Image wide(IMAGE_U8);
    Check(ZEL_Resample(gray, wide, strip.top, 0, strip.rows, info.width, info.width * SCALE,
                       strip.rows, SPLINE));
    std::vector<double> levels(static_cast<size_t>(info.width * SCALE), 0.0);
    const ImageInfo wideInfo = wide.Info();
    for (int32_t y = 0; y < strip.rows; ++y) {
      const auto* row = Row<uint8_t>(wideInfo, y);
      for (size_t x = 0; x < levels.size(); ++x) levels[x] += row[x];
    }
    for (double& level : levels) level /= strip.rows;
    return levels;
  }

  static BarcodeReading ReadingOf(const LineCode& code, const Strip& strip, size_t samples,
                                  bool isBackward) {
    double left = code.left, right = code.right;
    if (isBackward) {
      left = static_cast<double>(samples - 1) - code.right;
      right = static_cast<double>(samples - 1) - code.left;
    }
    BarcodeReading reading;
    reading.backward = isBackward;
    reading.place.left = static_cast<int32_t>(left / SCALE);
    reading.place.top = strip.top;
    reading.place.width = static_cast<int32_t>(std::ceil(right / SCALE)) - reading.place.left;
    reading.place.height = strip.rows;
    return reading;
  }

  static void Include(const Region& other, Region* place) {
    const int32_t right = std::max(place->left + place->width, other.left + other.width);
    const int32_t bottom = std::max(place->top + place->height, other.top + other.height);
    place->left = std::min(place->left, other.left);
    place->top = std::min(place->top, other.top);
    place->width = right - place->left;
    place->height = bottom - place->top;
  }

  // Empty where the reader refuses the widths, or takes them for what they are not.
  const std::string& TextOf(const std::string& widths) {
    const auto [known, isNew] = texts_.emplace(widths, "");
    if (!isNew) return known->second;
    for (const int digit : FirstDigits()) {
      const std::optional<std::string> text =
          ReadWidths(widths, {.kind = settings_.kind, .firstDigit = digit});
      if (!text) continue;
      const std::string own = WidthsOf(settings_.kind, *text);
      if (own.empty() || own == widths) known->second = *text;
    }
    return known->second;
  }

  std::vector<int> FirstDigits() const {
    if (settings_.kind != BarcodeKind::Ean13) return {0};
    if (settings_.firstDigit) return {*settings_.firstDigit};
    return {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
  }

  static constexpr int32_t SCALE = 2;

  const BarcodeSettings& settings_;
  std::map<std::string, std::string> texts_;  // of widths that were read
  std::map<std::string, Candidate> candidates_;
  int attempts_ = 0;
};

Image PartOf(const Image& gray, const Region& region) {
  const ImageInfo info = gray.Info();
  if (region.left < 0 || region.top < 0 || region.width < 2 || region.height < 1 ||
      region.left > info.width - region.width || region.top > info.height - region.height) {
    throw std::invalid_argument("the region does not lie in the picture");
  }
  Image part(IMAGE_U8);
  Check(ZEL_Extract(gray, part, region.top, region.left, region.height, region.width, 1, 1));
  return part;
}

// The gray level that a tenth of the pixels reach.
uint8_t LightOf(const Image& gray) {
  uint32_t counts[256] = {};
  HistogramReport report{};
  Check(ZEL_Histogram(gray, 0, 256, 0, 255, counts, &report));
  const ImageInfo info = gray.Info();
  int64_t left = int64_t{info.width} * info.height / 10;
  int32_t level = 255;
  while (level > 0 && left > counts[level]) left -= counts[level--];
  return static_cast<uint8_t>(level);
}

// A picture with light around it: codes may end where it ends, and it is turned within its frame.
struct Framed {
  Image image{IMAGE_U8};
  int32_t left = 0, top = 0;  // of the picture
};

Framed Frame(const Image& gray, int32_t width, int32_t height) {
  const ImageInfo info = gray.Info();
  Framed framed;
  framed.left = (width - info.width) / 2;
  framed.top = (height - info.height) / 2;
  Check(ZEL_SetImageSize(framed.image, width, height));
  Check(ZEL_FillImage(framed.image, 0, LightOf(gray), 0, 0, 0));
  const ImageInfo target = framed.image.Info();
  for (int32_t y = 0; y < info.height; ++y) {
    std::copy_n(Row<uint8_t>(info, y), info.width,
                Row<uint8_t>(target, y + framed.top) + framed.left);
  }
  return framed;
}

// Where a reading's place in a frame that was turned lies in the picture.
void PlaceInPicture(const Framed& framed, BarcodeReading* reading) {
  const ImageInfo info = framed.image.Info();
  const double sine = std::sin(reading->angle / DEGREES),
               cosine = std::cos(reading->angle / DEGREES);
  const double centreX = (info.width - 1) / 2.0, centreY = (info.height - 1) / 2.0;
  const auto inPicture = [&](int32_t across, int32_t down) {
    const double x = across - centreX, y = down - centreY;
    return PointFloat{static_cast<float>(centreX + x * cosine - y * sine - framed.left),
                      static_cast<float>(centreY + y * cosine + x * sine - framed.top)};
  };
  const Region& place = reading->place;
  const int32_t right = place.left + place.width - 1, bottom = place.top + place.height - 1;
  reading->corners = {inPicture(place.left, place.top), inPicture(right, place.top),
                      inPicture(right, bottom), inPicture(place.left, bottom)};
  reading->place.left -= framed.left;
  reading->place.top -= framed.top;
}

// As it lies, and then turned upright, until the search has found enough.
template <class Search>
std::optional<BarcodeReading> FindInTurns(const Image& gray, Search* search) {
  const ImageInfo info = gray.Info();
  const int32_t margin = Search::MARGIN;
  const Framed upright = Frame(gray, info.width + 2 * margin, info.height);
  search->TryPicture(upright.image, 0.0);
  std::optional<BarcodeReading> reading = search->Best();
  const double angle = UprightAngle(gray);
  if (std::fabs(angle) <= LEAST_TURN || (reading && search->IsSure(*reading))) {
    if (reading) PlaceInPicture(upright, &*reading);
    return reading;
  }
  const auto side = static_cast<int32_t>(std::ceil(std::hypot(info.width, info.height)));
  Framed turned =
      margin > 0 ? Frame(gray, side + 2 * margin, side) : Frame(gray, info.width, info.height);
  Check(ZEL_Rotate(turned.image, turned.image, static_cast<float>(angle), LightOf(gray), 1));
  search->TryPicture(turned.image, angle);
  reading = search->Best();
  if (reading) PlaceInPicture(reading->angle == 0.0 ? upright : turned, &*reading);
  return reading;
}

std::optional<BarcodeReading> FindByLines(const Image& gray, const BarcodeSettings& settings) {
  LineSearch search(settings);
  return FindInTurns(gray, &search);
}

std::optional<BarcodeReading> FindByAreas(const Image& gray, const BarcodeSettings& settings) {
  const ImageInfo info = gray.Info();
  if (settings.region) {
    // A region that fits the code is read as it is.
    AreaSearch plain(settings);
    plain.TryArea(gray, {0, 0, info.width - 1, info.height - 1}, 1, 0.0, false);
    if (std::optional<BarcodeReading> reading = plain.Best()) {
      PlaceInPicture(Frame(gray, info.width, info.height), &*reading);
      return reading;
    }
  }
  AreaSearch search(settings);
  std::optional<BarcodeReading> reading = FindInTurns(gray, &search);
  if (reading || !AreaSearch::DoBarsReachTheEnds(gray)) return reading;
  constexpr int32_t LIGHT = 24;  // pixels at either end
  const Framed framed = Frame(gray, info.width + 2 * LIGHT, info.height);
  AreaSearch framedSearch(settings);
  reading = FindInTurns(framed.image, &framedSearch);
  if (!reading) return reading;
  reading->place.left -= framed.left;
  for (PointFloat& corner : reading->corners) corner.x -= static_cast<float>(framed.left);
  return reading;
}

// Bars may end in the light that a frame adds.
void ClipTo(int32_t width, Region* place) {
  const int32_t right = std::min(place->left + place->width, width);
  place->left = std::max(place->left, 0);
  place->width = right - place->left;
}

}  // namespace

std::optional<BarcodeReading> FindBarcode(const Image& gray, const BarcodeSettings& settings) {
  const ImageInfo info = gray.Info();
  const Region place = settings.region.value_or(Region{0, 0, info.width, info.height});
  if (info.width < 2 || info.height < 1) return std::nullopt;
  const Image part = PartOf(gray, place);
  std::optional<BarcodeReading> reading =
      HasEvenSymbols(settings.kind) ? FindByLines(part, settings) : FindByAreas(part, settings);
  if (!reading) return std::nullopt;
  if (reading->angle == 0.0) ClipTo(place.width, &reading->place);
  for (PointFloat& corner : reading->corners) {
    corner.x += static_cast<float>(place.left);
    corner.y += static_cast<float>(place.top);
  }
  reading->place.left += place.left;
  reading->place.top += place.top;
  return reading;
}

}  // namespace front
