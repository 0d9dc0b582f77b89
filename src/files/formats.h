// The formats, as the dispatch calls them.
#pragma once

#include "files/access.h"
#include "files/files.h"
#include "files/pixel_stream.h"

namespace zel {

// Each header reader fills the context's size, class, data offset and byte order.
Status NativeReadHeader(const OpenFile& file, FileContext* context);
Status TiffReadHeader(const OpenFile& file, FileContext* context);
Status BmpReadHeader(const OpenFile& file, FileContext* context);
Status RasterReadHeader(const OpenFile& file, FileContext* context);

// Formats whose samples are not just all that follows the header.
Status TiffReadData(const OpenFile& file, FileContext* context, PixelStream* stream);
Status BmpReadData(const OpenFile& file, FileContext* context, PixelStream* stream);

// What is refused before an existing file is touched.
Status TiffCheckImage(const FileContext& context);
Status BmpCheckImage(const FileContext& context);

// Each header writer settles the class, data offset and byte order too.
Status NativeWriteHeader(const OpenFile& file, FileContext* context);
Status TiffWriteHeader(const OpenFile& file, FileContext* context);
Status BmpWriteHeader(const OpenFile& file, FileContext* context);
Status RasterWriteHeader(const OpenFile& file, FileContext* context);

// Formats whose pixels do not just follow the header from top to bottom.
Status TiffWriteData(const OpenFile& file, const FileContext& context, const PixelGrid& grid);
Status BmpWriteData(const OpenFile& file, const FileContext& context, const PixelGrid& grid);

}  // namespace zel
