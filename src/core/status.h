// The failure numbers that kernels report: positive inside the library, negated by the exports.
#pragma once

#include <cstdint>

namespace zel {

using Status = int32_t;

constexpr Status STATUS_OK = 0;
constexpr Status STATUS_NOT_OWNED = 100;     // a handle without a block of its own
constexpr Status STATUS_MEMORY_FULL = 101;   // the heap refused, or a size is beyond 2^31 - 1
constexpr Status STATUS_MEMORY_ERROR = 102;  // a caller's block is too small; a bad handle
constexpr Status STATUS_HOOK_UNKNOWN = 103;  // no shutdown hook of that function
constexpr Status STATUS_BAD_IMAGE = 200;     // no image has this reference
constexpr Status STATUS_SECOND_IMAGE_MISSING = 202;
constexpr Status STATUS_BAD_LAYOUT_TYPE = 300;    // a pixel type without a memory layout
constexpr Status STATUS_BAD_TYPE = 301;           // a pixel type that the operation does not take
constexpr Status STATUS_BAD_OPERAND_TYPE = 302;   // a pixel type that no engine handles
constexpr Status STATUS_COPY_TYPE_DIFFERS = 303;  // pixel copy between two types
constexpr Status STATUS_DESTINATION_TYPE_DIFFERS = 304;
constexpr Status STATUS_OPERAND_TYPE_DIFFERS = 305;
constexpr Status STATUS_SIZE_DIFFERS = 306;
constexpr Status STATUS_NO_BORDER = 308;  // an image without border, or a border below 0
constexpr Status STATUS_BORDER_TOO_SMALL = 309;
constexpr Status STATUS_DESTINATION_UNSUPPORTED = 312;
constexpr Status STATUS_BAD_FILE_HEADER = 500;
constexpr Status STATUS_FILE_OPEN = 503;
constexpr Status STATUS_FILE_SEEK = 507;
constexpr Status STATUS_FILE_UNSUPPORTED = 509;
constexpr Status STATUS_FILE_INFO = 510;
constexpr Status STATUS_FILE_READ = 511;
constexpr Status STATUS_FILE_WRITE = 512;
constexpr Status STATUS_BAD_FILE_FORMAT = 514;
constexpr Status STATUS_BAD_FILE_OPERATION = 515;
constexpr Status STATUS_BAD_MEASURE = 801;
constexpr Status STATUS_BAD_HANDLE = 900;
constexpr Status STATUS_INTERNAL = 1001;      // outside a table, or outside an image
constexpr Status STATUS_NULL_POINTER = 3009;  // NULL where a pointer is required

}  // namespace zel
