// orlune measures: the list of the measures.
#include <iomanip>
#include <iostream>

#include "orlune/command/commands.h"

namespace front {
namespace {

void PrintMeasures(Maker maker) {
  for (const Measure& measure : AllMeasures()) {
    const bool own = measure.number >= LIBRARY_MEASURES;
    const bool listed = maker == Maker::Library ? !own : own && measure.maker == maker;
    if (!listed) continue;
    std::cout << "  " << std::left << std::setw(28) << measure.name << std::setw(7)
              << UnitText(measure.unit, "unit") << measure.meaning << std::right << '\n';
  }
}

}  // namespace

int ListMeasures() {
  std::cout << "  Name                        Unit   Meaning\n\n";
  PrintMeasures(Maker::Library);
  std::cout << "\nOf shapes and gray values:\n";
  PrintMeasures(Maker::Front);
  std::cout << "\nOnly by name, not among all:\n";
  PrintMeasures(Maker::LibraryByName);
  std::cout << "\nunit: that of --scale and --unit, or pixels without them. Lengths and areas in px"
               "\nand px2 are never scaled. docs/measures.md tells formulas and accuracy.\n";
  return ALL_WELL;
}

}  // namespace front
