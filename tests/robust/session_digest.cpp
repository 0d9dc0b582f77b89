// Prints numbers that stand for the results of each family of functions, and of the session that
// calls every export. They are the same for every processor, build, processor level and number of
// workers.
// usage: session_digest [FILE]   (of digests of families, which these have to be)
#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <iostream>

#include "harness/digest.h"
#include "harness/family_digests.h"
#include "harness/memory_files.h"
#include "harness/session/whole_session.h"

namespace {

uint64_t DigestOfSession() {
  test::Digest digest;
  test::WholeSession session;
  for (const test::Step& step : test::Steps()) {
    session.outputs = {};
    const int32_t status = step.run(session);
    if (status != 0) {
      std::cerr << step.name << " answered " << status << '\n';
      std::exit(1);
    }
    digest.Add(session.Digest());
  }
  ZEL_CloseSys();
  return digest.value();
}

}  // namespace

int main(int argc, char** argv) {
  ZEL_SetErrorMode(ERROR_MODE_SILENT);
  const test::MemoryFiles files;
  const std::vector<test::FamilyDigest> digests = test::DigestsOfFamilies(std::cerr);
  WriteDigests(digests, std::cout);
  std::cout << "session " << std::hex << DigestOfSession() << '\n';
  if (argc < 2) return 0;
  std::ifstream file(argv[1]);
  std::vector<test::FamilyDigest> expected;
  if (!test::ReadDigests(file, &expected)) {
    std::cerr << argv[1] << " is no file of digests\n";
    return 1;
  }
  const std::string family = FirstDifference(expected, digests);
  if (family.empty()) return 0;
  std::cerr << "the family " << family << " differs from " << argv[1] << '\n';
  return 1;
}
