// Lookups: tables of 256 and 65536 entries, mathematical laws, equalisation.
#include <vector>

#include "benchmarks/pairs.h"

#if defined(HAVE_OPENCV)
#include <opencv2/imgproc.hpp>
#endif

namespace {

using bench::Pair;

// Entries without any order, so that no shorter way than a lookup does.
std::vector<uint16_t> Table(uint32_t entries) {
  std::vector<uint16_t> table(entries);
  for (uint32_t i = 0; i < entries; i++) {
    table[i] = static_cast<uint16_t>((i * 40503u + (i >> 5) * 17u) % entries);
  }
  return table;
}

void RegisterTables(int32_t width, int32_t height) {
  const ImageRef bytes = bench::MakeImage(IMAGE_U8, width, height);
  const ImageRef mask = bench::MakeNoise(width, height, 0);
  const ImageRef byteResult = bench::MakeDestination(IMAGE_U8);
  const ImageRef words = bench::MakeImage(IMAGE_I16, width, height);
  const ImageRef wordResult = bench::MakeDestination(IMAGE_I16);
  static const std::vector<uint16_t> byteTable = Table(256);
  static const std::vector<uint16_t> wordTable = Table(65536);
  static const std::vector<uint8_t> byteEntries(byteTable.begin(), byteTable.end());
  std::function<void()> theirLookup;
#if defined(HAVE_OPENCV)
  theirLookup = [from = bench::MatOf(bytes), to = cv::Mat(),
                 table =
                     cv::Mat(1, 256, CV_8UC1, const_cast<uint8_t*>(byteEntries.data()))]() mutable {
    cv::LUT(from, table, to);
  };
#endif
  Pair(
      "lookup256", "u8", width, height, "opencv",
      [=] { ZEL_UserLookup(bytes, 0, byteResult, ARRAY_U16, byteTable.data(), 256); }, theirLookup);
  Pair(
      "lookup256_byte_array", "u8", width, height, "opencv",
      [=] { ZEL_UserLookup(bytes, 0, byteResult, ARRAY_U8, byteEntries.data(), 256); },
      theirLookup);
  Pair(
      "lookup256_masked", "u8", width, height, "",
      [=] { ZEL_UserLookup(bytes, mask, byteResult, ARRAY_U16, byteTable.data(), 256); }, nullptr);
  // No peer has this; the bare loop is the one that everybody would write.
  void* from = nullptr;
  ImageInfo info{};
  ZEL_GetPixelAddress(words, 0, 0, &from);
  ZEL_GetImageInfo(words, &info);
  const auto* pixels = static_cast<const uint16_t*>(from);
  Pair(
      "lookup65536", "i16", width, height, "plain loop",
      [=] { ZEL_UserLookup(words, 0, wordResult, ARRAY_U16, wordTable.data(), 65536); },
      [=, results = std::vector<uint16_t>(static_cast<size_t>(width) *
                                          static_cast<size_t>(height))]() mutable {
        for (int32_t y = 0; y < info.height; y++) {
          const uint16_t* row = pixels + static_cast<int64_t>(y) * info.lineWidth;
          uint16_t* to = results.data() + static_cast<int64_t>(y) * info.width;
          for (int32_t x = 0; x < info.width; x++) to[x] = wordTable[row[x]];
        }
      });
}

void RegisterComputed(int32_t width, int32_t height) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    const ImageRef source = bench::MakeImage(type, width, height);
    const ImageRef result = bench::MakeDestination(type);
    const char* name = type == IMAGE_U8 ? "u8" : type == IMAGE_I16 ? "i16" : "f32";
    std::function<void()> theirs;
#if defined(HAVE_OPENCV)
    if (type == IMAGE_U8) {
      theirs = [from = bench::MatOf(source), to = cv::Mat()]() mutable {
        cv::equalizeHist(from, to);
      };
    }
#endif
    Pair(
        "equalize", name, width, height, "opencv",
        [=] { ZEL_Equalize(source, 0, result, nullptr, 0, nullptr, 0.0f, 0.0f); }, theirs);
    const char* laws[] = {"linear", "log", "exp", "square", "sqrt", "power", "root"};
    for (int32_t law = 0; law < 7; law++) {
      Pair(
          std::string("lookup_math_") + laws[law], name, width, height, "",
          [=] { ZEL_MathLookup(source, 0, result, law, 2.2f, 0.0f, 0.0f); }, nullptr);
    }
  }
}

void RegisterAll() {
  for (const auto& [width, height] : bench::SIZES) {
    RegisterTables(width, height);
    RegisterComputed(width, height);
  }
}

const bench::Family family(&RegisterAll);

}  // namespace
