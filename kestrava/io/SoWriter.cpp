#include "kestrava/io/SoWriter.h"

#include "kestrava/fields/SoMFNode.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/fields/SoSFTrigger.h"
#include "kestrava/io/SoOutput.h"
#include "kestrava/nodes/SoGroup.h"
#include "kestrava/nodes/SoUnknownNode.h"

namespace {

bool isWritten(SoField const* field) {
  switch (field->getFieldType()) {
    case SoField::PRIVATE:
    case SoField::DEPRECATED:
    case SoField::EVENT_OUT: return false;
    default: return !field->isDefault() || field->isIgnored() || field->isConnected();
  }
}

bool holdsNodes(SoField const* field) {
  return dynamic_cast<SoSFNode const*>(field) || dynamic_cast<SoMFNode const*>(field);
}

int countNodes(SoField const* field) {
  auto const* many = dynamic_cast<SoMFNode const*>(field);
  return many ? many->getNumValues() : 1;
}

SoNode* nodeAt(SoField const* field, int index) {
  auto const* many = dynamic_cast<SoMFNode const*>(field);
  return many ? many->getNode(index) : static_cast<SoSFNode const*>(field)->getValue();
}

/// The children that a file shows; those of kits, files and inlines are not among them.
SoChildList const* writtenChildren(SoNode const* node) {
  return node->isOfType(SoGroup::getClassTypeId()) ? node->getChildren() : nullptr;
}

/// False for nodes that are certainly met once and named by nobody, which is nearly all.
bool mayBeShared(SoNode const* node) {
  if (node->getAuditors().getLength() > 1) return true;
  for (int i = 0; i < node->getNumFields(); ++i) {
    if (node->getField(i)->hasFollowers()) return true;
  }
  return false;
}

}  // namespace

void SoWriter::writeFile(std::vector<SoNode*> const& nodes) {
  lookAt(nodes);
  for (SoNode* node : nodes) {
    m_out.newLine();
    writeNode(node);
    m_out.newLine();
  }
}

void SoWriter::writeValues(std::vector<SoNode*> const& nodes, bool list) {
  if (m_out.isBinary()) return m_out.fail("nodes are written in the ASCII form only");
  lookAt(nodes);
  if (list) m_out.put("[ ");
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    if (i > 0) m_out.put(", ");
    writeNode(nodes[i]);
  }
  if (list) m_out.put(nodes.empty() ? "]" : " ]");
}

std::vector<int> const& SoWriter::nodeFieldsOf(SoNode* node) {
  SoFieldData const* const data = node->getFieldData();
  auto const [known, added] = m_nodeFields.try_emplace(data);
  if (added) {
    for (int i = 0; i < data->getNumFields(); ++i) {
      if (holdsNodes(data->getField(node, i))) known->second.push_back(i);
    }
  }
  return known->second;
}

void SoWriter::lookAt(std::vector<SoNode*> const& roots) {
  std::vector<SoNode*> open;
  for (SoNode* root : roots) visit(root, open);
  while (!open.empty()) {
    SoNode* const node = open.back();
    open.pop_back();
    if (!node->getName().empty()) ++m_names[node->getName()];
    for (int i : nodeFieldsOf(node)) {
      SoField* const field = node->getField(i);
      if (!isWritten(field)) continue;
      for (int k = 0; k < countNodes(field); ++k) visit(nodeAt(field, k), open);
    }
    for (int i = 0; i < node->getNumFields(); ++i) {
      SoField* const field = node->getField(i);
      SoField* const source = field->getConnectedField();
      if (source && source->getContainer() && source->getContainer()->isOfType(SoNode::getClassTypeId())) {
        m_sources.insert(static_cast<SoNode*>(source->getContainer()));
      }
    }
    if (SoChildList const* children = writtenChildren(node)) {
      for (SoNode* child : *children) visit(child, open);
    }
  }
  // Only what was met counts as a source: the others are not in the file.
  for (SoNode const* source : m_sources) {
    if (auto const met = m_shared.find(source); met != m_shared.end()) met->second.used = true;
  }
}

// Enters a node the first time it is met.
void SoWriter::visit(SoNode* node, std::vector<SoNode*>& open) {
  if (!node) return;
  if (!mayBeShared(node)) {
    open.push_back(node);
    return;
  }
  auto const [known, added] = m_shared.try_emplace(node);
  if (added) {
    open.push_back(node);
  } else {
    known->second.used = true;
  }
}

