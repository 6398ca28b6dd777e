#include "kestrava/io/SoReader.h"

#include "kestrava/fields/SoMFNode.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/io/SoInput.h"
#include "kestrava/nodes/SoGroup.h"
#include "kestrava/nodes/SoUnknownNode.h"

namespace {

constexpr std::size_t DEEPEST = 1'000'000;

std::string quoted(SbString const& text) { return "'" + text.str() + "'"; }
std::string typeText(SoNode const* node) {
  auto const* unknown = dynamic_cast<SoUnknownNode const*>(node);
  return unknown ? unknown->getFileTypeName().str() : node->getTypeId().getName().str();
}

/// A file's own field names are few: comparing texts is cheaper than entering each word among the names.
SoField* findField(SoNode const* node, SbString const& name) {
  SoFieldData const& data = *node->getFieldData();
  for (int i = 0; i < data.getNumFields(); ++i) {
    if (data.getFieldName(i).str() == name.str()) return data.getField(node, i);
  }
  return nullptr;
}

bool isChildContainer(SoNode const* node) { return node->isOfType(SoGroup::getClassTypeId()); }

}  // namespace

SoNode* SoReader::readAll() {
  if (!m_in.isOpen()) return nullptr;
  if (!m_in.hasFailed() && m_in.isBinary()) {
    m_in.failText("the file is a binary scene file, and only the ASCII form can be read", 1);
  }
  bool ok = !m_in.hasFailed();
  while (ok && !m_in.atEnd()) ok = readTopLevel();
  ok = ok && !m_in.hasFailed() && makeConnections();
  m_definitions.clear();
  if (!ok) {
    m_frames.clear();
    m_complete.clear();
    m_in.postError();
    return nullptr;
  }
  static SoType const separator = SoType::fromName("Separator");
  if (m_complete.size() == 1 && m_complete[0]->isOfType(separator)) return m_complete[0].release();
  m_addedRoot = true;
  auto* root = static_cast<SoGroup*>(SoNode::create(separator));
  root->getChildren()->reserve(static_cast<int>(m_complete.size()));
  for (SoRef<SoNode> const& node : m_complete) root->getChildren()->append(node);
  return root;
}

SoRef<SoNode> SoReader::readNode() {
  // A node inside a value that is not node-valued itself (a path's graph, an object's) makes this recursive.
  constexpr int DEEPEST_VALUES = 20;
  thread_local int open = 0;
  if (open >= DEEPEST_VALUES) {
    m_in.failText("nodes inside of values are nested too deeply");
    return {};
  }
  ++open;
  bool const ok = !m_in.hasFailed() && readTopLevel() && makeConnections();
  --open;
  if (!ok) return {};
  SoRef<SoNode> node = std::move(m_complete.back());
  m_complete.clear();
  return node;
}

bool SoReader::isWordNext() {
  int const next = m_in.peek();
  return next >= 0 && next != '.' && !SoNumberText::is(static_cast<char>(next), SoNumberText::END_NUMBER);
}

bool SoReader::readTopLevel() {
  if (!isWordNext()) return m_in.fail("a node");
  int const line = m_in.getLine();
  SbString word;
  return m_in.readWord(word) && readNodeAfter(word, nullptr, line, "a node") && readEntries(0);
}

// Until only `depth` frames are open.
bool SoReader::readEntries(std::size_t depth) {
  while (m_frames.size() > depth) {
    if (!readEntry()) return false;
  }
  return true;
}

bool SoReader::readEntry() {
  Frame& frame = m_frames.back();
  if (frame.isList) {
    return m_in.skip(']') ? closeList() : readNodeValue(frame.field);
  }
  if (m_in.skip('}')) return closeFrame();
  SoNode* const node = frame.node;
  int const next = m_in.peek();
  if (next < 0) {
    return m_in.fail("'}' for the " + typeText(node) + " of line " + std::to_string(frame.line));
  }
  int const line = m_in.getLine();
  std::string const expected =
      "a field of " + typeText(node) + (frame.children ? ", a node or '}'" : " or '}'");
  SbString word;
  if (!isWordNext()) return m_in.fail(expected);
  if (!m_in.readWord(word)) return false;
  if (SoField* field = findField(node, word)) return readField(field);
  if (!frame.children) return m_in.failText("expected " + expected + ", found " + quoted(word), line);
  return readNodeAfter(word, nullptr, line, expected);
}

