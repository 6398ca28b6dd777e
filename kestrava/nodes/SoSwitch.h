#pragma once

#include "kestrava/fields/SoSFInt32.h"
#include "kestrava/nodes/SoGroup.h"

/// A group that shows one of its children, none, or all.
class SoSwitch : public SoGroup {
  SO_NODE(SoSwitch, SoGroup)
  enum { NONE = -1, INHERIT = -2 /* as the switch met before */, ALL = -3 };

  SoSFInt32 whichChild{this, "whichChild", NONE}; ///< index, or one of the values above

 protected:
  ~SoSwitch() override = default;
};
