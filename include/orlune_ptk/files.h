/* Picture files. The rules that hold for all functions are told in orlune_ptk.h.
 *
 * Three formats: the library's own ("native"), which holds every image type and the calibration;
 * TIFF and BMP, both uncompressed. Paths name regular files of at most 2^31 - 1 bytes: a folder,
 * pipe or device is refused at once, never waited for. A path of NULL counts as an empty one.
 *
 * What is read of a file: native files of version 1; TIFF with one directory, either byte order,
 * strips, 1, 2, 4, 8 or 16 bits gray or palette, 24-bit colour interleaved or in planes; BMP of 4,
 * 8 and 24 bits from the bottom up, whose size field equals the file's length. Any other file is
 * -509, a compressed TIFF -514. The compression field of a BMP is not looked at.
 *
 * Known oddities, kept because files and programs in the field rely on them:
 * - The samples of 16-bit TIFF files are big-endian, whatever byte order the file's mark tells.
 * - Two SHORTs or two to four BYTEs inside a TIFF directory entry are taken for an offset.
 * - A TIFF with photometric 0 has every bit of an IMAGE_U8 or IMAGE_I16 image inverted: one bit
 *   0 and 1 read as 255 and 254. TIFF rows of fewer than 8 bits are one stream without padding.
 *   Pixels that such a file is too short to hold are inverted too, but for those in memory that the
 *   image did not have before where these pass 1 MiB and 16 times the file's length: they are 0.
 * - A strip's byte count is made a multiple of the width in pixels.
 * - A TIFF colour map of fewer than 768 values is taken as having that many entries in each of the
 *   three colours; values behind its end are 0.
 * - The green and blue planes of a TIFF read into IMAGE_RGB lie one and two pixels further on, and
 *   only the red plane reaches IMAGE_I16, IMAGE_SGL and IMAGE_COMPLEX.
 * - 8-bit BMP files are written without row padding: only widths that are multiples of 4 read back.
 * - 4-bit BMP rows of an odd width lack their last pixel, which keeps what the image held.
 * - 8-bit TIFF files are written as palette images.
 */
#ifndef ORLUNE_PTK_FILES_H
#define ORLUNE_PTK_FILES_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* Entries of a colour table. */
#define FILE_TABLE_ENTRIES 256

/* Formats of picture files. */
typedef enum ImageFileFormat {
  FILE_FORMAT_UNKNOWN = 0, /* ZEL_PtkFileInfo: missing or not understood */
  FILE_FORMAT_NATIVE = 1,
  FILE_FORMAT_TIFF = 2,
  FILE_FORMAT_BMP = 3 /* ZEL_WriteFile: as any number but the two above */
} ImageFileFormat;

/* What ZEL_PtkFileInfo tells of a file. */
typedef struct FileInfo {
  int32_t fileType;     /* ImageFileFormat */
  int32_t bitsPerPixel; /* 1, 2, 4, 8, 16, 24, 32, 48 or 64 */
  int32_t planes;       /* 1 for gray, 16-bit gray 3; 3 for colour, in separate planes 1;
                           2 for complex */
  int32_t width;        /* of the file, odd widths too */
  int32_t height;
} FileInfo;

/* Reads a file's header. A file that is missing, not understood or damaged is no failure here: it
 * gives FILE_FORMAT_UNKNOWN and planes, width and height of 0, and bitsPerPixel keeps what it held.
 * path: of the file, zero-terminated. NULL counts as an empty one.
 * info: receives the record.
 * Failures: -3009 for info. */
int32_t ZEL_PtkFileInfo(const char* path, FileInfo* info);

