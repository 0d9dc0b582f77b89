// Reading of uncompressed TIFF.
#pragma once

#include "files/access.h"
#include "files/context.h"
#include "files/pixel_stream.h"

namespace zel {

Status TiffReadHeader(const OpenFile& file, FileContext* context);
Status TiffReadData(const OpenFile& file, const FileContext& context, PixelStream* stream);

}  // namespace zel
