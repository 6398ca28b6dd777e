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
  // One by one: whoever hears of it may look at those that are left.
  while (!m_fields.empty()) {
    SoField* const field = m_fields.back().get();
    if (field->hasFollowers()) {
      field->getFollowers().back()->disconnect();
      continue;
    }
    std::unique_ptr<SoField> const last = std::move(m_fields.back());
    m_fields.pop_back();
    m_table->truncate(m_table->getNumFields() - 1);
  }
}
