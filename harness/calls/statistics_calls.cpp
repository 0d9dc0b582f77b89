// Histogram, quantification, centroid and profile.
#include "harness/calls/calls.h"
#include "harness/calls/draws.h"

namespace test {
namespace {

using namespace draw;

int32_t Histogram(Playground& play) {
  const struct {
    ImageRef image, mask;
    int32_t classes;
    float low, high;
  } a{Source(play), Source(play), Int(play), Float(play), Float(play)};
  // The call limits the number of classes.
  const int32_t most = play.ShapeOf(a.image).type == IMAGE_U8 ? 256 : 4096;
  const struct {
    uint32_t* histogram;
    HistogramReport* report;
  } out{play.OutputOf<uint32_t>(Held(std::min(a.classes, most))), Output<HistogramReport>(play)};
  return ZEL_Histogram(a.image, a.mask, a.classes, a.low, a.high, out.histogram, out.report);
}

QuantifyReport** Regions(Playground& play) {
  return Below<8>(play) == 0 ? nullptr : play.RegionReports();
}

int32_t LineProfile(Playground& play) {
  const struct {
    ImageRef image;
    Line line;
    int32_t type;
  } a{Source(play), LineAnywhere(play), ArrayType(play)};
  const struct {
    void* profile;
    int32_t* count;
    LineProfileReport* report;
  } out{OutputOfType(play, a.type, PointsOf(a.line, play.ShapeOf(a.image))), Output<int32_t>(play),
        Output<LineProfileReport>(play)};
  return ZEL_LineProfile(a.image, a.line.x1, a.line.y1, a.line.x2, a.line.y2, a.type, out.profile,
                         out.count, out.report);
}

constexpr Leftovers OF_COUNTS[] = {{ANY_FAILURE, OUTPUTS}};

constexpr ApiCall ROWS[] = {
    {52, "ZEL_Histogram", Histogram},
    {53, "ZEL_Quantify",
     Call<ZEL_Quantify, Source, Source, Output<QuantifyReport>, Regions, Output<int32_t>>, STATUS,
     OF_COUNTS},
    {54, "ZEL_Centroid", Call<ZEL_Centroid, Source, Source, Output<float>, Output<float>>},
    {55, "ZEL_LineProfile", LineProfile},
};

}  // namespace

constinit const std::span<const ApiCall> STATISTICS_CALLS{ROWS};

}  // namespace test
