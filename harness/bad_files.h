// Broken, wild and odd image files, made one fault at a time, for the tests and as fuzz seeds.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "harness/file_bytes.h"

namespace bad_files {

constexpr int32_t ANY_STATUS = -1;

struct Info {
  int32_t type = 0, bits = 0, planes = 0, width = 0, height = 0;
  bool isPromised = true;
};
constexpr Info NOT_UNDERSTOOD = {};
constexpr Info NO_PROMISE = {0, 0, 0, 0, 0, false};

struct Case {
  std::string name;
  test::Bytes file;
  int32_t status;  // of a read
  Info info;
  bool wantsTable = false;
};

std::vector<Case> AllCases();

// Valid files, a few of each format, to make changes to.
std::vector<test::Bytes> GoodFiles();

// A bitmap whose size field says how long it is: any other is not recognised.
test::Bytes BmpSized(test::Bytes file);

}  // namespace bad_files
