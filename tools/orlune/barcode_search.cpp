// The search for a bar code: turned upright, enlarged, read along many rows and both ways.
#include "orlune/barcode_search.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <map>
#include <stdexcept>

namespace front {
namespace {

constexpr int32_t SPLINE = 3;
constexpr double DEGREES = 57.29577951308232;
constexpr double LEAST_TURN = 0.3;    // degrees
constexpr int32_t LARGEST_SCALE = 3;  // of a code whose bars are narrow
constexpr int32_t MARGINS[] = {2, 5, 10};

// The part of an upright picture that its bars fill; both ends included.
struct Bars {
  int32_t left, top, right, bottom;
};

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

// The longest stretch of places that pass, gaps of a few places left out of account.
template <class Passes>
std::pair<int32_t, int32_t> LongestStretch(int32_t count, int32_t gap, Passes passes) {
  std::pair<int32_t, int32_t> best{0, -1};
  int32_t start = -1, last = -1;
  for (int32_t i = 0; i < count; ++i) {
    if (!passes(i)) continue;
    if (start < 0 || i - last > gap) start = i;
    last = i;
    if (last - start > best.second - best.first) best = {start, last};
  }
  return best;
}

// Rows of bars change along and not across; columns of bars change more than those around them.
std::optional<Bars> FindBars(const Image& gray) {
  const ImageInfo info = gray.Info();
  if (info.width < 8 || info.height < 2) return std::nullopt;
  std::vector<int64_t> rows(static_cast<size_t>(info.height - 1));
  for (int32_t y = 0; y + 1 < info.height; ++y) {
    const uint8_t* row = Row<uint8_t>(info, y);
    const uint8_t* below = Row<uint8_t>(info, y + 1);
    int64_t sum = 0;
    for (int32_t x = 0; x + 1 < info.width; ++x) {
      sum += std::abs(row[x + 1] - row[x]) - std::abs(below[x] - row[x]);
    }
    rows[static_cast<size_t>(y)] = sum;
  }
  const int64_t most = *std::max_element(rows.begin(), rows.end());
  if (most <= 0) return std::nullopt;
  const auto [top, bottom] = LongestStretch(
      info.height - 1, 1, [&](int32_t y) { return 2 * rows[static_cast<size_t>(y)] > most; });

  std::vector<int64_t> columns(static_cast<size_t>(info.width), 0);
  for (int32_t y = top; y <= bottom; ++y) {
    const uint8_t* row = Row<uint8_t>(info, y);
    for (int32_t x = 0; x + 1 < info.width; ++x) {
      columns[static_cast<size_t>(x)] += std::abs(row[x + 1] - row[x]);
    }
  }
  constexpr int32_t REACH = 12;
  std::vector<int64_t> around(columns.size());
  for (int32_t x = 0; x < info.width; ++x) {
    const int32_t from = std::max(0, x - REACH), to = std::min(info.width, x + REACH + 1);
    for (int32_t i = from; i < to; ++i)
      around[static_cast<size_t>(x)] += columns[static_cast<size_t>(i)];
  }
  std::vector<int64_t> sorted = around;
  std::sort(sorted.begin(), sorted.end());
  const int64_t usual = sorted[sorted.size() * 4 / 5];
  auto [left, right] = LongestStretch(
      info.width, 8, [&](int32_t x) { return 20 * around[static_cast<size_t>(x)] > 7 * usual; });
  if (left >= right) return std::nullopt;
  const int64_t edge = *std::max_element(columns.begin() + left, columns.begin() + right + 1) / 4;
  while (left < right && columns[static_cast<size_t>(left)] < edge) ++left;
  while (right > left && columns[static_cast<size_t>(right)] < edge) --right;
  return Bars{left, top, right, bottom + 1};
}

// Widths of bars and spaces in modules, of the kinds whose texts do not tell which way they were
// read, or whether they were a code at all; empty for the others.
std::string WidthsOf(BarcodeKind kind, const std::string& text) {
  static const std::array<std::string, 10> SETS = {"3211", "2221", "2122", "1411", "1132",
                                                   "1231", "1114", "1312", "1213", "3112"};
  static const std::array<std::string, 10> PARITIES = {"000000", "001011", "001101", "001110",
                                                       "010011", "011001", "011100", "010101",
                                                       "010110", "011010"};
  static const std::array<std::string, 10> PAIRS = {"00110", "10001", "01001", "11000", "00101",
                                                    "10100", "01100", "00011", "10010", "01010"};
  const auto digit = [&](size_t i) { return static_cast<size_t>(text[i] - '0'); };
  std::string widths;
  if (kind == BarcodeKind::Ean8 || kind == BarcodeKind::Ean13 || kind == BarcodeKind::UpcA) {
    const size_t first = kind == BarcodeKind::Ean13 ? 1 : 0;
    const size_t half = (text.size() - first) / 2;
    const std::string parity = first == 1 ? PARITIES[digit(0)] : std::string(half, '0');
    widths = "111";
    for (size_t i = 0; i < 2 * half; ++i) {
      std::string symbol = SETS[digit(first + i)];
      if (i < half && parity[i] == '1') std::reverse(symbol.begin(), symbol.end());
      if (i == half) widths += "11111";
      widths += symbol;
    }
    widths += "111";
  } else if (kind == BarcodeKind::Interleaved) {
    widths = "1111";
    for (size_t i = 0; i + 1 < text.size(); i += 2) {
      for (size_t k = 0; k < 5; ++k) {
        widths += PAIRS[digit(i)][k] == '1' ? '3' : '1';
        widths += PAIRS[digit(i + 1)][k] == '1' ? '3' : '1';
      }
    }
    widths += "311";
  } else if (kind == BarcodeKind::Msi) {
    widths = "21";
    for (const char c : text) {
      for (int bit = 8; bit > 0; bit /= 2) widths += ((c - '0') & bit) != 0 ? "21" : "12";
    }
    widths += "121";
  }
  return widths;
}

// Runs of dark and light between the first dark and the last one, as shares of the whole, of the
// mean of some rows.
std::vector<double> RunsOf(const Image& gray, const Bars& area, bool backward) {
  constexpr int32_t LINES = 10;
  constexpr size_t SHARE_AROUND = 16;
  const ImageInfo info = gray.Info();
  const auto count = static_cast<size_t>(area.right - area.left + 1);
  std::vector<double> profile(count, 0.0);
  for (int32_t k = 0; k < LINES; ++k) {
    const int32_t y = area.top + (area.bottom - area.top) * k / LINES;
    const uint8_t* row = Row<uint8_t>(info, y) + area.left;
    for (size_t i = 0; i < count; ++i) profile[i] += row[backward ? count - 1 - i : i];
  }
  std::vector<double> crossings;
  for (size_t i = 1; i < count; ++i) {
    // Light and blur differ from end to end: the level is that of the neighbourhood.
    const size_t reach = count / SHARE_AROUND + 4;
    const auto from = profile.begin() + static_cast<std::ptrdiff_t>(i > reach ? i - reach : 0);
    const auto to = profile.begin() + static_cast<std::ptrdiff_t>(std::min(count, i + reach));
    const auto [low, high] = std::minmax_element(from, to);
    const double level = (*low + *high) / 2;
    const double a = profile[i - 1] - level, b = profile[i] - level;
    if ((a <= 0) == (b <= 0)) continue;
    if (crossings.empty() && a <= 0) continue;  // begins dark
    crossings.push_back(static_cast<double>(i - 1) + a / (a - b));
  }
  std::vector<double> runs;
  if (crossings.size() % 2 != 0) crossings.pop_back();  // ends dark
  for (size_t i = 1; i < crossings.size(); ++i) runs.push_back(crossings[i] - crossings[i - 1]);
  const double whole = crossings.empty() ? 1.0 : crossings.back() - crossings.front();
  for (double& run : runs) run /= whole;
  return runs;
}

// How far the bars are from those of a text, in modules a run; nothing where they are not as many.
std::optional<double> Misfit(const std::vector<double>& runs, const std::string& widths) {
  if (runs.size() != widths.size()) return std::nullopt;
  double modules = 0;
  for (const char width : widths) modules += width - '0';
  double sum = 0;
  for (size_t i = 0; i < runs.size(); ++i) sum += std::fabs(runs[i] * modules - (widths[i] - '0'));
  return sum / static_cast<double>(runs.size());
}

// Whether some runs round to these widths.
bool Round(const double* runs, double modules, std::string_view widths) {
  for (size_t i = 0; i < widths.size(); ++i) {
    if (std::lround(runs[i] * modules) != widths[i] - '0') return false;
  }
  return true;
}

// Whether runs make symbols of three bars and three spaces between a start and a stop.
bool HasEnds(const std::vector<double>& runs, int32_t symbolModules, std::string_view start,
             std::string_view stop) {
  constexpr size_t SYMBOL = 6;
  const size_t least = 3 * SYMBOL + stop.size();
  if (runs.size() < least || (runs.size() - stop.size()) % SYMBOL != 0) return false;
  double modules = static_cast<double>((runs.size() - stop.size()) / SYMBOL) * symbolModules;
  for (const char width : stop) modules += width - '0';
  return Round(runs.data(), modules, start) &&
         Round(runs.data() + runs.size() - stop.size(), modules, stop);
}

// How far the bars are from those of a text, in modules a run; nothing where they are others
// altogether. Texts that tell by themselves that they were framed by a start and a stop fit.
std::optional<double> MisfitOf(BarcodeKind kind, const std::string& text,
                               const std::vector<double>& runs) {
  constexpr double WORST = 0.35;
  std::optional<double> misfit = 0.0;
  if (kind == BarcodeKind::Code128) {
    if (!HasEnds(runs, 11, "211", "2331112")) misfit = std::nullopt;
  } else if (kind == BarcodeKind::Code93) {
    if (!HasEnds(runs, 9, "111141", "1111411")) misfit = std::nullopt;
  } else if (std::string widths = WidthsOf(kind, text); !widths.empty()) {
    misfit = Misfit(runs, widths);
    if (misfit && kind == BarcodeKind::Interleaved) {
      // Wide is two to three times narrow.
      std::replace(widths.begin(), widths.end(), '3', '2');
      misfit = std::min(*misfit, *Misfit(runs, widths));
    }
  }
  return misfit && *misfit <= WORST ? misfit : std::nullopt;
}

bool LosesCheck(BarcodeKind kind) {
  return kind == BarcodeKind::Interleaved || kind == BarcodeKind::Msi;
}

// Whether a text can have come from a code: the kinds without a check have starts and stops.
bool HasFrame(BarcodeKind kind, const std::string& text, bool validated) {
  constexpr size_t SHORTEST = 4;
  const auto framed = [&](std::string_view first, std::string_view last) {
    if (text.size() < SHORTEST || first.find(text.front()) == std::string_view::npos) return false;
    if (last.find(text.back()) == std::string_view::npos) return false;
    return text.find_first_of(first, 1) >= text.size() - 1;
  };
  if (kind == BarcodeKind::Codabar && !validated) return framed("ABCD", "ABCD");
  if (kind == BarcodeKind::Code39 && !validated) return framed("*", "*");
  return !text.empty();
}

class Search {
 public:
  explicit Search(const BarcodeSettings& settings) : settings_(settings) {}

