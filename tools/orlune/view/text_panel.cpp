// Lines of text, and a curve beneath them, as a picture for a window.
#include "orlune/view/text_panel.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace front {
namespace {

constexpr char FONT[] = "DejaVu Sans Mono";
constexpr int32_t LINE_HEIGHT = 16;
constexpr int32_t LETTER_WIDTH = 9;  // at most, of such a font
constexpr int32_t MARGIN = 8;
constexpr int32_t CURVE_HEIGHT = 120;
constexpr int32_t LEAST_WIDTH = 280;
constexpr float WHITE = 255;
constexpr float MARK_GRAY = 160;
constexpr float BLACK = 0;

int32_t WidthFor(std::span<const std::string> lines) {
  size_t longest = 0;
  for (const std::string& line : lines) longest = std::max(longest, line.size());
  return std::max(static_cast<int32_t>(longest) * LETTER_WIDTH + 2 * MARGIN, LEAST_WIDTH);
}

// False where there are no fonts.
bool DrawLines(const Image& panel, std::span<const std::string> lines) {
  for (size_t i = 0; i < lines.size(); ++i) {
    const int32_t y = MARGIN + static_cast<int32_t>(i) * LINE_HEIGHT;
    const int32_t status = ZEL_DrawText(panel, 0, MARGIN, y, TEXT_BLACK, lines[i].c_str(),
                                        LINE_HEIGHT, 0, TEXT_ALIGN_LEFT, FONT, nullptr);
    if (status == ZEL_ERR_NO_FONT || status == ZEL_ERR_NO_FONT_LIBRARIES ||
        status == ZEL_ERR_FONT_UNREADABLE) {
      return false;
    }
    Check(status);
  }
  return true;
}

void Line(const Image& panel, int32_t x1, int32_t y1, int32_t x2, int32_t y2, float level) {
  Check(ZEL_DrawLine(panel, 0, x1, y1, x2, y2, DRAW_PAINT, level));
}

struct CurveFrame {
  int32_t left, top, width, height;
  size_t samples;
  double low, high;

  int32_t X(double sample) const {
    const double part = samples > 1 ? sample / static_cast<double>(samples - 1) : 0;
    return left + static_cast<int32_t>(part * (width - 1));
  }
  int32_t Y(double value) const {
    const double part = high > low ? (value - low) / (high - low) : 0;
    return top + height - 1 - static_cast<int32_t>(part * (height - 1));
  }
};

void DrawCurve(const Image& panel, const CurveFrame& frame, const PanelContents& contents) {
  Check(ZEL_DrawRect(panel, 0, frame.top - 1, frame.left - 1, frame.height + 2, frame.width + 2,
                     DRAW_FRAME, MARK_GRAY));
  for (const float mark : contents.marks) {
    const int32_t x = frame.X(static_cast<double>(mark));
    Line(panel, x, frame.top, x, frame.top + frame.height - 1, MARK_GRAY);
  }
  for (size_t i = 1; i < contents.curve.size(); ++i) {
    const auto from = static_cast<double>(contents.curve[i - 1]);
    const auto to = static_cast<double>(contents.curve[i]);
    if (!std::isfinite(from) || !std::isfinite(to)) continue;
    Line(panel, frame.X(static_cast<double>(i - 1)), frame.Y(from), frame.X(static_cast<double>(i)),
         frame.Y(to), BLACK);
  }
}

}  // namespace

std::optional<Image> DrawPanel(const PanelContents& contents) {
  const int32_t width = WidthFor(contents.lines);
  const int32_t textHeight = static_cast<int32_t>(contents.lines.size()) * LINE_HEIGHT;
  const int32_t curveHeight = contents.curve.empty() ? 0 : CURVE_HEIGHT + MARGIN;
  Image panel(IMAGE_U8, 0, width, textHeight + curveHeight + 2 * MARGIN);
  const ImageInfo info = panel.Info();
  for (int32_t y = 0; y < info.height; ++y) {
    std::fill_n(Row<uint8_t>(info, y), info.width, static_cast<uint8_t>(WHITE));
  }
  if (!DrawLines(panel, contents.lines)) return std::nullopt;
  if (contents.curve.empty()) return panel;
  CurveFrame frame{MARGIN,
                   textHeight + 2 * MARGIN,
                   width - 2 * MARGIN,
                   CURVE_HEIGHT,
                   contents.curve.size(),
                   std::numeric_limits<double>::infinity(),
                   -std::numeric_limits<double>::infinity()};
  for (const float value : contents.curve) {
    if (!std::isfinite(value)) continue;
    frame.low = std::min(frame.low, static_cast<double>(value));
    frame.high = std::max(frame.high, static_cast<double>(value));
  }
  DrawCurve(panel, frame, contents);
  return panel;
}

}  // namespace front
