#include "kestrava/fields/SoRunTimeFields.h"

#include "kestrava/fields/SoFieldContainer.h"

SoField* SoRunTimeFields::declare(SoFieldContainer& container, SoType type, SbName const& name,
                                  SoField::FieldType kind) {
  if (!type.isDerivedFrom(SoField::getClassTypeId()) || !type.canCreateInstance()) return nullptr;
  if (!m_table) m_table = std::make_unique<SoFieldData>(container.getClassFieldData());
  if (name.empty() || m_table->getIndex(name) >= 0) return nullptr;
  SoField* const field = m_fields.emplace_back(static_cast<SoField*>(type.createInstance())).get();
  field->setFieldType(kind);
  container.adoptField(field, name, *m_table);
  return field;
}

void SoRunTimeFields::clear() {
  for (auto const& field : m_fields) {
    for (SoField* follower : field->getFollowers()) follower->disconnect();
  }
  if (m_table) m_table->truncate(m_table->getNumFields() - getLength());
  m_fields.clear();
}