  // One call of the reader.
  void Try(const Image& gray, const Bars& area, int32_t scale, double angle, bool backward) {
    ++attempts_;
    std::vector<double> runs;
    for (const int digit : FirstDigits()) {
      const std::optional<std::string> text = Read(gray, area, backward, digit);
      if (!text || !HasFrame(settings_.kind, *text, settings_.validate)) continue;
      if (runs.empty()) runs = RunsOf(gray, area, backward);
      // A text that lost its check is no longer that of all bars.
      const bool isWhole = !settings_.validate || !LosesCheck(settings_.kind);
      const std::optional<double> misfit = isWhole ? MisfitOf(settings_.kind, *text, runs) : 0.0;
      if (!misfit && !MayStandAlone(*text)) continue;
      Candidate& candidate = candidates_[*text];
      constexpr double OF_NO_FIT = 0.05;
      candidate.weight += misfit ? 1 / (0.05 + *misfit * *misfit) : OF_NO_FIT;
      if (misfit) ++candidate.fits;
      if (candidate.reading.readings++ != 0) continue;
      candidate.reading.text = *text;
      candidate.reading.place = {area.left / scale, area.top / scale,
                                 (area.right - area.left + scale) / scale,
                                 std::max(1, (area.bottom - area.top) / scale)};
      candidate.reading.angle = angle;
      candidate.reading.backward = backward;
    }
  }

