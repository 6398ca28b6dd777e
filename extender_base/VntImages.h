#pragma once

#include <QImage>

#include "kestrava/base/SbImage.h"

// The toolkit's images and Qt's; none of these changes its argument. The toolkit counts rows from the bottom.

/// A slice as Qt has it. Where it is larger than `longest` in a direction, pixels are left out: what it costs
/// depends on the result. The empty image gives a null one.
QImage toQImage(SbImage const& image, int slice = 0, int longest = 1 << 15);
/// With 1, 3 or 4 components, as it has colours and transparency. Empty for a null image and for one that
/// takes too many bytes.
SbImage toSbImage(QImage const& image);
/// With another number of components: colours become grey by their lightness, missing alpha opaque; alpha
/// that is not wanted is left out.
SbImage convertImage(SbImage const& image, int components);
/// Stretched to another size, every slice; their number stays. Empty when that takes too many bytes.
SbImage scaleImage(SbImage const& image, int width, int height);
