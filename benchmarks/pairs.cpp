// The register of families, and the cases that their pairs come to.
#include "benchmarks/pairs.h"

#include <algorithm>
#include <regex>

namespace bench {
namespace {

std::vector<Family>& Register() {
  static std::vector<Family> families;
  return families;
}

}  // namespace

Registration::Registration(Family family) {
  std::vector<Family>& families = Register();
  const auto after =
      std::ranges::find_if(families, [&](const Family& other) { return other.name > family.name; });
  families.insert(after, std::move(family));
}

const std::vector<Family>& Families() {
  return Register();
}

std::string Case::Name() const {
  return family->name + "/" + pair->operation + "/" + NameOf(kind) + "/" + NameOf(size);
}

std::vector<Case> CasesFor(const std::string& filter, const std::vector<std::string>& sizes) {
  const std::regex wanted(filter);
  std::vector<Case> cases;
  for (const Family& family : Families()) {
    for (const Pair& pair : family.pairs) {
      for (const Kind kind : pair.kinds) {
        for (const Size size : pair.sizes) {
          const Case one = {&family, &pair, kind, size};
          if (!sizes.empty() && std::ranges::find(sizes, NameOf(size)) == sizes.end()) continue;
          if (std::regex_search(one.Name(), wanted)) cases.push_back(one);
        }
      }
    }
  }
  return cases;
}

}  // namespace bench
