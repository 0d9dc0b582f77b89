// Which part of an image a window shows, and where on its canvas.
#pragma once

#include "display/window_records.h"

namespace zel {

struct View {
  KernelRect image;   // the part shown, in pixels of the image
  KernelRect canvas;  // where it lies, in pixels of the canvas
  KernelRect clip;    // the same, ended where the canvas ends
};

// The view by the record's image size, origin, zoom and panel; the record's canvas rectangle
// becomes the view's.
View ViewCompute(WindowRecord* record);

struct CanvasPoint {
  int32_t x, y;
};
// By the canvas rectangle of the last computation.
PointInt CanvasToImage(const WindowRecord& record, int32_t x, int32_t y);
CanvasPoint ImageToCanvas(const WindowRecord& record, int32_t x, int32_t y);

// The image position at the centre of the canvas.
PointInt CentreOf(WindowRecord* record);

// Sets an axis' zoom: -16 to 32 but 0; other numbers keep it. True when it changed.
bool ZoomSet(int32_t zoom, int32_t* held, float* factor);

// Moves the origin so that a position of the image, which is limited to it, is at the centre as far
// as the image reaches. True when the origin changed.
bool CentreOn(WindowRecord* record, int32_t x, int32_t y);

}  // namespace zel
