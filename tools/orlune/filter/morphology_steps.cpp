// The steps of morphology. The library's calls know no masks: results are put under one here.
#include "orlune/filter/morphology_steps.h"

#include <utility>

#include "orlune/filter/element.h"
#include "orlune/inspect/masking.h"

namespace front {
namespace {

using Kind = Parameter::Kind;

constexpr double LARGEST_SIDE = 1000;

using Export = int32_t (*)(ImageRef, ImageRef, int32_t, const StructuringElement*);

template <Export call, MorphologyOperation operation>
int32_t ApplyMorphology(ImageRef image, ImageRef mask, const Arguments& arguments) {
  const Window& window = arguments[0].window;
  const Element element(window.width, window.height,
                        static_cast<ElementShape>(arguments[1].Whole()));
  return UnderMask(image, mask, [&] { return call(image, 0, operation, element.record()); });
}

template <Export call, MorphologyOperation operation>
Step StepOf(std::string_view name, std::string_view meaning) {
  return {
      .name = name,
      .parameters = {{.name = "SIZE", .kind = Kind::Window, .low = 1, .high = LARGEST_SIDE},
                     {.name = "SHAPE",
                      .kind = Kind::Choice,
                      .choices = {{"rectangle", RECTANGLE}, {"disk", DISK}, {"hexagon", HEXAGON}},
                      .optional = true}},
      .meaning = meaning,
      .border =
          [](const Arguments& a) { return ElementBorder(a[0].window.width, a[0].window.height); },
      .apply = ApplyMorphology<call, operation>};
}

template <MorphologyOperation operation>
Step Gray(std::string_view name, std::string_view meaning) {
  return StepOf<ZEL_GrayMorphology, operation>(name, meaning);
}
template <MorphologyOperation operation>
Step Binary(std::string_view name, std::string_view meaning) {
  return StepOf<ZEL_Morphology, operation>(name, meaning);
}

// Particles are white on black, in pictures of bytes.
int32_t Whiten(ImageRef image, int32_t status) {
  return status != 0 ? status : ZEL_Threshold(image, 0, 1, 255, 255, 1);
}

// A step for pictures of particles.
template <int32_t (*call)(ImageRef image, const Arguments& arguments)>
Step Particles(std::string_view name, std::string_view meaning,
               std::vector<Parameter> parameters = {}) {
  return {.name = name,
          .parameters = std::move(parameters),
          .meaning = meaning,
          .border = [](const Arguments&) { return 1; },
          .apply =
              [](ImageRef image, ImageRef mask, const Arguments& arguments) {
                return UnderMask(image, mask, [&] { return call(image, arguments); });
              }};
}

int32_t Distance(ImageRef image, const Arguments&) {
  return ZEL_Danielsson(image, 0);
}

int32_t FillHoles(ImageRef image, const Arguments&) {
  const int32_t status = Whiten(image, 0);
  return Whiten(image, status != 0 ? status : ZEL_FillHole(image, 0, CONNECTIVITY_8));
}

int32_t RejectBorder(ImageRef image, const Arguments&) {
  return ZEL_RejectBorder(image, 0, CONNECTIVITY_8);
}

int32_t Skeleton(ImageRef image, const Arguments& arguments) {
  return Whiten(image, ZEL_Skeleton(image, 0, arguments[0].Whole()));
}

Parameter SkeletonTypes() {
  return {.name = "TYPE",
          .kind = Kind::Choice,
          .choices = {{"lines", SKELETON_SET_A},
                      {"fewer", SKELETON_SET_B},
                      {"zones", SKELETON_INFLUENCE_ZONES}},
          .optional = true};
}

}  // namespace

std::vector<Step> MorphologySteps() {
  return {
      Gray<MORPHOLOGY_AUTO_MEDIAN>("automedian", "without light and dark spots smaller than SHAPE"),
      Gray<MORPHOLOGY_CLOSE>("close", "dilated, then eroded: dark gaps are filled"),
      Gray<MORPHOLOGY_DILATE>("dilate", "the lightest pixel of SHAPE: what is light grows"),
      Particles<Distance>("distance", "how far what is not 0 is from the next 0 (u8)"),
      Gray<MORPHOLOGY_ERODE>("erode", "the darkest pixel of SHAPE: what is light shrinks"),
      Particles<FillHoles>("fillholes", "all that is not 0 and its holes, white (u8)"),
      Binary<MORPHOLOGY_GRADIENT>("gradient", "dilated less eroded, of what is not 0 (u8)"),
      Binary<MORPHOLOGY_INNER_GRADIENT>("inneredge", "what eroding takes from all not 0 (u8)"),
      Gray<MORPHOLOGY_OPEN>("open", "eroded, then dilated: light spots are removed"),
      Binary<MORPHOLOGY_OUTER_GRADIENT>("outeredge", "what dilating adds to all not 0 (u8)"),
      Gray<MORPHOLOGY_PROPER_CLOSE>("properclose", "dark gaps are filled, shapes kept"),
      Gray<MORPHOLOGY_PROPER_OPEN>("properopen", "light spots are removed, shapes kept"),
      Particles<RejectBorder>("rejectborder", "particles that do not touch the edge (u8)"),
      Particles<Skeleton>("skeleton", "particles thinned, or lines between them, white (u8)",
                          {SkeletonTypes()}),
  };
}

}  // namespace front
