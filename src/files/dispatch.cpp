// From paths to formats and images, and back: recognition, the stages of a read and a write, and
// the exports.
#include <algorithm>
#include <cstring>

#include "core/kernels.h"
#include "files/access.h"
#include "files/bytes.h"
#include "files/files.h"
#include "files/formats.h"
#include "files/pixel_stream.h"
#include "files/samples.h"
#include "files/tiff_tags.h"

namespace zel {
namespace {

constexpr uint32_t TAG_NATIVE = 0x4F524C4E;  // "ORLN"
constexpr int64_t SIGNATURE_BYTES = 6;
constexpr int FORMATS = 6;

struct FormatOperations {
  Status (*readHeader)(const OpenFile&, FileContext*);
  Status (*readData)(const OpenFile&, FileContext*, PixelStream*);
  Status (*checkImage)(const FileContext&);
  Status (*writeHeader)(const OpenFile&, FileContext*);
  Status (*writeData)(const OpenFile&, const FileContext&, const PixelGrid&);
};

Status NoHeader(const OpenFile&, FileContext*) {
  return STATUS_OK;
}

Status ReadRest(const OpenFile& file, FileContext* context, PixelStream* stream) {
  return PixelStreamReadRest(file, *context, stream);
}

Status AnyImage(const FileContext&) {
  return STATUS_OK;
}

// Rows from top to bottom without gaps. Colour pixels are reversed, fourth byte first.
Status WriteRows(const OpenFile& file, const FileContext& context, const PixelGrid& grid) {
  if (FileSeek(file, context.dataOffset) != STATUS_OK) return STATUS_FILE_WRITE;
  int32_t pixelBytes = 0;
  PixelSize(context.imageType, &pixelBytes);
  const ElementMove pack = DirectReversal(context, context.imageType);
  return PixelRowsWrite(file, grid, {pack, pixelBytes, pixelBytes, 0});
}

// By FileFormat. Without a header reader or writer there is none of the format.
constexpr FormatOperations OPERATIONS[FORMATS] = {
    {&NativeReadHeader, &ReadRest, &AnyImage, &NativeWriteHeader, &WriteRows},
    {&TiffReadHeader, &TiffReadData, &TiffCheckImage, &TiffWriteHeader, &TiffWriteData},
    {},
    {&BmpReadHeader, &BmpReadData, &BmpCheckImage, &BmpWriteHeader, &BmpWriteData},
    {&RasterReadHeader, &ReadRest, &AnyImage, &RasterWriteHeader, &WriteRows},
    {&NoHeader, &ReadRest, nullptr, nullptr, nullptr},
};

const FormatOperations& OperationsOf(FileFormat format) {
  static constexpr FormatOperations none{};
  return format >= 0 && format < FORMATS ? OPERATIONS[format] : none;
}

// A file shorter than the signature is taken as going on with zeros.
Status Recognise(const OpenFile& file, FileContext* context) {
  uint8_t signature[SIGNATURE_BYTES] = {};
  int64_t got = 0;
  if (FileSeek(file, 0) != STATUS_OK ||
      FileRead(file, signature, SIGNATURE_BYTES, &got) != STATUS_OK) {
    return STATUS_BAD_FILE_HEADER;
  }
  const auto startsWith = [&](const char* mark) { return std::memcmp(signature, mark, 2) == 0; };
  if (BigAt32(signature) == TAG_NATIVE) {
    context->format = FORMAT_NATIVE;
  } else if (startsWith("BM") && LittleAt32(signature + 2) == context->dataSize) {
    context->format = FORMAT_BMP;
  } else if ((startsWith("II") && LittleAt16(signature + 2) == TIFF_MARK) ||
             (startsWith("MM") && BigAt16(signature + 2) == TIFF_MARK)) {
    context->format = FORMAT_TIFF;
  }
  return STATUS_OK;
}

Status HeaderStage(const char* path, OpenFile* file, FileContext* context) {
  Status status = FileSize(path, &context->dataSize);
  if (status == STATUS_OK) status = file->Open(path, FileOpenMode::Read);
  if (status == STATUS_OK && context->format == FORMAT_UNKNOWN) status = Recognise(*file, context);
  if (status != STATUS_OK) return status;
  context->unit = UNIT_DEFAULT;
  context->ratioX = context->ratioY = 1.0f;
  const auto readHeader = OperationsOf(context->format).readHeader;
  return readHeader ? readHeader(*file, context) : STATUS_FILE_UNSUPPORTED;
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

// An odd width leaves one column of the image that the file knows nothing of. What lies behind the
// end of the former block is zero already, in pages that nothing may have touched yet.
void ClearLastColumn(const Image& image, int32_t pixelBytes, int64_t formerBytes) {
  const PixelGrid grid = PixelGridOf(image);
  const int64_t end = std::min<int64_t>(formerBytes, HandleByteSize(image.pixels));
  const uint8_t* formerEnd = VectorData<uint8_t>(image.pixels) + end;
  for (int64_t y = 0; y < grid.height; y++) {
    uint8_t* pixel = grid.Row<uint8_t>(y) + (int64_t{grid.width} - 1) * pixelBytes;
    if (pixel >= formerEnd) return;
    std::memset(pixel, 0, static_cast<size_t>(pixelBytes));
  }
}

Status PixelStage(const OpenFile& file, const Image& image, int64_t formerBytes,
                  FileContext* context) {
  int32_t pixelBytes = 0;
  Status status = PixelSize(image.type, &pixelBytes);
  if (status != STATUS_OK) return status;
  const PixelGrid whole = PixelGridOf(image);
  PixelStream stream{whole, image.type, pixelBytes, {}};
  // A 0 x 0 image has none of the file's rows.
  stream.grid.width = whole.width > 0 ? context->width : 0;
  if (context->scaleToRange == 1) status = SampleRangeScan(file, context, &stream);
  if (status == STATUS_OK) {
    const auto readData = OperationsOf(context->format).readData;
    status = readData ? readData(file, context, &stream) : STATUS_FILE_UNSUPPORTED;
  }
  if (stream.grid.width % 2 != 0) ClearLastColumn(image, pixelBytes, formerBytes);
  return status;
}

// Rows go to the file from their places, and a write that succeeds never touches the image. One
// that fails among the pixels leaves the rows moved together: kept. Only colour bitmaps are spared,
// and a write that found no memory and so has not begun.
bool LeavesRowsTogether(const FileContext& context, Status status) {
  const bool colourBitmap = context.format == FORMAT_BMP && context.imageType == IMAGE_RGB;
  return status != STATUS_OK && status != STATUS_MEMORY_FULL && !colourBitmap;
}

FileFormat FormatAsked(int32_t format) {
  return format == FILE_FORMAT_NATIVE ? FORMAT_NATIVE
         : format == FILE_FORMAT_TIFF ? FORMAT_TIFF
                                      : FORMAT_BMP;
}

// The number that callers know a recognised format by.
int32_t FileTypeOf(FileFormat format) {
  return format == FORMAT_NATIVE ? FILE_FORMAT_NATIVE
         : format == FORMAT_TIFF ? FILE_FORMAT_TIFF
                                 : FILE_FORMAT_BMP;
}

}  // namespace

void FileInfoKernel(const char* path, FileContext* context, Status* status) {
  *context = {};
  context->format = FORMAT_UNKNOWN;
  OpenFile file;
  *status = HeaderStage(path, &file, context);
}

void FileReadKernel(ImageRef reference, const char* path, const ReadRequest* request,
                    FileContext* context, Status* status) {
  *context = {};
  Image* image = ImageLookup(reference, status);
  if (!image) return;
  *status = TakeReadOptions(*request, context);
  if (*status != STATUS_OK) return;
  context->width = image->width;
  context->height = image->height;
  OpenFile file;
  *status = HeaderStage(path, &file, context);
  if (*status != STATUS_OK) return;

  image->unit = static_cast<int16_t>(context->unit);
  image->xStep = context->ratioX;
  image->yStep = context->ratioY;
  const int64_t formerBytes = HandleByteSize(image->pixels);
  const int32_t evenWidth = context->width + context->width % 2;
  *status = ImageSetSize(reference, evenWidth, context->height);
  if (*status == STATUS_OK) *status = PixelStage(file, *image, formerBytes, context);
}

void FileWriteKernel(ImageRef reference, const char* path, const FileFormat* format,
                     const RGBValue* table, const uint32_t* tableCount, const WriteOptions* options,
                     Status* status) {
  const Image* image = ImageLookup(reference, status);
  if (!image) return;
  FileContext context{};
  context.format = *format;
  context.imageType = image->type;
  context.width = image->width;
  context.height = image->height;
  context.ratioX = image->xStep;
  context.ratioY = image->yStep;
  context.unit = image->unit;
  context.tableCount = TABLE_ENTRIES;
  for (uint32_t i = 0; i < TABLE_ENTRIES; i++) {
    context.table[i] = i < *tableCount ? table[i] & 0xFFFFFF : i * TABLE_GRAY_STEP;
  }
  context.rowsPerStrip =
      options ? std::clamp(options->rowsPerStrip, 1, std::max(image->height, 1)) : image->height;
  context.littleEndian = options ? options->littleEndian : 1;

  const FormatOperations& operations = OperationsOf(*format);
  *status = operations.writeHeader ? operations.checkImage(context) : STATUS_FILE_UNSUPPORTED;
  if (*status != STATUS_OK) return;
  OpenFile file;
  *status = file.Open(path, FileOpenMode::WriteTruncate);
  if (*status == STATUS_OK) *status = operations.writeHeader(file, &context);
  if (*status != STATUS_OK) return;

  const PixelGrid grid = PixelGridOf(*image);
  *status = operations.writeData(file, context, grid);
  if (LeavesRowsTogether(context, *status)) {
    int32_t pixelBytes = 0;
    PixelSize(image->type, &pixelBytes);
    PixelRowsCompact(grid, pixelBytes);
  }
}

}  // namespace zel

int32_t ZEL_PtkFileInfo(const char* path, FileInfo* info) {
  if (!info) return ZEL_ProcessError("ZEL_PtkFileInfo", zel::STATUS_NULL_POINTER);
  zel::FileContext context;
  zel::Status status = zel::STATUS_OK;
  zel::FileInfoKernel(path ? path : "", &context, &status);
  // A file that cannot be read is an answer and no failure. The bits a pixel keep what they held.
  info->fileType = FILE_FORMAT_UNKNOWN;
  info->planes = info->width = info->height = 0;
  if (status == zel::STATUS_OK) {
    const zel::ClassLayout& layout = zel::ClassLayoutOf(context.pixelClass);
    *info = {zel::FileTypeOf(context.format), layout.bitsPerPixel, layout.planes, context.width,
             context.height};
  }
  return ZEL_ProcessError("ZEL_PtkFileInfo", zel::STATUS_OK);
}

int32_t ZEL_ReadFile(ImageRef image, const char* path, int32_t wantTable, RGBValue* table,
                     int32_t* count) {
  zel::Status status = zel::STATUS_OK;
  zel::FileContext context;
  const zel::ReadRequest request{wantTable != 0};
  zel::FileReadKernel(image, path ? path : "", &request, &context, &status);
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
  zel::Status status = zel::STATUS_OK;
  const zel::FileFormat asked = zel::FormatAsked(format);
  constexpr auto entries = static_cast<int32_t>(zel::TABLE_ENTRIES);
  const uint32_t given = table ? static_cast<uint32_t>(std::clamp(count, 0, entries)) : 0;
  zel::FileWriteKernel(image, path ? path : "", &asked, table, &given, nullptr, &status);
  return ZEL_ProcessError("ZEL_WriteFile", status);
}
