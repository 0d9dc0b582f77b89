// Bar codes read as slowly and plainly as the rules are told: lists of bars and spaces, tables as
// text, every row of a table compared element by element.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "orlune_ptk.h"

namespace reference {

struct Code {
  int32_t status = 0;
  std::string text;

  bool operator==(const Code&) const = default;
};

struct Corners {
  int32_t x1, y1, x2, y2;
};

// Elements beyond a list are 0.
struct List {
  std::vector<double> values;
  int64_t size() const { return static_cast<int64_t>(values.size()); }
  double operator[](int64_t i) const {
    return i >= 0 && i < size() ? values[static_cast<size_t>(i)] : 0.0;
  }
};

struct Runs {
  List bars, spaces;
};

// A profile of means over ten rows, or nothing where fewer than two columns are in the image.
inline std::optional<std::vector<double>> Profile(ImageRef image, const Corners& c) {
  ImageInfo info{};
  ZEL_GetImageInfo(image, &info);
  std::vector<double> sums;
  const double step = (static_cast<double>(c.y2) - c.y1) * 0.1;
  for (int k = 0; k < 10; k++) {
    const double y = std::trunc(c.y1 + k * step);
    if (y < 0 || y >= info.height) {
      if (k == 0) return std::nullopt;
      continue;
    }
    std::vector<double> row;
    const int64_t toward = c.x1 <= c.x2 ? 1 : -1;
    const int64_t from = std::clamp<int64_t>(c.x1, -1, info.width);
    const int64_t to = std::clamp<int64_t>(c.x2, -1, info.width);
    for (int64_t x = from; x != to + toward; x += toward) {
      if (x < 0 || x >= info.width) continue;
      float value = 0;
      ZEL_GetPixelValue(image, static_cast<int32_t>(x), static_cast<int32_t>(y), &value);
      row.push_back(static_cast<double>(value));
    }
    if (k == 0) sums.resize(row.size());
    for (size_t i = 0; i < sums.size(); i++) sums[i] += row[i];
  }
  if (sums.size() < 2) return std::nullopt;
  for (double& sum : sums) sum *= 0.1;
  return sums;
}

inline Runs RunsOf(const std::vector<double>& profile) {
  double sx = 0, sxx = 0, sy = 0, sxy = 0;
  for (size_t i = 0; i < profile.size(); i++) {
    const auto x = static_cast<double>(i);
    sx += x;
    sxx += x * x;
    sy += profile[i];
    sxy += x * profile[i];
  }
  const auto n = static_cast<double>(profile.size());
  const double den = sx * sx - n * sxx;
  const double slope = (sx * sy - sxy * n) / den;
  const double intercept = (sx * sxy - sxx * sy) / den;
  std::vector<double> light, dark;
  int state = 0;
  double count = 0, carry = 0, previous = 0, a = 0, b = 0;
  for (size_t i = 0; i < profile.size(); i++) {
    const double threshold = slope * static_cast<double>(i) + intercept;
    const double sample = profile[i];
    const int now = sample <= threshold ? 1 : 0;
    if (now == state) {
      previous = sample;
      count++;
      continue;
    }
    if (threshold != sample && previous != sample) {
      a = std::abs(previous - threshold) / std::abs(previous - sample);
      b = 1 - a;
    }
    (state == 0 ? light : dark).push_back(count + a + carry);
    carry = b;
    previous = sample;
    count = 0;
    state = now;
  }
  if (!light.empty()) light.erase(light.begin());
  return {{dark}, {light}};
}

// A bar, a space, a bar and so on, up to the bar behind the last space.
inline List Interleaved(const Runs& runs) {
  List e;
  for (int64_t i = 0; i < runs.spaces.size(); i++) {
    e.values.push_back(runs.bars[i]);
    e.values.push_back(runs.spaces[i]);
  }
  e.values.push_back(runs.bars[runs.spaces.size()]);
  return e;
}

inline List Classes(const List& widths) {
  List classes;
  if (widths.size() == 0) return classes;
  const auto [least, most] = std::minmax_element(widths.values.begin(), widths.values.end());
  const double middle = (*least + *most) / 2;
  for (const double width : widths.values) classes.values.push_back(width > middle ? 1 : 0);
  return classes;
}

inline double Rounded(double x) {
  if (!std::isfinite(x) || std::abs(x) >= 1073741824.0) return 0;
  const double t = std::trunc(x);
  if (x - t == 0.5) return std::fmod(t, 2) == 0 ? t : t + 1;
  const double u = std::trunc(2 * x);
  return std::trunc(u / 2) + (std::fmod(u, 2) == 0 ? 0 : 1);
}

inline std::vector<std::string> Words(const std::string& text) {
  std::istringstream in(text);
  std::vector<std::string> words;
  for (std::string word; in >> word;) words.push_back(word);
  return words;
}

inline int32_t Best(const std::vector<double>& symbol, const std::vector<std::string>& rows) {
  int32_t best = 0;
  int most = -1;
  for (size_t r = 0; r < rows.size(); r++) {
    int equal = 0;
    for (size_t i = 0; i < symbol.size(); i++) equal += symbol[i] == rows[r][i] - '0';
    if (equal > most) {
      most = equal;
      best = static_cast<int32_t>(r);
    }
  }
  return best;
}

inline std::vector<double> Part(const List& list, int64_t first, int64_t count) {
  std::vector<double> part;
  for (int64_t i = 0; i < count; i++) part.push_back(list[first + i]);
  return part;
}

inline int64_t Lacking(int64_t sum, int64_t base) {
  const int64_t rest = sum % base;
  return rest == 0 ? 0 : base - rest;
}

inline Code Codabar(const Runs& runs, bool validate) {
  static const auto rows = Words(
      "0000011 0000110 0001001 1100000 0010010 1000010 0100001 0100100 0110000 1001000 "
      "0001100 0011000 1000101 1010001 1010100 0010101 0011010 0101001 0001011 0001110");
  const List e = Interleaved({Classes(runs.bars), Classes(runs.spaces)});
  const int64_t n = (runs.bars.size() + runs.spaces.size() + 1) / 8;
  std::string text;
  std::vector<int64_t> values;
  for (int64_t c = 0; c < n; c++) {
    values.push_back(Best(Part(e, 8 * c, 7), rows));
    text += "0123456789-$:/.+ABCD"[values.back()];
  }
  if (!validate) return {0, text};
  if (n < 2) return {-3003, ""};
  int64_t sum = 0;
  for (int64_t c = 0; c < n; c++) sum += c == n - 2 ? 0 : values[static_cast<size_t>(c)];
  if (values[static_cast<size_t>(n - 2)] != Lacking(sum, 16)) return {-3003, ""};
  return {0, text.substr(0, text.size() - 1)};
}

inline Code Interleaved25(const Runs& runs, bool validate) {
  static const auto rows = Words("10001 01001 11000 00101 10100 01100 00011 10010 01010 00110");
  const List bars = Classes(runs.bars);
  const List spaces = Classes(runs.spaces);
  const int64_t pairs = std::max<int64_t>(0, (bars.size() - 4) / 5);
  std::string text;
  int64_t a = 0, b = 0, last = -1;
  for (int64_t q = 0; q < pairs; q++) {
    const int64_t first = (Best(Part(bars, 2 + 5 * q, 5), rows) + 1) % 10;
    last = (Best(Part(spaces, 2 + 5 * q, 5), rows) + 1) % 10;
    text += std::to_string(first) + std::to_string(last);
    a += first;
    b += last;
  }
  if (!validate) return {0, text};
  if (pairs < 1 || last != Lacking(b + 3 * a, 10)) return {-3003, ""};
  return {0, text.substr(0, text.size() - 1)};
}

inline Code Msi(const Runs& runs, bool validate) {
  const List bars = Classes(runs.bars);
  const int64_t n = std::max<int64_t>(0, (bars.size() - 3) / 4);
  std::string text;
  std::vector<int64_t> digits;
  for (int64_t c = 0; c < n; c++) {
    int64_t digit = 0;
    for (int64_t i = 0; i < 4; i++) digit = 2 * digit + (bars[1 + 4 * c + i] == 1 ? 1 : 0);
    digits.push_back(digit);
    text += static_cast<char>('0' + digit);
  }
  if (!validate) return {0, text};
  if (n < 1 || *std::max_element(digits.begin(), digits.end()) > 9) return {-3003, ""};
  int64_t sum = 0;
  std::string number;
  for (int64_t k = 0; k < (n - 1) / 2; k++) {
    sum += digits[static_cast<size_t>(2 * k)];
    number += std::to_string(digits[static_cast<size_t>(2 * k + 1)]);
  }
  if (n % 2 == 0) sum += digits[static_cast<size_t>(n - 2)];
  // Doubled as by hand, from the right.
  int carry = 0;
  for (size_t i = number.size(); i-- > 0;) {
    const int doubled = 2 * (number[i] - '0') + carry;
    sum += doubled % 10;
    carry = doubled / 10;
  }
  sum += carry;
  if (digits.back() != Lacking(sum, 10)) return {-3003, ""};
  return {0, text.substr(0, text.size() - 1)};
}

inline Code Code39(const Runs& runs, bool validate) {
  // Five bars, four spaces.
  static const auto rows = [] {
    std::vector<std::string> split;
    for (const std::string& w :
         Words("000110100 100100001 001100001 101100000 000110001 100110000 001110000 000100101 "
               "100100100 001100100 100001001 001001001 101001000 000011001 100011000 001011000 "
               "000001101 100001100 001001100 000011100 100000011 001000011 101000010 000010011 "
               "100010010 001010010 000000111 100000110 001000110 000010110 110000001 011000001 "
               "111000000 010010001 110010000 011010000 010000101 110000100 011000100 010010100 "
               "010101000 010100010 010001010 000101010")) {
      split.push_back({w[0], w[2], w[4], w[6], w[8], w[1], w[3], w[5], w[7]});
    }
    return split;
  }();
  static const std::string characters = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ-. *$/+%";
  const List bars = Classes(runs.bars);
  const List spaces = Classes(runs.spaces);
  const int64_t n = bars.size() / 5;
  if (validate && n < 3) return {-3003, ""};
  std::string text;
  int64_t sum = 0, check = 0;
  for (int64_t c = 0; c < n; c++) {
    std::vector<double> symbol = Part(bars, 5 * c, 5);
    for (const double space : Part(spaces, 5 * c, 4)) symbol.push_back(space);
    const int32_t row = Best(symbol, rows);
    text += characters[static_cast<size_t>(row)];
    const int32_t value = row == 39 ? 0 : row > 39 ? row - 1 : row;
    if (c == n - 2) {
      check = value;
    } else {
      sum += value;
    }
  }
  if (!validate) return {0, text};
  if (check != sum % 43) return {-3003, ""};
  return {0, text.substr(1, text.size() - 3)};
}

inline const std::vector<std::string>& EanRows() {
  static const auto rows = Words("3211 2221 2122 1411 1132 1231 1114 1312 1213 3112");
  return rows;
}

inline const std::vector<std::string>& EanReversedRows() {
  static const auto rows = [] {
    std::vector<std::string> reversed = EanRows();
    for (std::string& row : reversed) std::reverse(row.begin(), row.end());
    return reversed;
  }();
  return rows;
}

inline List Modules(const List& e, double unit) {
  List modules;
  for (const double width : e.values) modules.values.push_back(Rounded(width / unit));
  return modules;
}

inline List EanModules(const Runs& runs, double count) {
  const List e = Interleaved(runs);
  double sum = 0;
  for (const double width : e.values) sum += width;
  return Modules(e, sum / count);
}

inline Code Verified(const std::string& text, size_t tripleFrom) {
  int64_t sum = 0;
  for (size_t i = 0; i + 1 < text.size(); i++)
    sum += (i % 2 == tripleFrom ? 3 : 1) * (text[i] - '0');
  if (text.back() - '0' != Lacking(sum, 10)) return {-3003, ""};
  return {0, text};
}

inline Code Ean8(const Runs& runs) {
  if (runs.bars.size() < 22) return {-3030, ""};
  const List e = EanModules(runs, 67);
  std::string text;
  for (int64_t k = 0; k < 4; k++) text += std::to_string(Best(Part(e, 3 + 4 * k, 4), EanRows()));
  for (int64_t k = 0; k < 4; k++) text += std::to_string(Best(Part(e, 24 + 4 * k, 4), EanRows()));
  return Verified(text, 0);
}

inline Code Ean13(const Runs& runs, const std::string& leading, const std::string& parity) {
  if (runs.bars.size() < 30) return {-3030, ""};
  const List e = EanModules(runs, 95);
  std::string text = leading;
  for (int64_t k = 0; k < 6; k++) {
    const bool reversed = parity[static_cast<size_t>(k)] == '1';
    text += std::to_string(Best(Part(e, 3 + 4 * k, 4), reversed ? EanReversedRows() : EanRows()));
  }
  for (int64_t k = 0; k < 6; k++) text += std::to_string(Best(Part(e, 32 + 4 * k, 4), EanRows()));
  return Verified(text, leading.size());
}

inline Code Ean13(const Runs& runs, uint8_t firstDigit) {
  static const auto parity =
      Words("000000 001011 001101 001110 010011 011001 011100 010101 010110 011010");
  const size_t digit = firstDigit > 9 ? 1 : firstDigit;
  return Ean13(runs, std::to_string(digit), parity[digit]);
}

inline Code UpcA(const Runs& runs) {
  return Ean13(runs, "", "000000");
}

inline const std::vector<std::string>& ControlNames() {
  static const auto names = Words(
      "NU SH SX EX ET EQ AK BL BS HT LF VT FF CR SO SI "
      "DL D1 D2 D3 D4 NK SY EB CN EM SB EC FS GS RS US");
  return names;
}

// The bars and spaces of `symbols`, each of a number of modules in three bars and three spaces.
inline double Module(const Runs& runs, double modules) {
  double sum = 0;
  for (int64_t i = 0; i < runs.spaces.size(); i++) sum += runs.bars[i] + runs.spaces[i];
  return sum / (2 * static_cast<double>(runs.spaces.size()) * modules) * 6;
}

inline Code Code93(const Runs& runs) {
  static const auto rows = Words(
      "131112 111213 111312 111411 121113 121212 121311 111114 131211 141111 211113 211212 "
      "211311 221112 221211 231111 112113 112212 112311 122112 132111 111123 111222 111321 "
      "121122 131121 212112 212211 211122 211221 221121 222111 112122 112221 122121 123111 "
      "121131 311112 311211 321111 112131 113121 211131 121221 312111 311121 122211");
  static const auto keys = [] {
    std::vector<std::string> table{"(%)U"};
    const auto add = [&](const std::string& shift, char first, char last) {
      for (char c = first; c <= last; c++) table.push_back(shift + c);
    };
    const auto plain = [&](char first, char last) { add("", first, last); };
    add("($)", 'A', 'Z');
    add("(%)", 'A', 'E');
    plain(' ', ' ');
    add("(/)", 'A', 'L');
    plain('-', '.');
    add("(/)", 'O', 'O');
    plain('0', '9');
    add("(/)", 'Z', 'Z');
    add("(%)", 'F', 'J');
    add("(%)", 'V', 'V');
    plain('A', 'Z');
    add("(%)", 'K', 'O');
    add("(%)", 'W', 'W');
    add("(+)", 'A', 'Z');
    add("(%)", 'P', 'T');
    return table;
  }();
  static const std::vector<std::string> shifts = {"($)", "(%)", "(/)", "(+)"};
  static const std::string characters = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ-. $/+%";
  const double count =
      std::ceil(static_cast<double>(runs.bars.size() + runs.spaces.size() - 13) / 6);
  if (count < 2) return {-3003, ""};
  const auto n = static_cast<int64_t>(count);
  const double module = Module(runs, 9);
  List p;
  for (int64_t i = 0; i <= runs.bars.size() - 8; i++) {
    p.values.push_back(Rounded(runs.bars[3 + i] / module));
    p.values.push_back(Rounded(runs.spaces[3 + i] / module));
  }
  std::vector<int32_t> values;
  for (int64_t c = 0; c < n; c++) values.push_back(Best(Part(p, 6 * c, 6), rows));
  std::string text;
  size_t length = 0;
  int64_t sumC = 0, sumK = 0;
  for (int64_t i = 0; i < n - 2; i++) {
    const int32_t value = values[static_cast<size_t>(i)];
    sumC += (n - i - 2) * value;
    sumK += (n - i - 1) * value;
    if (value >= 43) continue;
    const char character = characters[static_cast<size_t>(value)];
    std::string entry(1, character);
    const int32_t before = i > 0 ? values[static_cast<size_t>(i - 1)] : 0;
    if (before >= 43) {
      const auto found =
          std::find(keys.begin(), keys.end(), shifts[static_cast<size_t>(before - 43)] + character);
      if (found == keys.end()) return {-3004, ""};
      const auto ascii = static_cast<size_t>(found - keys.begin());
      entry = ascii < 32     ? ControlNames()[ascii]
              : ascii >= 127 ? "DEL"
                             : std::string(1, static_cast<char>(ascii));
    }
    text += entry[0];
    length += entry.size();
  }
  const int64_t c = sumC % 47;
  if (values[static_cast<size_t>(n - 2)] != c) return {-3003, ""};
  if (values[static_cast<size_t>(n - 1)] != (sumK + c) % 47) return {-3003, ""};
  text.resize(length);
  return {0, text};
}

inline const std::vector<std::string>& Code128Rows() {
  static const auto rows = Words(
      "212222 222122 222221 121223 121322 131222 122213 122312 132212 221213 221312 231212 "
      "112232 122132 122231 113222 123122 123221 223211 221132 221231 213212 223112 312131 "
      "311222 321122 321221 312212 322112 322211 212123 212321 232121 111323 131123 131321 "
      "112313 132113 132311 211313 231113 231311 112133 112331 132131 113123 113321 133121 "
      "313121 211331 231131 213113 213311 213131 311123 311321 331121 312113 312311 332111 "
      "314111 221411 431111 111224 111422 121124 121421 141122 141221 112214 112412 122114 "
      "122411 142112 142211 241211 221114 413111 241112 134111 111242 121142 121241 114212 "
      "124112 124211 411212 421112 421211 212141 214121 412121 111143 111341 131141 114113 "
      "114311 411113 411311 113141 114131 311141 411131");
  return rows;
}

inline Code Code128(const Runs& runs) {
  static const std::vector<std::vector<std::string>> texts = [] {
    std::vector<std::vector<std::string>> sets(3);
    for (char c = ' '; c < 96; c++) sets[0].push_back(std::string(1, c));
    for (const std::string& name : ControlNames()) sets[0].push_back(name);
    for (const char* name : {"FNC 3", "FNC 2", "SHIFT", "CODE C", "CODE B", "FNC 4", "FNC 1"}) {
      sets[0].push_back(name);
    }
    for (char c = ' '; c < 127; c++) sets[1].push_back(std::string(1, c));
    for (const char* name :
         {"DEL", "FNC 3", "FNC 2", "SHIFT", "CODE C", "FNC 4", "CODE A", "FNC 1"}) {
      sets[1].push_back(name);
    }
    for (int i = 0; i < 100; i++) {
      sets[2].push_back({static_cast<char>('0' + i / 10), static_cast<char>('0' + i % 10)});
    }
    for (const char* name : {"CODE B", "CODE A", "FNC 1"}) sets[2].push_back(name);
    return sets;
  }();
  static const auto starts = Words("211412 211214 211232");
  const int64_t n = std::max<int64_t>(0, (runs.bars.size() + runs.spaces.size() - 7) / 6);
  if (n < 2) return {-3003, ""};
  const double module = Module(runs, 11);
  List p;
  for (int64_t i = 0; i < runs.bars.size() - 4; i++) {
    p.values.push_back(Rounded(runs.bars[i] / module));
    p.values.push_back(Rounded(runs.spaces[i] / module));
  }
  auto set = static_cast<size_t>(Best(Part(p, 0, 6), starts));
  int64_t sum = 103 + static_cast<int64_t>(set);
  std::string text;
  for (int64_t i = 1; i < n - 1; i++) {
    const int32_t value = Best(Part(p, 6 * i, 6), Code128Rows());
    sum += i * value;
    const std::string entry = texts[set][static_cast<size_t>(value)];
    if (entry == "CODE A") {
      set = 0;
    } else if (entry == "CODE B") {
      set = 1;
    } else if (entry == "CODE C") {
      set = 2;
    } else {
      text += entry;
    }
  }
  if (Best(Part(p, 6 * (n - 1), 6), Code128Rows()) != sum % 103) return {-3003, ""};
  return {0, text};
}

}  // namespace reference
