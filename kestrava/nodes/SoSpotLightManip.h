#pragma once

#include "kestrava/nodes/SoManipChild.h"
#include "kestrava/nodes/SoSpotLight.h"

/// A light with a cone that a user moves, turns and opens.
class SoSpotLightManip : public SoSpotLight {
  SO_NODE(SoSpotLightManip, SoSpotLight)
  SoSpotLightManip();

  // As in SoTransformManip.
  SoDragger* getDragger() const { return m_child.getDragger(); }
  bool setDragger(SoDragger* dragger) { return m_child.setDragger(dragger); }
  bool replaceNode(SoPath* path);
  bool replaceManip(SoPath* path, SoSpotLight* newOne);

  SoChildList* getChildren() const override { return m_child.getList(); }

 protected:
  ~SoSpotLightManip() override = default;
  void fieldChanged(SoField* field) override { m_child.manipChanged(field); }
  void copyContents(SoFieldContainer const&, SoCopier&) override { m_child.adopt(); }

 private:
  mutable SoManipChild m_child;
};
