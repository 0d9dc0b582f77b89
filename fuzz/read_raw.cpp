// Any bytes as pixels without a header, or behind a bare size, with options that the input chooses:
// all pixel classes, byte orders and stretches.
#include <vector>

#include "files/dispatch.h"
#include "fuzz/target.h"
#include "harness/checks.h"
#include "harness/input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  test::Input input(data, size);
  const uint8_t choice = input.Byte();
  test::SetBudget((choice & 0x80) != 0);
  const auto type = static_cast<int16_t>(choice % 5);
  const bool sized = (choice & 0x40) != 0;
  zel::ReadOptions options{};
  options.rawMode = sized ? 0 : 1;
  options.pixelClass = input.Byte() % 17;
  options.dataOffset = input.Byte() % 8 == 0 ? input.Int() : input.Byte() % 16;
  options.scaleToRange = input.Byte() % 3;
  options.rangeMin = input.Float();
  options.rangeMax = input.Float();
  options.littleEndian = input.Byte() % 2;
  const uint8_t width = input.Byte();
  const uint8_t height = input.Byte();

  test::MemoryFiles files;
  files.Put("file", std::vector<uint8_t>(input.rest(), input.rest() + input.left()));
  ImageRef image = 0;
  if (ZEL_Create(&image, type, width % 4) == 0) {
    ZEL_SetImageSize(image, width, height);
    zel::ReadRequest request;
    request.tableWanted = (height & 1) != 0;
    request.format = sized ? zel::FORMAT_RSTR : zel::FORMAT_RAW;
    request.options = &options;
    zel::FileContext context{};
    const zel::Status status = zel::FileReadKernel(image, "file", request, &context);
    test::Require(status >= 0, "a negative status inside the library");
    test::CheckImage(image);
    ZEL_Dispose(image);
  }
  test::CheckEnd(files);
  return 0;
}
