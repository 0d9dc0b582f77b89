// Passes at work in one band of rows: each makes its rows as the next one asks for them, so that a
// chain of passes goes through the image once.
#pragma once

#include <cstdint>

#include "core/cache_lines.h"
#include "morphology/pass.h"

namespace zel {

// Work memory handed out piece by piece; without memory, only counted.
class Arena {
 public:
  explicit Arena(uint8_t* memory) : memory_(memory) {}
  // On a cache line, where the memory begins on one.
  template <class T>
  T* Take(int64_t count) {
    const int64_t bytes = count * static_cast<int64_t>(sizeof(T));
    const int64_t at = taken_;
    taken_ += OnCacheLines(bytes);
    return memory_ ? reinterpret_cast<T*>(memory_ + at) : nullptr;
  }
  int64_t taken() const { return taken_; }

 private:
  uint8_t* memory_;
  int64_t taken_ = 0;
};

// The last rows of a sequence.
class RowRing {
 public:
  // At least so many rows of `columns` pixels from column `first` on.
  void Take(Arena* arena, int64_t rows, int64_t first, int64_t columns, int32_t pixelBytes);
  // Column 0 of a row.
  uint8_t* Row(int64_t row) const { return columnZero_ + (row & last_) * pitch_; }

 private:
  uint8_t* columnZero_ = nullptr;
  int64_t last_ = 0;  // of the rows, whose number is a power of two
  int64_t pitch_ = 0;
};

class PassStage;

// The rows that a pass reads: the image's own, copies with wider margins, or what another pass
// makes.
class PassInput {
 public:
  void TakeImage(const PixelView& image) { image_ = image; }
  void TakeCopies(const PixelView& image, const MorphologyPass& reader, Arena* arena);
  void TakeRows(const PixelView& image, PassStage* maker, const MorphologyPass& reader,
                Arena* arena);

  // The first row that will be read.
  void Begin(int64_t row);
  void MakeUpTo(int64_t row);
  // Column 0 of a row that has been made. Rows beyond the image are its first and last one.
  const uint8_t* Row(int64_t row) const {
    const int64_t inside = Inside(row);
    return isRing_ ? ring_.Row(inside) : image_.Row<uint8_t>(inside);
  }
  int64_t Inside(int64_t row) const {
    return row < 0 ? 0 : row < image_.height ? row : image_.height - 1;
  }
  int32_t width() const { return image_.width; }
  // Whether these rows and the one above them lie in the image, one after the other in memory.
  bool FollowInImage(int64_t first, int64_t last) const {
    return !isRing_ && first > 0 && last < image_.height;
  }
  int64_t pitch() const { return image_.pitch; }

 private:
  void TakeRing(const MorphologyPass& reader, Arena* arena);
  void MarginsFill(uint8_t* row) const;

  PixelView image_{};
  bool isRing_ = false;
  PassStage* maker_ = nullptr;
  RowRing ring_;
  int32_t left_ = 0;  // columns of margin
  int32_t right_ = 0;
  int64_t next_ = 0;  // row to be made
};

// Spans of a row of input for all runs of a list: doubled again and again.
class SpanRows {
 public:
  void Take(const MorphologyPass& pass, const RunPlan& plan, const ExtremeRoutines& extremes,
            int32_t width, Arena* arena);
  void Begin(int64_t row) {
    next_ = row;
    around_ = NO_ROW;
  }
  void MakeUpTo(int64_t row, PassInput* input);
  // The places of the list around a row.
  PixelList PlacesAround(int64_t row, const PassInput& input);

 private:
  static constexpr int64_t NO_ROW = -2;
  void PlacesFind(int64_t row, const PassInput& input);

  const MorphologyPass* pass_ = nullptr;
  const RunPlan* plan_ = nullptr;
  const ExtremeRoutines* extremes_ = nullptr;
  const void** places_ = nullptr;
  RowRing* rings_ = nullptr;  // of spans of 2, 4, 8...
  int64_t columns_ = 0;
  int64_t next_ = 0;
  int64_t around_ = NO_ROW;  // the row that the places are around
};

// Rectangles of many rows: the rows of spans lie in blocks as high as the rectangle, so that one
// covers the end of a block and the beginning of the next. The extremes of ends are worked out when
// a block is complete, those of beginnings grow with each row.
class ColumnBlocks {
 public:
  void Take(const MorphologyPass& pass, int32_t width, Arena* arena);
  void Begin() { filled_ = EMPTY; }
  // The two rows whose extreme the rectangle around a row gives. Rows come in order.
  PixelList PlacesAround(int64_t row, PassInput* input, void* spanMemory);

 private:
  static constexpr int32_t EMPTY = -1;
  void Push(int64_t row, int32_t place, PassInput* input, void* spanMemory);
  PixelList Complete();
  uint8_t* Place(int32_t place) const { return places_ + place * pitch_; }

  const MorphologyPass* pass_ = nullptr;
  int32_t width_ = 0;
  uint8_t* places_ = nullptr;
  uint8_t* beginning_ = nullptr;  // memory for the extreme of a block's beginning
  int64_t pitch_ = 0;
  int32_t filled_ = EMPTY;  // rows of the block that is being filled
  const void* found_[2] = {};
};

class PassStage {
 public:
  void Take(const MorphologyPass& pass, PassInput* input, Arena* arena);
  void Begin(int64_t row);
  // Rows come in order, one by one: processors fetch ahead for one place of a page at a time, and
  // writing two rows of a result by turns was measured to take twice as long.
  void Make(int64_t row, void* to);

 private:
  void MakeSpansUpTo(int64_t row);
  PixelList RectangleAround(int64_t row);
  PixelList PlacesAround(int64_t row);
  bool IsTall() const;

  const MorphologyPass* pass_ = nullptr;
  PassInput* input_ = nullptr;
  SpanRows members_, others_;
  RowRing spans_;  // of rectangles
  ColumnBlocks blocks_;
  void* spanMemory_ = nullptr;
  const void** rows_ = nullptr;  // of spans, around a row
  int64_t nextSpans_ = 0;
  bool hasRows_ = false;  // of the row before
};

// The stages of one chain.
class Pipeline {
 public:
  void Take(const PassChain& chain, const PixelView& source, int32_t border, Arena* arena);
  void Begin(int64_t row) { stages_[count_ - 1].Begin(row); }
  void Make(int64_t row, void* to) { stages_[count_ - 1].Make(row, to); }

 private:
  int32_t count_ = 0;
  PassInput inputs_[CHAIN_LIMIT];
  PassStage stages_[CHAIN_LIMIT];
};

}  // namespace zel
