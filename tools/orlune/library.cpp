// Failures of the library and their messages.
#include "orlune/library.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace front {
namespace {

struct Message {
  int32_t number;
  const char* text;
};

// The public interface hands out numbers only, so the texts of those that files, thresholds and
// particles can give stand here too. A test compares them with the library's.
constexpr Message MESSAGES[] = {
    {101, "memory full"},
    {102, "memory error"},
    {200, "bad image reference"},
    {300, "bad image type"},
    {301, "bad image type"},
    {302, "bad image type"},
    {304, "image(s) type incompatible"},
    {305, "image(s) type incompatible"},
    {306, "image(s) size incompatible"},
    {309, "bad border size"},
    {312, "image type not supported"},
    {500, "bad file header"},
    {503, "invalid parameter"},
    {507, "unspecified I/O error"},
    {509, "file type not supported"},
    {510, "unable to get info"},
    {511, "unable to read data"},
    {512, "unable to write data"},
    {514, "bad file format"},
    {801, "bad number of measure"},
    {1001, "kernel internal error"},
    {3009, "Null pointer passed to function"},
};

std::string Describe(int32_t number, const std::string& function) {
  return LibraryMessage(number) + " (" + function + " returned " + std::to_string(number) + ")";
}

}  // namespace

std::string LibraryMessage(int32_t number) {
  const auto found = std::find_if(std::begin(MESSAGES), std::end(MESSAGES),
                                  [&](const Message& m) { return m.number == std::abs(number); });
  return found == std::end(MESSAGES) ? std::string() : found->text;
}

LibraryFailure::LibraryFailure(int32_t number, const std::string& function)
    : std::runtime_error(Describe(number, function)), number_(number), function_(function) {}

void Check(int32_t status) {
  if (status == 0) return;
  char function[256];
  ZEL_GetLastError(function);
  throw LibraryFailure(status, function);
}

}  // namespace front
