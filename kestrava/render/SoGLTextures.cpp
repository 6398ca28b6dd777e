#include "kestrava/render/SoGLTextures.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <string_view>

#include "kestrava/base/SoError.h"

namespace {

/// Software blurs magnified images, too, when it is asked for anisotropic filtering, and is slow at it.
bool isHardware() {
  auto const* const name = reinterpret_cast<char const*>(glGetString(GL_RENDERER));
  if (!name) return false;
  std::string_view const renderer = name;
  return !renderer.starts_with("llvmpipe") && !renderer.starts_with("softpipe");
}

/// An image with no more pixels in any direction than that; of one with more, every second, third and so on.
SbImage reduced(SbImage const& image, int largest) {
  SbVec3i32 size = image.getSize();
  if (*std::max_element(&size[0], &size[0] + 3) <= largest) return image;
  SoDebugError::postWarning("SoGLTextures",
                            "an image of %d x %d x %d pixels is too large for this graphics system and is shown "
                            "coarser; %d in each direction is the most",
                            size[0], size[1], std::max(size[2], 1), largest);
  int step[3];
  for (int k = 0; k < 3; ++k) {
    step[k] = std::max(1, (size[k] + largest - 1) / largest);
    size[k] = (size[k] + step[k] - 1) / step[k];
  }
  SbImage::Bytes bytes;
  bytes.reserve(SbImage::countBytes(size, image.getNumComponents()));
  for (int z = 0; z < std::max(size[2], 1); ++z) {
    for (int y = 0; y < size[1]; ++y) {
      for (int x = 0; x < size[0]; ++x) {
        unsigned char const* const pixel = image.getPixel(x * step[0], y * step[1], z * step[2]);
        bytes.insert(bytes.end(), pixel, pixel + image.getNumComponents());
      }
    }
  }
  return SbImage(size, image.getNumComponents(), std::move(bytes));
}

}  // namespace

unsigned SoGLTextures::nameOf(SbImage const& image) {
  auto const [known, isNew] = m_entries.try_emplace(image.getSharedBytes());
  Entry& entry = known->second;
  entry.used = true;
  if (!isNew) return entry.name;
  bool const solid = image.getDepth() > 0;
  int largest = 0;
  glGetIntegerv(solid ? GL_MAX_3D_TEXTURE_SIZE : GL_MAX_TEXTURE_SIZE, &largest);
  SbImage const fitting = reduced(image, largest);
  static unsigned const formats[] = {GL_RED, GL_RG, GL_RGB, GL_RGBA};
  static int const internals[] = {GL_R8, GL_RG8, GL_RGB8, GL_RGBA8};
  unsigned const target = solid ? GL_TEXTURE_3D : GL_TEXTURE_2D;
  int const components = image.getNumComponents(), internal = internals[components - 1];
  unsigned const format = formats[components - 1];
  glGenTextures(1, &entry.name);
  glBindTexture(target, entry.name);
  if (solid) {
    glTexImage3D(target, 0, internal, fitting.getWidth(), fitting.getHeight(), fitting.getDepth(), 0, format,
                 GL_UNSIGNED_BYTE, fitting.getBytes());
  } else {
    glTexImage2D(target, 0, internal, fitting.getWidth(), fitting.getHeight(), 0, format, GL_UNSIGNED_BYTE,
                 fitting.getBytes());
  }
  glGenerateMipmap(target);
  if (components < 3) {
    int const swizzle[] = {GL_RED, GL_RED, GL_RED, components == 2 ? GL_GREEN : GL_ONE};
    glTexParameteriv(target, GL_TEXTURE_SWIZZLE_RGBA, swizzle);
  }
  return entry.name;
}

void SoGLTextures::bind(int unit, SbImage const& image, Repeat const& repeat) {
  glActiveTexture(static_cast<unsigned>(GL_TEXTURE0 + unit));
  unsigned const name = nameOf(image);
  glBindTexture(image.getDepth() > 0 ? GL_TEXTURE_3D : GL_TEXTURE_2D, name);
  unsigned& sampler = m_samplers[repeat[0] + 2 * repeat[1] + 4 * repeat[2]];
  if (!sampler) {
    static constexpr unsigned directions[] = {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T, GL_TEXTURE_WRAP_R};
    glGenSamplers(1, &sampler);
    for (size_t i = 0; i < repeat.size(); ++i) {
      glSamplerParameteri(sampler, directions[i], repeat[i] ? GL_REPEAT : GL_CLAMP_TO_EDGE);
    }
    glSamplerParameteri(sampler, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    glSamplerParameteri(sampler, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    if (epoxy_has_gl_extension("GL_EXT_texture_filter_anisotropic") && isHardware()) {
      // Floors stay sharp towards the horizon.
      glSamplerParameterf(sampler, GL_TEXTURE_MAX_ANISOTROPY_EXT, 8);
    }
  }
  glBindSampler(static_cast<unsigned>(unit), sampler);
}

void SoGLTextures::beginSweep() {
  for (auto& [bytes, entry] : m_entries) entry.used = false;
}

void SoGLTextures::keep(SbImage const& image) {
  auto const known = m_entries.find(image.getSharedBytes());
  if (known != m_entries.end()) known->second.used = true;
}

void SoGLTextures::endSweep() {
  std::erase_if(m_entries, [](auto const& item) {
    if (!item.second.used) glDeleteTextures(1, &item.second.name);
    return !item.second.used;
  });
}

void SoGLTextures::release() {
  beginSweep();
  endSweep();
  glDeleteSamplers(8, m_samplers);
  forget();
}

void SoGLTextures::forget() {
  m_entries.clear();
  std::fill(std::begin(m_samplers), std::end(m_samplers), 0u);
}
