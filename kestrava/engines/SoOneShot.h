#pragma once

#include "kestrava/engines/SoEngine.h"
#include "kestrava/fields/SoSFBitMask.h"
#include "kestrava/fields/SoSFBool.h"
#include "kestrava/fields/SoSFFloat.h"
#include "kestrava/fields/SoSFTime.h"
#include "kestrava/fields/SoSFTrigger.h"

/// A stop watch that runs once, for a time, whenever it is triggered.
class SoOneShot : public SoEngine {
  SO_ENGINE(SoOneShot, SoEngine)
  enum Flags {
    RETRIGGERABLE = 1, ///< a trigger while it runs starts it anew
    HOLD_FINAL = 2     ///< the outputs keep their last values when it ends
  };
  static std::vector<SoEnumSymbol> const& flagSymbols() {
    static std::vector<SoEnumSymbol> const symbols{{"RETRIGGERABLE", RETRIGGERABLE},
                                                   {"HOLD_FINAL", HOLD_FINAL}};
    return symbols;
  }
  SoOneShot();

  SoSFTime timeIn{this, "timeIn", SbTime()};      ///< the clock, unless connected otherwise
  SoSFTime duration{this, "duration", SbTime(1)}; ///< seconds
  SoSFTrigger trigger{this, "trigger"};           ///< starts it
  SoSFBitMask flags{this, "flags", 0, flagSymbols()};
  SoSFBool disable{this, "disable", false};                  ///< stops it, and keeps it from starting
  SoSFTime timeOut{this, "timeOut", {}, SoField::EVENT_OUT}; ///< seconds since it was started
  SoSFBool isActive{this, "isActive", false, SoField::EVENT_OUT};
  SoSFFloat ramp{this, "ramp", 0.f, SoField::EVENT_OUT}; ///< 0 to 1 while it runs

 protected:
  ~SoOneShot() override = default;
  void evaluate() override;
  void inputChanged(SoField* input) override;
  void copyContents(SoFieldContainer const& from, SoCopier& copier) override;

 private:
  void end();

  SbTime m_start;
  double m_elapsed = 0;
  double m_ramp = 0;
  bool m_isActive = false;
};
