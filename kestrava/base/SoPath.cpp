#include "kestrava/base/SoPath.h"

#include "kestrava/base/SoChildList.h"

SoType SoPath::getClassTypeId() {
  static SoType const type = SoType::createType(SoBase::getClassTypeId(), "Path");
  return type;
}

SoPath::SoPath(SoNode* head) { setHead(head); }

void SoPath::setHead(SoNode* head) {
  m_steps.clear();
  if (head) m_steps.push_back({SoRef<SoNode>(head), -1});
}

bool SoPath::append(int childIndex) {
  SoChildList const* children = getTail() ? getTail()->getChildren() : nullptr;
  if (!children || childIndex < 0 || childIndex >= children->getLength()) return false;
  m_steps.push_back({SoRef<SoNode>((*children)[childIndex]), childIndex});
  return true;
}

void SoPath::appendNode(SoNode* node) {
  SoChildList const* children = getTail() ? getTail()->getChildren() : nullptr;
  appendNode(node, children ? children->find(node) : -1);
}

void SoPath::appendNode(SoNode* node, int childIndex) { m_steps.push_back({SoRef<SoNode>(node), childIndex}); }

void SoPath::append(SoPath const& continuation) {
  m_steps.insert(m_steps.end(), continuation.m_steps.begin(), continuation.m_steps.end());
}

void SoPath::truncate(int length) {
  if (length >= 0 && length < getLength()) m_steps.resize(length);
}

int SoPath::findNode(SoNode const* node) const {
  for (int i = 0; i < getLength(); ++i) {
    if (m_steps[i].node.get() == node) return i;
  }
  return -1;
}

bool SoPath::containsNode(SoNode const* node) const { return findNode(node) >= 0; }

SoPath* SoPath::copy(int from, int length) const {
  auto* result = new SoPath;
  int const end = length > 0 ? std::min(getLength(), from + length) : getLength();
  for (int i = from; i < end; ++i) result->m_steps.push_back({m_steps[i].node, i == from ? -1 : m_steps[i].index});
  return result;
}

bool operator==(SoPath const& a, SoPath const& b) {
  if (a.getLength() != b.getLength()) return false;
  for (int i = 0; i < a.getLength(); ++i) {
    if (a.getNode(i) != b.getNode(i) || (i > 0 && a.getIndex(i) != b.getIndex(i))) return false;
  }
  return true;
}