std::string SoWriter::nameOf(SoNode const* node) {
  SbName const name = node->getName();
  auto const known = m_shared.find(node);
  if (known == m_shared.end() || !known->second.used) return name.str();
  std::string& inFile = known->second.name;
  if (inFile.empty()) {
    bool const unique = !name.empty() && m_names[name] == 1;
    inFile = unique ? name.str() : name.str() + "+" + std::to_string(++m_lastNumber);
  }
  return inFile;
}

void SoWriter::writeNode(SoNode* node) {
  start(node);
  while (!m_frames.empty()) {
    Frame& frame = m_frames.back();
    if (writeNextField(frame) || writeNextChild(frame)) continue;
    m_out.indent(-1);
    if (frame.hasContent) {
      m_out.newLine();
    } else {
      m_out.put(" ");
    }
    m_out.put("}");
    m_frames.pop_back();
  }
}

void SoWriter::start(SoNode* node) {
  if (!node) return m_out.put("NULL");
  std::string const name = nameOf(node);
  if (auto const known = m_shared.find(node); known != m_shared.end()) {
    if (known->second.written) return m_out.put("USE " + name);
    known->second.written = true;
  }
  if (!name.empty()) m_out.put("DEF " + name + " ");
  m_frames.push_back({node});
  auto const* unknown = dynamic_cast<SoUnknownNode*>(node);
  m_out.put((unknown ? unknown->getFileTypeName() : node->getTypeId().getName()).str());
  m_out.put(" {");
  m_out.indent(1);
  if (unknown) declareFields(node, m_frames.back());
}

void SoWriter::declareFields(SoNode* node, Frame& frame) {
  startLine(frame);
  m_out.put("fields [");
  for (int i = 0; i < node->getNumFields(); ++i) {
    SoField const* field = node->getField(i);
    m_out.put((i == 0 ? " " : ", ") + field->getTypeId().getName().str() + " " + field->getName().str());
  }
  m_out.put(" ]");
}

void SoWriter::startLine(Frame& frame) {
  frame.hasContent = true;
  m_out.newLine();
}

bool SoWriter::writeNextField(Frame& frame) {
  if (frame.value >= 0) {
    writeNextValue(frame);
    return true;
  }
  SoNode* const node = frame.node;
  while (frame.field < node->getNumFields()) {
    SoField* const field = node->getField(frame.field++);
    if (!isWritten(field)) continue;
    startLine(frame);
    m_out.put(field->getName().str());
    if (!field->isDefault() && holdsNodes(field)) {
      frame.value = 0;
      return true;
    }
    if (!field->isDefault() && !field->isOfType(SoSFTrigger::getClassTypeId())) {
      m_out.put(" ");
      field->evaluate();
      field->writeValue(m_out);
    }
    writeFieldEnd(field);
    return true;
  }
  return false;
}

void SoWriter::writeNextValue(Frame& frame) {
  SoField* const field = frame.node->getField(frame.field - 1);
  int const count = countNodes(field);
  if (frame.value < count) {
    if (count == 1) {
      m_out.put(" ");
    } else {
      if (frame.value == 0) {
        m_out.put(" [");
        m_out.indent(1);
      }
      m_out.newLine();
    }
    start(nodeAt(field, frame.value++));  // may move the frame
    return;
  }
  frame.value = -1;
  if (count == 0) m_out.put(" [ ]");
  if (count > 1) {
    m_out.indent(-1);
    m_out.newLine();
    m_out.put("]");
  }
  writeFieldEnd(field);
}

void SoWriter::writeFieldEnd(SoField* field) {
  if (field->isIgnored()) m_out.put(" ~");
  SoField const* const source = field->getConnectedField();
  if (!source || !source->getContainer() || !source->getContainer()->isOfType(SoNode::getClassTypeId())) return;
  auto const* const node = static_cast<SoNode const*>(source->getContainer());
  // A source that is not in the file can not be named: the value stays, the connection does not.
  if (m_shared.contains(node)) m_out.put(" = " + nameOf(node) + "." + source->getName().str());
}

bool SoWriter::writeNextChild(Frame& frame) {
  SoChildList const* const children = writtenChildren(frame.node);
  if (!children || frame.child >= children->getLength()) return false;
  startLine(frame);
  start((*children)[frame.child++]);
  return true;
}
