#!/bin/sh
# Makes the small files of other programs that the tests read: TIFF by libtiff's tools, TIFF and BMP
# by ImageMagick, all uncompressed. The pictures are ramps that the test knows by formula.
# usage: make_foreign_files.sh FOLDER
set -eu
folder=$1
mkdir -p "$folder"
work=$(mktemp -d)
trap 'rm -r "$work"' EXIT

# picture WIDTH HEIGHT KIND: a plain PGM or PPM of a formula in x and y
picture() {
  awk -v w="$1" -v h="$2" -v kind="$3" 'BEGIN {
    printf "%s\n%d %d\n255\n", kind == "gray" ? "P2" : kind == "bits" ? "P2" : "P3", w, h
    for (y = 0; y < h; y++) for (x = 0; x < w; x++) {
      gray = (23 * x + 41 * y) % 256
      if (kind == "gray") print gray
      else if (kind == "bits") print (x * y + x) % 3 == 0 ? 255 : 0
      else if (kind == "few") printf "%d %d %d\n", 16 * ((x + y) % 16), 255 - 16 * ((x + y) % 16), 40
      else printf "%d %d %d\n", gray, (5 * x + 7 * y) % 256, (200 + x + 3 * y) % 256
    }
  }'
}

for kind in gray colour few; do
  picture 10 6 $kind >"$work/$kind.txt"
done
picture 16 16 bits >"$work/bits.txt"
convert "$work/gray.txt" -depth 8 "$work/gray.pgm"
convert "$work/colour.txt" -depth 8 "$work/colour.ppm"
convert "$work/few.txt" -depth 8 "$work/few.ppm"
convert "$work/bits.txt" -monochrome "$work/bits.pbm"

ppm2tiff -c none -r 6 "$work/gray.pgm" "$folder/libtiff_gray.tif"
ppm2tiff -c none -r 2 "$work/gray.pgm" "$folder/libtiff_gray_strips.tif"
ppm2tiff -c none -r 2 "$work/colour.ppm" "$folder/libtiff_colour.tif"
ppm2tiff -c none "$work/bits.pbm" "$folder/libtiff_bilevel.tif"
tiffcp -B -c none "$folder/libtiff_gray.tif" "$folder/libtiff_gray_big_endian.tif"
tiffcp -B -c none "$folder/libtiff_colour.tif" "$folder/libtiff_colour_big_endian.tif"
tiffcp -p separate -c none -r 6 "$folder/libtiff_colour.tif" "$folder/libtiff_planes.tif"
convert "$work/gray.pgm" -depth 16 -endian MSB -compress none "$folder/magick_16_bits.tif"
convert "$work/few.ppm" -type Palette -compress none "$folder/magick_palette.tif"
convert "$work/gray.pgm" +dither -colors 256 -compress none "bmp3:$folder/magick_gray.bmp"
convert "$work/colour.ppm" -compress none "bmp3:$folder/magick_colour.bmp"
convert "$work/few.ppm" -type Palette -compress none "bmp3:$folder/magick_16_colours.bmp"
