#include "kestrava/fields/SoSFEnum.h"

#include "kestrava/base/SoError.h"
#include "kestrava/fields/SoMFEnum.h"
#include "kestrava/fields/SoSFBitMask.h"

namespace {

SoEnumSymbol const* findSymbol(std::vector<SoEnumSymbol> const& symbols, std::string_view name) {
  for (SoEnumSymbol const& symbol : symbols) {
    if (name == symbol.name) return &symbol;
  }
  return nullptr;
}

SoEnumSymbol const* findValue(std::vector<SoEnumSymbol> const& symbols, int value) {
  for (SoEnumSymbol const& symbol : symbols) {
    if (value == symbol.value) return &symbol;
  }
  return nullptr;
}

int allBits(std::vector<SoEnumSymbol> const& symbols) {
  int bits = 0;
  for (SoEnumSymbol const& symbol : symbols) bits |= symbol.value;
  return bits;
}

bool isNumberNext(SoInput& in) {
  int const next = in.peek();
  return next == '-' || (next >= '0' && next <= '9');
}

SbString listSymbols(std::vector<SoEnumSymbol> const& symbols) {
  std::string list;
  for (SoEnumSymbol const& symbol : symbols) list += (list.empty() ? "" : ", ") + std::string(symbol.name);
  return SbString(list);
}

bool failSymbol(SoInput& in, SbString const& name, std::vector<SoEnumSymbol> const& symbols, int line) {
  if (symbols.empty()) return in.failText("the symbol '" + name.str() + "' is not known", line);
  return in.failText("expected one of " + listSymbols(symbols).str() + ", found '" + name.str() + "'", line);
}

bool readNumber(SoInput& in, int& value) {
  std::int32_t number = 0;
  if (!in.read(number)) return false;
  value = number;
  return true;
}

void enterSymbol(std::vector<SoEnumSymbol>& open, SbString const& name, int value) {
  open.push_back({SbName(name).c_str(), value});  // names live as long as the process
}

// One symbol or number of a bit mask.
bool readBits(SoInput& in, int& value, std::vector<SoEnumSymbol> const& symbols, std::vector<SoEnumSymbol>* open) {
  if (isNumberNext(in)) return readNumber(in, value);
  int const line = (in.peek(), in.getLine());
  SbString name;
  if (!in.readIdentifier(name)) return false;
  if (SoEnumSymbol const* symbol = findSymbol(symbols, name.str())) {
    value = symbol->value;
  } else if (name == SbString("NONE")) {
    value = 0;
  } else if (name == SbString("ALL")) {
    value = open ? -1 : allBits(symbols);
  } else {
    constexpr std::size_t MOST_BITS = 31;
    if (!open || open->size() >= MOST_BITS) return failSymbol(in, name, symbols, line);
    value = 1 << open->size();
    enterSymbol(*open, name, value);
  }
  return true;
}

}  // namespace

void SoWriteEnum(SoOutput& out, int value, std::vector<SoEnumSymbol> const& symbols) {
  SoEnumSymbol const* const symbol = out.isBinary() ? nullptr : findValue(symbols, value);
  if (symbol) {
    out.put(symbol->name);
  } else {
    out.write(value);
  }
}

bool SoReadEnum(SoInput& in, int& value, std::vector<SoEnumSymbol> const& symbols, std::vector<SoEnumSymbol>* open) {
  if (in.isBinary() || isNumberNext(in)) return readNumber(in, value);
  int const line = (in.peek(), in.getLine());
  SbString name;
  if (!in.readIdentifier(name)) return false;
  if (SoEnumSymbol const* symbol = findSymbol(symbols, name.str())) {
    value = symbol->value;
    return true;
  }
  if (!open) return failSymbol(in, name, symbols, line);
  value = static_cast<int>(open->size());
  enterSymbol(*open, name, value);
  return true;
}

void SoWriteBitMask(SoOutput& out, int value, std::vector<SoEnumSymbol> const& symbols, bool isOpen) {
  SoEnumSymbol const* const whole = findValue(symbols, value);
  if (out.isBinary()) {
    out.write(value);
  } else if (whole) {
    out.put(whole->name);
  } else if (value == 0) {
    out.put("NONE");
  } else if ((!isOpen && value == allBits(symbols)) || value == -1) {
    out.put("ALL");
  } else {
    char const* separator = "( ";
    for (SoEnumSymbol const& symbol : symbols) {
      if (symbol.value == 0 || (value & symbol.value) != symbol.value) continue;
      out.put(separator);
      out.put(symbol.name);
      separator = " | ";
      value &= ~symbol.value;
    }
    if (value != 0) {
      out.put(separator);
      out.write(value);
    }
    out.put(" )");
  }
}

bool SoReadBitMask(SoInput& in, int& value, std::vector<SoEnumSymbol> const& symbols,
                   std::vector<SoEnumSymbol>* open) {
  if (in.isBinary()) return readNumber(in, value);
  if (!in.skip('(')) return readBits(in, value, symbols, open);
  int bits = 0;
  do {
    int part = 0;
    if (!readBits(in, part, symbols, open)) return false;
    bits |= part;
  } while (in.skip('|'));
  value = bits;
  return in.expect(')');
}

bool SoSFEnum::setValue(SbName const& symbol) {
  SoEnumSymbol const* const known = findSymbol(getSymbols(), symbol.str());
  if (!known) {
    SoDebugError::post("SoSFEnum::setValue", "'%s' is none of %s", symbol.c_str(), listSymbols(getSymbols()).c_str());
    return false;
  }
  setValue(known->value);
  return true;
}

bool SoSFEnum::readValue(SoInput& in) { return SoReadEnum(in, m_value, getSymbols(), getOpenSymbols()); }
void SoSFEnum::writeValue(SoOutput& out) const { SoWriteEnum(out, m_value, getSymbols()); }

bool SoSFBitMask::readValue(SoInput& in) { return SoReadBitMask(in, m_value, getSymbols(), getOpenSymbols()); }
void SoSFBitMask::writeValue(SoOutput& out) const { SoWriteBitMask(out, m_value, getSymbols(), getOpenSymbols()); }

void SoMFEnum::get1(int index, SbString& text) const {
  evaluate();
  SoOutput out;
  out.setBuffer();
  if (index >= 0 && index < getNumValues()) writeOne(out, m_values[index]);
  text = SbString(out.takeBuffer());
}

bool SoMFEnum::set1(int index, char const* text) {
  SoInput in;
  in.setBuffer(text);
  int value = 0;
  if (index < 0 || !readOne(in, value) || !in.atEnd()) return false;
  set1Value(index, value);
  return true;
}

bool SoMFEnum::readValue(SoInput& in) {
  return SoReadList(in, m_values, [this](SoInput& from, int& value) { return readOne(from, value); });
}

void SoMFEnum::writeValue(SoOutput& out) const {
  SoWriteCounted(out, static_cast<std::uint32_t>(m_values.size()),
                 [&](std::uint32_t i) { writeOne(out, m_values[i]); }, 12);
}
