#pragma once

#include <algorithm>

#include "kestrava/fields/SoMFVec2f.h"
#include "kestrava/nodes/SoInstanceParameter.h"

/// A vec2 for each copy of a shape.
class SoInstanceParameter2f : public SoInstanceParameter {
  SO_NODE(SoInstanceParameter2f, SoInstanceParameter)
  SoMFVec2f value{this, "value"};

  int getNumComponents() const override { return 2; }
  void getValue(int index, float* components) const override {
    std::fill_n(components, 2, 0.0f);
    if (value.getNumValues() == 0) return;
    int const at = std::min(index, value.getNumValues() - 1);
    for (int i = 0; i < 2; ++i) components[i] = value[at][i];
  }

 protected:
  ~SoInstanceParameter2f() override = default;
};
