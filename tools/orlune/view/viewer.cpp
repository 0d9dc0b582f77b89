// What a person does in the viewer, and what it shows of it.
#include "orlune/view/viewer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>

#include "orlune/shared/numbers.h"
#include "orlune/shared/output.h"
#include "orlune/view/text_panel.h"

namespace front {
namespace {

constexpr int32_t TOOLS_LEFT = 20;
constexpr int32_t WINDOWS_TOP = 40;
constexpr int32_t PICTURE_LEFT = 130;
constexpr int32_t TOOLS_PER_ROW = 3;
constexpr int32_t GAP = 20;          // between windows
constexpr double SCREEN_PART = 0.7;  // of its height and width, that a picture may take
constexpr int32_t SMALL_SIDE = 400;  // pictures are enlarged up to it
constexpr int32_t LEAST_ZOOM = -16;
constexpr int32_t MOST_ZOOM = 32;
constexpr int THRESHOLD_STEPS = 64;  // from the darkest to the brightest pixel

constexpr RGBValue REGION_COLOUR = 0xFF9600;
constexpr RGBValue OBJECT_COLOUR = 0x20E850;
constexpr char LABEL_FONT[] = "DejaVu Sans";
constexpr int32_t LABEL_SIZE = 14;
constexpr size_t LABEL_LINES = 4;  // the list of particles would hide the picture

enum KeyNumber : int32_t {
  KEY_ESCAPE = 27,
  KEY_PAGE_UP = 0xFF55,
  KEY_PAGE_DOWN = 0xFF56,
  KEY_F1 = 0xFFBE,
};

// A command of the window manager, and its answer.
template <size_t count>
std::array<int32_t, count> Ask(int32_t window, int32_t command) {
  std::array<int32_t, count> answer{};
  Check(
      ZEL_DisplayManager(&window, command, nullptr, 0, answer.data(), static_cast<int32_t>(count)));
  return answer;
}

void Tell(int32_t window, int32_t command) {
  Check(ZEL_DisplayManager(&window, command, nullptr, 0, nullptr, 0));
}

bool IsOpen(int32_t window) {
  int32_t panel = 0;
  Check(ZEL_GetWindowIDs(window, &panel, nullptr));
  return panel != 0;
}

struct Extent {
  int32_t width, height;
};

Extent ScreenExtent() {
  const auto answer = Ask<4>(PICTURE_WINDOW, -39);
  return {static_cast<int32_t>(answer[0] * SCREEN_PART),
          static_cast<int32_t>(answer[1] * SCREEN_PART)};
}

int32_t Zoomed(int32_t pixels, int32_t zoom) {
  return zoom < 0 ? pixels / -zoom : pixels * std::min(zoom, INT32_MAX / std::max(pixels, 1));
}

bool Fits(const ImageInfo& info, int32_t zoom, const Extent& room) {
  return Zoomed(info.width, zoom) <= room.width && Zoomed(info.height, zoom) <= room.height;
}

// The largest that shows the picture whole; small ones are enlarged a little.
int32_t FittingZoom(const ImageInfo& info, const Extent& screen) {
  const Extent small{std::min(SMALL_SIDE, screen.width), std::min(SMALL_SIDE, screen.height)};
  for (int32_t zoom = 8; zoom > 1; --zoom) {
    if (Fits(info, zoom, small)) return zoom;
  }
  for (int32_t zoom = 1; zoom > LEAST_ZOOM; zoom = zoom == 1 ? -2 : zoom - 1) {
    if (Fits(info, zoom, screen)) return zoom;
  }
  return LEAST_ZOOM;
}

int32_t ZoomOf(int32_t window) {
  int32_t vertical = 1;
  int32_t horizontal = 1;
  Check(ZEL_GetWindow2DAttributes(window, WATTR2_ZOOM, &vertical, &horizontal));
  return vertical == -1 ? 1 : vertical;
}

std::string ZoomName(int32_t zoom) {
  return zoom > 0 ? std::to_string(zoom) + ":1" : "1:" + std::to_string(-zoom);
}

// A gray picture in the colours of print, or a copy of one in colour.
Image InColour(const ViewedPicture& picture) {
  const Image& shown = picture.loaded.colours ? *picture.loaded.colours : picture.Bytes();
  const ImageInfo from = shown.Info();
  Image copy(IMAGE_RGB, 0, from.width, from.height);
  const ImageInfo to = copy.Info();
  for (int32_t y = 0; y < from.height; ++y) {
    RGBValue* row = Row<RGBValue>(to, y);
    if (from.type == IMAGE_RGB) {
      std::copy_n(Row<RGBValue>(from, y), from.width, row);
    } else {
      std::transform(Row<uint8_t>(from, y), Row<uint8_t>(from, y) + from.width, row,
                     [](uint8_t level) { return level * RGBValue{0x010101}; });
    }
  }
  return copy;
}

void PaintWhere(const Image& mask, RGBValue colour, const Image& picture) {
  const ImageInfo info = picture.Info();
  for (int32_t y = 0; y < info.height; ++y) {
    const uint8_t* set = Row<uint8_t>(mask.Info(), y);
    RGBValue* row = Row<RGBValue>(info, y);
    std::transform(set, set + info.width, row, row,
                   [colour](uint8_t is, RGBValue pixel) { return is != 0 ? colour : pixel; });
  }
}

void PaintOutlines(const Labels& labels, const Image& picture) {
  const LabelPicture numbers(labels);
  const ImageInfo info = picture.Info();
  for (int32_t y = 0; y < info.height; ++y) {
    const uint32_t* above = numbers.Row(y - 1);
    const uint32_t* here = numbers.Row(y);
    const uint32_t* below = numbers.Row(y + 1);
    RGBValue* row = Row<RGBValue>(info, y);
    for (int32_t x = 0; x < info.width; ++x) {
      const bool isInside = here[x - 1] == here[x] && here[x + 1] == here[x] &&
                            above[x] == here[x] && below[x] == here[x];
      if (here[x] != 0 && !isInside) row[x] = OBJECT_COLOUR;
    }
  }
}

}  // namespace

struct Viewer::Key {
  std::vector<int32_t> numbers;
  std::string names;
  std::string meaning;
  void (Viewer::*act)();
};

const std::vector<Viewer::Key>& Viewer::Keys() {
  static const std::vector<Key> KEYS = {
      {{'n', ' ', KEY_PAGE_DOWN}, "n, space", "next picture", &Viewer::Next},
      {{'p', KEY_PAGE_UP}, "p", "previous picture", &Viewer::Previous},
      {{'+', '='}, "+", "zoom in", &Viewer::ZoomIn},
      {{'-'}, "-", "zoom out", &Viewer::ZoomOut},
      {{'0'}, "0", "a pixel for each pixel", &Viewer::ZoomOne},
      {{'f'}, "f", "the whole picture", &Viewer::ZoomFit},
      {{'1'}, "1", "colours: gray", &Viewer::UsePalette<PALETTE_GRAY>},
      {{'2'}, "2", "colours: fifteen in turn", &Viewer::UsePalette<PALETTE_BINARY>},
      {{'3'}, "3", "colours: gradient", &Viewer::UsePalette<PALETTE_GRADIENT>},
      {{'4'}, "4", "colours: rainbow", &Viewer::UsePalette<PALETTE_RAINBOW>},
      {{'5'}, "5", "colours: temperature", &Viewer::UsePalette<PALETTE_TEMPERATURE>},
      {{']'}, "]", "raise the threshold", &Viewer::Raise},
      {{'['}, "[", "lower the threshold", &Viewer::Lower},
      {{'a'}, "a", "find the threshold by the method", &Viewer::UseMethod},
      {{'m'}, "m", "another method", &Viewer::NextMethod},
      {{'d'}, "d", "objects are dark, or light", &Viewer::SwapSides},
      {{'x'}, "x", "mark what is found in the picture, or not", &Viewer::ToggleMarks},
      {{'w'}, "w", "write the measures as text", &Viewer::WriteReport},
      {{'o'}, "o", "write the region as options of orlune inspect", &Viewer::WriteOptions},
      {{'s'}, "s", "save a marked copy", &Viewer::Save},
      {{'c'}, "c", "copy it to the clipboard", &Viewer::Copy},
      {{'h', '?', KEY_F1}, "h, F1", "this list, or not", &Viewer::ToggleHelp},
      {{'q', KEY_ESCAPE}, "q, escape", "leave", &Viewer::Leave},
  };
  return KEYS;
}

std::vector<std::string> Viewer::KeyLines() {
  size_t widest = 0;
  for (const Key& key : Keys()) widest = std::max(widest, key.names.size());
  std::vector<std::string> lines;
  for (const Key& key : Keys()) {
    lines.push_back(key.names + std::string(widest + 2 - key.names.size(), ' ') + key.meaning);
  }
  return lines;
}

Viewer::~Viewer() {
  // Windows show images of this viewer's: they go first. What fails here fails for want of windows.
  for (const int32_t window : {PICTURE_WINDOW, REPORT_WINDOW, HELP_WINDOW}) {
    int32_t panel = 0;
    ZEL_GetWindowIDs(window, &panel, nullptr);
    if (panel != 0) ZEL_WindClose(window, 0);
  }
  ZEL_WindToolsClose();
}

bool Viewer::Open() {
  if (!Show(0, 1)) return false;
  Check(ZEL_WindToolsSetup(1, nullptr, 0, TOOLS_PER_ROW));
  Check(ZEL_SetWindToolsAttribute(WATTR_LEFT, TOOLS_LEFT));
  Check(ZEL_SetWindToolsAttribute(WATTR_TOP, WINDOWS_TOP));
  Check(ZEL_SetWindToolsAttribute(WATTR_VISIBLE, 1));
  Check(ZEL_SetActiveTool(WTOOL_RECT));
  Tell(PICTURE_WINDOW, 30);
  return true;
}

Viewer::Turn Viewer::Look() {
  WindowEvent event{};
  const int32_t taken = ZEL_GetLastWEvent(PICTURE_WINDOW, &event);
  if (taken < 0) Check(taken);
  if (event.type == WEVENT_CLOSE || !IsOpen(PICTURE_WINDOW)) return Turn::DONE;
  if (event.type == WEVENT_DRAW || (event.type == WEVENT_CLICK && event.tool == WTOOL_POINT)) {
    Measure();
  }
  if (event.type == WEVENT_CLICK && event.tool == WTOOL_ZOOM) SetTitle();
  const bool hasKey = TakeKey();
  if (isDone_) return Turn::DONE;
  return taken > 0 || hasKey ? Turn::BUSY : Turn::IDLE;
}

void Viewer::Complain(const std::string& file, const std::exception& failure) {
  complaints_ << "orlune: " << file << ": " << failure.what() << '\n';
  hasFailed_ = true;
}

// ---- pictures

// The next one that can be read, from a place in the list on, around its end.
bool Viewer::Show(size_t first, int step) {
  const size_t files = settings_.files.size();
  for (size_t tried = 0; tried < files; ++tried) {
    const size_t place = (first + (step > 0 ? tried : tried * (files - 1))) % files;
    std::optional<ViewedPicture> read;
    try {
      read = ReadViewed(settings_.files[place], settings_.inspect.swapBytes);
    } catch (const std::exception& failure) {
      Complain(settings_.files[place], failure);
      continue;
    }
    picture_.swap(read);  // the former one stays until the window shows this one
    at_ = place;
    threshold_.reset();
    report_ = {};
    region_.reset();
    if (IsOpen(PICTURE_WINDOW)) Check(ZEL_ClearWROI(PICTURE_WINDOW));
    ShowPixels();
    ZoomFit();
    Measure();
    return true;
  }
  return false;
}

void Viewer::ShowPixels() {
  std::optional<Image> marked;
  if (showsMarks_ && region_) marked = Marked();
  const Image& shown = marked ? *marked : picture_->Shown();
  const bool isNew = !IsOpen(PICTURE_WINDOW);
  Check(ZEL_WindDraw(shown, PICTURE_WINDOW, nullptr, 0));
  marked_ = std::move(marked);
  if (isNew) {
    Check(ZEL_SetWindow2DAttributes(PICTURE_WINDOW, WATTR2_POSITION, WINDOWS_TOP, PICTURE_LEFT));
  }
}

void Viewer::SetTitle() const {
  const std::string name = std::filesystem::path(picture_->path).filename().string();
  std::string title =
      name + "  " + HeadLine(picture_->loaded.account) + "  " + ZoomName(ZoomOf(PICTURE_WINDOW));
  if (settings_.files.size() > 1) {
    title =
        "[" + std::to_string(at_ + 1) + "/" + std::to_string(settings_.files.size()) + "] " + title;
  }
  Check(ZEL_SetWindowAttribute(PICTURE_WINDOW, WATTR_TITLE,
                               reinterpret_cast<intptr_t>(title.c_str())));
}

// ---- zoom

void Viewer::LayOut() {
  const ImageInfo info = picture_->Shown().Info();
  const Extent room = ScreenExtent();
  const int32_t zoom = ZoomOf(PICTURE_WINDOW);
  const int32_t bars = Fits(info, zoom, room) ? 0 : 1;
  Check(ZEL_SetWindowAttribute(PICTURE_WINDOW, WATTR_SCROLLBARS, bars));
  Check(ZEL_SetWindow2DAttributes(PICTURE_WINDOW, WATTR2_SIZE,
                                  std::clamp(Zoomed(info.height, zoom), 1, room.height),
                                  std::clamp(Zoomed(info.width, zoom), 1, room.width)));
  SetTitle();
}

void Viewer::ZoomTo(int32_t zoom) {
  Check(ZEL_SetWindow2DAttributes(PICTURE_WINDOW, WATTR2_ZOOM, zoom, zoom));
  LayOut();
}

void Viewer::ZoomFit() {
  ZoomTo(FittingZoom(picture_->Shown().Info(), ScreenExtent()));
}

void Viewer::ZoomIn() {
  const int32_t zoom = ZoomOf(PICTURE_WINDOW);
  ZoomTo(zoom > 0 ? std::min(2 * zoom, MOST_ZOOM) : zoom >= -3 ? (zoom == -3 ? -2 : 1) : zoom / 2);
}

void Viewer::ZoomOut() {
  const int32_t zoom = ZoomOf(PICTURE_WINDOW);
  ZoomTo(zoom > 1 ? zoom / 2 : zoom == 1 ? -2 : std::max(2 * zoom, LEAST_ZOOM));
}

// ---- measures

void Viewer::Measure() {
  RoiDescriptor* region = nullptr;
  Check(ZEL_GetWROI(PICTURE_WINDOW, &region));
  region_.reset(region);
  MeasureAgain();
}

void Viewer::MeasureAgain() {
  if (threshold_) {
    const auto [low, high] = LevelsOf(picture_->loaded.account, picture_->loaded.image.Info().type);
    settings_.inspect.range = settings_.inspect.dark
                                  ? Range{std::max(low, picture_->extremes.low), *threshold_}
                                  : Range{*threshold_, std::min(high, picture_->extremes.high)};
  } else {
    settings_.inspect.range.reset();
  }
  try {
    report_ = ReportOn(*picture_, *region_, settings_.inspect);
  } catch (const std::runtime_error& failure) {  // more particles than can be told apart
    report_ = {};
    report_.lines = {failure.what()};
  }
  if (showsMarks_) ShowPixels();
  ShowReport();
}

void Viewer::ShowReport() {
  std::optional<Image> panel = DrawPanel({report_.lines, report_.profile, report_.edges});
  if (!panel) {
    if (!hasTold_) {
      complaints_ << "orlune: no font is installed: measures are shown by the key w alone\n";
    }
    hasTold_ = true;
    return;
  }
  const bool isNew = !IsOpen(REPORT_WINDOW);
  Check(ZEL_WindDraw(*panel, REPORT_WINDOW, "Measures", 1));
  reportPanel_ = std::move(panel);
  if (!isNew) return;
  int32_t height = 0;
  int32_t width = 0;
  Check(ZEL_GetWindow2DAttributes(PICTURE_WINDOW, WATTR2_SIZE, &height, &width));
  Check(ZEL_SetWindow2DAttributes(REPORT_WINDOW, WATTR2_POSITION, WINDOWS_TOP,
                                  PICTURE_LEFT + width + GAP));
}

void Viewer::ChangeThreshold(int steps) {
  const Extremes& levels = picture_->extremes;
  if (!threshold_) {
    const std::optional<Range> found =
        report_.inspection ? report_.inspection->objects : std::nullopt;
    threshold_ = !found                   ? (levels.low + levels.high) / 2
                 : settings_.inspect.dark ? found->high
                                          : found->low;
  }
  double step = (levels.high - levels.low) / THRESHOLD_STEPS;
  if (picture_->loaded.image.Info().type != IMAGE_SGL) {
    step = std::max(std::round(step), 1.0);
    threshold_ = std::round(*threshold_);
  }
  threshold_ = std::clamp(*threshold_ + steps * step, levels.low, levels.high);
  MeasureAgain();
}

void Viewer::UseMethod() {
  threshold_.reset();
  MeasureAgain();
}

void Viewer::NextMethod() {
  const std::vector<MethodRow>& methods = AllMethods();
  const auto next = (static_cast<size_t>(settings_.inspect.method) + 1) % methods.size();
  settings_.inspect.method = methods[next].method;
  UseMethod();
}

void Viewer::SwapSides() {
  settings_.inspect.dark = !settings_.inspect.dark;
  MeasureAgain();
}

// ---- marks

Image Viewer::Marked() const {
  Image picture = InColour(*picture_);
  if (report_.inspection) PaintOutlines(report_.inspection->labels, picture);
  PaintWhere(OutlinesOf(*region_, picture), REGION_COLOUR, picture);
  return picture;
}

void Viewer::ToggleMarks() {
  showsMarks_ = !showsMarks_;
  ShowPixels();
}

void Viewer::Save() {
  try {
    const std::string name = NamesInFolder(settings_.folder, "-marked.png").NameFor(picture_->path);
    FilePlan plan;
    for (const std::string& file : settings_.files) plan.Reads(file, "a picture to be viewed");
    plan.Writes(name, "the marked copy");
    const Image copy = Marked();
    std::string label;
    for (size_t i = 0; i < std::min(report_.lines.size(), LABEL_LINES); ++i) {
      label += (i == 0 ? "" : "\r") + report_.lines[i];
    }
    // Without fonts the marks are all that there is.
    ZEL_DrawText(copy, 0, region_->globalRect.left + 2, region_->globalRect.top + 2,
                 TEXT_BLACK_ON_WHITE, label.c_str(), LABEL_SIZE, 0, TEXT_ALIGN_LEFT, LABEL_FONT,
                 nullptr);
    MakeFolder(settings_.folder);
    WritePicture(copy, {}, Depth::AsImage, name, PictureFormat::Png);
    out_ << "saved " << name << std::endl;
  } catch (const LibraryFailure&) {
    throw;
  } catch (const std::exception& failure) {
    Complain(picture_->path, failure);
  }
}

void Viewer::Copy() {
  Check(ZEL_ImageToClipboard(Marked(), nullptr));
}

// ---- texts

void Viewer::WriteReport() {
  out_ << picture_->path << '\n';
  for (const std::string& line : report_.lines) out_ << "  " << line << '\n';
  out_ << std::flush;
}

void Viewer::WriteOptions() {
  out_ << InspectCommandLine(*picture_, *region_, settings_.inspect) << std::endl;
}

void Viewer::ToggleHelp() {
  if (IsOpen(HELP_WINDOW)) {
    Check(ZEL_WindClose(HELP_WINDOW, 0));
    helpPanel_.reset();
    return;
  }
  std::vector<std::string> lines = KeyLines();
  lines.insert(lines.end(), {"", "With the mouse: choose a tool, and draw in the picture.",
                             "Shift adds to the region, control drags it, backspace clears it."});
  helpPanel_ = DrawPanel({lines, {}, {}});
  if (!helpPanel_) {
    for (const std::string& line : lines) out_ << line << '\n';
    out_ << std::flush;
    return;
  }
  Check(ZEL_WindDraw(*helpPanel_, HELP_WINDOW, "Keys", 1));
}

// ---- keys

bool Viewer::TakeKey() {
  enum { WINDOW, IS_NEW, KEY };
  const auto key = Ask<5>(PICTURE_WINDOW, -36);
  if (key[IS_NEW] == 0) return false;
  PressKey(key[KEY]);
  return true;
}

void Viewer::PressKey(int32_t number) {
  constexpr int32_t BACKSPACE = 8;
  if (number == BACKSPACE) return Measure();  // the window has forgotten its region by then
  for (const Key& key : Keys()) {
    const bool isMeant =
        std::find(key.numbers.begin(), key.numbers.end(), number) != key.numbers.end();
    if (isMeant) return (this->*key.act)();
  }
}

}  // namespace front
