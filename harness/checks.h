// What holds around and after wild calls: limits of the heap before, a world without faults after.
#pragma once

#include <cstdint>

#include "harness/memory_files.h"
#include "orlune_ptk.h"

namespace test {

// Silences the reporter and limits what the heap gives: small limits keep runs fast and make
// refusals common, large ones let bigger images through.
void SetBudget(bool large);

// True where the address sanitizer looks at the library, whatever the caller was compiled with.
bool MemoryIsWatched();

// Stops the program, which a fuzzer takes for a finding.
void Require(bool condition, const char* what);

// The image's record is sound and every byte of it can be read and was written by somebody.
void CheckImage(ImageRef image);

// Closes the library: nothing is left on the heap or open.
void CheckEnd(const MemoryFiles& files);

}  // namespace test
