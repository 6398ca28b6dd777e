#include "kestrava/fields/SoSFFieldContainer.h"

#include <utility>

#include "kestrava/fields/SoFieldContainer.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/nodes/SoCopier.h"
#include "kestrava/nodes/SoNode.h"

SoSFFieldContainer::SoSFFieldContainer(SoFieldContainer* container, char const* name, SoFieldContainer* value,
                                       FieldType type)
    : SoSField(container, name, type) {
  hold(value);
}

SoSFFieldContainer::~SoSFFieldContainer() { hold(nullptr); }

void SoSFFieldContainer::hold(SoFieldContainer* value) {
  if (value) {
    value->ref();
    value->addAuditor(this, SoAuditorList::FIELD);
  }
  if (SoFieldContainer* old = std::exchange(m_value, value)) {
    old->removeAuditor(this, SoAuditorList::FIELD);
    old->unref();
  }
}

void SoSFFieldContainer::setValue(SoFieldContainer* value) {
  SoRef<SoFieldContainer> const old(m_value);  // lives until everybody has heard of the change
  hold(value);
  valueChanged();
}

void SoSFFieldContainer::takeCopyOf(SoField const& other, SoCopier& copier) {
  hold(copier.copyOf(static_cast<SoSFFieldContainer const&>(other).m_value));
}

bool SoSFFieldContainer::readValue(SoInput& in) {
  SoSFNode node;
  if (!node.readValue(in)) return false;
  hold(node.getValue());
  return true;
}

void SoSFFieldContainer::writeValue(SoOutput& out) const {
  SoSFNode node;
  if (m_value && m_value->isOfType(SoNode::getClassTypeId())) node.setValue(static_cast<SoNode*>(m_value));
  node.writeValue(out);
}
