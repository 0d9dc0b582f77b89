// Bytes whose number grows, for the desktops, which stand below the library's heap. No memory is an
// answer here, not an end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace zel {

class ByteBlock {
 public:
  ByteBlock() = default;
  ByteBlock(const ByteBlock&) = delete;
  ByteBlock& operator=(const ByteBlock&) = delete;
  ByteBlock(ByteBlock&& other) noexcept { *this = std::move(other); }
  ByteBlock& operator=(ByteBlock&& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(size_, other.size_);
    std::swap(room_, other.room_);
    return *this;
  }
  ~ByteBlock() { std::free(data_); }

  const uint8_t* data() const { return data_; }
  size_t size() const { return size_; }
  void Clear() { *this = ByteBlock(); }

  // False, and the block as it was, where there is no memory.
  [[nodiscard]] bool Reserve(size_t room) {
    if (room <= room_) return true;
    void* larger = std::realloc(data_, room);
    if (!larger) return false;
    data_ = static_cast<uint8_t*>(larger);
    room_ = room;
    return true;
  }
  [[nodiscard]] bool Append(const void* bytes, size_t size) {
    const size_t needed = size_ + size;
    const bool hasRoom = needed <= room_ || Reserve(needed + room_ / 2);
    if (!hasRoom) return false;
    if (size > 0) std::memcpy(data_ + size_, bytes, size);
    size_ = needed;
    return true;
  }

 private:
  uint8_t* data_ = nullptr;
  size_t size_ = 0;
  size_t room_ = 0;
};

}  // namespace zel
