// The one function that a fuzz target is: the fuzzer, or the replay, calls it with each input.
#pragma once

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);
