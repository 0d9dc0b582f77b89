// A TIFF file put together tag by tag: header, directory, values that fit no entry, strips.
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "harness/file_bytes.h"

namespace test {

enum TiffKind : uint32_t {
  TIFF_BYTE = 1,
  TIFF_ASCII = 2,
  TIFF_SHORT = 3,
  TIFF_LONG = 4,
  TIFF_RATIONAL = 5
};

struct TiffFile {
  struct Entry {
    uint32_t tag, kind;
    std::vector<uint32_t> values;   // of a RATIONAL two numbers each
    std::optional<uint32_t> count;  // in place of the true one
    std::optional<uint32_t> field;  // in place of the value or its offset
  };

  bool little = true;
  std::vector<Entry> entries;
  std::vector<Bytes> strips;
  uint32_t nextDirectory = 0;

  TiffFile& Set(uint32_t tag, uint32_t kind, std::vector<uint32_t> values) {
    Drop(tag);
    entries.push_back({tag, kind, std::move(values), {}, {}});
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry& a, const Entry& b) { return a.tag < b.tag; });
    return *this;
  }
  TiffFile& Drop(uint32_t tag) {
    std::erase_if(entries, [&](const Entry& entry) { return entry.tag == tag; });
    return *this;
  }
  // Behind all others, as it stands.
  TiffFile& Add(uint32_t tag, uint32_t kind, uint32_t count, uint32_t field) {
    entries.push_back({tag, kind, {}, count, field});
    return *this;
  }
  TiffFile& Count(uint32_t tag, uint32_t count) {
    Find(tag).count = count;
    return *this;
  }
  TiffFile& Field(uint32_t tag, uint32_t field) {
    Find(tag).field = field;
    return *this;
  }

  // Where a strip begins in the built file.
  size_t StripAt(size_t index) const {
    size_t at = 14 + 12 * entries.size();
    for (const Entry& entry : entries) at += BytesOutOfLine(entry);
    for (size_t i = 0; i < index; i++) at += strips[i].size();
    return at;
  }

  // StripOffsets without values are filled in.
  Bytes Build() const {
    FileBytes file;
    file.Text(little ? "II" : "MM").Number(little, 42, 2).Number(little, 8, 4);
    file.Number(little, entries.size(), 2);
    size_t valueAt = 14 + 12 * entries.size();
    for (const Entry& entry : entries) {
      const Bytes value = ValueOf(entry);
      file.Number(little, entry.tag, 2).Number(little, entry.kind, 2);
      file.Number(little, entry.count.value_or(static_cast<uint32_t>(Elements(entry))), 4);
      if (entry.field) {
        file.Number(little, *entry.field, 4);
      } else if (BytesOutOfLine(entry) == 0) {
        const size_t end = file.Size() + 4;
        file.Append(value).ZerosUpTo(end);
      } else {
        file.Number(little, valueAt, 4);
      }
      valueAt += BytesOutOfLine(entry);
    }
    file.Number(little, nextDirectory, 4);
    for (const Entry& entry : entries) {
      if (BytesOutOfLine(entry) > 0) file.Append(ValueOf(entry));
    }
    for (const Bytes& strip : strips) file.Append(strip);
    return file;
  }

 private:
  Entry& Find(uint32_t tag) {
    return *std::find_if(entries.begin(), entries.end(),
                         [&](const Entry& entry) { return entry.tag == tag; });
  }
  bool IsOffsets(const Entry& entry) const {
    return entry.tag == 273 && entry.values.empty() && !entry.field;
  }
  size_t Elements(const Entry& entry) const {
    if (entry.tag == 273 && entry.values.empty()) return strips.size();
    return entry.kind == TIFF_RATIONAL ? entry.values.size() / 2 : entry.values.size();
  }
  static int ElementBytes(uint32_t kind) {
    return kind == TIFF_BYTE || kind == TIFF_ASCII ? 1 : kind == TIFF_SHORT ? 2 : 4;
  }
  size_t ValueBytes(const Entry& entry) const {
    return static_cast<size_t>(ElementBytes(entry.kind)) *
           (IsOffsets(entry) ? strips.size() : entry.values.size());
  }
  // Whatever is not a single value of at most 4 bytes lies behind the directory.
  size_t BytesOutOfLine(const Entry& entry) const {
    return entry.field || (ValueBytes(entry) <= 4 && Elements(entry) == 1) ? 0 : ValueBytes(entry);
  }
  Bytes ValueOf(const Entry& entry) const {
    std::vector<uint32_t> values = entry.values;
    for (size_t i = 0; i < strips.size() && IsOffsets(entry); i++) {
      values.push_back(static_cast<uint32_t>(StripAt(i)));
    }
    FileBytes bytes;
    for (const uint32_t value : values) bytes.Number(little, value, ElementBytes(entry.kind));
    return bytes;
  }
};

// The usual tags of an image of strips.
inline TiffFile TiffOf(uint32_t width, uint32_t height, std::vector<uint32_t> bits,
                       std::vector<Bytes> strips, uint32_t rowsPerStrip, bool little = true) {
  TiffFile file;
  file.little = little;
  const auto samples = static_cast<uint32_t>(bits.size());
  std::vector<uint32_t> counts;
  for (const Bytes& strip : strips) counts.push_back(static_cast<uint32_t>(strip.size()));
  file.strips = std::move(strips);
  file.Set(256, TIFF_SHORT, {width}).Set(257, TIFF_SHORT, {height});
  file.Set(258, TIFF_SHORT, std::move(bits));
  file.Set(259, TIFF_SHORT, {1});
  file.Set(262, TIFF_SHORT, {samples == 3 ? 2u : 1u}).Set(273, TIFF_LONG, {});
  file.Set(277, TIFF_SHORT, {samples}).Set(278, TIFF_SHORT, {rowsPerStrip});
  file.Set(279, TIFF_LONG, std::move(counts));
  file.Set(284, TIFF_SHORT, {1});
  return file;
}

}  // namespace test
