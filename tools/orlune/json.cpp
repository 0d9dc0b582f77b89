// Inspections as JSON.
#include <cmath>

#include "orlune/numbers.h"
#include "orlune/reports.h"

namespace front {
namespace {

// Bytes of the UTF-8 character at the start of the text; 0 when it is none.
size_t CharacterLength(std::string_view text) {
  const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
  const auto follows = [&](size_t i, unsigned low, unsigned high) {
    return i < text.size() && byte(i) >= low && byte(i) <= high;
  };
  const unsigned first = byte(0);
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first <= 0xDF) return follows(1, 0x80, 0xBF) ? 2 : 0;
  if (first >= 0xE0 && first <= 0xEF) {
    // Neither longer forms of shorter characters, nor halves of pairs.
    const unsigned low = first == 0xE0 ? 0xA0 : 0x80, high = first == 0xED ? 0x9F : 0xBF;
    return follows(1, low, high) && follows(2, 0x80, 0xBF) ? 3 : 0;
  }
  if (first >= 0xF0 && first <= 0xF4) {
    const unsigned low = first == 0xF0 ? 0x90 : 0x80, high = first == 0xF4 ? 0x8F : 0xBF;
    return follows(1, low, high) && follows(2, 0x80, 0xBF) && follows(3, 0x80, 0xBF) ? 4 : 0;
  }
  return 0;
}

std::string JsonNumber(float value) {
  return std::isfinite(value) ? Exact(value) : "null";
}

}  // namespace

std::string JsonText(const std::string& text) {
  constexpr char HEX[] = "0123456789abcdef";
  std::string quoted = "\"";
  for (size_t i = 0; i < text.size();) {
    const size_t length = CharacterLength(std::string_view(text).substr(i));
    const char c = text[i];
    if (length == 0) {
      quoted += "\\ufffd";
    } else if (c == '"' || c == '\\') {
      quoted += {'\\', c};
    } else if (length == 1 && (static_cast<unsigned char>(c) < 0x20 || c == 0x7F)) {
      quoted += {'\\', 'u', '0', '0', HEX[c >> 4], HEX[c & 15]};
    } else {
      quoted.append(text, i, length);
    }
    i += length == 0 ? 1 : length;
  }
  return quoted + '"';
}

JsonReport::JsonReport(std::ostream& out, std::vector<const Measure*> measures)
    : out_(out), measures_(std::move(measures)) {
  out_ << "{\"program\": \"orlune\", \"version\": \"" << ORLUNE_VERSION << "\",\n \"files\": [";
}

void JsonReport::StartFile(const std::string& path) {
  out_ << (first_ ? "\n" : ",\n") << "  {\"file\": " << JsonText(path);
  first_ = false;
}

void JsonReport::Add(const Inspection& inspection, const InspectSettings& settings) {
  StartFile(inspection.path);
  const FileInfo& file = inspection.file;
  out_ << ", \"format\": " << JsonText(FormatName(file)) << ", \"width\": " << file.width
       << ", \"height\": " << file.height << ", \"bitsPerPixel\": " << file.bitsPerPixel << ",\n"
       << "   \"threshold\": {\"method\": "
       << JsonText(settings.range ? "range" : std::string(MethodName(settings.method)));
  if (inspection.objects) {
    out_ << ", \"low\": " << JsonNumber(static_cast<float>(inspection.objects->low))
         << ", \"high\": " << JsonNumber(static_cast<float>(inspection.objects->high));
  }
  out_ << "}, \"connectivity\": " << (settings.eightConnected ? 8 : 4)
       << ", \"scale\": {\"x\": " << JsonNumber(inspection.scale.x)
       << ", \"y\": " << JsonNumber(inspection.scale.y)
       << ", \"unit\": " << JsonText(inspection.unit)
       << "},\n   \"found\": " << inspection.particles.size() << ", \"kept\": " << inspection.Kept()
       << ", \"particles\": [";
  bool first = true;
  for (const Particle& particle : inspection.particles) {
    if (!particle.kept) continue;
    out_ << (first ? "\n" : ",\n") << "    {\"number\": " << particle.number;
    for (const Measure* measure : measures_) {
      out_ << ", \"" << measure->name << "\": " << JsonNumber(particle.values[measure->number]);
    }
    out_ << '}';
    first = false;
  }
  out_ << "]}";
}

void JsonReport::AddFailure(const std::string& path, int32_t number, const std::string& message) {
  StartFile(path);
  out_ << ", \"error\": {\"number\": " << number << ", \"message\": " << JsonText(message) << "}}";
}

void JsonReport::Finish(const Summary& summary) {
  out_ << "],\n \"summary\": {\"inspected\": " << summary.inspected
       << ", \"failed\": " << summary.failed << ", \"found\": " << summary.found
       << ", \"kept\": " << summary.kept << "}}\n";
}

}  // namespace front
