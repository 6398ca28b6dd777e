#pragma once

#include "kestrava/nodes/SoClipPlane.h"
#include "kestrava/nodes/SoManipChild.h"

/// A clip plane that a user moves and turns.
class SoClipPlaneManip : public SoClipPlane {
  SO_NODE(SoClipPlaneManip, SoClipPlane)
  SoClipPlaneManip();

  // As in SoTransformManip.
  SoDragger* getDragger() const { return m_child.getDragger(); }
  bool setDragger(SoDragger* dragger) { return m_child.setDragger(dragger); }
  bool replaceNode(SoPath* path);
  bool replaceManip(SoPath* path, SoClipPlane* newOne);

  SoChildList* getChildren() const override { return m_child.getList(); }

 protected:
  ~SoClipPlaneManip() override = default;
  void fieldChanged(SoField* field) override { m_child.manipChanged(field); }
  void copyContents(SoFieldContainer const&, SoCopier&) override { m_child.adopt(); }

 private:
  mutable SoManipChild m_child;
};
