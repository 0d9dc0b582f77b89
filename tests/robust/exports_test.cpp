// No export is forgotten: the list of exports, the public headers, the wild calls and the session
// of the fault tests name the same functions.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <string>

#include "harness/calls/calls.h"
#include "harness/session/whole_session.h"

namespace {

using Names = std::set<std::string>;

const std::filesystem::path INCLUDE_FOLDER = PTK_INCLUDE_FOLDER;

Names Listed() {
  Names names;
  std::ifstream list(INCLUDE_FOLDER / "exports.txt");
  for (std::string line; std::getline(list, line);) {
    if (line.starts_with("ZEL_")) names.insert(line);
  }
  return names;
}

std::string WithoutComments(std::string text) {
  for (size_t start = text.find("/*"); start != std::string::npos; start = text.find("/*")) {
    text.erase(start, text.find("*/", start) + 2 - start);
  }
  return text;
}

Names Declared() {
  static const std::regex function(R"(\bZEL_\w+(?=\())");
  Names names;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(INCLUDE_FOLDER)) {
    if (entry.path().extension() != ".h") continue;
    std::ifstream file(entry.path());
    const std::string text = WithoutComments({std::istreambuf_iterator<char>(file), {}});
    for (std::sregex_iterator match(text.begin(), text.end(), function), end; match != end; ++match)
      names.insert(match->str());
  }
  return names;
}

// What the session of the fault tests has no step for, and why it needs none.
const std::map<std::string, std::string> WITHOUT_STEP = {
    {"ZEL_malloc", "a refusal is its result, NULL, and no status"},
    {"ZEL_calloc", "as ZEL_malloc"},
    {"ZEL_realloc", "as ZEL_malloc"},
    {"ZEL_free", "only gives memory back"},
    {"ZEL_Dispose", "only gives memory back"},
    {"ZEL_FreeROI", "only gives memory back"},
    {"ZEL_CloseSys", "only gives memory back, and ends every session"},
    {"ZEL_ProcessError", "keeps a number and a name in place"},
    {"ZEL_GetLastError", "reads them"},
    {"ZEL_SetErrorMode", "keeps a number in place"},
    {"ZEL_GetErrorMode", "reads it"},
};

Names Stepped() {
  Names names;
  for (const test::Step& step : test::Steps()) names.insert(step.name);
  return names;
}

Names Without(const Names& names, const Names& others) {
  Names left;
  std::set_difference(names.begin(), names.end(), others.begin(), others.end(),
                      std::inserter(left, left.end()));
  return left;
}

TEST(Exports, AreDeclaredInThePublicHeadersAndNothingElseIs) {
  ASSERT_FALSE(Listed().empty());
  EXPECT_EQ(Without(Listed(), Declared()), Names{}) << "in exports.txt only";
  EXPECT_EQ(Without(Declared(), Listed()), Names{}) << "declared only";
}

TEST(Exports, HaveOneRowOfWildCallsEach) {
  Names rows;
  for (const test::ApiCall& call : test::ApiCalls()) {
    EXPECT_TRUE(rows.insert(call.name).second) << call.name << " has two rows";
  }
  EXPECT_EQ(Without(Listed(), rows), Names{}) << "without a row in harness/calls";
  EXPECT_EQ(Without(rows, Listed()), Names{}) << "rows of no export";
}

TEST(Exports, HaveCodesOfTheirOwn) {
  std::map<uint8_t, std::string> names;
  for (const test::ApiCall& call : test::ApiCalls()) {
    const auto [row, isNew] = names.emplace(call.code, call.name);
    EXPECT_TRUE(isNew) << "code " << int{call.code} << " names " << row->second << " and "
                       << call.name;
  }
}

TEST(Exports, HaveAStepOfTheFaultSessionOrAReasonForNone) {
  Names covered = Stepped();
  for (const auto& [name, reason] : WITHOUT_STEP) {
    EXPECT_FALSE(reason.empty());
    EXPECT_TRUE(covered.insert(name).second) << name << " has a step after all";
  }
  EXPECT_EQ(Without(Listed(), covered), Names{}) << "without a step in harness/session";
  EXPECT_EQ(Without(covered, Listed()), Names{}) << "steps of no export";
}

}  // namespace
