#pragma once

#include "kestrava/engines/SoEngine.h"
#include "kestrava/fields/SoSFBool.h"
#include "kestrava/fields/SoSFTrigger.h"

/// Is switched on and off by triggers.
class SoOnOff : public SoEngine {
  SO_ENGINE(SoOnOff, SoEngine)
  SoOnOff() : SoEngine(EVENTS) {}

  SoSFTrigger on{this, "on"};
  SoSFTrigger off{this, "off"};
  SoSFTrigger toggle{this, "toggle"};
  SoSFBool isOn{this, "isOn", false, SoField::EVENT_OUT};
  SoSFBool isOff{this, "isOff", true, SoField::EVENT_OUT};

 protected:
  ~SoOnOff() override = default;
  void evaluate() override;
  void inputChanged(SoField* input) override;
  void copyContents(SoFieldContainer const& from, SoCopier& copier) override;

 private:
  bool m_isOn = false;
};
