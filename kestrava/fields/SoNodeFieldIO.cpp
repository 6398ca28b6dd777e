// Text of the fields that refer to nodes.

#include "kestrava/fields/SoMFNode.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/io/SoReader.h"
#include "kestrava/io/SoWriter.h"

bool SoSFNode::readValue(SoInput& in) {
  SoReader reader(in);
  SoRef<SoNode> node;
  if (!reader.readNode(node)) return false;
  hold(node);
  return true;
}

void SoSFNode::writeValue(SoOutput& out) const { SoWriter(out).writeValues({getValue()}, false); }

bool SoMFNode::readValue(SoInput& in) {
  SoReader reader(in);
  std::vector<SoRef<SoNode>> nodes;
  bool const ok =
      SoReadList(in, nodes, [&](SoInput&, SoRef<SoNode>& node) { return reader.readNode(node); });
  if (!ok) return false;
  for (SoNode* node : nodes) hold(node);
  for (SoNode* node : std::exchange(m_values, {nodes.begin(), nodes.end()})) release(node);
  return true;
}

void SoMFNode::writeValue(SoOutput& out) const { SoWriter(out).writeValues(m_values, true); }

void SoMFNode::get1(int index, SbString& text) const {
  SoOutput out;
  out.setBuffer();
  if (index >= 0 && index < getNumValues()) SoWriter(out).writeValues({m_values[index]}, false);
  text = SbString(out.takeBuffer());
}

bool SoMFNode::set1(int index, char const* text) {
  SoInput in;
  in.setBuffer(text);
  SoReader reader(in);
  SoRef<SoNode> node;
  if (index < 0 || !reader.readNode(node) || !in.atEnd() || !mayHold(node)) return false;
  evaluate();
  hold(node);
  if (index >= getNumValues()) m_values.resize(static_cast<std::size_t>(index) + 1);
  release(std::exchange(m_values[index], node.get()));
  valueChanged();
  return true;
}
