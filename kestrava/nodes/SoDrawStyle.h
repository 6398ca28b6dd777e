#pragma once

#include "kestrava/fields/SoSFBool.h"
#include "kestrava/fields/SoSFEnum.h"
#include "kestrava/fields/SoSFFloat.h"
#include "kestrava/fields/SoSFUShort.h"
#include "kestrava/nodes/SoNode.h"

/// How what follows is drawn.
class SoDrawStyle : public SoNode {
  SO_NODE(SoDrawStyle, SoNode)
  enum Style { FILLED, LINES, POINTS, INVISIBLE };
  static std::vector<SoEnumSymbol> const& styles() {
    static std::vector<SoEnumSymbol> const symbols{
        {"FILLED", FILLED}, {"LINES", LINES}, {"POINTS", POINTS}, {"INVISIBLE", INVISIBLE}};
    return symbols;
  }

  SoSFEnum style{this, "style", FILLED, styles()};
  SoSFFloat pointSize{this, "pointSize", 0.0f}; ///< pixels; 0 is one pixel
  SoSFFloat lineWidth{this, "lineWidth", 0.0f}; ///< pixels; 0 is one pixel
  SoSFUShort linePattern{this, "linePattern",
                         std::uint16_t(0xffff)}; ///< 16 bits, the lowest first along the line
  SoSFBool override_{this, "override", false};   ///< what this node sets can not be changed further down

 protected:
  ~SoDrawStyle() override = default;
};
