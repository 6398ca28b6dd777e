#pragma once

#include "kestrava/base/SbRotation.h"
#include "kestrava/engines/SoEngine.h"
#include "kestrava/engines/SoEngineArrays.h"
#include "kestrava/fields/SoSFFloat.h"

/// Base of the engines that compute values between two others; the fields are declared here. Inputs with
/// several values are worked off one by one; the last value of a shorter input counts for the rest.
template <class Field> class SoInterpolate : public SoEngine {
  SO_ABSTRACT_ENGINE(SoInterpolate, SoEngine)

  SoSFFloat alpha{this, "alpha", 0.f}; ///< 0: input0, 1: input1
  Field input0{this, "input0", typename Field::ValueType{}};
  Field input1{this, "input1", typename Field::ValueType{}};
  Field output{this, "output", typename Field::ValueType{}, SoField::EVENT_OUT};

 protected:
  ~SoInterpolate() override = default;
  void evaluate() override {
    using Value = typename Field::ValueType;
    int const count = SoEngineArrays::getLongest(input0, input1);
    std::vector<Value> values;
    for (int i = 0; i < count; ++i) {
      values.push_back(
          between(SoEngineArrays::at(input0, i), SoEngineArrays::at(input1, i), alpha.getValue()));
    }
    output.setValues(std::move(values));
  }

 private:
  template <class T> static T between(T const& a, T const& b, float t) {
    // The ends exactly.
    return t == 0 ? a : t == 1 ? b : a + (b - a) * t;
  }
  static SbRotation between(SbRotation const& a, SbRotation const& b, float t) {
    return SbRotation::slerp(a, b, t);
  }
};
