// Pixels, lines and whole arrays.
#include <opencv2/imgproc.hpp>
#include <vector>

#include "benchmarks/pairs.h"

namespace {

using bench::Images;
using bench::Line;
using bench::Mats;
using bench::Size;

constexpr char NOTES[] = R"(
The peers of whole arrays are `copyTo` and `convertTo`, of lines a walk with `LineIterator`, of the
two fields of a frame copies between every other row. A pixel of OpenCV is read in place by
inlined text, where ours is a call that looks the image up and checks the place.
)";

constexpr int32_t JOIN = 0;
constexpr int32_t SPLIT = 1;

double Column(Size size) {
  return size.height;
}

double TwoFields(Size size) {
  return bench::Area(size) * 2;
}

// An array with the pixels of a.
int32_t FillArray(Images& i, Mats& m) {
  i.array.assign(m.a.datastart, m.a.dataend);
  return 0;
}

// A destination of a's size, besides.
int32_t FillArrayAndSize(Images& i, Mats& m) {
  FillArray(i, m);
  m.to.create(m.a.size(), m.a.type());
  return ZEL_SetImageSize(i.to, i.size.width, i.size.height);
}

// Room for a float for each pixel.
int32_t MakeRoom(Images& i, Mats&) {
  i.array.resize(static_cast<size_t>(bench::Area(i.size)) * sizeof(float));
  return 0;
}

template <ArrayType type>
int32_t ToArray(Images& i) {
  return ZEL_ImageToArray(i.a, 0, 0, i.size.height, i.size.width, type, i.array.data(), nullptr,
                          nullptr);
}

int32_t FromArray(Images& i) {
  return ZEL_ArrayToImage(i.to, ARRAY_U8, i.array.data(), i.size.width, i.size.height);
}

int32_t GetColumn(Images& i) {
  const int32_t type = i.type == IMAGE_U8 ? ARRAY_U8 : ARRAY_SGL;
  return ZEL_GetRowCol(i.a, 1, 7, type, i.array.data(), nullptr);
}

int32_t GetDiagonal(Images& i) {
  return ZEL_GetLine(i.a, 0, 0, i.size.width - 1, i.size.height - 1, ARRAY_U8, i.array.data(),
                     nullptr);
}

int32_t SetDiagonal(Images& i) {
  return ZEL_SetLine(i.to, 0, 0, i.size.width - 1, i.size.height - 1, ARRAY_U8, i.array.data(),
                     static_cast<int32_t>(Line(i.size)));
}

cv::LineIterator Diagonal(const cv::Mat& mat) {
  return {mat, cv::Point(0, 0), cv::Point(mat.cols - 1, mat.rows - 1), 8};
}

void PeerGetDiagonal(Mats& m) {
  cv::LineIterator pixel = Diagonal(m.a);
  m.to.create(1, pixel.count, CV_8U);
  for (int k = 0; k < pixel.count; k++, ++pixel) m.to.data[k] = **pixel;
}

void PeerSetDiagonal(Mats& m) {
  cv::LineIterator pixel = Diagonal(m.to);
  for (int k = 0; k < pixel.count; k++, ++pixel) **pixel = m.a.data[k];
}

// Every other row of a matrix.
cv::Mat Field(const cv::Mat& frame, int first) {
  return {frame.rows / 2, frame.cols, frame.type(), const_cast<uint8_t*>(frame.ptr(first)),
          frame.step * 2};
}

void PeerJoin(Mats& m) {
  m.to.create(m.a.rows * 2, m.a.cols, m.a.type());
  m.a.copyTo(Field(m.to, 0));
  m.b.copyTo(Field(m.to, 1));
}

void PeerSplit(Mats& m) {
  Field(m.a, 0).copyTo(m.to);
  Field(m.a, 1).copyTo(m.other);
}

int32_t GetPixel(Images& i) {
  float value = 0;
  return ZEL_GetPixelValue(i.a, 9, 7, &value);
}

void PeerGetPixel(Mats& m) {
  volatile float value = static_cast<float>(m.a.at<uint8_t>(7, 9));
  static_cast<void>(value);
}

void PeerSetPixel(Mats& m) {
  *const_cast<volatile uint8_t*>(&m.to.at<uint8_t>(7, 9)) = 42;
}

