// The message box of a machine without a desktop: standard error.
#include "platform/message_box.h"

#include <cstdio>

namespace zel {
namespace {

void PrintMessage(const char* title, const char* text) {
  std::fprintf(stderr, "%s: %s", title, text);
  std::fflush(stderr);
}

constexpr MessageBox PRINTING{&PrintMessage};
const MessageBox* inUse = &PRINTING;

}  // namespace

const MessageBox& MessageBoxInUse() {
  return *inUse;
}

void MessageBoxUse(const MessageBox* messageBox) {
  inUse = messageBox ? messageBox : &PRINTING;
}

}  // namespace zel
