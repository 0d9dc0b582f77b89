// orlune gauge: measures along lines of picture files, and holds what it measures to limits.
#include <filesystem>
#include <iostream>
#include <sstream>

#include "orlune/command/commands.h"
#include "orlune/gauge/line_reports.h"
#include "orlune/gauge/line_setup.h"
#include "orlune/shared/file_run.h"
#include "orlune/shared/json_values.h"
#include "orlune/shared/numbers.h"
#include "orlune/shared/parcel.h"
#include "pictures/whole_file.h"

namespace front {
namespace {

// What all pictures together say.
class Totals {
 public:
  explicit Totals(size_t gauges) : spreads_(gauges) {}

  static std::string Pack(const Gauging& gauging) {
    ParcelWriter parcel;
    parcel.Put(gauging.Passed()).Put(gauging.unit).Put(gauging.time.count());
    for (const GaugeResult& result : gauging.results) {
      parcel.Put(result.value.has_value()).Put(result.value.value_or(0));
    }
    return parcel.Take();
  }

  void Take(const std::string& findings) {
    ParcelReader parcel(findings);
    (parcel.Get<bool>() ? passed_ : failed_)++;
    unit_ = parcel.Text();
    time_ += Seconds(parcel.Get<double>());
    for (ValueSpread& spread : spreads_) {
      const bool found = parcel.Get<bool>();
      const auto value = parcel.Get<double>();
      if (found) spread.Add(value);
    }
  }

  void Tell(std::ostream& out, const GaugeSetup& setup) const {
    out << Plural(passed_ + failed_, "picture") << " gauged in " << Milliseconds(time_) << ": "
        << passed_ << " passed, " << failed_ << " failed\n";
    PrintSpreads(out, setup, spreads_, unit_);
  }

  std::string Members() const {
    return "\"passed\": " + std::to_string(passed_) + ", \"rejected\": " + std::to_string(failed_);
  }

 private:
  std::vector<ValueSpread> spreads_;
  size_t passed_ = 0, failed_ = 0;
  std::string unit_;
  Seconds time_{};
};

// The set-up that the command names or gives, ready to be measured by.
class GaugeRun {
 public:
  // Throws std::invalid_argument for what makes no sense.
  explicit GaugeRun(const GaugeCommand& command) : command_(command) {
    PreparedGauging prepared = PrepareGauging(command);
    setup_ = std::move(prepared.setup);
    master_ = std::move(prepared.master);
    if (setup_.reference.follow != Follow::Nothing && master_.empty() && !setup_.reference.taught) {
      throw std::invalid_argument(
          "lines that follow the part need --master, the picture that they are drawn for");
    }
    if (setup_.reference.follow == Follow::Nothing && !command.master.empty()) {
      throw std::invalid_argument("--master is for lines that follow the part");
    }
  }

  int Work() {
    Totals totals(setup_.gauges.size());
    FileRun run;
    run.files = command_.files;
    run.workers = command_.workers;
    run.quiet = command_.quiet;
    run.csv = command_.csv;
    run.json = command_.json;
    run.csvHead = GaugeCsvHead();
    run.annotate = command_.annotate;
    run.annotateSuffix = "-gauged.bmp";
    run.alsoRead = ReadToo();
    if (!command_.save.empty()) run.alsoWritten = {command_.save};
    run.prepare = [&] {
      Learn();
      Save();
    };
    run.work = [&](const std::string& file, const std::string& marked) {
      return GaugeFile(file, marked);
    };
    run.take = [&](const std::string& findings) { totals.Take(findings); };
    run.tell = [&](std::ostream& out) { totals.Tell(out, setup_); };
    run.summary = [&] { return totals.Members(); };
    return RunFiles(run);
  }

 private:
  // Where the part is in the picture that the lines are drawn for.
  void Learn() {
    if (setup_.reference.follow == Follow::Nothing || master_.empty()) return;
    setup_.reference.taught.reset();
    setup_.reference.taught =
        Named(master_, [&] { return FindPart(master_, setup_.reference, command_.swapBytes); });
  }

  void Save() const {
    if (command_.save.empty()) return;
    Named(command_.save, [&] {
      WholeFile file(command_.save);
      file.stream() << SetupText(setup_);
      file.Finish();
    });
  }

  std::vector<std::string> ReadToo() const {
    std::vector<std::string> files;
    for (const std::string& file : {command_.setupFile, master_}) {
      if (!file.empty()) files.push_back(file);
    }
    return files;
  }

  FileOutcome GaugeFile(const std::string& file, const std::string& marked) const {
    const Gauging gauging = GaugePicture(file, setup_, command_.swapBytes);
    FileOutcome outcome;
    outcome.well = gauging.Passed();
    outcome.csv = CsvRows(gauging, setup_);
    outcome.json = JsonRecord(gauging, setup_);
    outcome.findings = Totals::Pack(gauging);
    std::ostringstream table;
    PrintTable(table, gauging, setup_);
    outcome.table = table.str();
    WriteMarked(
        marked, [&](const std::string& to) { WriteGauged(gauging, setup_, to); }, &outcome);
    return outcome;
  }

  const GaugeCommand& command_;
  GaugeSetup setup_;
  std::string master_;  // file; empty for none
};

}  // namespace

PreparedGauging PrepareGauging(const GaugeWork& work) {
  PreparedGauging prepared{work.setup, work.master};
  for (LineGauge& line : prepared.setup.gauges) {
    LineGauge whole = work.line;
    whole.name = line.name;
    whole.line = line.line;
    line = whole;
  }
  prepared.setup.gauges.insert(prepared.setup.gauges.end(), work.lines.begin(), work.lines.end());
  if (!work.setupFile.empty()) {
    try {
      ParsedGaugeSetup parsed = ParseGaugeSetup(ReadSetupFile(work.setupFile));
      prepared.setup = std::move(parsed.setup);
      if (prepared.master.empty() && !parsed.master.empty()) {
        const auto folder = std::filesystem::path(work.setupFile).parent_path();
        prepared.master = (folder / parsed.master).string();
      }
    } catch (const std::exception& failure) {
      throw std::invalid_argument(FailureText(work.setupFile, failure));
    }
  }
  if (work.setup.scale) prepared.setup.scale = work.setup.scale;
  if (!work.setup.unit.empty()) prepared.setup.unit = work.setup.unit;
  if (prepared.setup.gauges.empty()) throw std::invalid_argument("give --line or --setup");
  NameLines(&prepared.setup);
  return prepared;
}

int Run(const GaugeCommand& command) {
  try {
    return GaugeRun(command).Work();
  } catch (const std::invalid_argument& error) {
    std::cerr << "orlune: " << error.what() << '\n';
    return BAD_USE;
  }
}

}  // namespace front
