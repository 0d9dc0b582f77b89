// orlune read barcode: reads the bar code in each of some picture files.
#include <cmath>
#include <iostream>
#include <memory>

#include "orlune/command/commands.h"
#include "orlune/read/reading.h"
#include "orlune/shared/interrupts.h"
#include "orlune/shared/numbers.h"
#include "orlune/shared/parcel.h"
#include "orlune/shared/progress.h"
#include "orlune/shared/readable.h"
#include "orlune/shared/reports.h"
#include "orlune/shared/tasks.h"
#include "pictures/source.h"

namespace front {
namespace {

constexpr char CSV_HEAD[] = "File,Kind,Text,Left,Top,Width,Height,Angle,Backward,Readings\n";

// What there is to say of a file, made where it was read and told where all come together.
struct FileResult {
  bool read = false, failed = false;
  bool pictureFailed = false;  // the annotated one
  std::string line, csv, json;
  std::string complaints;  // lines for standard error

  std::string Pack() const {
    ParcelWriter parcel;
    parcel.Put(read).Put(failed).Put(pictureFailed).Put(line).Put(csv).Put(json).Put(complaints);
    return parcel.Take();
  }
  static FileResult Unpack(const std::string& bytes) {
    ParcelReader parcel(bytes);
    FileResult result;
    result.read = parcel.Get<bool>();
    result.failed = parcel.Get<bool>();
    result.pictureFailed = parcel.Get<bool>();
    result.line = parcel.Text();
    result.csv = parcel.Text();
    result.json = parcel.Text();
    result.complaints = parcel.Text();
    return result;
  }
};

// Bytes that do not print stand as \x and two digits.
std::string Shown(const std::string& text) {
  constexpr char HEX[] = "0123456789ABCDEF";
  std::string shown;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= 0x20 && byte < 0x7F) {
      shown += c;
    } else {
      shown += {'\\', 'x', HEX[byte >> 4], HEX[byte & 15]};
    }
  }
  return shown;
}

std::string CsvRow(const std::string& path, BarcodeKind kind,
                   const std::optional<BarcodeReading>& reading) {
  std::string row = CsvText(path) + ',' + std::string(NameOf(kind)) + ',';
  if (!reading) return row + ",,,,,,,0\n";
  const Region& place = reading->place;
  // Quoted always: spreadsheets would take digits for a number and leave its zeros out.
  std::string text = Shown(reading->text);
  for (size_t at = 0; (at = text.find('"', at)) != std::string::npos; at += 2)
    text.insert(at, "\"");
  row += '"' + text + "\"," + std::to_string(place.left) + ',' + std::to_string(place.top) + ',';
  row += std::to_string(place.width) + ',' + std::to_string(place.height) + ',';
  row += Exact(reading->angle) + ',' + (reading->backward ? "1," : "0,");
  return row + std::to_string(reading->readings) + '\n';
}

std::string JsonRow(const std::string& path, BarcodeKind kind,
                    const std::optional<BarcodeReading>& reading) {
  std::string record = "  {\"file\": " + JsonText(path) +
                       ", \"kind\": " + JsonText(std::string(NameOf(kind))) + ", \"text\": ";
  if (!reading) return record + "null}";
  const Region& place = reading->place;
  record +=
      JsonText(reading->text) + ", \"left\": " + std::to_string(place.left) +
      ", \"top\": " + std::to_string(place.top) + ", \"width\": " + std::to_string(place.width) +
      ", \"height\": " + std::to_string(place.height) + ", \"angle\": " + Exact(reading->angle) +
      ", \"backward\": " + (reading->backward ? "true" : "false") +
      ", \"readings\": " + std::to_string(reading->readings) +
      ", \"attempts\": " + std::to_string(reading->attempts) + "}";
  return record;
}

Image GrayOf(const std::string& path, bool swapBytes) {
  ReadSettings settings;
  settings.form = Form::Gray;
  settings.swapBytes = swapBytes;
  Loaded loaded = ReadPicture(path, settings);
  if (loaded.image.Info().type == IMAGE_U8) return std::move(loaded.image);
  return Stretch(loaded.image, ExtremesOf(loaded.image));
}

// The outline of the code.
std::vector<Stroke> OutlineOf(const BarcodeReading& reading) {
  std::vector<Stroke> strokes;
  const auto pixel = [](float coordinate) { return static_cast<int32_t>(std::lround(coordinate)); };
  for (size_t i = 0; i < reading.corners.size(); ++i) {
    const PointFloat &a = reading.corners[i], &b = reading.corners[(i + 1) % 4];
    strokes.push_back({pixel(a.x), pixel(a.y), pixel(b.x), pixel(b.y)});
  }
  return strokes;
}

