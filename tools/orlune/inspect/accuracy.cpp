// orlune_accuracy: how far measures are from the truth of drawn discs, squares and bars, as the
// table of docs/measures.md. A pixel belongs to a shape when its centre does. usage:
// orlune_accuracy [PAGE]   (with a page, checks that the table stands in it)
#include <algorithm>
#include <cmath>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <numbers>
#include <optional>
#include <sstream>

#include "orlune/inspect/particles.h"
#include "orlune/shared/numbers.h"

namespace {

using namespace front;  // NOLINT: this is its program

using std::numbers::pi;

struct Shape {
  double width, height;  // of a rectangle; of a disc both are its diameter
  bool disc;
  double degrees;         // counter-clockwise
  double shiftX, shiftY;  // of the centre, parts of a pixel
};

std::vector<double> MeasuresOf(const Shape& shape) {
  const auto size = static_cast<int32_t>(std::hypot(shape.width, shape.height)) + 8;
  Image mask(IMAGE_U8, 2, size, size);
  Check(ZEL_ClearPixels(mask));
  const ImageInfo info = mask.Info();
  const double c = std::cos(shape.degrees * pi / 180), s = std::sin(shape.degrees * pi / 180);
  for (int32_t y = 0; y < size; ++y) {
    for (int32_t x = 0; x < size; ++x) {
      const double dx = x - size / 2 - shape.shiftX, dy = y - size / 2 - shape.shiftY;
      const double along = dx * c - dy * s, across = dx * s + dy * c;
      const bool inside =
          shape.disc ? std::hypot(dx, dy) <= shape.width / 2
                     : std::abs(along) <= shape.width / 2 && std::abs(across) <= shape.height / 2;
      Row<uint8_t>(info, y)[x] = inside ? 1 : 0;
    }
  }
  const Labels labels = LabelRuns(mask, true);
  return MeasureParticles(mask, mask, labels, true).at(0).values;
}

// What a measure is of the shape itself; none where it is not made for such a shape.
std::optional<double> TruthOf(size_t measure, const Shape& shape) {
  const double w = shape.width, h = shape.height;
  const double area = shape.disc ? pi * w * w / 4 : w * h;
  const double outline = shape.disc ? pi * w : 2 * (w + h);
  const double longest = shape.disc ? w : std::hypot(w, h);
  switch (measure) {
    case MEASURE_AREA_PIXELS:
      return area;
    case MEASURE_PERIMETER:
    case CROFTON_PERIMETER:
      return outline;
    case MEASURE_HEYWOOD_CIRCULARITY:
      return outline / (2 * std::sqrt(pi * area));
    case CROFTON_CIRCULARITY:
      return 4 * pi * area / (outline * outline);
    case FERET_MAXIMUM:
    case MEASURE_MAX_INTERCEPT:
      return longest;
    case FERET_MINIMUM:
    case MINIMAL_BOX_WIDTH:
      return h;
    case MINIMAL_BOX_LENGTH:
      return w;
    case MOMENT_ELLIPSE_MAJOR_AXIS:
      return shape.disc ? w : 4 * w / std::sqrt(12);
    case MOMENT_ELLIPSE_MINOR_AXIS:
      return shape.disc ? h : 4 * h / std::sqrt(12);
    case MEASURE_WADDEL_DIAMETER:
      return 2 * std::sqrt(area / pi);
    case HULL_AREA:
      return area;
    case SOLIDITY:
      return 1.0;
    case MEASURE_ELLIPSE_MAJOR_AXIS:
      return shape.disc ? std::optional(w) : std::nullopt;
    case MEASURE_RECTANGLE_LONG_SIDE:
      return shape.disc ? std::nullopt : std::optional(w);
    case MEASURE_RECTANGLE_SHORT_SIDE:
      return shape.disc ? std::nullopt : std::optional(h);
    default:
      return std::nullopt;
  }
}

// All shapes of a column of the table.
struct Column {
  std::string head;
  std::vector<Shape> shapes;
};

std::vector<Column> AllColumns() {
  std::vector<Column> columns;
  for (const int diameter : {10, 20, 50, 100, 200}) {
    Column column{.head = "disc " + std::to_string(diameter), .shapes = {}};
    for (int i = 0; i < 25; ++i) {
      const double d = diameter;
      column.shapes.push_back({d, d, true, 0, i % 5 / 5.0, i / 5 / 5.0});
    }
    columns.push_back(column);
  }
  for (const auto& [w, h] :
       {std::pair(20, 20), std::pair(60, 60), std::pair(60, 10), std::pair(200, 30)}) {
    Column column{.head = w == h ? "square " + std::to_string(w)
                                 : "bar " + std::to_string(w) + " x " + std::to_string(h),
                  .shapes = {}};
    for (int degrees = 0; degrees < 180; degrees += 3) {
      for (const double shift : {0.25, 0.5}) {
        column.shapes.push_back({1.0 * w, 1.0 * h, false, 1.0 * degrees, shift, shift / 2});
      }
    }
    columns.push_back(column);
  }
  return columns;
}

struct Spread {
  double low = INFINITY, high = -INFINITY;
  void Add(double value) {
    low = std::min(low, value);
    high = std::max(high, value);
  }
};

std::string Signed(double percent) {
  const double rounded = std::round(percent * 10) / 10;
  return (rounded > 0 ? "+" : "") + Fixed(rounded == 0 ? 0 : rounded, 1);
}

// A row a measure: by how many percent it is off, at least and at most.
std::string Table() {
  const std::vector<Column> columns = AllColumns();
  const Measure& orientation = FindMeasure("Orientation");
  std::map<size_t, std::vector<std::optional<Spread>>> rows;
  std::vector<Spread> angles;
  for (const Column& column : columns) {
    std::map<size_t, Spread> spreads;
    Spread angle;
    for (const Shape& shape : column.shapes) {
      const std::vector<double> values = MeasuresOf(shape);
      for (const Measure& measure : AllMeasures()) {
        const std::optional<double> truth = TruthOf(measure.number, shape);
        if (truth) spreads[measure.number].Add((values[measure.number] / *truth - 1) * 100);
      }
      const double off = std::abs(values[orientation.number] - shape.degrees);
      angle.Add(std::min(off, 180 - off));
    }
    for (const Measure& measure : AllMeasures()) {
      const auto found = spreads.find(measure.number);
      rows[measure.number].push_back(found == spreads.end() ? std::nullopt
                                                            : std::optional(found->second));
    }
    angles.push_back(angle);
  }

  std::ostringstream out;
  out << "| measure |";
  for (const Column& column : columns) out << ' ' << column.head << " |";
  out << "\n|---|";
  for (size_t i = 0; i < columns.size(); ++i) out << "---|";
  out << '\n';
  for (const Measure& measure : AllMeasures()) {
    const auto& row = rows[measure.number];
    if (std::none_of(row.begin(), row.end(), [](const auto& spread) { return spread.has_value(); }))
      continue;
    out << "| " << measure.name << " |";
    for (const std::optional<Spread>& spread : row) {
      out << ' ' << (spread ? Signed(spread->low) + " to " + Signed(spread->high) : "") << " |";
    }
    out << '\n';
  }
  out << "| Orientation (degrees off) |";
  for (size_t i = 0; i < columns.size(); ++i) {
    const bool bar = columns[i].head.starts_with("bar");
    out << ' ' << (bar ? "at most " + Fixed(angles[i].high, 1) : "") << " |";
  }
  out << '\n';
  return out.str();
}

}  // namespace

int main(int argc, char** argv) {
  const std::string table = Table();
  if (argc < 2) {
    std::cout << table;
    return 0;
  }
  std::ifstream file(argv[1]);
  const std::string page{std::istreambuf_iterator<char>(file), {}};
  if (page.find(table) != std::string::npos) return 0;
  std::cerr << argv[1] << " has another table than this:\n" << table;
  return 1;
}
