// Bar codes in a region, beside ZXing where it is installed.
#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>

#if defined(PTK_HAVE_ZXING)
#include <ZXing/ReadBarcode.h>
#endif

#include "benchmarks/pairs.h"

namespace {

using bench::Images;
using bench::Mats;

constexpr char NOTES[] = R"(
A region of 360 x 50 pixels with one upright code in it, two or three pixels a module. The peer is ZXing in its
fast mode: told the kind of code, without turning, shrinking or trying harder. It looks for the code
in the region, and takes the first row in which it finds one; ours takes the region for the code and the mean
of ten rows.
)";

constexpr bench::Size REGION = {360, 50};

using Reader = int32_t (*)(ImageRef, const RoiDescriptor*, int32_t, char**, int32_t*);

struct Code {
  const char* name;
  const char* widths;  // in modules, from the first bar on
  int32_t module;      // pixels
  Reader read;
  const char* peerFormat;
};

int32_t ReadEan13(ImageRef image, const RoiDescriptor* roi, int32_t validate, char** text,
                  int32_t* length) {
  const uint8_t firstDigit = 4;
  return ZEL_ReadEAN13(image, roi, validate, &firstDigit, text, length);
}

const Code CODES[] = {
    {"code128", "2112141331212311311321312131311133211321131221321232212232113112223221122331112",
     2, ZEL_ReadCod128, "Code128"},
    {"ean13", "11132111123111414113121122211111141114111411311214112221111", 3, ReadEan13,
     "EAN-13"},
    {"ean8", "1113112111414111213111111231321113121132111", 3, ZEL_ReadCodEAN8, "EAN-8"},
    {"upca", "11132112221212214111132123111111111413121213311232111231111", 3, ZEL_ReadUPCA,
     "UPC-A"},
    {"code39", "1211212111211121121121111122111121111221221111112111112112212111221111121121211", 2,
     ZEL_ReadCod39, "Code39"},
    {"code93", "1111411211222122111111232211211113212212111411111114112211121211311111411", 2,
     ZEL_ReadCod93, "Code93"},
    {"codabar", "1122121111211211111112211111221121111211121111211212112", 3, ZEL_ReadCodabar,
     "Codabar"},
    {"interleaved", "111111133133113111113313133133111113133111311331111133311", 3, ZEL_ReadCod25,
     "ITF"},
    {"msi", "21121212211212211212122121122112121221122112212112121", 3, ZEL_ReadMSI, nullptr},
};

void Draw(const Code& code, uint8_t* pixels, int64_t pitch) {
  int32_t columns = 0;
  for (const char* run = code.widths; *run != 0; run++) columns += code.module * (*run - '0');
  for (int32_t y = 0; y < REGION.height; y++) {
    uint8_t* row = pixels + y * pitch;
    std::fill(row, row + REGION.width, uint8_t{220});
    uint8_t* pixel = row + (REGION.width - columns) / 2;
    for (size_t i = 0; code.widths[i] != 0; i++) {
      const int32_t width = code.module * (code.widths[i] - '0');
      if (i % 2 == 0) std::fill(pixel, pixel + width, uint8_t{30});
      pixel += width;
    }
  }
}

// What a program keeps from call to call: the region, and the block of the text.
struct Kept {
  RoiDescriptor* region = nullptr;
  char* text = nullptr;
  int32_t length = 0;

  Kept() {
    const int32_t flat[] = {0, 0, REGION.width,     REGION.height,    ROI_MARKER_EXTERNAL, ROI_RECT,
                            0, 0, REGION.width - 1, REGION.height - 1};
    ZEL_ArrayToROI(flat, 10, &region);
  }
  Kept(const Kept&) = delete;
  Kept& operator=(const Kept&) = delete;
  ~Kept() {
    ZEL_FreeROI(region);
    ZEL_free(text);
  }
};

#if defined(PTK_HAVE_ZXING)
constexpr char ZXING[] = "ZXing";

ZXing::DecodeHints FastHints(const char* format) {
  return ZXing::DecodeHints()
      .setFormats(ZXing::BarcodeFormatFromString(format))
      .setTryHarder(false)
      .setTryRotate(false)
      .setTryDownscale(false);
}

std::function<void(Mats&)> PeerOf(const Code& code) {
  if (!code.peerFormat) return nullptr;
  return [hints = FastHints(code.peerFormat)](Mats& m) {
    const ZXing::Result result =
        ZXing::ReadBarcode({m.to.data, m.to.cols, m.to.rows, ZXing::ImageFormat::Lum}, hints);
    if (!result.isValid()) std::abort();  // a peer that reads nothing is no peer
  };
}
#else
constexpr char ZXING[] = "ZXing (not installed)";

std::function<void(Mats&)> PeerOf(const Code&) {
  return nullptr;
}
#endif

bench::Pair PairOf(const Code& code) {
  return {.operation = code.name,
          .sizes = {REGION},
          .prepare =
              [&code](Images& i, Mats& m) {
                const int32_t result = ZEL_SetImageSize(i.to, REGION.width, REGION.height);
                if (result != 0) return result;
                ImageInfo info{};
                ZEL_GetImageInfo(i.to, &info);
                Draw(code, static_cast<uint8_t*>(info.firstPixel), info.lineBytes);
                m.to.create(REGION.height, REGION.width, CV_8U);
                Draw(code, m.to.data, static_cast<int64_t>(m.to.step));
                return 0;
              },
          .ours =
              [&code, kept = std::make_shared<Kept>()](Images& i) {
                return code.read(i.to, kept->region, 0, &kept->text, &kept->length);
              },
          .peer = ZXING,
          .theirs = PeerOf(code)};
}

std::vector<bench::Pair> Pairs() {
  std::vector<bench::Pair> pairs;
  for (const Code& code : CODES) pairs.push_back(PairOf(code));
  return pairs;
}

const bench::Registration BARCODES({"barcodes", "Bar codes", NOTES, Pairs()});

}  // namespace
