// What was measured along lines, for people and for programs.
#include "orlune/gauge/line_reports.h"

#include <algorithm>
#include <cmath>
#include <iomanip>

#include "orlune/shared/numbers.h"
#include "orlune/shared/output.h"
#include "orlune/shared/readable.h"
#include "orlune/shared/reports.h"

namespace front {
namespace {

std::string ExactOrNothing(const std::optional<double>& value) {
  return value ? Exact(*value) : "";
}

std::string JsonPlace(Place place) {
  return "[" + JsonNumber(place.x) + ", " + JsonNumber(place.y) + "]";
}

std::string JsonEdges(const GaugeResult& result) {
  std::string list;
  for (const LineEdge& edge : result.edges) {
    const Place at = result.line.At(edge.along);
    list += (list.empty() ? "" : ", ") + std::string("{\"along\": ") + JsonNumber(edge.along) +
            ", \"at\": " + JsonPlace(at) + ", \"rises\": " + (edge.rises ? "true" : "false") +
            ", \"contrast\": " + JsonNumber(edge.contrast) + "}";
  }
  return "[" + list + "]";
}

std::string JsonResult(const GaugeResult& result, const LineGauge& gauge, const std::string& unit) {
  std::string record = "    {\"name\": " + JsonText(gauge.name) +
                       ", \"measure\": " + JsonText(std::string(NameOf(gauge.measure))) +
                       ", \"value\": " + (result.value ? JsonNumber(*result.value) : "null") +
                       ", \"unit\": " + JsonText(UnitOf(gauge, unit)) +
                       ", \"verdict\": " + JsonText(std::string(VerdictOf(result)));
  if (gauge.limits.low) record += ", \"min\": " + JsonNumber(*gauge.limits.low);
  if (gauge.limits.high) record += ", \"max\": " + JsonNumber(*gauge.limits.high);
  if (result.measured) {
    record += ", \"from\": " + JsonPlace(result.measured->from) +
              ", \"to\": " + JsonPlace(result.measured->to);
  }
  return record + ", \"line\": [" + JsonPlace(result.line.from) + ", " + JsonPlace(result.line.to) +
         "],\n     \"edges\": " + JsonEdges(result) + "}";
}

// ---- the picture

constexpr RGBValue LINE_COLOUR = 0xFF9600;
constexpr RGBValue EDGE_COLOUR = 0x40C0FF;
constexpr RGBValue PASSED_COLOUR = 0x20E850;
constexpr RGBValue FAILED_COLOUR = 0xFF4040;
constexpr RGBValue PART_COLOUR = 0xFF50FF;

// Both ends of a stroke across the line.
Line Across(const Line& line, double along, double reach) {
  const Place at = line.At(along);
  const double length = line.Length();
  const double x = -(line.to.y - line.from.y) / length * reach;
  const double y = (line.to.x - line.from.x) / length * reach;
  return {{at.x - x, at.y - y}, {at.x + x, at.y + y}};
}

void DrawResult(const Canvas& canvas, const GaugeResult& result, const LineGauge& gauge) {
  const int32_t size = canvas.TextSize();
  canvas.Stroke(result.line.from, result.line.to, 1, LINE_COLOUR);
  const RGBValue colour = result.passed ? PASSED_COLOUR : FAILED_COLOUR;
  if (result.measured) canvas.Stroke(result.measured->from, result.measured->to, size, colour);
  for (const LineEdge& edge : result.edges) {
    const double reach = std::max(gauge.search.band / 2.0, 4.0 * size);
    const Line stroke = Across(result.line, edge.along, reach);
    canvas.Stroke(stroke.from, stroke.to, size, EDGE_COLOUR);
  }
}

struct TextBox {
  double left, top, right, bottom;

