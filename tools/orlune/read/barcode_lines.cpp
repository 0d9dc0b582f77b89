// Edges of bars along a line, and the code that they frame.
#include "orlune/read/barcode_lines.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <span>

namespace front {
namespace {

constexpr size_t NEIGHBOURHOOD = 48;       // samples to either side that tell light from dark
constexpr double LEAST_SWING = 3.0;        // gray levels between a bar and a space
constexpr double SWING_OF_CONTRAST = 0.2;  // of what there is around

// By how much levels have to swing around each sample for a bar.
std::vector<double> SwingsOf(const std::vector<double>& levels) {
  std::vector<double> swings(levels.size());
  for (size_t i = 0; i < levels.size(); ++i) {
    const size_t from = i > NEIGHBOURHOOD ? i - NEIGHBOURHOOD : 0;
    const size_t to = std::min(levels.size(), i + NEIGHBOURHOOD + 1);
    const auto [low, high] = std::minmax_element(levels.begin() + static_cast<std::ptrdiff_t>(from),
                                                 levels.begin() + static_cast<std::ptrdiff_t>(to));
    swings[i] = std::max(LEAST_SWING, SWING_OF_CONTRAST * (*high - *low));
  }
  return swings;
}

// Darkest and lightest places by turns, where the levels swing widely enough.
std::vector<size_t> Extremes(const std::vector<double>& levels) {
  const std::vector<double> swings = SwingsOf(levels);
  std::vector<size_t> extremes;
  size_t lowest = 0, highest = 0;
  int direction = 0;  // 1: rising, -1: falling
  for (size_t i = 1; i < levels.size(); ++i) {
    if (levels[i] < levels[lowest]) lowest = i;
    if (levels[i] > levels[highest]) highest = i;
    if (direction >= 0 && levels[highest] - levels[i] > swings[i]) {
      extremes.push_back(highest);
      direction = -1;
      lowest = highest = i;
    } else if (direction <= 0 && levels[i] - levels[lowest] > swings[i]) {
      extremes.push_back(lowest);
      direction = 1;
      lowest = highest = i;
    }
  }
  if (direction != 0) extremes.push_back(direction > 0 ? highest : lowest);
  return extremes;
}

double Crossing(const std::vector<double>& levels, size_t from, size_t to, double level) {
  for (size_t i = from; i < to; ++i) {
    const double a = levels[i] - level, b = levels[i + 1] - level;
    if ((a <= 0) != (b <= 0)) return static_cast<double>(i) + a / (a - b);
  }
  return static_cast<double>(from + to) / 2;
}

// ---- frames of codes

constexpr size_t MOST_RUNS = 6;
using Symbol = std::array<int32_t, MOST_RUNS>;  // widths in modules

// What all codes of a kind have: bars that are no symbol at their ends and in their middle, and
// symbols of some runs and modules between.
struct Frame {
  std::string_view lead, middle, stop;
  std::string_view first;  // how the first symbol begins
  size_t runs;             // of a symbol
  int32_t modules;         // likewise
  size_t symbols;          // 0: any number
  bool areBarsEven;        // as many modules of a symbol are dark
  std::vector<Symbol> alphabet = {};
};

// All ways to share the modules of a symbol among its runs, one to four for each.
void AddSymbols(size_t run, int32_t left, Symbol* symbol, Frame* frame) {
  if (run == frame->runs) {
    const int32_t bars = (*symbol)[0] + (*symbol)[2] + (*symbol)[4];
    if (left == 0 && (!frame->areBarsEven || bars % 2 == 0)) frame->alphabet.push_back(*symbol);
    return;
  }
  for (int32_t width = 1; width <= std::min(4, left); ++width) {
    (*symbol)[run] = width;
    AddSymbols(run + 1, left - width, symbol, frame);
  }
}

Frame WithAlphabet(Frame frame) {
  Symbol symbol{};
  AddSymbols(0, frame.modules, &symbol, &frame);
  return frame;
}

const Frame* FrameOf(BarcodeKind kind) {
  static const Frame CODE128 = WithAlphabet({"", "", "2331112", "211", 6, 11, 0, true});
  static const Frame CODE93 = WithAlphabet({"", "", "1111411", "111141", 6, 9, 0, false});
  static const Frame EAN8 = WithAlphabet({"111", "11111", "111", "", 4, 7, 8, false});
  static const Frame EAN13 = WithAlphabet({"111", "11111", "111", "", 4, 7, 12, false});
  switch (kind) {
    case BarcodeKind::Code128:
      return &CODE128;
    case BarcodeKind::Code93:
      return &CODE93;
    case BarcodeKind::Ean8:
      return &EAN8;
    case BarcodeKind::Ean13:
    case BarcodeKind::UpcA:
      return &EAN13;
    default:
      return nullptr;
  }
}

// Neighbours are about as wide, a module of the one and a module of the other.
bool AreAlike(double a, double b) {
  constexpr double MOST = 1.35;
  return a < MOST * b && b < MOST * a;
}

// Runs of a line that begin with a dark one, held to a frame.
class FrameReader {
 public:
  FrameReader(const Frame& frame, std::span<const double> runs) : frame_(frame), runs_(runs) {}

