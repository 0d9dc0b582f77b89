/* Pictures exchanged with other programs through the clipboard. The rules that hold for all
 * functions are told in orlune_ptk.h.
 *
 * On an X desktop this is the clipboard that all programs share, with pictures of the type
 * image/bmp. What was written can be pasted elsewhere as long as this program calls functions that
 * let events in (windows.h); at ZEL_CloseSys it is handed to the desktop's clipboard manager, if
 * there is one. On a machine without a desktop the clipboard belongs to the process. ZEL_CloseSys
 * leaves what lies in it.
 *
 * A clipboard that cannot be opened, because the program that owns it does not answer for three
 * seconds, is no failure: nothing is read and no argument is written. */
#ifndef ORLUNE_PTK_CLIPBOARD_H
#define ORLUNE_PTK_CLIPBOARD_H

#include "types.h"

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* Puts a copy of an image into the clipboard: IMAGE_U8 as a bitmap of 8 bits with 256 colours,
 * IMAGE_RGB as one of 24 bits. An image without pixels leaves what lies there.
 * image:   IMAGE_U8 or IMAGE_RGB.
 * palette: 256 colours of an IMAGE_U8 image, whose fourth bytes are not looked at; NULL: gray
 *          levels.
 * Failures: -200; -301 for another type; -101 no memory. The clipboard is as it was then. Reported
 * as of "ZEL_ClipboardToImage". */
int32_t ZEL_ImageToClipboard(ImageRef image, const RGBValue* palette);

/* Takes a copy of the picture in the clipboard, a bitmap of 8 or 24 bits. Pixels of 8 bits go into
 * an IMAGE_U8 image as they are and into an IMAGE_RGB image as their colours; pixels of 24 bits
 * into an IMAGE_U8 image as the mean of their three bytes, cut. Fourth bytes are 0.
 * image:     IMAGE_U8 or IMAGE_RGB; takes the size of the picture, 0 x 0 for one without pixels.
 *            The border is left as it is.
 * palette:   receives 256 colours: those of the picture, and gray levels where it has none; or
 *            NULL.
 * available: receives 1 if there is a picture, 0 if not, and then the image is left alone. It is
 *            written also when the call fails.
 * Failures: -3009 for available; -200; -301 for another type; -101 no memory; -1 the picture has
 * another number of bits, is compressed or cut short: the image has its size by then, unless far
 * less is there than that size takes. palette is not written when the call fails. */
int32_t ZEL_ClipboardToImage(ImageRef image, RGBValue* palette, int32_t* available);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
