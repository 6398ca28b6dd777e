#pragma once

#include "kestrava/base/SbVec3i32.h"
#include "kestrava/fields/SoSField.h"

/// A block of numbers in up to three dimensions, x fastest. As text the three sizes, then the numbers.
class SoSFArray : public SoSField {
  SO_FIELD(SoSFArray, SoSField)
  SoSFArray() = default;
  SoSFArray(SoFieldContainer* container, char const* name, FieldType type = NORMAL)
      : SoSField(container, name, type) {}

  static constexpr std::size_t MAX_VALUES = std::size_t(1) << 28;

  /// Numbers along x, y and z; all 0 for the empty array.
  SbVec3i32 const& getSize() const {
    evaluate();
    return m_size;
  }
  std::vector<float> const& getValues() const {
    evaluate();
    return m_values;
  }
  /// False and unchanged when there are not exactly as many values as the sizes say.
  bool setValue(SbVec3i32 const& size, std::vector<float> values);

  bool readValue(SoInput& in) override;
  void writeValue(SoOutput& out) const override;

 protected:
  bool hasValueOf(SoField const& other) const override;
  void takeValueOf(SoField const& other) override;

 private:
  /// -1 when a size is out of range.
  static std::ptrdiff_t countValues(SbVec3i32 const& size);

  SbVec3i32 m_size;
  std::vector<float> m_values;
};
