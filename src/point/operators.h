// Operators that combine two images, or an image and a constant, pixel by pixel: the record that
// names one, the checks before it, and the engines that run it.
#pragma once

#include <cstdint>

#include "core/status.h"
#include "orlune_ptk.h"

namespace zel {

// An even code up to 25 takes two images and the next odd one an image and a constant; from 27 on
// it is the other way round. Code 26 takes two images and a constant.
enum OperationCode : int16_t {
  OPERATION_MEAN = 0,
  OPERATION_MINIMUM = 2,
  OPERATION_MAXIMUM = 4,
  OPERATION_KEEP_NOT_BELOW = 6,   // the first operand, or 0 where it is below the second
  OPERATION_KEEP_ABOVE = 8,       // ... or 0 where it is not above the second
  OPERATION_KEEP_DIFFERENT = 10,  // ... or 0 where both are equal
  OPERATION_KEEP_BELOW = 12,      // ... or 0 where it is not below the second
  OPERATION_KEEP_NOT_ABOVE = 14,  // ... or 0 where it is above the second
  OPERATION_ADD = 16,
  OPERATION_SUBTRACT = 18,
  OPERATION_MULTIPLY = 20,
  OPERATION_DIVIDE = 22,
  OPERATION_MODULO = 24,
  OPERATION_MULDIV = 26,  // first x constant / second
  OPERATION_AND = 27,
  OPERATION_NOT_AND = 29,
  OPERATION_OR = 31,
  OPERATION_NOT_OR = 33,
  OPERATION_XOR = 35,
  OPERATION_NOT_XOR = 37,
  OPERATION_LOGDIFF = 39,           // first and not second
  OPERATION_CONSTANT_IF_ZERO = 41,  // the constant where the first is 0, else 0
};

// The code of the same operation with a constant in place of the second image.
constexpr int16_t OperationWithConstant(int16_t code) {
  return static_cast<int16_t>(code + 1);
}

struct RowOperation {
  int16_t code;
  int16_t type1;  // ImageType of the first operand and of the result
  int16_t type2;
  const void* source1;  // pixel (0, 0)
  const void* source2;  // not read with a constant
  void* destination;    // may be the same pixels as either source
  int32_t stride1;      // pixels from one row to the next, each in its own type
  int32_t stride2;
  int32_t strideDestination;
  int32_t width;
  int32_t height;
  int32_t constantInt;  // the constant cut toward zero, or the bits of a logic constant
  float constantFloat;
};

// The checks of arithmetic and comparison. They settle the destination, which takes the first
// image's calibration and, unless *skip comes out true, its size. With sizes that differ because
// one operand is empty, the other is copied and there is nothing left to do.
// swapAllowed: in: whether the second operand may be of a wider type than the first; out: whether
// it is, so that the operands must change places. isImage: whether there is a second image.
void OperandPrepare(ImageRef first, ImageRef second, ImageRef destination, bool* swapAllowed,
                    bool* isImage, bool* skip, Status* status);

// The same for bitwise operators, whose three images have one type out of U8, I16 and RGB.
void LogicOperandPrepare(ImageRef first, ImageRef second, ImageRef destination, bool* isImage,
                         bool* skip, Status* status);

// Fills types, addresses, strides and size of an operation from prepared images. Without a second
// image the first stands in its place.
void OperandsRead(ImageRef first, ImageRef second, ImageRef destination, RowOperation* operation,
                  Status* status);

// The engines. STATUS_BAD_OPERAND_TYPE for a first operand of a type that the engine does not
// handle, STATUS_OPERAND_TYPE_DIFFERS for a second one that does not go with it.
void ArithmeticDispatch(const RowOperation& operation, Status* status);  // codes 16 to 26
void CompareDispatch(const RowOperation& operation, Status* status);     // codes 0 to 15
void LogicDispatch(const RowOperation& operation, Status* status);       // codes 27 to 41

// Source pixels where the second operand, a U8 mask, is not 0; 0 elsewhere. Any pixel type.
void MaskRows(const RowOperation& operation, Status* status);

}  // namespace zel
