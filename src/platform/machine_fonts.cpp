// The machine's own fonts: the nearest face to a name and style is looked up once and kept open.
#include "platform/machine_fonts.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "platform/characters.h"
#include "platform/font_libraries.h"
#include "platform/refused_memory.h"
#include "platform/utf8.h"

namespace zel {
namespace {

// Bytes of a name, with the zero that ends it; what is longer is cut.
constexpr size_t FAMILY_BYTES = 128;

struct Style {
  char family[FAMILY_BYTES];
  bool isBold, isItalic;

  bool operator==(const Style& other) const {
    return isBold == other.isBold && isItalic == other.isItalic &&
           std::strcmp(family, other.family) == 0;
  }
};

struct Face {
  FT_Face face = nullptr;
  Style style{};
  // What the style asks for and the face has not got: letters are thickened or slanted.
  bool lacksBold = false, lacksItalic = false;
  uint32_t letterSize = 0;  // that it is set to; to set it again would take its time
  uint64_t lastUse = 0;
};

constexpr size_t FACES_KEPT = 8;

// Windows and texts draw a few letters over and over: those of ASCII are kept of the face and
// height that were used last.
constexpr int32_t KEPT_HEIGHT = 48;  // of a line, at most
constexpr int32_t KEPT_ROWS = 64;    // of a letter, and its columns
constexpr char32_t KEPT_CHARACTERS = 128;

struct KeptLetter {
  enum { UNKNOWN, KEPT, TOO_LARGE } state;
  FT_UInt letter;
  int32_t advance, left, top, rows;
  uint64_t bits[KEPT_ROWS];  // a row each, its first column in the highest bit
};

struct KeptLetters {
  const Face* of = nullptr;
  int32_t height = 0;
  KeptLetter letters[KEPT_CHARACTERS] = {};
};

struct Fonts {
  FontLibraries libraries;
  bool isOpen = false;
  FT_Library drawing = nullptr;
  Face faces[FACES_KEPT];
  uint64_t uses = 0;
};
Fonts fonts;
// Those of no face are not looked at.
KeptLetters keptLetters;

// ---- finding a face

Style StyleOf(const FontRequest& request) {
  Style style{};
  // Names go to the libraries as UTF-8 without fault.
  const std::string family = Utf8Of(request.family);
  family.copy(style.family, FAMILY_BYTES - 1);
  style.isBold = request.isBold;
  style.isItalic = request.isItalic;
  return style;
}

// What describes a font, for the time of a search.
class Pattern {
 public:
  explicit Pattern(FcPattern* pattern) : pattern_(pattern) {}
  Pattern(const Pattern&) = delete;
  Pattern& operator=(const Pattern&) = delete;
  ~Pattern() {
    if (pattern_) fonts.libraries.patternDestroy(pattern_);
  }
  FcPattern* get() const { return pattern_; }

  int Integer(const char* object, int otherwise) const {
    int value = otherwise;
    fonts.libraries.patternGetInteger(pattern_, object, 0, &value);
    return value;
  }
  // The machine's settings may call a face bold or italic that is to be made so while it is drawn.
  bool IsToBeThickened() const {
    FcBool value = FcFalse;
    fonts.libraries.patternGetBool(pattern_, FC_EMBOLDEN, 0, &value);
    return value == FcTrue || Integer(FC_WEIGHT, FC_WEIGHT_REGULAR) < FC_WEIGHT_DEMIBOLD;
  }
  bool IsToBeSlanted() const {
    FcMatrix* matrix = nullptr;
    fonts.libraries.patternGetMatrix(pattern_, FC_MATRIX, 0, &matrix);
    return (matrix && matrix->xy != 0) || Integer(FC_SLANT, FC_SLANT_ROMAN) == FC_SLANT_ROMAN;
  }

 private:
  FcPattern* pattern_;
};

// A list of the machine's fonts of our own, so that what other parts of the program do with theirs
// and what we give back do not meet.
class FontList {
 public:
  FontList() : list_(fonts.libraries.configLoad()) {}
  FontList(const FontList&) = delete;
  FontList& operator=(const FontList&) = delete;
  ~FontList() {
    if (list_) fonts.libraries.configDestroy(list_);
  }

