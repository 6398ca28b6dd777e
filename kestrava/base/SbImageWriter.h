#pragma once

#include "kestrava/base/SbImage.h"
#include "kestrava/base/SbString.h"

/// Writes image files: PNG (.png), JPEG (.jpg, .jpeg), uncompressed TIFF (.tif, .tiff), SGI RGB (.rgb, .rgba,
/// .bw, .sgi) and PostScript with the image in it (.ps, .eps). The extension decides, in any letter case.
class SbImageWriter {
 public:
  SbImageWriter() = delete;

  /// Empty on success, else the reason as a sentence; an old file of that name is then as it was. Of an image
  /// with a depth the first slice is written. JPEG and PostScript have no alpha: it is left out. `quality` is
  /// that of JPEG, 1 to 100. Usable from any thread.
  static std::string write(SbString const& path, SbImage const& image, int quality = 90);
};
