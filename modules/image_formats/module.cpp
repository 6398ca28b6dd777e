#include <iterator>

#include "modules/image_formats/Codecs.h"

namespace {

// The one that has no sign of its own in the file comes last.
SbImageReader::Codec const CODECS[] = {
    {"WebP", takesWebp, decodeWebp}, {"BMP", takesBmp, decodeBmp}, {"GIF", takesGif, decodeGif},
    {"PSD", takesPsd, decodePsd},    {"HDR", takesHdr, decodeHdr}, {"PNM", takesPnm, decodePnm},
    {"TGA", takesTga, decodeTga},
};

} // namespace

extern "C" {

void qor_image_formats_init() {
  for (SbImageReader::Codec const& codec : CODECS) SbImageReader::addCodec(&codec);
}

void qor_image_formats_finish() {
  for (SbImageReader::Codec const& codec : CODECS) SbImageReader::removeCodec(&codec);
}
}
