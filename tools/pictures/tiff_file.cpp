// A TIFF file in memory, as libtiff sees it.
#include "pictures/tiff_file.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <utility>

namespace pictures {
namespace {

int NoteError(TIFF*, void* complaint, const char*, const char* format, va_list arguments) {
  static_cast<TiffComplaint*>(complaint)->Note(format, arguments);
  return 1;
}

int IgnoreWarning(TIFF*, void*, const char*, const char*, va_list) {
  return 1;
}

struct OptionsFree {
  void operator()(TIFFOpenOptions* options) const { TIFFOpenOptionsFree(options); }
};

}  // namespace

void TiffComplaint::Note(const char* format, va_list arguments) {
  if (!text_.empty()) return;
  char line[400];
  std::vsnprintf(line, sizeof line, format, arguments);
  text_ = line;
}

std::string TiffComplaint::Take(const std::string& otherwise) {
  std::string text = std::exchange(text_, std::string());
  return text.empty() ? otherwise : text;
}

TiffInput::TiffInput(Bytes file) : file_(file) {
  const std::unique_ptr<TIFFOpenOptions, OptionsFree> options(TIFFOpenOptionsAlloc());
  TIFFOpenOptionsSetErrorHandlerExtR(options.get(), NoteError, &complaint_);
  TIFFOpenOptionsSetWarningHandlerExtR(options.get(), IgnoreWarning, nullptr);
  TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), MOST_BYTES);
  handle_.reset(TIFFClientOpenExt("TIFF", "rm", this, Read, Write, Seek, Close, Size, nullptr,
                                  nullptr, options.get()));
  if (!handle_) Fail("cannot be opened");
}

void TiffInput::Fail(const std::string& what) {
  throw BadFile("the TIFF file " + what + ": " + complaint_.Take("it is damaged"));
}

tmsize_t TiffInput::Read(thandle_t self, void* to, tmsize_t bytes) {
  auto* input = static_cast<TiffInput*>(self);
  const uint64_t left = input->at_ < input->size() ? input->size() - input->at_ : 0;
  const uint64_t count = std::min(left, static_cast<uint64_t>(std::max<tmsize_t>(bytes, 0)));
  if (count > 0) std::memcpy(to, input->file_.data() + input->at_, count);
  input->at_ += count;
  return static_cast<tmsize_t>(count);
}

tmsize_t TiffInput::Write(thandle_t, void*, tmsize_t) {
  return -1;
}

toff_t TiffInput::Seek(thandle_t self, toff_t offset, int whence) {
  auto* input = static_cast<TiffInput*>(self);
  if (whence == SEEK_CUR) offset += input->at_;
  if (whence == SEEK_END) offset += input->size();
  return input->at_ = offset;
}

int TiffInput::Close(thandle_t) {
  return 0;
}

toff_t TiffInput::Size(thandle_t self) {
  return static_cast<TiffInput*>(self)->size();
}

std::string TiffCompressionName(uint16_t compression) {
  switch (compression) {
    case COMPRESSION_NONE:
      return "none";
    case COMPRESSION_CCITTRLE:
    case COMPRESSION_CCITTRLEW:
      return "CCITT run lengths";
    case COMPRESSION_CCITTFAX3:
      return "CCITT group 3";
    case COMPRESSION_CCITTFAX4:
      return "CCITT group 4";
    case COMPRESSION_LZW:
      return "LZW";
    case COMPRESSION_OJPEG:
      return "old JPEG";
    case COMPRESSION_JPEG:
      return "JPEG";
    case COMPRESSION_ADOBE_DEFLATE:
    case COMPRESSION_DEFLATE:
      return "deflate";
    case COMPRESSION_PACKBITS:
      return "PackBits";
    default:
      break;
  }
  const TIFFCodec* codec = TIFFFindCODEC(compression);
  return codec != nullptr ? codec->name : "";
}

}  // namespace pictures
