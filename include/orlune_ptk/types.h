/* What all families of orlune_ptk speak of: image references, pixel types, rectangles. The rules
 * that hold for all functions are told in orlune_ptk.h. */
#ifndef ORLUNE_PTK_TYPES_H
#define ORLUNE_PTK_TYPES_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

typedef uint32_t ImageRef; /* 0 is no image */
typedef uint32_t RGBValue; /* 0x00RRGGBB; bytes in memory: blue, green, red, fourth */

typedef struct ApiRect {
  int32_t top, left, height, width; /* pixels */
} ApiRect;

typedef struct ApiPoint {
  int32_t x, y; /* pixels */
} ApiPoint;

/* Points of regions, paths and lines. */
typedef struct PointInt {
  int32_t x, y; /* pixels */
} PointInt;

/* Points between pixels. */
typedef struct PointFloat {
  float x, y; /* pixels */
} PointFloat;

/* Sides of a rectangle that means "the whole image": rectangles are clipped to the image. */
#define WHOLE_IMAGE_EXTENT 32767

typedef enum ImageType {
  IMAGE_U8 = 0,      /* unsigned 8-bit */
  IMAGE_I16 = 1,     /* signed 16-bit */
  IMAGE_SGL = 2,     /* 32-bit float */
  IMAGE_COMPLEX = 3, /* two 32-bit floats, real then imaginary */
  IMAGE_RGB = 4,     /* blue, green, red and an unused byte, in address order */
  IMAGE_OPAQUE = 5   /* a block of bytes that no function computes on */
} ImageType;

/* Numeric types of callers' arrays. Code 5 is unused. Between types, values go through a 64-bit
 * float; an integer takes the low bits of the truncated value, without saturation. */
typedef enum ArrayType {
  ARRAY_I8 = 0,
  ARRAY_I32 = 1,
  ARRAY_I16 = 2,
  ARRAY_SGL = 3,
  ARRAY_DBL = 4,
  ARRAY_U16 = 6,
  ARRAY_U32 = 7,
  ARRAY_U8 = 8
} ArrayType;

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
