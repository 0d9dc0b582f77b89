// Whole inspections through exported functions, on scenes whose contents are known.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <vector>

#include "orlune_ptk.h"
#include "scenes/scenes.h"

namespace {

using scenes::Scene;
using scenes::Truth;

constexpr int32_t BORDER = 2;  // what 8-connected particles need
constexpr float SMALLEST_PART = 200;

// A scene is rendered once for all tests.
struct Shot {
  Scene scene;
  scenes::Picture picture;
  std::vector<Truth> truth;
};

const Shot& ShotOf(const std::string& name) {
  static const std::vector<Shot> shots = [] {
    std::vector<Shot> all;
    for (Scene& scene : scenes::AllScenes()) {
      scenes::Picture picture = Render(scene.setup, scene.parts);
      std::vector<Truth> truth = TruthOf(scene.setup, scene.parts);
      all.push_back({std::move(scene), std::move(picture), std::move(truth)});
    }
    return all;
  }();
  for (const Shot& shot : shots) {
    if (shot.scene.name == name) return shot;
  }
  throw std::invalid_argument(name);
}

class Image {
 public:
  explicit Image(int16_t type, int32_t border = BORDER) {
    EXPECT_EQ(ZEL_Create(&reference_, type, border), 0);
  }
  Image(const Image&) = delete;
  Image& operator=(const Image&) = delete;
  ~Image() { EXPECT_EQ(ZEL_Dispose(reference_), 0); }
  operator ImageRef() const { return reference_; }  // NOLINT: an image is its reference in calls