// A code that was read stays so when its picture cannot be written.
void WriteMarkedOf(const Image& gray, const std::optional<BarcodeReading>& reading,
                   const std::string& marked, FileResult* result) {
  if (marked.empty()) return;
  try {
    WriteMarked(gray, reading ? OutlineOf(*reading) : std::vector<Stroke>(), marked);
  } catch (const std::exception& failure) {
    result->pictureFailed = true;
    result->complaints += "orlune: " + FailureText(marked, failure) + '\n';
  }
}

// marked: name of the annotated picture, empty for none.
FileResult ReadFile(const std::string& path, const std::string& marked,
                    const BarcodeSettings& settings) {
  FileResult result;
  try {
    const Image gray = GrayOf(path, settings.swapBytes);
    const std::optional<BarcodeReading> reading = FindBarcode(gray, settings);
    result.read = reading.has_value();
    result.line = LineText(path) + ": " + (reading ? Shown(reading->text) : "no code read");
    result.csv = CsvRow(path, settings.kind, reading);
    result.json = JsonRow(path, settings.kind, reading);
    WriteMarkedOf(gray, reading, marked, &result);
  } catch (const std::exception& failure) {
    result = {};
    result.failed = true;
    result.complaints = "orlune: " + FailureText(path, failure) + '\n';
    result.json = JsonFailure(path, failure.what());
  }
  return result;
}

class ReadRun {
 public:
  ReadRun(const ReadBarcodesCommand& command, const std::vector<std::string>& marked)
      : command_(command),
        marked_(marked),
        lines_(LinesOf(command)),
        csv_(OpenReport(command.csv)),
        json_(OpenReport(command.json)),
        progress_(command.files.size()) {}

  int Work() {
    if (!command_.annotate.empty()) MakeFolder(command_.annotate);
    if (csv_) csv_->stream() << CSV_HEAD;
    if (json_) {
      json_->stream() << "{\"program\": \"orlune\", \"version\": \"" << ORLUNE_VERSION
                      << "\",\n \"files\": [";
    }
    RunTasks({.tasks = command_.files.size(),
              .workers = command_.workers,
              .work =
                  [&](size_t task) {
                    const std::string marked = marked_.empty() ? "" : marked_[task];
                    return ReadFile(command_.files[task], marked, command_.settings).Pack();
                  },
              .take =
                  [&](size_t task, std::optional<std::string> result) {
                    Take(result ? FileResult::Unpack(*result) : Lost(task));
                    progress_.Done(task + 1);
                  }});
    progress_.Hide();
    if (json_) {
      json_->stream() << "],\n \"summary\": {\"read\": " << read_ << ", \"unread\": " << unread_
                      << ", \"failed\": " << failed_ << "}}\n";
    }
    if (!command_.quiet) {
      lines_ << Plural(read_, "code") << " read, " << unread_ << " not read, " << failed_
             << " failed\n";
    }
    if (csv_) csv_->Finish();
    if (json_) json_->Finish();
    return read_ == command_.files.size() && !pictureFailed_ ? ALL_WELL : SOME_FAILED;
  }

 private:
  FileResult Lost(size_t task) const {
    const std::string message = "the process that read it was ended";
    FileResult result;
    result.failed = true;
    result.complaints = "orlune: " + command_.files[task] + ": " + message + '\n';
    result.json = JsonFailure(command_.files[task], message);
    return result;
  }

  void Take(const FileResult& result) {
    (result.failed ? failed_ : result.read ? read_ : unread_)++;
    pictureFailed_ = pictureFailed_ || result.pictureFailed;
    if (csv_) csv_->stream() << result.csv;
    if (json_) json_->stream() << (told_++ == 0 ? "\n" : ",\n") << result.json;
    progress_.Hide();
    if (!command_.quiet && !result.line.empty()) {
      lines_ << result.line << '\n';
      if (!lines_) NoteClosedPipe();
    }
    std::cerr << result.complaints;
  }

  const ReadBarcodesCommand& command_;
  const std::vector<std::string>& marked_;
  std::ostream& lines_;
  std::unique_ptr<WholeFile> csv_, json_;
  Progress progress_;
  size_t read_ = 0, unread_ = 0, failed_ = 0, told_ = 0;
  bool pictureFailed_ = false;
};

}  // namespace

int Run(const ReadBarcodesCommand& asked) {
  return RunTold([&] {
    ReadBarcodesCommand command = asked;
    command.files = WithAllPages(asked.files);
    FilePlan plan;
    const std::vector<std::string> marked = PlanReading(command, &plan);
    return ReadRun(command, marked).Work();
  });
}

}  // namespace front
