// Objects made ready to be measured: smoothed, filled, taken apart, and those at the edge left out.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "orlune/shared/pictures.h"

namespace front {

// What is done to the objects, in this order. Sizes are odd numbers of pixels across a disk; 0 is
// not at all.
struct Refinement {
  int32_t open = 0;   // what is thinner than the disk is taken away
  int32_t close = 0;  // gaps and holes that are thinner are filled
  bool fillHoles = false;
  int32_t separate = 0;       // particles that only thinner necks join are cut apart
  bool rejectBorder = false;  // particles that touch the edge of what is looked at are left out
};

// "5": the size of a disk, an odd number of pixels. Throws std::invalid_argument.
int32_t ParseDisk(std::string_view text);

// As options without their dashes: "open 5", "fill-holes".
std::vector<std::string> NamesOf(const Refinement& refinement);

// Refines the objects of a mask, an IMAGE_U8 of 0 and 1. With a place they stay where it is not 0,
// and its edge counts as the edge. Throws LibraryFailure.
void Refine(const Refinement& refinement, bool eightConnected, const Image* place, Image* mask);

}  // namespace front
