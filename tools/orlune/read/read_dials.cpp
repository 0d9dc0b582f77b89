// orlune read meter and orlune read lcd: values of gauges in picture files; and the commands that
// write their set-up files.
#include "orlune/read/read_dials.h"

#include <cmath>
#include <functional>
#include <iostream>
#include <memory>

#include "orlune/command/commands.h"
#include "orlune/read/reading.h"
#include "orlune/shared/interrupts.h"
#include "orlune/shared/json_values.h"
#include "orlune/shared/numbers.h"
#include "orlune/shared/progress.h"
#include "orlune/shared/readable.h"
#include "orlune/shared/reports.h"
#include "orlune/shared/words.h"
#include "pictures/source.h"

namespace front {
namespace {

// ---- the library's records

struct FreeRoi {
  void operator()(RoiDescriptor* roi) const { ZEL_FreeROI(roi); }
};
using Roi = std::unique_ptr<RoiDescriptor, FreeRoi>;

Roi RoiOf(const std::vector<DisplaySetup::Digit>& digits) {
  std::vector<int32_t> flat(4);
  for (const DisplaySetup::Digit& digit : digits) {
    flat.push_back(ROI_MARKER_EXTERNAL);
    flat.push_back(digit.size() == 4 ? ROI_RECT : ROI_POLYGON);
    flat.insert(flat.end(), digit.begin(), digit.end());
  }
  RoiDescriptor* roi = nullptr;
  if (ZEL_ArrayToROI(flat.data(), static_cast<int32_t>(flat.size()), &roi) != 0) {
    throw std::bad_alloc();
  }
  return Roi(roi);
}

struct Arc {
  Block<PointFloat> points;
  int32_t count = 0;
};

Arc ArcOf(PointFloat base, PointFloat start, PointFloat end) {
  Arc arc;
  PointFloat* points = nullptr;
  Check(ZEL_CalibrateMeter2(base.x, base.y, start.x, start.y, end.x, end.y, &points, &arc.count));
  arc.points.reset(points);
  return arc;
}

struct NeedleReading {
  float percent = 0;
  PointFloat tip{};
};

NeedleReading ReadNeedle(const Image& gray, PointFloat base, const Arc& arc, bool isLight) {
  NeedleReading reading;
  Check(ZEL_ReadMeter(gray, base.x, base.y, arc.points.get(), arc.count, isLight, &reading.percent,
                      &reading.tip));
  return reading;
}

Image ReadGray(const std::string& path) {
  return ReadPicture(path, {.form = Form::Gray}).image;
}

// ---- what is drawn

int32_t Pixel(float coordinate) {
  return static_cast<int32_t>(std::lround(coordinate));
}

// ---- gauges

Dial MeterOf(const MeterSetup& setup) {
  const auto arc = std::make_shared<Arc>(ArcOf(setup.base, setup.start, setup.end));
  const auto read = [=](const Image& gray) {
    const NeedleReading needle = ReadNeedle(gray, setup.base, *arc, setup.isLight);
    const auto percent = static_cast<double>(needle.percent);
    const double value = setup.ValueAt(percent);
    DialReading reading;
    reading.value = value;
    reading.unit = setup.unit;
    reading.text = Short(value) + ' ' + setup.unit;
    reading.cells = {Exact(value), CsvText(setup.unit), Exact(needle.percent), Exact(needle.tip.x),
                     Exact(needle.tip.y)};
    reading.members = "\"value\": " + JsonNumber(value) + ", \"unit\": " + JsonText(setup.unit) +
                      ", \"percent\": " + JsonNumber(percent) + ", \"tip\": [" +
                      Exact(needle.tip.x) + ", " + Exact(needle.tip.y) + "]";
    reading.strokes = {
        {Pixel(setup.base.x), Pixel(setup.base.y), Pixel(needle.tip.x), Pixel(needle.tip.y)}};
    return reading;
  };
  return {"file,value,unit,percent,tipX,tipY\n", read};
}

std::vector<Stroke> OutlinesOf(const DisplaySetup& setup) {
  std::vector<Stroke> strokes;
  for (DisplaySetup::Digit c : setup.digits) {
    if (c.size() == 4) c = {c[0], c[1], c[2], c[1], c[2], c[3], c[0], c[3]};
    for (size_t i = 0; i < 8; i += 2) {
      strokes.push_back({c[i], c[i + 1], c[(i + 2) % 8], c[(i + 3) % 8]});
    }
  }
  return strokes;
}

// What the text says; the library's number is that of the digits alone, without their point.
double ValueOf(const std::string& text, double number) {
  try {
    return ParseNumber(text);
  } catch (const std::invalid_argument&) {
    return number;
  }
}

Dial DisplayOf(const DisplaySetup& setup) {
  const std::shared_ptr<RoiDescriptor> digits = RoiOf(setup.digits);
  const auto read = [=](const Image& gray) {
    char* text = nullptr;
    uint8_t* segments = nullptr;
    double number = 0;
    int32_t count = 0;
    Check(ZEL_ReadLCDDisplay(gray, digits.get(), setup.isLight, static_cast<float>(setup.threshold),
                             setup.hasSign, setup.hasPoints, &text, &number, &segments, &count));
    const Block<char> textOwner(text);
    const Block<uint8_t> segmentsOwner(segments);
    DialReading reading;
    reading.text = std::string(Trim(text));
    reading.value = ValueOf(reading.text, number);
    reading.cells = {CsvText(reading.text), Exact(number), std::to_string(count)};
    reading.members = "\"text\": " + JsonText(reading.text) +
                      ", \"number\": " + JsonNumber(number) +
                      ", \"digits\": " + std::to_string(count);
    reading.strokes = OutlinesOf(setup);
    return reading;
  };
  return {"file,text,number,digits\n", read};
}

// ---- reading

class ReadRun {
 public:
  ReadRun(const ReadDialsCommand& command, const Dial& gauge)
      : command_(command),
        gauge_(gauge),
        tableOut_(LinesOf(command)),
        progress_(command.files.size()) {}

