/* Failure numbers of orlune_ptk, and how failures are reported. The rules that hold for all
 * functions are told in orlune_ptk.h. */
#ifndef ORLUNE_PTK_ERRORS_H
#define ORLUNE_PTK_ERRORS_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* All failures that functions return. What a number means for a function stands with the function.
 */
typedef enum FailureNumber {
  ZEL_ERR_NO_FONT = -2,                /* no font is installed */
  ZEL_ERR_FONT_UNREADABLE = -4,        /* a font cannot be opened */
  ZEL_ERR_NO_OUTPUT = -5,              /* NULL where a reader would put its result */
  ZEL_ERR_FONT_TOO_LARGE = -6,         /* letters of more than FONT_SIZE_LIMIT pixels */
  ZEL_ERR_NO_FONT_LIBRARIES = -7,      /* the libraries that draw text are not installed */
  ZEL_ERR_MEMORY_FULL = -101,          /* no memory, or a size that would pass 2^31 - 1 bytes */
  ZEL_ERR_MEMORY_ERROR = -102,         /* a caller's array is too small; no memory for an image */
  ZEL_ERR_BAD_IMAGE = -200,            /* the reference names no image */
  ZEL_ERR_IMAGE_MISSING = -201,        /* 0 where a reader needs an image */
  ZEL_ERR_SECOND_IMAGE_MISSING = -202, /* 0 where an operator needs two images */
  ZEL_ERR_BAD_LAYOUT_TYPE = -300,      /* a pixel type that has no layout in memory */
  ZEL_ERR_BAD_TYPE = -301,             /* a pixel type that the function does not take */
  ZEL_ERR_BAD_OPERAND_TYPE = -302,     /* ... that an operator or cast does not take */
  ZEL_ERR_COPY_TYPE_DIFFERS = -303,    /* an image to copy has another type */
  ZEL_ERR_DESTINATION_TYPE_DIFFERS = -304, /* the destination has another type */
  ZEL_ERR_OPERAND_TYPE_DIFFERS = -305,     /* operands and destination do not go together */
  ZEL_ERR_SIZE_DIFFERS = -306,             /* sizes differ, or there are no pixels */
  ZEL_ERR_NO_BORDER = -308,                /* a border below 0 */
  ZEL_ERR_BORDER_TOO_SMALL = -309,         /* the border is narrower than the function needs */
  ZEL_ERR_DESTINATION_UNSUPPORTED = -312,  /* a type that cannot hold the result */
  ZEL_ERR_SAME_IMAGE = -313,               /* one image stands for two */
  ZEL_ERR_NO_TEXT = -450,                  /* NULL where a text or a font's name belongs */
  ZEL_ERR_BAD_FILE_HEADER = -500,          /* a header that cannot be read, taken or written */
  ZEL_ERR_FILE_OPEN = -503,                /* the file cannot be opened */
  ZEL_ERR_INVALID_PARAMETER = -503,        /* a number outside its range, or too few points */
  ZEL_ERR_FILE_SEEK = -507,                /* a place in the file cannot be reached */
  ZEL_ERR_FILE_UNSUPPORTED = -509,         /* no known format */
  ZEL_ERR_FILE_INFO = -510,                /* missing, no regular file, or too long */
  ZEL_ERR_FILE_READ = -511,                /* pixels cannot be read */
  ZEL_ERR_FILE_WRITE = -512,               /* pixels cannot be written */
  ZEL_ERR_BAD_FILE_FORMAT = -514,          /* a directory or table in the file is not accepted */
  ZEL_ERR_DISPLAY_UNUSABLE = -600,         /* the desktop cannot be drawn on */
  ZEL_ERR_NO_WINDOW = -601,                /* a window cannot be made */
  ZEL_ERR_BAD_WINDOW = -602,               /* no window has this number */
  ZEL_ERR_WINDOW_CLOSED = -698,            /* the window is not open */
  ZEL_ERR_BAD_ATTRIBUTE = -699,            /* no attribute has this number, or not here */
  ZEL_ERR_BAD_INTERPOLATION = -751,        /* no InterpolationMethod has this number */
  ZEL_ERR_TOO_FEW_POINTS = -752,           /* a path or a list of points is too short */
  ZEL_ERR_BAD_MEASURE = -801,              /* no ParticleMeasure has this number */
  ZEL_ERR_INTERNAL = -1001,                /* outside an image; no reference is left */
  ZEL_ERR_BAD_ROI = -1200,                 /* a region without a contour, or of a wrong shape */
  ZEL_ERR_COMPLEX_EXPECTED = -2003,        /* an image that has to be of IMAGE_COMPLEX is not */
  ZEL_ERR_IMAGE_TOO_SMALL = -2314,         /* a shape does not fit the image */
  ZEL_ERR_NOT_A_RECTANGLE = -3000,         /* a region that has to be a rectangle */
  ZEL_ERR_BAD_CHECK = -3003,               /* a bar code is not what its check character tells */
  ZEL_ERR_NO_ASCII = -3004,                /* a bar code shifts to no character */
  ZEL_ERR_DIVIDED_BY_ZERO = -3006,         /* a scale, or a line, of no extent */
  ZEL_ERR_NULL_POINTER = -3009,            /* NULL where a pointer is required */
  ZEL_ERR_NO_SOLUTION = -3010,             /* equations without exactly one solution */
  ZEL_ERR_TOO_FEW_BARS = -3030,            /* a bar code of that kind has more bars */
  ZEL_ERR_NO_SEGMENT = -3040,              /* a digit, or a display, without a segment */
  ZEL_ERR_INEXACT_DIGIT = -3041,           /* segments that form no digit exactly */
  ZEL_ERR_BAD_WIDTH = -3051                /* too few samples for a curve */
} FailureNumber;

/* Whether failures are shown. */
typedef enum ErrorMode {
  ERROR_MODE_MESSAGE_BOX = 0, /* in a message box, as at the start */
  ERROR_MODE_SILENT = 1
} ErrorMode;

/* Bytes that ZEL_GetLastError can write. */
#define ERROR_PROCEDURE_BYTES 256

/* Reports a failure the way the library's own functions do. Returns 0, or the status made negative.
 * procedure: name of the failing function, zero-terminated, of which 255 bytes are kept; NULL keeps
 *            the name reported before.
 * status:    0 does nothing and clears nothing; any other number is reported by its absolute value,
 *            also one that is no FailureNumber.
 * Failures: the given one; none of its own. */
int32_t ZEL_ProcessError(const char* procedure, int32_t status);

/* Chooses whether failures are shown. They are kept for ZEL_GetLastError in either mode.
 * mode: an ErrorMode. Any number above 0 is silent, any other shows a message box.
 * Failures: none; returns 0. */
int32_t ZEL_SetErrorMode(int32_t mode);

/* Returns the ErrorMode in force.
 * Failures: none. */
int32_t ZEL_GetErrorMode(void);

/* Returns the last failure number (negative), and from then on 0 until the next failure.
 * procedure: NULL, or ERROR_PROCEDURE_BYTES that receive the zero-terminated name reported with the
 *            failure, an empty text when there is none.
 * Failures: none of its own. */
int32_t ZEL_GetLastError(char* procedure);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
