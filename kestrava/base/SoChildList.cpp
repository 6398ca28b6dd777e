#include "kestrava/base/SoChildList.h"

#include "kestrava/nodes/SoNode.h"
#include "kestrava/sensors/SoNodeSensor.h"

namespace {

void hold(SoNode* node, SoNode* parent) {
  node->ref();
  node->addAuditor(parent, SoAuditorList::PARENT);
}

void release(SoNode* node, SoNode* parent) {
  node->removeAuditor(parent, SoAuditorList::PARENT);
  node->unref();
}

}  // namespace

int SoChildList::find(SoNode const* node) const {
  for (int i = 0; i < getLength(); ++i) {
    if (m_nodes[i] == node) return i;
  }
  return -1;
}

void SoChildList::append(SoNode* node) {
  hold(node, m_parent);
  m_nodes.push_back(node);
}

void SoChildList::insert(SoNode* node, int index) {
  SoNodeSensor::Dispatch::makePaths();
  hold(node, m_parent);
  m_nodes.insert(m_nodes.begin() + index, node);
}

void SoChildList::remove(int index) {
  SoNodeSensor::Dispatch::makePaths();
  SoNode* const node = m_nodes[index];
  m_nodes.erase(m_nodes.begin() + index);
  release(node, m_parent);
}

void SoChildList::replace(int index, SoNode* node) {
  SoNodeSensor::Dispatch::makePaths();
  hold(node, m_parent);
  release(std::exchange(m_nodes[index], node), m_parent);
}

void SoChildList::truncate(int length) {
  SoNodeSensor::Dispatch::makePaths();
  while (getLength() > length) {
    SoNode* const node = m_nodes.back();
    m_nodes.pop_back();
    release(node, m_parent);
  }
}
