// ZEL_PeakValleyDetector: peaks or valleys of an array, by parabolas fitted to a sliding window.
#include <algorithm>
#include <cmath>

#include "core/status.h"
#include "orlune_ptk.h"
#include "vision/local_array.h"
#include "vision/result_table.h"

namespace zel {
namespace {

constexpr int32_t LEAST_WIDTH = 3;  // samples that a parabola needs

// y = a + b x + c x^2, with x from the middle of a window
struct Parabola {
  double a, b, c;

  double At(double x) const { return (x * c + b) * x + a; }
};

// Least squares over windows of one width. The abscissas are symmetric, so that samples are taken
// in mirrored pairs: of flat or symmetric ones the slope is exactly 0.
class ParabolaFit {
 public:
  ParabolaFit(const double* data, int64_t width) : data_(data), width_(width) {
    half_ = static_cast<double>(width - 1) / 2.0;
    for (int64_t i = 0; i < width; i++) {
      const double square = Abscissa(i) * Abscissa(i);
      squares_ += square;
      fourths_ += square * square;
    }
    determinant_ = static_cast<double>(width) * fourths_ - squares_ * squares_;
  }

  double half() const { return half_; }

  // Of the windows that start at so many samples one after the other: whether the slope in the
  // middle is above 0.
  static constexpr uint32_t GROUP = 8;
  void Rises(int64_t start, int64_t windows, bool* rises) const {
    if (windows == GROUP) return RisesOf<GROUP>(start, rises);
    for (int64_t k = 0; k < windows; k++) RisesOf<1>(start + k, rises + k);
  }

  Parabola At(int64_t start) const {
    const double* y = data_ + start;
    double sum = 0.0;
    double moment = 0.0;
    for (int64_t i = 0; i < width_ / 2; i++) {
      const double pair = y[i] + y[width_ - 1 - i];
      sum += pair;
      moment += Abscissa(i) * Abscissa(i) * pair;
    }
    if (width_ % 2 == 1) sum += y[width_ / 2];
    double slope = 0.0;
    Slopes<1>(start, &slope);
    return {(fourths_ * sum - squares_ * moment) / determinant_, slope / squares_,
            (static_cast<double>(width_) * moment - squares_ * sum) / determinant_};
  }

 private:
  double Abscissa(int64_t i) const { return static_cast<double>(i) - half_; }

  // The slopes of windows side by side, up to a positive factor. Each is summed on its own.
  template <uint32_t windows>
  void Slopes(int64_t start, double* slopes) const {
    double sums[windows] = {};
    for (int64_t i = 0; i < width_ / 2; i++) {
      const double weight = -Abscissa(i);
      const double* left = data_ + start + i;
      const double* right = data_ + start + width_ - 1 - i;
      for (int64_t k = 0; k < windows; k++) sums[k] += weight * (right[k] - left[k]);
    }
    std::copy_n(sums, windows, slopes);
  }

  template <uint32_t windows>
  void RisesOf(int64_t start, bool* rises) const {
    double slopes[windows];
    Slopes<windows>(start, slopes);
    for (int64_t k = 0; k < windows; k++) rises[k] = slopes[k] / squares_ > 0.0;
  }

  const double* data_;
  int64_t width_;
  double half_;
  double squares_ = 0.0, fourths_ = 0.0;  // sums of powers of the abscissas
  double determinant_;
};

struct Vertex {
  double location, amplitude, secondDerivative;
};

struct VertexRule {
  double threshold;
  bool isPeak;
};

// The vertex at a change of slope. Where it lies before the middle of the window, the one of the
// window before can be nearer to its own middle, and is taken.
bool VertexTest(const ParabolaFit& fit, int64_t start, const VertexRule& rule, Vertex* vertex) {
  Parabola parabola = fit.At(start);
  double bend = 2.0 * parabola.c;
  if (bend == 0.0) return false;
  double x = -parabola.b / bend;
  if (start > 0 && x < -0.5) {
    const Parabola former = fit.At(start - 1);
    const double formerBend = 2.0 * former.c;
    if (formerBend == 0.0) return false;
    const double formerX = -former.b / formerBend;
    if (std::fabs(x) > std::fabs(formerX)) {
      parabola = former;
      bend = formerBend;
      x = formerX;
      start--;
    }
  }
  if (std::fabs(x) > fit.half()) return false;
  const double y = parabola.At(x);
  const bool isWanted =
      rule.isPeak ? bend < 0.0 && y > rule.threshold : bend > 0.0 && y < rule.threshold;
  if (isWanted) *vertex = {static_cast<double>(start) + fit.half() + x, y, bend};
  return isWanted;
}

using VertexList = LocalList<Vertex, 64>;

// False when there is no memory.
bool VerticesFind(const ParabolaFit& fit, int64_t windows, const VertexRule& rule,
                  VertexList* vertices) {
  constexpr int64_t group = ParabolaFit::GROUP;
  bool rises[ParabolaFit::GROUP] = {};
  bool rose = false;
  for (int64_t first = 0; first < windows; first += group) {
    const int64_t count = std::min(group, windows - first);
    fit.Rises(first, count, rises);
    for (int64_t k = 0; k < count; k++) {
      Vertex vertex{};
      if (first + k > 0 && rises[k] != rose && VertexTest(fit, first + k, rule, &vertex) &&
          !vertices->Append(vertex)) {
        return false;
      }
      rose = rises[k];
    }
  }
  return true;
}

struct VertexTables {
  WorkArray<double> locations, amplitudes, secondDerivatives;
  int64_t count = 0;
};

Status DetectVertices(const double* data, int32_t count, int32_t width, const VertexRule& rule,
                      VertexTables* tables) {
  if (width < LEAST_WIDTH) return STATUS_BAD_WIDTH;
  VertexList vertices;
  if (count >= width) {
    const ParabolaFit fit(data, width);
    if (!VerticesFind(fit, int64_t{count} - width + 1, rule, &vertices)) return STATUS_MEMORY_FULL;
  }
  tables->count = vertices.count();
  for (WorkArray<double>* table :
       {&tables->locations, &tables->amplitudes, &tables->secondDerivatives}) {
    if (!TableMake(table, tables->count)) return STATUS_MEMORY_FULL;
  }
  for (int64_t i = 0; i < tables->count; i++) {
    tables->locations.data()[i] = vertices[i].location;
    tables->amplitudes.data()[i] = vertices[i].amplitude;
    tables->secondDerivatives.data()[i] = vertices[i].secondDerivative;
  }
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_PeakValleyDetector(const double* data, int32_t count, double threshold, int32_t width,
                               int32_t type, int32_t* found, double** locations,
                               double** amplitudes, double** secondDerivatives) {
  zel::Status status = zel::STATUS_NULL_POINTER;
  if ((data || count <= 0) && locations && amplitudes && secondDerivatives) {
    zel::VertexTables tables;
    status = zel::DetectVertices(data, count, width, {threshold, type == DETECT_PEAKS}, &tables);
    if (status == zel::STATUS_OK) {
      zel::TableHandOver(&tables.locations, locations);
      zel::TableHandOver(&tables.amplitudes, amplitudes);
      zel::TableHandOver(&tables.secondDerivatives, secondDerivatives);
      zel::CountTell(tables.count, found);
    }
  }
  return ZEL_ProcessError("ZEL_PeakValleyDetect", status);
}
