// orlune_scorecard: what the readers of bar codes, meters and displays read of pictures spoilt more
// and more, beside other programs, as a page.
// usage: orlune_scorecard CODES PAGE [PHOTOS]
// CODES is the table of printed codes; PHOTOS a folder of photographs with truth.tsv, which tells
// of each its file, kind, text and region.
#include <array>
#include <cmath>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>

#include "orlune/read/barcode_kinds.h"
#include "orlune/shared/pictures.h"
#include "pictures/source.h"
#include "scorecard/dials.h"
#include "scorecard/readers.h"

namespace scorecard {
namespace {

using front::BarcodeKind;

constexpr size_t CODES_OF_A_KIND = 4;
constexpr uint64_t PICTURES_OF_A_CODE = 2;

// One way to spoil a picture, more and more.
struct Axis {
  const char* title;
  const char* unit;
  double Look::*field;
  std::array<double, 5> levels;
  Look rest;
};

const std::vector<Axis>& AllAxes() {
  static const std::vector<Axis> axes = {
      {"Blur", "its deviation, in modules of 3 pixels", &Look::blur, {0.3, 0.5, 0.7, 0.9, 1.1}, {}},
      {"Noise",
       "its deviation, in gray levels, of a contrast of 150 and modules of 2 pixels",
       &Look::noise,
       {5, 10, 20, 30, 45},
       {.module = 2}},
      {"Contrast",
       "gray levels between bars and spaces, in noise of 2",
       &Look::contrast,
       {80, 40, 20, 12, 8},
       {.noise = 2}},
      {"Scale", "pixels of a module", &Look::module, {3, 2, 1.5, 1.2, 1}, {}},
      {"Tilt", "degrees", &Look::tilt, {1, 3, 8, 20, 45}, {}},
      {"Quiet zones",
       "modules from the bars to the picture's edge",
       &Look::quiet,
       {10, 5, 2, 1, 0},
       {}},
      {"Cans",
       "degrees from the middle to the end of a code that runs around one",
       &Look::bend,
       {10, 25, 40, 50, 60},
       {}},
  };
  return axes;
}

struct Tally {
  int right = 0, wrong = 0;
};

void Count(const Reader& reader, const Sight& sight, const Code& code, Tally* tally) {
  const std::optional<std::string> text = reader.read(sight, code, false);
  if (!text) return;
  const bool isRight = Common(code.kind, *text) == Common(code.kind, code.text);
  ++(isRight ? tally->right : tally->wrong);
}

// The last ones of the kind: control characters come first.
std::vector<Code> Some(const std::vector<Code>& codes, BarcodeKind kind) {
  std::vector<Code> some;
  for (auto code = codes.rbegin(); code != codes.rend(); ++code) {
    if (code->kind == kind && some.size() < CODES_OF_A_KIND) some.push_back(*code);
  }
  return some;
}

void PutReaders(std::ostream& out, const std::string& first) {
  out << "\n| " << first;
  for (const Reader& reader : AllReaders()) out << " | " << reader.name;
  out << " |\n|---";
  for (size_t i = 0; i < AllReaders().size(); ++i) out << "|---";
  out << "|\n";
}

void PutAxis(std::ostream& out, const Axis& axis, const std::vector<Code>& codes) {
  out << "\n### " << axis.title << "\n\n" << axis.unit << ":";
  for (const double level : axis.levels) out << ' ' << level;
  out << ".\n";
  PutReaders(out, "kind");
  for (const front::BarcodeKindRow& row : front::AllBarcodeKinds()) {
    out << "| " << row.name;
    const std::vector<Code> some = Some(codes, row.kind);
    for (const Reader& reader : AllReaders()) {
      out << " |";
      if (!reader.reads(row.kind)) continue;
      int wrong = 0;
      for (const double level : axis.levels) {
        Tally tally;
        Look look = axis.rest;
        look.*axis.field = level;
        for (const Code& code : some) {
          for (uint64_t seed = 1; seed <= PICTURES_OF_A_CODE; ++seed) {
            Count(reader, Show(code.widths, look, seed), code, &tally);
          }
        }
        out << ' ' << tally.right;
        wrong += tally.wrong;
      }
      if (wrong > 0) out << ", **" << wrong << " wrong**";
    }
    out << " |\n";
  }
}

// Texts read where no right one can be, among so many attempts.
struct FalseReads {
  int plain = 0, checked = 0, attempts = 0;
};

std::string Shown(const FalseReads& reads, bool hasChecks) {
  std::string text = std::to_string(reads.plain);
  if (hasChecks) text += ", checked " + std::to_string(reads.checked);
  return text + " of " + std::to_string(reads.attempts);
}

bool LeavesCheckOpen(BarcodeKind kind) {
  return kind == BarcodeKind::Codabar || kind == BarcodeKind::Code39 ||
         kind == BarcodeKind::Interleaved || kind == BarcodeKind::Msi;
}

template <class SightOf>
void PutFalseReads(std::ostream& out, const std::vector<Code>& codes, int count, SightOf sightOf) {
  PutReaders(out, "kind");
  for (const front::BarcodeKindRow& row : front::AllBarcodeKinds()) {
    out << "| " << row.name;
    std::vector<Code> own;
    for (const Code& code : codes) {
      if (code.kind == row.kind && (code.hasCheck || !LeavesCheckOpen(row.kind)))
        own.push_back(code);
    }
    for (const Reader& reader : AllReaders()) {
      out << " |";
      if (!reader.reads(row.kind)) continue;
      FalseReads reads;
      for (int i = 0; i < count; ++i) {
        const Code& code = own[static_cast<size_t>(i) % own.size()];
        const Sight sight = sightOf(code, static_cast<uint64_t>(i));
        ++reads.attempts;
        const std::optional<std::string> text = reader.read(sight, code, false);
        if (text && !text->empty()) ++reads.plain;
        if (!LeavesCheckOpen(row.kind)) continue;
        const std::optional<std::string> checked = reader.read(sight, code, true);
        if (checked && !checked->empty()) ++reads.checked;
      }
      out << ' ' << Shown(reads, LeavesCheckOpen(row.kind));
    }
    out << " |\n";
  }
}

// ---- photographs

BarcodeKind KindNamed(const std::string& name) {
  static const std::map<std::string, BarcodeKind> kinds = {
      {"CODABAR", BarcodeKind::Codabar}, {"I25", BarcodeKind::Interleaved},
      {"MSI", BarcodeKind::Msi},         {"CODE39", BarcodeKind::Code39},
      {"CODE93", BarcodeKind::Code93},   {"CODE128", BarcodeKind::Code128},
      {"EAN8", BarcodeKind::Ean8},       {"EAN13", BarcodeKind::Ean13},
      {"UPCA", BarcodeKind::UpcA},       {"UPC-A", BarcodeKind::UpcA}};
  return kinds.at(name);
}

struct Photo {
  std::string kind;  // NONE: without a code
  Code code;
  Sight sight;
};

std::vector<Photo> PhotosIn(const std::string& folder) {
  std::ifstream in(folder + "/truth.tsv");
  if (!in) throw std::runtime_error(folder + "/truth.tsv cannot be read");
  std::vector<Photo> photos;
  std::string line;
  std::getline(in, line);
  while (std::getline(in, line)) {
    std::istringstream fields(line);
    std::string file, x, y, width, height;
    Photo photo;
    for (std::string* field : {&file, &photo.kind, &photo.code.text, &x, &y, &width, &height}) {
      std::getline(fields, *field, '\t');
    }
    if (photo.kind != "NONE") photo.code.kind = KindNamed(photo.kind);
    const front::Loaded loaded =
        front::ReadPicture(folder + '/' + file, {.form = front::Form::Gray});
    const ImageInfo info = loaded.image.Info();
    photo.sight.width = info.width;
    photo.sight.height = info.height;
    photo.sight.place = {std::stoi(x), std::stoi(y), std::stoi(width), std::stoi(height)};
    for (int32_t row = 0; row < info.height; ++row) {
      const auto* pixels = front::Row<uint8_t>(info, row);
      photo.sight.pixels.insert(photo.sight.pixels.end(), pixels, pixels + info.width);
    }
    photos.push_back(std::move(photo));
  }
  return photos;
}

void PutPhotos(std::ostream& out, const std::vector<Photo>& photos) {
  std::map<std::string, std::vector<const Photo*>> kinds;
  for (const Photo& photo : photos) kinds[photo.kind].push_back(&photo);
  const std::vector<const Photo*> none = kinds["NONE"];
  kinds.erase("NONE");
  out << R"(
## Photographs

Crops of photographs of other people, one code in each: labels, tins, books, plates, curved, shaded, out of
focus. They are no part of this repository. How many are read right, and the wrong texts.
)";
  PutReaders(out, "kind");
  for (const auto& [kind, own] : kinds) {
    out << "| " << kind << ", " << own.size();
    for (const Reader& reader : AllReaders()) {
      Tally tally;
      for (const Photo* photo : own) Count(reader, photo->sight, photo->code, &tally);
      out << " | " << tally.right;
      if (tally.wrong > 0) out << ", **" << tally.wrong << " wrong**";
    }
    out << " |\n";
  }
  out << "| without a code, " << none.size() << ", as each kind";
  for (const Reader& reader : AllReaders()) {
    FalseReads reads;
    for (const Photo* photo : none) {
      for (const front::BarcodeKindRow& row : front::AllBarcodeKinds()) {
        if (!reader.reads(row.kind)) continue;
        Code code{.kind = row.kind, .text = "0", .widths = ""};
        ++reads.attempts;
        const std::optional<std::string> text = reader.read(photo->sight, code, false);
        if (text && !text->empty()) ++reads.plain;
      }
    }
    out << " | **" << reads.plain << "** of " << reads.attempts;
  }
  out << " |\n";
}

constexpr char HEAD[] = R"(# What the readers read

Made by `make scorecard`, which renders every picture anew: bars of known texts by the light that falls on each
pixel, spoilt in one way at a time. **library**: the export for the kind, told a region that fits the code, which is
how its rules are meant to be used; its EAN-13 is told the first digit. **orlune read**: the front, which finds the
code in the whole picture. ZXing and ZBar search the whole picture too, trying hard; all are told the kind. Neither
reads MSI.

## Bar codes

Each group of figures is how many of )";

