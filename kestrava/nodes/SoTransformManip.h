#pragma once

#include "kestrava/nodes/SoManipChild.h"
#include "kestrava/nodes/SoTransform.h"

/// Base of the transforms that a user changes in the view, by a dragger around what follows.
///
/// The dragger's fields and the transform's of the same names follow each other. The dragger is drawn and
/// picked at the transform's place; it has no bounds, and is neither written nor searched. Files hold the
/// transform's fields.
class SoTransformManip : public SoTransform {
  SO_ABSTRACT_NODE(SoTransformManip, SoTransform)

  SoDragger* getDragger() const { return m_child.getDragger(); }
  /// See SoManipChild::setDragger.
  bool setDragger(SoDragger* dragger) { return m_child.setDragger(dragger); }
  /// Takes the place of the SoTransform at the path's tail with its values, see SoManipChild::exchangeTail.
  bool replaceNode(SoPath* path);
  /// Gives its place, at the path's tail, to a transform, which gets the values; null: a new SoTransform.
  bool replaceManip(SoPath* path, SoTransform* newOne);

  SoChildList* getChildren() const override { return m_child.getList(); }

 protected:
  explicit SoTransformManip(SoDragger* dragger = nullptr);
  ~SoTransformManip() override = default;
  void fieldChanged(SoField* field) override { m_child.manipChanged(field); }
  void copyContents(SoFieldContainer const&, SoCopier&) override { m_child.adopt(); }

 private:
  mutable SoManipChild m_child;
};
