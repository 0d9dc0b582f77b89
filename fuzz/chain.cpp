// Any bytes as a file, read into an image, and then calls of the library on whatever came of it.
// The file's length stands before it, so that calls stay the same while the file changes.
#include <algorithm>
#include <vector>

#include "fuzz/target.h"
#include "harness/calls/calls.h"
#include "harness/checks.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  test::Input input(data, size);
  test::SetBudget(input.Byte() == 0xFF);
  const size_t high = input.Byte();
  const size_t length = high << 8 | input.Byte();
  const size_t fileSize = std::min(length, input.left());
  std::vector<uint8_t> file(input.rest(), input.rest() + fileSize);
  test::Input calls(input.rest() + fileSize, input.left() - fileSize);
  test::MemoryFiles files;
  files.Put("a", file);
  {
    test::Playground play(&calls);
    ZEL_ReadFile(*play.Slot(), "a", 0, nullptr, nullptr);
    test::RunCalls(&play, 32);
  }
  test::CheckEnd(files);
  return 0;
}
