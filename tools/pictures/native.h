// Native files, through the library.
#pragma once

#include <string>

#include "pictures/image.h"

namespace pictures {

bool IsNative(Bytes file);

// Throw BadFile for a file that is shorter than its header claims, and LibraryFailure.
Account NativeAccount(Bytes file);
Loaded ReadNative(Bytes file, const ReadSettings& settings);

// Throws LibraryFailure, WriteFailure, and std::invalid_argument for sizes that the header has no
// room for.
void WriteNative(const Image& image, const std::string& path);

}  // namespace pictures
