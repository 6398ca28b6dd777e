#include "kestrava/nodes/SoTexture2.h"

#include "kestrava/nodes/SoImageBackground.h"

namespace {

SbImage imageOf(SoSFString const& filename, SoSFImage const& image, SoNamedImage& file) {
  if (filename.isIgnored() || filename.getValue().empty())
    return image.isIgnored() ? SbImage() : image.getValue();
  return file.get(filename.getValue());
}

} // namespace

SbImage SoTexture2::getImage() const { return imageOf(filename, image, m_file); }
void SoTexture2::fieldChanged(SoField* field) {
  if (field == &filename) m_file.nameChanged();
}

SbImage SoImageBackground::getImage() const { return imageOf(filename, image, m_file); }
void SoImageBackground::fieldChanged(SoField* field) {
  if (field == &filename) m_file.nameChanged();
}
