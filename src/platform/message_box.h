// How the library shows a message to the person at the machine.
#pragma once

namespace zel {

struct MessageBox {
  // Shows a title and a text, and returns when the person has seen it. Must not fail.
  void (*show)(const char* title, const char* text);
};

// The one in use: at first one that prints to standard error.
const MessageBox& MessageBoxInUse();
// Null puts the first one back.
void MessageBoxUse(const MessageBox* messageBox);

}  // namespace zel
