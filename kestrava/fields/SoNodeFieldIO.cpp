// Text of the fields that refer to nodes.

#include "kestrava/fields/SoMFNode.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/io/SoReader.h"
#include "kestrava/io/SoWriter.h"

namespace {

bool readOne(SoInput& in, SoReader& reader, SoRef<SoNode>& node) {
  if (in.isBinary()) return in.failText("nodes are read from the ASCII form only");
  if (in.skipWord("NULL")) return true;
  node = reader.readNode();
  return node.get() != nullptr;
}

}  // namespace

bool SoSFNode::readValue(SoInput& in) {
  SoReader reader(in);
  SoRef<SoNode> node;
  if (!readOne(in, reader, node)) return false;
  hold(node);
  return true;
}

void SoSFNode::writeValue(SoOutput& out) const { SoWriter(out).writeValues({getValue()}, false); }

bool SoMFNode::readValue(SoInput& in) {
  SoReader reader(in);
  std::vector<SoRef<SoNode>> nodes;
  bool const ok =
      SoReadList(in, nodes, [&](SoInput& from, SoRef<SoNode>& node) { return readOne(from, reader, node); });
  if (!ok) return false;
  for (SoNode* node : nodes) hold(node);
  for (SoNode* node : std::exchange(m_values, {nodes.begin(), nodes.end()})) release(node);
  return true;
}

void SoMFNode::writeValue(SoOutput& out) const { SoWriter(out).writeValues(m_values, m_values.size() != 1); }

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
  if (index < 0 || !readOne(in, reader, node) || !in.atEnd() || !mayHold(node)) return false;
  evaluate();
  hold(node);
  if (index >= getNumValues()) m_values.resize(static_cast<std::size_t>(index) + 1);
  release(std::exchange(m_values[index], node.get()));
  valueChanged();
  return true;
}
