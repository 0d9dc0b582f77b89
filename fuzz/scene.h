// An image and a region for one call of a target.
#pragma once

#include "harness/checks.h"
#include "harness/memory_files.h"
#include "orlune_ptk.h"

// Ended by hand: what is left over is looked for once all is given back.
struct Scene {
  test::MemoryFiles files;
  ImageRef image = 0;
  ImageInfo info{};
  RoiDescriptor* roi = nullptr;

  explicit Scene(bool hasBudget) { test::SetBudget(hasBudget); }

  // An image of a gray type; false where there is no memory for it.
  bool MakeImage(int32_t choice, int32_t width, int32_t height) {
    return ZEL_Create(&image, static_cast<int16_t>(choice % 3), 0) == 0 &&
           ZEL_SetImageSize(image, width, height) == 0 && ZEL_GetImageInfo(image, &info) == 0;
  }

  void End() {
    ZEL_FreeROI(roi);
    if (image != 0) ZEL_Dispose(image);
    test::CheckEnd(files);
  }
};
