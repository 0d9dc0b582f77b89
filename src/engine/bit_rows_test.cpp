#include "engine/bit_rows.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

using namespace zel;

constexpr int32_t WIDTHS[] = {0, 1, 7, 8, 9, 31, 33, 63, 64, 65, 127, 128, 129, 200};
constexpr size_t BEHIND = 64;  // bytes of a row's memory that nobody may write

// Words without bits, with all, and with some; bits beyond the row are set as well.
std::vector<uint64_t> SomeBits(int32_t width, std::mt19937_64* random) {
  std::vector<uint64_t> bits(static_cast<size_t>(width) / 64 + 1);
  for (uint64_t& word : bits) {
    const uint64_t kind = (*random)() % 4;
    word = kind == 0 ? 0 : kind == 1 ? ~uint64_t{0} : (*random)();
  }
  return bits;
}

std::vector<uint8_t> SomeBytes(int32_t width, std::mt19937_64* random) {
  std::vector<uint8_t> bytes(static_cast<size_t>(width) + BEHIND);
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(250 + (*random)() % 6);
  return bytes;
}

// rule(the byte of a set bit) for each of them, one by one.
template <class Rule>
std::vector<uint8_t> Changed(std::vector<uint8_t> bytes, const std::vector<uint64_t>& bits,
                             int32_t width, Rule rule) {
  for (int32_t i = 0; i < width; i++) {
    uint8_t& byte = bytes[static_cast<size_t>(i)];
    if ((bits[static_cast<size_t>(i) / 64] >> (i % 64) & 1) != 0) byte = rule(byte);
  }
  return bytes;
}

TEST(BitRows, SetBitsStoreTheValue) {
  std::mt19937_64 random(1);
  for (const int32_t width : WIDTHS) {
    for (int round = 0; round < 20; round++) {
      const std::vector<uint64_t> bits = SomeBits(width, &random);
      std::vector<uint8_t> bytes = SomeBytes(width, &random);
      const auto value = static_cast<uint8_t>(random());
      const auto expected = Changed(bytes, bits, width, [value](uint8_t) { return value; });
      bitRows().store(bytes.data(), bits.data(), width, value);
      ASSERT_EQ(bytes, expected) << width;
    }
  }
}

TEST(BitRows, SetBitsCountUpTo255) {
  std::mt19937_64 random(2);
  for (const int32_t width : WIDTHS) {
    for (int round = 0; round < 20; round++) {
      const std::vector<uint64_t> bits = SomeBits(width, &random);
      std::vector<uint8_t> bytes = SomeBytes(width, &random);
      const auto expected = Changed(bytes, bits, width, [](uint8_t byte) {
        return byte == 255 ? byte : static_cast<uint8_t>(byte + 1);
      });
      bitRows().count(bytes.data(), bits.data(), width);
      ASSERT_EQ(bytes, expected) << width;
    }
  }
}

}  // namespace
