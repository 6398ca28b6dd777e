#pragma once

#include "kestrava/engines/SoEngine.h"
#include "kestrava/fields/SoSFShort.h"
#include "kestrava/fields/SoSFTrigger.h"

/// Counts triggers from `min` to `max`, then over again.
class SoCounter : public SoEngine {
  SO_ENGINE(SoCounter, SoEngine)
  SoCounter() : SoEngine(EVENTS) {}

  SoSFShort min{this, "min", std::int16_t(0)};
  SoSFShort max{this, "max", std::int16_t(1)};
  SoSFShort step{this, "step", std::int16_t(1)}; ///< below 0: counts down
  SoSFTrigger trigger{this, "trigger"};
  SoSFShort reset{this, "reset", std::int16_t(0)}; ///< setting it makes the next trigger go on from here
  SoSFShort output{this, "output", std::int16_t(0), SoField::EVENT_OUT};
  SoSFTrigger syncOut{this, "syncOut", SoField::EVENT_OUT}; ///< triggered when it begins over

 protected:
  ~SoCounter() override = default;
  void evaluate() override;
  void inputChanged(SoField* input) override;
  void copyContents(SoFieldContainer const& from, SoCopier& copier) override;

 private:
  void count();

  int m_count = 0;
  bool m_hasCount = false; // else the first trigger finds it at `min`
  bool m_willReset = false;
};
