// Asks the system and the libraries what they are.
#include "benchmarks/machine.h"

#include <leptonica/allheaders.h>
#include <sched.h>
#include <tiffio.h>
#include <time.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <opencv2/core/version.hpp>
#include <sstream>

namespace bench {
namespace {

std::string ProcessorName() {
  std::ifstream file("/proc/cpuinfo");
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("model name")) return line.substr(line.find(':') + 2);
  }
  return "unknown";
}

int32_t ProcessorCount() {
  cpu_set_t set;
  return sched_getaffinity(0, sizeof(set), &set) == 0 ? CPU_COUNT(&set) : 1;
}

std::string Compiler() {
#if defined(__clang__)
  return "clang++ " __clang_version__;
#else
  return "g++ " __VERSION__;
#endif
}

// The version in the first line of what a library says of itself: "name-1.2", "Name, Version 1.2".
std::string VersionIn(std::string text) {
  text.resize(std::min(text.size(), text.find('\n')));
  return text.substr(text.find_last_of(" -") + 1);
}

std::string Peers() {
  char* leptonica = getLeptonicaVersion();
  const std::string text = "OpenCV " CV_VERSION ", Leptonica " + VersionIn(leptonica) +
                           ", libtiff " + VersionIn(TIFFGetVersion());
  lept_free(leptonica);
  return text;
}

std::string Load() {
  double load = 0;
  char text[32] = "unknown";
  if (getloadavg(&load, 1) == 1) std::snprintf(text, sizeof(text), "%.2f", load);
  return text;
}

std::vector<std::string> LevelNames() {
  std::vector<std::string> names;
  std::stringstream stream(PTK_LEVEL_NAMES);
  for (std::string name; stream >> name;) {
    if (HasLevel(name)) names.push_back(name);
  }
  return names;
}

std::string Today() {
  const time_t now = time(nullptr);
  char text[16];
  strftime(text, sizeof(text), "%Y-%m-%d", gmtime(&now));
  return text;
}

}  // namespace

std::vector<std::string> FactsOfMachine(const std::string& level) {
  const std::string best = LevelNames().back();
  return {"processor: " + ProcessorName() + ", " + std::to_string(ProcessorCount()) + " in use",
          "compiler: " + Compiler(),
          "peers: " + Peers(),
          "processor level: " + (level.empty() ? best + ", the processor's best" : level),
          "date: " + Today(),
          "load before the run: " + Load()};
}

bool HasLevel(const std::string& level) {
  std::stringstream names(PTK_LEVEL_NAMES);
  bool known = false;
  for (std::string name; names >> name;) known |= name == level;
#if defined(__x86_64__)
  // A virtual machine that offers these and hides a smaller part of the level is not noticed.
  if (level == "v3") return known && __builtin_cpu_supports("avx2");
  if (level == "v4") return known && __builtin_cpu_supports("avx512vbmi2");
#endif
  return known;
}

}  // namespace bench
