// Calls of every export with wild arguments, one after another on the same few images.
#include "fuzz/target.h"
#include "harness/calls/calls.h"
#include "harness/checks.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  test::Input input(data, size);
  test::SetBudget(input.Byte() == 0xFF);
  test::MemoryFiles files;
  {
    test::Playground play(&input);
    test::RunCalls(&play, 32);
  }
  test::CheckEnd(files);
  return 0;
}