 private:
  ImageRef reference_ = 0;
};

void Load(const scenes::Picture& picture, const Image& image) {
  ASSERT_EQ(
      ZEL_ArrayToImage(image, ARRAY_U16, picture.pixels.data(), picture.width, picture.height), 0);
}

std::vector<int32_t> PixelsOf(const Image& image, int32_t width, int32_t height) {
  std::vector<int32_t> pixels(static_cast<size_t>(width) * static_cast<size_t>(height));
  int32_t columns = 0, rows = 0;
  EXPECT_EQ(ZEL_ImageToArray(image, 0, 0, height, width, ARRAY_I32, pixels.data(), &columns, &rows),
            0);
  EXPECT_EQ(columns, width);
  EXPECT_EQ(rows, height);
  return pixels;
}

std::vector<ParticleReport> ParticlesOf(const Image& mask, uint16_t connectivity8 = 1) {
  ParticleReport* block = nullptr;
  int32_t count = -1;
  EXPECT_EQ(ZEL_Particle(mask, connectivity8, &block, &count), 0);
  std::vector<ParticleReport> reports(block, block + std::max(count, 0));
  ZEL_free(block);
  return reports;
}

// Specks of noise are not parts: the discrimination leaves them out, as a user would.
std::vector<ParticleReport> PartsOf(const Image& mask, uint16_t connectivity8 = 1) {
  std::vector<ParticleReport> reports = ParticlesOf(mask, connectivity8);
  const ParticleCriterion large{MEASURE_AREA_PIXELS, SMALLEST_PART, 1e9f};
  int32_t kept = -1;
  EXPECT_EQ(ZEL_ParticleDiscrim(mask, &large, 1, reports.data(),
                                static_cast<int32_t>(reports.size()), &kept),
            0);
  reports.resize(static_cast<size_t>(std::max(kept, 0)));
  return reports;
}

// Every true group is found once, with its holes and its area. The lens blurs edges with a
// deviation of at most 1 pixel; a boundary at a third or more of the step between background and
// part on either side then lies within half a pixel of the true edge, which is half of the
// perimeter in area.
void ExpectTruth(const std::vector<ParticleReport>& parts, const std::vector<Truth>& truth) {
  ASSERT_EQ(parts.size(), truth.size());
  for (const Truth& group : truth) {
    int found = 0;
    for (const ParticleReport& part : parts) {
      const double dx = static_cast<double>(part.sumX) / part.area - group.centre.x;
      const double dy = static_cast<double>(part.sumY) / part.area - group.centre.y;
      if (std::hypot(dx, dy) > 1.5) continue;
      ++found;
      EXPECT_NEAR(part.area, group.area, 0.5 * group.perimeter);
      EXPECT_EQ(part.nbHoles, group.holes);
    }
    EXPECT_EQ(found, 1) << "near " << group.centre.x << ", " << group.centre.y;
  }
}

// 1 for the scene's objects, 0 for its background.
void Segment(const Shot& shot, const Image& image, int32_t method) {
  int32_t threshold = -1;
  ASSERT_EQ(ZEL_AutoBThreshold(image, method, ARRAY_U8, nullptr, &threshold), 0);
  const auto level = static_cast<float>(threshold);
  const bool dark = shot.scene.darkParts;
  ASSERT_EQ(ZEL_Threshold(image, 0, dark ? 0 : level, dark ? level - 1 : 255, 1, 1), 0);
}

struct Case {
  const char* scene;
  AutoBMethod method;
};

class EightBitScenes : public testing::TestWithParam<Case> {};

TEST_P(EightBitScenes, AreCountedExactlyAndMeasuredToHalfAPixel) {
  const Shot& shot = ShotOf(GetParam().scene);
  const Image image(IMAGE_U8);
  Load(shot.picture, image);
  Segment(shot, image, GetParam().method);
  ExpectTruth(PartsOf(image), shot.truth);
  ExpectTruth(PartsOf(image, 0), shot.truth);
}

INSTANTIATE_TEST_SUITE_P(
    Journeys, EightBitScenes,
    testing::Values(Case{"washers", AUTOB_CLUSTERING}, Case{"washers", AUTOB_METRIC},
                    Case{"washers", AUTOB_INTERCLASS}, Case{"pins", AUTOB_CLUSTERING},
                    Case{"pins", AUTOB_METRIC}, Case{"pins", AUTOB_MOMENTS},
                    Case{"pins", AUTOB_INTERCLASS}, Case{"mixed", AUTOB_CLUSTERING},
                    Case{"mixed", AUTOB_METRIC}, Case{"mixed", AUTOB_INTERCLASS}),
    [](const auto& suite) {
      return std::string(suite.param.scene) + "_" + std::to_string(suite.param.method);
    });

// The entropy method puts the boundary low, just above the background: outlines grow, and specks
// come up, but no part is lost, joined or split.
TEST(EightBitScenesByEntropy, AreCountedExactlyOnceSpecksAreLeftOut) {
  for (const char* name : {"pins", "mixed"}) {
    const Shot& shot = ShotOf(name);
    const Image image(IMAGE_U8);
    Load(shot.picture, image);
    Segment(shot, image, AUTOB_ENTROPY);
    EXPECT_EQ(PartsOf(image).size(), shot.truth.size()) << name;
  }
}

TEST(SixteenBitScene, IsCountedExactlyByAGivenRange) {
  const Shot& shot = ShotOf("chips");
  const Image image(IMAGE_I16);
  Load(shot.picture, image);
  ASSERT_EQ(ZEL_Threshold(image, 0, 1500, 4095, 1, 1), 0);
  ASSERT_EQ(ZEL_Cast(image, IMAGE_U8), 0);
  ExpectTruth(PartsOf(image), shot.truth);
}

TEST(SixteenBitScene, IsCountedExactlyAfterAReductionTo8Bits) {
  const Shot& shot = ShotOf("chips");
  const Image deep(IMAGE_I16), image(IMAGE_U8);
  Load(shot.picture, deep);
  ASSERT_EQ(ZEL_Shift16To8(deep, image, 4), 0);  // 12 bits
  Segment(shot, image, AUTOB_CLUSTERING);
  ExpectTruth(PartsOf(image), shot.truth);
}

TEST(SixteenBitScene, IsCountedExactlyAsFloats) {
  const Shot& shot = ShotOf("chips");
  const Image deep(IMAGE_I16), image(IMAGE_SGL);
  Load(shot.picture, deep);
  ASSERT_EQ(ZEL_Convert(deep, image), 0);
  ASSERT_EQ(ZEL_Threshold(image, 0, 1500.5f, 4095, 1, 1), 0);
  ASSERT_EQ(ZEL_Cast(image, IMAGE_U8), 0);
  ExpectTruth(PartsOf(image), shot.truth);
}

TEST(Labels, ReportsAndMeasuresTellOfTheSameParticles) {
  const Shot& shot = ShotOf("mixed");
  const Image image(IMAGE_U8), labels(IMAGE_I16);
  Load(shot.picture, image);
  Segment(shot, image, AUTOB_CLUSTERING);

  int32_t labelled = -1;
  ASSERT_EQ(ZEL_Label(image, labels, 1, &labelled), 0);
  BasicParticleReport* basic = nullptr;
  int32_t counted = -1;
  ASSERT_EQ(ZEL_BasicParticle(image, 1, &basic, &counted), 0);
  std::vector<ParticleReport> particles = ParticlesOf(image);
  ASSERT_EQ(labelled, counted);
  ASSERT_EQ(static_cast<size_t>(labelled), particles.size());

  std::vector<int32_t> pixels(particles.size() + 1, 0);
  for (const int32_t label : PixelsOf(labels, shot.picture.width, shot.picture.height)) {
    ASSERT_GE(label, 0);
    ASSERT_LE(label, labelled);
    ++pixels[static_cast<size_t>(label)];
  }
  const uint32_t measures[] = {MEASURE_AREA_PIXELS, MEASURE_LEFT, MEASURE_BOTTOM,
                               MEASURE_WADDEL_DIAMETER};
  std::vector<float> values(particles.size() * 4);
  ASSERT_EQ(ZEL_ParticleCoeffs(image, measures, 4, particles.data(), labelled, values.data()), 0);
  for (size_t i = 0; i < particles.size(); ++i) {
    const ParticleReport& particle = particles[i];
    EXPECT_EQ(particle.area, pixels[i + 1]);
    EXPECT_EQ(particle.area, basic[i].area);
    EXPECT_EQ(std::memcmp(&particle.rect, &basic[i].rect, sizeof(ApiRect)), 0);
    const float* measured = &values[i * 4];
    EXPECT_EQ(measured[0], static_cast<float>(particle.area));
    EXPECT_EQ(measured[1], static_cast<float>(particle.rect.left));
    EXPECT_EQ(measured[2], static_cast<float>(particle.rect.top + particle.rect.height));
    EXPECT_NEAR(measured[3], 2 * std::sqrt(particle.area / 3.14159265), 1e-3);
  }
  ZEL_free(basic);
}

TEST(Calibration, ScalesAreasFromTheImageToTheMeasures) {
  const Shot& shot = ShotOf("washers");
  const Image image(IMAGE_U8);
  Load(shot.picture, image);
  Segment(shot, image, AUTOB_CLUSTERING);
  const std::vector<ParticleReport> plain = PartsOf(image);
  ASSERT_EQ(ZEL_SetImageCalibration(image, 3, 0.05f, 0.05f), 0);
  const std::vector<ParticleReport> scaled = PartsOf(image);
  ASSERT_EQ(plain.size(), scaled.size());
  for (size_t i = 0; i < plain.size(); ++i) {
    EXPECT_EQ(plain[i].area, scaled[i].area);
    EXPECT_NEAR(scaled[i].calibratedArea, plain[i].area * 0.0025, 1e-3);
    EXPECT_NEAR(scaled[i].perimeter, plain[i].perimeter * 0.05f, 1e-2);
  }
}

TEST(Masks, KeepTheLevelsOfOnePartAlone) {
  const Shot& shot = ShotOf("mixed");
  const Image image(IMAGE_U8), objects(IMAGE_U8), labels(IMAGE_U8), levels(IMAGE_U8);
  Load(shot.picture, image);
  ASSERT_EQ(ZEL_Threshold(image, objects, 100, 255, 1, 1), 0);
  int32_t count = 0;
  ASSERT_EQ(ZEL_Label(objects, labels, 1, &count), 0);
  ASSERT_LT(count, 256);  // labels fit in 8 bits
  ASSERT_EQ(ZEL_Threshold(labels, 0, 1, 1, 255, 1), 0);
  ASSERT_EQ(ZEL_Mask(image, labels, levels), 0);
  HistogramReport inside, all;
  ASSERT_EQ(ZEL_Histogram(image, labels, 256, 0, 255, nullptr, &inside), 0);
  ASSERT_EQ(ZEL_Histogram(levels, 0, 256, 0, 255, nullptr, &all), 0);
  EXPECT_GE(inside.min, 100);
  EXPECT_EQ(all.min, 0);
  EXPECT_EQ(all.max, inside.max);
  const double pixels = 1.0 * shot.picture.width * shot.picture.height;
  const double selected = inside.nbPixels;
  EXPECT_NEAR(static_cast<double>(all.mean) * pixels, static_cast<double>(inside.mean) * selected,
              selected * 1e-3);
}

// ------------------------------------------------------------------------------ files and back

class Files : public testing::Test {
 protected:
  void SetUp() override { std::filesystem::create_directories(folder_); }
  void TearDown() override { std::filesystem::remove_all(folder_); }
  std::string Path(const std::string& name) const { return (folder_ / name).string(); }

