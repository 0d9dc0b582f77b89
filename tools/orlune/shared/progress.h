// A progress bar on a terminal: how far, how fast, how long still.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace front {

class Progress {
 public:
  // Shown only for many files, and only while both outputs go to a terminal: a bar has no place
  // in a pipe or a file.
  explicit Progress(size_t total);
  ~Progress() { Hide(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void Done(size_t count);  // files so far
  void Hide();              // before other text is printed

 private:
  size_t total_;
  bool shown_;
  bool visible_ = false;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

// The line without the terminal's control characters, as Progress prints it.
std::string ProgressLine(size_t done, size_t total, double seconds);

}  // namespace front
