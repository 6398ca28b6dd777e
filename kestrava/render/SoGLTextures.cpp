#include "kestrava/render/SoGLTextures.h"

#include <epoxy/gl.h>

#include "kestrava/base/SoError.h"

unsigned SoGLTextures::nameOf(SbImage const& image) {
  auto const [known, isNew] = m_entries.try_emplace(image.getSharedBytes());
  Entry& entry = known->second;
  entry.used = true;
  if (!isNew) return entry.name;
  int largest = 0;
  glGetIntegerv(GL_MAX_TEXTURE_SIZE, &largest);
  if (image.getWidth() > largest || image.getHeight() > largest) {
    SoDebugError::postWarning("SoGLTextures", "an image of %d x %d pixels is too large for this graphics system",
                              image.getWidth(), image.getHeight());
    return 0;
  }
  static unsigned const formats[] = {GL_RED, GL_RG, GL_RGB, GL_RGBA};
  static int const internals[] = {GL_R8, GL_RG8, GL_RGB8, GL_RGBA8};
  int const components = image.getNumComponents();
  glGenTextures(1, &entry.name);
  glBindTexture(GL_TEXTURE_2D, entry.name);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glTexImage2D(GL_TEXTURE_2D, 0, internals[components - 1], image.getWidth(), image.getHeight(), 0,
               formats[components - 1], GL_UNSIGNED_BYTE, image.getBytes());
  glGenerateMipmap(GL_TEXTURE_2D);
  if (components < 3) {
    int const swizzle[] = {GL_RED, GL_RED, GL_RED, components == 2 ? GL_GREEN : GL_ONE};
    glTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_SWIZZLE_RGBA, swizzle);
  }
  return entry.name;
}

bool SoGLTextures::bind(int unit, SbImage const& image, bool repeatS, bool repeatT) {
  glActiveTexture(static_cast<unsigned>(GL_TEXTURE0 + unit));
  unsigned const name = nameOf(image);
  if (!name) return false;
  glBindTexture(GL_TEXTURE_2D, name);
  unsigned& sampler = m_samplers[repeatS + 2 * repeatT];
  if (!sampler) {
    glGenSamplers(1, &sampler);
    glSamplerParameteri(sampler, GL_TEXTURE_WRAP_S, repeatS ? GL_REPEAT : GL_CLAMP_TO_EDGE);
    glSamplerParameteri(sampler, GL_TEXTURE_WRAP_T, repeatT ? GL_REPEAT : GL_CLAMP_TO_EDGE);
    glSamplerParameteri(sampler, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    glSamplerParameteri(sampler, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
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
  glDeleteSamplers(4, m_samplers);
  forget();
}

void SoGLTextures::forget() {
  m_entries.clear();
  std::fill(std::begin(m_samplers), std::end(m_samplers), 0u);
}
