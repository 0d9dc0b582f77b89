// The particle measurement step by step, with records that are moved and searched: slow, and apart
// from the library's.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "tests/reference/particles.h"

namespace test {

// What a contour walk has counted.
struct WalkCounts {
  int64_t h = 0, v = 0, d = 0;
  int64_t turns[5] = {};
  int64_t c1 = 0, c2 = 0;
  double perimeter = 0;  // as the walk gives it, before any bound
};

struct SweptParticle {
  ParticleReport report{};
  WalkCounts outer;
  std::vector<WalkCounts> holes;
};

class ReferenceSweep {
 public:
  ReferenceSweep(const Picture& picture, bool eight, float xStep, float yStep)
      : picture_(picture), eight_(eight), xStep_(xStep), yStep_(yStep) {}

  std::vector<SweptParticle> Run() {
    for (int32_t y = 0; y < picture_.height; y++) {
      for (int32_t x = 0; x < picture_.width; x++) {
        if (!picture_.At(x, y) || picture_.At(x - 1, y)) continue;
        int32_t end = x;
        while (picture_.At(end + 1, y)) end++;
        AddRun(y, x, end);
      }
      CloseParticles(y);
    }
    CloseParticles(picture_.height);
    for (SweptParticle& particle : particles_) {
      ParticleReport& report = particle.report;
      const auto area =
          static_cast<float>(static_cast<double>(xStep_) * static_cast<double>(yStep_));
      report.calibratedArea = static_cast<float>(report.area * static_cast<double>(area));
      // From ends to sizes.
      report.rect.width = report.rect.width + 1 - report.rect.left;
      report.rect.height = report.rect.height + 1 - report.rect.top;
    }
    return particles_;
  }

 private:
  struct RunRecord {
    int32_t id;  // index of the particle; below 0: a gap
    int32_t start, end, row;
  };

  static int32_t Low32(int64_t value) { return static_cast<int32_t>(static_cast<uint32_t>(value)); }
  static void Add(float* sum, double value) {
    *sum = static_cast<float>(static_cast<double>(*sum) + value);
  }

  void AddRun(int32_t row, int32_t start, int32_t end) {
    const int32_t lo = eight_ ? start - 1 : start;
    const int32_t hi = eight_ ? end + 1 : end;
    int32_t overlap = 0;
    int32_t current = -1;
    for (size_t i = runs_.size(); i-- > 0;) {
      if (runs_[i].row < row - 1) break;
      if (runs_[i].row != row - 1) continue;
      if (hi < runs_[i].start || lo > runs_[i].end) continue;
      overlap += std::min(runs_[i].end, end) - std::max(start, runs_[i].start) + 1;
      if (current < 0) {
        current = runs_[i].id;
      } else if (runs_[i].id != current) {
        current = Merge(current, runs_[i].id);
      } else {
        particles_[static_cast<size_t>(current)].report.nbHoles++;
        Hole(row - 1, i, current);
      }
    }
    if (current < 0) {
      current = static_cast<int32_t>(particles_.size());
      particles_.push_back({});
      particles_.back().report.rect = {INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};
    }
    runs_.push_back({current, start, end, row});
    int64_t sumX = 0;
    uint32_t sumXX = 0;
    for (int64_t x = start; x <= end; x++) {
      sumX += x;
      sumXX += static_cast<uint32_t>(x) * static_cast<uint32_t>(x);
    }
    const int64_t length = end - start + 1;
    ParticleReport& report = particles_[static_cast<size_t>(current)].report;
    Add(&report.sumX, Low32(sumX));
    Add(&report.sumY, Low32(length * row));
    Add(&report.sumXX, static_cast<int32_t>(sumXX));
    Add(&report.sumYY, Low32(length * row * row));
    Add(&report.sumXY, Low32(int64_t{row} * Low32(sumX)));
    report.projectionX += static_cast<int32_t>(length) - overlap;
  }