constexpr char LOSSES[] = R"(
### Where the library's rules lose, and why

- **Blur and scale**: one straight line through the whole profile tells light from dark. Narrow bars beside wide
  ones do not reach it once blur spans a module, and light margins raise it; below 2 pixels a module widths of
  Code 128, Code 93, EAN and UPC round to the wrong number of modules.
- **Tilt**: rows are averaged as they lie, so that a few degrees smear the bars of a high region. A low region, or
  `orlune read`, which turns the picture upright, helps.
- **Quiet zones**: without light in front of it the first bar is measured from the region's end.
- **Cans**: one module is taken for the whole code. `orlune read` measures each symbol of Code 128, Code 93, EAN and
  UPC by itself; the kinds of two widths have no symbol that tells its width.
- **False reads**: the nearest character is always taken, and without a check nothing is refused. A region without
  a code thus has a text; `orlune read` holds the bars to it, and asks several lines to agree.
)";

void Put(std::ostream& out, const std::vector<Code>& codes, const std::string& photos) {
  out << HEAD << CODES_OF_A_KIND * PICTURES_OF_A_CODE
      << " pictures were read right, at five levels from the mildest to the worst.\n";
  for (const Axis& axis : AllAxes()) PutAxis(out, axis, codes);
  out << LOSSES << R"(
## False reads

Texts read in pictures without a code (stripes, even and uneven, noise, and something like words):
)";
  constexpr int PICTURES = 40;
  PutFalseReads(out, codes, PICTURES, [](const Code&, uint64_t seed) { return NoCode(seed); });
  out << R"(
