#pragma once

#include "kestrava/nodes/SoDirectionalLight.h"
#include "kestrava/nodes/SoManipChild.h"

/// A light from far away whose direction a user changes by an arrow. The arrow's place means nothing to the
/// light.
class SoDirectionalLightManip : public SoDirectionalLight {
  SO_NODE(SoDirectionalLightManip, SoDirectionalLight)
  SoDirectionalLightManip();

  // As in SoTransformManip.
  SoDragger* getDragger() const { return m_child.getDragger(); }
  bool setDragger(SoDragger* dragger) { return m_child.setDragger(dragger); }
  bool replaceNode(SoPath* path);
  bool replaceManip(SoPath* path, SoDirectionalLight* newOne);

  SoChildList* getChildren() const override { return m_child.getList(); }

 protected:
  ~SoDirectionalLightManip() override = default;
  void fieldChanged(SoField* field) override { m_child.manipChanged(field); }
  void copyContents(SoFieldContainer const&, SoCopier&) override { m_child.adopt(); }

 private:
  mutable SoManipChild m_child;
};
