#include "kestrava/nodes/SoTexture3.h"

#include <mutex>

#include "kestrava/base/SoError.h"
#include "kestrava/io/SoImageCache.h"

namespace {

/// The image that a node keeps is asked for by several rendering threads.
std::mutex mutex;

} // namespace

SbImage SoTexture3::readSlices() const {
  SbImage first;
  SbImage::Bytes bytes;
  for (SbString const& name : filenames.values()) {
    SbString error;
    SbImage const slice = SoImageCache::get(name, error);
    if (slice.isEmpty()) {
      SoReadError::post("%s", error.c_str());
      return {};
    }
    if (first.isEmpty()) first = slice;
    if (slice.getSize() != first.getSize() || slice.getNumComponents() != first.getNumComponents()) {
      SoReadError::post(
          "the image file '%s' has %d x %d pixels of %d components, the first slice '%s' has %d x %d of %d",
          name.c_str(), slice.getWidth(), slice.getHeight(), slice.getNumComponents(), filenames[0].c_str(),
          first.getWidth(), first.getHeight(), first.getNumComponents());
      return {};
    }
    if (bytes.size() + slice.getNumBytes() > SbImage::MAX_BYTES) {
      SoReadError::post("the slices of Texture3 '%s' take more than %zu bytes", getName().c_str(),
                        SbImage::MAX_BYTES);
      return {};
    }
    bytes.insert(bytes.end(), slice.getBytes(), slice.getBytes() + slice.getNumBytes());
  }
  SbVec3i32 const size(first.getWidth(), first.getHeight(), filenames.getNumValues());
  return SbImage(size, first.getNumComponents(), std::move(bytes));
}

SbImage SoTexture3::getImage() const {
  bool const fromFiles = !filenames.isIgnored() && filenames.getNumValues() > 0;
  if (!fromFiles && images.isIgnored()) return {};
  SbImage const field = fromFiles ? SbImage() : images.getValue();
  if (field.getDepth() > 0 || (!fromFiles && field.isEmpty())) return field;
  std::lock_guard lock(mutex);
  if (!m_asked) {
    m_asked = true;
    // A flat image is one slice.
    m_image = fromFiles ? readSlices()
                        : SbImage(SbVec3i32(field.getWidth(), field.getHeight(), 1), field.getNumComponents(),
                                  field.getSharedBytes());
  }
  return m_image;
}

void SoTexture3::fieldChanged(SoField* field) {
  if (field != &filenames && field != &images) return;
  std::lock_guard lock(mutex);
  m_asked = false;
}
