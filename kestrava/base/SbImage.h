#pragma once

#include <memory>
#include <vector>

#include "kestrava/base/SbVec2i32.h"
#include "kestrava/base/SbVec3i32.h"

/// An image of 1 to 4 bytes a pixel: grey, grey and alpha, RGB, RGBA. Pixels stand row by row from the
/// bottom, slice by slice where there is a depth. The bytes never change, so copies share them, between
/// threads too.
class SbImage {
 public:
  using Bytes = std::vector<unsigned char>;

  /// The empty image: no pixels, 0 components.
  SbImage() = default;
  /// When `bytes` are not exactly the pixels of that size, or a value is out of range, the image is empty.
  SbImage(SbVec2i32 size, int components, Bytes bytes)
      : SbImage(SbVec3i32(size[0], size[1], 0), components, std::move(bytes)) {}
  /// Width, height, depth; depth 0 is a flat image.
  SbImage(SbVec3i32 size, int components, Bytes bytes);
  SbImage(SbVec3i32 size, int components, std::shared_ptr<Bytes const> bytes);
  /// Bytes that such an image takes; 0 when a value is out of range or the bytes are more than MAX_BYTES.
  static std::size_t countBytes(SbVec3i32 size, int components);
  static constexpr std::size_t MAX_BYTES = std::size_t(1) << 30;

  bool isEmpty() const { return !m_bytes; }
  /// Width, height, depth (0 for a flat image).
  SbVec3i32 const& getSize() const { return m_size; }
  int getWidth() const { return m_size[0]; }
  int getHeight() const { return m_size[1]; }
  int getDepth() const { return m_size[2]; }
  int getNumComponents() const { return m_components; }
  bool hasAlpha() const { return m_components == 2 || m_components == 4; }
  /// Null for the empty image.
  unsigned char const* getBytes() const { return m_bytes ? m_bytes->data() : nullptr; }
  std::size_t getNumBytes() const { return m_bytes ? m_bytes->size() : 0; }
  std::shared_ptr<Bytes const> const& getSharedBytes() const { return m_bytes; }
  /// The first of the pixel's components; the pixel must exist.
  unsigned char const* getPixel(int x, int y, int z = 0) const {
    return getBytes() + ((static_cast<std::size_t>(z) * m_size[1] + y) * m_size[0] + x) * m_components;
  }

  /// Same size and same pixels.
  friend bool operator==(SbImage const& a, SbImage const& b);

 private:
  SbVec3i32 m_size;
  int m_components = 0;
  std::shared_ptr<Bytes const> m_bytes;
};
