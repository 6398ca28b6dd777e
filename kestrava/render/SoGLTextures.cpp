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

}  // namespace

unsigned SoGLTextures::nameOf(SbImage const& image) {
  auto const [known, isNew] = m_entries.try_emplace(image.getSharedBytes());
  Entry& entry = known->second;
  entry.used = true;
  if (!isNew) return entry.name;
  bool const solid = image.getDepth() > 0;
  int largest = 0;
  glGetIntegerv(solid ? GL_MAX_3D_TEXTURE_SIZE : GL_MAX_TEXTURE_SIZE, &largest);
  if (image.getWidth() > largest || image.getHeight() > largest || image.getDepth() > largest) {
    SoDebugError::postWarning("SoGLTextures",
                              "an image of %d x %d x %d pixels is too large for this graphics system; %d in each "
                              "direction is the most",
                              image.getWidth(), image.getHeight(), std::max(image.getDepth(), 1), largest);
    return 0;
  }
  static unsigned const formats[] = {GL_RED, GL_RG, GL_RGB, GL_RGBA};
  static int const internals[] = {GL_R8, GL_RG8, GL_RGB8, GL_RGBA8};
  unsigned const target = solid ? GL_TEXTURE_3D : GL_TEXTURE_2D;
  int const components = image.getNumComponents(), internal = internals[components - 1];
  unsigned const format = formats[components - 1];
  glGenTextures(1, &entry.name);
  glBindTexture(target, entry.name);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  if (solid) {
    glTexImage3D(target, 0, internal, image.getWidth(), image.getHeight(), image.getDepth(), 0, format,
                 GL_UNSIGNED_BYTE, image.getBytes());
  } else {
    glTexImage2D(target, 0, internal, image.getWidth(), image.getHeight(), 0, format, GL_UNSIGNED_BYTE,
                 image.getBytes());
  }
  glGenerateMipmap(target);
  if (components < 3) {
    int const swizzle[] = {GL_RED, GL_RED, GL_RED, components == 2 ? GL_GREEN : GL_ONE};
    glTexParameteriv(target, GL_TEXTURE_SWIZZLE_RGBA, swizzle);
  }
  return entry.name;
}

bool SoGLTextures::bind(int unit, SbImage const& image, Repeat const& repeat) {
  glActiveTexture(static_cast<unsigned>(GL_TEXTURE0 + unit));
  unsigned const name = nameOf(image);
  if (!name) return false;
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
  return true;
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
