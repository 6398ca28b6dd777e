#pragma once

#include "kestrava/fields/SoField.h"
#include "kestrava/fields/SoNumbers.h"
#include "kestrava/io/SoValueIO.h"

/// Base of the fields with one value; its type name is "SField".
class SoSField : public SoField {
  SO_FIELD_COMMON_(SoSField, SoField, nullptr)
 protected:
  using SoField::SoField;
};

/// A field with one value of a plain type; SoReadValue and SoWriteValue (SoValueIO.h) know its text.
template <class T>
class SoSFValue : public SoSField {
 public:
  using ValueType = T;

  T const& getValue() const {
    evaluate();
    return m_value;
  }
  void setValue(T const& value) {
    m_value = value;
    valueChanged();
  }
  /// Setting the value that is there already still notifies.
  SoSFValue& operator=(T const& value) {
    setValue(value);
    return *this;
  }
  friend bool operator==(SoSFValue const& a, SoSFValue const& b) { return a.getValue() == b.getValue(); }

  bool readValue(SoInput& in) override { return SoReadValue(in, m_value); }
  void writeValue(SoOutput& out) const override { SoWriteValue(out, m_value); }

 protected:
  explicit SoSFValue(SoFieldContainer* container = nullptr, char const* name = nullptr, T const& value = T(),
                     FieldType type = NORMAL, std::vector<SoEnumSymbol> const* symbols = nullptr)
      : SoSField(container, name, type, symbols), m_value(value) {}
  bool hasValueOf(SoField const& other) const override {
    other.evaluate();
    evaluate();
    return m_value == static_cast<SoSFValue const&>(other).m_value;
  }
  void takeValueOf(SoField const& other) override { m_value = static_cast<SoSFValue const&>(other).m_value; }
  int countNumbers() const override { return SoNumbers<T>::COUNT; }
  void getNumbers(std::vector<double>& numbers) const override {
    if constexpr (SoNumbers<T>::COUNT > 0) {
      numbers.resize(numbers.size() + SoNumbers<T>::COUNT);
      SoNumbers<T>::get(m_value, &numbers[numbers.size() - SoNumbers<T>::COUNT]);
    }
  }
  void setNumbers(std::vector<double> const& numbers) override {
    if constexpr (SoNumbers<T>::COUNT > 0) {
      if (!numbers.empty()) m_value = SoNumbers<T>::make(numbers.data());
    }
  }

  T m_value;
};

/// Declares a field class of one value of a plain type.
#define SO_SFIELD(Class, T)                                                                           \
  class Class : public SoSFValue<T> {                                                                 \
    SO_FIELD(Class, SoSField)                                                                         \
    Class() = default;                                                                                \
    Class(SoFieldContainer* container, char const* name, T const& value = T(), FieldType type = NORMAL) \
        : SoSFValue<T>(container, name, value, type) {}                                               \
    using SoSFValue<T>::operator=;                                                                    \
  };
