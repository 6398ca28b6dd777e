#include "kestrava/base/SbImage.h"

#include <algorithm>

SbImage::SbImage(SbVec3i32 size, int components, Bytes bytes)
    : SbImage(size, components, std::make_shared<Bytes const>(std::move(bytes))) {}

SbImage::SbImage(SbVec3i32 size, int components, std::shared_ptr<Bytes const> bytes) {
  std::size_t const count = countBytes(size, components);
  if (count == 0 || !bytes || bytes->size() != count) return;
  m_size = size;
  m_components = components;
  m_bytes = std::move(bytes);
}

std::size_t SbImage::countBytes(SbVec3i32 size, int components) {
  if (size[0] < 1 || size[1] < 1 || size[2] < 0 || components < 1 || components > 4) return 0;
  std::size_t count = static_cast<std::size_t>(components);
  for (int extent : {size[0], size[1], std::max(size[2], 1)}) {
    if (static_cast<std::size_t>(extent) > MAX_BYTES / count) return 0;
    count *= static_cast<std::size_t>(extent);
  }
  return count;
}

bool operator==(SbImage const& a, SbImage const& b) {
  if (a.m_size != b.m_size || a.m_components != b.m_components) return false;
  return a.m_bytes == b.m_bytes || (a.m_bytes && b.m_bytes && *a.m_bytes == *b.m_bytes);
}
