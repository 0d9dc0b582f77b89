// What recipes found, for people and for programs. Nothing in these texts depends on when or where
// a picture was worked on, so that runs can be compared.
#pragma once

#include <ostream>
#include <string>

#include "orlune/recipe/picture_result.h"
#include "orlune/recipe/recipe.h"

namespace front {

// Pictures of a run by their verdicts.
struct RunCounts {
  size_t passed = 0, failed = 0, errors = 0;

  void Add(Verdict verdict);
  size_t All() const { return passed + failed + errors; }
};

// "FILE: passed" with a line for each step that found something.
void PrintVerdict(std::ostream& out, const PictureResult& result);  // the first line alone
void PrintResult(std::ostream& out, const PictureResult& result);

// A line for each picture, with an empty step, and one for each value.
std::string RunCsvHead();
std::string CsvRows(const PictureResult& result);

// One line, with its end.
std::string JsonLine(const PictureResult& result);

// One file with all that it shows, thumbnails included.
std::string HtmlHead(const Recipe& recipe);
std::string HtmlOf(const PictureResult& result);
std::string HtmlEnd(const RunCounts& counts, bool whole);

}  // namespace front
