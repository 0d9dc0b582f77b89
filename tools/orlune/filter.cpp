// orlune filter: picture files put through a chain of filters.
#include <sys/stat.h>

#include <algorithm>
#include <functional>
#include <iostream>
#include <map>
#include <stdexcept>

#include "orlune/commands.h"
#include "orlune/numbers.h"
#include "orlune/output.h"
#include "orlune/progress.h"

namespace front {
namespace {

namespace fs = std::filesystem;

// Two names of one file give the same text, also of one that is not there yet.
std::string IdentityOf(const fs::path& path) {
  struct stat file;
  if (::stat(path.c_str(), &file) == 0) {
    return std::to_string(file.st_dev) + ":" + std::to_string(file.st_ino);
  }
  std::error_code failed;
  const fs::path whole = fs::absolute(path, failed);
  const fs::path plain = fs::weakly_canonical(whole, failed);
  return (failed ? whole.lexically_normal() : plain).string();
}

struct Output {
  fs::path path;
  PictureFormat format;
};

Output OutputFor(const FilterCommand& command, const std::string& file) {
  fs::path path = command.to;
  if (!command.folder.empty()) {
    path = fs::path(command.folder) / fs::path(file).filename();
    if (command.format) path.replace_extension(EndingOf(*command.format));
  }
  return {path, command.format ? *command.format : FormatByEnding(path)};
}

// One for each file, in their order. Throws std::invalid_argument where one would be written over a
// file that is read, or over another one.
std::vector<Output> PlanOutputs(const FilterCommand& command) {
  if (command.folder.empty() && command.to.empty()) {
    throw std::invalid_argument("say where pictures go: --out FOLDER, or -o OUT for one file");
  }
  if (command.folder.empty() && command.files.size() > 1) {
    throw std::invalid_argument("-o is for one file, --out for " +
                                std::to_string(command.files.size()));
  }
  std::map<std::string, std::string> uses;  // what a file is needed for, by identity
  if (!command.mask.empty()) uses[IdentityOf(command.mask)] = "the mask";
  for (const std::string& file : command.files) uses[IdentityOf(file)] = "a picture to be filtered";

  std::vector<Output> outputs;
  for (const std::string& file : command.files) {
    outputs.push_back(OutputFor(command, file));
    const std::string path = outputs.back().path.string();
    const auto [use, free] = uses.try_emplace(IdentityOf(path), "the result of " + file);
    if (!free) {
      throw std::invalid_argument("the result of " + file + " cannot go to " + path + ": that is " +
                                  use->second);
    }
  }
  return outputs;
}

// Throws std::invalid_argument where steps can't be held to some of the pixels.
void RefuseMask(const FilterCommand& command) {
  for (const ChosenStep& step : command.steps) {
    if (command.mask.empty() || !step.step->movesPixels) continue;
    throw std::invalid_argument("no mask can go with the step " + std::string(step.step->name) +
                                ", which moves pixels");
  }
}

template <class T, class Test>
Image Marked(const Image& picture, Test isMarked) {
  const ImageInfo from = picture.Info();
  Image mask(IMAGE_U8, 0, from.width, from.height);
  const ImageInfo to = mask.Info();
  for (int32_t y = 0; y < from.height; ++y) {
    const T* source = Row<T>(from, y);
    std::transform(source, source + from.width, Row<uint8_t>(to, y),
                   [&](const T& v) { return static_cast<uint8_t>(isMarked(v)); });
  }
  return mask;
}

// 1 where a pixel is not 0, or not black. The mean of a colour would not do: it may be 0.
Image ReadMask(const std::string& path) {
  struct Complex {
    float real, imaginary;
  };
  Picture picture = ReadPicture(path, {});
  if (!picture.palette.empty()) ApplyPalette(&picture);
  const auto notZero = [](auto v) { return v != 0; };
  switch (picture.image.Info().type) {
    case IMAGE_U8:
      return Marked<uint8_t>(picture.image, notZero);
    case IMAGE_I16:
      return Marked<int16_t>(picture.image, notZero);
    case IMAGE_SGL:
      return Marked<float>(picture.image, notZero);
    case IMAGE_COMPLEX:
      return Marked<Complex>(picture.image,
                             [](const Complex& v) { return v.real != 0 || v.imaginary != 0; });
    default:
      return Marked<RGBValue>(picture.image, [](RGBValue v) { return (v & 0xFFFFFF) != 0; });
  }
}

std::string SizeText(const ImageInfo& info) {
  return std::to_string(info.width) + " x " + std::to_string(info.height);
}

class FilterRun {
 public:
  FilterRun(const FilterCommand& command, std::vector<Output> outputs)
      : command_(command),
        outputs_(std::move(outputs)),
        border_(BorderOf(command.steps)),
        stepTimes_(command.steps.size()),
        progress_(command.files.size()) {}

