// Pictures packed to a bit a pixel, as Leptonica works on them.
#pragma once

#include <leptonica/allheaders.h>

#include <cstdint>
#include <memory>

#include "benchmarks/pictures.h"

namespace bench {

using PackedPicture = std::shared_ptr<PIX>;

// Packs the scene before the clock starts.
inline int32_t Pack(Images&, Mats& m) {
  const PackedPicture packed(pixCreate(m.a.cols, m.a.rows, 1), [](PIX* pix) { pixDestroy(&pix); });
  for (int y = 0; y < m.a.rows; y++) {
    for (int x = 0; x < m.a.cols; x++) {
      if (m.a.at<uint8_t>(y, x) != 0) pixSetPixel(packed.get(), x, y, 1);
    }
  }
  m.own = packed;
  return 0;
}

inline PIX* PackedOf(Mats& m) {
  return std::any_cast<PackedPicture&>(m.own).get();
}

}  // namespace bench
