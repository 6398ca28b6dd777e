#pragma once

#include "kestrava/base/SbBox3f.h"
#include "kestrava/base/SbColor.h"
#include "kestrava/fields/SoMFVec3f.h"
#include "kestrava/fields/SoSFColor.h"
#include "kestrava/fields/SoSFFloat.h"
#include "kestrava/fields/SoSFInt32.h"
#include "kestrava/nodes/SoSeparator.h"

/// In the traversal state below a dragger.
struct SoDraggerElement {
  SbBox3f around;           ///< what it surrounds, before its placement; empty: nothing
  SbVec3f lengths{1, 1, 1}; ///< of the axes of the handles' space, where the dragger stands
};

/// A part of a dragger that a user can take hold of. It gives what is below it a look of its own, whatever
/// the scene has set before: lit, in one colour that tells whether the pointer is over it and whether it is
/// being dragged.
class SoDraggerHandle : public SoSeparator {
  SO_NODE(SoDraggerHandle, SoSeparator)
  enum Look { NORMAL, POINTED_AT, ACTIVE };

  SoSFColor color{this, "color", SbColor(0.15f, 0.6f, 0.68f)};
  SoSFColor activeColor{this, "activeColor", SbColor(1.0f, 0.8f, 0.1f)};
  SoSFFloat transparency{this, "transparency", 0.0f}; ///< 0 opaque, 1 invisible
  /// Where the geometry stands; at each place it is as large in all directions as if the dragger were scaled
  /// evenly. Empty: at the origin, scaled as the dragger is.
  SoMFVec3f anchor{this, "anchor"};
  SoSFInt32 look{this, "look", NORMAL, SoField::PRIVATE};

  /// Notifies when the look changes.
  void setLook(Look wanted) {
    if (look.getValue() != wanted) look = wanted;
  }
  /// The colour of the present look.
  SbColor getShownColor() const;

 protected:
  ~SoDraggerHandle() override = default;
};
