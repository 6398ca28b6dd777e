#pragma once

#include "kestrava/engines/SoEngine.h"
#include "kestrava/fields/SoMFBool.h"
#include "kestrava/fields/SoMFEnum.h"

/// Combines truth values. Inputs with several values are worked off one by one; the last value of a shorter
/// input counts for the rest.
class SoBoolOperation : public SoEngine {
  SO_ENGINE(SoBoolOperation, SoEngine)
  enum Operation {
    CLEAR,
    SET,
    A,
    NOT_A,
    B,
    NOT_B,
    A_OR_B,
    NOT_A_OR_B,
    A_OR_NOT_B,
    NOT_A_OR_NOT_B,
    A_AND_B,
    NOT_A_AND_B,
    A_AND_NOT_B,
    NOT_A_AND_NOT_B,
    A_EQUALS_B,
    A_NOT_EQUALS_B
  };
  static std::vector<SoEnumSymbol> const& operations() {
    static std::vector<SoEnumSymbol> const symbols{{"CLEAR", CLEAR},
                                                   {"SET", SET},
                                                   {"A", A},
                                                   {"NOT_A", NOT_A},
                                                   {"B", B},
                                                   {"NOT_B", NOT_B},
                                                   {"A_OR_B", A_OR_B},
                                                   {"NOT_A_OR_B", NOT_A_OR_B},
                                                   {"A_OR_NOT_B", A_OR_NOT_B},
                                                   {"NOT_A_OR_NOT_B", NOT_A_OR_NOT_B},
                                                   {"A_AND_B", A_AND_B},
                                                   {"NOT_A_AND_B", NOT_A_AND_B},
                                                   {"A_AND_NOT_B", A_AND_NOT_B},
                                                   {"NOT_A_AND_NOT_B", NOT_A_AND_NOT_B},
                                                   {"A_EQUALS_B", A_EQUALS_B},
                                                   {"A_NOT_EQUALS_B", A_NOT_EQUALS_B}};
    return symbols;
  }

  SoMFBool a{this, "a", FALSE};
  SoMFBool b{this, "b", FALSE};
  SoMFEnum operation{this, "operation", A, operations()};
  SoMFBool output{this, "output", FALSE, SoField::EVENT_OUT};
  SoMFBool inverse{this, "inverse", TRUE, SoField::EVENT_OUT};

 protected:
  ~SoBoolOperation() override = default;
  void evaluate() override;
};
