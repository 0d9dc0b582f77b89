// A check of everything that outlives a call, for tests and fuzzers.
#pragma once

namespace zel {

// Null when the image and handle tables agree with each other and with the layout of every image;
// else what is wrong, as text.
const char* WorldFault();

}  // namespace zel
