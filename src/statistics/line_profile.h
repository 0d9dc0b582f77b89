// Gray profiles along lines, for other rooms that read images through them.
#pragma once

#include "core/handles.h"
#include "core/rectangles.h"

namespace zel {

struct LineProfileResult {
  Handle profile;  // a vector of float that the kernel sizes to the samples
  LineProfileReport report;
};

// Samples the pixels of a line, clipped to the image. `line` holds its ends as left, top and right,
// bottom. A line that misses the image gives no samples and a report of zeros. STATUS_BAD_IMAGE;
// STATUS_BAD_TYPE for an image that is not U8, I16 or SGL, after the profile has its size.
Status LineProfileKernel(ImageRef image, const KernelRect* line, LineProfileResult* out);

}  // namespace zel
