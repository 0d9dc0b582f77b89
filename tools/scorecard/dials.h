// Meters and displays of known values read, in noise and at low contrast.
#pragma once

#include <ostream>

namespace scorecard {

void PutDials(std::ostream& out);

}  // namespace scorecard
