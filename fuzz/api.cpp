// Calls of every export with wild arguments, one after another on the same few images.
#include "fuzz/api_calls.h"
#include "fuzz/target.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::Input input(data, size);
  fuzz::SetBudget(input.Byte() == 0xFF);
  test::MemoryFiles files;
  {
    fuzz::Playground play(&input);
    fuzz::RunCalls(&play, 32);
  }
  fuzz::CheckEnd(files);
  return 0;
}
