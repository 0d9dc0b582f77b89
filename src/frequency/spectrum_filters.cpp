// Spectra with their quadrants exchanged, and frequencies weighted or cleared.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "core/numbers.h"
#include "engine/bands.h"
#include "frequency/spectra.h"
#include "frequency/spectrum_filters_rows.h"
#include "orlune_ptk.h"

namespace zel {
namespace {

struct SpectrumViews {
  PixelView from, to;  // the same where the operation runs in place

  bool IsInPlace() const { return from.origin == to.origin; }
};

Status SpectrumSettle(ImageRef source, ImageRef destination, SpectrumViews* views) {
  Image* from = nullptr;
  Status status = LookupOfTypes(source, &TypeIsSpectrum, STATUS_BAD_TYPE, &from);
  Image* to = nullptr;
  if (status == STATUS_OK) status = SettleDestination(from, destination, &to);
  if (status == STATUS_OK) *views = {ViewOf(*from), ViewOf(*to)};
  return status;
}

// Calls work(y) for all rows of a pass that reads and writes an image.
template <class Work>
void ForRows(const PixelView& image, int64_t rows, const Work& work) {
  BandsRun({.units = rows, .bytes = 2 * image.RowBytes() * rows}, [&](const Band& band) {
    for (int64_t y = band.begin; y < band.end; y++) work(y);
  });
}

void CopyRow(const SpectrumViews& views, int64_t y) {
  if (views.IsInPlace()) return;
  std::memcpy(views.to.Row<void>(y), views.from.Row<void>(y),
              static_cast<size_t>(views.from.RowBytes()));
}

// ---- quadrants

// A pair of rows whose halves change places: they are exchanged, or copied crosswise.
void ExchangeHalves(const SpectrumViews& views, int64_t upper, int64_t lower) {
  const auto halfBytes = static_cast<size_t>(views.from.width / 2 * int64_t{views.from.pixelBytes});
  auto* upperTo = views.to.Row<uint8_t>(upper);
  auto* lowerTo = views.to.Row<uint8_t>(lower);
  if (views.IsInPlace()) {
    std::swap_ranges(upperTo, upperTo + halfBytes, lowerTo + halfBytes);
    std::swap_ranges(lowerTo, lowerTo + halfBytes, upperTo + halfBytes);
    return;
  }
  const auto* upperFrom = views.from.Row<const uint8_t>(upper);
  const auto* lowerFrom = views.from.Row<const uint8_t>(lower);
  std::memcpy(upperTo, lowerFrom + halfBytes, halfBytes);
  std::memcpy(upperTo + halfBytes, lowerFrom, halfBytes);
  std::memcpy(lowerTo, upperFrom + halfBytes, halfBytes);
  std::memcpy(lowerTo + halfBytes, upperFrom, halfBytes);
}

// The last column of an odd width and the last row of an odd height stay.
void CopyOddEnds(const SpectrumViews& views) {
  const PixelView& from = views.from;
  if (views.IsInPlace() || from.IsEmpty()) return;
  if (from.height % 2 != 0) CopyRow(views, from.height - 1);
  if (from.width % 2 == 0) return;
  const int64_t last = from.RowBytes() - from.pixelBytes;
  for (int64_t y = 0; y < from.height; y++) {
    std::memcpy(views.to.Row<uint8_t>(y) + last, from.Row<uint8_t>(y) + last,
                static_cast<size_t>(from.pixelBytes));
  }
}

Status FlipFrequency(ImageRef source, ImageRef destination) {
  SpectrumViews views;
  const Status status = SpectrumSettle(source, destination, &views);
  if (status != STATUS_OK) return status;
  const int64_t half = views.from.height / 2;
  ForRows(views.from, half, [&](int64_t y) { ExchangeHalves(views, y, y + half); });
  CopyOddEnds(views);
  return STATUS_OK;
}

// ---- weights

struct Attenuation {
  WeightRow weigh;
  float scale;  // the product of the halved sides
  bool isLow;