  bool Meets(const TextBox& other, double gap) const {
    return left < other.right + gap && other.left < right + gap && top < other.bottom + gap &&
           other.top < bottom + gap;
  }
};

// Where a text lies that is so far beyond the line's end.
TextBox BoxBeyond(const Line& line, double distance, double width, double height) {
  const double length = line.Length();
  const Place at = line.At(length + distance);
  const bool rightwards = line.to.x - line.from.x > length / 2;
  const bool leftwards = line.from.x - line.to.x > length / 2;
  const double left = rightwards ? at.x : leftwards ? at.x - width : at.x - width / 2;
  const double top = at.y - height / 2;
  return {left, top, left + width, top + height};
}

// Beyond the line's end, farther out where another text lies.
void DrawText(const Canvas& canvas, const GaugeResult& result, const LineGauge& gauge,
              std::vector<TextBox>* drawn) {
  constexpr int32_t FARTHEST_LINE = 8;
  const std::string text = gauge.name + " " + ValueText(gauge, result.value);
  const int32_t size = canvas.TextSize();
  const double width = TextWidth(text, size), height = TextHeight(size);
  const auto isFree = [&](const TextBox& box) {
    return std::none_of(drawn->begin(), drawn->end(),
                        [&](const TextBox& other) { return box.Meets(other, 3.0 * size); });
  };
  TextBox box = BoxBeyond(result.line, height, width, height);
  const TextBox nearest = box;
  for (int32_t line = 2; line <= FARTHEST_LINE && !isFree(box); line++) {
    box = BoxBeyond(result.line, line * height, width, height);
  }
  if (!isFree(box)) box = nearest;
  if (!(std::abs(box.left) < FARTHEST * 2 && std::abs(box.top) < FARTHEST * 2)) return;
  canvas.Text(static_cast<int32_t>(box.left), static_cast<int32_t>(box.top), text);
  drawn->push_back(box);
}

void DrawPart(const Canvas& canvas, const Pose& part) {
  constexpr double REACH = 12;
  const Pose none;
  const auto place = [&](double x, double y) { return Carried({x, y}, none, part); };
  canvas.Stroke(place(-REACH, 0), place(2 * REACH, 0), 1, PART_COLOUR);
  canvas.Stroke(place(0, -REACH), place(0, REACH), 1, PART_COLOUR);
  canvas.Stroke(place(2 * REACH, 0), place(1.5 * REACH, 4), 1, PART_COLOUR);
  canvas.Stroke(place(2 * REACH, 0), place(1.5 * REACH, -4), 1, PART_COLOUR);
}

}  // namespace

std::string UnitOf(const LineGauge& gauge, const std::string& unit) {
  return gauge.measure == LineMeasure::Edges ? "" : unit;
}

std::string ValueText(const LineGauge& gauge, const std::optional<double>& value) {
  if (!value) return "-";
  if (gauge.measure == LineMeasure::Edges) return Fixed(*value, 0);
  return Fixed(*value, std::abs(*value) < 10 ? 4 : std::abs(*value) < 100 ? 3 : 2);
}

std::string LimitsText(const Limits& limits) {
  if (!limits.Any()) return "";
  return (limits.low ? Short(*limits.low) : "") + ":" + (limits.high ? Short(*limits.high) : "");
}

std::string_view VerdictOf(const GaugeResult& result) {
  return !result.value ? "not found" : result.passed ? "passed" : "failed";
}

void PrintTable(std::ostream& out, const Gauging& gauging, const GaugeSetup& setup) {
  out << LineText(gauging.path) << ": " << (gauging.Passed() ? "passed" : "failed");
  if (gauging.part) {
    out << "; the part is at " << Fixed(gauging.part->at.x, 2) << ','
        << Fixed(gauging.part->at.y, 2) << ", turned to " << Fixed(gauging.part->degrees, 2)
        << " degrees";
  }
  out << '\n';
  size_t names = 0;
  for (const LineGauge& gauge : setup.gauges) names = std::max(names, gauge.name.size());
  for (size_t i = 0; i < setup.gauges.size(); i++) {
    const LineGauge& gauge = setup.gauges[i];
    const GaugeResult& result = gauging.results[i];
    const std::string unit = UnitOf(gauge, gauging.unit);
    out << "  " << std::left << std::setw(static_cast<int>(names)) << LineText(gauge.name)
        << std::right << std::setw(12) << ValueText(gauge, result.value) << ' ' << unit;
    if (gauge.limits.Any() || !result.value) out << "  " << VerdictOf(result);
    if (gauge.limits.Any()) out << " (" << LimitsText(gauge.limits) << ")";
    out << '\n';
  }
}

std::string GaugeCsvHead() {
  return "File,Name,Value,Unit,Verdict,FromX,FromY,ToX,ToY,Edges\n";
}

std::string CsvRows(const Gauging& gauging, const GaugeSetup& setup) {
  std::string rows;
  for (size_t i = 0; i < setup.gauges.size(); i++) {
    const LineGauge& gauge = setup.gauges[i];
    const GaugeResult& result = gauging.results[i];
    rows += CsvText(gauging.path) + ',' + CsvText(gauge.name) + ',' + ExactOrNothing(result.value) +
            ',' + CsvText(UnitOf(gauge, gauging.unit)) + ',' + std::string(VerdictOf(result));
    for (const Place Line::*end : {&Line::from, &Line::to}) {
      const auto side = [&](double Place::*axis) {
        return result.measured ? Exact((*result.measured).*end.*axis) : std::string();
      };
      rows += ',' + side(&Place::x) + ',' + side(&Place::y);
    }
    rows += ',' + std::to_string(result.edges.size()) + '\n';
  }
  return rows;
}

std::string JsonRecord(const Gauging& gauging, const GaugeSetup& setup) {
  std::string record = "  {\"file\": " + JsonText(gauging.path) +
                       ", \"passed\": " + (gauging.Passed() ? "true" : "false");
  if (gauging.part) {
    record += ", \"part\": {\"at\": " + JsonPlace(gauging.part->at) +
              ", \"degrees\": " + JsonNumber(gauging.part->degrees) + "}";
  }
  record += ", \"scale\": {\"x\": " + Exact(gauging.scale.x) +
            ", \"y\": " + Exact(gauging.scale.y) + "},\n   \"lines\": [";
  for (size_t i = 0; i < setup.gauges.size(); i++) {
    record +=
        (i == 0 ? "\n" : ",\n") + JsonResult(gauging.results[i], setup.gauges[i], gauging.unit);
  }
  return record + "]}";
}

void ValueSpread::Add(double value) {
  low_ = count_ == 0 ? value : std::min(low_, value);
  high_ = count_ == 0 ? value : std::max(high_, value);
  const double off = value - mean_;
  mean_ += off / static_cast<double>(++count_);
  squares_ += off * (value - mean_);
}

double ValueSpread::Deviation() const {
  return count_ < 2 ? 0 : std::sqrt(squares_ / static_cast<double>(count_ - 1));
}

void PrintSpreads(std::ostream& out, const GaugeSetup& setup,
                  const std::vector<ValueSpread>& spreads, const std::string& unit) {
  for (size_t i = 0; i < spreads.size(); i++) {
    const LineGauge& gauge = setup.gauges[i];
    const ValueSpread& spread = spreads[i];
    if (spread.count() < 2) continue;
    out << "  " << LineText(gauge.name) << ": mean " << ValueText(gauge, spread.mean()) << ' '
        << UnitOf(gauge, unit) << ", deviation " << Fixed(spread.Deviation(), 4) << ", from "
        << ValueText(gauge, spread.low()) << " to " << ValueText(gauge, spread.high()) << '\n';
  }
}

void DrawGauged(const Gauging& gauging, const GaugeSetup& setup, const Canvas& canvas) {
  for (size_t i = 0; i < setup.gauges.size(); i++) {
    DrawResult(canvas, gauging.results[i], setup.gauges[i]);
  }
  if (gauging.part) DrawPart(canvas, *gauging.part);
  std::vector<TextBox> drawn;
  for (size_t i = 0; i < setup.gauges.size(); i++) {
    DrawText(canvas, gauging.results[i], setup.gauges[i], &drawn);
  }
}

void WriteGauged(const Gauging& gauging, const GaugeSetup& setup, const std::string& file) {
  const ImageInfo info = gauging.picture.Info();
  const Image picture(IMAGE_RGB, 0, info.width, info.height);
  const Canvas canvas(picture);
  canvas.CopyGray(Stretch(gauging.picture, ExtremesOf(gauging.picture)));
  DrawGauged(gauging, setup, canvas);
  WritePicture(picture, {}, Depth::AsImage, file, PictureFormat::Bmp);
}

}  // namespace front