  // The text with the most weight, if enough readings gave it.
  std::optional<BarcodeReading> Best(int leastReadings) const {
    const Candidate* best = nullptr;
    for (const auto& [text, candidate] : candidates_) {
      if (!best || candidate.weight > best->weight) best = &candidate;
    }
    // Where bars are too blurred to be told one by one, a fifth of all readings has to agree.
    if (!best) return std::nullopt;
    const bool agreed = 5 * best->reading.readings > attempts_;
    if (best->fits < leastReadings && !agreed) return std::nullopt;
    BarcodeReading reading = best->reading;
    reading.attempts = attempts_;
    return reading;
  }

 private:
  struct Candidate {
    double weight = 0;
    int fits = 0;  // readings whose bars are those of the text
    BarcodeReading reading;
  };

  // Whether the kind's check tells enough where the bars cannot be compared with the text.
  bool MayStandAlone(const std::string& text) const {
    constexpr size_t LONG_ENOUGH = 4;
    return (settings_.kind == BarcodeKind::Code128 || settings_.kind == BarcodeKind::UpcA ||
            settings_.kind == BarcodeKind::Ean8) &&
           text.size() >= LONG_ENOUGH;
  }

  std::vector<int> FirstDigits() const {
    if (settings_.kind != BarcodeKind::Ean13) return {0};
    if (settings_.firstDigit) return {*settings_.firstDigit};
    return {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
  }

  std::optional<std::string> Read(const Image& gray, const Bars& area, bool backward,
                                  int firstDigit) const {
    const int32_t from = backward ? area.right : area.left;
    const int32_t to = backward ? area.left : area.right;
    const int32_t flat[] = {
        area.left, area.top, area.right + 1, area.bottom + 1, ROI_MARKER_EXTERNAL, ROI_RECT, from,
        area.top,  to,       area.bottom};
    RoiDescriptor* region = nullptr;
    Check(ZEL_ArrayToROI(flat, 10, &region));
    char* text = nullptr;
    int32_t length = 0;
    const auto digit = static_cast<uint8_t>(firstDigit);
    const int32_t status = Call(gray, region, &digit, &text, &length);
    ZEL_FreeROI(region);
    const Block<char> block(text);
    if (status == ZEL_ERR_MEMORY_FULL) Check(status);
    if (status != 0) return std::nullopt;
    return std::string(text, text + length);
  }

  int32_t Call(ImageRef image, const RoiDescriptor* region, const uint8_t* digit, char** text,
               int32_t* length) const {
    const int32_t validate = settings_.validate ? 1 : 0;
    switch (settings_.kind) {
      case BarcodeKind::Codabar:
        return ZEL_ReadCodabar(image, region, validate, text, length);
      case BarcodeKind::Interleaved:
        return ZEL_ReadCod25(image, region, validate, text, length);
      case BarcodeKind::Msi:
        return ZEL_ReadMSI(image, region, validate, text, length);
      case BarcodeKind::Code39:
        return ZEL_ReadCod39(image, region, validate, text, length);
      case BarcodeKind::Code93:
        return ZEL_ReadCod93(image, region, validate, text, length);
      case BarcodeKind::Code128:
        return ZEL_ReadCod128(image, region, validate, text, length);
      case BarcodeKind::Ean8:
        return ZEL_ReadCodEAN8(image, region, validate, text, length);
      case BarcodeKind::Ean13:
        return ZEL_ReadEAN13(image, region, validate, digit, text, length);
      case BarcodeKind::UpcA:
        return ZEL_ReadUPCA(image, region, validate, text, length);
    }
    return 0;
  }

  const BarcodeSettings& settings_;
  std::map<std::string, Candidate> candidates_;
  int attempts_ = 0;
};

// Of the height of the bars: their middle, narrow bands, and single rows.
std::vector<std::pair<double, double>> Bands() {
  std::vector<std::pair<double, double>> bands = {{0.1, 0.9}, {0.3, 0.7}};
  for (int i = 1; i < 8; ++i) bands.emplace_back(i / 8.0, i / 8.0 + 0.06);
  for (int i = 1; i < 16; ++i) bands.emplace_back(i / 16.0, i / 16.0);
  return bands;
}

void TryUpright(const Image& gray, double angle, Search* search) {
  const std::optional<Bars> bars = FindBars(gray);
  if (!bars) return;
  const ImageInfo info = gray.Info();
  for (int32_t scale = 1; scale <= LARGEST_SCALE; ++scale) {
    Image larger(IMAGE_U8);
    Check(ZEL_Resample(gray, larger, 0, 0, info.height, info.width, info.width * scale,
                       info.height * scale, SPLINE));
    const int32_t height = (bars->bottom - bars->top) * scale;
    for (const auto& [from, to] : Bands()) {
      for (const int32_t margin : MARGINS) {
        const Bars area{
            std::max(0, (bars->left - margin) * scale),
            bars->top * scale + static_cast<int32_t>(from * height),
            std::min(info.width * scale - 1, (bars->right + margin) * scale + scale - 1),
            std::min(info.height * scale - 1,
                     bars->top * scale + static_cast<int32_t>(to * height))};
        search->Try(larger, area, scale, angle, false);
        search->Try(larger, area, scale, angle, true);
      }
    }
  }
}

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

}  // namespace

const std::vector<BarcodeKindRow>& AllBarcodeKinds() {
  static const std::vector<BarcodeKindRow> kinds = {
      {BarcodeKind::Codabar, "codabar"}, {BarcodeKind::Interleaved, "interleaved"},
      {BarcodeKind::Msi, "msi"},         {BarcodeKind::Code39, "code39"},
      {BarcodeKind::Code93, "code93"},   {BarcodeKind::Code128, "code128"},
      {BarcodeKind::Ean8, "ean8"},       {BarcodeKind::Ean13, "ean13"},
      {BarcodeKind::UpcA, "upca"},
  };
  return kinds;
}

std::string_view NameOf(BarcodeKind kind) {
  return AllBarcodeKinds()[static_cast<size_t>(kind)].name;
}

std::optional<BarcodeReading> FindBarcode(const Image& gray, const BarcodeSettings& settings) {
  constexpr int LEAST_READINGS = 3;  // of hundreds: fewer come up where there is no code
  const ImageInfo info = gray.Info();
  const Region place = settings.region.value_or(Region{0, 0, info.width, info.height});
  if (info.width < 2 || info.height < 1) return std::nullopt;
  const Image part = PartOf(gray, place);
  Search search(settings);
  if (settings.region) {
    // A region that fits the code is read as it is.
    Search plain(settings);
    plain.Try(part, {0, 0, place.width - 1, place.height - 1}, 1, 0.0, false);
    if (std::optional<BarcodeReading> reading = plain.Best(1)) {
      reading->place = place;
      return reading;
    }
  }
  TryUpright(part, 0.0, &search);
  const double angle = UprightAngle(part);
  if (std::fabs(angle) > LEAST_TURN) {
    Image turned(IMAGE_U8);
    Check(ZEL_Rotate(part, turned, static_cast<float>(angle), 255.0f, 1));
    TryUpright(turned, angle, &search);
  }
  std::optional<BarcodeReading> best = search.Best(LEAST_READINGS);
  if (best) {
    best->place.left += place.left;
    best->place.top += place.top;
  }
  return best;
}

}  // namespace front