/* Reads a file into an image, converting the pixels.
 *
 * The image takes the file's height and its width rounded up to even; the column that an odd width
 * leaves over is 0. Pixels that the file is too short to hold keep what the resized image held. The
 * border is not written. The calibration becomes the file's for native files (both steps from the
 * one stored ratio), else unit 3 and steps of 1.0. The mask offset stays. A file without pixels
 * gives 0 x 0. What a read costs in time and in memory that is really used follows what the file
 * holds and the image held, whatever size the file claims.
 *
 *   from \ to       IMAGE_U8       IMAGE_I16      IMAGE_SGL      IMAGE_COMPLEX   IMAGE_RGB
 *   1, 2, 4, 8 bits the sample     the sample     the sample     as real part    as all colours
 *   16 bits         low byte       the sample     signed value   signed value    low byte
 *   24 bits         (R+G+B)/3      (R+G+B)/3      (R+G+B) x 1/3  as real part    R, G, B
 *   colour, native  (R+G+B)/3      (R+G+B)/3      (R+G+B) x 1/3  as real part    all four bytes
 *   float           low byte *     low word *     the sample     as real part    low byte *
 *   complex         of magnitude   of magnitude   magnitude      the sample      of magnitude
 *                 * of the truncated number
 * Samples are not scaled: a bilevel file gives 0 and 1. Low bits are taken without saturation.
 * Where gray becomes colour, and for 24 bits, the fourth byte is 0.
 * image:     of any type but IMAGE_OPAQUE, which it keeps.
 * path:      of the file, zero-terminated. NULL counts as an empty one.
 * wantTable: non-zero asks for the file's colour table.
 * table:     FILE_TABLE_ENTRIES entries that receive it, or NULL. They are written only when the
 *            call succeeds, wantTable is set and the file has a table; entries that the file does
 *            not give are a gray ramp. The fourth byte of each entry is left alone.
 * count:     NULL, or receives FILE_TABLE_ENTRIES when the table was wanted and found, 0 when not;
 *            FILE_TABLE_ENTRIES after every failure, also of an unknown image.
 * Failures: -200 (tested before the path); -510 missing file, no regular file, or a longer one than
 * 2^31 - 1 bytes; -503 the file cannot be opened; -509 unknown format; -500 header not accepted;
 * -514 directory or colour map of a TIFF not accepted; -507 a TIFF value at a negative offset; -101
 * no memory for the directory: all these leave the image as it was. -101 no memory for the size,
 * also one that no image can have: the image has its new calibration by then. -300 IMAGE_OPAQUE or
 * a number outside ImageType: likewise, and its new size for IMAGE_OPAQUE. -511 the pixels cannot
 * be read, -514 nor what tells where a TIFF's strips lie, -101 no memory for a conversion: the
 * image is resized by then and can be partly written. */
int32_t ZEL_ReadFile(ImageRef image, const char* path, int32_t wantTable, RGBValue* table,
                     int32_t* count);

/* Writes an image to a file, which is made, or emptied first when it is there.
 *
 *   format              image types and what becomes of them
 *   FILE_FORMAT_NATIVE  all five; with the unit and the x step, of sizes the low 16 bits
 *   FILE_FORMAT_TIFF    IMAGE_U8 (8 bits with the table as palette), IMAGE_I16, IMAGE_RGB (24
 *                       bits); little-endian, one strip; width and height 1 to 65535
 *   FILE_FORMAT_BMP     IMAGE_U8 (8 bits with the table), IMAGE_RGB (24 bits)
 *
 * The image is not changed. Only when writing the pixels fails (-511, -512) and there is line
 * padding or a border are its rows left moved together, without what lies between them; a colour
 * BMP is spared even then, and so is any image where only closing the file fails.
 *
 * The rows of a colour BMP that could not be written, on a full disk say, are no failure: kept. Who
 * must know compares the file's length with 54 + height x (3 width rounded up to a multiple of 4).
 * image:  of a type that the format takes. 0 x 0 gives a native file or BMP of a header alone.
 * path:   of the file, zero-terminated. NULL counts as an empty one.
 * format: an ImageFileFormat.
 * table:  the first colours of the table; the rest is a gray ramp. NULL gives the whole ramp. For
 *         IMAGE_U8 as TIFF or BMP only; the fourth bytes are not looked at.
 * count:  entries of table, of which FILE_TABLE_ENTRIES are used. Below 1: none.
 * Failures: -200, and -500 for a size that TIFF does not take or a type that BMP does not take: the
 * file is not touched. -503 the file cannot be opened, or is no regular file. -500 the type is none
 * that TIFF or native takes, -101 no memory for the header: an empty file is left. -500 the header
 * cannot be written, -512 the pixels cannot be written (not reported for the rows of a colour BMP),
 * or the system tells only on closing the file that it could not keep them, -511 for a seek in a
 * TIFF, -101 no memory for a conversion: the file stays as far as it came. */
int32_t ZEL_WriteFile(ImageRef image, const char* path, int32_t format, const RGBValue* table,
                      int32_t count);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
