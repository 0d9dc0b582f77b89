// Lookups: tables of 256 and 65536 entries, mathematical laws, equalisation.
#include <opencv2/imgproc.hpp>
#include <vector>

#include "benchmarks/pairs.h"

namespace {

using bench::Images;
using bench::Mats;
using bench::PLAIN_LOOP;
using bench::SCALARS;

constexpr char NOTES[] = R"(
The peers are `LUT` and `equalizeHist`. No peer has tables of 65536 entries or laws; beside the former
stands the loop that a program would have. Tables have no order, so that nothing shorter than a lookup
does.
)";

template <class T>
const std::vector<T>& Table(uint32_t entries) {
  static const std::vector<T> table = [entries] {
    std::vector<T> values(entries);
    for (uint32_t i = 0; i < entries; i++) {
      values[i] = static_cast<T>((i * 40503u + (i >> 5) * 17u) % entries);
    }
    return values;
  }();
  return table;
}

const uint8_t* Bytes() {
  return Table<uint8_t>(256).data();
}

const uint16_t* Words() {
  return Table<uint16_t>(65536).data();
}

void PeerTable(Mats& m) {
  static const cv::Mat table(Table<uint8_t>(256), true);
  cv::LUT(m.a, table, m.to);
}

void LoopOverWords(Mats& m) {
  const uint16_t* table = Words();
  m.to.create(m.a.size(), m.a.type());
  for (int y = 0; y < m.a.rows; y++) {
    const auto* from = m.a.ptr<uint16_t>(y);
    auto* to = m.to.ptr<uint16_t>(y);
    for (int x = 0; x < m.a.cols; x++) to[x] = table[from[x]];
  }
}

int32_t Equalize(Images& i) {
  return ZEL_Equalize(i.a, 0, i.to, nullptr, 0, nullptr, 0.0f, 0.0f);
}

bench::Pair Law(const char* name, MathOperator law) {
  return {.operation = std::string("law_") + name, .kinds = SCALARS, .ours = [law](Images& i) {
            return ZEL_MathLookup(i.a, 0, i.to, law, 2.2f, 0, 0);
          }};
}

const std::vector<bench::Pair> PAIRS = {
    {.operation = "table_256",
     .ours = [](Images& i) { return ZEL_UserLookup(i.a, 0, i.to, ARRAY_U8, Bytes(), 256); },
     .theirs = PeerTable},
    {.operation = "table_256_masked",
     .ours = [](Images& i) { return ZEL_UserLookup(i.a, i.noise, i.to, ARRAY_U8, Bytes(), 256); }},
    {.operation = "table_65536",
     .kinds = {{IMAGE_I16}},
     .ours = [](Images& i) { return ZEL_UserLookup(i.a, 0, i.to, ARRAY_U16, Words(), 65536); },
     .peer = PLAIN_LOOP,
     .theirs = LoopOverWords},
    {.operation = "equalize",
     .ours = Equalize,
     .theirs = [](Mats& m) { cv::equalizeHist(m.a, m.to); }},
    {.operation = "equalize", .kinds = {{IMAGE_I16}, {IMAGE_SGL}}, .ours = Equalize},
    Law("linear", MATH_LINEAR),
    Law("log", MATH_LOG),
    Law("exp", MATH_EXP),
    Law("square", MATH_SQUARE),
    Law("sqrt", MATH_SQRT),
    Law("power", MATH_POWERX),
    Law("root", MATH_POWER1X),
};

const bench::Registration LOOKUPS({"lookups", "Lookups and equalisation", NOTES, PAIRS});

}  // namespace