  std::filesystem::path folder_ =
      std::filesystem::temp_directory_path() / ("orlune_journeys_" + std::to_string(getpid()));
};

// Writes a scene and reads it back: the pixels are the same, and an odd width has become even with
// a column of 0.
void RoundTrip(const Shot& shot, const std::string& path, int32_t format) {
  const int16_t type = shot.picture.bits == 8 ? IMAGE_U8 : IMAGE_I16;
  const int32_t width = shot.picture.width, height = shot.picture.height;
  const int32_t evenWidth = width + width % 2;
  const Image written(type), read(type, 0);
  Load(shot.picture, written);
  ASSERT_EQ(ZEL_WriteFile(written, path.c_str(), format, nullptr, 0), 0);

  FileInfo file{};
  ASSERT_EQ(ZEL_PtkFileInfo(path.c_str(), &file), 0);
  EXPECT_EQ(file.fileType, format);
  EXPECT_EQ(file.bitsPerPixel, shot.picture.bits == 8 ? 8 : 16);
  EXPECT_EQ(file.width, width);
  EXPECT_EQ(file.height, height);

  ASSERT_EQ(ZEL_ReadFile(read, path.c_str(), 0, nullptr, nullptr), 0);
  const std::vector<int32_t> pixels = PixelsOf(read, evenWidth, height);
  size_t at = 0, different = 0;
  for (const int32_t pixel : pixels) {
    const size_t x = at % static_cast<size_t>(evenWidth), y = at / static_cast<size_t>(evenWidth);
    const int32_t expected = x < static_cast<size_t>(width)
                                 ? shot.picture.pixels[y * static_cast<size_t>(width) + x]
                                 : 0;
    different += pixel != expected;
    ++at;
  }
  EXPECT_EQ(different, 0u);
}

TEST_F(Files, ScenesComeBackFromEachFormatThatHoldsThem) {
  RoundTrip(ShotOf("washers"), Path("washers.bmp"), FILE_FORMAT_BMP);
  RoundTrip(ShotOf("washers"), Path("washers.tif"), FILE_FORMAT_TIFF);
  RoundTrip(ShotOf("washers"), Path("washers.orln"), FILE_FORMAT_NATIVE);
  RoundTrip(ShotOf("mixed"), Path("mixed.bmp"), FILE_FORMAT_BMP);
}

TEST_F(Files, AnOddWidthComesBackEvenWithAColumnOfZero) {
  RoundTrip(ShotOf("pins"), Path("pins.tif"), FILE_FORMAT_TIFF);
  RoundTrip(ShotOf("pins"), Path("pins.orln"), FILE_FORMAT_NATIVE);
}

TEST_F(Files, SixteenBitScenesComeBackFromTiffAndNative) {
  RoundTrip(ShotOf("chips"), Path("chips.tif"), FILE_FORMAT_TIFF);
  RoundTrip(ShotOf("chips"), Path("chips.orln"), FILE_FORMAT_NATIVE);
}

TEST_F(Files, AnInspectionOfTheFileFindsWhatIsInTheScene) {
  const Shot& shot = ShotOf("washers");
  const Image written(IMAGE_U8), read(IMAGE_U8);
  Load(shot.picture, written);
  const std::string path = Path("washers.bmp");
  ASSERT_EQ(ZEL_WriteFile(written, path.c_str(), FILE_FORMAT_BMP, nullptr, 0), 0);
  ASSERT_EQ(ZEL_ReadFile(read, path.c_str(), 0, nullptr, nullptr), 0);
  Segment(shot, read, AUTOB_CLUSTERING);
  ExpectTruth(PartsOf(read), shot.truth);
}

TEST_F(Files, AGrayFileReadIntoColourAndBackKeepsItsLevels) {
  const Shot& shot = ShotOf("washers");
  const Image written(IMAGE_U8), colour(IMAGE_RGB), back(IMAGE_U8);
  Load(shot.picture, written);
  ASSERT_EQ(ZEL_WriteFile(written, Path("gray.bmp").c_str(), FILE_FORMAT_BMP, nullptr, 0), 0);
  ASSERT_EQ(ZEL_ReadFile(colour, Path("gray.bmp").c_str(), 0, nullptr, nullptr), 0);
  ASSERT_EQ(ZEL_WriteFile(colour, Path("colour.tif").c_str(), FILE_FORMAT_TIFF, nullptr, 0), 0);
  ASSERT_EQ(ZEL_ReadFile(back, Path("colour.tif").c_str(), 0, nullptr, nullptr), 0);
  EXPECT_EQ(PixelsOf(back, shot.picture.width, shot.picture.height),
            PixelsOf(written, shot.picture.width, shot.picture.height));
}

TEST_F(Files, TheNativeFormatKeepsTheCalibration) {
  const Image written(IMAGE_U8), read(IMAGE_U8);
  Load(ShotOf("washers").picture, written);
  ASSERT_EQ(ZEL_SetImageCalibration(written, 5, 0.125f, 0.125f), 0);
  ASSERT_EQ(ZEL_WriteFile(written, Path("scaled.orln").c_str(), FILE_FORMAT_NATIVE, nullptr, 0), 0);
  ASSERT_EQ(ZEL_ReadFile(read, Path("scaled.orln").c_str(), 0, nullptr, nullptr), 0);
  ImageInfo info;
  ASSERT_EQ(ZEL_GetImageInfo(read, &info), 0);
  EXPECT_EQ(info.unit, 5);
  EXPECT_EQ(info.xStep, 0.125f);
  EXPECT_EQ(info.yStep, 0.125f);
}

}  // namespace