  // Of all weights of a row.
  float FactorOf(int64_t y, int32_t height) const {
    const int32_t half = height / 2;
    int64_t distance = std::abs(y - half);
    if (!isLow) distance = y < half ? y : height - 1 - y;
    return static_cast<float>(static_cast<double>(distance) / static_cast<double>(scale));
  }
};

Attenuation AttenuationOf(const PixelView& view, bool isLow) {
  const SpectrumFilterRows& rows = spectrumFilterRows();
  const WeightRoutines& routines = isLow ? rows.fromMiddle : rows.fromSides;
  const int64_t scale = int64_t{view.width / 2} * (view.height / 2);
  return {view.type == IMAGE_SGL ? routines.one : routines.two, static_cast<float>(scale), isLow};
}

Status Attenuate(ImageRef source, ImageRef destination, int16_t mode) {
  SpectrumViews views;
  const Status status = SpectrumSettle(source, destination, &views);
  if (status != STATUS_OK) return status;
  const Attenuation attenuation = AttenuationOf(views.from, mode == FREQUENCY_KEEP_LOW);
  ForRows(views.from, views.from.height, [&](int64_t y) {
    if (attenuation.scale == 0.0f) return CopyRow(views, y);
    attenuation.weigh({views.from.Row<const float>(y), views.to.Row<float>(y), views.from.width,
                       attenuation.FactorOf(y, views.from.height)});
  });
  return STATUS_OK;
}

// ---- quarters of an ellipse

struct Ellipse {
  int32_t a, b;  // half axes

  // How far it reaches at a distance from its middle, which is at most b.
  int32_t ReachAt(int64_t distance) const {
    const auto y = static_cast<double>(distance);
    const auto across = static_cast<double>(a);
    const auto down = static_cast<double>(b);
    return CutSaturated(std::sqrt(across * across * (1.0 - y * y / (down * down))));
  }
};

int32_t HalfAxis(int32_t side, float percent) {
  return CutSaturated(static_cast<double>(side) * static_cast<double>(percent) * 0.005);
}

// Clears the columns from `first` to `last`.
void ClearColumns(const PixelView& view, int64_t y, int64_t first, int64_t last) {
  first = std::max<int64_t>(first, 0);
  last = std::min<int64_t>(last, view.width - 1);
  if (first > last) return;
  std::memset(view.Row<uint8_t>(y) + first * view.pixelBytes, 0,
              static_cast<size_t>((last - first + 1) * view.pixelBytes));
}

// Leaves of a row what lies within the ellipse.
void KeepLow(const PixelView& view, const Ellipse& ellipse, int64_t y) {
  const int64_t distance = std::min<int64_t>(y, view.height - 1 - y);
  const int64_t reach = distance < ellipse.b ? ellipse.ReachAt(distance) : 0;
  ClearColumns(view, y, reach, view.width - 1 - reach);
}

// Leaves what lies outside. In a low image a row may be near to both edges.
void KeepHigh(const PixelView& view, const Ellipse& ellipse, int64_t y) {
  if (ellipse.b == 0) return;
  for (const int64_t distance : {y, view.height - 1 - y}) {
    if (distance > ellipse.b) continue;
    const int64_t reach = ellipse.ReachAt(distance);
    ClearColumns(view, y, 0, reach);
    ClearColumns(view, y, view.width - 1 - reach, view.width - 1);
  }
}

Status Truncate(ImageRef source, ImageRef destination, int16_t mode, float percent) {
  SpectrumViews views;
  const Status status = SpectrumSettle(source, destination, &views);
  if (status != STATUS_OK) return status;
  const float limited = percent > 0.0f ? std::min(percent, 100.0f) : 0.0f;  // of NaN 0
  const Ellipse ellipse{HalfAxis(views.from.width, limited), HalfAxis(views.from.height, limited)};
  const auto clear = mode == FREQUENCY_KEEP_LOW ? &KeepLow : &KeepHigh;
  ForRows(views.from, views.from.height, [&](int64_t y) {
    CopyRow(views, y);
    clear(views.to, ellipse, y);
  });
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_ComplexFlipFrequency(ImageRef source, ImageRef destination) {
  return ZEL_ProcessError("ZEL_ComplexFlipFrequency", zel::FlipFrequency(source, destination));
}

int32_t ZEL_ComplexAttenuate(ImageRef source, ImageRef destination, int16_t mode) {
  return ZEL_ProcessError("ZEL_ComplexAttenuate", zel::Attenuate(source, destination, mode));
}

int32_t ZEL_ComplexTruncate(ImageRef source, ImageRef destination, int16_t mode, float percent) {
  return ZEL_ProcessError("ZEL_ComplexTruncate", zel::Truncate(source, destination, mode, percent));
}
