// Copies, repeated and thinned-out pixels, resampling.
#include <opencv2/imgproc.hpp>

#include "benchmarks/pairs.h"

namespace {

using bench::Images;
using bench::Mats;
using bench::SCALARS;
using bench::Size;

constexpr char NOTES[] = R"(
The peer of copies is `copyTo`, that of the others `resize`, which sets pixels of the result on other
places of the source than ours and rounds bilinear results of integer types from shares of 11 bits, where
ours are those of 64-bit floats. Times are a pixel of the result.
)";

constexpr int32_t WHOLE = WHOLE_IMAGE_EXTENT;
const std::vector<bench::Kind> KINDS = {{IMAGE_U8}, {IMAGE_I16}, {IMAGE_SGL}, {IMAGE_RGB}};

template <int percent>
Size Scaled(Size size) {
  return {size.width * percent / 100, size.height * percent / 100};
}

template <int percent>
double Results(Size size) {
  return bench::Area(Scaled<percent>(size));
}

template <int percent>
void Resize(Mats& m, int method) {
  const Size to = Scaled<percent>({m.a.cols, m.a.rows});
  cv::resize(m.a, m.to, {to.width, to.height}, 0, 0, method);
}

template <int percent, int32_t method>
int32_t Resample(Images& i) {
  const Size to = Scaled<percent>(i.size);
  return ZEL_Resample(i.a, i.to, 0, 0, WHOLE, WHOLE, to.width, to.height, method);
}

const std::vector<bench::Pair> PAIRS = {
    {.operation = "copy",
     .kinds = KINDS,
     .ours = [](Images& i) { return ZEL_Copy(i.a, i.to); },
     .theirs = [](Mats& m) { m.a.copyTo(m.to); }},
    {.operation = "expand_2",
     .kinds = KINDS,
     .sizes = {{64, 64}, {1920, 1080}},
     .pixels = Results<200>,
     .ours = [](Images& i) { return ZEL_Expand(i.a, i.to, 0, 0, WHOLE, WHOLE, 2, 2); },
     .theirs = [](Mats& m) { Resize<200>(m, cv::INTER_NEAREST); }},
    {.operation = "extract_2",
     .kinds = KINDS,
     .pixels = Results<50>,
     .ours = [](Images& i) { return ZEL_Extract(i.a, i.to, 0, 0, WHOLE, WHOLE, 2, 2); },
     .theirs = [](Mats& m) { Resize<50>(m, cv::INTER_NEAREST); }},
    {.operation = "paste",
     .kinds = SCALARS,
     .prepare =
         [](Images& i, Mats& m) {
           m.b.copyTo(m.to);
           return ZEL_Copy(i.b, i.to);
         },
     .ours = [](Images& i) { return ZEL_ImageToImage(i.a, i.to, 1, 1); },
     .theirs =
         [](Mats& m) {
           const cv::Rect inner(1, 1, m.a.cols - 1, m.a.rows - 1);
           m.a(inner - cv::Point(1, 1)).copyTo(m.to(inner));
         }},
    {.operation = "resample_nearest_1.7",
     .kinds = KINDS,
     .sizes = {{64, 64}, {1920, 1080}},
     .pixels = Results<170>,
     .ours = Resample<170, RESAMPLE_NEAREST>,
     .theirs = [](Mats& m) { Resize<170>(m, cv::INTER_NEAREST); }},
    {.operation = "resample_nearest_0.5",
     .kinds = KINDS,
     .pixels = Results<50>,
     .ours = Resample<50, RESAMPLE_NEAREST>,
     .theirs = [](Mats& m) { Resize<50>(m, cv::INTER_NEAREST); }},
    {.operation = "resample_bilinear_1.7",
     .kinds = KINDS,
     .sizes = {{64, 64}, {1920, 1080}},
     .pixels = Results<170>,
     .ours = Resample<170, RESAMPLE_BILINEAR>,
     .theirs = [](Mats& m) { Resize<170>(m, cv::INTER_LINEAR); }},
    {.operation = "resample_bilinear_0.5",
     .kinds = KINDS,
     .pixels = Results<50>,
     .ours = Resample<50, RESAMPLE_BILINEAR>,
     .theirs = [](Mats& m) { Resize<50>(m, cv::INTER_LINEAR); }},
    {.operation = "resample_quadratic_1.7",
     .kinds = SCALARS,
     .sizes = {{64, 64}, {1920, 1080}},
     .pixels = Results<170>,
     .ours = Resample<170, RESAMPLE_QUADRATIC>},
    {.operation = "resample_spline_1.7",
     .kinds = SCALARS,
     .sizes = {{64, 64}, {1920, 1080}},
     .pixels = Results<170>,
     .ours = Resample<170, RESAMPLE_SPLINE>},
};

const bench::Registration COPYING({"copying", "Copying and resampling", NOTES, PAIRS});

}  // namespace