Texts read of mutilated codes, in which two neighbours are exchanged, a module is moved from a bar to the next, or
the end is cut off. Where a kind leaves its check open, the codes have one, and are read without and with asking
for it. A changed bar of Codabar, Code 39, Interleaved 2 of 5 or MSI can be another valid code without its check, and a cut MSI code looks
like a shorter one. A wrong bar may also leave nothing near but the right text, which is counted too:
)";
  PutFalseReads(out, codes, PICTURES, [](const Code& code, uint64_t seed) {
    return Show(Mutilated(code.widths, seed), {}, seed);
  });
  if (!photos.empty()) PutPhotos(out, PhotosIn(photos));
  out << '\n';
  PutDials(out);
}

}  // namespace
}  // namespace scorecard

int main(int argc, char** argv) {
  if (argc < 3 || argc > 4) {
    std::cerr << "usage: orlune_scorecard CODES PAGE [PHOTOS]\n";
    return 2;
  }
  try {
    ZEL_SetErrorMode(ERROR_MODE_SILENT);
    std::ofstream page(argv[2]);
    scorecard::Put(page, scorecard::CodesIn(argv[1]), argc > 3 ? argv[3] : "");
    page.close();
    if (!page) throw std::runtime_error(std::string(argv[2]) + " cannot be written");
  } catch (const std::exception& failure) {
    std::cerr << "orlune_scorecard: " << failure.what() << '\n';
    return 1;
  }
  return 0;
}
