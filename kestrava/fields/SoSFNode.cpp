#include "kestrava/fields/SoSFNode.h"

#include <algorithm>

#include "kestrava/base/SoError.h"
#include "kestrava/fields/SoMFNode.h"
#include "kestrava/nodes/SoCopier.h"
#include "kestrava/nodes/SoNode.h"

namespace {

bool refuseCircle(SoField const* field, SoNode* node) {
  if (!node || !field->getContainer() || !SoNode::closesCircle(field->getContainer(), node)) return false;
  SoDebugError::post("SoField::setValue", "'%s' would contain itself through its field '%s'",
                     node->getName().c_str(), field->getName().c_str());
  return true;
}

void holdNode(SoNode* node, SoField* field) {
  if (!node) return;
  node->ref();
  node->addAuditor(field, SoAuditorList::FIELD);
}

void releaseNode(SoNode* node, SoField* field) {
  if (!node) return;
  node->removeAuditor(field, SoAuditorList::FIELD);
  node->unref();
}

}  // namespace

SoSFNode::SoSFNode(SoFieldContainer* container, char const* name, SoNode* value, FieldType type)
    : SoSField(container, name, type) {
  hold(value);
}

SoSFNode::~SoSFNode() { hold(nullptr); }

void SoSFNode::hold(SoNode* node) {
  holdNode(node, this);
  releaseNode(std::exchange(m_value, node), this);
}

void SoSFNode::setValue(SoNode* node) {
  if (refuseCircle(this, node)) return;
  SoRef<SoNode> const old(m_value);  // lives until everybody has heard of the change
  hold(node);
  valueChanged();
}

bool SoSFNode::hasValueOf(SoField const& other) const {
  return getValue() == static_cast<SoSFNode const&>(other).getValue();
}

/// What a connection brings is refused like any other value.
void SoSFNode::takeValueOf(SoField const& other) {
  SoNode* const node = static_cast<SoSFNode const&>(other).m_value;
  if (!refuseCircle(this, node)) hold(node);
}

void SoSFNode::takeCopyOf(SoField const& other, SoCopier& copier) {
  hold(copier.copyOf(static_cast<SoSFNode const&>(other).m_value));
}

SoMFNode::~SoMFNode() {
  for (SoNode* node : m_values) releaseNode(node, this);
}

bool SoMFNode::mayHold(SoNode* node) const { return !refuseCircle(this, node); }
bool SoMFNode::mayHoldAll(std::vector<SoNode*> const& nodes) const {
  return std::all_of(nodes.begin(), nodes.end(), [this](SoNode* node) { return mayHold(node); });
}
void SoMFNode::hold(SoNode* node) { holdNode(node, this); }
void SoMFNode::release(SoNode* node) { releaseNode(node, this); }

int SoMFNode::findNode(SoNode const* node) const {
  evaluate();
  auto found = std::find(m_values.begin(), m_values.end(), node);
  return found == m_values.end() ? -1 : static_cast<int>(found - m_values.begin());
}

void SoMFNode::insertNode(SoNode* node, int index) {
  if (index < 0 || index > getNumValues() || !mayHold(node)) return;
  hold(node);
  m_values.insert(m_values.begin() + index, node);
  valueChanged();
}

void SoMFNode::replaceNode(int index, SoNode* node) {
  if (index < 0 || index >= getNumValues() || !mayHold(node)) return;
  SoRef<SoNode> const old(m_values[index]);
  hold(node);
  release(std::exchange(m_values[index], node));
  valueChanged();
}

void SoMFNode::setValue(SoNode* node) { setValues({node}); }

void SoMFNode::setValues(std::vector<SoNode*> const& nodes) {
  if (!mayHoldAll(nodes)) return;
  for (SoNode* node : nodes) hold(node);
  std::vector<SoNode*> const old = std::exchange(m_values, nodes);
  valueChanged();
  for (SoNode* node : old) release(node);
}

void SoMFNode::deleteValues(int start, int count) {
  int const end = count < 0 ? getNumValues() : std::min(getNumValues(), start + count);
  if (start < 0 || start >= end) return;
  std::vector<SoNode*> const old(m_values.begin() + start, m_values.begin() + end);
  m_values.erase(m_values.begin() + start, m_values.begin() + end);
  valueChanged();
  for (SoNode* node : old) release(node);
}

void SoMFNode::insertSpace(int start, int count) {
  if (start < 0 || start > getNumValues() || count <= 0) return;
  m_values.insert(m_values.begin() + start, count, nullptr);
  valueChanged();
}

bool SoMFNode::hasValueOf(SoField const& other) const {
  auto const& nodes = static_cast<SoMFNode const&>(other);
  nodes.evaluate();
  evaluate();
  return m_values == nodes.m_values;
}

void SoMFNode::takeValueOf(SoField const& other) {
  std::vector<SoNode*> const nodes = static_cast<SoMFNode const&>(other).m_values;
  if (!mayHoldAll(nodes)) return;
  for (SoNode* node : nodes) hold(node);
  for (SoNode* node : std::exchange(m_values, nodes)) release(node);
}

void SoMFNode::takeCopyOf(SoField const& other, SoCopier& copier) {
  std::vector<SoNode*> nodes = static_cast<SoMFNode const&>(other).m_values;
  for (SoNode*& node : nodes) hold(node = copier.copyOf(node));
  for (SoNode* node : std::exchange(m_values, std::move(nodes))) release(node);
}

bool SoMFNode::getOne(int index, SoField& single) const {
  if (index < 0 || index >= getNumValues() || !single.isOfType(SoSFNode::getClassTypeId())) return false;
  static_cast<SoSFNode&>(single).setValue(m_values[index]);
  return true;
}

void SoMFNode::appendValuesOf(SoMField const& other) {
  std::vector<SoNode*> const nodes = static_cast<SoMFNode const&>(other).m_values;
  if (!mayHoldAll(nodes)) return;
  for (SoNode* node : nodes) hold(node);
  m_values.insert(m_values.end(), nodes.begin(), nodes.end());
}
