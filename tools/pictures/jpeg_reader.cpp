// JPEG files through libjpeg.
#include <csetjmp>
#include <cstdio>
#include <cstring>
// After the standard headers that it needs.
#include <jerror.h>
#include <jpeglib.h>

#include "pictures/orientation.h"
#include "pictures/readers.h"

namespace pictures {
namespace {

struct Errors {
  jpeg_error_mgr manager;  // first: libjpeg knows the record by it
  std::jmp_buf back;
  char complaint[JMSG_LENGTH_MAX];
  bool cut;
};

Errors* ErrorsOf(j_common_ptr jpeg) {
  return reinterpret_cast<Errors*>(jpeg->err);
}

[[noreturn]] void JumpBack(j_common_ptr jpeg) {
  jpeg->err->format_message(jpeg, ErrorsOf(jpeg)->complaint);
  std::longjmp(ErrorsOf(jpeg)->back, 1);
}

// Pixels after the end of the data are made up by libjpeg, with no more than a warning. Other
// warnings are of bytes that are skipped.
void NoteWarning(j_common_ptr jpeg, int level) {
  if (level >= 0) return;
  const int code = jpeg->err->msg_code;
  if (code == JWRN_JPEG_EOF || code == JWRN_HIT_MARKER) ErrorsOf(jpeg)->cut = true;
}

class Jpeg {
 public:
  explicit Jpeg(Bytes file) {
    get()->err = jpeg_std_error(&errors_.manager);
    errors_.manager.error_exit = JumpBack;
    errors_.manager.emit_message = NoteWarning;
    errors_.complaint[0] = '\0';
    errors_.cut = false;
    Try([&] {
      jpeg_create_decompress(get());
      jpeg_mem_src(get(), file.data(), file.size());
      jpeg_save_markers(get(), JPEG_APP0 + 1, 0xFFFF);
      jpeg_read_header(get(), TRUE);
    });
  }
  Jpeg(const Jpeg&) = delete;
  Jpeg& operator=(const Jpeg&) = delete;

  // Runs calls of libjpeg, which leaves them by a jump when it fails: nothing in them may have a
  // destructor.
  template <class Calls>
  void Try(Calls calls) {
    bool failed = false;
    if (setjmp(errors_.back) == 0) {
      calls();
    } else {
      failed = true;
    }
    if (failed) {
      throw BadFile(std::string("the JPEG file is not read: ") + errors_.complaint);
    }
    if (errors_.cut) throw BadFile("the JPEG file is cut or damaged: its data end too early");
  }

  jpeg_decompress_struct* operator->() { return get(); }
  jpeg_decompress_struct* get() { return &jpeg_.record; }

 private:
  // Given back also when the constructor ends early.
  struct Decompressor {
    Decompressor() = default;
    Decompressor(const Decompressor&) = delete;
    Decompressor& operator=(const Decompressor&) = delete;
    ~Decompressor() { jpeg_destroy_decompress(&record); }
    jpeg_decompress_struct record{};
  };
  Decompressor jpeg_;
  Errors errors_{};
};

bool IsGray(Jpeg* file) {
  return (*file)->jpeg_color_space == JCS_GRAYSCALE;
}

Account AccountOf(Jpeg* file) {
  Account account;
  account.format = "JPEG";
  account.width = (*file)->image_width;
  account.height = (*file)->image_height;
  account.bits = (*file)->data_precision;
  account.samples = (*file)->num_components;
  account.kind = IsGray(file) ? "gray" : "colour";
  account.compression = "JPEG";
  account.layout = (*file)->progressive_mode != 0 ? "progressive" : "";
  constexpr size_t EXIF_MARK = 6;
  for (jpeg_saved_marker_ptr marker = (*file)->marker_list; marker != nullptr;
       marker = marker->next) {
    if (marker->data_length > EXIF_MARK && std::memcmp(marker->data, "Exif\0\0", EXIF_MARK) == 0) {
      account.orientation =
          OrientationIn({marker->data + EXIF_MARK, marker->data_length - EXIF_MARK});
    }
  }
  if ((*file)->saw_JFIF_marker != 0 && (*file)->density_unit != 0) {
    account.resolution = std::to_string((*file)->X_density) + " x " +
                         std::to_string((*file)->Y_density) + " pixels " +
                         ((*file)->density_unit == 1 ? "an inch" : "a centimetre");
  }
  return account;
}

Raster ReadPixels(Jpeg* file) {
  const int components = (*file)->num_components;
  const J_COLOR_SPACE space = (*file)->jpeg_color_space;
  if (components != 1 && components != 3) {
    const bool inks = space == JCS_CMYK || space == JCS_YCCK;
    throw BadFile("the JPEG file has " + std::to_string(components) + " samples a pixel" +
                  (inks ? " (inks)" : "") + ", which are not read; convert it to gray or RGB");
  }
  Raster raster =
      MakeRaster((*file)->image_width, (*file)->image_height, components == 1 ? 1 : 3, Sample::U8);
  (*file)->out_color_space = components == 1 ? JCS_GRAYSCALE : JCS_RGB;
  file->Try([&] {
    jpeg_start_decompress(file->get());
    while ((*file)->output_scanline < (*file)->output_height) {
      JSAMPROW row = raster.Row((*file)->output_scanline);
      jpeg_read_scanlines(file->get(), &row, 1);
    }
    jpeg_finish_decompress(file->get());
  });
  return raster;
}

}  // namespace

bool IsJpeg(Bytes file) {
  return file.size() >= 3 && file[0] == 0xFF && file[1] == 0xD8 && file[2] == 0xFF;
}

Picture ReadJpeg(Bytes bytes, int32_t page, Want want) {
  OnlyPage(page, "JPEG");
  Jpeg file(bytes);
  Picture picture;
  picture.account = AccountOf(&file);
  if (want == Want::Account) return picture;
  picture.raster = Upright(ReadPixels(&file), picture.account.orientation);
  return picture;
}

}  // namespace pictures
