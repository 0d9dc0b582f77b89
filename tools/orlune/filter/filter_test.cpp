// Filter chains: how they are written, what is told of mistakes, and what they do to pictures.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <numbers>
#include <random>

#include "orlune/command/commands.h"
#include "orlune/shared/output.h"
#include "orlune/shared/words.h"

namespace {

using namespace front;  // NOLINT: these are its tests

namespace fs = std::filesystem;

std::string Complaint(const std::string& chain) {
  try {
    ParseChain(chain);
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
  return "no complaint";
}

void ExpectComplaint(const std::string& chain, const std::string& part) {
  EXPECT_NE(Complaint(chain).find(part), std::string::npos) << chain << ": " << Complaint(chain);
}

// ------------------------------------------------------------------------------------- parsing

TEST(Chains, StepsKeepTheirOrderAndTheirArguments) {
  const Chain chain = ParseChain("median 5; edges sobel 20;lowpass 3x7 12.5 ; rank 5X3 14");
  ASSERT_EQ(chain.size(), 4u);
  EXPECT_EQ(chain[0].step->name, "median");
  EXPECT_EQ(chain[0].arguments[0].window.width, 5);
  EXPECT_EQ(chain[0].arguments[0].window.height, 5);
  EXPECT_EQ(chain[1].step->name, "edges");
  EXPECT_EQ(chain[1].arguments[0].Whole(), EDGE_SOBEL);
  EXPECT_EQ(chain[1].arguments[1].Real(), 20);
  EXPECT_EQ(chain[2].arguments[0].window.width, 3);
  EXPECT_EQ(chain[2].arguments[0].window.height, 7);
  EXPECT_EQ(chain[2].arguments[1].Real(), 12.5f);
  EXPECT_EQ(chain[3].arguments[0].window.Pixels(), 15);
  EXPECT_EQ(chain[3].arguments[1].Whole(), 14);
}

TEST(Chains, BlanksAndCaseAreFree) {
  const Chain chain = ParseChain("  MEDIAN\t 5 ;Edges   Roberts ");
  ASSERT_EQ(chain.size(), 2u);
  EXPECT_EQ(chain[0].step->name, "median");
  EXPECT_EQ(chain[1].arguments[0].Whole(), EDGE_ROBERTS);
}

TEST(Chains, GeometryIsToldByWords) {
  const Chain chain = ParseChain("rotate -17.5 nearest; resample 0.5; flip left-right; transpose");
  ASSERT_EQ(chain.size(), 4u);
  EXPECT_EQ(chain[0].arguments[0].Real(), -17.5f);
  EXPECT_NE(chain[0].arguments[1].number, chain[1].arguments[1].number);
  EXPECT_EQ(chain[2].arguments[0].Whole(), SYMMETRY_LEFT_RIGHT);
  EXPECT_TRUE(chain[3].arguments.empty());
  EXPECT_TRUE(chain[3].step->movesPixels);
  ExpectComplaint("rotate 400", "-360 to 360");
  ExpectComplaint("transpose 2", "too many");
}

TEST(Chains, AnArgumentLeftOutIsZero) {
  const Chain chain = ParseChain("edges prewitt");
  ASSERT_EQ(chain[0].arguments.size(), 2u);
  EXPECT_EQ(chain[0].arguments[1].number, 0);
}

TEST(Chains, EveryEdgeMethodHasItsNumber) {
  const std::pair<const char*, int32_t> methods[] = {{"differentiation", EDGE_DIFFERENTIATION},
                                                     {"gradient", EDGE_GRADIENT},
                                                     {"prewitt", EDGE_PREWITT},
                                                     {"roberts", EDGE_ROBERTS},
                                                     {"sigma", EDGE_SIGMA},
                                                     {"sobel", EDGE_SOBEL}};
  for (const auto& [name, number] : methods) {
    EXPECT_EQ(ParseChain(std::string("edges ") + name)[0].arguments[0].Whole(), number) << name;
  }
}

TEST(Chains, RangesIncludeTheirEnds) {
  for (const char* good :
       {"convolve gradient3 31", "convolve gaussian7", "median 1", "median 1000", "median 1x1000",
        "lowpass 3 0", "lowpass 3 100", "edges sobel 0", "rank 3 0", "rank 3 8", "rank 2x5 9",
        "rank 1000 999999", "edges sigma", "edges sigma 0"}) {
    EXPECT_EQ(Complaint(good), "no complaint") << good;
  }
}

TEST(Chains, ArgumentsOutOfRangeAreToldWithTheRange) {
  for (const char* size : {"0", "1001", "-3", "2.5", "5x", "x5", "3x0", "3x5x7", "big", "nan"}) {
    ExpectComplaint("median " + std::string(size),
                    "step 1, median: the size must be 1 to 1000, "
                    "or WIDTHxHEIGHT, not '" +
                        std::string(size) + "'");
  }
  for (const char* tolerance : {"-1", "100.5", "inf", "1e999", "ten"}) {
    ExpectComplaint("lowpass 3 " + std::string(tolerance),
                    "lowpass: the tolerance must be 0 to 100, not");
  }
  for (const char* threshold : {"-1", "1e39", "inf", "x"}) {
    ExpectComplaint("edges sobel " + std::string(threshold),
                    "edges: the threshold must be 0 or more, not");
  }
  ExpectComplaint("rank 3 1.5", "rank: the order must be 0 to 999999, not '1.5'");
  ExpectComplaint("rank 5x3 15", "rank: the order must be 0 to 14 in a window of 5x3");
  ExpectComplaint("edges sigma 20", "edges: the method sigma has no threshold");
}

TEST(Chains, MistakesAreToldWithTheirPlaceAndWhatWasMeant) {
  ExpectComplaint("edges sobel; medan 5", "step 2, 'medan': no such step; did you mean median?");
  ExpectComplaint("minimun 3", "did you mean minimum?");
  ExpectComplaint("max 3", "did you mean maximum?");
  ExpectComplaint("edges sobl",
                  "the method must be differentiation, gradient, prewitt, roberts, "
                  "sigma or sobel, not 'sobl'; did you mean sobel?");
  ExpectComplaint("median", "step 1, median: the size is missing: write median SIZE");
  ExpectComplaint("lowpass 3", "the tolerance is missing: write lowpass SIZE TOLERANCE");
  ExpectComplaint("edges", "the method is missing: write edges METHOD [THRESHOLD]");
  ExpectComplaint("median 3 4", "'4' is one argument too many: write median SIZE");
  ExpectComplaint("median 3 median 3", "'median' is one argument too many");
  ExpectComplaint("", "step 1, there is none");
  ExpectComplaint("median 3;", "step 2, there is none");
  ExpectComplaint("median 3;;median 3", "step 2, there is none");
}

TEST(Chains, TheBorderIsThatOfTheWidestStep) {
  EXPECT_EQ(BorderOf(ParseChain("median 1")), 0);
  EXPECT_EQ(BorderOf(ParseChain("median 2")), 1);
  EXPECT_EQ(BorderOf(ParseChain("edges sobel")), 1);
  EXPECT_EQ(BorderOf(ParseChain("edges sobel; median 3x9; lowpass 5 1")), 4);
}

TEST(Chains, HelpTellsEveryStepAndEveryParameter) {
  const std::string help = "\n" + StepsHelp();
  for (const Step& step : AllSteps()) {
    EXPECT_NE(help.find("\n  " + std::string(step.name) + ' '), std::string::npos) << step.name;
    EXPECT_NE(help.find(step.meaning), std::string::npos) << step.name;
  }
  EXPECT_NE(help.find("METHOD: differentiation, gradient,"), std::string::npos);
  EXPECT_NE(help.find("THRESHOLD: 0 or more; 0 if left out"), std::string::npos);
  EXPECT_NE(help.find("SIZE: 1 to 1000, or WIDTHxHEIGHT"), std::string::npos);
  for (const std::string_view line : Split(help, '\n')) EXPECT_LE(line.size(), 98u) << line;
}

// Every step of the table can be typed as its help says, and optional parameters come last.
TEST(Chains, TheTableIsSound) {
  for (const Step& step : AllSteps()) {
    EXPECT_EQ(step.name, Lower(step.name));
    EXPECT_TRUE(step.border != nullptr && step.apply != nullptr) << step.name;
    bool optional = false;
    for (const Parameter& parameter : step.parameters) {
      EXPECT_TRUE(!optional || parameter.optional) << step.name;
      optional = parameter.optional;
      EXPECT_EQ(parameter.kind == Parameter::Kind::Choice, !parameter.choices.empty());
      EXPECT_LE(parameter.low, parameter.high) << step.name;
    }
  }
}

// -------------------------------------------------------------------------------------- images

constexpr int32_t WIDTH = 37, HEIGHT = 23;

Image Noise(int32_t type, int32_t border) {
  std::mt19937 random(7);
  std::vector<float> pixels(WIDTH * HEIGHT);
  for (float& pixel : pixels) pixel = static_cast<float>(random() % 256);
  Image image(type, border);
  Check(ZEL_ArrayToImage(image, ARRAY_SGL, pixels.data(), WIDTH, HEIGHT));
  return image;
}

// Every third column of every second row is selected.
Image Pattern() {
  std::vector<uint8_t> pixels(WIDTH * HEIGHT);
  for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = i % WIDTH % 3 == 0 && i / WIDTH % 2 == 0;
  Image image(IMAGE_U8);
  Check(ZEL_ArrayToImage(image, ARRAY_U8, pixels.data(), WIDTH, HEIGHT));
  return image;
}

std::vector<float> PixelsOf(ImageRef image) {
  std::vector<float> pixels(WIDTH * HEIGHT);
  int32_t width = 0, height = 0;
  Check(ZEL_ImageToArray(image, 0, 0, WHOLE_IMAGE_EXTENT, WHOLE_IMAGE_EXTENT, ARRAY_SGL,
                         pixels.data(), &width, &height));
  EXPECT_EQ(width, WIDTH);
  EXPECT_EQ(height, HEIGHT);
  return pixels;
}

class ChainsOnImages : public testing::TestWithParam<int32_t> {};

// The same filters called one by one, each from an image into a new one.
TEST_P(ChainsOnImages, GiveWhatSingleCallsGive) {
  const Chain chain = ParseChain(
      "median 5; edges sobel 20; lowpass 3x1 10; minimum 1x3; maximum 2; rank 3x5 4; median 4x3");
  const int32_t border = BorderOf(chain);
  for (const bool masked : {false, true}) {
    const Image mask = masked ? Pattern() : Image(IMAGE_U8);
    const ImageRef selected = masked ? ImageRef(mask) : 0;
    const Image image = Noise(GetParam(), border);
    for (const ChosenStep& step : chain) Apply(step, image, selected);

    Image from = Noise(GetParam(), border);
    const auto call = [&](auto function, auto... arguments) {
      Image to(GetParam(), border);
      Check(function(from, selected, to, arguments...));
      from = std::move(to);
    };
    call(ZEL_NthOrder, 5, 5, 12);
    call(ZEL_GrayEdge, EDGE_SOBEL, 20.0f);
    call(ZEL_LowPass, 3, 1, 10.0f);
    call(ZEL_NthOrder, 1, 3, 0);
    call(ZEL_NthOrder, 2, 2, 3);
    call(ZEL_NthOrder, 3, 5, 4);
    call(ZEL_NthOrder, 4, 3, 6);
    EXPECT_EQ(PixelsOf(image), PixelsOf(from)) << "mask " << masked;
    EXPECT_NE(PixelsOf(image), PixelsOf(Noise(GetParam(), border)));
  }
}

// Elements as steps name them, each pixel under the mask alone.
TEST_P(ChainsOnImages, GiveWhatMorphologyGives) {
  std::vector<int32_t> ones(15, 1);
  const StructuringElement rectangle{5, 3, ones.data(), 0};
  const StructuringElement hexagon{3, 3, ones.data(), 1};
  struct Case {
    const char* step;
    int32_t operation;
    const StructuringElement* element;
  };
  for (const Case& one : {Case{"erode 3", MORPHOLOGY_ERODE, ZEL_Get_MO_STD3X3Ptr()},
                          {"dilate 5x3", MORPHOLOGY_DILATE, &rectangle},
                          {"open 3 hexagon", MORPHOLOGY_OPEN, &hexagon},
                          {"close 7 rectangle", MORPHOLOGY_CLOSE, ZEL_Get_MO_STD7X7Ptr()},
                          {"automedian 3", MORPHOLOGY_AUTO_MEDIAN, ZEL_Get_MO_STD3X3Ptr()},
                          {"properopen 3", MORPHOLOGY_PROPER_OPEN, ZEL_Get_MO_STD3X3Ptr()},
                          {"properclose 3", MORPHOLOGY_PROPER_CLOSE, ZEL_Get_MO_STD3X3Ptr()}}) {
    const Image from = Noise(GetParam(), 3);
    const Image expected(GetParam(), 3);
    Check(ZEL_GrayMorphology(from, expected, one.operation, one.element));
    const Image image = Noise(GetParam(), 3);
    Apply(ParseChain(one.step)[0], image, 0);
    EXPECT_EQ(PixelsOf(image), PixelsOf(expected)) << one.step;

    const Image mask = Pattern();
    const Image masked = Noise(GetParam(), 3);
    Apply(ParseChain(one.step)[0], masked, mask);
    const std::vector<float> selected = PixelsOf(mask);
    std::vector<float> mixed = PixelsOf(from);
    for (size_t i = 0; i < mixed.size(); ++i) {
      if (selected[i] != 0) mixed[i] = PixelsOf(expected)[i];
    }
    EXPECT_EQ(PixelsOf(masked), mixed) << one.step;
  }
}

// Waves around a mean, 8 of them in a row.
constexpr int32_t WAVES_WIDTH = 64, WAVES_HEIGHT = 32;
double WaveAt(int32_t x) {
  return 50 * std::cos(2 * std::numbers::pi * 8 * (x + 0.5) / WAVES_WIDTH);
}
Image Waves(int32_t type) {
  Image image(type, 2, WAVES_WIDTH, WAVES_HEIGHT);
  for (int32_t y = 0; y < WAVES_HEIGHT; ++y) {
    for (int32_t x = 0; x < WAVES_WIDTH; ++x) {
      Check(ZEL_SetPixelValue(image, x, y, static_cast<float>(std::round(100 + WaveAt(x)))));
    }
  }
  return image;
}

float PixelAt(const Image& image, int32_t x, int32_t y) {
  float value = 0;
  Check(ZEL_GetPixelValue(image, x, y, &value));
  return value;
}

TEST_P(ChainsOnImages, KeepLowOrHighFrequencies) {
  const Image low = Waves(GetParam());
  Apply(ParseChain("frequencies low 10")[0], low, 0);
  const Image high = Waves(GetParam());
  Apply(ParseChain("frequencies high 10")[0], high, 0);
  for (int32_t x = 0; x < WAVES_WIDTH; ++x) {
    EXPECT_NEAR(PixelAt(low, x, x % WAVES_HEIGHT), 100, 2);
    EXPECT_NEAR(PixelAt(high, x, x % WAVES_HEIGHT), std::abs(WaveAt(x)), 2);
  }
  EXPECT_EQ(low.Info().border, 2);
}

TEST_P(ChainsOnImages, ShowTheirSpectrum) {
  const Image image = Waves(GetParam());
  Apply(ParseChain("spectrum")[0], image, 0);
  EXPECT_NEAR(PixelAt(image, 32, 16), 255, 1);
  for (int32_t x = 0; x < WAVES_WIDTH; ++x) {
    const bool isWave = x == 32 - 8 || x == 32 + 8;
    EXPECT_EQ(PixelAt(image, x, 16) > 200, isWave || x == 32) << x;
    EXPECT_LT(PixelAt(image, x, 5), 60) << x;
  }
}

// Sides that are no powers of 2 are continued, and the picture keeps its size.
TEST_P(ChainsOnImages, KeepTheirSizeWhereFrequenciesAreTaken) {
  const Image image = Noise(GetParam(), 1);
  Apply(ParseChain("frequencies low 30")[0], image, 0);
  const std::vector<float> pixels = PixelsOf(image);
  const Image noise = Noise(GetParam(), 1);
  EXPECT_LT(ExtremesOf(image).high, ExtremesOf(noise).high);
  EXPECT_NEAR(ExtremesOf(image).mean, ExtremesOf(noise).mean, 10);
  Apply(ParseChain("spectrum")[0], image, 0);
  EXPECT_EQ(image.Info().width, 64);
  EXPECT_EQ(image.Info().height, 32);
  EXPECT_EQ(image.Info().border, 1);
}

// Squares with an inside: thinner things are their own inner edges.
Image Squares() {
  Image image(IMAGE_U8, 0, WIDTH, HEIGHT);
  Check(ZEL_ClearPixels(image));
  for (int32_t y = 0; y < HEIGHT; ++y) {
    for (int32_t x = 0; x < WIDTH; ++x) {
      if ((x / 5 + y / 5) % 2 == 0) Check(ZEL_SetPixelValue(image, x, y, 1));
    }
  }
  return image;
}

TEST(Chains, GiveWhatBinaryMorphologyGives) {
  for (const auto& [step, operation] : {std::pair{"gradient 3", MORPHOLOGY_GRADIENT},
                                        {"inneredge 3", MORPHOLOGY_INNER_GRADIENT},
                                        {"outeredge 3", MORPHOLOGY_OUTER_GRADIENT}}) {
    const Image image = Squares();
    const Image bordered(IMAGE_U8, 1);
    Check(ZEL_NthOrder(image, 0, bordered, 1, 1, 0));
    const Image expected(IMAGE_U8, 1);
    Check(ZEL_Morphology(bordered, expected, operation, ZEL_Get_MO_STD3X3Ptr()));
    Apply(ParseChain(step)[0], bordered, 0);
    EXPECT_EQ(PixelsOf(bordered), PixelsOf(expected)) << step;
    EXPECT_NE(PixelsOf(bordered), PixelsOf(image)) << step;
  }
}

TEST(Chains, WorkOnParticlesUnderMasks) {
  const auto particles = [] {
    Image image(IMAGE_U8, 1, WIDTH, HEIGHT);
    Check(ZEL_ClearPixels(image));
    for (int32_t y = 2; y < 12; ++y) {
      for (int32_t x = 0; x < 30; ++x) {
        if (x % 10 != 9 && (x != 14 || y != 6)) Check(ZEL_SetPixelValue(image, x, y, 8));
      }
    }
    return image;
  };
  const auto valueAt = [](const Image& image, int32_t x, int32_t y) {
    float value = 0;
    Check(ZEL_GetPixelValue(image, x, y, &value));
    return value;
  };
  const Image image = particles();
  for (const ChosenStep& step : ParseChain("fillholes; rejectborder")) Apply(step, image, 0);
  EXPECT_EQ(valueAt(image, 14, 6), 255);  // the hole
  EXPECT_EQ(valueAt(image, 11, 6), 255);
  EXPECT_EQ(valueAt(image, 5, 6), 0);  // the particle on the edge
  Apply(ParseChain("distance")[0], image, 0);
  EXPECT_EQ(valueAt(image, 14, 6), 5);

  Apply(ParseChain("skeleton")[0], image, 0);
  const std::vector<float> thin = PixelsOf(image);
  EXPECT_GT(std::count(thin.begin(), thin.end(), 255.0f), 5);
  EXPECT_LT(std::count(thin.begin(), thin.end(), 255.0f), 90);

  const Image masked = particles();
  const Image mask(IMAGE_U8, 0, WIDTH, HEIGHT);
  Check(ZEL_ClearPixels(mask));
  Check(ZEL_SetPixelValue(mask, 14, 6, 1));
  Apply(ParseChain("fillholes")[0], masked, mask);
  EXPECT_EQ(valueAt(masked, 14, 6), 255);
  EXPECT_EQ(valueAt(masked, 13, 6), 8);
}

TEST(Chains, DisksFillTheirRectangle) {
  const Image image(IMAGE_U8, 2, WIDTH, HEIGHT);
  Check(ZEL_ClearPixels(image));
  Check(ZEL_SetPixelValue(image, 10, 10, 200));
  Apply(ParseChain("dilate 5 disk")[0], image, 0);
  const char* const rows[] = {".###.", "#####", "#####", "#####", ".###."};
  for (int32_t y = 0; y < 5; ++y) {
    for (int32_t x = 0; x < 5; ++x) {
      float value = 0;
      Check(ZEL_GetPixelValue(image, x + 8, y + 8, &value));
      EXPECT_EQ(value, rows[y][x] == '#' ? 200 : 0) << x << " " << y;
    }
  }
}

TEST_P(ChainsOnImages, MedianMinimumAndMaximumTakeTheirPlacesInTheWindow) {
  // Around the pixel at 1,1 lie eight others of which each value is known.
  const float pixels[] = {7, 1, 8, 2, 6, 3, 5, 9, 4};
  const std::pair<const char*, float> places[] = {
      {"minimum 3", 1}, {"median 3", 5}, {"maximum 3", 9}, {"rank 3 2", 3}, {"median 3x1", 3}};
  for (const auto& [step, value] : places) {
    const Image image(GetParam(), 1);
    Check(ZEL_ArrayToImage(image, ARRAY_SGL, pixels, 3, 3));
    Apply(ParseChain(step)[0], image, 0);
    float got = 0;
    Check(ZEL_GetPixelValue(image, 1, 1, &got));
    EXPECT_EQ(got, value) << step;
  }
}

INSTANTIATE_TEST_SUITE_P(Types, ChainsOnImages, testing::Values(IMAGE_U8, IMAGE_I16, IMAGE_SGL));

// --------------------------------------------------------------------------------------- files

class FilteredFiles : public testing::Test {
 protected:
  void SetUp() override { fs::create_directories(folder_); }
  void TearDown() override { fs::remove_all(folder_); }

  std::string Path(const std::string& name) const { return (folder_ / name).string(); }

  std::string Write(const std::string& name, const Image& image) {
    const bool native = FormatByEnding(name) == PictureFormat::Native;
    Check(ZEL_WriteFile(image, Path(name).c_str(), native ? FILE_FORMAT_NATIVE : FILE_FORMAT_TIFF,
                        nullptr, 0));
    return Path(name);
  }

  FilterCommand Command(const std::string& steps, std::vector<std::string> files) {
    FilterCommand command;
    command.files = std::move(files);
    command.steps = ParseChain(steps);
    command.folder = Path("out");
    command.quiet = true;
    return command;
  }

  // What the program says on standard error.
  std::string Errors(const FilterCommand& command, int status) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(front::Run(command), status);
    return testing::internal::GetCapturedStderr();
  }

  fs::path folder_ = fs::temp_directory_path() / ("orlune_filter_" + std::to_string(::getpid()));
};

TEST_F(FilteredFiles, HoldWhatTheChainGives) {
  const std::string noise = Write("noise.orln", Noise(IMAGE_SGL, 0));
  EXPECT_EQ(Errors(Command("median 5; edges sobel", {noise}), ALL_WELL), "");
  const Image expected = Noise(IMAGE_SGL, 2);
  Check(ZEL_NthOrder(expected, 0, 0, 5, 5, 12));
  Check(ZEL_GrayEdge(expected, 0, 0, EDGE_SOBEL, 0));
  EXPECT_EQ(PixelsOf(ReadPicture(Path("out/noise.orln"), {}).image), PixelsOf(expected));
}

TEST_F(FilteredFiles, AreOfTheFormatThatIsAskedFor) {
  const std::string noise = Write("noise.tif", Noise(IMAGE_U8, 0));
  FilterCommand command = Command("median 3", {noise});
  command.format = PictureFormat::Native;
  EXPECT_EQ(Errors(command, ALL_WELL), "");
  EXPECT_EQ(ReadPicture(Path("out/noise.orln"), {}).account.format, "native");
  command.folder.clear();
  command.to = Path("noise.picture");
  EXPECT_EQ(Errors(command, ALL_WELL), "");
  EXPECT_EQ(ReadPicture(Path("noise.picture"), {}).account.format, "native");
}

TEST_F(FilteredFiles, OfEightBitsReadBackFromBmpInEveryWidth) {
  const std::string noise = Write("noise.tif", Noise(IMAGE_U8, 0));
  FilterCommand command = Command("median 1", {noise});
  command.format = PictureFormat::Bmp;
  EXPECT_EQ(Errors(command, ALL_WELL), "");
  const Loaded back = ReadPicture(Path("out/noise.bmp"), {});
  EXPECT_EQ(PixelsOf(back.image), PixelsOf(Noise(IMAGE_U8, 0)));
}

TEST_F(FilteredFiles, OfMoreBitsThanTheFormatHoldsAreRefused) {
  const std::string deep = Write("deep.tif", Noise(IMAGE_I16, 0));
  FilterCommand command = Command("median 3", {deep});
  command.format = PictureFormat::Bmp;
  EXPECT_NE(Errors(command, SOME_FAILED).find("deep.bmp: BMP holds u8 and rgb pixels, not u16"),
            std::string::npos);
  EXPECT_FALSE(fs::exists(Path("out/deep.bmp")));
}

TEST_F(FilteredFiles, ChangeOnlyWhereTheMaskIsNotBlack) {
  const std::string noise = Write("noise.orln", Noise(IMAGE_U8, 0));
  // A colour whose mean is 0 is not black; a float may be any number but 0.
  const Image mask = Pattern();
  const auto write = [&](int32_t type, const std::string& name, double marked) {
    const Image picture(type, 0, WIDTH, HEIGHT);
    const ImageInfo from = mask.Info(), to = picture.Info();
    for (int32_t y = 0; y < HEIGHT; ++y) {
      for (int32_t x = 0; x < WIDTH; ++x) {
        const double value = Row<uint8_t>(from, y)[x] != 0 ? marked : 0;
        if (type == IMAGE_RGB) Row<RGBValue>(to, y)[x] = static_cast<RGBValue>(value);
        if (type == IMAGE_U8) Row<uint8_t>(to, y)[x] = static_cast<uint8_t>(value);
        if (type == IMAGE_I16) Row<int16_t>(to, y)[x] = static_cast<int16_t>(value);
        if (type == IMAGE_SGL) Row<float>(to, y)[x] = static_cast<float>(value);
        if (type == IMAGE_COMPLEX) {
          Row<float>(to, y)[2 * x] = 0;
          Row<float>(to, y)[2 * x + 1] = static_cast<float>(value);
        }
      }
    }
    return Write(name, picture);
  };
  const std::string masks[] = {write(IMAGE_RGB, "rgb.orln", 0x010000),
                               write(IMAGE_U8, "u8.tif", 255), write(IMAGE_I16, "i16.tif", -256),
                               write(IMAGE_SGL, "sgl.orln", 1e-9),
                               write(IMAGE_COMPLEX, "complex.orln", -1e-9)};
  const Image expected = Noise(IMAGE_U8, 1);
  Check(ZEL_NthOrder(expected, mask, 0, 3, 3, 4));
  for (const std::string& file : masks) {
    FilterCommand command = Command("median 3", {noise});
    command.mask = file;
    EXPECT_EQ(Errors(command, ALL_WELL), "");
    EXPECT_EQ(PixelsOf(ReadPicture(Path("out/noise.orln"), {}).image), PixelsOf(expected)) << file;
  }
}

TEST_F(FilteredFiles, OfAnotherSizeThanTheMaskAreRefused) {
  const std::string noise = Write("noise.orln", Noise(IMAGE_U8, 0));
  FilterCommand command = Command("median 3", {noise});
  command.mask = Write("mask.orln", Image(IMAGE_U8, 0, WIDTH, HEIGHT + 1));
  EXPECT_NE(Errors(command, SOME_FAILED).find("the mask of 37 x 24 pixels does not fit"),
            std::string::npos);
}

TEST_F(FilteredFiles, SmallerThanTheirBorderAreRefused) {
  const std::string noise = Write("noise.orln", Noise(IMAGE_U8, 0));
  EXPECT_EQ(Errors(Command("median 47", {noise}), ALL_WELL), "");
  EXPECT_NE(Errors(Command("median 48", {noise}), SOME_FAILED).find("they take at least 24"),
            std::string::npos);
}

TEST_F(FilteredFiles, NeverTakeThePlaceOfWhatIsRead) {
  const std::string noise = Write("noise.orln", Noise(IMAGE_U8, 0));
  fs::create_hard_link(noise, Path("hard.orln"));
  fs::create_symlink(noise, Path("soft.orln"));
  fs::create_directory_symlink(folder_, Path("again"));
  for (const char* name :
       {"noise.orln", "./noise.orln", "hard.orln", "soft.orln", "again/noise.orln"}) {
    FilterCommand command = Command("maximum 3", {noise});
    command.folder.clear();
    command.to = Path(name);
    EXPECT_NE(Errors(command, BAD_USE).find("that is a picture to be filtered"), std::string::npos)
        << name;
  }
  FilterCommand command = Command("maximum 3", {noise});
  command.folder = Path("again");
  EXPECT_NE(Errors(command, BAD_USE), "");
  command = Command("maximum 3", {Write("other.orln", Noise(IMAGE_U8, 0))});
  command.mask = noise;
  command.folder.clear();
  command.to = noise;
  EXPECT_NE(Errors(command, BAD_USE).find("that is the mask"), std::string::npos);
  EXPECT_EQ(PixelsOf(ReadPicture(noise, {}).image), PixelsOf(Noise(IMAGE_U8, 0)));
}

TEST_F(FilteredFiles, NeverTakeThePlaceOfEachOther) {
  fs::create_directory(Path("a"));
  const std::string one = Write("one.orln", Noise(IMAGE_U8, 0));
  const std::string other = Write("a/one.orln", Noise(IMAGE_U8, 0));
  EXPECT_NE(Errors(Command("median 3", {one, other}), BAD_USE).find("that is the result of " + one),
            std::string::npos);
  EXPECT_NE(Errors(Command("median 3", {one, one}), BAD_USE), "");
  FilterCommand command = Command("median 3", {one, Write("one.tif", Noise(IMAGE_U8, 0))});
  EXPECT_EQ(Errors(command, ALL_WELL), "");
  command.format = PictureFormat::Tiff;
  EXPECT_NE(Errors(command, BAD_USE), "");
}

TEST_F(FilteredFiles, ThatCannotBeReadAreNamedAndTheOthersGoOn) {
  const std::string noise = Write("noise.orln", Noise(IMAGE_U8, 0));
  const std::string errors =
      Errors(Command("median 3", {Path("missing.orln"), noise}), SOME_FAILED);
  EXPECT_NE(errors.find("missing.orln: there is no such file"), std::string::npos);
  EXPECT_TRUE(fs::exists(Path("out/noise.orln")));
  EXPECT_FALSE(fs::exists(Path("out/missing.orln")));
}

// ------------------------------------------------------------------------------------- colours

// One pixel each of red, green, blue and gray, after a chain.
Image Coloured(const std::string& chain, ImageRef mask = 0) {
  const RGBValue colours[] = {0xC00000, 0x00C000, 0x0000C0, 0x646464};
  Image image(IMAGE_RGB, BorderOf(ParseChain(chain)));
  Check(ZEL_ArrayToColorImage(image, colours, 4, 1));
  for (const ChosenStep& step : ParseChain(chain)) Apply(step, image, mask);
  return image;
}

std::vector<int> GraysAfter(const std::string& chain) {
  const Image image = Coloured(chain);
  EXPECT_EQ(image.Info().type, IMAGE_U8) << chain;
  const auto* row = Row<uint8_t>(image.Info(), 0);
  return {row[0], row[1], row[2], row[3]};
}

std::vector<RGBValue> ColoursAfter(const std::string& chain, ImageRef mask = 0) {
  const Image image = Coloured(chain, mask);
  EXPECT_EQ(image.Info().type, IMAGE_RGB) << chain;
  const auto* row = Row<RGBValue>(image.Info(), 0);
  return {row[0], row[1], row[2], row[3]};
}

using Grays = std::vector<int>;

TEST(ColourSteps, PlanesBecomeGrayPictures) {
  EXPECT_EQ(GraysAfter("plane red"), (Grays{0xC0, 0, 0, 0x64}));
  EXPECT_EQ(GraysAfter("plane green"), (Grays{0, 0xC0, 0, 0x64}));
  EXPECT_EQ(GraysAfter("plane blue"), (Grays{0, 0, 0xC0, 0x64}));
  EXPECT_EQ(GraysAfter("plane hue"), (Grays{0, 85, 170, 0}));
  EXPECT_EQ(GraysAfter("plane saturation"), (Grays{255, 255, 255, 0}));
  EXPECT_EQ(GraysAfter("plane lightness"), (Grays{0x60, 0x60, 0x60, 0x64}));
  EXPECT_EQ(GraysAfter("plane value"), (Grays{0xC0, 0xC0, 0xC0, 0x64}));
}

TEST(ColourSteps, ColoursAreSelectedByRanges) {
  EXPECT_EQ(GraysAfter("select 200:260"), (Grays{0, 0, 255, 0}));
  EXPECT_EQ(GraysAfter("select 300:130 50:"), (Grays{255, 255, 0, 0}));
  EXPECT_EQ(GraysAfter("select 0:360 :50 30:60"), (Grays{0, 0, 0, 255}));
}

TEST(ColourSteps, OnePlaneIsScaled) {
  EXPECT_EQ(ColoursAfter("scale red 50"),
            (std::vector<RGBValue>{0x600000, 0x00C000, 0x0000C0, 0x326464}));
  EXPECT_EQ(ColoursAfter("scale green 1000"),
            (std::vector<RGBValue>{0xC00000, 0x00FF00, 0x0000C0, 0x64FF64}));
  Image mask(IMAGE_U8, 0, 4, 1);
  Check(ZEL_ClearPixels(mask));
  Row<uint8_t>(mask.Info(), 0)[3] = 1;
  EXPECT_EQ(ColoursAfter("scale red 50", mask),
            (std::vector<RGBValue>{0xC00000, 0x00C000, 0x0000C0, 0x326464}));
  EXPECT_EQ(ColoursAfter("equalize all", mask)[0], 0xC00000u);
  EXPECT_NE(ColoursAfter("equalize all")[3], 0x646464u);
}

TEST(ColourSteps, GrayStepsAfterThemTakeTheMean) {
  EXPECT_EQ(GraysAfter("scale red 50; flip left-right"), (Grays{0x53, 0x40, 0x40, 0x20}));
}

TEST(ColourSteps, ComeBeforeGrayOnes) {
  EXPECT_TRUE(TakesColours(ParseChain("plane hue; median 3")));
  EXPECT_FALSE(TakesColours(ParseChain("median 3")));
  ExpectComplaint("median 3; plane hue", "step 2, plane: the picture is gray by then");
  ExpectComplaint("plane hue; equalize", "step 2, equalize: the picture is gray by then");
  ExpectComplaint("plane pink", "did you mean");
  ExpectComplaint("select 20", "the hues must be MIN:MAX in degrees, as 200:260 or 340:20, not");
  ExpectComplaint("select 20:30 high", "the saturation must be MIN:MAX of 0 to 100");
  EXPECT_EQ(Complaint("equalize; scale saturation 150; select 0:60 20: ; close 3"), "no complaint");
  const Image gray(IMAGE_U8, 0, 2, 2);
  EXPECT_THROW(Apply(ParseChain("plane hue")[0], gray, 0), std::invalid_argument);
}

}  // namespace
