#pragma once

#include <algorithm>

#include "kestrava/fields/SoMFVec4f.h"
#include "kestrava/nodes/SoInstanceParameter.h"

/// A vec4 for each copy of a shape.
class SoInstanceParameter4f : public SoInstanceParameter {
  SO_NODE(SoInstanceParameter4f, SoInstanceParameter)
  SoMFVec4f value{this, "value"};

  int getNumComponents() const override { return 4; }
  void getValue(int index, float* components) const override {
    std::fill_n(components, 4, 0.0f);
    if (value.getNumValues() == 0) return;
    int const at = std::min(index, value.getNumValues() - 1);
    for (int i = 0; i < 4; ++i) components[i] = value[at][i];
  }

 protected:
  ~SoInstanceParameter4f() override = default;
};
