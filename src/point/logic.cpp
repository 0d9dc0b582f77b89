// Bitwise operators on whole pixels.
#include "core/images.h"
#include "point/logic_rows.h"
#include "point/operands.h"

namespace zel {
namespace {

constexpr bool LogicHasConstant(int16_t code) {
  return code % 2 == 0 || code == OPERATION_CONSTANT_IF_ZERO;
}

PixelWidth LogicPixelWidth(int32_t type) {
  return type == IMAGE_U8 ? PIXEL_1 : type == IMAGE_I16 ? PIXEL_2 : PIXEL_4;
}

PlaneBits BitsOf(LogicOperation logic, uint32_t constant) {
  constexpr uint32_t all = 0xFFFFFFFF;
  switch (logic) {
    case LOGIC_AND:
      return {constant, 0};
    case LOGIC_NOT_AND:
      return {constant, all};
    case LOGIC_OR:
      return {~constant, constant};
    case LOGIC_NOT_OR:
      return {~constant, ~constant};
    case LOGIC_XOR:
      return {all, constant};
    case LOGIC_NOT_XOR:
      return {all, ~constant};
    default:
      return {~constant, 0};
  }
}

void LogicKernel(ImageRef first, ImageRef second, ImageRef destination, int16_t code,
                 const uint32_t* constant, Status* status) {
  bool isImage = false;
  bool skip = false;
  LogicOperandPrepare(first, second, destination, &isImage, &skip, status);
  if (*status != STATUS_OK || skip) return;

  RowOperation operation{};
  OperandsRead(first, second, destination, &operation, status);
  if (*status != STATUS_OK) return;
  operation.code = isImage ? code : OperationWithConstant(code);
  operation.constantInt = static_cast<int32_t>(*constant);
  LogicDispatch(operation, status);
}

// The operation or its inverse.
constexpr int16_t InvertedIf(int16_t invert, int16_t code, int16_t inverse) {
  return invert != 0 ? inverse : code;
}

}  // namespace

void LogicDispatch(const RowOperation& operation, Status* status) {
  if (operation.code < OPERATION_AND || operation.code > OPERATION_CONSTANT_IF_ZERO) {
    *status = STATUS_INTERNAL;
    return;
  }
  const int32_t type = operation.type1;
  if (operation.type2 != type) {
    *status = STATUS_OPERAND_TYPE_DIFFERS;
    return;
  }
  if (type != IMAGE_U8 && type != IMAGE_I16 && type != IMAGE_RGB) {
    *status = STATUS_BAD_OPERAND_TYPE;
    return;
  }

  const LogicRows& rows = logicRows();
  Plane plane{};
  const auto logic = static_cast<LogicOperation>((operation.code - OPERATION_AND) / 2);
  const auto constant = static_cast<uint32_t>(operation.constantInt);
  if (!LogicHasConstant(operation.code)) {
    PlaneOf(operation, &plane);
    plane.width *= plane.firstBytes;
    plane.firstBytes = plane.secondBytes = plane.resultBytes = 1;
    PlaneRun(rows.images[logic], &plane);
    return;
  }
  PlaneOfFirst(operation, &plane);
  if (operation.code == OPERATION_CONSTANT_IF_ZERO) {
    plane.constant.bits.flip = constant;
    PlaneRun(rows.constantIfZero[LogicPixelWidth(type)], &plane);
  } else {
    plane.constant.bits = BitsOf(logic, constant);
    PlaneRun(rows.keepAndFlip[LogicPixelWidth(type)], &plane);
  }
}

}  // namespace zel

int32_t ZEL_And(ImageRef first, ImageRef second, ImageRef destination, int16_t invert,
                uint32_t constant) {
  zel::Status status = zel::STATUS_OK;
  const int16_t code = zel::InvertedIf(invert, zel::OPERATION_AND, zel::OPERATION_NOT_AND);
  zel::LogicKernel(first, second, destination, code, &constant, &status);
  return ZEL_ProcessError("ZEL_And", status);
}

int32_t ZEL_Or(ImageRef first, ImageRef second, ImageRef destination, int16_t invert,
               uint32_t constant) {
  zel::Status status = zel::STATUS_OK;
  const int16_t code = zel::InvertedIf(invert, zel::OPERATION_OR, zel::OPERATION_NOT_OR);
  zel::LogicKernel(first, second, destination, code, &constant, &status);
  return ZEL_ProcessError("ZEL_Or", status);
}

int32_t ZEL_Xor(ImageRef first, ImageRef second, ImageRef destination, int16_t invert,
                uint32_t constant) {
  zel::Status status = zel::STATUS_OK;
  const int16_t code = zel::InvertedIf(invert, zel::OPERATION_XOR, zel::OPERATION_NOT_XOR);
  zel::LogicKernel(first, second, destination, code, &constant, &status);
  return ZEL_ProcessError("ZEL_Xor", status);
}

int32_t ZEL_LogDiff(ImageRef first, ImageRef second, ImageRef destination, uint32_t constant) {
  zel::Status status = zel::STATUS_OK;
  zel::LogicKernel(first, second, destination, zel::OPERATION_LOGDIFF, &constant, &status);
  return ZEL_ProcessError("ZEL_LogDiff", status);
}
