#pragma once

#include "kestrava/base/SbBox3f.h"
#include "kestrava/fields/SoSFEnum.h"
#include "kestrava/nodes/SoGroup.h"

/// A group whose children change nothing for what follows it.
class SoSeparator : public SoGroup {
  SO_NODE(SoSeparator, SoGroup)
  enum Caching { ON, OFF, AUTO };
  static std::vector<SoEnumSymbol> const& cachings() {
    static std::vector<SoEnumSymbol> const symbols{{"ON", ON}, {"OFF", OFF}, {"AUTO", AUTO}};
    return symbols;
  }

  SoSFEnum renderCaching{this, "renderCaching", AUTO, cachings()};
  SoSFEnum boundingBoxCaching{this, "boundingBoxCaching", AUTO,
                              cachings()}; ///< OFF: bounds are computed every time
  SoSFEnum renderCulling{this, "renderCulling", AUTO, cachings()};
  SoSFEnum pickCulling{this, "pickCulling", AUTO, cachings()};

 protected:
  ~SoSeparator() override = default;

 private:
  friend class SoGetBoundingBoxAction;
  mutable SbBox3f m_bounds;             // of the children, in their coordinates
  mutable std::uint64_t m_boundsId = 0; // node id that they belong to; 0: none
};
