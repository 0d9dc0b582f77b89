// From paths to formats and images, and back: recognition, the stages of a read and a write, and
// the exports.
#include "files/dispatch.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "core/images.h"
#include "core/pixel_types.h"
#include "files/access.h"
#include "files/bmp.h"
#include "files/format.h"
#include "files/native.h"
#include "files/pixel_stream.h"
#include "files/raster.h"
#include "files/samples.h"
#include "files/tiff.h"

namespace zel {
namespace {

constexpr const FormatOperations* FORMATS[] = {&NATIVE_FORMAT, &TIFF_FORMAT, &BMP_FORMAT,
                                               &RASTER_FORMAT, &RAW_FORMAT};

// The first format that fits; null for none.
template <class Fits>
const FormatOperations* FormatFind(Fits fits) {
  const auto* const* found =
      std::find_if(std::begin(FORMATS), std::end(FORMATS),
                   [&](const FormatOperations* format) { return fits(*format); });
  return found == std::end(FORMATS) ? nullptr : *found;
}

const FormatOperations* OperationsOf(FileFormat number) {
  return FormatFind([=](const FormatOperations& format) { return format.format == number; });
}

// A file shorter than the signature is taken as going on with zeros.
Status Recognise(const OpenFile& file, FileContext* context) {
  uint8_t start[SIGNATURE_BYTES] = {};
  int64_t got = 0;
  if (FileSeek(file, 0) != STATUS_OK || FileRead(file, start, SIGNATURE_BYTES, &got) != STATUS_OK) {
    return STATUS_BAD_FILE_HEADER;
  }
  const FormatOperations* found = FormatFind([&](const FormatOperations& format) {
    return format.recognises && format.recognises(start, context->dataSize);
  });
  if (found) context->format = found->format;
  return STATUS_OK;
}

Status HeaderStage(const char* path, OpenFile* file, FileContext* context) {
  Status status = FileSize(path, &context->dataSize);
  if (status == STATUS_OK) status = file->Open(path, FileOpenMode::Read);
  if (status == STATUS_OK && context->format == FORMAT_UNKNOWN) status = Recognise(*file, context);
  if (status != STATUS_OK) return status;
  context->unit = UNIT_DEFAULT;
  context->ratioX = context->ratioY = 1.0f;
  const FormatOperations* format = OperationsOf(context->format);
  if (!format) return STATUS_FILE_UNSUPPORTED;
  return format->readHeader ? format->readHeader(*file, context) : STATUS_OK;
}

Status TakeReadOptions(const ReadRequest& request, FileContext* context) {
  context->format = request.format;
  context->tableWanted = request.tableWanted;
  if (const ReadOptions* options = request.options) {
    if (options->rawMode != 0) context->format = FORMAT_RAW;
    if (options->pixelClass < 0 || options->pixelClass >= PIXEL_CLASSES) return STATUS_FILE_OPEN;
    context->pixelClass = static_cast<PixelClass>(options->pixelClass);
    context->dataOffset = options->dataOffset;
    context->scaleToRange = options->scaleToRange;
    context->rangeMin = options->rangeMin;
    context->rangeMax = options->rangeMax;
    context->swapBytes = options->littleEndian == 0 ? 1 : 0;
  } else if (context->format == FORMAT_RSTR || context->format == FORMAT_RAW) {
    return STATUS_FILE_OPEN;  // without a class there is no telling what the file holds
  }
  return STATUS_OK;
}

// What a block that had `formerBytes` has gained.
Untouched UntouchedOf(const Image& image, int64_t formerBytes) {
  const auto* block = VectorData<const uint8_t>(image.pixels);
  const int64_t bytes = block ? HandleByteSize(image.pixels) : 0;
  return {block + std::min(formerBytes, bytes), block + bytes};
}

Status PixelStage(const OpenFile& file, const Image& image, int64_t formerBytes,
                  FileContext* context) {
  if (!TypeHasPixels(image.type)) return STATUS_BAD_LAYOUT_TYPE;
  const PixelView view = ViewOf(image);
  PixelStream stream{view, UntouchedOf(image, formerBytes), {}};
  // A 0 x 0 image has none of the file's rows.
  if (stream.view.width > 0) stream.view.width = context->width;
  Status status = STATUS_OK;
  if (context->scaleToRange == 1) status = SampleRangeScan(file, context, &stream);
  if (status == STATUS_OK)
    status = OperationsOf(context->format)->readData(file, *context, &stream);
  // An odd width leaves one column of the image that the file knows nothing of.
  if (stream.view.width % 2 != 0) {
    PixelRowsClear(view.Columns(view.width - 1, view.width), stream.untouched);
  }
  return status;
}

// A write that found no memory has not begun.
bool LeavesRowsTogether(const FormatOperations& format, const Image& image, Status status) {
  const bool isSpared = format.sparesColourRows && image.type == IMAGE_RGB;
  return status != STATUS_OK && status != STATUS_MEMORY_FULL && !isSpared;
}

FileContext ContextOf(const Image& image, const WriteRequest& request) {
  FileContext context{};
  context.format = request.format;
  context.imageType = image.type;
  context.width = image.width;
  context.height = image.height;
  context.ratioX = image.xStep;
  context.ratioY = image.yStep;
  context.unit = image.unit;
  context.tableCount = TABLE_ENTRIES;
  for (uint32_t i = 0; i < TABLE_ENTRIES; i++) {
    context.table[i] = i < request.tableCount ? request.table[i] & 0xFFFFFF : i * TABLE_GRAY_STEP;
  }
  const WriteOptions* options = request.options;
  context.rowsPerStrip =
      options ? std::clamp(options->rowsPerStrip, 1, std::max(image.height, 1)) : image.height;
  context.littleEndian = options ? options->littleEndian : 1;
  return context;
}

// By the number that callers know a format by; bitmaps for any other number.
FileFormat FormatAsked(int32_t fileType) {
  const FormatOperations* asked = FormatFind([=](const FormatOperations& format) {
    return format.fileType != 0 && format.fileType == fileType;
  });
  return asked ? asked->format : FORMAT_BMP;
}

}  // namespace

Status FileInfoKernel(const char* path, FileContext* context) {
  *context = {};
  context->format = FORMAT_UNKNOWN;
  OpenFile file;
  return HeaderStage(path, &file, context);
}

Status FileReadKernel(ImageRef reference, const char* path, const ReadRequest& request,
                      FileContext* context) {
  *context = {};
  Image* image = nullptr;
  Status status = ImageLookup(reference, &image);
  if (status == STATUS_OK) status = TakeReadOptions(request, context);
  if (status != STATUS_OK) return status;
  context->width = image->width;
  context->height = image->height;
  OpenFile file;
  status = HeaderStage(path, &file, context);
  if (status != STATUS_OK) return status;

  image->unit = static_cast<int16_t>(context->unit);
  image->xStep = context->ratioX;
  image->yStep = context->ratioY;
  const int64_t formerBytes = HandleByteSize(image->pixels);
  const int32_t evenWidth = context->width + context->width % 2;
  status = ImageLayoutSize(image, evenWidth, context->height, true);
  return status != STATUS_OK ? status : PixelStage(file, *image, formerBytes, context);
}

Status FileWriteKernel(ImageRef reference, const char* path, const WriteRequest& request) {
  Image* image = nullptr;
  Status status = ImageLookup(reference, &image);
  if (status != STATUS_OK) return status;
  const FormatOperations* format = OperationsOf(request.format);
  if (!format || !format->writeHeader) return STATUS_FILE_UNSUPPORTED;
  FileContext context = ContextOf(*image, request);
  if (format->checkImage) status = format->checkImage(context);
  if (status != STATUS_OK) return status;

  OpenFile file;
  status = file.Open(path, FileOpenMode::WriteTruncate);
  if (status == STATUS_OK) status = format->writeHeader(file, &context);
  if (status != STATUS_OK) return status;
  const PixelView view = ViewOf(*image);
  status = format->writeData(file, context, view);
  if (LeavesRowsTogether(*format, *image, status)) PixelRowsCompact(view);
  return status == STATUS_OK ? file.Finish() : status;
}

}  // namespace zel

