// A progress bar on a terminal: how far, how fast, how long still.
#include "orlune/shared/progress.h"

#include <unistd.h>

#include <cmath>
#include <cstdio>

#include "orlune/shared/numbers.h"

namespace front {
namespace {

constexpr size_t MANY_FILES = 4;
constexpr size_t BAR_WIDTH = 30;

std::string Duration(double seconds) {
  if (seconds < 60) return Fixed(std::ceil(seconds), 0) + " s";
  const double minutes = std::floor(seconds / 60);
  const std::string rest = Fixed(std::floor(seconds - minutes * 60), 0);
  return Fixed(minutes, 0) + (rest.size() < 2 ? ":0" : ":") + rest + " min";
}

}  // namespace

std::string ProgressLine(size_t done, size_t total, double seconds) {
  const size_t filled = total == 0 ? BAR_WIDTH : BAR_WIDTH * done / total;
  std::string line(1, '[');
  line.append(filled, '#').append(BAR_WIDTH - filled, '.').append("] ");
  line += std::to_string(done) + " of " + std::to_string(total);
  if (done == 0 || seconds <= 0) return line;
  const double rate = static_cast<double>(done) / seconds;
  return line + "  " + Short(std::round(rate * 10) / 10) + " files/s  " +
         Duration(static_cast<double>(total - done) / rate) + " left";
}

Progress::Progress(size_t total)
    : total_(total),
      shown_(total >= MANY_FILES && isatty(STDOUT_FILENO) != 0 && isatty(STDERR_FILENO) != 0) {}

void Progress::Done(size_t count) {
  if (!shown_) return;
  const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - start_;
  std::fprintf(stderr, "\r%s\033[K", ProgressLine(count, total_, passed.count()).c_str());
  visible_ = true;
}

void Progress::Hide() {
  if (visible_) std::fputs("\r\033[K", stderr);
  visible_ = false;
}

}  // namespace front
