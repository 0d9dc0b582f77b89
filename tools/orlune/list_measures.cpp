// orlune measures: the list of the 50 measures.
#include <iomanip>
#include <iostream>

#include "orlune/commands.h"

namespace front {

int ListMeasures() {
  std::cout << "No  Name                        Unit   Meaning\n";
  for (const Measure& measure : AllMeasures()) {
    std::cout << std::setw(2) << measure.number << "  " << std::left << std::setw(28)
              << measure.name << std::setw(7) << UnitText(measure.unit, "unit") << measure.meaning
              << std::right << '\n';
  }
  std::cout << "\nunit: that of --scale and --unit, or pixels without them. Lengths and areas in px"
               "\nand px2 are never scaled.\n";
  return 0;
}

}  // namespace front
