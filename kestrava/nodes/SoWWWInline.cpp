#include "kestrava/nodes/SoWWWInline.h"

#include "kestrava/base/SoError.h"
#include "kestrava/io/SoDB.h"
#include "kestrava/nodes/SoSeparator.h"

namespace {
SoWWWInlineFetchURLCB* fetchFunction = nullptr;
void* fetchData = nullptr;
} // namespace

SoWWWInline::SoWWWInline() { m_children.append(new SoSeparator); }
SoWWWInline::~SoWWWInline() = default;

void SoWWWInline::setFetchURLCallBack(SoWWWInlineFetchURLCB* function, void* data) {
  fetchFunction = function;
  fetchData = data;
}

SoWWWInlineFetchURLCB* SoWWWInline::getFetchURLCallBack() { return fetchFunction; }
void* SoWWWInline::getFetchURLData() { return fetchData; }

void SoWWWInline::requestChildrenFromURL() {
  if (!fetchFunction || name.getValue().empty()) return;
  m_requested = true;
  fetchFunction(name.getValue(), fetchData, this);
}

SoNode* SoWWWInline::getChildData() const { return hasChildData() ? m_children[1] : nullptr; }

void SoWWWInline::setChildData(SoNode* root) {
  if (root && closesCircle(this, root)) {
    SoDebugError::post("SoWWWInline::setChildData", "'%s' would contain itself", getName().c_str());
    return;
  }
  SoRef<SoNode> const kept(root);
  m_children.truncate(1);
  if (root) m_children.append(root);
  touch();
}

void SoWWWInline::fieldChanged(SoField* field) {
  if (field == &name) {
    m_requested = false;
    if (!SoDB::getFilesBeingRead().empty()) m_includers = SoDB::getFilesBeingRead();
  }
  if (field != &alternateRep) return;
  // Silently: listeners hear of the field.
  auto* standIn = static_cast<SoSeparator*>(m_children[0]);
  bool const notified = standIn->enableNotify(false);
  standIn->removeAllChildren();
  if (SoNode* node = alternateRep.getValue()) standIn->addChild(node);
  standIn->enableNotify(notified);
}