  int32_t Merge(int32_t a, int32_t b) {
    const int32_t low = std::min(a, b);
    const int32_t high = std::max(a, b);
    for (RunRecord& run : runs_) {
      if (run.id == high) {
        run.id = low;
      } else if (run.id > high) {
        run.id--;
      }
    }
    SweptParticle& into = particles_[static_cast<size_t>(low)];
    const SweptParticle& from = particles_[static_cast<size_t>(high)];
    ParticleReport& l = into.report;
    const ParticleReport& h = from.report;
    l.area += h.area;
    Add(&l.perimeter, static_cast<double>(h.perimeter));
    l.nbHoles += h.nbHoles;
    l.holesArea += h.holesArea;
    Add(&l.holesPerimeter, static_cast<double>(h.holesPerimeter));
    Add(&l.sumX, static_cast<double>(h.sumX));
    Add(&l.sumY, static_cast<double>(h.sumY));
    Add(&l.sumXX, static_cast<double>(h.sumXX));
    Add(&l.sumYY, static_cast<double>(h.sumYY));
    Add(&l.sumXY, static_cast<double>(h.sumXY));
    l.projectionX += h.projectionX;
    l.nbRuns += h.nbRuns;
    l.rect.left = std::min(l.rect.left, h.rect.left);
    l.rect.top = std::min(l.rect.top, h.rect.top);
    l.rect.width = std::max(l.rect.width, h.rect.width);
    l.rect.height = std::max(l.rect.height, h.rect.height);
    if (h.longestSegment > l.longestSegment) {
      l.longestSegment = h.longestSegment;
      l.longestSegmentX = h.longestSegmentX;
      l.longestSegmentY = h.longestSegmentY;
    }
    into.holes.insert(into.holes.end(), from.holes.begin(), from.holes.end());
    particles_.erase(particles_.begin() + high);
    return low;
  }

  void CloseParticles(int32_t row) {
    bool closed = true;
    while (closed) {
      closed = false;
      for (size_t i = runs_.size(); i-- > 0;) {
        if (runs_[i].row >= row) continue;
        if (runs_[i].row < row - 1) break;
        bool goesOn = false;
        for (size_t j = i + 1; j < runs_.size(); j++) {
          goesOn = goesOn || (runs_[j].id == runs_[i].id && runs_[j].row == row);
        }
        if (goesOn) continue;
        Close(runs_[i].id, row - 1);
        closed = true;
        break;
      }
    }
  }

  void Close(int32_t id, int32_t lastRow) {
    SweptParticle& particle = particles_[static_cast<size_t>(id)];
    ParticleReport& report = particle.report;
    for (const RunRecord& run : runs_) {
      if (run.id != id) continue;
      const int32_t length = run.end - run.start + 1;
      report.area += length;
      report.nbRuns++;
      report.rect.left = std::min(report.rect.left, run.start);
      report.rect.top = std::min(report.rect.top, run.row);
      report.rect.width = std::max(report.rect.width, run.end);
      if (length > report.longestSegment) {
        report.longestSegment = length;
        report.longestSegmentX = run.start;
        report.longestSegmentY = run.row;
      }
    }
    report.rect.height = lastRow;
    particle.outer = ContourWalk(id, 0);
    const double least = 2.0 * std::sqrt(static_cast<double>(report.calibratedArea) * 3.14159274);
    report.perimeter =
        static_cast<float>(particle.outer.perimeter > least ? particle.outer.perimeter : least);
    std::erase_if(runs_, [id](const RunRecord& run) { return run.id == id; });
  }

