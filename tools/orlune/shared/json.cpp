// Inspections as JSON.
#include <cmath>

#include "orlune/shared/numbers.h"
#include "orlune/shared/readable.h"
#include "orlune/shared/reports.h"

namespace front {
namespace {

std::string StartOfFile(const std::string& path) {
  return "  {\"file\": " + JsonText(path);
}

std::string ColourRecord(const ColourRanges& ranges) {
  std::string record = "{\"method\": \"colour\"";
  const auto add = [&](const char* name, const std::optional<Range>& range) {
    if (!range) return;
    record += ", \"" + std::string(name) + "\": {\"low\": " + JsonNumber(range->low) +
              ", \"high\": " + JsonNumber(range->high) + "}";
  };
  add("hue", ranges.hue);
  add("saturation", ranges.saturation);
  add("lightness", ranges.lightness);
  return record + "}";
}

std::string ThresholdRecord(const Inspection& inspection, const InspectSettings& settings) {
  if (settings.colours.Any()) return ColourRecord(settings.colours);
  std::string record = "{\"method\": ";
  record += JsonText(settings.range ? "range" : std::string(MethodName(settings.method)));
  if (inspection.objects) {
    record += ", \"low\": " + JsonNumber(inspection.objects->low) +
              ", \"high\": " + JsonNumber(inspection.objects->high);
  }
  if (!inspection.remark.empty()) record += ", \"remark\": " + JsonText(inspection.remark);
  return record + "}";
}

std::string ParticleRecord(const Particle& particle, const MeasureList& measures) {
  std::string record = "    {\"number\": " + std::to_string(particle.number);
  for (const Measure* measure : measures) {
    record += ", \"" + std::string(measure->name) + "\": ";
    const std::string value = ExactValue(*measure, particle.values[measure->number]);
    record += value.empty() ? "null" : value;
  }
  return record + "}";
}

}  // namespace

std::string JsonNumber(double value) {
  return std::isfinite(value) ? Exact(value) : "null";
}

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

std::string JsonTexts(const std::vector<std::string>& texts) {
  std::string list = "[";
  for (const std::string& text : texts) list += (list.size() > 1 ? ", " : "") + JsonText(text);
  return list + "]";
}

std::string JsonRecord(const Inspection& inspection, const InspectSettings& settings,
                       const MeasureList& measures) {
  const Account& account = inspection.account;
  std::string record = StartOfFile(inspection.path);
  record += ", \"format\": " + JsonText(account.format) +
            ", \"page\": " + std::to_string(account.page) +
            ", \"pages\": " + std::to_string(account.pages) +
            ", \"width\": " + std::to_string(inspection.labels.width) +
            ", \"height\": " + std::to_string(inspection.labels.height) +
            ", \"bitsPerPixel\": " + std::to_string(account.PixelBits()) +
            ", \"losses\": " + JsonTexts(account.losses) + ",\n";
  record += "   \"threshold\": " + ThresholdRecord(inspection, settings) +
            ", \"refined\": " + JsonTexts(NamesOf(settings.refinement)) +
            ", \"connectivity\": " + (settings.eightConnected ? "8" : "4") +
            ", \"scale\": {\"x\": " + Exact(inspection.scale.x) +
            ", \"y\": " + Exact(inspection.scale.y) + ", \"unit\": " + JsonText(inspection.unit) +
            "},\n";
  record += "   \"found\": " + std::to_string(inspection.particles.size()) +
            ", \"kept\": " + std::to_string(inspection.Kept()) + ", \"particles\": [";
  bool first = true;
  for (const Particle& particle : inspection.particles) {
    if (!particle.kept) continue;
    record += (first ? "\n" : ",\n") + ParticleRecord(particle, measures);
    first = false;
  }
  return record + "]}";
}

std::string JsonFailure(const std::string& path, const std::string& message) {
  return StartOfFile(path) + ", \"error\": {\"message\": " + JsonText(message) + "}}";
}

JsonReport::JsonReport(std::ostream& out) : out_(out) {
  out_ << "{\"program\": \"orlune\", \"version\": \"" << ORLUNE_VERSION << "\",\n \"files\": [";
}

void JsonReport::Add(const std::string& record) {
  out_ << (first_ ? "\n" : ",\n") << record;
  first_ = false;
}

void JsonReport::Finish(const Summary& summary, bool whole) {
  out_ << "],\n \"summary\": {\"inspected\": " << summary.inspected
       << ", \"failed\": " << summary.failed << ", \"found\": " << summary.found
       << ", \"kept\": " << summary.kept << ", \"complete\": " << (whole ? "true" : "false")
       << "}}\n";
}

}  // namespace front
