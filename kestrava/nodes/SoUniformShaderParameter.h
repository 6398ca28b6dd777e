#pragma once

#include <cstdint>
#include <cstring>
#include <vector>

#include "kestrava/base/SbImage.h"
#include "kestrava/fields/SoSFInt32.h"
#include "kestrava/fields/SoSFString.h"
#include "kestrava/nodes/SoNode.h"

/// What a shader parameter hands to a uniform variable.
struct SoUniformValue {
  enum Kind { NONE, FLOATS, INTEGERS, MATRICES, IMAGE } kind = NONE;
  int components = 1; // of a value: 1 to 4; 16 for a matrix
  std::vector<float> floats;
  std::vector<std::int32_t> integers;
  SbImage image; // empty for IMAGE: the texture that the scene sets at the shape
  bool repeat[3] = {true, true, true};

  /// From values that consist of floats.
  template <class T> static SoUniformValue ofFloats(T const* values, int count) {
    SoUniformValue result;
    result.kind = FLOATS;
    result.components = sizeof(T) / sizeof(float);
    result.floats.resize(static_cast<size_t>(count) * result.components);
    if (count > 0) std::memcpy(result.floats.data(), values, count * sizeof(T));
    return result;
  }
  /// From values that consist of 32-bit integers.
  template <class T> static SoUniformValue ofIntegers(T const* values, int count) {
    SoUniformValue result;
    result.kind = INTEGERS;
    result.components = sizeof(T) / sizeof(std::int32_t);
    result.integers.resize(static_cast<size_t>(count) * result.components);
    if (count > 0) std::memcpy(result.integers.data(), values, count * sizeof(T));
    return result;
  }
};

/// Base of the nodes that give a value to a uniform variable of a shader.
class SoUniformShaderParameter : public SoNode {
  SO_ABSTRACT_NODE(SoUniformShaderParameter, SoNode)
  SoSFString name{this, "name"};               ///< of the variable; a part of one is named as in GLSL
  SoSFInt32 identifier{this, "identifier", 0}; ///< location of the variable, counts while there is no name

  virtual SoUniformValue getUniformValue() const = 0;

 protected:
  SoUniformShaderParameter() = default;
  ~SoUniformShaderParameter() override = default;
};
