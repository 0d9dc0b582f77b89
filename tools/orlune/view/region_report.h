// What a person wants to know of a region of a picture at once: gray levels, objects, edges.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "orlune/inspect/inspection.h"

namespace front {

struct FreeRegion {
  void operator()(RoiDescriptor* roi) const { ZEL_FreeROI(roi); }
};
using WindowRegion = std::unique_ptr<RoiDescriptor, FreeRegion>;

// A picture that is looked at.
struct ViewedPicture {
  std::string path;
  Loaded loaded;               // its gray levels, and its colours where it has some
  Extremes extremes;           // of the gray levels
  std::optional<Image> bytes;  // the gray levels in 8 bits, where they have another depth

  const Image& Shown() const { return loaded.colours ? *loaded.colours : loaded.image; }
  const Image& Bytes() const { return bytes ? *bytes : loaded.image; }
};
// Throws as ReadPicture.
ViewedPicture ReadViewed(const std::string& path, bool swapBytes);

struct RegionReport {
  std::vector<std::string> lines;        // of text
  std::vector<float> profile;            // gray levels along a line; empty for an area
  std::vector<float> edges;              // places along it, in samples
  std::optional<Inspection> inspection;  // of an area
};

// Of a point, a line or chain, or an area. Throws LibraryFailure and as Inspect.
RegionReport ReportOn(const ViewedPicture& picture, const RoiDescriptor& roi,
                      const InspectSettings& settings);

// "rectangle 10,20 310,220", a line for each contour.
std::vector<std::string> RegionTexts(const RoiDescriptor& roi);

// The command that finds the same objects in the rectangle around the region.
std::string InspectCommandLine(const ViewedPicture& picture, const RoiDescriptor& roi,
                               const InspectSettings& settings);

// The outlines of a region as pixels other than 0 of an IMAGE_U8 as large as the picture; nothing
// of a whole picture.
Image OutlinesOf(const RoiDescriptor& roi, const Image& picture);

}  // namespace front
