#include "kestrava/nodes/SoGroup.h"

#include "kestrava/base/SoError.h"


bool SoGroup::mayHold(SoNode const* child, char const* operation) const {
  if (!child) {
    SoDebugError::post(operation, "the child is null");
    return false;
  }
  if (!closesCircle(this, child)) return true;
  SoDebugError::post(operation, "'%s' would contain itself", child->getName().c_str());
  return false;
}

bool SoGroup::hasIndex(int index, int count, char const* operation) const {
  if (index >= 0 && index < count) return true;
  SoDebugError::post(operation, "there is no position %d among %d children", index, getNumChildren());
  return false;
}

void SoGroup::addChild(SoNode* child) {
  if (!mayHold(child, "SoGroup::addChild")) return;
  m_children.append(child);
  notify({SoNotification::CHILD_ADDED, this, nullptr, child, getNumChildren() - 1});
}

void SoGroup::insertChild(SoNode* child, int index) {
  if (!hasIndex(index, getNumChildren() + 1, "SoGroup::insertChild")) return;
  if (!mayHold(child, "SoGroup::insertChild")) return;
  m_children.insert(child, index);
  notify({SoNotification::CHILD_INSERTED, this, nullptr, child, index});
}

void SoGroup::replaceChild(int index, SoNode* child) {
  if (!hasIndex(index, getNumChildren(), "SoGroup::replaceChild")) return;
  if (!mayHold(child, "SoGroup::replaceChild")) return;
  SoRef<SoNode> const old(getChild(index));
  m_children.replace(index, child);
  notify({SoNotification::CHILD_REPLACED, this, nullptr, child, index});
}

void SoGroup::replaceChild(SoNode* old, SoNode* child) { replaceChild(findChild(old), child); }

void SoGroup::removeChild(int index) {
  if (!hasIndex(index, getNumChildren(), "SoGroup::removeChild")) return;
  SoRef<SoNode> const old(getChild(index));
  m_children.remove(index);
  notify({SoNotification::CHILD_REMOVED, this, nullptr, old.get(), index});
}

void SoGroup::removeChild(SoNode* child) { removeChild(findChild(child)); }

void SoGroup::removeAllChildren() {
  if (getNumChildren() == 0) return;
  // They live until everybody has heard of it.
  std::vector<SoRef<SoNode>> old;
  for (int i = 0; i < getNumChildren(); ++i) old.emplace_back(getChild(i));
  m_children.truncate(0);
  notify({SoNotification::ALL_CHILDREN_REMOVED, this, nullptr, nullptr, -1});
}
