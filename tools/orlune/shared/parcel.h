// Values as bytes, for the way from a worker process to its parent. Both are the same program.
#pragma once

#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>

namespace front {

class ParcelWriter {
 public:
  ParcelWriter() { bytes_.reserve(USUAL_BYTES); }

  template <class T>
  ParcelWriter& Put(const T& value) {
    static_assert(std::is_trivially_copyable_v<T>);
    bytes_.append(reinterpret_cast<const char*>(&value), sizeof value);
    return *this;
  }
  ParcelWriter& Put(const std::string& text) {
    Put(text.size());
    bytes_ += text;
    return *this;
  }
  std::string Take() { return std::move(bytes_); }

 private:
  static constexpr size_t USUAL_BYTES = 4096;
  std::string bytes_;
};

class ParcelReader {
 public:
  explicit ParcelReader(std::string_view bytes) : left_(bytes) {}
  template <class T>
  T Get() {
    static_assert(std::is_trivially_copyable_v<T>);
    T value;
    std::memcpy(&value, Cut(sizeof value).data(), sizeof value);
    return value;
  }
  std::string Text() { return std::string(Cut(Get<size_t>())); }

 private:
  std::string_view Cut(size_t size) {
    if (size > left_.size()) throw std::logic_error("a parcel is too short");
    const std::string_view cut = left_.substr(0, size);
    left_.remove_prefix(size);
    return cut;
  }
  std::string_view left_;
};

}  // namespace front
