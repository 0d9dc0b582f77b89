// Matches: shapes turned, scaled and mirrored, and others beside them.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "orlune/gauge/shape_matches.h"
#include "orlune/shared/output.h"

namespace {

using namespace front;  // NOLINT: these are its tests

// A hook, 45 by 37 pixels and mirrored or not, about its own origin.
bool InHook(Place p, bool mirrored) {
  const double y = mirrored ? -p.y : p.y;
  const bool inBar = std::abs(p.x) < 22.5 && y > -18.5 && y < -5.5;
  const bool inShank = p.x > -22.5 && p.x < -9.5 && std::abs(y) < 18.5;
  return inBar || inShank;
}

struct Laid {
  Pose pose;
  double scale = 1;
  bool mirrored = false, disc = false;
};

std::string PictureOf(const std::string& name, const std::vector<Laid>& shapes) {
  constexpr int32_t SIDE = 300;
  const Image image(IMAGE_U8, 0, SIDE, SIDE);
  const ImageInfo info = image.Info();
  for (int32_t y = 0; y < SIDE; y++) {
    for (int32_t x = 0; x < SIDE; x++) {
      bool inside = false;
      for (const Laid& shape : shapes) {
        const Place own = Carried({1.0 * x, 1.0 * y}, shape.pose, {});
        const Place unit = {own.x / shape.scale, own.y / shape.scale};
        inside |= shape.disc ? std::hypot(unit.x, unit.y) < 17 : InHook(unit, shape.mirrored);
      }
      Row<uint8_t>(info, y)[x] = inside ? 200 : 30;
    }
  }
  const std::string path = testing::TempDir() + name;
  WritePicture(image, {}, Depth::AsImage, path, PictureFormat::Bmp);
  return path;
}

Template Hook() {
  return ReadTemplate(PictureOf("hook.bmp", {{.pose = {{150, 150}, 0}}}), {});
}

TEST(Matches, AreFoundHoweverTheyLie) {
  const Template hook = Hook();
  const std::string tray = PictureOf("tray.bmp", {{.pose = {{60, 60}, 25}},
                                                  {.pose = {{200, 70}, -130}},
                                                  {.pose = {{70, 220}, 0}, .scale = 1.5},
                                                  {.pose = {{210, 210}, 0}, .disc = true}});
  const Matching same = FindMatches(tray, hook, {});
  ASSERT_EQ(same.matches.size(), 2u);
  EXPECT_EQ(same.inspection.particles.size(), 4u);
  for (const ShapeMatch& match : same.matches) {
    const bool first = match.at.x < 130;
    ASSERT_TRUE(match.degrees);
    EXPECT_TRUE(match.hasFront);
    EXPECT_NEAR(*match.degrees, first ? 25 : -130, 1.5);
    EXPECT_NEAR(match.scale, 1, 0.02);
    EXPECT_GT(match.score, 500);
    EXPECT_LE(match.score, 1000);
  }
  MatchSettings any;
  any.scales = Range{0.5, 2};
  const Matching scaled = FindMatches(tray, hook, any);
  ASSERT_EQ(scaled.matches.size(), 3u);
  EXPECT_NEAR(scaled.matches[2].scale, 1.5, 0.03);
  any.scales = Range{1.2, 2};
  EXPECT_EQ(FindMatches(tray, hook, any).matches.size(), 1u);
}

TEST(Matches, OfTheVeryShapeScoreThousand) {
  const Matching found =
      FindMatches(PictureOf("again.bmp", {{.pose = {{100, 120}, 0}}}), Hook(), {});
  ASSERT_EQ(found.matches.size(), 1u);
  EXPECT_NEAR(found.matches[0].score, 1000, 0.01);
  EXPECT_NEAR(*found.matches[0].degrees, 0, 1e-9);
}

TEST(Matches, MayBeMirrored) {
  const Matching found = FindMatches(
      PictureOf("mirrored.bmp", {{.pose = {{100, 120}, 40}, .mirrored = true}}), Hook(), {});
  EXPECT_EQ(found.matches.size(), 1u);
}

TEST(Matches, NeedATemplate) {
  EXPECT_THROW(ReadTemplate(PictureOf("empty.bmp", {}), {}), std::runtime_error);
  const Matching none = FindMatches(PictureOf("empty.bmp", {}), Hook(), {});
  EXPECT_TRUE(none.matches.empty());
  EXPECT_TRUE(none.inspection.particles.empty());
}

}  // namespace
