// What every fuzz target does around its input.
#pragma once

#include <cstdint>

#include "fuzz/input.h"
#include "orlune_ptk.h"
#include "tests/support/memory_files.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace fuzz {

// Silences the reporter and limits what the heap gives: small limits keep runs fast and make
// refusals common, large ones let bigger images through.
void SetBudget(bool large);

// Stops the program, which a fuzzer takes for a finding.
void Require(bool condition, const char* what);

// The image's record is sound and every byte of it can be read and was written by somebody.
void CheckImage(ImageRef image);

// Closes the library: nothing is left on the heap or open.
void CheckEnd(const test::MemoryFiles& files);

}  // namespace fuzz
