// Objects made ready to be measured.
#include "orlune/inspect/refinement.h"

#include <algorithm>
#include <stdexcept>

#include "orlune/filter/element.h"
#include "orlune/inspect/labels.h"
#include "orlune/inspect/regions.h"
#include "orlune/shared/words.h"

namespace front {
namespace {

constexpr int32_t LARGEST_DISK = 999;

// A copy of a mask with another border.
Image Copied(const Image& mask, int32_t border) {
  Image copy(IMAGE_U8, border);
  Check(ZEL_Threshold(mask, copy, 1, 255, 1, 1));
  return copy;
}

// The library wants a border that the disk fits into; the result has the mask's own.
Image Changed(const Image& mask, MorphologyOperation operation, int32_t disk) {
  const Element element(disk, disk, DISK);
  const int32_t border = mask.Info().border;
  const Image source = Copied(mask, std::max(border, ElementBorder(disk, disk)));
  Image changed(IMAGE_U8, border);
  Check(ZEL_Morphology(source, changed, operation, element.record()));
  // A set pixel that stays set has its value, 1.
  return changed;
}

void CopyRows(const Image& from, int32_t fromMargin, const Image& to, int32_t toMargin) {
  const ImageInfo source = from.Info(), target = to.Info();
  const int32_t width = std::min(source.width, target.width);
  const int32_t height = std::min(source.height, target.height);
  for (int32_t y = 0; y < height; ++y) {
    const uint8_t* row = Row<uint8_t>(source, y + fromMargin) + fromMargin;
    std::copy(row, row + width, Row<uint8_t>(target, y + toMargin) + toMargin);
  }
}

// With background around the picture: else objects that the disk takes to the edge would stay
// there.
Image Closed(const Image& mask, int32_t disk) {
  const ImageInfo info = mask.Info();
  Image wide(IMAGE_U8, 0, info.width + 2 * disk, info.height + 2 * disk);
  Check(ZEL_ClearPixels(wide));
  CopyRows(mask, 0, wide, disk);
  wide = Changed(wide, MORPHOLOGY_CLOSE, disk);
  Image closed = Copied(mask, info.border);  // for its size and calibration
  CopyRows(wide, disk, closed, 0);
  return closed;
}

// ------------------------------------------------------------------------------ taking apart

struct Box {
  int32_t left = INT32_MAX, top = INT32_MAX, right = 0, bottom = 0;  // ends are one past the last