  // How many runs the code has that begins with the first one; 0 where there is none.
  size_t Read(LineCode* code) {
    if (frame_.symbols != 0) return ReadSymbols(frame_.symbols, code);
    constexpr size_t LEAST_SYMBOLS = 3;
    double before = 0;
    for (size_t symbols = 1; RunCount(symbols) <= runs_.size(); ++symbols) {
      const double module = ModuleAt((symbols - 1) * frame_.runs, frame_.runs, frame_.modules);
      if (symbols > 1 && !AreAlike(module, before)) return 0;
      before = module;
      if (symbols < LEAST_SYMBOLS) continue;
      if (const size_t count = ReadSymbols(symbols, code)) return count;
    }
    return 0;
  }

 private:
  // Runs that no symbol has, and how many modules they are.
  struct Part {
    size_t first;
    std::string_view widths;
  };

  size_t RunCount(size_t symbols) const {
    return frame_.lead.size() + symbols * frame_.runs + frame_.middle.size() + frame_.stop.size();
  }

  double ModuleAt(size_t first, size_t count, int32_t modules) const {
    double sum = 0;
    for (size_t i = 0; i < count; ++i) sum += runs_[first + i];
    return sum / modules;
  }

  double ModuleOf(const Part& part) const {
    int32_t modules = 0;
    for (const char width : part.widths) modules += width - '0';
    return ModuleAt(part.first, part.widths.size(), modules);
  }

  bool Fits(const Part& part) const {
    constexpr double FARTHEST = 0.75;  // modules
    const double module = ModuleOf(part);
    for (size_t i = 0; i < part.widths.size(); ++i) {
      if (std::fabs(runs_[part.first + i] / module - (part.widths[i] - '0')) > FARTHEST)
        return false;
    }
    return true;
  }

  // By how much bars are wider than they should be and spaces narrower, in modules: ink runs.
  double GrowthIn(std::span<const Part> parts) const {
    constexpr double MOST = 0.5;
    std::array<double, 2> excess{}, count{};  // of bars and of spaces
    for (const Part& part : parts) {
      const double module = ModuleOf(part);
      for (size_t i = 0; i < part.widths.size(); ++i) {
        const size_t color = (part.first + i) % 2;
        excess[color] += runs_[part.first + i] / module - (part.widths[i] - '0');
        ++count[color];
      }
    }
    return std::clamp((excess[0] / count[0] - excess[1] / count[1]) / 2, -MOST, MOST);
  }

  // As Read, of a code with so many symbols.
  size_t ReadSymbols(size_t symbols, LineCode* code) const {
    const size_t count = RunCount(symbols);
    if (count > runs_.size()) return 0;
    const size_t half = frame_.lead.size() + symbols / 2 * frame_.runs;
    const bool isStartWhole = frame_.first.size() == frame_.runs;
    const std::array<Part, 3> parts = {{{0, isStartWhole ? frame_.first : frame_.lead},
                                        {half, frame_.middle},
                                        {count - frame_.stop.size(), frame_.stop}}};
    for (const Part& part : parts) {
      if (!part.widths.empty() && !Fits(part)) return 0;
    }
    const double growth = GrowthIn(parts);
    code->widths = frame_.lead;
    double misfits = 0;
    double before = frame_.lead.empty() ? 0 : ModuleOf(parts[0]);
    size_t at = frame_.lead.size();
    for (size_t i = 0; i < symbols; ++i, at += frame_.runs) {
      if (at == half && !frame_.middle.empty()) {
        code->widths += frame_.middle;
        at += frame_.middle.size();
      }
      const double module = ModuleAt(at, frame_.runs, frame_.modules);
      if (before > 0 && !AreAlike(module, before)) return 0;
      before = module;
      const double misfit = AddSymbol(at, module, growth, &code->widths);
      if (misfit > WORST_SYMBOL) return 0;
      misfits += misfit;
    }
    if (!AreAlike(ModuleOf(parts[2]), before)) return 0;
    if (!code->widths.substr(frame_.lead.size()).starts_with(frame_.first)) return 0;
    code->widths += frame_.stop;
    code->misfit = misfits / static_cast<double>(symbols);
    return code->misfit <= WORST_CODE ? count : 0;
  }

