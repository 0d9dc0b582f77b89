// What the three planes of a colour mode hold.
#include "colour/components.h"

#include "orlune_ptk.h"

namespace zel {

bool IsColourMode(int32_t mode) {
  return mode == MODE_RGB || mode == MODE_HSL || mode == MODE_HSV;
}

ComponentSet ComponentsOf(int32_t mode) {
  const ComponentRows& rows = componentRows();
  if (mode == MODE_RGB) return {{rows.red, rows.green, rows.blue}};
  return {{rows.hue, rows.saturation, mode == MODE_HSL ? rows.lightness : rows.value}};
}

MergeRoutine MergeOf(int32_t mode) {
  const MergeRows& rows = mergeRows();
  switch (mode) {
    case MODE_RGB:
      return rows.rgb;
    case MODE_HSL:
      return rows.hsl;
    case MODE_HSV:
      return rows.hsv;
    default:
      return nullptr;
  }
}

}  // namespace zel