const std::vector<bench::Pair> PAIRS = {
    {.operation = "image_to_array",
     .prepare = FillArray,
     .ours = ToArray<ARRAY_U8>,
     .theirs = [](Mats& m) { m.a.copyTo(m.to); }},
    {.operation = "image_to_float_array",
     .prepare = MakeRoom,
     .ours = ToArray<ARRAY_SGL>,
     .theirs = [](Mats& m) { m.a.convertTo(m.to, CV_32F); }},
    {.operation = "array_to_image",
     .prepare = FillArray,
     .ours = FromArray,
     .theirs = [](Mats& m) { m.a.copyTo(m.to); }},
    {.operation = "array_to_float_image",
     .result = IMAGE_SGL,
     .prepare = FillArray,
     .ours = FromArray,
     .theirs = [](Mats& m) { m.a.convertTo(m.to, CV_32F); }},
    {.operation = "fill",
     .prepare = FillArrayAndSize,
     .ours = [](Images& i) { return ZEL_FillImage(i.to, 0, 42, 0, 0, 0); },
     .theirs = [](Mats& m) { m.to.setTo(cv::Scalar(42)); }},
    {.operation = "fill_masked",
     .kinds = {{IMAGE_U8}, {IMAGE_SGL}},
     .prepare = FillArrayAndSize,
     .ours = [](Images& i) { return ZEL_FillImage(i.to, i.noise, 42, 0, 0, 0); },
     .theirs = [](Mats& m) { m.to.setTo(cv::Scalar(42), m.noise); }},
    {.operation = "draw_rect",
     .prepare = FillArrayAndSize,
     .ours =
         [](Images& i) {
           return ZEL_DrawRect(i.to, 0, 8, 8, i.size.height - 16, i.size.width - 16, DRAW_PAINT,
                               42);
         },
     .theirs =
         [](Mats& m) {
           cv::rectangle(m.to, {8, 8, m.to.cols - 16, m.to.rows - 16}, cv::Scalar(42), cv::FILLED);
         }},
    {.operation = "draw_oval",
     .prepare = FillArrayAndSize,
     .ours =
         [](Images& i) {
           return ZEL_DrawOval(i.to, 0, 0, 0, i.size.height, i.size.width, DRAW_PAINT, 42);
         },
     .theirs =
         [](Mats& m) {
           const cv::Point centre(m.to.cols / 2, m.to.rows / 2);
           cv::ellipse(m.to, centre, centre, 0, 0, 360, cv::Scalar(42), cv::FILLED);
         }},
    {.operation = "draw_text",
     .prepare = FillArrayAndSize,
     .ours =
         [](Images& i) {
           return ZEL_DrawText(i.to, 0, 4, 4, TEXT_WHITE, "0123456789 text", 32, 0, TEXT_ALIGN_LEFT,
                               "DejaVu Sans", nullptr);
         },
     .theirs =
         [](Mats& m) {
           cv::putText(m.to, "0123456789 text", {4, 36}, cv::FONT_HERSHEY_SIMPLEX, 1,
                       cv::Scalar(255));
         }},
    {.operation = "draw_line",
     .pixels = Line,
     .prepare = FillArrayAndSize,
     .ours =
         [](Images& i) {
           return ZEL_DrawLine(i.to, 0, 0, 0, i.size.width, i.size.height, DRAW_FRAME, 42);
         },
     .theirs =
         [](Mats& m) {
           cv::line(m.to, {0, 0}, {m.to.cols, m.to.rows}, cv::Scalar(42));
         }},
    {.operation = "clear",
     .prepare = FillArrayAndSize,
     .ours = [](Images& i) { return ZEL_ClearPixels(i.to); },
     .theirs = [](Mats& m) { m.to.setTo(cv::Scalar(0)); }},
    {.operation = "get_column",
     .kinds = {{IMAGE_U8}, {IMAGE_SGL}},
     .pixels = Column,
     .prepare = MakeRoom,
     .ours = GetColumn,
     .theirs = [](Mats& m) { m.a.col(7).copyTo(m.to); }},
    {.operation = "get_line",
     .pixels = Line,
     .prepare = FillArray,
     .ours = GetDiagonal,
     .theirs = PeerGetDiagonal},
    {.operation = "set_line",
     .pixels = Line,
     .prepare = FillArrayAndSize,
     .ours = SetDiagonal,
     .theirs = PeerSetDiagonal},
    {.operation = "get_pixel",
     .sizes = {{1920, 1080}},
     .pixels = bench::OnePixel,
     .ours = GetPixel,
     .theirs = PeerGetPixel},
    {.operation = "set_pixel",
     .sizes = {{1920, 1080}},
     .pixels = bench::OnePixel,
     .prepare = FillArrayAndSize,
     .ours = [](Images& i) { return ZEL_SetPixelValue(i.to, 9, 7, 42.0f); },
     .theirs = PeerSetPixel},
    {.operation = "join_fields",
     .pixels = TwoFields,
     .ours = [](Images& i) { return ZEL_Interlace(i.to, i.a, i.b, JOIN); },
     .theirs = PeerJoin},
    {.operation = "split_frame",
     .ours = [](Images& i) { return ZEL_Interlace(i.a, i.to, i.other, SPLIT); },
     .theirs = PeerSplit},
};

const bench::Registration PIXELS({"pixels", "Pixels, lines and arrays", NOTES, PAIRS});

}  // namespace
