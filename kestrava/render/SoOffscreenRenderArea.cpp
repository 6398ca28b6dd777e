#include "kestrava/render/SoOffscreenRenderArea.h"

#include <epoxy/gl.h>

#include <cstring>

#include "kestrava/base/SbImageWriter.h"
#include "kestrava/base/SoBufferObject.h"
#include "kestrava/base/SoError.h"
#include "kestrava/nodes/SoCamera.h"
#include "kestrava/nodes/SoGroup.h"
#include "kestrava/render/SoHeadlessContext.h"
#include "kestrava/render/SoSceneManager.h"

SoOffscreenRenderArea::SoOffscreenRenderArea() = default;

SoType SoOffscreenRenderArea::getClassTypeId() {
  static SoType const type = SoType::createType(SoBase::getClassTypeId(), "OffscreenRenderArea");
  return type;
}

SoOffscreenRenderArea::~SoOffscreenRenderArea() { releaseGL(); }

void SoOffscreenRenderArea::releaseGL() {
  if (!m_context) return;
  SoHeadlessContext::Current const current(*m_context);
  if (!current.succeeded()) return;
  releaseFramebuffers();
  m_action.releaseGL();
  if (m_manager) m_manager->releaseGL();
}

void SoOffscreenRenderArea::setSceneManager(SoSceneManager* manager) {
  releaseGL();
  m_manager = SoRef<SoSceneManager>(manager);
}

void SoOffscreenRenderArea::releaseFramebuffers() {
  glDeleteFramebuffers(2, m_framebuffers);
  glDeleteRenderbuffers(3, m_renderbuffers);
  // A renderer may get the names next.
  std::fill(std::begin(m_framebuffers), std::end(m_framebuffers), 0u);
  std::fill(std::begin(m_renderbuffers), std::end(m_renderbuffers), 0u);
  m_madeSize = SbVec2i32();
}

/// With the context current; leaves the first one bound.
bool SoOffscreenRenderArea::makeFramebuffers() {
  if (m_madeSize == m_size && m_madeSamples == m_numSamples) {
    glBindFramebuffer(GL_FRAMEBUFFER, m_framebuffers[0]);
    return true;
  }
  releaseFramebuffers();
  int largest = 0, samples = 0;
  glGetIntegerv(GL_MAX_RENDERBUFFER_SIZE, &largest);
  glGetIntegerv(GL_MAX_SAMPLES, &samples);
  largest = std::min(largest, 32767);
  if (m_size[0] > largest || m_size[1] > largest) {
    SoDebugError::post("SoOffscreenRenderArea", "%d x %d pixels are too many; %d in each direction is the most",
                       m_size[0], m_size[1], largest);
    return false;
  }
  samples = std::min(samples, m_numSamples);
  glGenFramebuffers(2, m_framebuffers);
  glGenRenderbuffers(3, m_renderbuffers);
  auto storage = [&](int which, unsigned format, int sampleCount) {
    glBindRenderbuffer(GL_RENDERBUFFER, m_renderbuffers[which]);
    glRenderbufferStorageMultisample(GL_RENDERBUFFER, sampleCount, format, m_size[0], m_size[1]);
  };
  storage(0, GL_RGBA8, samples);
  storage(1, GL_DEPTH24_STENCIL8, samples);
  storage(2, GL_RGBA8, 0);
  glBindFramebuffer(GL_FRAMEBUFFER, m_framebuffers[1]);
  glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, m_renderbuffers[2]);
  glBindFramebuffer(GL_FRAMEBUFFER, m_framebuffers[0]);
  glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, m_renderbuffers[0]);
  glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_STENCIL_ATTACHMENT, GL_RENDERBUFFER, m_renderbuffers[1]);
  if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
    SoDebugError::post("SoOffscreenRenderArea", "no memory for a picture of %d x %d pixels", m_size[0], m_size[1]);
    return false;
  }
  m_madeSize = m_size;
  m_madeSamples = m_numSamples;
  return true;
}

