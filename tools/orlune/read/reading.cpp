// Reports and marked pictures of readings.
#include "orlune/read/reading.h"

#include <iostream>
#include <stdexcept>

#include "pictures/source.h"

namespace front {

std::ostream& LinesOf(const ReadFiles& command) {
  const bool isTaken = command.csv == STANDARD_STREAM || command.json == STANDARD_STREAM;
  return isTaken ? std::cerr : std::cout;
}

std::unique_ptr<WholeFile> OpenReport(const std::string& path) {
  return path.empty() ? nullptr : std::make_unique<WholeFile>(path);
}

std::vector<std::string> PlanReading(const ReadFiles& command, FilePlan* plan) {
  for (const std::string& file : command.files) plan->Reads(file, "a picture to be read");
  if (!command.csv.empty()) plan->Writes(command.csv, "the CSV report");
  if (!command.json.empty()) plan->Writes(command.json, "the JSON report");
  std::vector<std::string> marked;
  if (command.annotate.empty()) return marked;
  NamesInFolder names(command.annotate, "-read.bmp");
  for (const std::string& file : command.files) {
    marked.push_back(names.NameFor(file));
    plan->Writes(marked.back(), "the annotated picture of " + file);
  }
  return marked;
}

void WriteMarked(const Image& picture, const std::vector<Stroke>& strokes,
                 const std::string& path) {
  const Image gray = Stretch(picture, ExtremesOf(picture));
  Image others(IMAGE_U8);
  Image green(IMAGE_U8);
  Check(ZEL_Copy(gray, others));
  Check(ZEL_Copy(gray, green));
  for (const Stroke& s : strokes) {
    Check(ZEL_DrawLine(others, 0, s.x1, s.y1, s.x2, s.y2, DRAW_FRAME, 0));
    Check(ZEL_DrawLine(green, 0, s.x1, s.y1, s.x2, s.y2, DRAW_FRAME, 255));
  }
  const ImageInfo info = gray.Info();
  Image marked(IMAGE_RGB, 0, info.width, info.height);
  Check(ZEL_ReplaceColorPlanes(marked, marked, others, green, others, MODE_RGB));
  WritePicture(marked, {}, Depth::AsImage, path, PictureFormat::Bmp);
}

int RunTold(const std::function<int()>& command) {
  try {
    return command();
  } catch (const std::invalid_argument& error) {
    std::cerr << "orlune: " << error.what() << '\n';
    return BAD_USE;
  } catch (const std::exception& failure) {
    std::cerr << "orlune: " << failure.what() << '\n';
    return SOME_FAILED;
  }
}

}  // namespace front
