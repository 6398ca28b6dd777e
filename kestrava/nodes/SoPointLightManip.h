#pragma once

#include "kestrava/nodes/SoManipChild.h"
#include "kestrava/nodes/SoPointLight.h"

/// A light in a point that a user moves.
class SoPointLightManip : public SoPointLight {
  SO_NODE(SoPointLightManip, SoPointLight)
  SoPointLightManip();

  // As in SoTransformManip.
  SoDragger* getDragger() const { return m_child.getDragger(); }
  bool setDragger(SoDragger* dragger) { return m_child.setDragger(dragger); }
  bool replaceNode(SoPath* path);
  bool replaceManip(SoPath* path, SoPointLight* newOne);

  SoChildList* getChildren() const override { return m_child.getList(); }

 protected:
  ~SoPointLightManip() override = default;
  void fieldChanged(SoField* field) override { m_child.manipChanged(field); }
  void copyContents(SoFieldContainer const&, SoCopier&) override { m_child.adopt(); }

 private:
  mutable SoManipChild m_child;
};