  // Throws std::invalid_argument where a file would be written that is read, or written twice.
  void Plan() {
    FilePlan plan;
    plan.Reads(command_.setup, "the set-up");
    marked_ = PlanReading(command_, &plan);
  }

  // Throws WriteFailure for a report or a folder that cannot be made; nothing is read then.
  int Work() {
    if (!command_.annotate.empty()) MakeFolder(command_.annotate);
    csv_ = OpenReport(command_.csv);
    json_ = OpenReport(command_.json);
    if (csv_) csv_->stream() << gauge_.csvHead;
    if (json_) json_->stream() << "{\n  \"readings\": [";
    size_t done = 0;
    for (; done < command_.files.size() && Interrupted() == 0; done++) {
      ReadFile(done);
      progress_.Done(done + 1);
    }
    progress_.Hide();
    if (json_) json_->stream() << "\n  ],\n  \"failed\": " << failed_ << "\n}\n";
    if (csv_) csv_->Finish();
    if (json_) json_->Finish();
    if (!command_.quiet) {
      tableOut_ << Plural(done - failed_, "gauge") << " read";
      if (failed_ > 0) tableOut_ << ", " << failed_ << " not";
      tableOut_ << '\n';
    }
    return failed_ == 0 && !pictureFailed_ && done == command_.files.size() ? ALL_WELL
                                                                            : SOME_FAILED;
  }

 private:
  void ReadFile(size_t task) {
    const std::string& path = command_.files[task];
    std::string record;
    try {
      const Image gray = ReadGray(path);
      const DialReading reading = gauge_.read(gray);
      record = reading.members;
      if (csv_) PutCsv(path, reading);
      if (!command_.quiet && &tableOut_ != &std::cerr) {
        progress_.Hide();
        std::cout << LineText(path) << ": " << reading.text << '\n';
        if (!std::cout) NoteClosedPipe();
      }
      if (!marked_.empty()) WriteMarkedOf(task, gray, reading);
    } catch (const std::exception& failure) {
      failed_++;
      record = "\"error\": " + JsonText(failure.what());
      progress_.Hide();
      PrintFailure(path, failure);
    }
    if (json_) {
      json_->stream() << (task == 0 ? "\n" : ",\n") << "    {\"file\": " << JsonText(path) << ", "
                      << record << '}';
    }
  }

  void PutCsv(const std::string& path, const DialReading& reading) {
    csv_->stream() << CsvText(path);
    for (const std::string& cell : reading.cells) csv_->stream() << ',' << cell;
    csv_->stream() << '\n';
  }

  // A gauge that was read stays so when its picture cannot be written.
  void WriteMarkedOf(size_t task, const Image& gray, const DialReading& reading) {
    try {
      WriteMarked(gray, reading.strokes, marked_[task]);
    } catch (const std::exception& failure) {
      pictureFailed_ = true;
      progress_.Hide();
      PrintFailure(marked_[task], failure);
    }
  }

