#include "kestrava_qt/SoQtExaminerViewer.h"

#include <QWidget>
#include <cmath>

#include "kestrava/nodes/SoOrthographicCamera.h"
#include "kestrava/nodes/SoPerspectiveCamera.h"
#include "kestrava_qt/SoCameraMotion.h"

namespace {

SoRef<SoCamera> copyOf(SoCamera const& camera) {
  SoRef<SoCamera> copy(static_cast<SoCamera*>(SoNode::create(camera.getTypeId())));
  copy->copyFieldValues(camera);
  return copy;
}

}  // namespace

SoQtExaminerViewer::SoQtExaminerViewer(QWidget* parent, char const* name)
    : SoQtRenderArea(parent, name), m_camera(new SoPerspectiveCamera) {
  makeButtons();
  getViewWidget()->setMouseTracking(false);
  m_flight.setDuration(300);
  m_flight.setEasingCurve(QEasingCurve::InOutQuad);
  setCamera(m_camera);
  saveHomePosition();
  updateCursor();
}

SoQtExaminerViewer::~SoQtExaminerViewer() { m_flight.stop(); }

// What a frame is made of.

void SoQtExaminerViewer::beforeFrame() {
  SoGLRenderAction* const action = getSceneManager()->getGLRenderAction();
  action->setFitDepth(true);
  if (m_headlightSet) action->setHeadlight(m_headlight ? SoGLRenderer::ON : SoGLRenderer::OFF);
}

void SoQtExaminerViewer::setHeadlight(bool on) {
  m_headlightSet = true;
  m_headlight = on;
  getSceneManager()->scheduleRedraw();
}

// The camera.

void SoQtExaminerViewer::setSceneGraph(SoNode* root) {
  SoSceneManager* const manager = getSceneManager();
  manager->setSceneGraph(root);
  SoGLRenderAction* const action = manager->getGLRenderAction();
  manager->setUp(*action);
  action->prepare(root);
  SoCamera* const inScene = action->getDrawList().getCamera();
  if (!inScene) {
    // From a little to the right and above: more of a scene is seen than from straight in front.
    SoRef<SoCamera> const fresh(new SoPerspectiveCamera);
    fresh->position = SbVec3f(0.55f, 0.45f, 1);
    fresh->pointAt(SbVec3f(0, 0, 0));
    setCamera(fresh);
    viewAll();
    saveHomePosition();
    return;
  }
  SoRef<SoCamera> const own = copyOf(*inScene);
  SbMatrix const& matrix = action->getDrawList().getCameraMatrix();
  if (!matrix.isIdentity()) {
    SbVec3f translation, scale;
    SbRotation rotation, scaleOrientation;
    matrix.getTransform(translation, rotation, scale, scaleOrientation);
    own->position = matrix.multVecMatrix(own->position.getValue());
    own->orientation = own->orientation.getValue() * rotation;
  }
  own->viewportMapping = SoCamera::ADJUST_CAMERA;
  setCamera(own);
  saveHomePosition();
}

void SoQtExaminerViewer::setCamera(SoCamera* camera) {
  if (!camera) return;
  m_flight.stop();
  m_camera = SoRef<SoCamera>(camera);
  getSceneManager()->setCamera(camera);
  if (m_projectionButton) m_projectionButton->setChecked(camera->isOfType(SoOrthographicCamera::getClassTypeId()));
}

void SoQtExaminerViewer::viewAll() {
  SoSceneManager* const manager = getSceneManager();
  SoGLRenderAction* const action = manager->getGLRenderAction();
  m_flight.stop();
  manager->setUp(*action);
  action->prepare(manager->getSceneGraph());
  m_camera->viewAll(action->getDrawList().getBounds(), aspect());
}

void SoQtExaminerViewer::saveHomePosition() {
  m_home = copyOf(*m_camera);
}

void SoQtExaminerViewer::resetToHomePosition() {
  setCamera(copyOf(*m_home));
}

void SoQtExaminerViewer::togglePerspective() {
  SoRef<SoCamera> const other(SoCameraMotion::makeOtherProjection(*m_camera));
  setCamera(other);
}

bool SoQtExaminerViewer::seekToPoint(SbVec2s position) {
  SoSceneManager* const manager = getSceneManager();
  SoGLRenderAction* const action = manager->getGLRenderAction();
  manager->setUp(*action);
  action->prepare(manager->getSceneGraph());
  SbViewportRegion const& region = manager->getViewportRegion();
  SbLine const ray = action->getViewVolume().projectPointToLine(region.normalize(position));
  SoDrawList::Hit const hit = action->getDrawList().intersect(ray);
  if (hit.item < 0) return false;
  SbVec3f const ahead = m_camera->orientation.getValue().multVec(SbVec3f(0, 0, -1));
  float distance = m_camera->focalDistance.getValue(), height = 1;
  if (m_camera->isOfType(SoPerspectiveCamera::getClassTypeId())) {
    distance = std::max((hit.point - m_camera->position.getValue()).length() / 2, 1e-6f);
  } else {
    height = 0.5f;
  }
  fly(hit.point - ahead * distance, distance, height);
  return true;
}

/// Moves the camera there in a short time; `height` is the factor for an orthographic one.
void SoQtExaminerViewer::fly(SbVec3f const& position, float focalDistance, float height) {
  m_flight.stop();
  m_flight.disconnect(this);
  SbVec3f const start = m_camera->position.getValue();
  float const startDistance = m_camera->focalDistance.getValue();
  auto* const flat = dynamic_cast<SoOrthographicCamera*>(m_camera.get());
  float const startHeight = flat ? flat->height.getValue() : 0;
  m_flight.setStartValue(0.0f);
  m_flight.setEndValue(1.0f);
  SoRef<SoCamera> const camera = m_camera;
  connect(&m_flight, &QVariantAnimation::valueChanged, this, [=](QVariant const& value) {
    float const t = value.toFloat();
    camera->position = start + (position - start) * t;
    camera->focalDistance = startDistance + (focalDistance - startDistance) * t;
    if (flat) flat->height = startHeight * (1 + (height - 1) * t);
  });
  m_flight.start();
}

float SoQtExaminerViewer::aspect() const {
  QWidget const* const view = getViewWidget();
  return view && view->height() > 0 ? static_cast<float>(view->width()) / static_cast<float>(view->height()) : 1;
}
