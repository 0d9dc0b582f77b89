/* A program outside this repository: uses the installed header and library alone. */
#include <orlune_ptk.h>
#include <stdio.h>

int main(void) {
  ImageRef image = 0;
  ImageInfo info;
  ZEL_SetErrorMode(ERROR_MODE_SILENT);
  if (ZEL_Create(&image, IMAGE_U8, 2) != 0 || ZEL_SetImageSize(image, 20, 10) != 0) return 1;
  if (ZEL_GetImageInfo(image, &info) != 0 || info.width != 20 || info.height != 10) return 1;
  if (ZEL_Dispose(image) != 0 || ZEL_Dispose(image) != ZEL_ERR_BAD_IMAGE) return 1;
  if (ZEL_GetLastError(NULL) != ZEL_ERR_BAD_IMAGE) return 1;
  puts("an image of 20 x 10 pixels came and went");
  return ZEL_CloseSys();
}
