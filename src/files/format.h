// What a format tells of itself: its numbers, its signature, and how its files are read and
// written.
#pragma once

#include "files/access.h"
#include "files/context.h"
#include "files/pixel_stream.h"

namespace zel {

constexpr int64_t SIGNATURE_BYTES = 6;

struct FormatOperations {
  FileFormat format;
  int32_t fileType;  // the number that callers know the format by; 0: they don't

  // Whether a file of this length that starts with these bytes is of the format. Null: never
  // recognised, only asked for.
  bool (*recognises)(const uint8_t (&start)[SIGNATURE_BYTES], int64_t fileBytes);

  // Fills the context's size, class, data offset and byte order. Null: there is no header.
  Status (*readHeader)(const OpenFile& file, FileContext* context);
  Status (*readData)(const OpenFile& file, const FileContext& context, PixelStream* stream);

  // What is refused before an existing file is touched. Null: nothing.
  Status (*checkImage)(const FileContext& context);
  // Settles the class, data offset and byte order too. Null: the format is not written.
  Status (*writeHeader)(const OpenFile& file, FileContext* context);
  Status (*writeData)(const OpenFile& file, const FileContext& context, const PixelView& view);

  // Rows go to the file from their places, and a write that succeeds never touches the image. One
  // that fails among the pixels leaves the rows moved together, but for colour images here: kept.
  bool sparesColourRows;
};

}  // namespace zel
