#pragma once

#include <memory>
#include <vector>

#include "kestrava/fields/SoField.h"

/// Fields that one object gets at run time, after those of its class. The object answers the table from here
/// in its getFieldData() where there is one; reading, writing and copying then treat them like any fields.
class SoRunTimeFields {
 public:
  /// Adds a field; null when the type is none of fields that can be made, or when there is one of that name.
  SoField* declare(SoFieldContainer& container, SoType type, SbName const& name, SoField::FieldType kind);
  /// Removes them all. What follows one of them keeps its last value.
  void clear();

  /// The fields of the class, then these; null before the first was declared.
  SoFieldData const* getTable() const { return m_table.get(); }
  int getLength() const { return static_cast<int>(m_fields.size()); }
  SoField* operator[](int i) const { return m_fields[i].get(); }

 private:
  std::unique_ptr<SoFieldData> m_table;
  std::vector<std::unique_ptr<SoField>> m_fields;
};
