// What is measured along lines of a picture.
#include "orlune/gauge/line_gauges.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <stdexcept>

#include "orlune/inspect/inspection.h"
#include "pictures/source.h"

namespace front {
namespace {

// What an edge in the line's direction leads into.
bool LeadsInto(const LineEdge& edge, Object object) {
  return object == Object::Any || edge.rises == (object == Object::Light);
}
bool LeadsOutOf(const LineEdge& edge, Object object) {
  return object == Object::Any || edge.rises == (object == Object::Dark);
}

using Edges = std::vector<LineEdge>;

Edges::const_iterator FirstInto(const Edges& edges, Object object) {
  return std::find_if(edges.begin(), edges.end(),
                      [&](const LineEdge& edge) { return LeadsInto(edge, object); });
}

// The two ends of a distance, in pixels along the line.
using Ends = std::optional<std::pair<double, double>>;

Ends SpanOf(const Edges& edges, Object object) {
  const auto first = FirstInto(edges, object);
  const auto last = std::find_if(edges.rbegin(), edges.rend(),
                                 [&](const LineEdge& edge) { return LeadsOutOf(edge, object); });
  if (first == edges.end() || last == edges.rend() || last->along <= first->along) return {};
  return std::pair(first->along, last->along);
}

// The pair whose distance is nearest to the nominal one, or the first one.
Ends PairOf(const Edges& edges, const LineGauge& gauge, double pixel) {
  Ends best;
  double nearest = std::numeric_limits<double>::infinity();
  for (size_t i = 1; i < edges.size(); i++) {
    const LineEdge& first = edges[i - 1];
    const LineEdge& second = edges[i];
    if (!LeadsInto(first, gauge.object) || !LeadsOutOf(second, gauge.object)) continue;
    const double distance = (second.along - first.along) * pixel;
    const double off = gauge.nominal ? std::abs(distance - *gauge.nominal) : 0;
    if (off >= nearest) continue;
    nearest = off;
    best = std::pair(first.along, second.along);
  }
  return best;
}

Ends EndsOf(const Edges& edges, const LineGauge& gauge, double length, double pixel) {
  const auto first = FirstInto(edges, gauge.object);
  switch (gauge.measure) {
    case LineMeasure::Span:
      return SpanOf(edges, gauge.object);
    case LineMeasure::Pair:
      return PairOf(edges, gauge, pixel);
    case LineMeasure::Start:
      if (first != edges.end()) return std::pair(0.0, first->along);
      return {};
    case LineMeasure::End:
      if (first != edges.end()) return std::pair(first->along, length);
      return {};
    case LineMeasure::Edges:
      return {};
  }
  return {};
}

// How long a pixel's length along the line is in the unit.
double PixelAlong(const Line& line, const Scale& scale) {
  return std::hypot((line.to.x - line.from.x) * static_cast<double>(scale.x),
                    (line.to.y - line.from.y) * static_cast<double>(scale.y)) /
         line.Length();
}

GaugeResult GaugeLine(const Image& picture, const Scale& scale, const LineGauge& gauge,
                      const Line& line) {
  GaugeResult result;
  result.line = line;
  result.edges = EdgesAlong(picture, line, gauge.search);
  const double pixel = PixelAlong(line, scale);
  const Ends ends = EndsOf(result.edges, gauge, line.Length(), pixel);
  if (ends) {
    result.measured = Line{line.At(ends->first), line.At(ends->second)};
    result.value = (ends->second - ends->first) * pixel;
  }
  if (gauge.measure == LineMeasure::Edges) {
    result.value = static_cast<double>(
        std::count_if(result.edges.begin(), result.edges.end(),
                      [&](const LineEdge& edge) { return LeadsInto(edge, gauge.object); }));
  }
  result.passed = result.value && gauge.limits.Hold(*result.value);
  return result;
}

Place FirstEdge(const Image& picture, const Line& line, const Reference& reference) {
  const Edges edges = EdgesAlong(picture, line, reference.search);
  const auto first = FirstInto(edges, reference.object);
  if (first == edges.end()) {
    throw NotFound("the part was not found: no edge on the line of reference from " +
                   std::to_string(std::lround(line.from.x)) + "," +
                   std::to_string(std::lround(line.from.y)));
  }
  return line.At(first->along);
}

// The line through the first two edges gives the direction, the foot of the third one on it the
// place.
Pose PoseByEdges(const Image& picture, const Reference& reference) {
  std::array<Place, 3> found;
  for (size_t i = 0; i < found.size(); i++) {
    found[i] = FirstEdge(picture, reference.lines[i], reference);
  }
  const Place& base = found[0];
  const double dx = found[1].x - base.x, dy = found[1].y - base.y;
  const double squared = dx * dx + dy * dy;
  if (!(squared > 0)) throw NotFound("the part was not found: two edges at one place");
  const double part = ((found[2].x - base.x) * dx + (found[2].y - base.y) * dy) / squared;
  return {{base.x + part * dx, base.y + part * dy}, std::atan2(dy, dx) * 180 / std::numbers::pi};
}

Pose PoseByObject(const Inspection& inspection, const Reference& reference) {
  const std::optional<ObjectPose> object = PoseOf(inspection.labels, 0);
  if (!object) {
    throw NotFound("the part was not found: " + (inspection.remark.empty()
                                                     ? std::string("there is no object")
                                                     : inspection.remark));
  }
  return reference.taught ? Resolved(*object, *reference.taught) : object->pose;
}

// A picture, and the part in it where the lines follow one.
struct Found {
  Loaded picture;
  std::optional<Pose> part;
};

Found FindIn(const std::string& path, Loaded picture, const Reference& reference) {
  if (reference.follow == Follow::Object) {
    InspectSettings settings;
    settings.dark = reference.object == Object::Dark;
    Inspection inspection = Locate(std::move(picture), path, settings);
    const Pose part = PoseByObject(inspection, reference);
    return {{.account = std::move(inspection.account),
             .image = std::move(inspection.picture),
             .palette = {},
             .colours = {}},
            part};
  }
  std::optional<Pose> part;
  if (reference.follow == Follow::Edges) part = PoseByEdges(picture.image, reference);
  return {std::move(picture), part};
}

Loaded ReadGray(const std::string& path, bool swapBytes) {
  return ReadPicture(path, {.form = Form::Gray, .swapBytes = swapBytes});
}

template <class Value>
std::string_view NameIn(const std::vector<NamedRow<Value>>& rows, Value value) {
  return std::find_if(rows.begin(), rows.end(),
                      [&](const NamedRow<Value>& row) { return row.value == value; })
      ->name;
}

}  // namespace

const std::vector<NamedRow<LineMeasure>>& AllLineMeasures() {
  static const std::vector<NamedRow<LineMeasure>> ROWS = {
      {LineMeasure::Span, "span", "from the first edge to the last one (usual)"},
      {LineMeasure::Pair, "pair", "between two edges that follow each other"},
      {LineMeasure::Start, "start", "from the line's start to the first edge"},
      {LineMeasure::End, "end", "from the first edge to the line's end"},
      {LineMeasure::Edges, "edges", "how many edges there are"}};
  return ROWS;
}

const std::vector<NamedRow<Object>>& AllObjects() {
  static const std::vector<NamedRow<Object>> ROWS = {
      {Object::Any, "any", "edges of both kinds (usual)"},
      {Object::Dark, "dark", "edges into the dark begin it, edges into the light end it"},
      {Object::Light, "light", "the other way round"}};
  return ROWS;
}

std::string_view NameOf(LineMeasure measure) {
  return NameIn(AllLineMeasures(), measure);
}

std::string_view NameOf(Object object) {
  return NameIn(AllObjects(), object);
}

bool Gauging::Passed() const {
  return std::all_of(results.begin(), results.end(),
                     [](const GaugeResult& result) { return result.passed; });
}

Pose FindPart(const std::string& path, const Reference& reference, bool swapBytes) {
  return FindPart(path, ReadGray(path, swapBytes), reference);
}

Pose FindPart(const std::string& path, Loaded picture, const Reference& reference) {
  return FindIn(path, std::move(picture), reference).part.value_or(Pose{});
}

std::vector<GaugeResult> GaugeLines(const Image& picture, const Scale& scale,
                                    const GaugeSetup& setup, const std::optional<Pose>& part) {
  std::vector<GaugeResult> results;
  for (const LineGauge& gauge : setup.gauges) {
    Line line = gauge.line;
    if (part && setup.reference.taught) {
      line = {Carried(line.from, *setup.reference.taught, *part),
              Carried(line.to, *setup.reference.taught, *part)};
    }
    results.push_back(GaugeLine(picture, scale, gauge, line));
  }
  return results;
}

Gauging GaugePicture(const std::string& path, const GaugeSetup& setup, bool swapBytes) {
  Clock clock;
  Loaded picture = ReadGray(path, swapBytes);
  const Seconds reading = clock.Lap();
  Gauging gauging = GaugePicture(path, std::move(picture), setup);
  gauging.time += reading;
  return gauging;
}

Gauging GaugePicture(const std::string& path, Loaded picture, const GaugeSetup& setup,
                     std::optional<Pose> part) {
  if (setup.reference.follow != Follow::Nothing && !setup.reference.taught) {
    throw std::invalid_argument("lines that follow the part need the picture they are drawn for");
  }
  Clock clock;
  Found found =
      part ? Found{std::move(picture), part} : FindIn(path, std::move(picture), setup.reference);
  const ImageInfo info = found.picture.image.Info();
  Gauging gauging{.path = path,
                  .account = std::move(found.picture.account),
                  .picture = std::move(found.picture.image),
                  .scale = setup.scale.value_or(Scale{info.xStep, info.yStep}),
                  .unit = setup.unit,
                  .part = found.part,
                  .results = {},
                  .time = {}};
  if (gauging.unit.empty()) {
    gauging.unit = gauging.scale.x != 1 || gauging.scale.y != 1 ? "unit" : "px";
  }
  gauging.results = GaugeLines(gauging.picture, gauging.scale, setup, gauging.part);
  gauging.time = clock.Lap();
  return gauging;
}

}  // namespace front
