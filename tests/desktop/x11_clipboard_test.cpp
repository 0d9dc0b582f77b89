// Pictures to and from other programs: xclip, and some of the test's own that behave badly.
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "platform/memory_desktop.h"
#include "platform/x11_state.h"
#include "x_server.h"

namespace {

using test::TestImage;
using Bytes = std::vector<uint8_t>;
using namespace std::chrono_literals;

// Another program that has something in the clipboard, and what it does when it is asked for it.
class OtherProgram {
 public:
  enum Manner {
    SILENT,       // no answer
    TEXT_ONLY,    // no picture
    LIES,         // text where a picture is wanted
    WHOLE,        // a picture in one property
    STOPS,        // a picture in pieces that never come
    SLOW_PIECES,  // a picture in small pieces, one after a while
  };
  OtherProgram(Manner manner, Bytes file) : manner_(manner), file_(std::move(file)) {
    window_ = xcb_generate_id(client_.link());
    xcb_create_window(client_.link(), 0, window_, client_.root(), 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_set_selection_owner(client_.link(), window_, client_.Atom("CLIPBOARD"), XCB_CURRENT_TIME);
    client_.Sync();
    thread_ = std::thread([this] { Run(); });
  }
  OtherProgram(const OtherProgram&) = delete;
  OtherProgram& operator=(const OtherProgram&) = delete;
  ~OtherProgram() {
    isEnding_ = true;
    thread_.join();
  }

 private:
  void Put(const xcb_selection_request_event_t& request, const char* type, uint8_t format,
           uint32_t count, const void* data) const {
    xcb_change_property(client_.link(), XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                        client_.Atom(type), format, count, data);
  }
  void Serve(const xcb_selection_request_event_t& request) {
    if (manner_ == SILENT) return;
    if (request.target == client_.Atom("TARGETS")) {
      const xcb_atom_t targets[] = {client_.Atom("TARGETS"), client_.Atom("UTF8_STRING"),
                                    client_.Atom("image/bmp")};
      Put(request, "ATOM", 32, manner_ == TEXT_ONLY ? 2 : 3, targets);
    } else if (manner_ == LIES) {
      Put(request, "image/bmp", 8, 5, "hello");
    } else if (manner_ == WHOLE) {
      Put(request, "image/bmp", 8, static_cast<uint32_t>(file_.size()), file_.data());
    } else {
      const auto size = static_cast<uint32_t>(file_.size());
      const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
      xcb_change_window_attributes(client_.link(), request.requestor, XCB_CW_EVENT_MASK, &events);
      Put(request, "INCR", 32, 1, &size);
      pieces_ = request;
    }
    xcb_selection_notify_event_t answer{};
    answer.response_type = XCB_SELECTION_NOTIFY;
    answer.requestor = request.requestor;
    answer.selection = request.selection;
    answer.target = request.target;
    answer.property = request.property;
    client_.Send(request.requestor, answer);
  }
  void Continue(const xcb_property_notify_event_t& event) {
    const bool isTaken = event.state == XCB_PROPERTY_DELETE && event.atom == pieces_.property;
    if (manner_ != SLOW_PIECES || !isTaken) return;
    std::this_thread::sleep_for(20ms);
    const size_t count = std::min<size_t>(file_.size() - sent_, 300);
    Put(pieces_, "image/bmp", 8, static_cast<uint32_t>(count), file_.data() + sent_);
    sent_ += count;
    xcb_flush(client_.link());
  }
  void Run() {
    while (!isEnding_) {
      const test::Answer<xcb_generic_event_t> event(xcb_poll_for_event(client_.link()));
      if (!event) {
        std::this_thread::sleep_for(1ms);
      } else if ((event->response_type & 0x7F) == XCB_SELECTION_REQUEST) {
        Serve(*reinterpret_cast<const xcb_selection_request_event_t*>(event.get()));
      } else if ((event->response_type & 0x7F) == XCB_PROPERTY_NOTIFY) {
        Continue(*reinterpret_cast<const xcb_property_notify_event_t*>(event.get()));
      }
    }
  }

  Manner manner_;
  Bytes file_;
  test::XClient client_;
  xcb_window_t window_ = 0;
  xcb_selection_request_event_t pieces_{};
  size_t sent_ = 0;
  std::atomic<bool> isEnding_ = false;
  std::thread thread_;
};

class SharedClipboard : public test::Screen {
 protected:
  SharedClipboard() {
    std::string pattern = std::filesystem::temp_directory_path() / "orlune_clipboard_XXXXXX";
    folder_ = mkdtemp(pattern.data());
  }
  ~SharedClipboard() override { std::filesystem::remove_all(folder_); }

