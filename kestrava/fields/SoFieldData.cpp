#include "kestrava/fields/SoFieldData.h"

#include "kestrava/fields/SoField.h"
#include "kestrava/fields/SoFieldContainer.h"

SoField* SoFieldData::getField(SoFieldContainer const* container, int index) const {
  auto* base = reinterpret_cast<char*>(const_cast<SoFieldContainer*>(container));
  return reinterpret_cast<SoField*>(base + m_entries[index].offset);
}

int SoFieldData::getIndex(SoFieldContainer const* container, SoField const* field) const {
  return field->getContainer() == container ? field->getIndex() : -1;
}

int SoFieldData::getIndex(SbName const& name) const {
  for (int i = 0; i < getNumFields(); ++i) {
    if (m_entries[i].name == name) return i;
  }
  return -1;
}
