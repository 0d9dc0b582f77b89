// Shapes: distance maps, circles, skeletons, zones, touching particles.
#include "harness/calls/calls.h"
#include "harness/calls/draws.h"
#include "harness/calls/elements.h"

namespace test {
namespace {

using namespace draw;

CircleReport** Circles(Playground& play) {
  return play.CircleReports();
}

constexpr Leftovers OF_CIRCLES[] = {{ANY_FAILURE, OUTPUTS}, {-101, CALIBRATION | SIZE}};
constexpr Leftovers OF_RESULT[] = {{-101, CALIBRATION | SIZE}};
// Where the source is copied, the border comes along if both are of one width.
constexpr Leftovers OF_COPY[] = {{-101, CALIBRATION | SIZE | PIXELS | BORDER}};

constexpr ApiCall ROWS[] = {
    {160, "ZEL_Danielsson", Call<ZEL_Danielsson, Source, Destination>},
    {161, "ZEL_Distance", Call<ZEL_Distance, Source, FramedDestination, Element>, STATUS, OF_COPY},
    {162, "ZEL_Circles",
     Call<ZEL_Circles, Source, Destination, Float, Float, Circles, Output<int32_t>>, STATUS,
     OF_CIRCLES},
    {163, "ZEL_Skeleton", Call<ZEL_Skeleton, FramedSource, FramedDestination, Below<4>>, STATUS,
     OF_COPY},
    {164, "ZEL_Segmentation", Call<ZEL_Segmentation, FramedSource, FramedDestination>, STATUS,
     OF_COPY},
    {165, "ZEL_Separation", Call<ZEL_Separation, FramedSource, Destination, Int, Element>, STATUS,
     OF_RESULT},
};

}  // namespace

constinit const std::span<const ApiCall> SHAPE_CALLS{ROWS};

}  // namespace test
