/* Counts the light parts in a picture file, and tells the size of each.
 * usage: count_parts FILE */
#include <orlune_ptk.h>
#include <stdio.h>

/* Reads the file as 8-bit gray, and makes objects 1 and background 0. */
static int32_t find_objects(ImageRef image, const char* file) {
  int32_t threshold = 0;
  int32_t status = ZEL_ReadFile(image, file, 0, NULL, NULL);
  if (status == 0) status = ZEL_AutoBThreshold(image, AUTOB_CLUSTERING, ARRAY_U8, NULL, &threshold);
  if (status == 0) status = ZEL_Threshold(image, 0, (float)threshold, 255.0f, 1.0f, 1);
  return status;
}

int main(int argc, char** argv) {
  if (argc != 2) {
    fprintf(stderr, "usage: count_parts FILE\n");
    return 2;
  }
  ZEL_SetErrorMode(ERROR_MODE_SILENT); /* we tell of failures ourselves */

  ImageRef image = 0;
  ParticleReport* parts = NULL;
  int32_t count = 0;
  int32_t status = ZEL_Create(&image, IMAGE_U8, 2); /* 8-connected particles need a border of 2 */
  if (status == 0) status = find_objects(image, argv[1]);
  if (status == 0) status = ZEL_Particle(image, CONNECTIVITY_8, &parts, &count);
  if (status != 0) {
    char function[ERROR_PROCEDURE_BYTES];
    ZEL_GetLastError(function);
    fprintf(stderr, "%s: %s returned %d\n", argv[1], function, (int)status);
    return 1;
  }

  printf("%d parts\n", (int)count);
  for (int32_t i = 0; i < count; ++i) {
    printf("%3d: %d pixels, %d holes, at %d,%d\n", (int)i + 1, (int)parts[i].area,
           (int)parts[i].nbHoles, (int)parts[i].rect.left, (int)parts[i].rect.top);
  }
  ZEL_free(parts);
  return ZEL_CloseSys();
}