  void Hole(int32_t row, size_t index, int32_t id) {
    const size_t remembered = runs_.size();
    int32_t lastFresh = 0;
    for (int32_t r = row; r >= 0; r--) {
      size_t right = SIZE_MAX;
      bool found = false;
      const size_t firstOfRow = runs_.size();
      for (size_t i = index + 2; i-- > 0;) {
        if (i >= remembered || runs_[i].row > r) continue;
        if (runs_[i].row < r) break;
        if (right != SIZE_MAX) {
          RunRecord gap = {0, runs_[i].end + 1, runs_[right].start - 1, r};
          const int32_t widen = eight_ ? 0 : 1;
          for (size_t j = remembered; j < firstOfRow; j++) {
            if (runs_[j].row != r + 1) continue;
            if (runs_[j].start > gap.end + widen || runs_[j].end < gap.start - widen) continue;
            if (gap.id == 0) {
              gap.id = runs_[j].id;
            } else if (gap.id != runs_[j].id) {
              const int32_t low = std::min(gap.id, runs_[j].id);
              const int32_t high = std::max(gap.id, runs_[j].id);
              gap.id = high;
              for (size_t k = remembered; k < runs_.size(); k++) {
                if (runs_[k].id == low) runs_[k].id = high;
              }
            }
          }
          if (gap.id == 0) gap.id = --lastFresh;
          runs_.push_back(gap);
        }
        right = i;
      }
      for (size_t k = firstOfRow; k < runs_.size(); k++) found = found || runs_[k].id == -1;
      if (!found) break;
    }
    std::reverse(runs_.begin() + static_cast<int64_t>(remembered), runs_.end());
    int32_t area = 0;
    for (size_t k = remembered; k < runs_.size(); k++) {
      if (runs_[k].id == -1) area += runs_[k].end - runs_[k].start + 1;
    }
    SweptParticle& particle = particles_[static_cast<size_t>(id)];
    particle.holes.push_back(ContourWalk(-1, remembered));
    ParticleReport& report = particle.report;
    report.holesArea += area;
    Add(&report.holesPerimeter, particle.holes.back().perimeter);
    const double least = 2.0 * std::sqrt(report.holesArea * 3.14159274);
    if (least > static_cast<double>(report.holesPerimeter)) {
      report.holesPerimeter = static_cast<float>(least);
    }
    runs_.resize(remembered);
  }

  // One leg of a walk, until the start is reached. False when there is no way on.
  bool Leg(int32_t x, int32_t y, int32_t last, int32_t startX, int32_t startY, bool tableA,
           WalkCounts* counts) const {
    static constexpr int32_t dx[] = {-1, 0, 1, 1, 1, 0, -1, -1};
    static constexpr int32_t dy[] = {-1, -1, -1, 0, 1, 1, 1, 0};
    const auto set = [&](int32_t q) {
      const int32_t direction = ((q % 8) + 8) % 8;
      return picture_.At(x + dx[direction], y + dy[direction]);
    };
    while (x != startX || y != startY) {
      const int32_t first = last - (last % 2 == 1 ? 1 : 2) + 8;
      int32_t chosen = -1;
      for (int32_t i = 0; i < 8 && chosen < 0; i++) {
        const int32_t q = (first + i) % 8;
        const bool admissible =
            tableA && q % 2 == 0 ? set(q) && (set(q - 1) || set(q + 1)) : set(q);
        if (admissible) chosen = q;
      }
      if (chosen < 0) return false;
      Count(last, chosen, counts);
      x += dx[chosen];
      y += dy[chosen];
      last = chosen;
    }
    return true;
  }

  static void Move(int32_t direction, WalkCounts* counts) {
    if (direction == 3 || direction == 7) {
      counts->h++;
    } else if (direction == 1 || direction == 5) {
      counts->v++;
    } else {
      counts->d++;
    }
  }
  static void Count(int32_t last, int32_t direction, WalkCounts* counts) {
    static constexpr int32_t fold[] = {0, 1, 2, 3, 4, 3, 2, 1};
    counts->turns[fold[std::abs(direction - last)]]++;
    Move(direction, counts);
  }

