// Opening the libraries that find and draw fonts.
#include "platform/font_libraries.h"

#include "platform/shared_library.h"

namespace zel {
namespace {

bool FindersFind(FontLibraries* found) {
  SharedLibrary library("libfontconfig.so.1");
  library.Find("FcInitLoadConfigAndFonts", &found->configLoad);
  library.Find("FcConfigDestroy", &found->configDestroy);
  library.Find("FcConfigSubstitute", &found->configSubstitute);
  library.Find("FcDefaultSubstitute", &found->defaultSubstitute);
  library.Find("FcFontMatch", &found->fontMatch);
  library.Find("FcPatternCreate", &found->patternCreate);
  library.Find("FcPatternDestroy", &found->patternDestroy);
  library.Find("FcPatternAddString", &found->patternAddString);
  library.Find("FcPatternAddInteger", &found->patternAddInteger);
  library.Find("FcPatternAddBool", &found->patternAddBool);
  library.Find("FcPatternGetString", &found->patternGetString);
  library.Find("FcPatternGetInteger", &found->patternGetInteger);
  library.Find("FcPatternGetBool", &found->patternGetBool);
  library.Find("FcPatternGetMatrix", &found->patternGetMatrix);
  return library.IsWhole();
}

bool DrawersFind(FontLibraries* found) {
  SharedLibrary library("libfreetype.so.6");
  library.Find("FT_Init_FreeType", &found->drawingStart);
  library.Find("FT_Done_FreeType", &found->drawingEnd);
  library.Find("FT_New_Face", &found->faceOpen);
  library.Find("FT_Done_Face", &found->faceClose);
  library.Find("FT_Set_Pixel_Sizes", &found->setPixelSizes);
  library.Find("FT_Get_Char_Index", &found->charIndex);
  library.Find("FT_Get_Kerning", &found->kerning);
  library.Find("FT_Load_Glyph", &found->loadGlyph);
  library.Find("FT_Render_Glyph", &found->renderGlyph);
  library.Find("FT_GlyphSlot_Embolden", &found->embolden);
  library.Find("FT_GlyphSlot_Oblique", &found->slant);
  library.Find("FT_Outline_Get_CBox", &found->outlineBox);
  library.Find("FT_Get_Sfnt_Table", &found->table);
  return library.IsWhole();
}

}  // namespace

bool FontLibrariesOpen(FontLibraries* libraries) {
  return FindersFind(libraries) && DrawersFind(libraries);
}

}  // namespace zel
