#pragma once

#include "kestrava/base/SbImage.h"
#include "kestrava/fields/SoMFString.h"
#include "kestrava/fields/SoSFBool.h"
#include "kestrava/fields/SoSFColor.h"
#include "kestrava/fields/SoSFEnum.h"
#include "kestrava/fields/SoSFImage.h"
#include "kestrava/nodes/SoNode.h"
#include "kestrava/nodes/SoTexture2.h"

/// An image with depth: what follows looks as if cut out of it. Shapes that bring no texture coordinates fill
/// it: their bounds are its rim.
class SoTexture3 : public SoNode {
  SO_NODE(SoTexture3, SoNode)
  enum Wrap { REPEAT, CLAMP };
  enum Model { MODULATE, DECAL, BLEND };

  SoMFString filenames{this, "filenames"}; ///< one file a slice, equal in size; looked for in the search path
  SoSFImage images{this, "images"};        ///< with a depth; counts while there are no filenames
  SoSFEnum wrapR{this, "wrapR", REPEAT, SoTexture2::wraps()}; ///< across the slices
  SoSFEnum wrapS{this, "wrapS", REPEAT, SoTexture2::wraps()};
  SoSFEnum wrapT{this, "wrapT", REPEAT, SoTexture2::wraps()};
  SoSFEnum model{this, "model", MODULATE, SoTexture2::models()};
  SoSFColor blendColor{this, "blendColor", SbColor(0, 0, 0)}; ///< for BLEND
  SoSFBool override_{this, "override", false}; ///< what this node sets can not be changed further down

  /// The slices of the files, or else the field; empty when there is none, otherwise with a depth of at
  /// least 1. A file that can not be read, or is not as large as the first, is posted once as a read error.
  SbImage getImage() const;

 protected:
  void fieldChanged(SoField* field) override;
  ~SoTexture3() override = default;

 private:
  SbImage readSlices() const;
  mutable SbImage m_image;
  mutable bool m_asked = false;
};
