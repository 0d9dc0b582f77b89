// Images turned, shifted, mirrored and transposed.
#include <opencv2/imgproc.hpp>

#include "benchmarks/pairs.h"

namespace {

using bench::Images;
using bench::Mats;

constexpr char NOTES[] = R"(
The peers of rotation are `warpAffine` with shares of 5 bits, that of a shift `copyTo` after a fill, those
of mirroring and transposing `flip` and `transpose`. The relief view has none.
)";

const std::vector<bench::Kind> KINDS = {{IMAGE_U8}, {IMAGE_I16}, {IMAGE_SGL}, {IMAGE_RGB}};

template <int32_t interpolate>
int32_t Rotate(Images& i) {
  return ZEL_Rotate(i.a, i.to, 17, 0, interpolate);
}

void PeerRotate(Mats& m, int method) {
  const cv::Point2f centre(static_cast<float>(m.a.cols - 1) / 2,
                           static_cast<float>(m.a.rows - 1) / 2);
  cv::warpAffine(m.a, m.to, cv::getRotationMatrix2D(centre, 17, 1), m.a.size(), method);
}

template <uint8_t symmetry>
int32_t Symmetry(Images& i) {
  return ZEL_Symmetry(i.a, i.to, symmetry);
}

void PeerShift(Mats& m) {
  m.to.create(m.a.size(), m.a.type());
  m.to.setTo(cv::Scalar::all(0));
  const cv::Rect inner(3, 5, m.a.cols - 3, m.a.rows - 5);
  m.a(inner - cv::Point(3, 5)).copyTo(m.to(inner));
}

const std::vector<bench::Pair> PAIRS = {
    {.operation = "rotate_nearest",
     .kinds = KINDS,
     .ours = Rotate<0>,
     .theirs = [](Mats& m) { PeerRotate(m, cv::INTER_NEAREST); }},
    {.operation = "rotate_bilinear",
     .kinds = KINDS,
     .ours = Rotate<1>,
     .theirs = [](Mats& m) { PeerRotate(m, cv::INTER_LINEAR); }},
    {.operation = "shift",
     .kinds = KINDS,
     .ours = [](Images& i) { return ZEL_Shift(i.a, i.to, 3, 5, 0); },
     .theirs = PeerShift},
    {.operation = "flip_top_bottom",
     .kinds = KINDS,
     .ours = Symmetry<SYMMETRY_TOP_BOTTOM>,
     .theirs = [](Mats& m) { cv::flip(m.a, m.to, 0); }},
    {.operation = "flip_left_right",
     .kinds = KINDS,
     .ours = Symmetry<SYMMETRY_LEFT_RIGHT>,
     .theirs = [](Mats& m) { cv::flip(m.a, m.to, 1); }},
    {.operation = "flip_both",
     .kinds = KINDS,
     .ours = Symmetry<SYMMETRY_BOTH>,
     .theirs = [](Mats& m) { cv::flip(m.a, m.to, -1); }},
    {.operation = "transpose",
     .kinds = KINDS,
     .ours = [](Images& i) { return ZEL_Transpose(i.a, i.to); },
     .theirs = [](Mats& m) { cv::transpose(m.a, m.to); }},
    {.operation = "transpose_no_border",
     .kinds = {{IMAGE_U8}},
     .border = 0,
     .ours = [](Images& i) { return ZEL_Transpose(i.a, i.to); },
     .theirs = [](Mats& m) { cv::transpose(m.a, m.to); }},
    {.operation = "relief_view",
     .sizes = {{1920, 1080}},
     .result = IMAGE_U8,
     .ours = [](Images& i) { return ZEL_3DView(i.a, i.to, 4, 64, 0, nullptr); }},
};

const bench::Registration GEOMETRY({"geometry", "Geometry", NOTES, PAIRS});

}  // namespace
