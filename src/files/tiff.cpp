// What marks a TIFF file, and the operations on it.
#include "files/tiff.h"

#include "files/bytes.h"
#include "files/tiff_read.h"
#include "files/tiff_tags.h"
#include "files/tiff_write.h"

namespace zel {
namespace {

bool IsTiff(const uint8_t (&start)[SIGNATURE_BYTES], int64_t) {
  if (start[0] != start[1]) return false;
  return (start[0] == 'I' && LittleAt16(start + 2) == TIFF_MARK) ||
         (start[0] == 'M' && BigAt16(start + 2) == TIFF_MARK);
}

}  // namespace

const FormatOperations TIFF_FORMAT = {.format = FORMAT_TIFF,
                                      .fileType = FILE_FORMAT_TIFF,
                                      .recognises = &IsTiff,
                                      .readHeader = &TiffReadHeader,
                                      .readData = &TiffReadData,
                                      .checkImage = &TiffCheckImage,
                                      .writeHeader = &TiffWriteHeader,
                                      .writeData = &TiffWriteData,
                                      .sparesColourRows = false};

}  // namespace zel