  const ReadDialsCommand& command_;
  const Dial& gauge_;
  std::vector<std::string> marked_;
  std::ostream& tableOut_;
  Progress progress_;
  std::unique_ptr<WholeFile> csv_, json_;
  size_t failed_ = 0;
  bool pictureFailed_ = false;
};

// ---- calibrating

// Where the needle points in a picture, looked for all around its base.
PointFloat TipIn(const std::string& path, PointFloat base, double radius, bool isLight) {
  const auto reach = static_cast<float>(radius);
  // The angle from a point to itself is none, so the circle ends just before it.
  const Arc circle = ArcOf(base, {base.x + reach, base.y}, {base.x + reach, base.y - reach / 1000});
  return ReadNeedle(ReadGray(path), base, circle, isLight).tip;
}

std::string CalibratedMeter(const CalibrateDialsCommand& command) {
  MeterSetup setup = command.meter;
  if (!command.files.empty()) {
    if (command.files.size() != 2 || !command.radius) {
      throw std::invalid_argument(
          "give --radius and two pictures, of the needle at both ends; or --start and --end");
    }
    setup.start = TipIn(command.files[0], setup.base, *command.radius, setup.isLight);
    setup.end = TipIn(command.files[1], setup.base, *command.radius, setup.isLight);
  }
  const auto isBase = [&](PointFloat p) { return p.x == setup.base.x && p.y == setup.base.y; };
  if (isBase(setup.start) || isBase(setup.end)) {
    throw std::invalid_argument("give --base, --start and --end, three places apart");
  }
  if (ArcOf(setup.base, setup.start, setup.end).count < 2) {
    throw std::invalid_argument("both ends of the scale are at one place");
  }
  return SetupText(setup);
}

std::string CalibratedDisplay(const CalibrateDialsCommand& command) {
  if (command.files.size() != 1 || !command.region) {
    throw std::invalid_argument("give --region and one picture of the display");
  }
  const Region& r = *command.region;
  const Roi region = RoiOf({{r.left, r.top, r.left + r.width - 1, r.top + r.height - 1}});
  RoiDescriptor* found = nullptr;
  const int32_t status =
      ZEL_CalibrateLCD(ReadGray(command.files[0]), region.get(), command.display.isLight,
                       static_cast<float>(command.display.threshold), &found);
  const Roi digits(found);
  Check(status);
  DisplaySetup setup = command.display;
  for (int32_t i = 0; i < digits->contourCount; i++) {
    const PointInt* corners = digits->contours[i]->points;
    setup.digits.push_back({corners[0].x, corners[0].y, corners[1].x, corners[1].y});
  }
  return SetupText(setup);
}

}  // namespace

PointFloat ParsePlace(std::string_view text) {
  const std::vector<std::string_view> sides = Split(text, ',');
  if (sides.size() != 2) {
    throw std::invalid_argument(Quoted(text) + " is no place: write X,Y, as in 120.5,80");
  }
  return {static_cast<float>(ParseNumber(sides[0])), static_cast<float>(ParseNumber(sides[1]))};
}

Dial DialOf(GaugeKind kind, const std::string& setupFile) {
  const std::string text = ReadSetupFile(setupFile);
  return kind == GaugeKind::Meter ? MeterOf(ParseMeterSetup(text))
                                  : DisplayOf(ParseDisplaySetup(text));
}

int Run(const ReadDialsCommand& asked) {
  ReadDialsCommand command = asked;
  Dial gauge;
  try {
    gauge = DialOf(command.kind, command.setup);
  } catch (const std::exception& failure) {
    PrintFailure(command.setup, failure);
    return BAD_USE;
  }
  return RunTold([&] {
    command.files = WithAllPages(asked.files);
    ReadRun run(command, gauge);
    run.Plan();
    return run.Work();
  });
}

int Run(const CalibrateDialsCommand& command) {
  return RunTold([&] {
    FilePlan plan;
    for (const std::string& file : command.files) plan.Reads(file, "a picture of the gauge");
    plan.Writes(command.setup, "the set-up");
    const std::string text =
        command.kind == GaugeKind::Meter ? CalibratedMeter(command) : CalibratedDisplay(command);
    WholeFile file(command.setup);
    file.stream() << text;
    file.Finish();
    return ALL_WELL;
  });
}

}  // namespace front
