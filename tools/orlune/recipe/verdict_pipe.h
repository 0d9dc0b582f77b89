// Verdicts as lines in a pipe with a name, for a program that may come and go.
#pragma once

#include <string>

#include "orlune/recipe/picture_result.h"

namespace front {

// "VERDICT<TAB>FILE<TAB>REASON", with its end, and never longer than what a pipe takes at once.
std::string VerdictLine(const PictureResult& result);

class VerdictPipe {
 public:
  // Throws std::invalid_argument for what is neither a pipe nor a device.
  explicit VerdictPipe(const std::string& path);
  ~VerdictPipe();
  VerdictPipe(const VerdictPipe&) = delete;
  VerdictPipe& operator=(const VerdictPipe&) = delete;

  // Never waits: a line that nobody reads, or that there is no room for, is only counted.
  void Send(const std::string& line);
  size_t unread() const { return unread_; }

 private:
  bool Write(const std::string& line);
  void Close();

  std::string path_;
  int descriptor_ = -1;
  size_t unread_ = 0;
};

}  // namespace front
