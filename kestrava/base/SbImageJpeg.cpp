#include <csetjmp>
#include <cstdio>
#include <cstdlib>

#include <jpeglib.h>

#include <jerror.h>

#include "kestrava/base/SbImageCodecs.h"

namespace {

// libjpeg leaves a failed call by longjmp. The functions that call setjmp therefore own nothing that has a
// destructor: buffers, texts and this object belong to their callers.
struct Jpeg {
  jpeg_error_mgr errors{};
  std::jmp_buf escape{};
  char message[JMSG_LENGTH_MAX] = "";
  union {
    jpeg_common_struct common;
    jpeg_decompress_struct in;
    jpeg_compress_struct out;
  };
  unsigned char* encoded = nullptr;
  unsigned long encodedSize = 0;

  Jpeg() : in() {
    common.err = jpeg_std_error(&errors);
    common.client_data = this;
    errors.error_exit = &leave;
    errors.emit_message = &judge;
  }
  ~Jpeg() {
    jpeg_destroy(&common);
    std::free(encoded);
  }
  Jpeg(Jpeg const&) = delete;
  Jpeg& operator=(Jpeg const&) = delete;

  [[noreturn]] static void leave(j_common_ptr common) {
    auto* self = static_cast<Jpeg*>(common->client_data);
    common->err->format_message(common, self->message);
    std::longjmp(self->escape, 1);
  }

  // A warning means that pixels are made up, but for these, which cameras cause all the time.
  static void judge(j_common_ptr common, int level) {
    if (level >= 0) return;
    switch (common->err->msg_code) {
      case JWRN_EXTRANEOUS_DATA:
      case JWRN_ADOBE_XFORM:
      case JWRN_JFIF_MAJOR:
      case JWRN_TOO_MUCH_DATA:
        return;
      default:
        leave(common);
    }
  }
};

bool readHeader(Jpeg& jpeg, SbImageBytes const& file) {
  if (setjmp(jpeg.escape)) return false;
  jpeg_create_decompress(&jpeg.in);
  jpeg_mem_src(&jpeg.in, file.data(), static_cast<unsigned long>(file.size()));
  jpeg_read_header(&jpeg.in, TRUE);
  switch (jpeg.in.jpeg_color_space) {
    case JCS_GRAYSCALE:
      jpeg.in.out_color_space = JCS_GRAYSCALE;
      break;
    case JCS_CMYK:
    case JCS_YCCK:
      jpeg.in.out_color_space = JCS_CMYK;
      break;
    default:
      jpeg.in.out_color_space = JCS_RGB;
  }
  jpeg_calc_output_dimensions(&jpeg.in);
  return true;
}

bool readRows(Jpeg& jpeg, unsigned char* pixels, std::size_t stride) {
  if (setjmp(jpeg.escape)) return false;
  jpeg_start_decompress(&jpeg.in);
  while (jpeg.in.output_scanline < jpeg.in.output_height) {
    JSAMPROW row = pixels + (jpeg.in.output_height - 1 - jpeg.in.output_scanline) * stride;
    jpeg_read_scanlines(&jpeg.in, &row, 1);
  }
  jpeg_finish_decompress(&jpeg.in);
  return true;
}

bool writeRows(Jpeg& jpeg, SbImage const& image, int quality) {
  if (setjmp(jpeg.escape)) return false;
  jpeg_create_compress(&jpeg.out);
  jpeg_mem_dest(&jpeg.out, &jpeg.encoded, &jpeg.encodedSize);
  jpeg.out.image_width = static_cast<JDIMENSION>(image.getWidth());
  jpeg.out.image_height = static_cast<JDIMENSION>(image.getHeight());
  jpeg.out.input_components = image.getNumComponents();
  jpeg.out.in_color_space = image.getNumComponents() == 1 ? JCS_GRAYSCALE : JCS_RGB;
  jpeg_set_defaults(&jpeg.out);
  jpeg_set_quality(&jpeg.out, quality, TRUE);
  jpeg_start_compress(&jpeg.out, TRUE);
  while (jpeg.out.next_scanline < jpeg.out.image_height) {
    int const y = image.getHeight() - 1 - static_cast<int>(jpeg.out.next_scanline);
    auto* row = const_cast<unsigned char*>(image.getPixel(0, y));
    jpeg_write_scanlines(&jpeg.out, &row, 1);
  }
  jpeg_finish_compress(&jpeg.out);
  return true;
}

// Programs that write CMYK store it inverted and say so with the Adobe marker.
void convertCmyk(SbImageBytes& pixels, bool inverted) {
  std::size_t to = 0;
  for (std::size_t from = 0; from < pixels.size(); from += 4) {
    int const flip = inverted ? 0 : 255;
    int const black = pixels[from + 3] ^ flip;
    for (std::size_t i = 0; i < 3; ++i)
      pixels[to++] = static_cast<unsigned char>((pixels[from + i] ^ flip) * black / 255);
  }
  pixels.resize(to);
}

} // namespace

std::string SbDecodeJpeg(SbImageBytes const& file, SbImage& image) {
  Jpeg jpeg;
  if (!readHeader(jpeg, file)) return jpeg.message;
  long const width = jpeg.in.output_width, height = jpeg.in.output_height;
  int const stored = jpeg.in.output_components;
  // A block of 8 x 8 pixels takes one bit at the least.
  std::string reason =
      SbCheckImageSize(width, height, stored, file.size(), 512 * static_cast<std::size_t>(stored));
  if (!reason.empty()) return reason;
  auto const stride = static_cast<std::size_t>(width) * static_cast<std::size_t>(stored);
  SbImageBytes pixels(stride * static_cast<std::size_t>(height));
  if (!readRows(jpeg, pixels.data(), stride)) return jpeg.message;
  if (stored == 4) convertCmyk(pixels, jpeg.in.saw_Adobe_marker);
  image = SbImage(SbVec2i32(width, height), stored == 4 ? 3 : stored, std::move(pixels));
  return {};
}

std::string SbEncodeJpeg(SbImage const& image, int quality, SbImageBytes& file) {
  Jpeg jpeg;
  if (!writeRows(jpeg, image, quality)) return jpeg.message;
  file.assign(jpeg.encoded, jpeg.encoded + jpeg.encodedSize);
  return {};
}
