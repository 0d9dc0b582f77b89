// Writing of uncompressed TIFF.
#pragma once

#include "core/views.h"
#include "files/access.h"
#include "files/context.h"

namespace zel {

Status TiffCheckImage(const FileContext& context);
Status TiffWriteHeader(const OpenFile& file, FileContext* context);
Status TiffWriteData(const OpenFile& file, const FileContext& context, const PixelView& view);

}  // namespace zel
