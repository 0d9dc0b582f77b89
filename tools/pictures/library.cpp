// Failures of the library and their messages.
#include "pictures/library.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace pictures {
namespace {

struct Message {
  int32_t number;
  const char* text;
};

// The public interface hands out numbers only, so the texts of those that files, thresholds and
// particles can give stand here too. A test compares them with the library's.
constexpr Message MESSAGES[] = {
    {ZEL_ERR_MEMORY_FULL, "memory full"},
    {ZEL_ERR_MEMORY_ERROR, "memory error"},
    {ZEL_ERR_BAD_IMAGE, "bad image reference"},
    {ZEL_ERR_BAD_LAYOUT_TYPE, "bad image type"},
    {ZEL_ERR_BAD_TYPE, "bad image type"},
    {ZEL_ERR_BAD_OPERAND_TYPE, "bad image type"},
    {ZEL_ERR_DESTINATION_TYPE_DIFFERS, "image(s) type incompatible"},
    {ZEL_ERR_OPERAND_TYPE_DIFFERS, "image(s) type incompatible"},
    {ZEL_ERR_SIZE_DIFFERS, "image(s) size incompatible"},
    {ZEL_ERR_BORDER_TOO_SMALL, "bad border size"},
    {ZEL_ERR_DESTINATION_UNSUPPORTED, "image type not supported"},
    {ZEL_ERR_BAD_FILE_HEADER, "bad file header"},
    {ZEL_ERR_FILE_OPEN, "invalid parameter"},
    {ZEL_ERR_FILE_SEEK, "unspecified I/O error"},
    {ZEL_ERR_FILE_UNSUPPORTED, "file type not supported"},
    {ZEL_ERR_FILE_INFO, "unable to get info"},
    {ZEL_ERR_FILE_READ, "unable to read data"},
    {ZEL_ERR_FILE_WRITE, "unable to write data"},
    {ZEL_ERR_BAD_FILE_FORMAT, "bad file format"},
    {ZEL_ERR_BAD_MEASURE, "bad number of measure"},
    {ZEL_ERR_INTERNAL, "kernel internal error"},
    {ZEL_ERR_DIVIDED_BY_ZERO, "Divided by zero"},
    {ZEL_ERR_NULL_POINTER, "Null pointer passed to function"},
    {ZEL_ERR_NO_SEGMENT, "LCD no segments"},
    {ZEL_ERR_INEXACT_DIGIT, "LCD bad match"},
};

std::string Describe(int32_t number, const std::string& function) {
  return LibraryMessage(number) + " (" + function + " returned " + std::to_string(number) + ")";
}

SpareImages* spareImages = nullptr;

// Most often a few bytes, for which three stores that overlap are quicker than a call.
void ClearBytes(char* from, int64_t bytes) {
  constexpr int64_t store = 8;
  if (bytes < store || bytes > 3 * store) {
    std::memset(from, 0, static_cast<size_t>(bytes));
    return;
  }
  std::memset(from, 0, store);
  std::memset(from + std::min(store, bytes - store), 0, store);
  std::memset(from + bytes - store, 0, store);
}

// The right border of a row and the left border of the next one are cleared in one go, with what
// lies between them.
void ClearBorder(const ImageInfo& info) {
  if (info.border == 0) return;
  const int64_t side = int64_t{info.border} * info.pixelBytes;
  const int64_t line = int64_t{info.width} * info.pixelBytes;
  const int64_t above = int64_t{info.border} * info.lineBytes + side;
  ClearBytes(Row<char>(info, 0) - above, above);
  for (int32_t y = 0; y + 1 < info.height; ++y) {
    ClearBytes(Row<char>(info, y) + line, info.lineBytes - line);
  }
  ClearBytes(Row<char>(info, info.height - 1) + line, above);
}

}  // namespace

std::string LibraryMessage(int32_t number) {
  const auto found = std::find_if(std::begin(MESSAGES), std::end(MESSAGES),
                                  [&](const Message& m) { return m.number == -std::abs(number); });
  return found == std::end(MESSAGES) ? std::string() : found->text;
}

LibraryFailure::LibraryFailure(int32_t number, const std::string& function)
    : std::runtime_error(Describe(number, function)), number_(number), function_(function) {}

void Check(int32_t status) {
  if (status == 0) return;
  char function[ERROR_PROCEDURE_BYTES];
  ZEL_GetLastError(function);
  throw LibraryFailure(status, function);
}

Image Image::ForNewPixels(int32_t type, int32_t border, int32_t width, int32_t height) {
  Image image;
  if (spareImages) image.reference_ = spareImages->Take(type, border, width, height);
  if (image.reference_ == 0) image = Image(type, border, width, height);
  image.reusable_ = true;
  return image;
}

Image::~Image() {
  if (reference_ == 0) return;
  if (!reusable_ || !spareImages || !spareImages->Keep(reference_)) ZEL_Dispose(reference_);
}

SpareImages::SpareImages() {
  if (!spareImages) spareImages = this;
}

SpareImages::~SpareImages() {
  if (spareImages == this) spareImages = nullptr;
  for (const ImageRef image : images_) {
    if (image != 0) ZEL_Dispose(image);
  }
}

ImageRef SpareImages::Take(int32_t type, int32_t border, int32_t width, int32_t height) {
  for (ImageRef& image : images_) {
    ImageInfo info;
    if (image == 0 || ZEL_GetImageInfo(image, &info) != 0) continue;
    const bool alike =
        info.type == type && info.border == border && info.width == width && info.height == height;
    if (!alike) continue;
    ClearBorder(info);
    ZEL_SetImageCalibration(image, 0, 1, 1);
    ZEL_SetImageOffset(image, 0, 0);
    return std::exchange(image, 0);
  }
  return 0;
}

bool SpareImages::Keep(ImageRef image) {
  ImageInfo info;
  if (ZEL_GetImageInfo(image, &info) != 0 || info.width == 0 || info.height == 0) return false;
  if (info.totalBytes > MOST_BYTES) return false;
  // The one that has waited longest makes room.
  ImageRef& place = images_[next_++ % MOST];
  if (place != 0) ZEL_Dispose(place);
  place = image;
  return true;
}

}  // namespace pictures
