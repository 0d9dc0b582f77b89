// The picture with what was found burnt into it.
#pragma once

#include <filesystem>

#include "orlune/inspection.h"

namespace front {

// Writes a 24-bit BMP file: kept particles with a green outline, a yellow upright rectangle and
// their number; particles left out with a red outline alone. Throws LibraryFailure.
void WriteAnnotation(const Inspection& inspection, const std::filesystem::path& file);

}  // namespace front