  std::string File() const { return folder_ + "/picture.bmp"; }
  // Runs a command of the shell while events are let in. Its exit code.
  static int Run(const std::string& command) {
    const pid_t process = fork();
    if (process == 0) {
      execl("/bin/sh", "sh", "-c", command.c_str(), static_cast<char*>(nullptr));
      _exit(127);
    }
    int status = -1;
    EXPECT_TRUE(test::Eventually([&] { return waitpid(process, &status, WNOHANG) == process; }));
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  static int32_t Take(const TestImage& image) {
    Settle();  // the library may still be on its way to hear that others have copied something
    int32_t available = -1;
    EXPECT_EQ(ZEL_ClipboardToImage(image, nullptr, &available), 0);
    return available;
  }
  Bytes FileBytes() const {
    std::ifstream file(File(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  // What a program that saves the clipboard's picture gets.
  void Paste() const {
    EXPECT_EQ(Run("timeout 8 xclip -selection clipboard -t image/bmp -o >" + File()), 0);
  }
  // Another program copies the file. It goes on in the background, and stays until somebody else
  // copies something.
  void Copy() const {
    const xcb_window_t before = Owner();
    EXPECT_EQ(Run("xclip -selection clipboard -t image/bmp -i " + File() + " >/dev/null 2>&1"), 0);
    EXPECT_TRUE(test::Eventually([&] { return Owner() != before; }));
  }
  xcb_window_t Owner() const {
    const xcb_atom_t clipboard = client_.Atom("CLIPBOARD");
    const test::Answer<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        client_.link(), xcb_get_selection_owner(client_.link(), clipboard), nullptr));
    return reply ? reply->owner : xcb_window_t{0};
  }
  // A file of a small gray picture.
  Bytes SmallFile(const TestImage& image) const {
    EXPECT_EQ(ZEL_ImageToClipboard(image, nullptr), 0);
    Paste();
    return FileBytes();
  }

  std::string folder_;
};

TEST_F(SharedClipboard, GoesToOtherProgramsAndBackInAllSizes) {
  // 20 MB is far more than one request of the server holds.
  for (const auto& [type, side] : {std::pair{IMAGE_U8, 1}, std::pair{IMAGE_RGB, 200},
                                   std::pair{IMAGE_U8, 1100}, std::pair{IMAGE_RGB, 2600}}) {
    const TestImage image(type, side, side);
    if (type == IMAGE_RGB) {
      for (int32_t i = 0; i < side * side; i++) {
        image.Set<RGBValue>(i % side, i / side, static_cast<RGBValue>(i * 77) & 0xFFFFFF);
      }
    }
    ASSERT_EQ(ZEL_ImageToClipboard(image, nullptr), 0);
    Paste();
    if (side == 1) {
      EXPECT_EQ(FileBytes().size(), 14U + 40 + 1024 + 4);
    } else {
      const TestImage fromFile(type, 1, 1);
      ASSERT_EQ(ZEL_ReadFile(fromFile, File().c_str(), 0, nullptr, nullptr), 0) << side;
      EXPECT_TRUE(fromFile.Pixels() == image.Pixels()) << side;
    }
    Copy();
    const TestImage back(type, 1, 1);
    ASSERT_EQ(Take(back), 1) << side;
    EXPECT_TRUE(back.Pixels() == image.Pixels()) << side;
  }
}

TEST_F(SharedClipboard, TellsWhatItHas) {
  const TestImage image(IMAGE_U8, 3, 3);
  ASSERT_EQ(ZEL_ImageToClipboard(image, nullptr), 0);
  ASSERT_EQ(
      Run("timeout 8 xclip -selection clipboard -t TARGETS -o | sort | tr '\\n' ' ' >" + File()),
      0);
  const Bytes told = FileBytes();
  EXPECT_EQ(std::string(told.begin(), told.end()),
            "MULTIPLE SAVE_TARGETS TARGETS TIMESTAMP image/bmp ");
  EXPECT_NE(Run("timeout 8 xclip -selection clipboard -t text/plain -o >/dev/null 2>&1"), 0);
}

TEST_F(SharedClipboard, AnswersSeveralQuestionsAtOnce) {
  const TestImage image(IMAGE_U8, 3, 3);
  ASSERT_EQ(ZEL_ImageToClipboard(image, nullptr), 0);
  const xcb_window_t window = xcb_generate_id(client_.link());
  xcb_create_window(client_.link(), 0, window, client_.root(), 0, 0, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
  const xcb_atom_t pairs[] = {client_.Atom("image/bmp"),   client_.Atom("A"),
                              client_.Atom("UTF8_STRING"), client_.Atom("B"),
                              client_.Atom("TIMESTAMP"),   client_.Atom("C")};
  const xcb_atom_t property = client_.Atom("PAIRS");
  xcb_change_property(client_.link(), XCB_PROP_MODE_REPLACE, window, property,
                      client_.Atom("ATOM_PAIR"), 32, 6, pairs);
  xcb_convert_selection(client_.link(), window, client_.Atom("CLIPBOARD"), client_.Atom("MULTIPLE"),
                        property, XCB_CURRENT_TIME);
  EXPECT_TRUE(test::Eventually([&] { return !client_.Text(window, "C").empty(); }));
  EXPECT_EQ(client_.Text(window, "A").substr(0, 2), "BM");
  EXPECT_TRUE(client_.Text(window, "B").empty());
  const std::string answered = client_.Text(window, "PAIRS");
  ASSERT_EQ(answered.size(), sizeof pairs);
  xcb_atom_t after[6];
  std::memcpy(after, answered.data(), sizeof after);
  EXPECT_EQ(after[1], pairs[1]);
  EXPECT_EQ(after[3], 0U) << "that is not to be had";
  EXPECT_EQ(after[5], pairs[5]);
}

TEST_F(SharedClipboard, LooksNoLongerAtProgramsThatTakeNoMorePieces) {
  const TestImage image(IMAGE_RGB, 2600, 2600);
  ASSERT_EQ(ZEL_ImageToClipboard(image, nullptr), 0);
  const xcb_window_t window = xcb_generate_id(client_.link());
  xcb_create_window(client_.link(), 0, window, client_.root(), 0, 0, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
  const auto isLookedAt = [&] {
    const test::Answer<xcb_get_window_attributes_reply_t> reply(xcb_get_window_attributes_reply(
        client_.link(), xcb_get_window_attributes(client_.link(), window), nullptr));
    return reply && reply->all_event_masks != 0;
  };
  xcb_convert_selection(client_.link(), window, client_.Atom("CLIPBOARD"),
                        client_.Atom("image/bmp"), client_.Atom("A"), XCB_CURRENT_TIME);
  EXPECT_TRUE(test::Eventually(isLookedAt));
  std::vector<zel::X11Transfer>& transfers = zel::x11->selection.transfers;
  ASSERT_EQ(transfers.size(), 1U);
  transfers[0].ticks -= 3001;
  EXPECT_TRUE(test::Eventually([&] { return !isLookedAt(); }));
  EXPECT_TRUE(transfers.empty());
}

TEST_F(SharedClipboard, IsTakenFromProgramsOfAllManners) {
  const TestImage image(IMAGE_U8, 20, 30);
  const Bytes file = SmallFile(image);
  ASSERT_EQ(file.size(), 14U + 40 + 1024 + 600);
  for (const auto manner : {OtherProgram::WHOLE, OtherProgram::SLOW_PIECES}) {
    const OtherProgram other(manner, file);
    const TestImage taken(IMAGE_U8, 1, 1);
    EXPECT_EQ(Take(taken), 1);
    EXPECT_EQ(taken.Pixels(), image.Pixels());
  }
  for (const auto manner : {OtherProgram::TEXT_ONLY, OtherProgram::LIES}) {
    const OtherProgram other(manner, {});
    const TestImage taken(IMAGE_U8, 5, 5);
    EXPECT_EQ(Take(taken), 0);
    EXPECT_EQ(taken.width(), 5);
  }
}

TEST_F(SharedClipboard, GivesUpOnProgramsThatDoNotAnswer) {
  for (const auto manner : {OtherProgram::SILENT, OtherProgram::STOPS}) {
    const OtherProgram other(manner, Bytes(5000));
    const TestImage image(IMAGE_U8, 5, 5);
    EXPECT_EQ(Take(image), -1) << "nothing is written";
    EXPECT_EQ(image.width(), 5);
  }
}

TEST_F(SharedClipboard, StaysWithTheProgramThatClosesTheLibrary) {
  Bytes pixels;
  {
    const TestImage image(IMAGE_U8, 9, 9);
    pixels = image.Pixels();
    ASSERT_EQ(ZEL_ImageToClipboard(image, nullptr), 0);
  }
  ZEL_CloseSys();
  const TestImage taken(IMAGE_U8, 1, 1);
  EXPECT_EQ(Take(taken), 1);
  EXPECT_EQ(taken.Pixels(), pixels);
}

// Of a program that answers when nobody waits any more, just before another one copies something.
TEST_F(SharedClipboard, TakesNoLateAnswersTimeForNow) {
  const TestImage image(IMAGE_U8, 9, 9);
  ASSERT_EQ(ZEL_ImageToClipboard(image, nullptr), 0);
  const xcb_window_t window = zel::x11->selection.window;
  EXPECT_EQ(Owner(), window);
  client_.SetText(window, "ORLUNE_TRANSFER", "late");
  std::this_thread::sleep_for(20ms);
  const OtherProgram other(OtherProgram::TEXT_ONLY, {});
  EXPECT_NE(Owner(), window);
  ASSERT_EQ(ZEL_ImageToClipboard(image, nullptr), 0);
  EXPECT_EQ(Owner(), window);
}

// What a desktop has that keeps pictures of programs that end.
class Keeper {
 public:
  Keeper() {
    window_ = xcb_generate_id(client_.link());
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(client_.link(), 0, window_, client_.root(), 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                      &events);
    xcb_set_selection_owner(client_.link(), window_, client_.Atom("CLIPBOARD_MANAGER"),
                            XCB_CURRENT_TIME);
    client_.Sync();
    thread_ = std::thread([this] { Run(); });
  }
  Keeper(const Keeper&) = delete;
  Keeper& operator=(const Keeper&) = delete;
  ~Keeper() { thread_.join(); }

  std::atomic<bool> hasPicture = false;

 private:
  void Run() {
    const auto end = std::chrono::steady_clock::now() + 8s;
    xcb_selection_request_event_t asked{};
    while (std::chrono::steady_clock::now() < end) {
      const test::Answer<xcb_generic_event_t> event(xcb_poll_for_event(client_.link()));
      const int type = event ? event->response_type & 0x7F : -1;
      if (type == XCB_SELECTION_REQUEST) {
        asked = *reinterpret_cast<const xcb_selection_request_event_t*>(event.get());
        xcb_convert_selection(client_.link(), window_, client_.Atom("CLIPBOARD"),
                              client_.Atom("image/bmp"), client_.Atom("KEPT"), XCB_CURRENT_TIME);
        xcb_flush(client_.link());
      } else if (type == XCB_SELECTION_NOTIFY) {
        hasPicture = client_.Text(window_, "KEPT").substr(0, 2) == "BM";
        xcb_set_selection_owner(client_.link(), window_, client_.Atom("CLIPBOARD"),
                                XCB_CURRENT_TIME);
        client_.Sync();
        xcb_selection_notify_event_t answer{};
        answer.response_type = XCB_SELECTION_NOTIFY;
        answer.requestor = asked.requestor;
        answer.selection = asked.selection;
        answer.target = asked.target;
        answer.property = asked.property;
        client_.Send(asked.requestor, answer);
        return;
      } else {
        std::this_thread::sleep_for(1ms);
      }
    }
  }

  test::XClient client_;
  xcb_window_t window_ = 0;
  std::thread thread_;
};

TEST_F(SharedClipboard, IsHandedOverWhenTheLibraryIsClosed) {
  Keeper keeper;
  {
    const TestImage image(IMAGE_U8, 9, 9);
    ASSERT_EQ(ZEL_ImageToClipboard(image, nullptr), 0);
  }
  ZEL_CloseSys();
  EXPECT_TRUE(keeper.hasPicture);
}

}  // namespace
