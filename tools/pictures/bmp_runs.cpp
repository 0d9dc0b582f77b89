// The run lengths of BMP files.
#include "pictures/bmp_runs.h"

namespace pictures {
namespace {

class RunDecoder {
 public:
  RunDecoder(Bytes runs, bool fourBits, bool topDown, uint8_t* pixels, int32_t width,
             int32_t height)
      : runs_(runs),
        fourBits_(fourBits),
        topDown_(topDown),
        pixels_(pixels),
        width_(width),
        height_(height),
        filled_(fourBits ? (int64_t{width} + 7) / 8 * 8 : (int64_t{width} + 3) / 4 * 4) {}

  int64_t Decode() {
    while (!done_) {
      // Some writers leave out the mark at the end.
      if (at_ == runs_.size() && y_ >= height_ - 1 && x_ >= width_) break;
      if (at_ == runs_.size() && y_ >= height_) break;
      const int32_t length = Next();
      const int32_t value = Next();
      if (length > 0) {
        Run(length, value);
      } else {
        Escape(value);
      }
    }
    return int64_t{width_} * height_ - written_;
  }

 private:
  int32_t Next() {
    if (at_ >= runs_.size()) {
      throw BadFile("the BMP file is cut: its runs end in row " + std::to_string(y_ + 1) + " of " +
                    std::to_string(height_));
    }
    return runs_[at_++];
  }

  void Put(int32_t number) {
    // Some writers run on to the row's end in the file, which 4 bytes divide.
    if (x_ >= width_ && x_ < filled_ && y_ < height_) {
      ++x_;
      return;
    }
    if (x_ >= width_ || y_ >= height_) {
      throw BadFile("the BMP file is damaged: a run leaves the picture in row " +
                    std::to_string(y_ + 1));
    }
    const int32_t row = topDown_ ? y_ : height_ - 1 - y_;
    pixels_[int64_t{row} * width_ + x_++] = static_cast<uint8_t>(number);
    ++written_;
  }

  static int32_t Nibble(int32_t byte, int32_t index) {
    return index % 2 == 0 ? byte >> 4 : byte & 15;
  }

  void Run(int32_t length, int32_t value) {
    for (int32_t i = 0; i < length; ++i) Put(fourBits_ ? Nibble(value, i) : value);
  }

  void Escape(int32_t code) {
    constexpr int32_t END_OF_ROW = 0, END_OF_PICTURE = 1, MOVE = 2;
    if (code == END_OF_ROW) {
      if (y_ >= height_) throw BadFile("the BMP file is damaged: its runs have too many rows");
      x_ = 0;
      ++y_;
    } else if (code == END_OF_PICTURE) {
      done_ = true;
    } else if (code == MOVE) {
      x_ += Next();
      y_ += Next();
      if (x_ > filled_ || y_ > height_) {
        throw BadFile("the BMP file is damaged: its runs leave the picture");
      }
    } else {
      Literal(code);
    }
  }

  // Numbers one by one, filled up to an even number of bytes.
  void Literal(int32_t count) {
    int32_t byte = 0;
    for (int32_t i = 0; i < count; ++i) {
      if (!fourBits_ || i % 2 == 0) byte = Next();
      Put(fourBits_ ? Nibble(byte, i) : byte);
    }
    const int32_t bytes = fourBits_ ? (count + 1) / 2 : count;
    if (bytes % 2 != 0) Next();
  }

  Bytes runs_;
  bool fourBits_, topDown_;
  uint8_t* pixels_;
  int32_t width_, height_;
  int64_t filled_;  // pixels of a row with those that fill it up
  size_t at_ = 0;
  int32_t x_ = 0, y_ = 0;
  int64_t written_ = 0;
  bool done_ = false;
};

}  // namespace

int64_t DecodeRuns(Bytes runs, bool fourBits, bool topDown, uint8_t* pixels, int32_t width,
                   int32_t height) {
  return RunDecoder(runs, fourBits, topDown, pixels, width, height).Decode();
}

}  // namespace pictures
