#pragma once

#include <algorithm>

#include "kestrava/fields/SoMFFloat.h"
#include "kestrava/nodes/SoInstanceParameter.h"

/// A float for each copy of a shape.
class SoInstanceParameter1f : public SoInstanceParameter {
  SO_NODE(SoInstanceParameter1f, SoInstanceParameter)
  SoMFFloat value{this, "value"};

  int getNumComponents() const override { return 1; }
  void getValue(int index, float* components) const override {
    std::fill_n(components, 1, 0.0f);
    if (value.getNumValues() == 0) return;
    int const at = std::min(index, value.getNumValues() - 1);
    components[0] = value[at];
  }

 protected:
  ~SoInstanceParameter1f() override = default;
};
