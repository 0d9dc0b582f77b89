/* The same work as the recipe of tools/recipe_speed.py, as calls in a loop: what a recipe may cost
 * beyond its functions is measured against this. Prints how many particles it kept, and the seconds
 * that it computed. usage: recipe_loop FILE... */
#include <orlune_ptk.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>

static void check(int32_t status) {
  if (status == 0) return;
  char function[ERROR_PROCEDURE_BYTES];
  ZEL_GetLastError(function);
  fprintf(stderr, "recipe_loop: %s returned %d\n", function, (int)status);
  exit(1);
}

/* The dark particles of at least 300 pixels after a median: area, outline and holes of each. */
static int32_t look_at(ImageRef image, const char* file) {
  static const uint32_t MEASURES[] = {MEASURE_AREA_PIXELS, MEASURE_PERIMETER,
                                      MEASURE_NUMBER_OF_HOLES};
  enum { COUNT = sizeof MEASURES / sizeof MEASURES[0] };
  int32_t level = 0, found = 0, kept = 0;
  ParticleReport* reports = NULL;
  check(ZEL_ReadFile(image, file, 0, NULL, NULL));
  check(ZEL_NthOrder(image, 0, image, 5, 5, 12));
  check(ZEL_AutoBThreshold(image, AUTOB_CLUSTERING, ARRAY_U8, NULL, &level));
  check(ZEL_Threshold(image, image, 0.0f, (float)(level - 1), 1.0f, 1));
  check(ZEL_Particle(image, CONNECTIVITY_8, &reports, &found));
  float* values = malloc(sizeof(float) * COUNT * (size_t)(found + 1));
  if (values == NULL) exit(1);
  check(ZEL_ParticleCoeffs(image, MEASURES, COUNT, reports, found, values));
  for (int32_t i = 0; i < found; ++i) kept += values[i * COUNT] >= 300.0f;
  free(values);
  ZEL_free(reports);
  return kept;
}

int main(int argc, char** argv) {
  ImageRef image = 0;
  int64_t kept = 0;
  check(ZEL_Create(&image, IMAGE_U8, 2));
  const clock_t begun = clock();
  for (int i = 1; i < argc; ++i) kept += look_at(image, argv[i]);
  printf("%lld particles, %.4f seconds\n", (long long)kept,
         (double)(clock() - begun) / CLOCKS_PER_SEC);
  return ZEL_CloseSys();
}
