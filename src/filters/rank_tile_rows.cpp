// The wanted rank in a window that slides over a tile.
#include "filters/rank_tile_rows.h"

#include "core/numbers.h"

namespace zel::ZEL_LEVEL {
namespace {

constexpr uint32_t WORD_BITS = 64;

// The members of the window, and the word where the wanted one was last.
struct Window {
  uint64_t* members;
  int64_t word;
  int64_t below;  // members in the words before it
};

ZEL_INLINE void Enter(Window& window, uint32_t rank) {
  const int64_t word = rank / WORD_BITS;
  window.members[word] |= uint64_t{1} << (rank % WORD_BITS);
  window.below += static_cast<int64_t>(word < window.word);
}

ZEL_INLINE void Leave(Window& window, uint32_t rank) {
  const int64_t word = rank / WORD_BITS;
  window.members[word] &= ~(uint64_t{1} << (rank % WORD_BITS));
  window.below -= static_cast<int64_t>(word < window.word);
}

ZEL_INLINE uint32_t Find(Window& window, int64_t order) {
  while (window.below > order) {
    window.word--;
    window.below -= __builtin_popcountll(window.members[window.word]);
  }
  int64_t members = __builtin_popcountll(window.members[window.word]);
  while (window.below + members <= order) {
    window.below += members;
    window.word++;
    members = __builtin_popcountll(window.members[window.word]);
  }
  uint64_t bits = window.members[window.word];
  for (int64_t i = window.below; i < order; i++) bits &= bits - 1;
  return static_cast<uint32_t>(window.word * WORD_BITS) +
         static_cast<uint32_t>(__builtin_ctzll(bits));
}

void Slide(const RankTile& tile) {
  Window window{tile.members, 0, 0};
  const int64_t positions = tile.positions;
  const int64_t breadth = tile.breadth;
  const int64_t windowLines = tile.windowLines;
  const int64_t lineSteps = tile.lineSteps;
  const auto exchangeLines = [&](int64_t enters, int64_t leaves, int64_t position) {
    const uint32_t* entering = tile.ranks + enters * positions + position;
    const uint32_t* leaving = tile.ranks + leaves * positions + position;
    for (int64_t i = 0; i < breadth; i++) {
      Enter(window, entering[i]);
      Leave(window, leaving[i]);
    }
  };

  for (int64_t line = 0; line < windowLines; line++) {
    for (int64_t i = 0; i < breadth; i++) Enter(window, tile.ranks[line * positions + i]);
  }
  int64_t line = 0;
  for (int64_t position = 0; position < tile.positionSteps; position++) {
    uint32_t* found = tile.found + position * lineSteps;
    found[line] = Find(window, tile.order);
    if (line == 0) {
      for (; line + 1 < lineSteps; line++) {
        exchangeLines(line + windowLines, line, position);
        found[line + 1] = Find(window, tile.order);
      }
    } else {
      for (; line > 0; line--) {
        exchangeLines(line - 1, line - 1 + windowLines, position);
        found[line - 1] = Find(window, tile.order);
      }
    }
    if (position + 1 == tile.positionSteps) return;
    for (int64_t i = line; i < line + windowLines; i++) {
      Enter(window, tile.ranks[i * positions + position + breadth]);
      Leave(window, tile.ranks[i * positions + position]);
    }
  }
}

}  // namespace

extern const RankTileRows rankTileRows = {.slide = &Slide};

}  // namespace zel::ZEL_LEVEL
