#include "kestrava/nodes/SoFile.h"

#include "kestrava/io/SoDB.h"

void SoFile::fieldChanged(SoField* field) {
  if (field != &name) return;
  if (!SoDB::getFilesBeingRead().empty()) m_includers = SoDB::getFilesBeingRead();
  if (!isNotifyEnabled()) {
    reload();
    return;
  }
  // Listeners hear of the name before they hear of the children. The node may be gone by then but for this.
  bool const isOwned = getRefCount() > 0;
  ref();
  afterNotification([this, isOwned] {
    reload();
    isOwned ? unref() : unrefNoDelete();
  });
}

void SoFile::reload() {
  SoRef<SoNode> root;
  m_fullName = SbString();
  if (!name.getValue().empty()) root = SoDB::readIncluded(name.getValue(), m_includers, m_fullName);
  if (root == nullptr && m_children.getLength() == 0) return;
  m_children.truncate(0);
  if (root) m_children.append(root);
  touch();
}
