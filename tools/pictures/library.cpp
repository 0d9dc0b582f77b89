// Failures of the library and their messages.
#include "pictures/library.h"

#include <algorithm>
#include <cstdlib>
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

}  // namespace pictures
