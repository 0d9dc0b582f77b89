// Each fault that the world can have is found, and told by its own name.
#include "core/world.h"

#include <gtest/gtest.h>

#include "core/images.h"
#include "core/tables.h"
#include "harness/test_image.h"

namespace {

using namespace zel;
using test::TestImage;

// Puts a value in the place of another one as long as it lives.
template <class T>
class Spoilt {
 public:
  Spoilt(T* place, T value) : place_(place), former_(*place) { *place = value; }
  Spoilt(const Spoilt&) = delete;
  Spoilt& operator=(const Spoilt&) = delete;
  ~Spoilt() { *place_ = former_; }

 private:
  T* place_;
  T former_;
};

template <class T>
std::string FaultWith(T* place, T value) {
  const Spoilt<T> spoilt(place, value);
  const char* fault = WorldFault();
  return fault ? fault : "none";
}

class World : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(ImageLookup(image_, &record_), STATUS_OK);
    int32_t row = 0;
    ASSERT_EQ(ImageEntryFind(image_, &recordHandle_, &row), 1);
    entry_ = &coreTables.images[row];
    ASSERT_EQ(WorldFault(), nullptr);
  }
  void TearDown() override { EXPECT_EQ(WorldFault(), nullptr); }

  TestImage image_{IMAGE_U8, 9, 5, 2};
  TestImage other_{IMAGE_U8, 9, 5, 2};
  Image* record_ = nullptr;
  Handle recordHandle_ = 0;
  ImageEntry* entry_ = nullptr;
};

TEST_F(World, WithoutRecordsOrBlocksOfImagesIsFaulty) {
  HandleEntry* record = HandleRow(recordHandle_);
  EXPECT_EQ(FaultWith(&record->kind, int32_t{HANDLE_OWNED}), "an image row has no record");
  EXPECT_EQ(FaultWith(&record->data, static_cast<void*>(nullptr)), "an image row has no record");
  EXPECT_EQ(FaultWith(&record_->pixels, 0), "an image has no pixel block");
  EXPECT_EQ(FaultWith(&HandleRow(record_->pixels)->kind, int32_t{HANDLE_OWNED}),
            "an image has no pixel block");
}

TEST_F(World, WithImagesThatDoNotFitTheirBlocksIsFaulty) {
  for (int32_t* measure :
       {&record_->width, &record_->height, &record_->border, &record_->lineWidth}) {
    EXPECT_EQ(FaultWith(measure, -1), "an image has a negative measure");
  }
  EXPECT_EQ(FaultWith(&record_->width, 0), "an image is empty one way only");
  EXPECT_EQ(FaultWith(&record_->height, 0), "an image is empty one way only");
  EXPECT_EQ(FaultWith(&record_->height, 6), "a pixel block is too small");
  EXPECT_EQ(FaultWith(&record_->lineWidth, 12), "a row of pixels is too short");
  EXPECT_EQ(FaultWith(&record_->type, int16_t{IMAGE_SGL}), "a pixel block is too small");
  EXPECT_EQ(FaultWith(&record_->type, int16_t{77}), "none");  // of unknown pixels nothing is known
}

TEST_F(World, WithReferencesThatNameNothingOrTwoIsFaulty) {
  EXPECT_EQ(FaultWith(&entry_->reference, coreTables.lastReference + 1),
            "a reference was never issued");
  EXPECT_EQ(FaultWith(&entry_->reference, ImageRef{other_}), "a reference is not unique");
  EXPECT_EQ(FaultWith(&entry_->reference, ImageRef{0}), "the count of images is wrong");
  EXPECT_EQ(FaultWith(&entry_->recordHandle, 0), "none");  // an image that could not be made
  EXPECT_EQ(FaultWith(&coreTables.imageRows, 1u), "the count of images is wrong");
}

TEST_F(World, WithHandlesThatHoldNothingIsFaulty) {
  Handle vector = 0;
  ASSERT_EQ(VectorNew(&vector), STATUS_OK);
  ASSERT_EQ(VectorResize2D(vector, 4, 3, 2), STATUS_OK);
  HandleEntry* row = HandleRow(vector);
  EXPECT_EQ(FaultWith(&row->data, static_cast<void*>(nullptr)),
            "a handle counts elements it does not hold");
  EXPECT_EQ(FaultWith(&row->kind, int32_t{HANDLE_FOREIGN}), "a caller's block is still wrapped");
  EXPECT_EQ(FaultWith(&row->kind, int32_t{HANDLE_FREE}), "the count of handles is wrong");
  EXPECT_EQ(FaultWith(&coreTables.handleRows, 1u), "the count of handles is wrong");
  EXPECT_EQ(VectorFree(vector), STATUS_OK);
}

}  // namespace
