/* Morphology: shapes and grey levels changed by structuring elements. The rules that hold for all
 * functions are told in orlune_ptk.h. */
#ifndef ORLUNE_PTK_MORPHOLOGY_H
#define ORLUNE_PTK_MORPHOLOGY_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* The neighbourhood that an operation of morphology looks at. */
typedef struct StructuringElement {
  int32_t width;     /* columns */
  int32_t height;    /* rows */
  int32_t* elements; /* width * height numbers, row by row; those that are not 0 are its members */
  int32_t hexagonal; /* 0 in the low 16 bits: rows of the image lie in columns. Else a hexagonal
                      * grid, in which rows 1, 3, 5... lie half a pixel to the right */
} StructuringElement;

/* An element of 3 x 3 members on a square grid. The library keeps one record: what a caller
 * changes in it stays changed, and it is not for the caller to release.
 * Failures: none; returns its address. */
StructuringElement* ZEL_Get_MO_STD3X3Ptr(void);

/* An element of 5 x 5 members on a square grid, kept like that of ZEL_Get_MO_STD3X3Ptr.
 * Failures: none; returns its address. */
StructuringElement* ZEL_Get_MO_STD5X5Ptr(void);

/* An element of 7 x 7 members on a square grid, kept like that of ZEL_Get_MO_STD3X3Ptr.
 * Failures: none; returns its address. */
StructuringElement* ZEL_Get_MO_STD7X7Ptr(void);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
