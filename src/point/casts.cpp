// Conversions between pixel types: in place, into another image, through a table, and by a shift.
#include <cstring>

#include "core/heap.h"
#include "core/numbers.h"
#include "engine/array_convert.h"
#include "engine/operands.h"
#include "point/casts_rows.h"

namespace zel {
namespace {

constexpr int32_t MAX_SHIFT = 8;

PointViews ViewsOf(const Image& source, const Image& destination) {
  return {.first = ViewOf(source), .second = {}, .result = ViewOf(destination), .mask = {}};
}

// Gives a destination the border and the size of the source, so that both have one line layout for
// pixels of one size. Without memory it keeps its own.
Status LayoutLikeSource(const Image& source, Image* destination) {
  const int32_t border = destination->border;
  destination->border = source.border;
  const Status status = ImageLayoutSize(destination, source.width, source.height, true);
  if (status != STATUS_OK) destination->border = border;
  return status;
}

Status ConvertPixels(const Image& source, Image* destination) {
  if (!TypeHasPixels(source.type)) return STATUS_BAD_OPERAND_TYPE;
  if (!TypeHasPixels(destination->type)) return STATUS_OPERAND_TYPE_DIFFERS;
  Status status = ImageCopyInfo(source, destination);
  if (status == STATUS_OK) status = LayoutLikeSource(source, destination);
  if (status != STATUS_OK || source.width == 0) return status;

  const PointViews views = ViewsOf(source, *destination);
  if (source.type == destination->type) {
    // Whole lines, from pixel (0, 0) on: the pixels of the border that lie between them come along.
    std::memcpy(views.result.origin, views.first.origin,
                static_cast<size_t>(views.first.pitch) * static_cast<size_t>(views.first.height));
  } else {
    PointWalk(views, castRows().From(source.type).To(destination->type), NoRule());
  }
  return STATUS_OK;
}

Status Convert(ImageRef source, ImageRef destination) {
  Image* from = nullptr;
  Status status = ImageLookup(source, &from);
  if (status != STATUS_OK || destination == 0 || destination == source) return status;
  Image* to = nullptr;
  status = ImageLookup(destination, &to);
  return status != STATUS_OK ? status : ConvertPixels(*from, to);
}

// The reference names the converted pixels only when all went well.
Status Cast(ImageRef image, int32_t type) {
  Image* from = nullptr;
  Status status = ImageLookup(image, &from);
  if (status != STATUS_OK || from->type == type) return status;
  if (type < IMAGE_U8 || type > IMAGE_OPAQUE) return STATUS_BAD_LAYOUT_TYPE;
  if (!TypeHasPixels(from->type)) return STATUS_BAD_OPERAND_TYPE;
  if (!TypeHasPixels(type)) return STATUS_OPERAND_TYPE_DIFFERS;

  Image like = *from;
  like.type = static_cast<int16_t>(type);
  ReplacementImage replacement;
  status = replacement.Create(image, like);
  if (status == STATUS_OK) status = ConvertPixels(*from, replacement.image());
  if (status == STATUS_OK) replacement.Written();
  return status;
}

// A caller's table in the type of the results, for all levels of the source. Entries go through
// 32-bit floats; those beyond the given ones hold their own index. Made before the destination is
// settled.
struct ResultTable {
  WorkArray<float> floats;
  WorkArray<int16_t> words;
  WorkArray<uint8_t> bytes;

  Status Create(uint32_t levels, int32_t type, int32_t arrayType, const void* array,
                int32_t count) {
    if (!floats.AllocateZeroed(levels)) return STATUS_MEMORY_FULL;
    const auto given = static_cast<uint32_t>(Clamped(count, 0, static_cast<int32_t>(levels)));
    ArrayConvert(array, arrayType, floats.data(), ARRAY_SGL, given);
    for (uint32_t i = given; i < levels; i++) floats[i] = static_cast<float>(i);
    if (type == IMAGE_I16) return Truncate(levels, &words);
    if (type == IMAGE_U8) return Truncate(levels, &bytes);
    return STATUS_OK;
  }

