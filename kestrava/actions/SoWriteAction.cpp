#include "kestrava/actions/SoWriteAction.h"

#include "kestrava/base/SoPath.h"
#include "kestrava/io/SoWriter.h"

void SoWriteAction::apply(SoNode* root) {
  if (!root) return;
  SoRef<SoNode> const keep(root->getRefCount() > 0 ? root : nullptr);
  m_output->writeHeader();
  SoWriter(*m_output).writeFile({root});
}

void SoWriteAction::apply(SoPath* path) { apply(path->getHead()); }
