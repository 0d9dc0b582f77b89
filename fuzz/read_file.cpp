// Any bytes as an image file of one format, read into an image that the input chooses. Compiled
// once a format: the file's signature is put in, so that every input reaches the format's reader.
#include <cstring>
#include <vector>

#include "fuzz/target.h"
#include "harness/checks.h"
#include "harness/input.h"

namespace {

constexpr size_t SIGNATURE_BYTES = 6;

// What the reader recognises the format by. A BMP file's length is part of it.
void PutSignature(std::vector<uint8_t>* file) {
#if defined(FUZZ_NATIVE)
  std::memcpy(file->data(), "ORLN", 4);
#elif defined(FUZZ_TIFF)
  const bool big = ((*file)[0] & 4) != 0;  // as in an "M", and not in an "I"
  std::memcpy(file->data(), big ? "MM\0*" : "II*\0", 4);
#elif defined(FUZZ_BMP)
  (*file)[0] = 'B';
  (*file)[1] = 'M';
  for (size_t i = 0; i < 4; i++) (*file)[2 + i] = static_cast<uint8_t>(file->size() >> (8 * i));
#else
  static_cast<void>(file);
#endif
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  test::Input input(data, size);
  const uint8_t options = input.Byte();
  test::SetBudget((options & 0x80) != 0);
  const auto type = static_cast<int16_t>(options % 5);
  const int32_t border = (options >> 3) % 4;
  const uint8_t startSize = input.Byte();

  std::vector<uint8_t> file(input.rest(), input.rest() + input.left());
  if (file.size() >= SIGNATURE_BYTES) PutSignature(&file);
  test::MemoryFiles files;
  files.Put("file", file);

  FileInfo info{};
  test::Require(ZEL_PtkFileInfo("file", &info) == 0, "the information call failed");
  ImageRef image = 0;
  if (ZEL_Create(&image, type, border) == 0) {
    ZEL_SetImageSize(image, startSize % 16, startSize / 16);
    std::vector<RGBValue> table(256);
    int32_t count = 0;
    const int32_t status = ZEL_ReadFile(image, "file", options & 1, table.data(), &count);
    test::Require(status <= 0, "a positive result");
    test::Require(count == 0 || count == 256, "an odd count of table entries");
    test::CheckImage(image);
    ZEL_Dispose(image);
  }
  test::CheckEnd(files);
  return 0;
}
