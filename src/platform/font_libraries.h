// The functions of the libraries that find and draw the machine's fonts.
#pragma once

#include <fontconfig/fontconfig.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H
#include FT_SYNTHESIS_H
#include FT_TRUETYPE_TABLES_H

namespace zel {

struct FontLibraries {
  decltype(&FcInitLoadConfigAndFonts) configLoad;
  decltype(&FcConfigDestroy) configDestroy;
  decltype(&FcConfigSubstitute) configSubstitute;
  decltype(&FcDefaultSubstitute) defaultSubstitute;
  decltype(&FcFontMatch) fontMatch;
  decltype(&FcPatternCreate) patternCreate;
  decltype(&FcPatternDestroy) patternDestroy;
  decltype(&FcPatternAddString) patternAddString;
  decltype(&FcPatternAddInteger) patternAddInteger;
  decltype(&FcPatternAddBool) patternAddBool;
  decltype(&FcPatternGetString) patternGetString;
  decltype(&FcPatternGetInteger) patternGetInteger;
  decltype(&FcPatternGetBool) patternGetBool;
  decltype(&FcPatternGetMatrix) patternGetMatrix;

  decltype(&FT_Init_FreeType) drawingStart;
  decltype(&FT_Done_FreeType) drawingEnd;
  decltype(&FT_New_Face) faceOpen;
  decltype(&FT_Done_Face) faceClose;
  decltype(&FT_Set_Pixel_Sizes) setPixelSizes;
  decltype(&FT_Get_Char_Index) charIndex;
  decltype(&FT_Get_Kerning) kerning;
  decltype(&FT_Load_Glyph) loadGlyph;
  decltype(&FT_Render_Glyph) renderGlyph;
  decltype(&FT_GlyphSlot_Embolden) embolden;
  decltype(&FT_GlyphSlot_Oblique) slant;
  decltype(&FT_Outline_Get_CBox) outlineBox;
  decltype(&FT_Get_Sfnt_Table) table;
};

// False where the machine has not got all of them.
bool FontLibrariesOpen(FontLibraries* libraries);

}  // namespace zel
