// What all readings of pictures share: their reports, pictures with marks, and how they end.
#pragma once

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "orlune/command/commands.h"
#include "orlune/shared/output.h"

namespace front {

// Where lines for people go: beside a report on standard output, to standard error.
std::ostream& LinesOf(const ReadFiles& command);

// Null for no report. Throws WriteFailure.
std::unique_ptr<WholeFile> OpenReport(const std::string& path);

// What a reading reads and writes. Gives the names of the marked pictures, none where none are
// asked for. Throws std::invalid_argument as FilePlan.
std::vector<std::string> PlanReading(const ReadFiles& command, FilePlan* plan);

struct Stroke {
  int32_t x1, y1, x2, y2;
};

// The picture in gray with green lines, as BMP. Throws as WritePicture.
void WriteMarked(const Image& picture, const std::vector<Stroke>& strokes, const std::string& path);

// Runs a command and tells why it could not: BAD_USE for std::invalid_argument, else SOME_FAILED.
int RunTold(const std::function<int()>& command);

}  // namespace front
