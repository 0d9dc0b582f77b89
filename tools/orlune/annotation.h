// Pictures made of what was found.
#pragma once

#include <string>

#include "orlune/canvas.h"
#include "orlune/inspection.h"

namespace front {

// Draws kept particles in a green outline, with a yellow upright rectangle and their number;
// particles left out with a red outline alone.
void DrawParticles(const Inspection& inspection, const Canvas& canvas);

// Writes a 24-bit BMP file: the picture with its particles drawn. Throws as WritePicture.
void WriteAnnotation(const Inspection& inspection, const std::string& file);

// Writes a TIFF file whose pixels are the numbers of the kept particles they belong to, else 0: of
// unsigned 16 bits, or floats where numbers need more. Throws as WritePicture.
void WriteLabels(const Inspection& inspection, const std::string& file);

}  // namespace front