  // False when there is no mask or no folder; nothing is filtered then.
  bool Open() {
    try {
      if (!command_.mask.empty()) mask_ = ReadMask(command_.mask);
    } catch (const std::exception& failure) {
      PrintFailure(command_.mask, failure);
      return false;
    }
    try {
      if (!command_.folder.empty()) fs::create_directories(command_.folder);
    } catch (const fs::filesystem_error& failure) {
      PrintFailure(command_.folder,
                   std::runtime_error("the folder cannot be made: " + failure.code().message()));
      return false;
    }
    return true;
  }

  int Work() {
    for (size_t i = 0; i < command_.files.size(); ++i) {
      progress_.Done(i);
      FilterFile(command_.files[i], outputs_[i]);
    }
    progress_.Hide();
    if (!command_.quiet) PrintSummary();
    return failed_ == 0 ? ALL_WELL : SOME_FAILED;
  }

 private:
  void FilterFile(const std::string& file, const Output& output) {
    std::string concerned = file;
    try {
      Clock clock;
      Picture picture = ReadPicture(file, {Form::Gray, command_.swapBytes, border_});
      picture.palette.clear();  // its colours are grays by now
      const Seconds reading = clock.Lap();
      std::vector<Seconds> stepTimes;
      for (const ChosenStep& step : command_.steps) {
        CheckSize(picture.image.Info());
        Apply(step, picture.image, mask_ ? ImageRef(*mask_) : 0);
        stepTimes.push_back(clock.Lap());
      }

      concerned = output.path.string();
      const FileInfo read = picture.file;
      const std::string remark = WriteFitting(std::move(picture), output.path, output.format);
      writing_ += clock.Lap();
      reading_ += reading;
      std::transform(stepTimes.begin(), stepTimes.end(), stepTimes_.begin(), stepTimes_.begin(),
                     std::plus<>());
      Report(file, output, read, remark);
    } catch (const std::exception& failure) {
      progress_.Hide();
      std::cout.flush();
      PrintFailure(concerned, failure);
      ++failed_;
    }
  }

  // The library fills a border that is wider than the picture with other pixels than the
  // neighbours, and takes a mask of any size.
  void CheckSize(const ImageInfo& picture) const {
    if (std::min(picture.width, picture.height) < border_) {
      throw std::invalid_argument("the picture of " + SizeText(picture) +
                                  " pixels is too small for these steps: they take at least " +
                                  std::to_string(border_) + " on each side");
    }
    if (!mask_) return;
    const ImageInfo mask = mask_->Info();
    if (mask.width != picture.width || mask.height != picture.height) {
      throw std::invalid_argument("the mask of " + SizeText(mask) +
                                  " pixels does not fit on the picture of " + SizeText(picture));
    }
  }

  void Report(const std::string& file, const Output& output, const FileInfo& read,
              const std::string& remark) {
    ++filtered_;
    pixels_ += 1.0 * read.width * read.height;
    if (command_.quiet && remark.empty()) return;
    progress_.Hide();
    if (!command_.quiet) {
      std::cout << file << ": " << FormatName(read) << ", " << read.width << " x " << read.height
                << ", " << KindName(read) << "; filtered: " << output.path.string() << '\n';
    }
    if (!remark.empty()) {
      std::cout.flush();
      std::cerr << "orlune: " << output.path.string() << ": " << remark << '\n';
    }
  }

  void PrintSummary() const {
    std::cout << '\n' << Plural(filtered_, "picture") << " filtered";
    if (failed_ > 0) std::cout << ", " << failed_ << " could not be";
    std::cout << '\n';
    if (filtered_ == 0) return;
    Seconds total = reading_ + writing_;
    for (const Seconds time : stepTimes_) total += time;
    std::cout << Fixed(pixels_ / 1e6, 2) << " megapixels in " << Milliseconds(total) << ": reading "
              << Milliseconds(reading_);
    for (size_t i = 0; i < stepTimes_.size(); ++i) {
      std::cout << ", " << command_.steps[i].step->name << ' ' << Milliseconds(stepTimes_[i]);
    }
    std::cout << ", writing " << Milliseconds(writing_) << '\n';
  }

  const FilterCommand& command_;
  std::vector<Output> outputs_;
  int32_t border_;
  std::optional<Image> mask_;
  Seconds reading_{}, writing_{};
  std::vector<Seconds> stepTimes_;  // of each step, in all files
  size_t filtered_ = 0, failed_ = 0;
  double pixels_ = 0;
  Progress progress_;
};

}  // namespace

int Run(const FilterCommand& command) {
  std::vector<Output> outputs;
  try {
    RefuseMask(command);
    outputs = PlanOutputs(command);
  } catch (const std::invalid_argument& error) {
    std::cerr << "orlune: " << error.what() << '\n';
    return BAD_USE;
  }
  FilterRun run(command, std::move(outputs));
  return run.Open() ? run.Work() : SOME_FAILED;
}

}  // namespace front
