#include "kestrava/nodes/SoFile.h"

#include <algorithm>

#include "kestrava/base/SoError.h"
#include "kestrava/io/SoDB.h"
#include "kestrava/io/SoInput.h"

void SoFile::fieldChanged(SoField* field) {
  if (field != &name) return;
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

SoRef<SoNode> SoFile::readContents() {
  auto const& files = SoDB::getFilesBeingRead();
  SbString const by = files.empty() ? SbString() : files.back();
  auto complain = [&by](SbString const& file, char const* what) {
    SoReadError::post("%s%sthe included file '%s' %s", by.c_str(), by.empty() ? "" : ": ", file.c_str(),
                      what);
    return SoRef<SoNode>();
  };
  SoInput in;
  if (!in.openFile(name.getValue().c_str(), true)) return complain(name.getValue(), "is not found");
  SbString const found = in.getCurFileName();
  if (std::find(files.begin(), files.end(), found) != files.end()) return complain(found, "includes itself");
  if (static_cast<int>(files.size()) >= MAX_DEPTH)
    return complain(found, "is included too deep in other files");
  in.setIncludedBy(by);
  SoRef<SoNode> root = SoDB::readAll(&in);
  if (root) m_fullName = found;
  return root;
}

void SoFile::reload() {
  m_fullName = SbString();
  SoRef<SoNode> const root = name.getValue().empty() ? nullptr : readContents();
  if (root == nullptr && m_children.getLength() == 0) return;
  m_children.truncate(0);
  if (root) m_children.append(root);
  touch();
}
