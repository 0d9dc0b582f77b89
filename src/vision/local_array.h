// Work memory that lies in the frame as long as a call is small, so that short paths cost no
// allocation.
#pragma once

#include <cstdint>

#include "core/heap.h"

namespace zel {

template <class T, uint32_t room>
class LocalArray {
 public:
  // cppcheck-suppress uninitMemberVar ; what is not written is not read
  LocalArray() = default;
  LocalArray(const LocalArray&) = delete;
  LocalArray& operator=(const LocalArray&) = delete;

  // Contents are undefined. False when there is no memory for `count` elements.
  [[nodiscard]] bool Allocate(int64_t count) {
    if (count <= room) {
      data_ = local_;
      return true;
    }
    const bool had = heap_.Allocate(static_cast<uint64_t>(count));
    data_ = heap_.data();
    return had;
  }

  T* data() { return data_; }
  const T* data() const { return data_; }
  T& operator[](int64_t index) { return data_[index]; }
  const T& operator[](int64_t index) const { return data_[index]; }

 private:
  T* data_ = nullptr;
  T local_[room];
  WorkArray<T> heap_;
};

// The same for records that come one by one.
template <class T, uint32_t room>
class LocalList {
 public:
  // cppcheck-suppress uninitMemberVar ; what is not written is not read
  LocalList() = default;
  LocalList(const LocalList&) = delete;
  LocalList& operator=(const LocalList&) = delete;

  // False when there is no memory.
  [[nodiscard]] bool Append(const T& record) {
    if (count_ == capacity_ && !Grow()) return false;
    data_[count_++] = record;
    return true;
  }

  int64_t count() const { return count_; }
  const T& operator[](int64_t index) const { return data_[index]; }

 private:
  bool Grow() {
    const bool wasLocal = data_ == local_;
    if (!heap_.Resize(static_cast<uint64_t>(2 * capacity_))) return false;
    data_ = heap_.data();
    for (int64_t i = 0; wasLocal && i < count_; i++) data_[i] = local_[i];
    capacity_ *= 2;
    return true;
  }

  int64_t count_ = 0;
  int64_t capacity_ = room;
  T* data_ = local_;
  T local_[room];
  WorkArray<T> heap_;
};

}  // namespace zel
