#include "core/errors.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "orlune_ptk.h"
#include "platform/message_box.h"

namespace {

std::string shownTitle;
std::string shownText;
int shownCount = 0;

void Remember(const char* title, const char* text) {
  shownTitle = title;
  shownText = text;
  shownCount++;
}

class Errors : public testing::Test {
 protected:
  void SetUp() override {
    static const zel::MessageBox remembering{&Remember};
    zel::MessageBoxUse(&remembering);
    ZEL_GetLastError(nullptr);
    shownCount = 0;
  }
  void TearDown() override { zel::MessageBoxUse(nullptr); }

  static std::string Message(int64_t number) {
    char line[zel::MESSAGE_LINE_SIZE];
    zel::ErrorMessage(number, line);
    return line;
  }
};

TEST_F(Errors, StatusZeroLeavesAnEarlierErrorInPlace) {
  EXPECT_EQ(ZEL_ProcessError("first", 101), -101);
  EXPECT_EQ(ZEL_ProcessError("second", 0), 0);
  char name[256];
  EXPECT_EQ(ZEL_GetLastError(name), -101);
  EXPECT_STREQ(name, "first");
}

TEST_F(Errors, EitherSignIsReportedAlike) {
  EXPECT_EQ(ZEL_ProcessError("x", 200), -200);
  EXPECT_EQ(ZEL_ProcessError("x", -200), -200);
  EXPECT_EQ(ZEL_ProcessError("x", INT32_MIN), INT32_MIN);
}

TEST_F(Errors, TheLastErrorIsToldOnce) {
  ZEL_ProcessError("procedure", 301);
  char name[256] = "junk";
  EXPECT_EQ(ZEL_GetLastError(name), -301);
  EXPECT_STREQ(name, "procedure");
  EXPECT_EQ(ZEL_GetLastError(name), 0);
  EXPECT_STREQ(name, "");
  EXPECT_EQ(ZEL_GetLastError(nullptr), 0);
}

TEST_F(Errors, ANullProcedureKeepsTheFormerName) {
  ZEL_ProcessError("former", 101);
  EXPECT_EQ(ZEL_ProcessError(nullptr, 200), -200);
  char name[256];
  EXPECT_EQ(ZEL_GetLastError(name), -200);
  EXPECT_STREQ(name, "former");
}

TEST_F(Errors, ModesAreNormalised) {
  for (const int32_t silent : {1, 7, INT32_MAX}) {
    EXPECT_EQ(ZEL_SetErrorMode(silent), 0);
    EXPECT_EQ(ZEL_GetErrorMode(), 1);
  }
  for (const int32_t popup : {0, -1, INT32_MIN}) {
    EXPECT_EQ(ZEL_SetErrorMode(popup), 0);
    EXPECT_EQ(ZEL_GetErrorMode(), 0);
  }
  ZEL_SetErrorMode(1);
}

TEST_F(Errors, ThePopUpNamesTheProcedureAndTheMessage) {
  ZEL_SetErrorMode(0);
  ZEL_ProcessError("ZEL_Anything", 200);
  EXPECT_EQ(shownTitle, "Orlune Error");
  EXPECT_EQ(shownText,
            "The procedure ZEL_Anything() returned the error \n #-200 bad image reference\n");
  ZEL_ProcessError("ZEL_Anything", 103);
  EXPECT_EQ(shownText, "The procedure ZEL_Anything() returned the error \n #-103 Unknown error\n");
  EXPECT_EQ(shownCount, 2);
  ZEL_SetErrorMode(1);
  ZEL_ProcessError("ZEL_Anything", 200);
  EXPECT_EQ(shownCount, 2);
}

TEST_F(Errors, LongNamesAreCut) {
  ZEL_SetErrorMode(0);
  const std::string name(10000, 'n');
  ZEL_ProcessError(name.c_str(), 200);
  EXPECT_LE(shownText.size(), 495u);
  char kept[256];
  ZEL_GetLastError(kept);
  EXPECT_EQ(kept, std::string(255, 'n'));
  ZEL_ProcessError("", 200);
  ZEL_GetLastError(kept);
  EXPECT_STREQ(kept, "");
  ZEL_SetErrorMode(1);
}

TEST_F(Errors, NumbersWithoutALineTakeThatOfALongerNumber) {
  EXPECT_EQ(Message(200), "#200 bad image reference\n");
  EXPECT_EQ(Message(5), "#500 bad file header\n");
  EXPECT_EQ(Message(20), "#200 bad image reference\n");
  EXPECT_EQ(Message(3), "#300 bad image type\n");
  EXPECT_EQ(Message(12), "#1200 bad ROI descriptor\n");
  EXPECT_EQ(Message(10), "#100 system error\n");
  EXPECT_EQ(Message(1), "#100 system error\n");
  for (const int64_t unknown : {9, 17, 103, 900, 123456}) {
    EXPECT_EQ(Message(unknown), "#" + std::to_string(unknown) + " Unknown error\n");
  }
  EXPECT_EQ(Message(2147483648), "#2147483648 Unknown error\n");
}

TEST_F(Errors, TheTableHasSeventyFourLines) {
  int lines = 0;
  for (int number = 0; number < 4000; number++) {
    const std::string message = Message(number);
    const std::string key = "#" + std::to_string(number) + " ";
    if (message.starts_with(key) && message.find("Unknown error") == std::string::npos) lines++;
  }
  EXPECT_EQ(lines, 74);
  EXPECT_EQ(Message(513), "#513 end of file occured\n");
  EXPECT_EQ(Message(3041), "#3041 LCD bad match\n");
  EXPECT_EQ(Message(0), "#0 no error\n");
}

TEST_F(Errors, ClosingTheLibraryLeavesTheReporterAlone) {
  ZEL_ProcessError("kept", 511);
  ZEL_CloseSys();
  EXPECT_EQ(ZEL_GetErrorMode(), 1);
  char name[256];
  EXPECT_EQ(ZEL_GetLastError(name), -511);
  EXPECT_STREQ(name, "kept");
}

TEST(MessageBox, PrintsToStandardErrorWithoutADesktop) {
  testing::internal::CaptureStderr();
  zel::MessageBoxInUse().show("Title", "text\n");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Title: text\n");
}

}  // namespace
