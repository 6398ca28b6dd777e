#pragma once

#include <algorithm>
#include <iterator>
#include <span>

#include "kestrava/fields/SoNumbers.h"
#include "kestrava/fields/SoSField.h"
#include "kestrava/io/SoValueIO.h"

/// Base of the fields with any number of values; its type name is "MField".
class SoMField : public SoField {
  SO_FIELD_COMMON_(SoMField, SoField, nullptr)

  int getNum() const { return getNumValues(); }
  /// Text of one value; empty when there is none at that index.
  virtual void get1(int index, SbString& text) const = 0;
  /// Sets one value from text, growing the field when needed; false and unchanged when the text is none.
  virtual bool set1(int index, char const* text) = 0;
  /// Removes values from an index on; `count` -1 means all that follow. Notifies.
  virtual void deleteValues(int start, int count = -1) = 0;
  /// Makes room for `count` default values before an index. Notifies.
  virtual void insertSpace(int start, int count) = 0;
  /// Sets a single-value field to the value at an index; false where there is none or it does not fit.
  virtual bool getOne(int index, SoField& single) const {
    SbString text, reason;
    if (index < 0 || index >= getNumValues()) return false;
    get1(index, text);
    return single.set(text.c_str(), &reason);
  }
  /// Adds the values of a field of the same type behind its own; false for another type. Notifies.
  bool append(SoMField const& other) {
    if (other.getTypeId() != getTypeId()) return false;
    other.evaluate();
    evaluate();
    appendValuesOf(other);
    valueChanged();
    return true;
  }

 protected:
  using SoField::SoField;
  virtual void appendValuesOf(SoMField const& other) = 0;
};

/// A field with any number of values of a plain type, stored side by side.
template <class T>
class SoMFValue : public SoMField {
 public:
  using ValueType = T;

  int getNumValues() const override {
    evaluate();
    return static_cast<int>(m_values.size());
  }
  /// The values from an index on; valid until the field changes.
  T const* getValues(int start = 0) const {
    evaluate();
    return m_values.data() + start;
  }
  std::span<T const> values() const {
    evaluate();
    return m_values;
  }
  T const& operator[](int i) const {
    evaluate();
    return m_values[i];
  }
  void setNum(int count) {
    evaluate();
    m_values.resize(count);
    valueChanged();
  }
  /// Makes it the only value.
  void setValue(T const& value) {
    m_values.assign(1, value);
    valueChanged();
  }
  /// Replaces all values.
  void setValues(std::vector<T> values) {
    m_values = std::move(values);
    valueChanged();
  }
  /// Replaces values from an index on; the field grows when they do not fit.
  void setValues(int start, int count, T const* values) {
    evaluate();
    if (start + count > static_cast<int>(m_values.size())) m_values.resize(start + count);
    std::copy_n(values, count, m_values.begin() + start);
    valueChanged();
  }
  void set1Value(int index, T const& value) { setValues(index, 1, &value); }
  int find(T const& value) const {
    evaluate();
    auto found = std::find(m_values.begin(), m_values.end(), value);
    return found == m_values.end() ? -1 : static_cast<int>(found - m_values.begin());
  }
  /// For changing values in place; finishEditing() tells everybody.
  std::vector<T>& startEditing() {
    evaluate();
    return m_values;
  }
  void finishEditing() { valueChanged(); }

  void get1(int index, SbString& text) const override {
    evaluate();
    text = index >= 0 && index < getNumValues() ? SoValueToText(m_values[index]) : SbString();
  }
  bool set1(int index, char const* text) override {
    T value{};
    if (index < 0 || !SoValueFromText(text, value)) return false;
    set1Value(index, value);
    return true;
  }
  void deleteValues(int start, int count = -1) override {
    evaluate();
    int const end = count < 0 ? getNumValues() : std::min(getNumValues(), start + count);
    if (start < 0 || start >= end) return;
    m_values.erase(m_values.begin() + start, m_values.begin() + end);
    valueChanged();
  }
  void insertSpace(int start, int count) override {
    evaluate();
    if (start < 0 || start > getNumValues() || count <= 0) return;
    m_values.insert(m_values.begin() + start, count, T{});
    valueChanged();
  }

  bool getOne(int index, SoField& single) const override {
    auto* const field = dynamic_cast<SoSFValue<T>*>(&single);
    if (!field || index < 0 || index >= getNumValues()) return SoMField::getOne(index, single);
    field->setValue(m_values[index]);
    return true;
  }

  bool readValue(SoInput& in) override { return SoReadValues(in, m_values); }
  void writeValue(SoOutput& out) const override { SoWriteValues(out, m_values); }

 protected:
  SoMFValue() = default;
  SoMFValue(SoFieldContainer* container, char const* name, FieldType type = NORMAL,
            std::vector<SoEnumSymbol> const* symbols = nullptr)
      : SoMField(container, name, type, symbols) {}
  /// The usual default of properties: one value.
  SoMFValue(SoFieldContainer* container, char const* name, T const& value, FieldType type = NORMAL,
            std::vector<SoEnumSymbol> const* symbols = nullptr)
      : SoMField(container, name, type, symbols), m_values(1, value) {}
  bool hasValueOf(SoField const& other) const override {
    other.evaluate();
    evaluate();
    return m_values == static_cast<SoMFValue const&>(other).m_values;
  }
  void takeValueOf(SoField const& other) override { m_values = static_cast<SoMFValue const&>(other).m_values; }
  void appendValuesOf(SoMField const& other) override {
    auto const& values = static_cast<SoMFValue const&>(other).m_values;
    m_values.reserve(m_values.size() + values.size());  // also where the other one is this one
    std::copy_n(values.begin(), values.size(), std::back_inserter(m_values));
  }
  int countNumbers() const override { return SoNumbers<T>::COUNT; }
  void getNumbers(std::vector<double>& numbers) const override {
    if constexpr (SoNumbers<T>::COUNT > 0) {
      std::size_t next = numbers.size();
      numbers.resize(next + m_values.size() * SoNumbers<T>::COUNT);
      for (T const& value : m_values) {
        SoNumbers<T>::get(value, &numbers[next]);
        next += SoNumbers<T>::COUNT;
      }
    }
  }
  void setNumbers(std::vector<double> const& numbers) override {
    if constexpr (SoNumbers<T>::COUNT > 0) {
      m_values.resize(numbers.size() / SoNumbers<T>::COUNT);
      for (std::size_t i = 0; i < m_values.size(); ++i) m_values[i] = SoNumbers<T>::make(&numbers[i * SoNumbers<T>::COUNT]);
    }
  }

  std::vector<T> m_values;
};

/// Declares a field class of many values of a plain type.
#define SO_MFIELD(Class, T)                                                                     \
  class Class : public SoMFValue<T> {                                                           \
    SO_FIELD(Class, SoMField)                                                                   \
    Class() = default;                                                                          \
    /** Starts without values. */                                                               \
    Class(SoFieldContainer* container, char const* name) : SoMFValue<T>(container, name) {}     \
    Class(SoFieldContainer* container, char const* name, T const& value, FieldType type = NORMAL) \
        : SoMFValue<T>(container, name, value, type) {}                                         \
    Class& operator=(T const& value) {                                                          \
      setValue(value);                                                                          \
      return *this;                                                                             \
    }                                                                                           \
  };
