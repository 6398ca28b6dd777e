#include "kestrava/nodes/SoUnknownNode.h"

SoUnknownNode::SoUnknownNode(SbName const& fileTypeName)
    : m_fileTypeName(fileTypeName), m_data(SoGroup::getClassFieldData()) {
  m_type = SoType::createType(getClassTypeId(), SbName("Unknown" + fileTypeName.str()));
  // The table of types may be full, or the name be taken by another one.
  if (!m_type.isDerivedFrom(getClassTypeId())) m_type = getClassTypeId();
}

SoType SoUnknownNode::getClassTypeId() {
  static SoType const type = SoType::createType(SoGroup::getClassTypeId(), "UnknownNode");
  return type;
}

bool SoUnknownNode::declareField(SoType fieldType, SbName const& name) {
  if (!fieldType.isDerivedFrom(SoField::getClassTypeId()) || !fieldType.canCreateInstance()) return false;
  if (m_data.getIndex(name) >= 0) return false;
  m_fields.emplace_back(static_cast<SoField*>(fieldType.createInstance()));
  adoptField(m_fields.back().get(), name);
  return true;
}

SoFieldContainer* SoUnknownNode::makeEmpty() const {
  auto* copy = new SoUnknownNode(m_fileTypeName);
  for (auto const& field : m_fields) {
    copy->declareField(field->getTypeId(), field->getName());
    // Symbols that were learned from the file.
    *copy->getOpenSymbols(field->getIndex()) = m_data.getSymbols(field->getIndex());
  }
  return copy;
}

std::vector<SoEnumSymbol>* SoUnknownNode::getOpenSymbols(int index) { return m_data.getOpenSymbols(index); }