  // Null where there is none.
  FcPattern* Nearest(const Style& style) const {
    const FontLibraries& libraries = fonts.libraries;
    const Pattern wanted(list_ ? libraries.patternCreate() : nullptr);
    if (!wanted.get()) return nullptr;
    if (style.family[0] != 0) {
      libraries.patternAddString(wanted.get(), FC_FAMILY,
                                 reinterpret_cast<const FcChar8*>(style.family));
    }
    libraries.patternAddInteger(wanted.get(), FC_WEIGHT,
                                style.isBold ? FC_WEIGHT_BOLD : FC_WEIGHT_REGULAR);
    libraries.patternAddInteger(wanted.get(), FC_SLANT,
                                style.isItalic ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    libraries.patternAddBool(wanted.get(), FC_SCALABLE, FcTrue);
    libraries.configSubstitute(list_, wanted.get(), FcMatchPattern);
    libraries.defaultSubstitute(wanted.get());
    FcResult result = FcResultNoMatch;
    return libraries.fontMatch(list_, wanted.get(), &result);
  }

 private:
  FcConfig* list_;
};

int32_t FaceOpen(const Style& style, Face* opened) {
  const FontList list;
  const Pattern nearest(list.Nearest(style));
  FcChar8* path = nullptr;
  if (!nearest.get() ||
      fonts.libraries.patternGetString(nearest.get(), FC_FILE, 0, &path) != FcResultMatch) {
    return FONT_MISSING;
  }
  FT_Face face = nullptr;
  const auto* name = reinterpret_cast<const char*>(path);
  if (fonts.libraries.faceOpen(fonts.drawing, name, nearest.Integer(FC_INDEX, 0), &face) != 0) {
    return FONT_UNREADABLE;
  }
  if (!FT_IS_SCALABLE(face)) {
    fonts.libraries.faceClose(face);
    return FONT_MISSING;
  }
  *opened = {};
  opened->face = face;
  opened->style = style;
  opened->lacksBold = style.isBold && nearest.IsToBeThickened();
  opened->lacksItalic = style.isItalic && nearest.IsToBeSlanted();
  return 0;
}

bool LibrariesEnsure() {
  if (!fonts.isOpen) fonts.isOpen = FontLibrariesOpen(&fonts.libraries);
  if (!fonts.isOpen) return false;
  return fonts.drawing || fonts.libraries.drawingStart(&fonts.drawing) == 0;
}

// The kept face of a style, or the one that was not used for longest in its place.
int32_t FaceFind(const Style& style, Face** found) {
  if (!LibrariesEnsure()) return FONT_LIBRARIES_MISSING;
  Face* oldest = fonts.faces;
  *found = nullptr;
  for (Face& kept : fonts.faces) {
    if (kept.face && kept.style == style) *found = &kept;
    if (kept.lastUse < oldest->lastUse) oldest = &kept;
  }
  if (!*found) {
    Face opened;
    const int32_t failure = FaceOpen(style, &opened);
    if (failure != 0) return failure;
    if (oldest->face) fonts.libraries.faceClose(oldest->face);
    *oldest = opened;
    keptLetters.of = nullptr;
    *found = oldest;
  }
  (*found)->lastUse = ++fonts.uses;
  return 0;
}

// ---- a line of text

// Design units to pixels, in 64ths.
int64_t InPixels64(const FT_Face face, int64_t units) {
  return (units * face->size->metrics.y_scale) >> 16;
}
int32_t Rounded(int64_t pixels64) {
  return static_cast<int32_t>((pixels64 + 32) >> 6);
}

struct Line {
  const Face* from = nullptr;
  FT_Face face = nullptr;
  int32_t height = 0;
  int32_t baseline = 0;  // rows above it
};

// The largest whole size of letters whose ascent and descent fit the height together.
uint32_t LetterSize(const FT_Face face, int32_t height) {
  const int64_t units = face->units_per_EM;
  const int64_t extent = int64_t{face->ascender} - face->descender;
  const int64_t size = extent > 0 ? height * units / extent : height;
  return static_cast<uint32_t>(std::clamp<int64_t>(size, 1, FONT_HEIGHT_LIMIT));
}

int32_t LineBegin(const FontRequest& request, Line* line) {
  if (request.height > FONT_HEIGHT_LIMIT) return FONT_TOO_LARGE;
  Face* found = nullptr;
  const int32_t failure = FaceFind(StyleOf(request), &found);
  if (failure != 0) return failure;
  line->from = found;
  line->face = found->face;
  line->height = request.height;
  const uint32_t size = LetterSize(line->face, request.height);
  if (size != found->letterSize) {
    found->letterSize = 0;
    if (fonts.libraries.setPixelSizes(line->face, 0, size) != 0) return FONT_UNREADABLE;
    found->letterSize = size;
  }
  line->baseline = Rounded(InPixels64(line->face, line->face->ascender));
  return 0;
}

// Into the face's slot, in its style.
bool LetterLoad(const Line& line, FT_UInt letter) {
  const FontLibraries& libraries = fonts.libraries;
  if (libraries.loadGlyph(line.face, letter, FT_LOAD_TARGET_MONO | FT_LOAD_NO_BITMAP) != 0) {
    return false;
  }
  if (line.from->lacksBold) libraries.embolden(line.face->glyph);
  if (line.from->lacksItalic) libraries.slant(line.face->glyph);
  return true;
}

bool LetterRender(FT_GlyphSlot letter) {
  return fonts.libraries.renderGlyph(letter, FT_RENDER_MODE_MONO) == 0 &&
         letter->bitmap.pixel_mode == FT_PIXEL_MODE_MONO;
}

bool IsSet(const FT_Bitmap& bits, int64_t column, int64_t row) {
  return (bits.buffer[row * bits.pitch + (column >> 3)] >> (7 - (column & 7)) & 1) != 0;
}

constexpr uint64_t FIRST_COLUMN = uint64_t{1} << 63;

void LetterKeep(const Line& line, FT_UInt letter, KeptLetter* kept) {
  *kept = {};
  kept->state = KeptLetter::TOO_LARGE;
  kept->letter = letter;
  if (!LetterLoad(line, letter) || !LetterRender(line.face->glyph)) return;
  const FT_GlyphSlot slot = line.face->glyph;
  if (slot->bitmap.rows > KEPT_ROWS || slot->bitmap.width > KEPT_ROWS) return;
  kept->state = KeptLetter::KEPT;
  kept->advance = static_cast<int32_t>(slot->advance.x >> 6);
  kept->left = slot->bitmap_left;
  kept->top = slot->bitmap_top;
  kept->rows = static_cast<int32_t>(slot->bitmap.rows);
  for (int32_t row = 0; row < kept->rows; row++) {
    for (uint32_t column = 0; column < slot->bitmap.width; column++) {
      if (IsSet(slot->bitmap, column, row)) kept->bits[row] |= FIRST_COLUMN >> column;
    }
  }
}

// Null where letters like it are not kept.
const KeptLetter* KeptLetterOf(const Line& line, char32_t character) {
  if (character >= KEPT_CHARACTERS || line.height > KEPT_HEIGHT) return nullptr;
  if (keptLetters.of != line.from || keptLetters.height != line.height) {
    for (KeptLetter& kept : keptLetters.letters) kept.state = KeptLetter::UNKNOWN;
    keptLetters.of = line.from;
    keptLetters.height = line.height;
  }
  KeptLetter* kept = &keptLetters.letters[character];
  if (kept->state == KeptLetter::UNKNOWN) {
    LetterKeep(line, fonts.libraries.charIndex(line.face, character), kept);
  }
  return kept;
}

// Lets each letter be seen at its place, kept or loaded. Gives where the next would stand.
template <class Visit>
int64_t LettersVisit(const Line& line, std::string_view text, Visit visit) {
  const FontLibraries& libraries = fonts.libraries;
  int64_t x = 0;
  FT_UInt previous = 0;
  while (!text.empty()) {
    const char32_t character = CharacterNext(&text);
    if (IsControl(character)) continue;
    const KeptLetter* kept = KeptLetterOf(line, character);
    const FT_UInt letter = kept ? kept->letter : libraries.charIndex(line.face, character);
    FT_Vector nearer{};
    if (previous != 0 && letter != 0 && FT_HAS_KERNING(line.face) &&
        libraries.kerning(line.face, previous, letter, FT_KERNING_DEFAULT, &nearer) == 0) {
      x += nearer.x >> 6;
    }
    previous = letter;
    if (kept && kept->state == KeptLetter::KEPT) {
      visit(*kept, x);
      x += kept->advance;
    } else if (LetterLoad(line, letter)) {
      const FT_Pos advance = line.face->glyph->advance.x;
      visit(line.face->glyph, x);
      x += advance >> 6;
    }
  }
  return x;
}

// ---- pixels

// Sets what is wanted of a row of a line, between two columns.
void SpanSet(const TextPixels& to, int64_t left, int64_t right, int64_t row) {
  row -= to.top;
  if (row < 0 || row >= to.height) return;
  left = std::max<int64_t>(left - to.left, 0);
  right = std::min<int64_t>(right - to.left, to.width);
  if (left < right) {
    std::memset(to.first + row * to.pitch + left, 255, static_cast<size_t>(right - left));
  }
}

// Large letters take their time: those of which nothing is wanted are left out.
bool IsWanted(const TextPixels& to, const Line& line, FT_GlyphSlot letter, int64_t x) {
  if (letter->format != FT_GLYPH_FORMAT_OUTLINE) return true;
  FT_BBox box{};
  fonts.libraries.outlineBox(&letter->outline, &box);
  const int64_t left = x + (box.xMin >> 6) - 1;
  const int64_t right = x + (box.xMax >> 6) + 2;
  const int64_t top = line.baseline - (box.yMax >> 6) - 2;
  const int64_t bottom = line.baseline - (box.yMin >> 6) + 1;
  return left < to.left + to.width && right > to.left && top < int64_t{to.top} + to.height &&
         bottom > to.top;
}

void LetterDraw(const TextPixels& to, const Line& line, FT_GlyphSlot letter, int64_t x) {
  if (!IsWanted(to, line, letter, x) || !LetterRender(letter)) return;
  const FT_Bitmap& bits = letter->bitmap;
  const int64_t left = x + letter->bitmap_left;
  const int64_t top = int64_t{line.baseline} - letter->bitmap_top;
  const int64_t first = std::max<int64_t>(to.top - top, 0);
  const int64_t end = std::min<int64_t>(int64_t{to.top} + to.height - top, bits.rows);
  for (int64_t y = first; y < end; y++) {
    for (int64_t column = 0; column < bits.width; column++) {
      if (IsSet(bits, column, y)) SpanSet(to, left + column, left + column + 1, top + y);
    }
  }
}

// A byte for each bit, the highest first: 255 where it is set.
struct SpreadBits {
  uint8_t bytes[256][8];
};
constexpr SpreadBits SPREAD_BITS = [] {
  SpreadBits table{};
  for (uint32_t bits = 0; bits < 256; bits++) {
    for (uint32_t i = 0; i < 8; i++) table.bytes[bits][i] = (bits << i & 0x80) != 0 ? 255 : 0;
  }
  return table;
}();

// Sets what is wanted of eight pixels.
void EightSet(const TextPixels& to, uint8_t* row, int64_t column, const uint8_t* eight) {
  if (column >= 0 && column + 8 <= to.width) {
    uint64_t pixels = 0;
    uint64_t set = 0;
    std::memcpy(&pixels, row + column, sizeof(pixels));
    std::memcpy(&set, eight, sizeof(set));
    pixels |= set;
    std::memcpy(row + column, &pixels, sizeof(pixels));
    return;
  }
  const int64_t first = std::max<int64_t>(-column, 0);
  const int64_t end = std::min<int64_t>(to.width - column, 8);
  for (int64_t i = first; i < end; i++) row[column + i] |= eight[i];
}

void LetterDraw(const TextPixels& to, const Line& line, const KeptLetter& letter, int64_t x) {
  const int64_t left = x + letter.left - to.left;
  const int64_t top = int64_t{line.baseline} - letter.top - to.top;
  const int64_t first = std::max<int64_t>(-top, 0);
  const int64_t end = std::min<int64_t>(to.height - top, letter.rows);
  if (left >= to.width || left <= -KEPT_ROWS) return;
  for (int64_t y = first; y < end; y++) {
    uint8_t* row = to.first + (top + y) * to.pitch;
    uint64_t bits = letter.bits[y];
    for (int64_t column = left; bits != 0; column += 8, bits <<= 8) {
      EightSet(to, row, column, SPREAD_BITS.bytes[bits >> 56]);
    }
  }
}

// A stroke through the whole line, around a height above the baseline in design units. It stays in
// the line, where it would be seen no more.
struct Stroke {
  int64_t middle, thickness;
};
void StrokeDraw(const TextPixels& to, const Line& line, const Stroke& stroke, int64_t width) {
  const int32_t rows = std::clamp(Rounded(InPixels64(line.face, stroke.thickness)), 1, line.height);
  const int64_t above = InPixels64(line.face, stroke.middle) + rows * 32;
  const int32_t top = std::clamp(line.baseline - Rounded(above), 0, line.height - rows);
  for (int32_t row = top; row < top + rows; row++) SpanSet(to, 0, width, row);
}

Stroke StrikeoutOf(const FT_Face face) {
  const void* table = fonts.libraries.table(face, FT_SFNT_OS2);
  if (!table) return {face->ascender / 3, face->underline_thickness};
  const auto* metrics = static_cast<const TT_OS2*>(table);
  return {metrics->yStrikeoutPosition - metrics->yStrikeoutSize / 2, metrics->yStrikeoutSize};
}

// ---- the operations

int32_t Measure(const FontRequest& font, std::string_view text, int32_t* width) {
  Line line;
  const int32_t failure = LineBegin(font, &line);
  if (failure != 0) return failure;
  const int64_t extent = LettersVisit(line, text, [](const auto&, int64_t) {});
  *width = static_cast<int32_t>(std::clamp<int64_t>(extent, 0, INT32_MAX));
  return 0;
}

int32_t Draw(const FontRequest& font, std::string_view text, const TextPixels& pixels) {
  Line line;
  const int32_t failure = LineBegin(font, &line);
  if (failure != 0) return failure;
  for (int32_t y = 0; y < pixels.height; y++) {
    std::memset(pixels.first + y * pixels.pitch, 0, static_cast<size_t>(pixels.width));
  }
  const auto draw = [&](const auto& letter, int64_t x) { LetterDraw(pixels, line, letter, x); };
  const int64_t width = LettersVisit(line, text, draw);
  const FT_Face face = line.face;
  if (font.isUnderlined) {
    StrokeDraw(pixels, line, {face->underline_position, face->underline_thickness}, width);
  }
  if (font.isStruckOut) StrokeDraw(pixels, line, StrikeoutOf(face), width);
  return 0;
}

// Also when the library is unloaded.
__attribute__((destructor)) void Release() {
  if (fonts.drawing) fonts.libraries.drawingEnd(fonts.drawing);  // and its faces
  fonts = {};
  keptLetters.of = nullptr;
}

}  // namespace

constinit const TextRasteriser MACHINE_FONTS{.measure = GUARDED<&Measure, FONT_UNREADABLE>,
                                             .draw = GUARDED<&Draw, FONT_UNREADABLE>,
                                             .release = &Release};

}  // namespace zel