 private:
  // The low bits of the truncated entries, worked out once for each.
  template <class T>
  Status Truncate(uint32_t levels, WorkArray<T>* truncated) {
    if (!truncated->Allocate(levels)) return STATUS_MEMORY_FULL;
    for (uint32_t i = 0; i < levels; i++) {
      (*truncated)[i] = CutLow<T>(static_cast<double>(floats[i]));
    }
    return STATUS_OK;
  }
};

void MapThroughTable(const PointViews& views, const ResultTable& table) {
  const CastRows& rows = castRows();
  const bool fromBytes = views.first.type == IMAGE_U8;
  switch (views.result.type) {
    case IMAGE_U8:
      return PointWalk(views, rows.wordsToBytes, ValueTable<uint8_t>{table.bytes.data()});
    case IMAGE_I16:
      return PointWalk(views, rows.bytesToWords, ValueTable<int16_t>{table.words.data()});
    default:
      return PointWalk(views, fromBytes ? rows.bytesToFloats : rows.wordsToFloats,
                       ValueTable<float>{table.floats.data()});
  }
}

Status ConvertByLookup(ImageRef source, ImageRef destination, int32_t arrayType, const void* array,
                       int32_t count) {
  Image* from = nullptr;
  Status status = ImageLookup(source, &from);
  if (status != STATUS_OK || destination == 0 || destination == source) return status;
  Image* to = nullptr;
  status = ImageLookup(destination, &to);
  if (status != STATUS_OK) return status;
  if (!TypeIsInteger(from->type)) return STATUS_BAD_TYPE;
  const bool fromBytes = from->type == IMAGE_U8;
  if (to->type != IMAGE_SGL && to->type != (fromBytes ? IMAGE_I16 : IMAGE_U8)) {
    return STATUS_DESTINATION_TYPE_DIFFERS;
  }

  ResultTable table;
  status = table.Create(fromBytes ? LEVELS_U8 : LEVELS_I16, to->type, arrayType, array, count);
  if (status == STATUS_OK) status = ImageCopyInfo(*from, to);
  if (status == STATUS_OK) status = ImageLayoutSize(to, from->width, from->height, true);
  if (status == STATUS_OK) MapThroughTable(ViewsOf(*from, *to), table);
  return status;
}

Status Shift16To8(ImageRef source, ImageRef destination, int32_t shift) {
  Image* from = nullptr;
  Status status = ImageLookup(source, &from);
  if (status != STATUS_OK) return status;
  if (from->type != IMAGE_I16) return STATUS_BAD_TYPE;
  Image* to = nullptr;
  status = ImageLookup(destination == 0 ? source : destination, &to);
  if (status != STATUS_OK) return status;
  if (to->type != IMAGE_U8) return STATUS_BAD_TYPE;
  status = ImageLayoutSize(to, from->width, from->height, true);
  if (status == STATUS_OK) status = ImageCopyInfo(*from, to);
  if (status != STATUS_OK) return status;
  PointWalk(ViewsOf(*from, *to), castRows().shift, BitShift{Clamped(shift, 0, MAX_SHIFT)});
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_Cast(ImageRef image, int32_t type) {
  return ZEL_ProcessError("ZEL_Cast", zel::Cast(image, type));
}

int32_t ZEL_Convert(ImageRef source, ImageRef destination) {
  return ZEL_ProcessError("ZEL_Convert", zel::Convert(source, destination));
}

int32_t ZEL_ConvertByLookup(ImageRef source, ImageRef destination, int32_t arrayType,
                            const void* array, int32_t count) {
  const zel::Status status =
      array || count < 1 ? zel::ConvertByLookup(source, destination, arrayType, array, count)
                         : zel::STATUS_NULL_POINTER;
  return ZEL_ProcessError("ZEL_ConvertByLookup", status);
}

// The name in the report has a small t.
int32_t ZEL_Shift16To8(ImageRef source, ImageRef destination, int32_t shift) {
  return ZEL_ProcessError("ZEL_Shift16to8", zel::Shift16To8(source, destination, shift));
}
