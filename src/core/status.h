// The failure numbers that kernels report: positive inside the library, negated by the exports.
#pragma once

#include <cstdint>

#include "orlune_ptk/errors.h"

namespace zel {

using Status = int32_t;

constexpr Status STATUS_OK = 0;

// Those that callers of the library can meet.
constexpr Status STATUS_NO_OUTPUT = -ZEL_ERR_NO_OUTPUT;
constexpr Status STATUS_MEMORY_FULL = -ZEL_ERR_MEMORY_FULL;
constexpr Status STATUS_MEMORY_ERROR = -ZEL_ERR_MEMORY_ERROR;  // also a bad handle
constexpr Status STATUS_BAD_IMAGE = -ZEL_ERR_BAD_IMAGE;
constexpr Status STATUS_IMAGE_MISSING = -ZEL_ERR_IMAGE_MISSING;
constexpr Status STATUS_SECOND_IMAGE_MISSING = -ZEL_ERR_SECOND_IMAGE_MISSING;
constexpr Status STATUS_BAD_LAYOUT_TYPE = -ZEL_ERR_BAD_LAYOUT_TYPE;
constexpr Status STATUS_BAD_TYPE = -ZEL_ERR_BAD_TYPE;
constexpr Status STATUS_BAD_OPERAND_TYPE = -ZEL_ERR_BAD_OPERAND_TYPE;
constexpr Status STATUS_COPY_TYPE_DIFFERS = -ZEL_ERR_COPY_TYPE_DIFFERS;
constexpr Status STATUS_DESTINATION_TYPE_DIFFERS = -ZEL_ERR_DESTINATION_TYPE_DIFFERS;
constexpr Status STATUS_OPERAND_TYPE_DIFFERS = -ZEL_ERR_OPERAND_TYPE_DIFFERS;
constexpr Status STATUS_SIZE_DIFFERS = -ZEL_ERR_SIZE_DIFFERS;
constexpr Status STATUS_NO_BORDER = -ZEL_ERR_NO_BORDER;  // also an image without border
constexpr Status STATUS_BORDER_TOO_SMALL = -ZEL_ERR_BORDER_TOO_SMALL;
constexpr Status STATUS_DESTINATION_UNSUPPORTED = -ZEL_ERR_DESTINATION_UNSUPPORTED;
constexpr Status STATUS_SAME_IMAGE = -ZEL_ERR_SAME_IMAGE;
constexpr Status STATUS_NO_TEXT = -ZEL_ERR_NO_TEXT;
constexpr Status STATUS_BAD_FILE_HEADER = -ZEL_ERR_BAD_FILE_HEADER;
constexpr Status STATUS_FILE_OPEN = -ZEL_ERR_FILE_OPEN;
constexpr Status STATUS_INVALID_PARAMETER = -ZEL_ERR_INVALID_PARAMETER;
constexpr Status STATUS_FILE_SEEK = -ZEL_ERR_FILE_SEEK;
constexpr Status STATUS_FILE_UNSUPPORTED = -ZEL_ERR_FILE_UNSUPPORTED;
constexpr Status STATUS_FILE_INFO = -ZEL_ERR_FILE_INFO;
constexpr Status STATUS_FILE_READ = -ZEL_ERR_FILE_READ;
constexpr Status STATUS_FILE_WRITE = -ZEL_ERR_FILE_WRITE;
constexpr Status STATUS_BAD_FILE_FORMAT = -ZEL_ERR_BAD_FILE_FORMAT;
constexpr Status STATUS_DISPLAY_UNUSABLE = -ZEL_ERR_DISPLAY_UNUSABLE;
constexpr Status STATUS_NO_WINDOW = -ZEL_ERR_NO_WINDOW;
constexpr Status STATUS_BAD_WINDOW = -ZEL_ERR_BAD_WINDOW;
constexpr Status STATUS_WINDOW_CLOSED = -ZEL_ERR_WINDOW_CLOSED;
constexpr Status STATUS_BAD_ATTRIBUTE = -ZEL_ERR_BAD_ATTRIBUTE;
constexpr Status STATUS_BAD_INTERPOLATION = -ZEL_ERR_BAD_INTERPOLATION;
constexpr Status STATUS_TOO_FEW_POINTS = -ZEL_ERR_TOO_FEW_POINTS;
constexpr Status STATUS_BAD_MEASURE = -ZEL_ERR_BAD_MEASURE;
constexpr Status STATUS_INTERNAL = -ZEL_ERR_INTERNAL;  // also outside a table
constexpr Status STATUS_BAD_ROI = -ZEL_ERR_BAD_ROI;
constexpr Status STATUS_COMPLEX_EXPECTED = -ZEL_ERR_COMPLEX_EXPECTED;
constexpr Status STATUS_IMAGE_TOO_SMALL = -ZEL_ERR_IMAGE_TOO_SMALL;
constexpr Status STATUS_NOT_A_RECTANGLE = -ZEL_ERR_NOT_A_RECTANGLE;
constexpr Status STATUS_BAD_CHECK = -ZEL_ERR_BAD_CHECK;
constexpr Status STATUS_NO_ASCII = -ZEL_ERR_NO_ASCII;
constexpr Status STATUS_DIVIDED_BY_ZERO = -ZEL_ERR_DIVIDED_BY_ZERO;
constexpr Status STATUS_NULL_POINTER = -ZEL_ERR_NULL_POINTER;
constexpr Status STATUS_NO_SOLUTION = -ZEL_ERR_NO_SOLUTION;
constexpr Status STATUS_TOO_FEW_BARS = -ZEL_ERR_TOO_FEW_BARS;
constexpr Status STATUS_NO_SEGMENT = -ZEL_ERR_NO_SEGMENT;
constexpr Status STATUS_INEXACT_DIGIT = -ZEL_ERR_INEXACT_DIGIT;
constexpr Status STATUS_BAD_WIDTH = -ZEL_ERR_BAD_WIDTH;

// Those that stay inside.
constexpr Status STATUS_NOT_OWNED = 100;     // a handle without a block of its own
constexpr Status STATUS_HOOK_UNKNOWN = 103;  // no shutdown hook of that function
constexpr Status STATUS_BAD_HANDLE = 900;

}  // namespace zel
