// What the operations that move pixels about share.
#pragma once

#include "core/pixel_types.h"

namespace zel {

constexpr bool TypeCanBeMoved(int32_t type) {
  return TypeIsScalar(type) || type == IMAGE_RGB;
}

}  // namespace zel
