// What is measured along lines of a picture, and whether it is within its limits. The lines follow
// the part.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "orlune/gauge/line_edges.h"
#include "orlune/gauge/poses.h"
#include "orlune/inspect/shapes.h"
#include "orlune/shared/clock.h"
#include "orlune/shared/pictures.h"

namespace front {

enum class LineMeasure {
  Span,   // from the first edge to the last one
  Pair,   // between two edges that follow each other
  Start,  // from the line's start to the first edge
  End,    // from the first edge to the line's end
  Edges   // how many edges there are
};

// What is measured, or what an edge leads into, beside what lies around it.
enum class Object { Any, Dark, Light };

struct Limits {
  std::optional<double> low, high;

  bool Any() const { return low || high; }
  bool Hold(double value) const { return !(low && value < *low) && !(high && value > *high); }
};

// Names for set-ups and the command line.
template <class Value>
struct NamedRow {
  Value value;
  std::string_view name, meaning;
};
const std::vector<NamedRow<LineMeasure>>& AllLineMeasures();
const std::vector<NamedRow<Object>>& AllObjects();
std::string_view NameOf(LineMeasure measure);
std::string_view NameOf(Object object);

struct LineGauge {
  std::string name;
  Line line;
  LineMeasure measure = LineMeasure::Span;
  Object object = Object::Any;
  std::optional<double> nominal;  // of several pairs the one nearest to this is taken
  Limits limits;                  // in the unit
  EdgeSearch search;
};

// What tells where the part is.
enum class Follow {
  Nothing,  // it lies where the lines are drawn
  Object,   // the largest dark or light object: its centre of mass and its long axis
  Edges     // the first edges on three lines: two on one side of the part, one on a side across it
};

struct Reference {
  Follow follow = Follow::Nothing;
  Object object = Object::Dark;  // the part itself; with Follow::Edges what the edges lead into
  std::array<Line, 3> lines{};
  EdgeSearch search;
  std::optional<Pose> taught;  // where the part is in the picture that the lines are drawn for
};

struct GaugeSetup {
  std::optional<Scale> scale;  // of a pixel; none: the file's own, or 1
  std::string unit;            // of the scale; empty for none
  Reference reference;
  std::vector<LineGauge> gauges;
};

struct GaugeResult {
  Line line;                     // where it lies in this picture
  std::vector<LineEdge> edges;   // all that were found on it
  std::optional<double> value;   // in the unit; none where the edges that it needs are not there
  std::optional<Line> measured;  // from one end of the distance to the other
  bool passed = false;           // there is a value, and it is within the limits
};

struct Gauging {
  std::string path;
  Account account;
  Image picture;  // in the file's own values
  Scale scale;
  std::string unit;
  std::optional<Pose> part;          // where it was found
  std::vector<GaugeResult> results;  // one for each gauge of the set-up
  Seconds time{};

  bool Passed() const;
};

// Finds the part in a picture. Throws BadFile, LibraryFailure, and std::runtime_error where there
// is none.
Pose FindPart(const std::string& path, const Reference& reference, bool swapBytes);

// Measures a picture. Throws as FindPart, and std::invalid_argument for a set-up that follows the
// part but was taught nowhere.
Gauging GaugePicture(const std::string& path, const GaugeSetup& setup, bool swapBytes);

// The same for a picture that has been read as gray. Where the part was found by other means, it
// is not looked for.
Pose FindPart(const std::string& path, Loaded picture, const Reference& reference);
Gauging GaugePicture(const std::string& path, Loaded picture, const GaugeSetup& setup,
                     std::optional<Pose> part = {});

// The same for a picture that has been read, where the part is known: for lines that are carried
// along from where it was taught, or stay.
std::vector<GaugeResult> GaugeLines(const Image& picture, const Scale& scale,
                                    const GaugeSetup& setup, const std::optional<Pose>& part);

}  // namespace front
