#include "kestrava/nodes/SoTexture2.h"

#include <mutex>

#include "kestrava/base/SoError.h"
#include "kestrava/io/SoImageCache.h"
#include "kestrava/nodes/SoImageBackground.h"

namespace {

/// The images that nodes keep are asked for by several rendering threads.
std::mutex mutex;

SbImage imageOf(SoSFString const& filename, SoSFImage const& image, SbImage& fileImage, bool& asked) {
  if (filename.isIgnored() || filename.getValue().empty())
    return image.isIgnored() ? SbImage() : image.getValue();
  std::lock_guard lock(mutex);
  if (!asked) {
    SbString error;
    fileImage = SoImageCache::get(filename.getValue(), error);
    asked = true;
    if (fileImage.isEmpty()) SoReadError::post("%s", error.c_str());
  }
  return fileImage;
}

} // namespace

SbImage SoTexture2::getImage() const { return imageOf(filename, image, m_fileImage, m_fileAsked); }
void SoTexture2::fieldChanged(SoField* field) {
  if (field == &filename) m_fileAsked = false;
}

SbImage SoImageBackground::getImage() const { return imageOf(filename, image, m_fileImage, m_fileAsked); }
void SoImageBackground::fieldChanged(SoField* field) {
  if (field == &filename) m_fileAsked = false;
}
