// The bytes of one fuzz input, taken as the values that a wild caller would pass.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <limits>

namespace test {

class Input {
 public:
  Input(const uint8_t* data, size_t size) : data_(data), left_(size) {}

  bool IsEmpty() const { return left_ == 0; }
  size_t left() const { return left_; }
  const uint8_t* rest() const { return data_; }

  // 0 when nothing is left.
  uint8_t Byte() {
    if (left_ == 0) return 0;
    left_--;
    return *data_++;
  }
  uint32_t Word() {
    uint32_t word = 0;
    for (int i = 0; i < 4; i++) word = word << 8 | Byte();
    return word;
  }
  uint32_t Below(uint32_t limit) { return limit <= 256 ? Byte() % limit : Word() % limit; }

  // Mostly small, else a value at the edge of a type or a limit, else anything.
  int32_t Int() {
    static constexpr int32_t edges[] = {
        -1,     255,       256,           257,       32766,         32767,     32768,
        -32768, -32769,    65535,         65536,     65537,         1 << 24,   1 << 30,
        -129,   INT32_MIN, INT32_MIN + 1, INT32_MAX, INT32_MAX - 1, 1000000000};
    const uint8_t kind = Byte();
    if (kind < 160) return static_cast<int32_t>(kind % 40) - 3;
    if (kind < 224) return edges[Byte() % std::size(edges)];
    return static_cast<int32_t>(Word());
  }

  float Float() {
    static constexpr float edges[] = {0.0f,
                                      -0.0f,
                                      0.5f,
                                      1.0f,
                                      -1.0f,
                                      2.5f,
                                      254.5f,
                                      255.0f,
                                      256.0f,
                                      -32768.0f,
                                      32767.5f,
                                      65536.0f,
                                      2147483648.0f,
                                      -2147483904.0f,
                                      4294967296.0f,
                                      1e19f,
                                      1e38f,
                                      -1e38f,
                                      1e-38f,
                                      1e-45f,
                                      std::numeric_limits<float>::quiet_NaN(),
                                      std::numeric_limits<float>::infinity(),
                                      -std::numeric_limits<float>::infinity()};
    const uint8_t kind = Byte();
    if (kind < 96) return static_cast<float>(kind) * 3.0f - 10.0f;
    if (kind < 224) return edges[Byte() % std::size(edges)];
    const uint32_t bits = Word();
    float value = 0;
    std::memcpy(&value, &bits, sizeof(value));
    return value;
  }

 private:
  const uint8_t* data_;
  size_t left_;
};

}  // namespace test