  WalkCounts ContourWalk(int32_t id, size_t from) const {
    const bool hole = id < 0;
    const bool tableA = !hole && !eight_;
    size_t i = from;
    while (runs_[i].id != id) i++;
    const int32_t x = hole ? runs_[i].start - 1 : runs_[i].start;
    const int32_t y = runs_[i].row;
    WalkCounts counts;
    if (hole) {
      static constexpr int32_t order[] = {4, 5, 6, 7, 0, 1, 2};
      static constexpr int32_t dx[] = {1, 0, -1, -1, -1, 0, 1};
      static constexpr int32_t dy[] = {1, 1, 1, 0, -1, -1, -1};
      int32_t k = 0;
      while (k < 6 && !picture_.At(x + dx[k], y + dy[k])) k++;
      if (!picture_.At(x + dx[k], y + dy[k])) return {};
      Move(order[k], &counts);
      if (!Leg(x + dx[k], y + dy[k], order[k], x, y, tableA, &counts)) return {};
    } else {
      const bool e = picture_.At(x + 1, y);
      const bool sw = picture_.At(x - 1, y + 1);
      const bool s = picture_.At(x, y + 1);
      const bool se = picture_.At(x + 1, y + 1);
      const int32_t in = sw ? 2 : s ? 1 : se ? 0 : 7;
      int32_t nextX = x;
      int32_t nextY = y + 1;
      int32_t direction = 5;
      if (e) {
        direction = 3;
        nextX = x + 1;
        nextY = y;
      } else if (tableA && !s) {
        return {};
      } else if (se) {
        direction = 4;
        nextX = x + 1;
      } else if (s) {
        direction = 5;
      } else if (sw) {
        direction = 6;
        nextX = x - 1;
      } else {
        return {};
      }
      Count(in, direction, &counts);
      if (!Leg(nextX, nextY, direction, x, y, tableA, &counts)) return {};
      const int32_t code = (e ? 1 : 0) + (sw ? 2 : 0) + (s ? 4 : 0) + (se ? 8 : 0);
      if (!tableA && (code == 3 || code == 10 || code == 11)) {
        if (!Leg(x - 1, y + 1, 6, x, y, tableA, &counts)) return {};
      }
    }
    Finish(hole, &counts);
    return counts;
  }

  void Finish(bool hole, WalkCounts* counts) const {
    const auto xs = static_cast<double>(xStep_);
    const auto ys = static_cast<double>(yStep_);
    const int32_t frame = hole ? -2 : 2;
    double p = std::sqrt(xs * xs + ys * ys) * static_cast<double>(counts->d) +
               static_cast<double>(counts->h + frame) * xs +
               static_cast<double>(counts->v + frame) * ys;
    const int64_t* turns = counts->turns;
    int64_t k = 8;
    counts->c1 = turns[1];
    counts->c2 = turns[2];
    const auto settle = [&] {
      if (turns[4] > 1) return;
      if (turns[4] == 1) k = 4;
      if (turns[3] != 0) {
        if (k <= 3 * turns[3]) return;
        k -= 3 * turns[3];
      }
      if (turns[2] != 0) {
        if (2 * turns[2] >= k) {
          counts->c2 = turns[2] + static_cast<int64_t>(std::floor(-static_cast<double>(k) / 2.0));
          return;
        }
        counts->c2 = 0;
      }
      counts->c1 = std::max<int64_t>(turns[1] - k, 0);
    };
    settle();
    const auto power = [](int64_t count) {
      return count == 0 ? 0.0 : std::pow(static_cast<double>(count), 0.97);
    };
    p += (power(counts->c1) * 0.275 + power(counts->c2) * 0.5) * (xs + ys) * -0.5;
    counts->perimeter = p;
  }

  const Picture& picture_;
  bool eight_;
  float xStep_, yStep_;
  std::vector<RunRecord> runs_;
  std::vector<SweptParticle> particles_;
};

}  // namespace test
