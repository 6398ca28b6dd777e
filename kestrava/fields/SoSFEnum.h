#pragma once

#include "kestrava/fields/SoSField.h"

/// One of the values of an enumeration, given by its symbols. The table of symbols outlives the field:
/// a static one of the class that declares it.
class SoSFEnum : public SoSField {
  SO_FIELD(SoSFEnum, SoSField)
  using ValueType = int;
  SoSFEnum() = default;
  SoSFEnum(SoFieldContainer* container, char const* name, int value, std::vector<SoEnumSymbol> const& symbols,
           FieldType type = NORMAL)
      : SoSField(container, name, type, &symbols), m_value(value) {}

  int getValue() const {
    evaluate();
    return m_value;
  }
  void setValue(int value) {
    m_value = value;
    valueChanged();
  }
  /// False, with a debug error, when the enumeration has no such symbol.
  bool setValue(SbName const& symbol);
  SoSFEnum& operator=(int value) {
    setValue(value);
    return *this;
  }
  std::vector<SoEnumSymbol> const& symbols() const { return getSymbols(); }

  bool readValue(SoInput& in) override;
  void writeValue(SoOutput& out) const override;

 protected:
  bool hasValueOf(SoField const& other) const override {
    return getValue() == static_cast<SoSFEnum const&>(other).getValue();
  }
  void takeValueOf(SoField const& other) override { m_value = static_cast<SoSFEnum const&>(other).m_value; }
  int countNumbers() const override { return 1; }
  void getNumbers(std::vector<double>& numbers) const override { numbers.push_back(m_value); }
  void setNumbers(std::vector<double> const& numbers) override {
    if (!numbers.empty()) m_value = SoNumbers<int>::make(numbers.data());
  }
  int m_value = 0;
};

/// Text of an enumeration value: the symbol, the number where there is none. A symbol that is not known is a
/// fault, unless there is a table `open` to new symbols: it is then entered there.
void SoWriteEnum(SoOutput& out, int value, std::vector<SoEnumSymbol> const& symbols);
bool SoReadEnum(SoInput& in, int& value, std::vector<SoEnumSymbol> const& symbols,
                std::vector<SoEnumSymbol>* open = nullptr);
/// A symbol, "( A | B )", NONE or ALL. What is all of an open table (`isOpen`) is not called so: it may grow.
void SoWriteBitMask(SoOutput& out, int value, std::vector<SoEnumSymbol> const& symbols, bool isOpen = false);
bool SoReadBitMask(SoInput& in, int& value, std::vector<SoEnumSymbol> const& symbols,
                   std::vector<SoEnumSymbol>* open = nullptr);
