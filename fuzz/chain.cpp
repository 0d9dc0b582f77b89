// Any bytes as a file, read into an image, and then calls of the library on whatever came of it.
#include <vector>

#include "fuzz/api_calls.h"
#include "fuzz/target.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::Input input(data, size);
  fuzz::SetBudget(input.Byte() == 0xFF);
  const size_t fileSize = input.left() * 2 / 3;
  std::vector<uint8_t> file(input.rest(), input.rest() + fileSize);
  fuzz::Input calls(input.rest() + fileSize, input.left() - fileSize);
  test::MemoryFiles files;
  files.Put("a", file);
  {
    fuzz::Playground play(&calls);
    ZEL_ReadFile(*play.Slot(), "a", 0, nullptr, nullptr);
    fuzz::RunCalls(&play, 32);
  }
  fuzz::CheckEnd(files);
  return 0;
}
