// What a build computes, as a number for each family of functions: the script's steps, the family's
// sweep over types and sizes, and calls on images that are large enough for all workers. The same
// for every processor, compiler, processor level and number of workers. Needs the exports alone.
#pragma once

#include <cstdint>
#include <istream>
#include <ostream>
#include <string>
#include <vector>

namespace test {

struct FamilyDigest {
  std::string family;
  uint64_t digest;
};

// Closes the library when it is done. Steps that fail are named on `complaints`: they should not.
// Files are written to the current folder.
std::vector<FamilyDigest> DigestsOfFamilies(std::ostream& complaints);

// A line for each family; what a line's '#' begins is a comment.
void WriteDigests(const std::vector<FamilyDigest>& digests, std::ostream& out);
// False for what is no list of digests.
bool ReadDigests(std::istream& in, std::vector<FamilyDigest>* digests);

// The first family that is not the same in both, or that one of them lacks; empty where there is
// none.
std::string FirstDifference(const std::vector<FamilyDigest>& expected,
                            const std::vector<FamilyDigest>& actual);

}  // namespace test
