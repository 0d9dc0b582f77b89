// Labels painted from the widths of their bars and spaces.
#include "scenes/labels.h"

#include <cmath>
#include <numbers>

#include "scenes/paint.h"

namespace scenes {
namespace {

constexpr int LABEL_WIDTH = 480;
constexpr int LABEL_HEIGHT = 320;
constexpr double NARROW = 2.3;  // pixels
constexpr double WIDE = 3 * NARROW;
constexpr double HALF_HEIGHT = 40;  // of the bars

// The widths of a digit, which bars and spaces of a pair have by turns.
const char* WidthsOf(char digit) {
  static const char* const all[] = {"nnwwn", "wnnnw", "nwnnw", "wwnnn", "nnwnw",
                                    "wnwnn", "nwwnn", "nnnww", "wnnwn", "nwnwn"};
  return all[digit - '0'];
}

// Where bars begin and end, from the first bar's left end on.
std::vector<double> EdgesOf(const std::string& digits) {
  std::string widths = "nnnn";
  for (size_t pair = 0; pair + 1 < digits.size(); pair += 2) {
    for (int i = 0; i < 5; i++) {
      widths += WidthsOf(digits[pair])[i];
      widths += WidthsOf(digits[pair + 1])[i];
    }
  }
  widths += "wnn";
  double edge = 0;
  std::vector<double> edges = {edge};
  for (const char width : widths) edges.push_back(edge += width == 'w' ? WIDE : NARROW);
  return edges;
}

bool IsOnBar(const std::vector<double>& edges, double along) {
  const auto behind = std::upper_bound(edges.begin(), edges.end(), along);
  return behind != edges.end() && (behind - edges.begin()) % 2 == 1;
}

}  // namespace

Label BarcodeLabel(const std::string& file, const std::string& digits, double degrees) {
  const std::vector<double> edges = EdgesOf(digits);
  const double cosine = std::cos(degrees * std::numbers::pi / 180);
  const double sine = std::sin(degrees * std::numbers::pi / 180);
  const auto light = [&](Point at) {
    const double x = at.x - LABEL_WIDTH / 2.0;
    const double y = at.y - LABEL_HEIGHT / 2.0;
    const double along = cosine * x + sine * y + edges.back() / 2;
    const bool isDark = std::abs(cosine * y - sine * x) < HALF_HEIGHT && IsOnBar(edges, along);
    return (isDark ? 45.0 : 205.0) * (1 - 0.25 * at.x / LABEL_WIDTH);
  };
  return {file, digits, Paint(LABEL_WIDTH, LABEL_HEIGHT, digits.size(), light)};
}

std::vector<Label> AllLabels() {
  return {BarcodeLabel("upright.bmp", "20261122", 0), BarcodeLabel("turned.bmp", "0417", 24)};
}

}  // namespace scenes