  void Add(const PixelRun& run) {
    left = std::min(left, run.start);
    right = std::max(right, run.end);
    top = std::min(top, run.y);
    bottom = std::max(bottom, run.y + 1);
  }
};

// A particle, and the cores that wide disks find in it.
struct Cluster {
  Box box;
  std::vector<PixelRun> runs, coreRuns;
  std::vector<uint32_t> cores;  // their labels, ascending
};

// By label - 1.
std::vector<Cluster> ClustersOf(const Labels& particles, const Labels& cores) {
  const LabelPicture picture(particles);
  std::vector<Cluster> clusters(particles.count);
  for (const PixelRun& run : particles.runs) {
    clusters[run.label - 1].box.Add(run);
    clusters[run.label - 1].runs.push_back(run);
  }
  for (const PixelRun& run : cores.runs) {
    Cluster& cluster = clusters[picture.Row(run.y)[run.start] - 1];
    cluster.coreRuns.push_back(run);
    cluster.cores.push_back(run.label);
  }
  for (Cluster& cluster : clusters) {
    std::vector<uint32_t>& labels = cluster.cores;
    std::sort(labels.begin(), labels.end());
    labels.erase(std::unique(labels.begin(), labels.end()), labels.end());
  }
  return clusters;
}

// Each core grows until it meets the others, in a picture of this cluster alone, so that no other
// particle's core grows into it; pixels that have one of a higher number beside them are cleared.
void Cut(const Cluster& cluster, const Image& mask) {
  const Box& box = cluster.box;
  Image zones(IMAGE_I16, 1, box.right - box.left, box.bottom - box.top);
  Check(ZEL_ClearPixels(zones));
  for (const PixelRun& run : cluster.coreRuns) {
    const auto core = std::lower_bound(cluster.cores.begin(), cluster.cores.end(), run.label);
    auto* row = Row<int16_t>(zones.Info(), run.y - box.top);
    std::fill(row + (run.start - box.left), row + (run.end - box.left),
              static_cast<int16_t>(core - cluster.cores.begin() + 1));
  }
  Check(ZEL_Segmentation(zones, 0));
  const Image highest(IMAGE_I16);
  Check(ZEL_GrayMorphology(zones, highest, MORPHOLOGY_DILATE, ZEL_Get_MO_STD3X3Ptr()));

  const ImageInfo to = mask.Info(), own = zones.Info(), around = highest.Info();
  for (const PixelRun& run : cluster.runs) {
    uint8_t* row = Row<uint8_t>(to, run.y);
    const auto* zone = Row<int16_t>(own, run.y - box.top);
    const auto* higher = Row<int16_t>(around, run.y - box.top);
    for (int32_t x = run.start; x < run.end; ++x) {
      if (higher[x - box.left] > zone[x - box.left]) row[x] = 0;
    }
  }
}

// Of the parts that an eroding disk leaves, those that hold a wider one as well: what is left of a
// bar that is hardly wider than the disk falls into pieces, which are no parts.
Labels CoresOf(const Image& mask, int32_t disk, bool eightConnected) {
  const int32_t wider = disk + 2 * std::max(1, (disk + 5) / 10);
  const Labels labels = LabelRuns(Changed(mask, MORPHOLOGY_ERODE, disk), eightConnected);
  const Image seeds = Changed(mask, MORPHOLOGY_ERODE, wider);
  std::vector<bool> held(labels.count + 1);
  for (const PixelRun& run : labels.runs) {
    const uint8_t* row = Row<uint8_t>(seeds.Info(), run.y);
    if (std::find(row + run.start, row + run.end, 1) != row + run.end) held[run.label] = true;
  }
  Labels cores = labels;
  std::erase_if(cores.runs, [&](const PixelRun& run) { return !held[run.label]; });
  return cores;
}

// Thin necks first: thin parts are cut off as long as the disks fit into them.
void Separate(int32_t widest, bool eightConnected, const Image& mask) {
  for (int32_t disk = 3; disk <= widest; disk += 2) {
    const Labels cores = CoresOf(mask, disk, eightConnected);
    if (cores.runs.empty()) return;
    for (const Cluster& cluster : ClustersOf(LabelRuns(mask, eightConnected), cores)) {
      if (cluster.cores.size() < 2) continue;
      if (cluster.cores.size() > INT16_MAX) {
        throw std::runtime_error("a particle has more than 32767 necks of " + std::to_string(disk) +
                                 " pixels");
      }
      Cut(cluster, mask);
    }
  }
}

// Outside of the place all is set for a moment, so that what touches it touches the edge.
void RejectBorder(bool eightConnected, const Image* place, const Image& mask) {
  const ImageInfo info = mask.Info();
  const auto setOutside = [&] {
    const ImageInfo where = place->Info();
    for (int32_t y = 0; y < info.height; ++y) {
      uint8_t* row = Row<uint8_t>(info, y);
      const uint8_t* marked = Row<uint8_t>(where, y);
      std::transform(row, row + info.width, marked, row,
                     [](uint8_t value, uint8_t here) { return here != 0 ? value : uint8_t{1}; });
    }
  };
  if (place != nullptr) setOutside();
  Check(ZEL_RejectBorder(mask, 0, eightConnected ? CONNECTIVITY_8 : CONNECTIVITY_4));
  if (place != nullptr) KeepAt(*place, mask);
}

}  // namespace

int32_t ParseDisk(std::string_view text) {
  const double number = ParseNumber(text);
  const auto size = static_cast<int32_t>(std::clamp(number, 0.0, 1e6));
  if (number != size || size % 2 == 0 || size < 3 || size > LARGEST_DISK) {
    throw std::invalid_argument("the size is an odd number of pixels, 3 to " +
                                std::to_string(LARGEST_DISK) + ", not " + Quoted(text));
  }
  return size;
}

std::vector<std::string> NamesOf(const Refinement& refinement) {
  std::vector<std::string> names;
  const auto add = [&](const char* name, int32_t disk) {
    if (disk > 0) names.push_back(std::string(name) + " " + std::to_string(disk));
  };
  add("open", refinement.open);
  add("close", refinement.close);
  if (refinement.fillHoles) names.emplace_back("fill-holes");
  add("separate", refinement.separate);
  if (refinement.rejectBorder) names.emplace_back("reject-border");
  return names;
}

void Refine(const Refinement& refinement, bool eightConnected, const Image* place, Image* mask) {
  const ImageInfo info = mask->Info();
  if (info.width == 0 || info.height == 0) return;
  if (refinement.open > 0) *mask = Changed(*mask, MORPHOLOGY_OPEN, refinement.open);
  if (refinement.close > 0) {
    *mask = Closed(*mask, refinement.close);
    if (place != nullptr) KeepAt(*place, *mask);
  }
  if (refinement.fillHoles) {
    Check(ZEL_FillHole(*mask, 0, eightConnected ? CONNECTIVITY_8 : CONNECTIVITY_4));
    if (place != nullptr) KeepAt(*place, *mask);
  }
  if (refinement.separate > 0) Separate(refinement.separate, eightConnected, *mask);
  if (refinement.rejectBorder) RejectBorder(eightConnected, place, *mask);
}

}  // namespace front
