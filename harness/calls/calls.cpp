#include "harness/calls/calls.h"

#include <cstdio>
#include <cstdlib>
#include <iterator>

#include "core/world.h"

namespace test {
namespace {

// The largest element of a caller's array.
constexpr size_t ELEMENT = 8;

int32_t ArrayType(Playground& play) {
  return play.input().Byte() % 16 == 0 ? play.input().Int() : play.input().Byte() % 9;
}

// A count of elements that a caller could really have: at most some thousand.
int32_t ElementCount(Playground& play) {
  const uint8_t kind = play.input().Byte();
  if (kind % 8 == 0) return -static_cast<int32_t>(kind);
  return static_cast<int32_t>(play.input().Below(kind % 8 == 1 ? 5000 : 64));
}

// Two points anywhere.
struct Ends {
  int32_t x1, y1, x2, y2;
};

Ends EndsOf(Playground& play) {
  // In the order of a braced list, so that an input means the same on every compiler.
  return Ends{play.input().Int(), play.input().Int(), play.input().Int(), play.input().Int()};
}

size_t AtLeastZero(int32_t count) {
  return count > 0 ? static_cast<size_t>(count) : 0;
}

int32_t Memory(Playground& play) {
  void* block = ZEL_malloc(play.input().Below(300));
  block = ZEL_realloc(block, 1 + play.input().Below(3000));
  ZEL_free(block);
  ZEL_free(ZEL_calloc(play.input().Below(300), play.input().Below(300)));
  return 0;
}

using Operator = int32_t (*)(ImageRef, ImageRef, ImageRef, float);
template <Operator operation>
int32_t Arithmetic(Playground& play) {
  const ImageRef first = play.Image();
  const ImageRef second = play.Image();
  return operation(first, second, play.Image(), play.input().Float());
}

using LogicOperator = int32_t (*)(ImageRef, ImageRef, ImageRef, int16_t, uint32_t);
template <LogicOperator operation>
int32_t Logic(Playground& play) {
  const ImageRef first = play.Image();
  const ImageRef second = play.Image();
  const ImageRef destination = play.Image();
  const auto invert = static_cast<int16_t>(play.input().Byte() % 3);
  return operation(first, second, destination, invert, play.input().Word());
}

int32_t Histogram(Playground& play) {
  const ImageRef image = play.Image();
  const ImageRef mask = play.Image();
  const int32_t classes = play.input().Int();
  // The array that a caller must bring holds nbClasses counters, which the call limits to 4096.
  const size_t held = AtLeastZero(classes < 4096 ? classes : 4096);
  auto* histogram = play.OutputOf<uint32_t>(held);
  auto* report = play.OutputOf<HistogramReport>();
  const float low = play.input().Float();
  return ZEL_Histogram(image, mask, classes, low, play.input().Float(), histogram, report);
}

int32_t Equalize(Playground& play) {
  const ImageRef source = play.Image();
  const ImageRef mask = play.Image();
  const ImageRef destination = play.Image();
  const int32_t count = ElementCount(play);
  const auto* histogram = static_cast<const uint32_t*>(play.Array(AtLeastZero(count) * 4));
  const auto* report = static_cast<const HistogramReport*>(play.Array(sizeof(HistogramReport)));
  const float low = play.input().Float();
  return ZEL_Equalize(source, mask, destination, histogram, count, report, low,
                      play.input().Float());
}

int32_t ImageToArray(Playground& play) {
  const ImageRef image = play.Image();
  void* array = play.Output(play.PixelsOf(image) * ELEMENT);
  const int32_t top = play.input().Int();
  const int32_t left = play.input().Int();
  const int32_t height = play.input().Int();
  const int32_t width = play.input().Int();
  auto* outWidth = play.OutputOf<int32_t>();
  auto* outHeight = play.OutputOf<int32_t>();
  return ZEL_ImageToArray(image, top, left, height, width, ArrayType(play), array, outWidth,
                          outHeight);
}

int32_t ArrayToImage(Playground& play) {
  const ImageRef image = play.Image();
  const auto width = static_cast<int32_t>(play.input().Below(50)) - 3;
  const auto height = static_cast<int32_t>(play.input().Below(50)) - 3;
  const void* array = play.Array(AtLeastZero(width) * AtLeastZero(height) * ELEMENT);
  return ZEL_ArrayToImage(image, ArrayType(play), array, width, height);
}

int32_t ParticleCoeffs(Playground& play) {
  const ImageRef image = play.Image();
  const uint32_t measures = play.input().Below(8);
  const auto reports = static_cast<int32_t>(play.input().Below(6)) - 1;
  auto* table = static_cast<ParticleReport*>(
      const_cast<void*>(play.Array(AtLeastZero(reports) * sizeof(ParticleReport))));
  auto* numbers = play.OutputOf<uint32_t>(measures);
  for (uint32_t i = 0; numbers && i < measures; i++) numbers[i] = play.input().Below(52);
  auto* coefficients = play.OutputOf<float>(AtLeastZero(reports) * measures);
  return ZEL_ParticleCoeffs(image, numbers, measures, table, reports, coefficients);
}

int32_t ParticleDiscrim(Playground& play) {
  const ImageRef image = play.Image();
  const uint32_t criteria = play.input().Below(5);
  const auto reports = static_cast<int32_t>(play.input().Below(6)) - 1;
  auto* table = static_cast<ParticleReport*>(
      const_cast<void*>(play.Array(AtLeastZero(reports) * sizeof(ParticleReport))));
  auto* list = play.OutputOf<ParticleCriterion>(criteria != 0 ? criteria : 1);
  for (uint32_t i = 0; list && i < (criteria != 0 ? criteria : 1); i++) {
    list[i] = {play.input().Byte(), play.input().Float(), play.input().Float()};
  }
  return ZEL_ParticleDiscrim(image, list, criteria, table, reports, play.OutputOf<int32_t>());
}

int32_t GetLine(Playground& play) {
  const ImageRef image = play.Image();
  void* array = play.Output(play.SideOf(image) * ELEMENT);
  const Ends ends = EndsOf(play);
  return ZEL_GetLine(image, ends.x1, ends.y1, ends.x2, ends.y2, ArrayType(play), array,
                     play.OutputOf<int32_t>());
}

int32_t SetLine(Playground& play) {
  const ImageRef image = play.Image();
  const int32_t count = ElementCount(play);
  const void* array = play.Array(AtLeastZero(count) * ELEMENT);
  const Ends ends = EndsOf(play);
  return ZEL_SetLine(image, ends.x1, ends.y1, ends.x2, ends.y2, ArrayType(play), array, count);
}

int32_t LineProfile(Playground& play) {
  const ImageRef image = play.Image();
  void* array = play.Output(play.SideOf(image) * ELEMENT);
  const Ends ends = EndsOf(play);
  auto* count = play.OutputOf<int32_t>();
  return ZEL_LineProfile(image, ends.x1, ends.y1, ends.x2, ends.y2, ArrayType(play), array, count,
                         play.OutputOf<LineProfileReport>());
}

int32_t MultiThreshold(Playground& play) {
  const ImageRef source = play.Image();
  const ImageRef destination = play.Image();
  const auto count = static_cast<int32_t>(play.input().Below(6)) - 1;
  auto* classes = play.OutputOf<ThresholdClass>(AtLeastZero(count));
  for (int32_t i = 0; classes && i < count; i++) {
    classes[i] = {play.input().Float(), play.input().Float(), play.input().Float(),
                  static_cast<uint16_t>(play.input().Byte() % 2)};
  }
  return ZEL_MultiThreshold(source, destination, count, classes);
}

int32_t AutoMThreshold(Playground& play) {
  const ImageRef image = play.Image();
  const int32_t count = play.input().Byte() % 8 == 0 ? play.input().Int() : 2 + play.input().Byte();
  void* lookup = play.Output(256 * ELEMENT);
  auto* classes = play.OutputOf<ThresholdClass>(count > 0 && count <= 300 ? AtLeastZero(count) : 1);
  return ZEL_AutoMThreshold(image, count, ArrayType(play), lookup, classes);
}

int32_t UserLookup(Playground& play) {
  const ImageRef source = play.Image();
  const ImageRef mask = play.Image();
  const ImageRef destination = play.Image();
  const int32_t count = ElementCount(play);
  const void* array = play.Array(AtLeastZero(count) * ELEMENT);
  return ZEL_UserLookup(source, mask, destination, ArrayType(play), array, count);
}

int32_t ConvertByLookup(Playground& play) {
  const ImageRef source = play.Image();
  const ImageRef destination = play.Image();
  const int32_t count = ElementCount(play);
  const void* array = play.Array(AtLeastZero(count) * ELEMENT);
  return ZEL_ConvertByLookup(source, destination, ArrayType(play), array, count);
}

int32_t SetRowCol(Playground& play) {
  const ImageRef image = play.Image();
  const int32_t count = ElementCount(play);
  const void* array = play.Array(AtLeastZero(count) * ELEMENT);
  const auto column = static_cast<int16_t>(play.input().Byte() % 2);
  const int32_t index = play.input().Int();
  return ZEL_SetRowCol(image, column, index, ArrayType(play), array, count);
}

int32_t WriteFile(Playground& play) {
  const ImageRef image = play.Image();
  const char* path = play.Path();
  const int32_t count = play.input().Byte() % 8 == 0 ? play.input().Int() : play.input().Byte();
  // The call takes at most 256 entries, so a caller's table never needs more.
  const size_t entries = count > 256 ? 256 : AtLeastZero(count);
  const auto* table = static_cast<const RGBValue*>(play.Array(entries * sizeof(RGBValue)));
  return ZEL_WriteFile(image, path, play.input().Byte() % 5, table, count);
}

int32_t ReadFile(Playground& play) {
  const ImageRef image = play.Image();
  const char* path = play.Path();
  auto* table = play.OutputOf<RGBValue>(256);
  auto* count = play.OutputOf<int32_t>();
  return ZEL_ReadFile(image, path, play.input().Byte() % 2, table, count);
}

}  // namespace

const ApiCall API_CALLS[] = {
    {"ZEL_malloc", false, &Memory},
    {"ZEL_calloc", false, &Memory},
    {"ZEL_realloc", false, &Memory},
    {"ZEL_free", false, &Memory},
    {"ZEL_InitSys", true, [](Playground&) { return ZEL_InitSys(); }},
    {"ZEL_CloseSys", true,
     [](Playground& play) { return play.input().Byte() % 64 == 63 ? ZEL_CloseSys() : 0; }},
    {"ZEL_Create", true,
     [](Playground& play) {
       ImageRef* slot = play.Slot();
       const auto type = static_cast<int16_t>(play.ImageType());
       const int32_t border =
           play.input().Byte() % 8 == 0 ? play.input().Int() : play.input().Byte() % 6;
       return ZEL_Create(slot, type, border);
     }},
    {"ZEL_Dispose", true, [](Playground& play) { return ZEL_Dispose(play.Image()); }},
    {"ZEL_GetImageInfo", false,
     [](Playground& play) {
       const ImageRef image = play.Image();
       return ZEL_GetImageInfo(image, play.OutputOf<ImageInfo>());
     }},
    {"ZEL_SetImageSize", true,
     [](Playground& play) {
       const ImageRef image = play.Image();
       const int32_t width = play.input().Int();
       return ZEL_SetImageSize(image, width, play.input().Int());
     }},
    {"ZEL_SetImageCalibration", true,
     [](Playground& play) {
       const ImageRef image = play.Image();
       const int32_t unit = play.input().Int();
       const float xStep = play.input().Float();
       return ZEL_SetImageCalibration(image, unit, xStep, play.input().Float());
     }},
    {"ZEL_SetImageOffset", true,
     [](Playground& play) {
       const ImageRef image = play.Image();
       const int32_t x = play.input().Int();
       return ZEL_SetImageOffset(image, x, play.input().Int());
     }},
    {"ZEL_GetImageReference", false,
     [](Playground& play) {
       const int32_t index = play.input().Int();
       auto* image = play.OutputOf<ImageRef>();
       return ZEL_GetImageReference(index, image, play.OutputOf<int32_t>());
     }},
    {"ZEL_GetPixelAddress", true,
     [](Playground& play) {
       const ImageRef image = play.Image();
       const int32_t x = play.input().Int();
       const int32_t y = play.input().Int();
       return ZEL_GetPixelAddress(image, x, y, play.OutputOf<void*>());
     }},
    {"ZEL_ProcessError", true,
     [](Playground& play) {
       const int32_t status = play.input().Int();
       return ZEL_ProcessError(play.input().Byte() % 2 == 0 ? nullptr : "anything", status);
     }},
    {"ZEL_SetErrorMode", false,
     [](Playground& play) { return ZEL_SetErrorMode(1 + play.input().Byte() % 3); }},
    {"ZEL_GetErrorMode", false, [](Playground&) { return ZEL_GetErrorMode(); }},
    {"ZEL_GetLastError", false,
     [](Playground& play) { return ZEL_GetLastError(play.OutputOf<char>(256)); }},
    {"ZEL_GetPixelValue", true,
     [](Playground& play) {
       const ImageRef image = play.Image();
       const int32_t x = play.input().Int();
       const int32_t y = play.input().Int();
       return ZEL_GetPixelValue(image, x, y, play.OutputOf<float>());
     }},
    {"ZEL_SetPixelValue", true,
     [](Playground& play) {
       const ImageRef image = play.Image();
       const int32_t x = play.input().Int();
       const int32_t y = play.input().Int();
       return ZEL_SetPixelValue(image, x, y, play.input().Float());
     }},
    {"ZEL_GetRowCol", true,
     [](Playground& play) {
       const ImageRef image = play.Image();
       void* array = play.Output(play.SideOf(image) * ELEMENT);
       const auto column = static_cast<int16_t>(play.input().Byte() % 2);
       const int32_t index = play.input().Int();
       return ZEL_GetRowCol(image, column, index, ArrayType(play), array, play.OutputOf<int32_t>());
     }},
    {"ZEL_SetRowCol", true, &SetRowCol},
    {"ZEL_GetLine", true, &GetLine},
    {"ZEL_SetLine", true, &SetLine},
    {"ZEL_ImageToArray", true, &ImageToArray},
    {"ZEL_ArrayToImage", true, &ArrayToImage},
    {"ZEL_FillImage", true,
     [](Playground& play) {
       const ImageRef image = play.Image();
       const ImageRef mask = play.Image();
       const float value = play.input().Float();
       const uint32_t rgb = play.input().Word();
       const float real = play.input().Float();
       return ZEL_FillImage(image, mask, value, rgb, real, play.input().Float());
     }},
    {"ZEL_ClearPixels", true, [](Playground& play) { return ZEL_ClearPixels(play.Image()); }},
    {"ZEL_Interlace", true,
     [](Playground& play) {
       const ImageRef frame = play.Image();
       const ImageRef first = play.Image();
       const ImageRef second = play.Image();
       return ZEL_Interlace(frame, first, second, play.input().Byte() % 3);
     }},
    {"ZEL_Add", true, &Arithmetic<ZEL_Add>},
    {"ZEL_Subtract", true, &Arithmetic<ZEL_Subtract>},
    {"ZEL_Multiply", true, &Arithmetic<ZEL_Multiply>},
    {"ZEL_Divide", true, &Arithmetic<ZEL_Divide>},
    {"ZEL_Modulo", true, &Arithmetic<ZEL_Modulo>},
    {"ZEL_MulDiv", true, &Arithmetic<ZEL_MulDiv>},
    {"ZEL_And", true, &Logic<ZEL_And>},
    {"ZEL_Or", true, &Logic<ZEL_Or>},
    {"ZEL_Xor", true, &Logic<ZEL_Xor>},
    {"ZEL_LogDiff", true,
     [](Playground& play) {
       const ImageRef first = play.Image();
       const ImageRef second = play.Image();
       const ImageRef destination = play.Image();
       return ZEL_LogDiff(first, second, destination, play.input().Word());
     }},
    {"ZEL_Mask", true,
     [](Playground& play) {
       const ImageRef source = play.Image();
       const ImageRef mask = play.Image();
       return ZEL_Mask(source, mask, play.Image());
     }},
    {"ZEL_Compare", true,
     [](Playground& play) {
       const ImageRef first = play.Image();
       const ImageRef second = play.Image();
       const ImageRef destination = play.Image();
       const int32_t operation = play.input().Int();
       return ZEL_Compare(first, second, destination, operation, play.input().Float());
     }},
    {"ZEL_Cast", true,
     [](Playground& play) {
       const ImageRef image = play.Image();
       return ZEL_Cast(image, play.ImageType());
     }},
    {"ZEL_Convert", true,
     [](Playground& play) {
       const ImageRef source = play.Image();
       return ZEL_Convert(source, play.Image());
     }},
    {"ZEL_ConvertByLookup", true, &ConvertByLookup},
    {"ZEL_Shift16To8", true,
     [](Playground& play) {
       const ImageRef source = play.Image();
       const ImageRef destination = play.Image();
       return ZEL_Shift16To8(source, destination, play.input().Int());
     }},
    {"ZEL_Threshold", true,
     [](Playground& play) {
       const ImageRef source = play.Image();
       const ImageRef destination = play.Image();
       const float low = play.input().Float();
       const float high = play.input().Float();
       const float value = play.input().Float();
       return ZEL_Threshold(source, destination, low, high, value,
                            static_cast<int16_t>(play.input().Byte() % 2));
     }},
    {"ZEL_MultiThreshold", true, &MultiThreshold},
    {"ZEL_AutoBThreshold", true,
     [](Playground& play) {
       const ImageRef image = play.Image();
       void* lookup = play.Output(256 * ELEMENT);
       const int32_t method = static_cast<int32_t>(play.input().Below(7)) - 1;
       return ZEL_AutoBThreshold(image, method, ArrayType(play), lookup, play.OutputOf<int32_t>());
     }},
    {"ZEL_AutoMThreshold", true, &AutoMThreshold},
    {"ZEL_UserLookup", true, &UserLookup},
    {"ZEL_MathLookup", true,
     [](Playground& play) {
       const ImageRef source = play.Image();
       const ImageRef mask = play.Image();
       const ImageRef destination = play.Image();
       const int32_t operation = play.input().Int();
       const float x = play.input().Float();
       const float low = play.input().Float();
       return ZEL_MathLookup(source, mask, destination, operation, x, low, play.input().Float());
     }},
    {"ZEL_Equalize", true, &Equalize},
    {"ZEL_Histogram", true, &Histogram},
    {"ZEL_Quantify", true,
     [](Playground& play) {
       const ImageRef image = play.Image();
       const ImageRef mask = play.Image();
       auto* global = play.OutputOf<QuantifyReport>();
       QuantifyReport** regions = play.input().Byte() % 8 == 0 ? nullptr : play.RegionReports();
       return ZEL_Quantify(image, mask, global, regions, play.OutputOf<int32_t>());
     }},
    {"ZEL_Centroid", true,
     [](Playground& play) {
       const ImageRef image = play.Image();
       const ImageRef mask = play.Image();
       auto* x = play.OutputOf<float>();
       return ZEL_Centroid(image, mask, x, play.OutputOf<float>());
     }},
    {"ZEL_LineProfile", true, &LineProfile},
    {"ZEL_Label", true,
     [](Playground& play) {
       const ImageRef source = play.Image();
       const ImageRef destination = play.Image();
       const uint16_t connectivity = play.input().Byte() % 3;
       return ZEL_Label(source, destination, connectivity, play.OutputOf<int32_t>());
     }},
    {"ZEL_BasicParticle", true,
     [](Playground& play) {
       const ImageRef image = play.Image();
       const uint16_t connectivity = play.input().Byte() % 3;
       return ZEL_BasicParticle(image, connectivity, play.BasicReports(), play.OutputOf<int32_t>());
     }},
    {"ZEL_Particle", true,
     [](Playground& play) {
       const ImageRef image = play.Image();
       const uint16_t connectivity = play.input().Byte() % 3;
       return ZEL_Particle(image, connectivity, play.ParticleReports(), play.OutputOf<int32_t>());
     }},
    {"ZEL_ParticleCoeffs", true, &ParticleCoeffs},
    {"ZEL_ParticleDiscrim", true, &ParticleDiscrim},
    {"ZEL_PtkFileInfo", true,
     [](Playground& play) {
       const char* path = play.Path();
       return ZEL_PtkFileInfo(path, play.OutputOf<FileInfo>());
     }},
    {"ZEL_ReadFile", true, &ReadFile},
    {"ZEL_WriteFile", true, &WriteFile},
};

const size_t API_CALL_COUNT = std::size(API_CALLS);

void RunCalls(Playground* play, int most) {
  for (int i = 0; i < most && !play->input().IsEmpty(); i++) {
    const ApiCall& call = API_CALLS[play->input().Byte() % API_CALL_COUNT];
    if (call.hasStatus) ZEL_GetLastError(nullptr);
    const int32_t result = call.run(*play);
    play->EndCall();
    const char* fault = zel::WorldFault();
    if (!fault && call.hasStatus) {
      if (result > 0) fault = "a positive result";
      if (ZEL_GetLastError(nullptr) != result) fault = "the reporter kept another result";
    }
    if (fault) {
      std::fprintf(stderr, "%s: %s (result %d)\n", call.name, fault, result);
      std::abort();
    }
  }
}

}  // namespace test
