#pragma once

#include "kestrava/engines/SoEngine.h"
#include "kestrava/fields/SoSFBool.h"
#include "kestrava/fields/SoSFFloat.h"
#include "kestrava/fields/SoSFTime.h"
#include "kestrava/fields/SoSFTrigger.h"

/// A stop watch: tells how much time has gone by since it was started.
class SoElapsedTime : public SoEngine {
  SO_ENGINE(SoElapsedTime, SoEngine)
  SoElapsedTime();

  SoSFTime timeIn{this, "timeIn", SbTime()};                 ///< the clock, unless connected otherwise
  SoSFFloat speed{this, "speed", 1.f};                       ///< seconds a second; below 0: backwards
  SoSFBool on{this, "on", true};                             ///< off: stands still; on again: begins at 0
  SoSFBool pause{this, "pause", false};                      ///< stands still, and goes on from there
  SoSFTrigger reset{this, "reset"};                          ///< goes back to 0
  SoSFTime timeOut{this, "timeOut", {}, SoField::EVENT_OUT}; ///< seconds

 protected:
  ~SoElapsedTime() override = default;
  void evaluate() override;
  void inputChanged(SoField* input) override;
  void copyContents(SoFieldContainer const& from, SoCopier& copier) override;

 private:
  bool isRunning() const { return m_isOn && !m_isPaused; }
  void advance();

  // The inputs as they were at m_last: what goes by until they change goes by as they say.
  SbTime m_last;
  SoField const* m_timeSource = nullptr;  // what timeIn followed then
  float m_speed = 1;
  bool m_isOn = true;
  bool m_isPaused = false;
  bool m_hasBegun = false;
  double m_elapsed = 0;
};
