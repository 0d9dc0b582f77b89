// Attributes of windows, read and set through commands.
#pragma once

#include <cstdint>

#include "core/status.h"

namespace zel {

Status AttributeSet(int32_t window, int32_t attribute, intptr_t value);
Status AttributeGet(int32_t window, int32_t attribute, void* value);

}  // namespace zel
