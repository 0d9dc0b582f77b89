// Runs and disjoint sets: what particles are put together from.
#pragma once

#include <cstdint>

#include "core/heap.h"
#include "core/views.h"
#include "particles/runs_rows.h"

namespace zel {

// One bit a pixel of a U8 or I16 image, set where the pixel is not 0, in a frame of clear bits
// that is at least one pixel wide on each side.
class PixelBits {
 public:
  [[nodiscard]] bool Create(const PixelView& view);

  int32_t width() const { return width_; }
  int32_t height() const { return height_; }
  int64_t pitch() const { return pitch_; }  // words from one row to the next
  // The word that starts with column 0. Rows from -1 to height can be read.
  const uint64_t* Row(int64_t y) const { return words_.data() + (y + 1) * pitch_ + 1; }

 private:
  WorkArray<uint64_t> words_;
  int64_t pitch_ = 0;
  int32_t width_ = 0;
  int32_t height_ = 0;
};

// All runs of non-zero pixels of a U8 or I16 image, row after row from left to right. Each row ends
// with RUN_SENTINEL. A place in the table is an index; tables that go with it have `size` places.
class RunTable {
 public:
  // False when there is no memory.
  [[nodiscard]] bool Extract(const PixelView& view);
  [[nodiscard]] bool Extract(const PixelBits& bits);

  int32_t height() const { return height_; }
  uint32_t size() const { return size_; }  // sentinels included
  const Run* data() const { return runs_.data(); }
  const Run& operator[](uint32_t place) const { return runs_[place]; }
  // The place of a row's first run, or of its sentinel. Row -1 is there, and empty.
  uint32_t RowBegin(int32_t y) const { return rows_[static_cast<size_t>(y) + 1]; }
  // The place of a row's sentinel.
  uint32_t RowEnd(int32_t y) const { return rows_[static_cast<size_t>(y) + 2] - 1; }

 private:
  bool Start(int32_t width, int32_t height);
  bool AppendRow(const uint64_t* words);

  WorkArray<Run> runs_;
  WorkArray<uint32_t> rows_;
  uint64_t capacity_ = 0;
  uint32_t size_ = 0;
  int32_t width_ = 0;
  int32_t height_ = 0;
  int32_t rowsFilled_ = 0;
};

// Disjoint sets of the numbers 0 to limit - 1, added in rising order. A set is known by its least
// number.
class DisjointSets {
 public:
  [[nodiscard]] bool Create(uint32_t limit) { return parents_.Allocate(limit); }

  uint32_t count() const { return count_; }
  uint32_t Add() {
    parents_[count_] = count_;
    return count_++;
  }

  uint32_t Find(uint32_t number) {
    uint32_t* parents = parents_.data();
    while (parents[number] != number) {
      parents[number] = parents[parents[number]];
      number = parents[number];
    }
    return number;
  }

  bool IsLeast(uint32_t number) const { return parents_[number] == number; }

  // Joins the sets of two least numbers; answers the least number of both.
  uint32_t Join(uint32_t a, uint32_t b) {
    const uint32_t low = a < b ? a : b;
    parents_[a < b ? b : a] = low;
    return low;
  }

  // Replaces each number's entry by its set's number, counted from 1 in the order of the least
  // members. Answers how many sets there are. Nothing else may be asked afterwards but Numbers.
  uint32_t Renumber() {
    uint32_t sets = 0;
    for (uint32_t i = 0; i < count_; i++) {
      const uint32_t parent = parents_[i];
      parents_[i] = parent == i ? ++sets : parents_[parent];
    }
    return sets;
  }
  uint32_t* Numbers() { return parents_.data(); }
  const uint32_t* Numbers() const { return parents_.data(); }

 private:
  WorkArray<uint32_t> parents_;
  uint32_t count_ = 0;
};

}  // namespace zel
