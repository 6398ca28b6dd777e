#include "kestrava/engines/SoComputeBoundingBox.h"

#include "kestrava/actions/SoGetBoundingBoxAction.h"

SoComputeBoundingBox::SoComputeBoundingBox() : m_pathSensor(pathChanged, this) {
  m_pathSensor.setPriority(0);
}

void SoComputeBoundingBox::pathChanged(void* data, SoSensor*) {
  // As if the path were an input that tells of changes below it.
  auto* const self = static_cast<SoComputeBoundingBox*>(data);
  self->changed(SoNotification{SoNotification::UNSPECIFIED, self->m_pathSensor.getAttachedContainer()});
}

void SoComputeBoundingBox::inputChanged(SoField* input) {
  if (input == &path) watchPath();
  sendAll();
}

void SoComputeBoundingBox::watchPath() {
  SoPath* const watched = path.getValue();
  m_pathSensor.attach(watched ? watched->getHead() : nullptr);
}

void SoComputeBoundingBox::copyContents(SoFieldContainer const&, SoCopier&) { watchPath(); }

void SoComputeBoundingBox::evaluate() {
  // Boxes do not depend on the size of the picture, but for shapes of a size in pixels.
  SoGetBoundingBoxAction action(SbViewportRegion(100, 100));
  if (SoNode* const root = node.getValue()) {
    action.apply(root);
  } else if (SoPath* const way = path.getValue()) {
    action.apply(way);
  }
  SbBox3f const& box = action.getBoundingBox();
  min.setValue(box.isEmpty() ? SbVec3f() : box.getMin());
  max.setValue(box.isEmpty() ? SbVec3f() : box.getMax());
  boxCenter.setValue(box.getCenter());
  objectCenter.setValue(action.getCenter());
}
