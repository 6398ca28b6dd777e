#include "kestrava/kits/SoNodeKitListPart.h"

#include "kestrava/base/SoError.h"
#include "kestrava/nodes/SoGroup.h"

SoNodeKitListPart::SoNodeKitListPart() {
  containerNode.setValue(new SoGroup);
  containerNode.setDefault(true);
}

void SoNodeKitListPart::fieldChanged(SoField* field) {
  if (field != &containerNode) return;
  SoNode* const node = containerNode.getValue();
  m_children.truncate(0);
  if (node) m_children.append(node);
}

SoGroup* SoNodeKitListPart::getContainer() const {
  SoNode* const node = containerNode.getValue();
  return node && node->isOfType(SoGroup::getClassTypeId()) ? static_cast<SoGroup*>(node) : nullptr;
}

int SoNodeKitListPart::getNumChildren() const {
  return getContainer() ? getContainer()->getNumChildren() : 0;
}

SoNode* SoNodeKitListPart::getChild(int index) const {
  return index >= 0 && index < getNumChildren() ? getContainer()->getChild(index) : nullptr;
}

int SoNodeKitListPart::findChild(SoNode const* node) const {
  return getContainer() ? getContainer()->findChild(node) : -1;
}

bool SoNodeKitListPart::takes(SoNode const* node, char const* operation) const {
  char const* reason = nullptr;
  if (!node) {
    reason = "the node is null";
  } else if (!getContainer()) {
    reason = "the list has no group to hold it";
  } else if (!isTypePermitted(node->getTypeId())) {
    reason = "the list takes no nodes of this type";
  } else if (closesCircle(this, node)) {
    reason = "the list would contain itself";
  }
  if (reason)
    SoDebugError::post(operation, "'%s': %s", node ? node->getTypeId().getName().c_str() : "", reason);
  return !reason;
}

bool SoNodeKitListPart::insertChild(SoNode* node, int index) {
  if (!takes(node, "SoNodeKitListPart::insertChild")) return false;
  if (index < 0 || index > getNumChildren()) {
    SoDebugError::post("SoNodeKitListPart::insertChild", "there is no position %d among %d", index,
                       getNumChildren());
    return false;
  }
  getContainer()->insertChild(node, index);
  containerNode.setDefault(false);
  return true;
}

bool SoNodeKitListPart::removeChild(int index) {
  if (index < 0 || index >= getNumChildren()) {
    SoDebugError::post("SoNodeKitListPart::removeChild", "there is no position %d among %d", index,
                       getNumChildren());
    return false;
  }
  getContainer()->removeChild(index);
  return true;
}

bool SoNodeKitListPart::replaceChild(int index, SoNode* node) {
  if (index < 0 || index >= getNumChildren() || !takes(node, "SoNodeKitListPart::replaceChild")) return false;
  getContainer()->replaceChild(index, node);
  containerNode.setDefault(false);
  return true;
}
