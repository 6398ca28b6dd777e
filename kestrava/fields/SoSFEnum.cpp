#include "kestrava/fields/SoSFEnum.h"

#include <algorithm>

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

/// Names in binary data may be any text.
bool isSymbol(SbString const& name) {
  std::string const& text = name.str();
  return !text.empty() && !SoNumberText::isDigit(text[0]) &&
         std::all_of(text.begin(), text.end(), [](char c) { return SoNumberText::is(c, SoNumberText::IDENTIFIER); });
}

void enterSymbol(std::vector<SoEnumSymbol>& open, SbString const& name, int value) {
  open.push_back({SbName(name).c_str(), value});  // names live as long as the process
}

bool valueOfSymbol(SoInput& in, SbString const& name, int& value, std::vector<SoEnumSymbol> const& symbols,
                   std::vector<SoEnumSymbol>* open, int line) {
  if (SoEnumSymbol const* symbol = findSymbol(symbols, name.str())) {
    value = symbol->value;
    return true;
  }
  if (!open || !isSymbol(name)) return failSymbol(in, name, symbols, line);
  value = static_cast<int>(open->size());
  enterSymbol(*open, name, value);
  return true;
}

bool bitsOfSymbol(SoInput& in, SbString const& name, int& value, std::vector<SoEnumSymbol> const& symbols,
                  std::vector<SoEnumSymbol>* open, int line) {
  if (SoEnumSymbol const* symbol = findSymbol(symbols, name.str())) {
    value = symbol->value;
  } else if (name == SbString("NONE")) {
    value = 0;
  } else if (name == SbString("ALL")) {
    value = open ? -1 : allBits(symbols);
  } else {
    constexpr std::size_t MOST_BITS = 31;
    if (!open || open->size() >= MOST_BITS || !isSymbol(name)) return failSymbol(in, name, symbols, line);
    value = 1 << open->size();
    enterSymbol(*open, name, value);
  }
  return true;
}

// One symbol or number of a bit mask.
bool readBits(SoInput& in, int& value, std::vector<SoEnumSymbol> const& symbols, std::vector<SoEnumSymbol>* open) {
  if (isNumberNext(in)) return readNumber(in, value);
  int const line = (in.peek(), in.getLine());
  SbString name;
  return in.readIdentifier(name) && bitsOfSymbol(in, name, value, symbols, open, line);
}

/// The symbols that make up a mask, and the bits that none of them has.
std::vector<char const*> symbolsOf(int& value, std::vector<SoEnumSymbol> const& symbols, bool isOpen) {
  std::vector<char const*> names;
  if (SoEnumSymbol const* const whole = findValue(symbols, value)) {
    names.push_back(whole->name);
  } else if (value == 0) {
    names.push_back("NONE");
  } else if ((!isOpen && value == allBits(symbols)) || value == -1) {
    names.push_back("ALL");
  } else {
    for (SoEnumSymbol const& symbol : symbols) {
      if (symbol.value == 0 || (value & symbol.value) != symbol.value) continue;
      names.push_back(symbol.name);
      value &= ~symbol.value;
    }
    return names;
  }
  value = 0;
  return names;
}

}  // namespace

void SoWriteEnum(SoOutput& out, int value, std::vector<SoEnumSymbol> const& symbols) {
  SoEnumSymbol const* const symbol = findValue(symbols, value);
  if (out.isBinary()) out.writeName(symbol ? SbName(symbol->name) : SbName());  // the empty name: a number follows
  if (!symbol) {
    out.write(value);
  } else if (!out.isBinary()) {
    out.put(symbol->name);
  }
}

bool SoReadEnum(SoInput& in, int& value, std::vector<SoEnumSymbol> const& symbols, std::vector<SoEnumSymbol>* open) {
  if (in.isBinary()) {
    SbName name;
    if (!in.readName(name)) return false;
    return name.empty() ? readNumber(in, value) : valueOfSymbol(in, name.toString(), value, symbols, open, 0);
  }
  if (isNumberNext(in)) return readNumber(in, value);
  int const line = (in.peek(), in.getLine());
  SbString name;
  return in.readIdentifier(name) && valueOfSymbol(in, name, value, symbols, open, line);
}

void SoWriteBitMask(SoOutput& out, int value, std::vector<SoEnumSymbol> const& symbols, bool isOpen) {
  std::vector<char const*> const names = symbolsOf(value, symbols, isOpen);
  if (out.isBinary()) {
    out.writeCount(static_cast<std::uint32_t>(names.size()));
    for (char const* name : names) out.writeName(SbName(name));
    out.write(value);
  } else if (names.size() == 1 && value == 0) {
    out.put(names[0]);
  } else {
    char const* separator = "( ";
    for (char const* name : names) {
      out.put(separator);
      out.put(name);
      separator = " | ";
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
  int bits = 0, part = 0;
  if (in.isBinary()) {
    std::uint32_t count = 0;
    if (!in.readCount(count, sizeof count)) return false;
    for (SbName name; count > 0; --count, bits |= part) {
      if (!in.readName(name) || !bitsOfSymbol(in, name.toString(), part, symbols, open, 0)) return false;
    }
    if (!readNumber(in, part)) return false;
    value = bits | part;
    return true;
  }
  if (!in.skip('(')) return readBits(in, value, symbols, open);
  do {
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
