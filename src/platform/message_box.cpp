// The message box of a machine without a desktop: standard error.
#include "platform/message_box.h"

#include <cstdio>
#include <cstring>

#include "platform/pipe_signal.h"

namespace zel {
namespace {

// A terminal that was closed must not end the program for the sake of a message.
void PrintMessage(const char* title, const char* text) {
  const WithoutPipeSignal held;
  const size_t length = std::strlen(text);
  const bool isEnded = length > 0 && text[length - 1] == '\n';
  std::fprintf(stderr, "%s: %s%s", title, text, isEnded ? "" : "\n");
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
