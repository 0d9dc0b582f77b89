// What rows of calls are made of: draws of one argument each, and a call with one draw for each of
// its parameters.
//
// Draws always stand in a braced list: there they run from left to right with every compiler, so
// that an input means the same everywhere. Between the parentheses of a call they would not.
#pragma once

#include <algorithm>
#include <tuple>

#include "harness/calls/calls.h"
#include "harness/playground.h"

namespace test::draw {

// An image, of which the call may change what is named: the model of calls holds it to that.
template <Changes allowed>
ImageRef ImageThatMay(Playground& play) {
  return play.Image(allowed);
}
constexpr auto Source = ImageThatMay<0>;
constexpr auto FramedSource = ImageThatMay<BORDER>;
constexpr auto MirroredSource = ImageThatMay<MIRRORED>;
constexpr auto Destination = ImageThatMay<CALIBRATION | SIZE | PIXELS>;
constexpr auto FramedDestination = ImageThatMay<CALIBRATION | SIZE | PIXELS | BORDER>;
constexpr auto Changed = ImageThatMay<PIXELS>;
// Anything: for a row that is still to tell.
constexpr auto Image = ImageThatMay<ANYTHING>;
inline ImageRef* Slot(Playground& play) {
  return play.Slot();
}
inline int32_t Int(Playground& play) {
  return play.input().Int();
}
inline uint32_t Word(Playground& play) {
  return play.input().Word();
}
inline float Float(Playground& play) {
  return play.input().Float();
}
inline const char* Path(Playground& play) {
  return play.Path();
}
template <uint32_t limit>
int32_t Below(Playground& play) {
  return static_cast<int32_t>(play.input().Below(limit));
}
inline int32_t ImageType(Playground& play) {
  return Below<16>(play) == 0 ? Int(play) : Below<6>(play);
}
inline int32_t ArrayType(Playground& play) {
  return Below<16>(play) == 0 ? Int(play) : Below<9>(play);
}

// An array that the call writes; of the elements of an ArrayType, where that is an argument.
template <class T, size_t count = 1>
T* Output(Playground& play) {
  return play.OutputOf<T>(count);
}
inline void* OutputOfType(Playground& play, int32_t arrayType, size_t count) {
  return play.Output(LayoutOf(arrayType, count));
}

// A count of elements that a caller could really have: at most some thousand.
inline int32_t Count(Playground& play) {
  const int32_t kind = Below<256>(play);
  if (kind % 8 == 0) return -kind;
  return kind % 8 == 1 ? Below<5000>(play) : Below<64>(play);
}
// How many elements an array of a count holds.
inline size_t Held(int64_t count) {
  return count > 0 ? static_cast<size_t>(count) : 0;
}

// A caller's array that the call reads.
struct TypedArray {
  int32_t type;
  const void* elements;
  int32_t count;
};
// Of the elements that it is said to have, those beyond a limit are not there: the call has no use
// for them.
inline TypedArray ArrayUpTo(int32_t limit, Playground& play) {
  const struct { int32_t type, count; } a{ArrayType(play), Count(play)};
  return {a.type, play.Array(LayoutOf(a.type, Held(std::min(a.count, limit)))), a.count};
}
inline TypedArray ArrayToRead(Playground& play) {
  return ArrayUpTo(INT32_MAX, play);
}

// Two points anywhere.
struct Line {
  int32_t x1, y1, x2, y2;
};
inline Line LineAnywhere(Playground& play) {
  return {Int(play), Int(play), Int(play), Int(play)};
}
// Points of a line, of which those count that lie on the image.
inline size_t PointsOf(const Line& line, const Playground::Shape& image) {
  const int64_t extent = std::max(std::abs(int64_t{line.x2} - line.x1),  //
                                  std::abs(int64_t{line.y2} - line.y1));
  return Held(std::min<int64_t>(extent + 1, std::max(image.width, image.height)));
}

// A rectangle anywhere.
struct Rect {
  int32_t top, left, height, width;
};
inline Rect RectAnywhere(Playground& play) {
  return {Int(play), Int(play), Int(play), Int(play)};
}
// Pixels from one side to the other, of those that there are. The other side may lie before.
inline int64_t Overlap(int32_t from, int32_t size, int32_t pixels) {
  const int64_t to = int64_t{from} + size;
  const int64_t first = std::max<int64_t>(std::min<int64_t>(from, to), 0);
  const int64_t end = std::min<int64_t>(std::max<int64_t>(from, to), pixels);
  return end - first;
}
// Pixels that a rectangle and an image have in common.
inline size_t PixelsOf(const Rect& rect, const Playground::Shape& image) {
  return Held(Overlap(rect.left, rect.width, image.width)) *
         Held(Overlap(rect.top, rect.height, image.height));
}

// What a draw stands for in a list of arguments.
template <class T>
std::tuple<T> Arguments(T value) {
  return {value};
}
inline auto Arguments(const Line& line) {
  return std::tuple{line.x1, line.y1, line.x2, line.y2};
}
inline auto Arguments(const TypedArray& array) {
  return std::tuple{array.type, array.elements, array.count};
}

template <class Result, class... Parameters, class... Draws>
Result CallWith([[maybe_unused]] Playground& play, Result (*function)(Parameters...),
                Draws... draws) {
  const std::tuple<decltype(Arguments(draws(play)))...> drawn{Arguments(draws(play))...};
  const auto arguments = std::apply([](auto... each) { return std::tuple_cat(each...); }, drawn);
  return std::apply([function](auto... each) { return function(static_cast<Parameters>(each)...); },
                    arguments);
}

// Calls a function with what the draws give for its parameters, in their order.
template <auto function, auto... draws>
int32_t Call(Playground& play) {
  return CallWith(play, function, draws...);
}

}  // namespace test::draw
