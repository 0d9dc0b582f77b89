// Lines of text, and a curve beneath them, as a picture for a window.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "orlune/shared/pictures.h"

namespace front {

struct PanelContents {
  std::span<const std::string> lines;
  std::span<const float> curve;  // none: no room is left for one
  std::span<const float> marks;  // places on the curve, in samples
};

// Black on white, of type IMAGE_U8. None where the machine has no fonts. Throws LibraryFailure.
std::optional<Image> DrawPanel(const PanelContents& contents);

}  // namespace front
