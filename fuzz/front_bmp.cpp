// Any bytes as a BMP file of the front's reader. The signature is put in, so that every input
// reaches it.
#include <algorithm>
#include <vector>

#include "fuzz/target.h"
#include "harness/checks.h"
#include "pictures/readers.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  constexpr int64_t MOST_PIXELS = 1 << 22;  // what a fuzzer has the memory and the time for
  std::vector<uint8_t> file(data, data + size);
  if (file.size() >= 2) {
    file[0] = 'B';
    file[1] = 'M';
  }
  try {
    const pictures::Account account = pictures::ReadBmp(file, 1, pictures::Want::Account).account;
    if (account.width > MOST_PIXELS || account.height > MOST_PIXELS) return 0;
    if (account.width * account.height > MOST_PIXELS) return 0;
    const pictures::Raster raster = pictures::ReadBmp(file, 1, pictures::Want::Pixels).raster;
    test::Require(raster.width == account.width && raster.height == account.height,
                  "another size than told");
    test::Require(static_cast<int64_t>(raster.bytes.size()) == raster.RowBytes() * raster.height,
                  "another number of bytes than the size takes");
    test::Require(raster.palette.empty() || raster.palette.size() == 256, "an odd palette");
    const pictures::Raster lent = pictures::ReadBmp(file, 1, pictures::Want::PixelsOrLent).raster;
    for (int64_t y = 0; y < raster.height; ++y) {
      test::Require(std::equal(raster.Row(y), raster.Row(y) + raster.RowBytes(), lent.Row(y)),
                    "the file lends other rows than it has");
    }
  } catch (const pictures::BadFile&) {
  }
  return 0;
}
