// Images shown in windows, and pictures copied, on a machine without a display.
#include <algorithm>
#include <any>
#include <cstdlib>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "benchmarks/pairs.h"

namespace {

using bench::Images;
using bench::Mats;

constexpr char NOTES[] = R"(
Windows and clipboard are those of a machine without a display: all that is done but the way to the
screen. Times are of a whole call. `show` draws an image that has changed, zoomed out until it has 1000
columns at most: pixels that are no bytes are mapped to 256 levels from the smallest to the largest, and
those of the canvas go through the palette; OpenCV does the same by `minMaxLoc`, `convertTo`, `resize`
and `cvtColor`. `open_and_close` makes a window, draws a small image in it and closes it. `copy` and
`paste` exchange a picture with the clipboard; OpenCV writes and reads a BMP file in memory.
)";

const std::vector<bench::Size> SHOWN = {{64, 64}, {800, 600}, {4000, 3000}};
const std::vector<bench::Size> COPIED = {{64, 64}, {2600, 2600}};  // in colour 20 MB

// ---- shown

// One pixel in so many of a row and of a column is shown.
int32_t StepFor(bench::Size size) {
  constexpr int32_t columns = 1000;
  return std::max((size.width + columns - 1) / columns, 1);
}

int32_t PrepareWindow(Images& i, Mats&) {
  unsetenv("DISPLAY");
  const int32_t step = StepFor(i.size);
  const int32_t zoom = step == 1 ? 1 : -step;
  const int32_t result = ZEL_SetWindow2DAttributes(0, WATTR2_ZOOM, zoom, zoom);
  return result == 0 ? ZEL_WindDraw(i.a, 0, nullptr, 1) : result;
}

int32_t Show(Images& i) {
  return ZEL_WindDraw(i.a, 0, nullptr, 0);
}

int32_t OpenAndClose(Images& i) {
  const int32_t result = ZEL_WindDraw(i.a, 1, "window", 1);
  return result == 0 ? ZEL_WindClose(1, 0) : result;
}

void MapAndShrink(Mats& m) {
  cv::Mat levels = m.a;
  if (m.a.depth() != CV_8U) {
    double low = 0;
    double high = 0;
    cv::minMaxLoc(m.a, &low, &high);
    const double slope = 255 / (high - low);
    m.a.convertTo(m.scratch[0], CV_8U, slope, -slope * low);
    levels = m.scratch[0];
  }
  const int32_t step = StepFor({levels.cols, levels.rows});
  cv::resize(levels, m.scratch[1], {levels.cols / step, levels.rows / step}, 0, 0,
             cv::INTER_NEAREST);
  const int channels = levels.channels();
  if (channels == 4) {
    m.scratch[1].copyTo(m.to);
  } else {
    cv::cvtColor(m.scratch[1], m.to, channels == 1 ? cv::COLOR_GRAY2BGRA : cv::COLOR_BGR2BGRA);
  }
}

// ---- copied

int32_t PrepareClipboard(Images& i, Mats& m) {
  unsetenv("DISPLAY");
  std::vector<uint8_t> file;
  cv::imencode(".bmp", m.a, file);
  m.own = file;
  return ZEL_ImageToClipboard(i.a, nullptr);
}

int32_t Paste(Images& i) {
  int32_t available = 0;
  const int32_t result = ZEL_ClipboardToImage(i.to, nullptr, &available);
  return result == 0 && available != 1 ? -1 : result;
}

const std::vector<bench::Pair> PAIRS = {
    {.operation = "show",
     .kinds = {{IMAGE_U8}, {IMAGE_I16}, {IMAGE_SGL}, {IMAGE_RGB}},
     .sizes = SHOWN,
     .pixels = bench::OnePixel,
     .prepare = PrepareWindow,
     .ours = Show,
     .theirs = MapAndShrink},
    {.operation = "open_and_close",
     .sizes = {{64, 64}},
     .pixels = bench::OnePixel,
     .prepare = PrepareWindow,
     .ours = OpenAndClose},
    {.operation = "copy",
     .kinds = {{IMAGE_U8}, {IMAGE_RGB}},
     .sizes = COPIED,
     .pixels = bench::OnePixel,
     .prepare = PrepareClipboard,
     .ours = [](Images& i) { return ZEL_ImageToClipboard(i.a, nullptr); },
     .theirs =
         [](Mats& m) { cv::imencode(".bmp", m.a, *std::any_cast<std::vector<uint8_t>>(&m.own)); }},
    {.operation = "paste",
     .kinds = {{IMAGE_U8}, {IMAGE_RGB}},
     .sizes = COPIED,
     .pixels = bench::OnePixel,
     .prepare = PrepareClipboard,
     .ours = Paste,
     .theirs =
         [](Mats& m) {
           m.to = cv::imdecode(*std::any_cast<std::vector<uint8_t>>(&m.own), cv::IMREAD_UNCHANGED);
         }},
};

const bench::Registration WINDOWS({"windows", "Windows and the clipboard", NOTES, PAIRS});

}  // namespace
