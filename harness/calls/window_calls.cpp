// Windows, tools and events, with a desktop in memory on which a person does anything.
#include <iterator>

#include "harness/calls/calls.h"
#include "harness/calls/draws.h"
#include "platform/memory_desktop.h"

namespace test {
namespace {

using namespace draw;

constexpr int64_t MOST_PIXELS = 1 << 16;

int32_t Window(Playground& play) {
  const int32_t kind = Below<64>(play);
  if (kind == 0) return Int(play);
  return kind < 48 ? kind % 4 : Below<24>(play);
}

int32_t Attribute(Playground& play) {
  constexpr int32_t known[] = {530, 531, 532, 533, 540, 551, 560, 571,
                               580, 581, 593, 599, 600, 601, 615};
  const int32_t kind = Below<32>(play);
  if (kind == 0) return Int(play);
  return kind < 20 ? known[static_cast<size_t>(kind) % std::size(known)] : 990000 + kind % 9;
}

int32_t Small(Playground& play) {
  return Below<8>(play) == 0 ? Int(play) : Below<128>(play) - 16;
}

int32_t Tool(Playground& play) {
  return Below<16>(play) == 0 ? Int(play) : Below<13>(play);
}

// What a person does next: a press, what the pointer does then, and other events.
void Script(Playground& play) {
  zel::DesktopFaultsGet()->mostPixels = MOST_PIXELS;
  zel::MemoryDesktopTicks(static_cast<uint32_t>(Below<256>(play)));
  const int32_t deeds = Below<6>(play);
  for (int32_t i = 0; i < deeds; i++) {
    zel::DesktopEvent event;
    event.kind = static_cast<zel::DesktopEventKind>(Below<10>(play));
    event.window = Below<4>(play) == 0 ? Below<23>(play) : Below<2>(play);
    event.x = Below<256>(play);
    event.y = Below<256>(play);
    event.modifiers = Below<32>(play);
    event.key = Below<2>(play) == 0 ? 8 : Int(play);
    event.left = Int(play);
    event.width = Small(play);
    event.height = Small(play);
    zel::MemoryDesktopPost(event);
    const int32_t samples = Below<4>(play);
    for (int32_t sample = 0; sample < samples; sample++) {
      const struct {
        int32_t x, y, kind;
      } at{Below<256>(play) + Below<64>(play) - 32, Below<256>(play), Below<4>(play)};
      zel::MemoryDesktopPointer(at.kind == 0 ? Int(play) : at.x, at.y, at.kind != 1);
    }
  }
}

template <int32_t (*call)(Playground&)>
int32_t WithScript(Playground& play) {
  Script(play);
  return call(play);
}

int32_t Command(Playground& play) {
  constexpr int32_t composites[] = {1,  2,   3,   5,   9,   10,  12,   20,   30,   70,
                                    72, 100, 112, 200, 310, 400, 1000, 5012, 9000, 10000};
  // The address of a record is another one in each process.
  constexpr int32_t address = -42;
  const int32_t kind = Below<128>(play);
  if (kind == 0) return Int(play);
  if (kind < 32) return composites[static_cast<size_t>(kind) % std::size(composites)];
  if (kind < 80) return kind - 32 == -address ? 0 : 32 - kind;
  return kind < 90 ? -95 - kind % 10 : -30;
}

int32_t Manage(Playground& play) {
  struct {
    int32_t window, command, count, room;
  } a{Window(play), Command(play), Below<12>(play), Below<40>(play)};
  if (Below<32>(play) == 0) a.count = 265 + Below<8>(play);
  auto* input = play.OutputOf<int32_t>(static_cast<size_t>(a.count));
  for (int32_t i = 0; input && i < a.count; i++) input[i] = Small(play);
  if (input && a.count > 6 && Below<2>(play) == 0) {
    input[4] = ROI_MARKER_EXTERNAL;
    input[5] = Tool(play);
  }
  play.model().Gives(input);
  auto* output = play.OutputOf<int32_t>(static_cast<size_t>(a.room));
  int32_t* window = Below<64>(play) == 0 ? nullptr : &a.window;
  return ZEL_DisplayManager(window, a.command, input, a.count, output, a.room);
}

const char* Title(Playground& play) {
  constexpr const char* titles[] = {nullptr, "", "a", "a title that is longer than others are"};
  return titles[Below<4>(play)];
}

int32_t Draw(Playground& play) {
  return Call<ZEL_WindDraw, Source, Window, Title, Below<2>>(play);
}

int32_t SetPalette(Playground& play) {
  const struct { int32_t window, kind; } a{Window(play), Below<7>(play) - 1};
  return ZEL_WSetPalette(a.window, a.kind, play.ArrayOf<RGBValue>(256));
}

// A title is read from an address.
intptr_t Value(Playground& play, int32_t attribute) {
  if (attribute == WATTR_TITLE) return reinterpret_cast<intptr_t>(Title(play));
  return Small(play);
}

int32_t SetAttribute(Playground& play) {
  const struct {
    int32_t window, attribute;
  } a{Window(play), Below<16>(play) == 0 ? int32_t{WATTR_TITLE} : Attribute(play)};
  return ZEL_SetWindowAttribute(a.window, a.attribute, Value(play, a.attribute));
}

int32_t SetToolsAttribute(Playground& play) {
  const int32_t attribute = Below<8>(play) == 0 ? int32_t{WATTR_TITLE} : Attribute(play);
  return ZEL_SetWindToolsAttribute(attribute, Value(play, attribute));
}

int32_t SetPair(Playground& play) {
  return Call<ZEL_SetWindow2DAttributes, Window, Attribute, Small, Small>(play);
}

int32_t ToolsSetup(Playground& play) {
  const struct {
    int32_t coordinates, count, perRow;
  } a{Below<2>(play), Below<16>(play), Small(play)};
  auto* tools = play.OutputOf<int32_t>(static_cast<size_t>(a.count));
  for (int32_t i = 0; tools && i < a.count; i++) tools[i] = Tool(play);
  play.model().Gives(tools);
  return ZEL_WindToolsSetup(a.coordinates, tools, a.count, a.perRow);
}

// Calls back, and even closes the window.
void CallBack(WindowEvent* event, uintptr_t data) {
  int32_t window = event->window;
  switch (data % 4) {
    case 0:
      ZEL_WindClose(window, 0);
      return;
    case 1:
      ZEL_ClearWROI(window);
      return;
    case 2:
      ZEL_DisplayManager(&window, 300, nullptr, 0, nullptr, 0);
      return;
    default:
      ZEL_GetLastEvent(event);
  }
}

int32_t InstallCallback(Playground& play) {
  const struct {
    int32_t window;
    uint32_t data;
  } a{Below<4>(play) == 0 ? -1 : Window(play), Word(play)};
  // Mostly there is a window to install it on.
  if (Below<4>(play) != 0) ZEL_WindDraw(0, Below<4>(play), nullptr, 0);
  ZEL_GetLastError(nullptr);
  return ZEL_InstallWCallback(a.window, Below<8>(play) == 0 ? nullptr : &CallBack, a.data);
}

int32_t SetRegion(Playground& play) {
  const int32_t contours = Below<4>(play);
  std::vector<int32_t> values;
  for (int32_t side = 0; side < 4; side++) values.push_back(Small(play));
  for (int32_t i = 0; i < contours; i++) {
    values.push_back(ROI_MARKER_EXTERNAL);
    values.push_back(Tool(play));
    const int32_t points = Below<5>(play);
    for (int32_t point = 0; point < 2 * points; point++) values.push_back(Small(play));
  }
  RoiDescriptor* region = nullptr;
  ZEL_ArrayToROI(values.data(), static_cast<int32_t>(values.size()), &region);
  const int32_t result = ZEL_SetWROI(Window(play), region);
  ZEL_FreeROI(region);
  return result;
}

int32_t GetRegion(Playground& play) {
  RoiDescriptor* region = nullptr;
  const int32_t window = Window(play);
  const int32_t result = ZEL_GetWROI(window, Below<16>(play) == 0 ? nullptr : &region);
  ZEL_FreeROI(region);
  return result;
}

int32_t StandardTools(Playground&) {
  return ZEL_Get_WT_STDLIST()[0] - WTOOL_POINT;
}

constexpr ApiCall ROWS[] = {
    {136, "ZEL_DisplayManager", WithScript<Manage>, STATUS, {}, "ZEL_WindManager"},
    {137, "ZEL_WindDraw", WithScript<Draw>},
    {138, "ZEL_WSetPalette", WithScript<SetPalette>},
    {139, "ZEL_SetWindowAttribute", WithScript<SetAttribute>},
    {140, "ZEL_GetWindowAttribute",
     Call<ZEL_GetWindowAttribute, Window, Attribute, Output<int32_t>>},
    {141, "ZEL_SetWindow2DAttributes", WithScript<SetPair>},
    {142, "ZEL_GetWindow2DAttributes",
     Call<ZEL_GetWindow2DAttributes, Window, Attribute, Output<int32_t>, Output<int32_t>>},
    {143, "ZEL_WindClose", Call<ZEL_WindClose, Window, Below<2>>},
    {144, "ZEL_GetWindowIDs", Call<ZEL_GetWindowIDs, Window, Output<int32_t>, Output<int32_t>>},
    {145, "ZEL_SetWParent", Call<ZEL_SetWParent, Window, Int>},
    {146, "ZEL_WindToolsSetup", ToolsSetup},
    {147,
     "ZEL_SetWindToolsAttribute",
     WithScript<SetToolsAttribute>,
     STATUS,
     {},
     "ZEL_SetWindToosAttribute"},
    {148, "ZEL_GetWindToolsAttribute", Call<ZEL_GetWindToolsAttribute, Attribute, Output<int32_t>>},
    {149, "ZEL_SetActiveTool", Call<ZEL_SetActiveTool, Tool>},
    {150, "ZEL_GetActiveTool", Call<ZEL_GetActiveTool, Output<int32_t>>},
    {151, "ZEL_WindToolsClose", Call<ZEL_WindToolsClose>},
    {152, "ZEL_Get_WT_STDLIST", StandardTools, NO_STATUS},
    {153, "ZEL_InstallWCallback", InstallCallback},
    {154, "ZEL_RemoveWCallback", Call<ZEL_RemoveWCallback, Window>},
    {155, "ZEL_GetLastEvent", WithScript<Call<ZEL_GetLastEvent, Output<WindowEvent>>>, NO_STATUS},
    {156, "ZEL_GetLastWEvent", WithScript<Call<ZEL_GetLastWEvent, Window, Output<WindowEvent>>>,
     NO_STATUS},
    {157, "ZEL_SetWROI", SetRegion},
    {158, "ZEL_GetWROI", GetRegion},
    {159, "ZEL_ClearWROI", WithScript<Call<ZEL_ClearWROI, Window>>, STATUS, {}, "ZEL_ClearROI"},
};

}  // namespace

constinit const std::span<const ApiCall> WINDOW_CALLS{ROWS};

}  // namespace test
