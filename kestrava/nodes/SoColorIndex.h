#pragma once

#include "kestrava/base/SbColor.h"
#include "kestrava/fields/SoMFColor.h"
#include "kestrava/fields/SoMFInt32.h"
#include "kestrava/fields/SoSFBool.h"
#include "kestrava/nodes/SoNode.h"

/// The diffuse colours of what follows as indices into a palette.
class SoColorIndex : public SoNode {
  SO_NODE(SoColorIndex, SoNode)
  SoMFInt32 index{this, "index", 1};           ///< beyond the palette it starts over
  SoMFColor palette{this, "palette"};          ///< empty: sixteen well-known colours from black to white
  SoSFBool override_{this, "override", false}; ///< what this node sets can not be changed further down

  /// One colour an index; valid until a field changes.
  std::vector<SbColor> const& getColors() const;

 protected:
  void fieldChanged(SoField* field) override;
  ~SoColorIndex() override = default;

 private:
  mutable std::vector<SbColor> m_colors;
  mutable bool m_made = false;
};
