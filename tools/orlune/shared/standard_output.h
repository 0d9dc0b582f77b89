// The standard output, with the reason when it cannot be written.
#pragma once

#include <array>
#include <ostream>
#include <streambuf>

namespace front {

// Stands in for std::cout's own buffer while it lives.
class StandardOutput : public std::streambuf {
 public:
  StandardOutput();
  ~StandardOutput() override;
  StandardOutput(const StandardOutput&) = delete;
  StandardOutput& operator=(const StandardOutput&) = delete;

  // Writes what is left. False when anything could not be written; reason() tells why.
  bool Finish();
  int reason() const { return reason_; }  // as errno

 protected:
  int_type overflow(int_type c) override;
  int sync() override;

 private:
  bool WriteOut();

  std::array<char, 1 << 16> buffer_;
  std::streambuf* former_;
  int reason_ = 0;
};

// The three standard streams are open, if only to nothing: no file that is opened later is taken
// for one of them.
void OccupyStandardStreams();

}  // namespace front
