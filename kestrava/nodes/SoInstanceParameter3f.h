#pragma once

#include <algorithm>

#include "kestrava/fields/SoMFVec3f.h"
#include "kestrava/nodes/SoInstanceParameter.h"

/// A vec3 for each copy of a shape.
class SoInstanceParameter3f : public SoInstanceParameter {
  SO_NODE(SoInstanceParameter3f, SoInstanceParameter)
  SoMFVec3f value{this, "value"};

  int getNumComponents() const override { return 3; }
  void getValue(int index, float* components) const override {
    std::fill_n(components, 3, 0.0f);
    if (value.getNumValues() == 0) return;
    int const at = std::min(index, value.getNumValues() - 1);
    for (int i = 0; i < 3; ++i) components[i] = value[at][i];
  }

 protected:
  ~SoInstanceParameter3f() override = default;
};
