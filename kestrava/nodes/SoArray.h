#pragma once

#include "kestrava/fields/SoSFEnum.h"
#include "kestrava/fields/SoSFShort.h"
#include "kestrava/fields/SoSFVec3f.h"
#include "kestrava/nodes/SoGroup.h"

/// Shows its children at the places of a regular grid.
class SoArray : public SoGroup {
  SO_NODE(SoArray, SoGroup)
  enum Origin { FIRST, CENTER, LAST };
  static std::vector<SoEnumSymbol> const& origins() {
    static std::vector<SoEnumSymbol> const symbols{{"FIRST", FIRST}, {"CENTER", CENTER}, {"LAST", LAST}};
    return symbols;
  }
  static constexpr int MAX_COPIES = 1000000; ///< more are refused with a debug error

  SoSFShort numElements1{this, "numElements1", std::int16_t(1)};
  SoSFShort numElements2{this, "numElements2", std::int16_t(1)};
  SoSFShort numElements3{this, "numElements3", std::int16_t(1)};
  SoSFVec3f separation1{this, "separation1", SbVec3f(1, 0, 0)};
  SoSFVec3f separation2{this, "separation2", SbVec3f(0, 1, 0)};
  SoSFVec3f separation3{this, "separation3", SbVec3f(0, 0, 1)};
  SoSFEnum origin{this, "origin", FIRST, origins()}; ///< which copy stands at the origin

 protected:
  ~SoArray() override = default;
};