bool SoReader::readField(SoField* field) {
  int const next = m_in.peek();
  if (next == '~' || next == '=') return readFieldEnd(field);
  if (dynamic_cast<SoSFNode*>(field)) return readNodeValue(field);
  if (dynamic_cast<SoMFNode*>(field)) {
    if (!m_in.skip('[')) return readNodeValue(field);
    Frame list;
    list.field = field;
    list.isList = true;
    m_frames.push_back(std::move(list));
    m_lists.emplace_back();
    return true;
  }
  if (!field->readValue(m_in) || m_in.hasFailed()) return false;
  field->valueChanged();
  return readFieldEnd(field);
}

bool SoReader::readFieldEnd(SoField* field) {
  if (m_in.skip('~')) field->setIgnored(true);
  return !m_in.skip('=') || readSource(field);
}

bool SoReader::readSource(SoField* field) {
  if (m_in.peek() < 0) return m_in.fail("a node's name and field");
  Connection connection{field, m_frames.back().node, {}, {}, {}, m_in.getLine()};
  SbString text;
  if (m_in.peek() == '"') {
    // A name in quotes may hold dots: the one that counts follows it.
    if (!m_in.read(text) || !m_in.expect('.')) return false;
    connection.sourceName = text.str();
    if (!m_in.readWord(text)) return false;
    connection.sourceField = text.str();
  } else {
    if (!m_in.read(text)) return false;
    std::size_t const dot = text.str().rfind('.');
    if (dot == std::string::npos) {
      return m_in.failText("expected a node's name and field, found " + quoted(text), connection.line);
    }
    connection.sourceName = text.str().substr(0, dot);
    connection.sourceField = text.str().substr(dot + 1);
  }
  auto const known = m_definitions.find(connection.sourceName);
  if (known != m_definitions.end()) connection.source = known->second.node;
  m_connections.push_back(std::move(connection));
  return !m_in.hasFailed();
}

bool SoReader::readNodeValue(SoField* field) {
  if (!isWordNext()) return m_in.fail("a node, USE or NULL");
  int const line = m_in.getLine();
  SbString word;
  if (!m_in.readWord(word)) return false;
  if (word == SbString("NULL")) return deliver({}, field);
  return readNodeAfter(word, field, line, "a node, USE or NULL");
}

bool SoReader::readNodeAfter(SbString const& word, SoField* field, int line, SbString const& expected) {
  SbString name;
  if (word == SbString("USE")) {
    if (!m_in.read(name)) return false;
    auto const known = m_definitions.find(name.str());
    if (known == m_definitions.end()) return m_in.failText("no node is defined as " + quoted(name), line);
    if (known->second.isOpen) return m_in.failText("the node " + quoted(name) + " would contain itself", line);
    return deliver(known->second.node, field);
  }
  if (word != SbString("DEF")) return readBody(word, SbString(), field, line, expected);
  SbString type;
  if (!m_in.read(name) || m_in.peek() < 0) return m_in.fail("a type of nodes");
  int const typeLine = m_in.getLine();
  return m_in.readWord(type) && readBody(type, name, field, typeLine, "a type of nodes");
}

bool SoReader::readBody(SbString const& typeName, SbString const& definedAs, SoField* field, int line,
                        SbString const& expected) {
  if (m_frames.size() >= DEEPEST) {
    return m_in.failText("nodes are nested deeper than " + std::to_string(DEEPEST) + " levels", line);
  }
  Frame frame;
  frame.field = field;
  frame.line = line;
  SoType const type = typeOf(typeName);
  if (type.isBad() || type.isDerivedFrom(SoUnknownNode::getClassTypeId())) {
    frame.node = readUnknown(typeName, line, expected);
    if (!frame.node) return false;
  } else {
    if (!type.canCreateInstance()) return m_in.failText("there are no nodes of the type " + quoted(typeName) + " itself", line);
    frame.node = SoNode::create(type);
    if (!m_in.expect('{')) return false;
  }
  frame.node->enableNotify(false);
  if (isChildContainer(frame.node)) frame.children = frame.node->getChildren();
  if (!definedAs.empty()) {
    // What follows '+' only tells nodes of a file apart.
    frame.node->setName(SbName(definedAs.str().substr(0, definedAs.str().find('+'))));
    frame.definition = &(m_definitions[definedAs.str()] = {frame.node, true});
  }
  m_frames.push_back(std::move(frame));
  return true;
}

