#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "filters/rank_pass.h"
namespace {
using namespace zel;
template <class T>
T Naive(const T* const* rows, int w, int h, int order, int x) {
  std::vector<T> a;
  for (int j = 0; j < h; j++)
    for (int i = 0; i < w; i++) {
      T v = rows[j][x + i];
      size_t k = a.size();
      a.push_back(v);
      while (k > 0 && a[k - 1] > v) {
        a[k] = a[k - 1];
        k--;
      }
      a[k] = v;
    }
  return a[order];
}
template <class T>
void Check(int type, int W, int H, int w, int h, int order, bool allowRoutine) {
  int pitch = (W + w + 9) & ~7;
  std::vector<T> src(size_t(pitch * (H + h))), dst(size_t(pitch * (H + h)), T(77));
  unsigned seed = 1;
  for (auto& v : src) {
    seed = seed * 1664525u + 1013904223u;
    v = T(int(seed >> 20) - (type ? 2000 : 0));
  }
  RankViews v;
  v.source.origin = (uint8_t*)(src.data() + ((h - 1) / 2) * pitch + (w - 1) / 2);
  v.source.pitch = pitch * sizeof(T);
  v.source.width = W;
  v.source.height = H;
  v.source.type = type;
  v.source.pixelBytes = sizeof(T);
  v.result = v.source;
  v.result.origin = (uint8_t*)dst.data();
  auto prog = std::make_unique<RankProgram>();
  RankNetwork n{};
  bool found = false;
  if (allowRoutine)
    for (auto& r : rankRows().routines)
      if (r.window.width == w && r.window.height == h && r.window.order == order) {
        n = RankNetworkOf(r, v.source);
        found = true;
      }
  if (!found) {
    if (allowRoutine) return;
    ASSERT_TRUE(RankProgramMake({w, h, order}, 100000, prog.get()));
    n = RankNetworkOf(*prog, v.source);
  }
  int64_t bytes = RankNetworkBytes(n);
  void* mem = aligned_alloc(64, size_t(bytes));
  int cut = H / 3;
  if (cut > 0) RankNetworkRun(n, v, {0, cut, (uint8_t*)mem});
  RankNetworkRun(n, v, {cut, H, (uint8_t*)mem});
  free(mem);
  for (int y = 0; y < H; y++) {
    std::vector<const T*> rows;
    for (int j = 0; j < h; j++) rows.push_back(src.data() + (y + j) * pitch);
    for (int x = 0; x < W; x++)
      ASSERT_EQ(dst[y * pitch + x], Naive<T>(rows.data(), w, h, order, x))
          << type << " " << W << "x" << H << " win " << w << "x" << h << " o " << order << " at "
          << x << "," << y;
    for (int x = W; x < pitch; x++) ASSERT_EQ(dst[y * pitch + x], T(77));
  }
}
TEST(Rank, Proto) {
  for (int W : {1, 7, 33, 64, 130, 300})
    for (int H : {1, 2, 5, 17}) {
      for (int r = 0; r < 2; r++)
        for (auto wn : std::vector<std::array<int, 3>>{{3, 3, 0},
                                                       {3, 3, 4},
                                                       {3, 3, 8},
                                                       {3, 3, 2},
                                                       {5, 5, 12},
                                                       {7, 7, 24},
                                                       {2, 2, 1},
                                                       {1, 3, 1},
                                                       {3, 1, 1},
                                                       {4, 2, 5},
                                                       {2, 6, 3},
                                                       {9, 1, 4},
                                                       {1, 9, 2},
                                                       {5, 3, 7},
                                                       {6, 7, 3},
                                                       {9, 9, 40},
                                                       {9, 9, 0},
                                                       {13, 11, 142},
                                                       {40, 3, 1}}) {
          if (wn[0] * wn[1] > 60 && W * H > 2000) continue;
          Check<uint8_t>(0, W, H, wn[0], wn[1], wn[2], r);
          Check<int16_t>(1, W, H, wn[0], wn[1], wn[2], r);
          Check<float>(2, W, H, wn[0], wn[1], wn[2], r);
        }
    }
}
}  // namespace
