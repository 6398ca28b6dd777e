#include "kestrava/render/SoGLRenderAction.h"

#include <cmath>
#include <limits>

#include "kestrava/nodes/SoPerspectiveCamera.h"

SoGLRenderAction::SoGLRenderAction(SbViewportRegion const& region) : SoStateAction(region) {
  m_frame.background = SbColorRGBA(0.22f, 0.25f, 0.3f, 1.0f);
}

SoGLRenderAction::~SoGLRenderAction() = default;

void SoGLRenderAction::setCamera(SoCamera* camera) { m_camera = SoRef<SoCamera>(camera); }

void SoGLRenderAction::prepare(SoNode* root) {
  m_frame.region = getViewportRegion();
  if (m_camera) {
    m_frame.volume = m_camera->getViewVolume(m_frame.region.getViewportAspectRatio());
    m_list.update(root, {m_frame.region, m_camera, m_frame.volume});
  } else {
    m_frame.volume = sceneVolume(root);
  }
  if (m_fitDepth) m_frame.volume = SoFitDepth(m_frame.volume, m_list.getBounds());
}

SbViewVolume SoGLRenderAction::sceneVolume(SoNode* root) {
  float const aspect = m_frame.region.getViewportAspectRatio();
  m_list.update(root, {m_frame.region, m_frontCamera, m_frame.volume});
  if (auto const volume = m_list.getCameraVolume(aspect)) {
    if (m_frontCamera) {
      m_frontCamera.reset();
      m_list.update(root, {m_frame.region, nullptr, *volume});
    }
    return *volume;
  }
  if (!m_frontCamera) m_frontCamera = SoRef<SoCamera>(new SoPerspectiveCamera);
  m_frontCamera->viewAll(m_list.getBounds(), aspect);
  SbViewVolume const volume = m_frontCamera->getViewVolume(aspect);
  // Levels of detail are chosen for the camera that was found just now.
  m_list.update(root, {m_frame.region, m_frontCamera, volume});
  return SoFitDepth(volume, m_list.getBounds());
}

void SoGLRenderAction::visit(SoNode* root) {
  prepare(root);
  m_renderer.render(m_list, m_frame);
  terminate();
}

SbViewVolume SoFitDepth(SbViewVolume const& volume, SbBox3f const& box) {
  if (box.isEmpty()) return volume;
  bool const perspective = volume.getProjectionType() == SbViewVolume::PERSPECTIVE;
  SbVec3f const eye = volume.getProjectionPoint(), ahead = volume.getProjectionDirection();
  float near = std::numeric_limits<float>::max(), far = std::numeric_limits<float>::lowest();
  for (int corner = 0; corner < 8; ++corner) {
    SbVec3f const point(corner & 1 ? box.getMax()[0] : box.getMin()[0], corner & 2 ? box.getMax()[1] : box.getMin()[1],
                        corner & 4 ? box.getMax()[2] : box.getMin()[2]);
    float const distance = (point - eye).dot(ahead);
    near = std::min(near, distance);
    far = std::max(far, distance);
  }
  if (!std::isfinite(near) || !std::isfinite(far) || (perspective && far <= 0)) return volume;
  // A flat scene has a depth too, and rounding must not cut the nearest point.
  float const margin = std::max({(far - near) * 0.01f, std::abs(far) * 1e-4f, 1e-6f});
  near -= margin;
  far += margin;
  SbViewVolume fitted;
  if (perspective) {
    // Below this ratio the depth buffer can not tell neighbouring surfaces apart.
    near = std::max(near, far / 5000);
    fitted.perspective(2 * std::atan(volume.getHeight() / 2 / volume.getNearDist()),
                       volume.getWidth() / volume.getHeight(), near, far);
  } else {
    fitted.ortho(-volume.getWidth() / 2, volume.getWidth() / 2, -volume.getHeight() / 2, volume.getHeight() / 2, near,
                 far);
  }
  fitted.rotateCamera(volume.getOrientation());
  fitted.translateCamera(eye);
  return fitted;
}
