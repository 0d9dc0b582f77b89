// Bytes of files, put together number by number.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace test {

using Bytes = std::vector<uint8_t>;

class FileBytes {
 public:
  FileBytes& Text(const std::string& text) {
    bytes_.insert(bytes_.end(), text.begin(), text.end());
    return *this;
  }
  FileBytes& Append(const Bytes& more) {
    bytes_.insert(bytes_.end(), more.begin(), more.end());
    return *this;
  }
  FileBytes& Zeros(size_t count) {
    bytes_.insert(bytes_.end(), count, 0);
    return *this;
  }
  FileBytes& Little(uint64_t value, int size) {
    for (int i = 0; i < size; i++) bytes_.push_back(static_cast<uint8_t>(value >> (8 * i)));
    return *this;
  }
  FileBytes& Big(uint64_t value, int size) {
    for (int i = size - 1; i >= 0; i--) bytes_.push_back(static_cast<uint8_t>(value >> (8 * i)));
    return *this;
  }
  FileBytes& Number(bool little, uint64_t value, int size) {
    return little ? Little(value, size) : Big(value, size);
  }
  FileBytes& ZerosUpTo(size_t size) {
    return size > bytes_.size() ? Zeros(size - bytes_.size()) : *this;
  }
  size_t Size() const { return bytes_.size(); }
  operator Bytes() const { return bytes_; }  // NOLINT: a file is its bytes

 private:
  Bytes bytes_;
};

inline Bytes Overwritten(Bytes bytes, size_t at, const Bytes& with) {
  for (size_t i = 0; i < with.size(); i++) bytes.at(at + i) = with[i];
  return bytes;
}

inline Bytes Cut(Bytes bytes, size_t size) {
  bytes.resize(size < bytes.size() ? size : bytes.size());
  return bytes;
}

inline uint64_t LittleNumber(const Bytes& bytes, size_t at, int size) {
  uint64_t value = 0;
  for (int i = 0; i < size; i++)
    value |= uint64_t{bytes.at(at + static_cast<size_t>(i))} << (8 * i);
  return value;
}

inline uint64_t BigNumber(const Bytes& bytes, size_t at, int size) {
  uint64_t value = 0;
  for (int i = 0; i < size; i++) value = value << 8 | bytes.at(at + static_cast<size_t>(i));
  return value;
}

// A file of the native format; its type codes are 1 gray, 2 colour, 3 complex of 3-byte parts,
// 4 16-bit, 5 complex, 6 float.
inline Bytes NativeFile(uint32_t width, uint32_t height, uint32_t typeCode, const Bytes& data,
                        float ratio = 1.0f, uint32_t unit = 3, uint32_t version = 1) {
  uint32_t ratioBits = 0;
  std::memcpy(&ratioBits, &ratio, 4);
  FileBytes file;
  file.Text("ORLN").Big(version, 2).Big(typeCode, 2).Big(0, 2).Big(0, 2).Big(2, 2).Big(0, 2);
  file.Big(width, 2).Big(height, 2).Big(ratioBits, 4).Big(unit, 2).Big(0, 2);
  return file.ZerosUpTo(512).Append(data);
}

struct BmpFields {
  int32_t width = 8;
  int32_t height = 6;
  uint32_t bits = 8;
  int64_t dataOffset = -1;  // right behind the colours
  Bytes colours = {};       // 4 bytes each
  Bytes rows = {};          // with their padding, the bottom one first
};

inline Bytes BmpFile(const BmpFields& fields) {
  const size_t start = 54 + fields.colours.size();
  const int64_t offset = fields.dataOffset < 0 ? static_cast<int64_t>(start) : fields.dataOffset;
  FileBytes file;
  file.Text("BM").Little(start + fields.rows.size(), 4).Zeros(4);
  file.Little(static_cast<uint64_t>(offset), 4).Little(40, 4);
  file.Little(static_cast<uint32_t>(fields.width), 4);
  file.Little(static_cast<uint32_t>(fields.height), 4);
  file.Little(1, 2).Little(fields.bits, 2).Zeros(24);
  return file.Append(fields.colours).Append(fields.rows);
}

inline Bytes RandomBytes(size_t count, uint64_t seed) {
  Bytes bytes(count);
  uint64_t state = seed * 0x9E3779B97F4A7C15u + 7;
  for (uint8_t& byte : bytes) {
    state ^= state << 13;
    state ^= state >> 7;
    state ^= state << 17;
    byte = static_cast<uint8_t>(state >> 24);
  }
  return bytes;
}

}  // namespace test
