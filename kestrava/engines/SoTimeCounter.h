#pragma once

#include "kestrava/engines/SoEngine.h"
#include "kestrava/fields/SoMFFloat.h"
#include "kestrava/fields/SoSFBool.h"
#include "kestrava/fields/SoSFFloat.h"
#include "kestrava/fields/SoSFShort.h"
#include "kestrava/fields/SoSFTime.h"
#include "kestrava/fields/SoSFTrigger.h"

/// Counts from `min` to `max` and over again as time goes by.
class SoTimeCounter : public SoEngine {
  SO_ENGINE(SoTimeCounter, SoEngine)
  SoTimeCounter();

  SoSFTime timeIn{this, "timeIn", SbTime()}; ///< the clock, unless connected otherwise
  SoSFShort min{this, "min", std::int16_t(0)};
  SoSFShort max{this, "max", std::int16_t(1)};
  SoSFShort step{this, "step", std::int16_t(1)}; ///< below 0: counts down
  SoSFBool on{this, "on", true};                 ///< else it stands still
  SoSFFloat frequency{this, "frequency", 1.f};   ///< whole rounds a second
  SoMFFloat duty{this, "duty", 1.f}; ///< how the time of a round is divided among the counts, in any unit
  SoSFShort reset{this, "reset", std::int16_t(0)}; ///< setting it goes on from that count
  SoSFTrigger syncIn{this, "syncIn"};              ///< begins over
  SoSFShort output{this, "output", std::int16_t(0), SoField::EVENT_OUT};
  SoSFTrigger syncOut{this, "syncOut", SoField::EVENT_OUT}; ///< triggered when it begins over

 protected:
  ~SoTimeCounter() override = default;
  void evaluate() override;
  void inputChanged(SoField* input) override;
  void copyContents(SoFieldContainer const& from, SoCopier& copier) override;

 private:
  int countStages() const;
  double startOf(int stage) const;
  int stageAt(double phase) const;
  void advance();

  SbTime m_last;
  SoField const* m_timeSource = nullptr;  // what timeIn followed then
  double m_phase = 0;    // 0 to 1, of the present round
  float m_frequency = 1; // as it was at m_last
  int m_output = 0;
  bool m_isOn = true;
  bool m_hasBegun = false;
};