  // Adds the widths that come nearest; gives by how much they differ, in modules a run.
  double AddSymbol(size_t first, double module, double growth, std::string* widths) const {
    std::array<double, MOST_RUNS> measured{};
    double whole = 0;
    for (size_t i = 0; i < frame_.runs; ++i) {
      measured[i] = runs_[first + i] / module - ((first + i) % 2 == 0 ? growth : -growth);
      whole += measured[i];
    }
    for (size_t i = 0; i < frame_.runs; ++i) measured[i] *= frame_.modules / whole;
    const Symbol* best = nullptr;
    double least = 0;
    for (const Symbol& symbol : frame_.alphabet) {
      const double distance = DistanceOf(measured, symbol);
      if (best && distance >= least) continue;
      best = &symbol;
      least = distance;
    }
    double misfit = 0;
    for (size_t i = 0; i < frame_.runs; ++i) {
      *widths += static_cast<char>('0' + (*best)[i]);
      misfit += std::fabs(measured[i] - (*best)[i]);
    }
    return misfit / static_cast<double>(frame_.runs);
  }

  // Of runs, and of neighbouring bars and spaces together, which ink and blur leave as they are.
  double DistanceOf(const std::array<double, MOST_RUNS>& measured, const Symbol& symbol) const {
    double sum = 0, before = 0;
    for (size_t i = 0; i < frame_.runs; ++i) {
      const double difference = measured[i] - symbol[i];
      sum += difference * difference;
      if (i > 0) sum += (before + difference) * (before + difference);
      before = difference;
    }
    return sum;
  }

  static constexpr double WORST_SYMBOL = 0.5, WORST_CODE = 0.35;  // modules a run

  const Frame& frame_;
  std::span<const double> runs_;
};

}  // namespace

std::vector<double> Sharpened(const std::vector<double>& levels, double blur) {
  std::vector<double> sharp = levels;
  const auto count = static_cast<std::ptrdiff_t>(levels.size());
  const auto reach = static_cast<std::ptrdiff_t>(std::ceil(3 * blur));
  std::vector<double> weights;
  for (std::ptrdiff_t i = -reach; i <= reach; ++i) {
    weights.push_back(std::exp(-static_cast<double>(i * i) / (2 * blur * blur)));
  }
  double whole = 0;
  for (const double weight : weights) whole += weight;
  // What the blurred estimate lacks of the levels is added to it, again and again.
  constexpr int ROUNDS = 8;
  for (int round = 0; round < ROUNDS; ++round) {
    std::vector<double> next = sharp;
    for (std::ptrdiff_t i = 0; i < count; ++i) {
      double sum = 0;
      for (std::ptrdiff_t k = -reach; k <= reach; ++k) {
        sum += weights[static_cast<size_t>(k + reach)] *
               sharp[static_cast<size_t>(std::clamp<std::ptrdiff_t>(i + k, 0, count - 1))];
      }
      const auto at = static_cast<size_t>(i);
      next[at] = std::clamp(sharp[at] + levels[at] - sum / whole, 0.0, 255.0);
    }
    sharp.swap(next);
  }
  return sharp;
}

Edges EdgesOf(const std::vector<double>& levels) {
  Edges edges;
  if (levels.size() < 2) return edges;
  const std::vector<size_t> extremes = Extremes(levels);
  for (size_t i = 0; i + 1 < extremes.size(); ++i) {
    const size_t from = extremes[i], to = extremes[i + 1];
    if (i == 0) edges.beginsDark = levels[to] < levels[from];
    edges.places.push_back(Crossing(levels, from, to, (levels[from] + levels[to]) / 2));
  }
  return edges;
}

Edges Reversed(const Edges& edges, size_t samples) {
  Edges reversed;
  const double last = static_cast<double>(samples) - 1;
  for (auto place = edges.places.rbegin(); place != edges.places.rend(); ++place) {
    reversed.places.push_back(last - *place);
  }
  // Of two edges on, the stretch before the last has the colour of that behind the first.
  reversed.beginsDark = edges.beginsDark == (edges.places.size() % 2 == 0);
  return reversed;
}

bool HasEvenSymbols(BarcodeKind kind) {
  return FrameOf(kind) != nullptr;
}

std::optional<LineCode> CodeAlong(const Edges& edges, BarcodeKind kind) {
  const Frame* frame = FrameOf(kind);
  if (!frame || edges.places.size() < 2) return std::nullopt;
  std::vector<double> runs;
  for (size_t i = 1; i < edges.places.size(); ++i) {
    runs.push_back(std::max(edges.places[i] - edges.places[i - 1], 1e-3));
  }
  for (size_t first = edges.beginsDark ? 0 : 1; first < runs.size(); first += 2) {
    LineCode code;
    const size_t count = FrameReader(*frame, std::span(runs).subspan(first)).Read(&code);
    if (count == 0) continue;
    code.left = edges.places[first];
    code.right = edges.places[first + count];
    return code;
  }
  return std::nullopt;
}

}  // namespace front
