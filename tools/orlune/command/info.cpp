// orlune info: what picture files hold.
#include <iomanip>
#include <iostream>
#include <sstream>

#include "orlune/command/commands.h"
#include "orlune/shared/interrupts.h"
#include "orlune/shared/numbers.h"
#include "orlune/shared/readable.h"
#include "orlune/shared/reports.h"

namespace front {
namespace {

// What is known of a page: from its header, and from its pixels if they can be read.
struct Page {
  Account account;
  std::string complaint;  // why the pixels cannot be read; empty for those that can
  std::string type;       // of the image that they become
  std::optional<Extremes> values;
  float scaleX = 1, scaleY = 1;
};

Page ReadPage(const std::string& name, const Account& account) {
  Page page{.account = account, .complaint = {}, .type = {}, .values = {}};
  try {
    const Loaded picture = ReadPicture(name, {});
    const ImageInfo image = picture.image.Info();
    page.account = picture.account;
    page.type = TypeName(image.type);
    page.scaleX = image.xStep;
    page.scaleY = image.yStep;
    if (image.type <= IMAGE_SGL && image.width > 0) page.values = ExtremesOf(picture.image);
  } catch (const std::exception& failure) {
    page.complaint = failure.what();
  }
  return page;
}

struct File {
  int64_t bytes = 0;
  std::vector<Page> pages;
  std::string complaint;  // about pages that could not be looked at

  bool AllRead() const {
    bool all = complaint.empty();
    for (const Page& page : pages) all = all && page.complaint.empty();
    return all;
  }
};

File ReadFile(const std::string& name) {
  const FileAccount found = DescribeFile(name);
  File file{.bytes = found.bytes, .pages = {}, .complaint = found.complaint};
  for (const Account& account : found.pages) {
    const bool one = found.pages.size() == 1;
    file.pages.push_back(ReadPage(one ? name : name + "#" + std::to_string(account.page), account));
  }
  return file;
}

std::string PixelText(const Account& account) {
  std::string text = KindName(account);
  if (account.samples > 1) {
    text += ", " + std::to_string(account.samples) + " samples of " + std::to_string(account.bits) +
            " bits";
  }
  if (account.colours > 0) text += ", palette of " + Count(account.colours, "colour");
  if (!account.meaning.empty()) text += ", " + account.meaning;
  if (!account.alpha.empty()) text += ", " + account.alpha + " alpha";
  return text;
}

std::string StorageText(const Account& account) {
  std::string text = "compression " + account.compression;
  if (!account.layout.empty()) text += ", " + account.layout;
  if (!account.byteOrder.empty()) text += ", " + account.byteOrder;
  return text;
}

void PrintPage(std::ostream& out, const Page& page) {
  const auto line = [&](const char* name) -> std::ostream& {
    return out << "  " << std::left << std::setw(11) << name << std::right;
  };
  const Account& account = page.account;
  if (account.pages > 1) line("page") << account.page << " of " << account.pages << '\n';
  line("size") << SizeName(account) << " pixels\n";
  line("pixels") << PixelText(account) << '\n';
  line("stored") << StorageText(account) << '\n';
  if (account.orientation != 1) {
    line("turned") << "upright when it is read, by its orientation " << account.orientation << '\n';
  }
  if (!account.resolution.empty()) line("resolution") << account.resolution << '\n';
  if (!page.complaint.empty()) {
    line("not read") << page.complaint << '\n';
    return;
  }
  line("read as") << page.type << '\n';
  if (page.values && page.values->finite > 0) {
    line("values") << Short(page.values->low) << " to " << Short(page.values->high) << ", mean "
                   << Short(page.values->mean) << '\n';
  }
  if (page.values && page.values->others > 0) {
    line("no numbers") << Count(page.values->others, "pixel") << " infinite or undefined\n";
  }
  if (page.scaleX != 1 || page.scaleY != 1) {
    line("scale") << Exact(page.scaleX) << " x " << Exact(page.scaleY) << " units a pixel\n";
  }
  for (const std::string& loss : account.losses) line("lost") << loss << '\n';
}

std::string TableOf(const std::string& name, const File& file) {
  std::ostringstream out;
  out << LineText(name) << ": " << file.pages.front().account.format << ", "
      << Count(file.bytes, "byte") << '\n';
  for (const Page& page : file.pages) PrintPage(out, page);
  if (!file.complaint.empty()) out << "  not read   " << file.complaint << '\n';
  return out.str();
}

std::string RecordOf(const Page& page) {
  const Account& a = page.account;
  std::ostringstream out;
  out << "{\"page\": " << a.page << ", \"width\": " << a.width << ", \"height\": " << a.height
      << ", \"kind\": " << JsonText(a.kind) << ", \"bitsPerSample\": " << a.bits
      << ", \"samplesPerPixel\": " << a.samples << ", \"byteOrder\": " << JsonText(a.byteOrder)
      << ", \"compression\": " << JsonText(a.compression) << ", \"layout\": " << JsonText(a.layout)
      << ", \"meaning\": " << JsonText(a.meaning) << ", \"orientation\": " << a.orientation
      << ", \"alpha\": " << JsonText(a.alpha) << ", \"colours\": " << a.colours
      << ", \"resolution\": " << JsonText(a.resolution);
  if (!page.complaint.empty()) {
    out << ", \"error\": " << JsonText(page.complaint);
  } else {
    out << ", \"readAs\": " << JsonText(page.type) << ", \"losses\": " << JsonTexts(a.losses)
        << ", \"scale\": {\"x\": " << Exact(page.scaleX) << ", \"y\": " << Exact(page.scaleY)
        << "}";
  }
  if (page.values && page.values->finite > 0) {
    out << ", \"values\": {\"low\": " << Exact(page.values->low)
        << ", \"high\": " << Exact(page.values->high) << ", \"mean\": " << Exact(page.values->mean)
        << ", \"undefined\": " << page.values->others << "}";
  }
  return out.str() + "}";
}

std::string RecordOf(const std::string& name, const File& file) {
  std::string record = "  {\"file\": " + JsonText(name) +
                       ", \"format\": " + JsonText(file.pages.front().account.format) +
                       ", \"bytes\": " + std::to_string(file.bytes) +
                       ", \"pages\": " + std::to_string(file.pages.front().account.pages);
  if (!file.complaint.empty()) record += ", \"error\": " + JsonText(file.complaint);
  record += ", \"pictures\": [";
  for (const Page& page : file.pages) {
    record += (&page == &file.pages.front() ? "\n    " : ",\n    ") + RecordOf(page);
  }
  return record + "]}";
}

}  // namespace

int Run(const InfoCommand& command) {
  int status = ALL_WELL;
  if (command.json) std::cout << "{\"files\": [";
  bool first = true;
  for (const std::string& name : command.files) {
    if (Interrupted() != 0) break;
    std::string text;
    try {
      const File file = ReadFile(name);
      if (!file.AllRead()) status = SOME_FAILED;
      text = command.json ? RecordOf(name, file) : TableOf(name, file);
    } catch (const std::exception& failure) {
      std::cout.flush();
      PrintFailure(name, failure);
      status = SOME_FAILED;
      text = command.json ? JsonFailure(name, failure.what()) : "";
    }
    if (command.json) std::cout << (first ? "\n" : ",\n");
    std::cout << text;
    first = false;
  }
  if (command.json) std::cout << "]}\n";
  return status;
}

}  // namespace front
