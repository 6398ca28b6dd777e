#pragma once

#include <cstddef>
#include <vector>

#include "kestrava/base/SbName.h"

class SoField;
class SoFieldContainer;

/// A symbol of an enumeration or bit-mask field and the value it stands for.
struct SoEnumSymbol {
  char const* name;
  int value;
};

/// The fields of one class of containers in declared order, base class first. Filled by the constructors of
/// the first instance: a field member that is constructed with its container and name enters itself.
class SoFieldData {
 public:
  SoFieldData() = default;
  /// Starts with the fields of the base class.
  explicit SoFieldData(SoFieldData const& base) = default;

  int getNumFields() const { return static_cast<int>(m_entries.size()); }
  SbName getFieldName(int index) const { return m_entries[index].name; }
  /// The field of a container whose class this table describes.
  SoField* getField(SoFieldContainer const* container, int index) const;
  /// Index of a field of a container, -1 when it is none of its fields.
  int getIndex(SoFieldContainer const* container, SoField const* field) const;
  /// Index of the field of that name, -1 when there is none.
  int getIndex(SbName const& name) const;
  /// The symbols of an enumeration or bit-mask field.
  std::vector<SoEnumSymbol> const& getSymbols(int index) const { return m_entries[index].symbols; }

  /// The same, for a table of one object that learns its symbols as it is read.
  std::vector<SoEnumSymbol>* getOpenSymbols(int index) { return &m_entries[index].symbols; }
  /// Forgets the fields from an index on; for a table of one object.
  void truncate(int length) { m_entries.resize(static_cast<std::size_t>(length)); }

 private:
  friend class SoFieldContainer;
  struct Entry {
    SbName name;
    std::ptrdiff_t offset;  // of the field from its container, in bytes
    std::vector<SoEnumSymbol> symbols;
  };
  std::vector<Entry> m_entries;
};
