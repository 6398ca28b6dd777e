#pragma once

#include "kestrava/fields/SoSFEnum.h"
#include "kestrava/nodes/SoTransformation.h"

/// Says in which unit of length what follows is given: scales it from the unit that was in use before.
/// Metres are in use at first.
class SoUnits : public SoTransformation {
  SO_NODE(SoUnits, SoTransformation)
  enum UnitType {
    METERS,
    CENTIMETERS,
    MILLIMETERS,
    MICROMETERS,
    MICRONS,
    NANOMETERS,
    ANGSTROMS,
    KILOMETERS,
    FEET,
    INCHES,
    POINTS,
    YARDS,
    MILES,
    NAUTICAL_MILES
  };
  static std::vector<SoEnumSymbol> const& allUnits() {
    static std::vector<SoEnumSymbol> const symbols{{"METERS", METERS},
                                                   {"CENTIMETERS", CENTIMETERS},
                                                   {"MILLIMETERS", MILLIMETERS},
                                                   {"MICROMETERS", MICROMETERS},
                                                   {"MICRONS", MICRONS},
                                                   {"NANOMETERS", NANOMETERS},
                                                   {"ANGSTROMS", ANGSTROMS},
                                                   {"KILOMETERS", KILOMETERS},
                                                   {"FEET", FEET},
                                                   {"INCHES", INCHES},
                                                   {"POINTS", POINTS},
                                                   {"YARDS", YARDS},
                                                   {"MILES", MILES},
                                                   {"NAUTICAL_MILES", NAUTICAL_MILES}};
    return symbols;
  }

  SoSFEnum units{this, "units", METERS, allUnits()};

 protected:
  ~SoUnits() override = default;
};