SoType SoReader::typeOf(SbString const& name) {
  auto const [known, added] = m_types.try_emplace(name.str());
  if (added) {
    SoType const type = SoType::fromName(SbName(name));
    if (type.isDerivedFrom(SoNode::getClassTypeId())) known->second = type;
  }
  return known->second;
}

SoRef<SoNode> SoReader::readUnknown(SbString const& typeName, int line, SbString const& expected) {
  if (m_in.peek() != '{') {
    m_in.failText("expected " + expected.str() + ", found " + quoted(typeName), line);
    return {};
  }
  m_in.skip('{');
  if (!m_in.skipWord("fields")) {
    m_in.failText("the type " + quoted(typeName) + " is not known, and its fields are not declared", line);
    return {};
  }
  SoRef<SoUnknownNode> const node(new SoUnknownNode(SbName(typeName)));
  if (!m_in.expect('[')) return {};
  while (!m_in.skip(']')) {
    SbString type, name;
    if (m_in.peek() < 0) {
      m_in.fail("']' at the end of the declared fields");
      return {};
    }
    int const fieldLine = m_in.getLine();
    if (!m_in.readWord(type) || !m_in.readWord(name)) return {};
    if (node->declareField(SoType::fromName(SbName(type)), SbName(name))) continue;
    m_in.failText("a field " + quoted(name) + " of type " + quoted(type) + " can not be declared", fieldLine);
    return {};
  }
  return SoRef<SoNode>(node.get());
}

bool SoReader::closeFrame() {
  Frame frame = std::move(m_frames.back());
  m_frames.pop_back();
  frame.node->enableNotify(true);
  Definition* const definition = frame.definition;
  if (definition && definition->node.get() == frame.node.get()) definition->isOpen = false;
  return deliver(std::move(frame.node), frame.field);
}

bool SoReader::closeList() {
  SoField* const field = m_frames.back().field;
  std::vector<SoRef<SoNode>> const values = std::move(m_lists.back());
  m_frames.pop_back();
  m_lists.pop_back();
  static_cast<SoMFNode*>(field)->setValues({values.begin(), values.end()});
  return readFieldEnd(field);
}

bool SoReader::deliver(SoRef<SoNode> node, SoField* field) {
  if (m_frames.empty()) {
    m_complete.push_back(std::move(node));
    return true;
  }
  Frame& frame = m_frames.back();
  if (frame.isList) {
    m_lists.back().push_back(std::move(node));
    return true;
  }
  if (!field) {
    frame.children->append(node);
    return true;
  }
  if (auto* single = dynamic_cast<SoSFNode*>(field)) {
    single->setValue(node);
    if (single->getValue() != node.get()) {
      return m_in.failText("the field '" + field->getName().str() + "' of " + typeText(frame.node) +
                           " takes no " + typeText(node));
    }
  } else {
    static_cast<SoMFNode*>(field)->setValue(node);
  }
  return readFieldEnd(field);
}

bool SoReader::makeConnections() {
  for (Connection& connection : m_connections) {
    if (!connection.source) {
      auto const known = m_definitions.find(connection.sourceName);
      if (known == m_definitions.end()) {
        return m_in.failText("no node is defined as " + quoted(connection.sourceName), connection.line);
      }
      connection.source = known->second.node;
    }
    SoField* const source = findField(connection.source, SbString(connection.sourceField));
    if (!source) {
      return m_in.failText(quoted(connection.sourceField) + " is not a field of " + typeText(connection.source),
                           connection.line);
    }
    if (!connection.field->connectFrom(source)) {
      return m_in.failText("the field '" + connection.field->getName().str() + "' can not follow " +
                               quoted(connection.sourceName + "." + connection.sourceField),
                           connection.line);
    }
  }
  m_connections.clear();
  return true;
}