namespace {

/// Drawn pixels are colours multiplied by alpha, above a ground that is so transparent. Images hold plain colours;
/// where there is no alpha the ground is opaque.
void finishPixels(SbImage::Bytes& bytes, SoOffscreenRenderArea::OutputFormat format, SbColorRGBA const& ground) {
  if (format == SoOffscreenRenderArea::RGBA) {
    if (ground[3] >= 1) return;
    for (size_t i = 0; i + 3 < bytes.size(); i += 4) {
      int const alpha = bytes[i + 3];
      if (alpha == 0 || alpha == 255) continue;
      for (size_t k = i; k < i + 3; ++k) {
        bytes[k] = static_cast<unsigned char>(std::min(255, (bytes[k] * 255 + alpha / 2) / alpha));
      }
    }
    return;
  }
  size_t target = 0;
  for (size_t i = 0; i + 3 < bytes.size(); i += 4) {
    float const missing = 255.0f - bytes[i + 3];
    for (int k = 0; k < 3; ++k) {
      bytes[target++] = static_cast<unsigned char>(std::min(255.0f, bytes[i + k] + missing * ground[k] + 0.5f));
    }
  }
  bytes.resize(target);
}

}  // namespace

bool SoOffscreenRenderArea::draw(OutputFormat format, SbImage::Bytes& bytes) {
  if (m_size[0] <= 0 || m_size[1] <= 0) {
    SoDebugError::post("SoOffscreenRenderArea", "a size of %d x %d pixels is none", m_size[0], m_size[1]);
    return false;
  }
  if (!m_contextAsked) {
    m_contextAsked = true;
    m_context = SoHeadlessContext::make();
  }
  if (!m_context) return false;
  SoHeadlessContext::Current const current(*m_context);
  if (!current.succeeded() || !makeFramebuffers()) return false;
  SbViewportRegion const region(SbVec2s(static_cast<short>(m_size[0]), static_cast<short>(m_size[1])));
  if (m_manager) {
    m_manager->setViewportRegion(region);
    m_manager->render();
  } else {
    // Without a scene there is still a background.
    SoRef<SoNode> root = m_root;
    if (!root) root = SoRef<SoNode>(new SoGroup);
    m_action.setViewportRegion(region);
    m_action.apply(root);
  }
  glBindFramebuffer(GL_READ_FRAMEBUFFER, m_framebuffers[0]);
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, m_framebuffers[1]);
  glBlitFramebuffer(0, 0, m_size[0], m_size[1], 0, 0, m_size[0], m_size[1], GL_COLOR_BUFFER_BIT, GL_NEAREST);
  glBindFramebuffer(GL_FRAMEBUFFER, m_framebuffers[1]);
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  SbColorRGBA const& ground = m_manager ? m_manager->getBackgroundColorRGBA() : m_action.getBackgroundColor();
  bool const mixes = format == RGB && ground[3] < 1;
  bool const hasAlpha = format == RGBA || mixes;
  bytes.resize(static_cast<size_t>(m_size[0]) * m_size[1] * (hasAlpha ? 4 : 3));
  glReadPixels(0, 0, m_size[0], m_size[1], hasAlpha ? GL_RGBA : GL_RGB, GL_UNSIGNED_BYTE, bytes.data());
  if (hasAlpha) finishPixels(bytes, format, ground);
  return true;
}

bool SoOffscreenRenderArea::renderToImage(SbImage& image, OutputFormat format) {
  SbImage::Bytes bytes;
  if (!draw(format, bytes)) return false;
  image = SbImage(m_size, format == RGB ? 3 : 4, std::move(bytes));
  return true;
}

bool SoOffscreenRenderArea::renderToFile(SbString const& path, OutputFormat format) {
  SbImage image;
  if (!renderToImage(image, format)) return false;
  std::string const reason = SbImageWriter::write(path, image);
  if (!reason.empty()) SoDebugError::post("SoOffscreenRenderArea", "%s", reason.c_str());
  return reason.empty();
}

bool SoOffscreenRenderArea::renderToBuffer(SoBufferObject* buffer, OutputFormat format) {
  SbImage::Bytes bytes;
  if (!buffer || !draw(format, bytes)) return false;
  buffer->setSize(bytes.size());
  void* const target = buffer->map();
  if (!target) return false;
  std::memcpy(target, bytes.data(), bytes.size());
  buffer->unmap();
  return true;
}
