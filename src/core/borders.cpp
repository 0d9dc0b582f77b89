// The three ways to fill an image's border from its pixels.
#include <algorithm>
#include <cstring>
#include <type_traits>

#include "core/images.h"
#include "core/side_fill.h"

namespace zel {
namespace {

// The block of an image as a border routine walks it.
struct BorderFrame {
  uint8_t* block;
  int64_t lineBytes;
  int64_t border;  // pixels filled on each side
  int64_t width, height;
  int64_t leftBytes;  // before the first column
  int32_t pixelBytes;

  uint8_t* Line(int64_t y) const { return block + (y + border) * lineBytes; }
};

// False when there is nothing to fill: `status` is then the answer.
bool FrameOf(ImageRef reference, BorderFrame* frame, Status* status) {
  Image* image = nullptr;
  *status = ImageLookup(reference, &image);
  if (*status != STATUS_OK) return false;
  if (image->border == 0) {
    *status = STATUS_NO_BORDER;
    return false;
  }
  if (image->width == 0 || image->height == 0) return false;
  if (image->type < IMAGE_U8 || image->type > IMAGE_RGB || image->type == IMAGE_COMPLEX) {
    *status = STATUS_BAD_LAYOUT_TYPE;
    return false;
  }
  PixelSize(image->type, &frame->pixelBytes);
  frame->block = VectorData<uint8_t>(image->pixels);
  frame->lineBytes = int64_t{image->lineWidth} * frame->pixelBytes;
  frame->border = image->border;
  frame->width = image->width;
  frame->height = image->height;
  return true;
}

void FrameSetLeft(BorderFrame* frame) {
  frame->leftBytes = PaddedBytes(frame->border, frame->pixelBytes);
}

// Calls fill(first, last, columns) with the first and the last pixel of each row, and the width of
// the border: usual ones are constants, so that no loop is left of a few single stores.
template <class T, class Fill>
void ColumnsFill(const BorderFrame& frame, const Fill& fill) {
  const auto rows = [frame, &fill](auto columns) {
    uint8_t* line = frame.Line(0) + frame.leftBytes;
    for (int64_t y = 0; y < frame.height; y++, line += frame.lineBytes) {
      T* first = reinterpret_cast<T*>(line);
      fill(first, first + frame.width - 1, columns);
    }
  };
  switch (frame.border) {
    case 1:
      return rows(std::integral_constant<int64_t, 1>());
    case 2:
      return rows(std::integral_constant<int64_t, 2>());
    case 3:
      return rows(std::integral_constant<int64_t, 3>());
    default:
      return rows(frame.border);
  }
}

template <class T>
void ColumnsMirror(const BorderFrame& frame) {
  ColumnsFill<T>(frame, [](T* first, T* last, auto columns) {
    for (int64_t k = 0; k < columns; k++) {
      first[-1 - k] = first[k];
      last[1 + k] = last[-k];
    }
  });
}

template <class T>
void ColumnsReplicate(const BorderFrame& frame) {
  ColumnsFill<T>(frame, [](T* first, T* last, auto columns) {
    SideFill(first - columns, columns, *first);
    SideFill(last + 1, columns, *last);
  });
}

template <size_t SideBytes>
void ColumnsZeroOf(const BorderFrame& frame) {
  for (int64_t y = 0; y < frame.height; y++) {
    uint8_t* row = frame.Line(y) + frame.leftBytes;
    std::memset(row - SideBytes, 0, SideBytes);
    std::memset(row + frame.width * frame.pixelBytes, 0, SideBytes);
  }
}

// Particle work clears one or two columns on each call: single stores, not calls for each row.
void ColumnsZero(const BorderFrame& frame) {
  const int64_t sideBytes = frame.border * frame.pixelBytes;
  switch (sideBytes) {
    case 1:
      return ColumnsZeroOf<1>(frame);
    case 2:
      return ColumnsZeroOf<2>(frame);
    case 4:
      return ColumnsZeroOf<4>(frame);
    default:
      break;
  }
  for (int64_t y = 0; y < frame.height; y++) {
    uint8_t* row = frame.Line(y) + frame.leftBytes;
    SideFill<uint8_t>(row - sideBytes, sideBytes, 0);
    SideFill<uint8_t>(row + frame.width * frame.pixelBytes, sideBytes, 0);
  }
}

void LineCopy(const BorderFrame& frame, int64_t from, int64_t to) {
  std::memcpy(frame.Line(to), frame.Line(from), static_cast<size_t>(frame.lineBytes));
}

}  // namespace

Status BorderMirror(ImageRef reference) {
  Status status = STATUS_OK;
  BorderFrame frame{};
  if (!FrameOf(reference, &frame, &status)) return status;
  if (frame.width < frame.border || frame.height < frame.border) {
    // An image smaller than its border is mirrored as far as it reaches, and addressed as if that
    // were its border: the pixels so filled are not those next to the image.
    frame.border = std::min(frame.width, frame.height);
  }
  FrameSetLeft(&frame);
  if (frame.pixelBytes == 1) {
    ColumnsMirror<uint8_t>(frame);
  } else if (frame.pixelBytes == 2) {
    ColumnsMirror<uint16_t>(frame);
  } else {
    ColumnsMirror<uint32_t>(frame);
  }
  for (int64_t k = 0; k < frame.border; k++) {
    LineCopy(frame, k, -1 - k);
    LineCopy(frame, frame.height - 1 - k, frame.height + k);
  }
  return STATUS_OK;
}

Status BorderReplicate(ImageRef reference) {
  Status status = STATUS_OK;
  BorderFrame frame{};
  if (!FrameOf(reference, &frame, &status)) return status;
  FrameSetLeft(&frame);
  if (frame.pixelBytes == 1) {
    ColumnsReplicate<uint8_t>(frame);
  } else if (frame.pixelBytes == 2) {
    ColumnsReplicate<uint16_t>(frame);
  } else {
    ColumnsReplicate<uint32_t>(frame);
  }
  for (int64_t k = 0; k < frame.border; k++) {
    LineCopy(frame, 0, -1 - k);
    LineCopy(frame, frame.height - 1, frame.height + k);
  }
  return STATUS_OK;
}

Status BorderZero(ImageRef reference) {
  Status status = STATUS_OK;
  BorderFrame frame{};
  if (!FrameOf(reference, &frame, &status)) return status;
  FrameSetLeft(&frame);
  ColumnsZero(frame);
  const size_t bandBytes = static_cast<size_t>(frame.border * frame.lineBytes);
  std::memset(frame.Line(-frame.border), 0, bandBytes);
  std::memset(frame.Line(frame.height), 0, bandBytes);
  return STATUS_OK;
}

}  // namespace zel
