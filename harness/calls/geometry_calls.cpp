// Geometry: images turned, shifted, mirrored, transposed, seen in relief.
#include "harness/calls/calls.h"
#include "harness/calls/draws.h"

namespace test {
namespace {

using namespace draw;

int32_t SymmetryAnywhere(Playground& play) {
  return Below<16>(play) == 0 ? Below<256>(play) : Below<6>(play);
}

int32_t View3D(Playground& play) {
  const struct {
    ImageRef source, dest;
    int32_t reduction, maxHeight, direction;
  } a{Source(play), FramedDestination(play), Int(play), Int(play), Int(play)};
  const bool hasOptions = Below<4>(play) != 0;
  const View3DOptions options{Float(play), Float(play), Int(play), Int(play), Int(play)};
  return ZEL_3DView(a.source, a.dest, a.reduction, a.maxHeight, a.direction,
                    hasOptions ? &options : nullptr);
}

constexpr ApiCall ROWS[] = {
    {100, "ZEL_Rotate", Call<ZEL_Rotate, Source, FramedDestination, Float, Float, Below<2>>},
    {101, "ZEL_Shift", Call<ZEL_Shift, Source, FramedDestination, Int, Int, Float>},
    {102, "ZEL_Symmetry", Call<ZEL_Symmetry, Source, FramedDestination, SymmetryAnywhere>},
    {103, "ZEL_Transpose", Call<ZEL_Transpose, Source, FramedDestination>},
    {104, "ZEL_3DView", View3D},
};

}  // namespace

constinit const std::span<const ApiCall> GEOMETRY_CALLS{ROWS};

}  // namespace test