int32_t ZEL_PtkFileInfo(const char* path, FileInfo* info) {
  if (!info) return ZEL_ProcessError("ZEL_PtkFileInfo", zel::STATUS_NULL_POINTER);
  zel::FileContext context;
  const zel::Status status = zel::FileInfoKernel(path ? path : "", &context);
  // A file that cannot be read is an answer and no failure. The bits a pixel keep what they held.
  info->fileType = FILE_FORMAT_UNKNOWN;
  info->planes = info->width = info->height = 0;
  if (status == zel::STATUS_OK) {
    const zel::ClassLayout& layout = zel::ClassLayoutOf(context.pixelClass);
    *info = {zel::OperationsOf(context.format)->fileType, layout.bitsPerPixel, layout.planes,
             context.width, context.height};
  }
  return ZEL_ProcessError("ZEL_PtkFileInfo", zel::STATUS_OK);
}

int32_t ZEL_ReadFile(ImageRef image, const char* path, int32_t wantTable, RGBValue* table,
                     int32_t* count) {
  zel::FileContext context;
  const zel::ReadRequest request{.tableWanted = wantTable != 0};
  const zel::Status status = zel::FileReadKernel(image, path ? path : "", request, &context);
  const bool hasTable = status == zel::STATUS_OK && wantTable != 0 && context.tableCount > 0;
  if (count) *count = hasTable || status != zel::STATUS_OK ? zel::TABLE_ENTRIES : 0;
  if (hasTable && table) {
    for (uint32_t i = 0; i < zel::TABLE_ENTRIES; i++) {
      table[i] = (table[i] & 0xFF000000) | context.table[i];
    }
  }
  return ZEL_ProcessError("ZEL_ReadFile", status);
}

int32_t ZEL_WriteFile(ImageRef image, const char* path, int32_t format, const RGBValue* table,
                      int32_t count) {
  constexpr auto entries = static_cast<int32_t>(zel::TABLE_ENTRIES);
  const uint32_t given = table ? static_cast<uint32_t>(std::clamp(count, 0, entries)) : 0;
  const zel::WriteRequest request{
      .format = zel::FormatAsked(format), .table = table, .tableCount = given};
  return ZEL_ProcessError("ZEL_WriteFile", zel::FileWriteKernel(image, path ? path : "", request));
}
