// A program that is called for each picture with its verdict.
#pragma once

#include <string>

#include "orlune/recipe/picture_result.h"
#include "orlune/shared/clock.h"

namespace front {

struct VerdictCall {
  std::string program;  // sought as a shell seeks it; empty for none
  Seconds limit{10};    // what it may take; 0 is none
  std::string recipe;   // its name
};

// Calls it with the verdict and the file as its arguments, and waits for it; one that takes longer
// than it may is ended, with all that it has started. Gives why it did not do well; empty if it
// did.
std::string CallFor(const PictureResult& result, const VerdictCall& call);

}  // namespace front
