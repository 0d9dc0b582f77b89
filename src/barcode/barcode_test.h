// What tests of bar codes share: the readers by name, codes that another program printed, and a
// renderer of widths.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "harness/region_record.h"
#include "harness/test_image.h"
#include "orlune_ptk.h"
#include "tests/reference/barcodes.h"

namespace test {

// A call of a reader; the first digit is for EAN-13 alone.
struct Request {
  ImageRef image;
  const RoiDescriptor* roi;
  int32_t validate;
  const uint8_t* firstDigit;
  char** text;
  int32_t* textLength;
};

struct Reader {
  std::string kind;  // as the table of printed codes has it
  std::function<int32_t(const Request&)> call;
  std::function<reference::Code(const reference::Runs&, bool validate, uint8_t firstDigit)>
      reference;
};

template <auto function>
int32_t CallReader(const Request& r) {
  return function(r.image, r.roi, r.validate, r.text, r.textLength);
}

inline const std::vector<Reader>& Readers() {
  using reference::Runs;
  static const std::vector<Reader> readers = {
      {"Codabar", CallReader<ZEL_ReadCodabar>,
       [](const Runs& r, bool validate, uint8_t) { return reference::Codabar(r, validate); }},
      {"Interleaved", CallReader<ZEL_ReadCod25>,
       [](const Runs& r, bool validate, uint8_t) { return reference::Interleaved25(r, validate); }},
      {"MSI", CallReader<ZEL_ReadMSI>,
       [](const Runs& r, bool validate, uint8_t) { return reference::Msi(r, validate); }},
      {"Code39", CallReader<ZEL_ReadCod39>,
       [](const Runs& r, bool validate, uint8_t) { return reference::Code39(r, validate); }},
      {"EAN8", CallReader<ZEL_ReadCodEAN8>,
       [](const Runs& r, bool, uint8_t) { return reference::Ean8(r); }},
      {"EAN13",
       [](const Request& r) {
         return ZEL_ReadEAN13(r.image, r.roi, r.validate, r.firstDigit, r.text, r.textLength);
       },
       [](const Runs& r, bool, uint8_t first) { return reference::Ean13(r, first); }},
      {"UPCA", CallReader<ZEL_ReadUPCA>,
       [](const Runs& r, bool, uint8_t) { return reference::UpcA(r); }},
      {"Code93", CallReader<ZEL_ReadCod93>,
       [](const Runs& r, bool, uint8_t) { return reference::Code93(r); }},
      {"Code128", CallReader<ZEL_ReadCod128>,
       [](const Runs& r, bool, uint8_t) { return reference::Code128(r); }},
  };
  return readers;
}

inline const Reader& ReaderOf(const std::string& kind) {
  for (const Reader& reader : Readers()) {
    if (reader.kind == kind) return reader;
  }
  ADD_FAILURE() << "no reader of " << kind;
  return Readers()[0];
}

// A region with one contour at two corners.
inline RegionRecord RegionAt(const reference::Corners& c, int32_t type = ROI_RECT) {
  return RegionRecord({{type, {c.x1, c.y1, c.x2, c.y2}}});
}

// One reading into a fresh block. A failure has to leave block and length alone, and no text may
// come without a terminator behind it.
inline reference::Code Read(const Reader& reader, ImageRef image, const RoiDescriptor* roi,
                            bool validate = false, uint8_t firstDigit = 0) {
  char* text = nullptr;
  int32_t length = -7;
  const int32_t status = reader.call({image, roi, validate, &firstDigit, &text, &length});
  reference::Code code{status, {}};
  if (status != 0) {
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(length, -7);
    return code;
  }
  EXPECT_EQ(text == nullptr, length == 0);
  if (!text) return code;
  EXPECT_EQ(text[length], 0);
  code.text.assign(text, static_cast<size_t>(length));
  ZEL_free(text);
  return code;
}

inline reference::Code Read(const std::string& kind, ImageRef image, const reference::Corners& c,
                            bool validate = false, uint8_t firstDigit = 0) {
  return Read(ReaderOf(kind), image, RegionAt(c), validate, firstDigit);
}

// How the widths of a code become a picture.
struct Print {
  double module = 2.0;      // pixels
  int32_t margin = 20;      // light columns at both sides
  int32_t height = 12;      // rows
  int32_t type = IMAGE_U8;  // pixels
  double light = 230.0;
  double dark = 20.0;
  double slope = 0.0;  // of the light from column to column
  int32_t noise = 0;   // up to which a pixel goes up or down
  uint64_t seed = 1;
};

// How much of each column is dark.
inline std::vector<double> Darkness(const std::string& widths, const Print& print) {
  double modules = 0;
  for (const char width : widths) modules += width - '0';
  const auto columns = static_cast<size_t>(std::ceil(modules * print.module)) + 1;
  std::vector<double> dark(columns + 2 * static_cast<size_t>(print.margin), 0.0);
  double from = print.margin;
  for (size_t i = 0; i < widths.size(); i++) {
    const double to = from + (widths[i] - '0') * print.module;
    for (double x = from; i % 2 == 0 && x < to;) {
      const double end = std::min(std::floor(x) + 1, to);
      dark[static_cast<size_t>(x)] += end - x;
      x = end;
    }
    from = to;
  }
  return dark;
}

inline void SetPixel(const TestImage& image, int32_t x, int32_t y, double value) {
  switch (image.Info().type) {
    case IMAGE_U8:
      return image.Set<uint8_t>(x, y, static_cast<uint8_t>(std::lround(value)));
    case IMAGE_I16:
      return image.Set<int16_t>(x, y, static_cast<int16_t>(std::lround(value)));
    default:
      return image.Set<float>(x, y, static_cast<float>(value));
  }
}

inline TestImage Printed(const std::string& widths, const Print& print = {}) {
  const std::vector<double> dark = Darkness(widths, print);
  const auto width = static_cast<int32_t>(dark.size());
  TestImage image(print.type, width, print.height, 1);
  Random random(print.seed);
  for (int32_t y = 0; y < print.height; y++) {
    for (int32_t x = 0; x < width; x++) {
      const double share = dark[static_cast<size_t>(x)];
      const double gray = print.light + print.slope * x;
      const double noise = print.noise > 0 ? random.Between(-print.noise, print.noise) : 0;
      SetPixel(image, x, y, gray + share * (print.dark - print.light) + noise);
    }
  }
  return image;
}

inline reference::Corners WholeOf(const TestImage& image) {
  return {0, 0, image.width() - 1, image.height() - 1};
}

// A code that another program printed (tests/tools/make_barcodes.py made the table).
struct PrintedCode {
  std::string kind, text, checked, widths;

  uint8_t FirstDigit() const { return kind == "EAN13" ? static_cast<uint8_t>(text[0] - '0') : 0; }
};

// \x41 is A.
inline std::string Unescaped(const std::string& field) {
  std::string text;
  for (size_t i = 0; i < field.size(); i++) {
    if (field.compare(i, 2, "\\x") == 0) {
      text += static_cast<char>(std::stoi(field.substr(i + 2, 2), nullptr, 16));
      i += 3;
    } else {
      text += field[i];
    }
  }
  return text;
}

inline const std::vector<PrintedCode>& PrintedCodes() {
  static const std::vector<PrintedCode> codes = [] {
    std::vector<PrintedCode> rows;
    std::ifstream file(PTK_TEST_DATA "/barcodes/printed.tsv");
    for (std::string kind, text, checked, widths;
         std::getline(file, kind, '\t') && std::getline(file, text, '\t') &&
         std::getline(file, checked, '\t') && std::getline(file, widths);) {
      rows.push_back({kind, Unescaped(text), Unescaped(checked), widths});
    }
    return rows;
  }();
  return codes;
}

}  // namespace test
