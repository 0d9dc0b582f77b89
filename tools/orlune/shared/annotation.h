// Pictures made of what was found.
#pragma once

#include <string>

#include "orlune/gauge/shape_matches.h"
#include "orlune/inspect/inspection.h"
#include "orlune/shared/canvas.h"

namespace front {

// Draws kept particles in a green outline, with a yellow upright rectangle and their number;
// particles left out with a red outline alone.
void DrawParticles(const Inspection& inspection, const Canvas& canvas);

// Draws the objects so, the matches as the kept ones, and the template's axes where they lie in
// each.
void DrawMatches(const Matching& matching, const Canvas& canvas);

// Writes a 24-bit BMP file: the picture with its particles drawn. Throws as WritePicture.
void WriteAnnotation(const Inspection& inspection, const std::string& file);

// Writes a TIFF file whose pixels are the numbers of the kept particles they belong to, else 0: of
// unsigned 16 bits, or floats where numbers need more. Throws as WritePicture.
void WriteLabels(const Inspection& inspection, const std::string& file);

}  // namespace front
