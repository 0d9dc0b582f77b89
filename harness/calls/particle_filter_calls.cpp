// Particle filters: whole particles kept, removed, filled and enclosed.
#include "harness/calls/calls.h"
#include "harness/calls/draws.h"
#include "harness/calls/elements.h"

namespace test {
namespace {

using namespace draw;

constexpr Leftovers OF_RESULT[] = {{-101, CALIBRATION | SIZE}};
constexpr Leftovers OF_FILL[] = {{-101, CALIBRATION | SIZE | PIXELS}};
// Where the source is copied, the border comes along if both are of one width.
constexpr Leftovers OF_COPY[] = {{-101, CALIBRATION | SIZE | PIXELS | BORDER}};

constexpr ApiCall ROWS[] = {
    {110, "ZEL_FillHole", Call<ZEL_FillHole, Source, Destination, Below<3>>, STATUS, OF_RESULT},
    {111, "ZEL_RejectBorder", Call<ZEL_RejectBorder, FramedSource, Destination, Below<3>>, STATUS,
     OF_RESULT},
    {112, "ZEL_LowHighPass",
     Call<ZEL_LowHighPass, FramedSource, FramedDestination, Below<3>, Below<2>, Int, Element>,
     STATUS, OF_COPY},
    {113, "ZEL_MagicWand",
     Call<ZEL_MagicWand, Source, FramedDestination, Int, Int, Float, Below<3>, Float>, STATUS,
     OF_FILL},
    {114, "ZEL_Convex", Call<ZEL_Convex, Source, FramedDestination>, STATUS, OF_RESULT},
};

}  // namespace

constinit const std::span<const ApiCall> PARTICLE_FILTER_CALLS{ROWS};

}  // namespace test
