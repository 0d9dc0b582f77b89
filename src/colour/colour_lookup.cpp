// Colours through a table for each component.
#include <algorithm>
#include <cstring>

#include "colour/colour_lookup_rows.h"
#include "colour/components.h"
#include "core/images.h"
#include "core/pixel_types.h"
#include "engine/array_convert.h"
#include "engine/operands.h"
#include "engine/point.h"
#include "orlune_ptk.h"
#include "point/lookup_rows.h"

namespace zel {
namespace {

// The caller's tables as bytes; null for those that are not given.
struct ColourTables {
  const void* given[COLOUR_PLANES];
  uint8_t bytes[COLOUR_PLANES][LEVELS_U8];

  bool HasNone() const { return !given[0] && !given[1] && !given[2]; }
};

// Of entries the low 8 bits count. Elements of an unknown type leave each level as it is.
void TablesToBytes(int32_t elementType, ColourTables* tables) {
  for (int32_t p = 0; p < COLOUR_PLANES; p++) {
    for (int32_t level = 0; level < LEVELS_U8; level++) {
      tables->bytes[p][level] = static_cast<uint8_t>(level);
    }
    if (!tables->given[p]) continue;
    ArrayConvert(tables->given[p], elementType, tables->bytes[p], ARRAY_U8, LEVELS_U8);
  }
}

struct ColourLookup {
  const ColourTables* tables;
  ComponentSet components;
  MergeRoutine merge;
  PointRoutine<ByteTable> map;
  ChannelLookup channels;  // null: components are no channels, and are taken out
  SelectRoutine select;
};

PixelView BufferView(uint8_t* bytes, int64_t size) {
  return {.origin = bytes,
          .pitch = COLOUR_BLOCK,
          .width = static_cast<int32_t>(size),
          .height = 1,
          .type = IMAGE_U8,
          .pixelBytes = 1};
}

// Pixels that lie side by side; the results may take their place.
void LookupBlock(const RGBValue* from, RGBValue* to, int64_t size, const ColourLookup& rule) {
  const auto& bytes = rule.tables->bytes;
  if (rule.channels) return rule.channels(from, to, size, {bytes[0], bytes[1], bytes[2]});
  uint8_t planes[COLOUR_PLANES][COLOUR_BLOCK];
  MergeRun run{from, {}, to, size};
  for (int32_t p = 0; p < COLOUR_PLANES; p++) {
    rule.components.planes[p](from, planes[p], size);
    if (rule.tables->given[p]) {
      const PixelView buffer = BufferView(planes[p], size);
      rule.map({.first = buffer, .second = {}, .result = buffer, .mask = {}}, ByteTable{bytes[p]});
    }
    run.planes[p] = planes[p];
  }
  rule.merge(run);
}

// Pixels that a mask leaves out are the source's.
void LookupPixels(const PointViews& views, const ColourLookup& rule) {
  for (int64_t y = 0; y < views.result.height; y++) {
    const auto* from = views.first.Row<const RGBValue>(y);
    auto* to = views.result.Row<RGBValue>(y);
    const uint8_t* mask = views.mask.Row(y);
    for (int64_t x = 0; x < views.result.width; x += COLOUR_BLOCK) {
      const int64_t size = std::min(COLOUR_BLOCK, views.result.width - x);
      RGBValue mapped[COLOUR_BLOCK];
      LookupBlock(from + x, mask ? mapped : to + x, size, rule);
      if (mask) rule.select(mask + x, mapped, from + x, to + x, size);
    }
  }
}

Status ColorUserLookup(ImageRef source, ImageRef mask, ImageRef destination, int32_t mode,
                       int32_t elementType, ColourTables* tables) {
  Image* from = nullptr;
  Status status = ImageLookup(source, &from);
  if (status != STATUS_OK) return status;
  if (from->type != IMAGE_RGB) return STATUS_BAD_TYPE;
  Image* to = nullptr;
  status = ImageLookup(destination == 0 ? source : destination, &to);
  if (status != STATUS_OK) return status;
  if (to->type != IMAGE_RGB) return STATUS_BAD_TYPE;
  PlacedMask placed{};
  if (mask != 0) status = MaskPlace(*from, mask, &placed);
  if (status == STATUS_OK) status = ImageCopyInfo(*from, to);
  if (status != STATUS_OK) return status;
  status = mask != 0 || tables->HasNone() ? ImageCopyPixels(*from, to)
                                          : ImageLayoutSize(to, from->width, from->height, true);
  const MergeRoutine merge = MergeOf(mode);
  if (status != STATUS_OK || tables->HasNone() || !merge) return status;
  if (mask != 0 && placed.overlap.IsEmpty()) return STATUS_OK;

  TablesToBytes(elementType, tables);
  PointViews views{.first = ViewOf(*from), .second = {}, .result = ViewOf(*to), .mask = {}};
  if (mask != 0) {
    views.first = views.first.Part(placed.overlap);
    views.result = views.result.Part(placed.overlap);
    views.mask = placed.view;
  }
  PointWalk(views, &LookupPixels,
            ColourLookup{tables, ComponentsOf(mode), merge, lookupRows().mapU8,
                         mode == MODE_RGB ? colourLookupRows().rgb : nullptr, mergeRows().select});
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_ColorUserLookup(ImageRef source, ImageRef mask, ImageRef destination, int32_t mode,
                            int32_t elementType, const void* table1, const void* table2,
                            const void* table3) {
  zel::ColourTables tables{{table1, table2, table3}, {}};
  return ZEL_ProcessError("ZEL_ColorUserLookup", zel::ColorUserLookup(source, mask, destination,
                                                                      mode, elementType, &tables));
}
