// The reader's half for text.

#include "kestrava/io/SoGraphSurvey.h"
#include "kestrava/io/SoReadText.h"
#include "kestrava/io/SoReader.h"
#include "kestrava/io/SoValueIO.h"

using namespace SoReadText;

bool SoReader::isWordNext() {
  int const next = m_in.peek();
  return next >= 0 && next != '.' && !SoNumberText::is(static_cast<char>(next), SoNumberText::END_NUMBER);
}

bool SoReader::readTextRoot(Use use) {
  if (use == Use::HEAD) return readTextPath(nullptr) && readEntries(0);
  if (use == Use::VALUE && m_in.skipWord("NULL")) return deliver({}, nullptr, use);
  if (!isWordNext()) return m_in.fail("a node");
  int const line = m_in.getLine();
  SbString word;
  return m_in.readWord(word) && readTextAfter(word, nullptr, use, line, "a node") && readEntries(0);
}

bool SoReader::readTextEntry() {
  Frame& frame = m_frames.back();
  SoField* const field = frame.field;
  switch (frame.kind) {
    case Frame::NODES:
      return m_in.skip(']') ? closeList() : readTextValue(field, Use::VALUE);
    case Frame::PATHS:
      return m_in.skip(']') ? closeList() : readTextPath(field);
    case Frame::PATH:
      return closeTextPath();
    case Frame::CONTAINER:
      break;
  }
  if (m_in.skip('}')) return close();
  SoFieldContainer* const container = frame.container;
  int const next = m_in.peek();
  if (next < 0) {
    return m_in.fail("'}' for the " + typeText(container) + " of line " + std::to_string(frame.place));
  }
  int const line = m_in.getLine();
  SbString word;
  if (!isWordNext()) return m_in.fail(expectedText(nullptr));
  if (!m_in.readWord(word)) return false;
  if (SoField* named = findField(container, word.str())) return readTextField(named);
  if (!frame.children) return m_in.failText("expected " + expectedText(nullptr) + ", found " + quoted(word), line);
  return readTextAfter(word, nullptr, Use::CHILD, line, nullptr);
}

bool SoReader::readTextField(SoField* field) {
  int const next = m_in.peek();
  if (next == '~' || next == '=') return readTextFieldEnd(field);
  using Kind = SoGraphSurvey::FieldKind;
  Kind const kind = SoGraphSurvey::kindOf(field);
  bool const isNodes = kind == Kind::NODES, isPaths = kind == Kind::PATHS;
  if ((isNodes || isPaths) && m_in.skip('[')) {
    Frame list;
    list.kind = isNodes ? Frame::NODES : Frame::PATHS;
    list.field = field;
    if (isNodes) {
      m_lists.emplace_back();
    } else {
      m_pathLists.push_back({field, m_frames.back().container, {}, true});
    }
    m_frames.push_back(std::move(list));
    return true;
  }
  if (isNodes || kind == Kind::NODE) return readTextValue(field, Use::VALUE);
  if (isPaths || kind == Kind::PATH) return readTextPath(field);
  // A value in the file says that the field follows nothing, unless a source stands behind it.
  if (field->isConnectionDefault()) field->disconnect();
  if (!field->readValue(m_in) || m_in.hasFailed()) return false;
  field->valueChanged();
  return readTextFieldEnd(field);
}

bool SoReader::readTextFieldEnd(SoField* field) {
  if (m_in.skip('~')) field->setIgnored(true);
  return !m_in.skip('=') || readTextSource(field);
}

bool SoReader::readTextValue(SoField* field, Use use) {
  if (!isWordNext()) return m_in.fail("a node, USE or NULL");
  int const line = m_in.getLine();
  SbString word;
  if (!m_in.readWord(word)) return false;
  if (word == SbString("NULL") && use == Use::VALUE) return deliver({}, field, use);
  return readTextAfter(word, field, use, line, "a node, USE or NULL");
}

// "Path { head [ steps ] }" or NULL. The head of a path in a scene may stand anywhere in it.
bool SoReader::readTextPath(SoField* field) {
  if (m_in.skipWord("NULL")) return endPathValue(field, {});
  if (!m_in.skipWord("Path")) return m_in.fail("Path or NULL");
  if (!m_in.expect('{')) return false;
  Frame frame;
  frame.kind = Frame::PATH;
  frame.field = field;
  m_openPaths.emplace_back();
  m_openPaths.back().place = m_in.getLine();
  m_frames.push_back(std::move(frame));
  if (!m_in.skipWord("USE")) return readTextValue(field, Use::HEAD);
  SbString name;
  if (!m_in.read(name)) return false;
  m_openPaths.back().head.name = name.str();
  return true;
}

bool SoReader::closeTextPath() {
  return SoReadValues(m_in, m_openPaths.back().steps) && m_in.expect('}') && closePath();
}

// A container and one of its fields: "USE name . field", "Type { } . field", or "name.field".
bool SoReader::readTextSource(SoField* field) {
  if (m_in.peek() < 0) return m_in.fail("a node's name and field");
  Connection connection{field, m_frames.back().container, {}, {}, m_in.getLine()};
  SbString word, name;
  bool isQuoted = m_in.peek() == '"';
  if (!m_in.read(word)) return false;
  if (!isQuoted && word == SbString("DEF")) {
    if (!m_in.read(name) || m_in.peek() < 0) return m_in.fail("a type of nodes or engines");
    return m_in.readWord(word) &&
           readTextBody(word, name, field, Use::SOURCE, connection.place, "a type of nodes");
  }
  if (!isQuoted && m_in.peek() == '{') {
    return readTextBody(word, SbString(), field, Use::SOURCE, connection.place, "a type of nodes");
  }
  if (!isQuoted && word == SbString("USE")) {
    isQuoted = m_in.peek() == '"';
    if (!m_in.read(word)) return false;
  }
  if (!readTextOutput(word, isQuoted, connection)) return false;
  Reference& source = connection.source;
  auto const known = m_definitions.find(SbName(source.name));
  // An engine that is still open may turn out to mean another one.
  if (known != m_definitions.end()) {
    Container const& container = known->second.container;
    if (!known->second.isOpen || container->isOfType(SoNode::getClassTypeId())) source.container = container;
  }
  m_connections.push_back(std::move(connection));
  return !m_in.hasFailed();
}

// The name is read; a name in quotes may hold dots, and so may others: the last one counts.
bool SoReader::readTextOutput(SbString const& name, bool isQuoted, Connection& connection) {
  std::string text = name.str();
  std::size_t const dot = isQuoted ? std::string::npos : text.rfind('.');
  if (dot == std::string::npos) {
    if (!m_in.skip('.')) {
      return m_in.failText("expected a node's name and field, found " + quoted(name), connection.place);
    }
  } else {
    connection.sourceField = text.substr(dot + 1);
    text.resize(dot);
  }
  connection.source.name = text;
  SbString field;
  if (!connection.sourceField.empty()) return true;
  if (!m_in.readWord(field)) return false;
  connection.sourceField = field.str();
  return true;
}

// Put together only for a fault: it is asked for at every node.
std::string SoReader::expectedText(char const* expected) const {
  if (expected) return expected;
  Frame const& frame = m_frames.back();
  return "a field of " + typeText(frame.container) + (frame.children ? ", a node or '}'" : " or '}'");
}

bool SoReader::readTextAfter(SbString const& word, SoField* field, Use use, std::int64_t line,
                             char const* expected) {
  SbString name;
  if (word == SbString("USE")) {
    if (!m_in.read(name)) return false;
    auto const known = m_definitions.find(SbName(name));
    if (known == m_definitions.end()) return m_in.failText("no node is defined as " + quoted(name), line);
    return deliverUse(known->second, name, field, use, line);
  }
  if (word != SbString("DEF")) return readTextBody(word, SbString(), field, use, line, expected);
  SbString type;
  if (!m_in.read(name) || m_in.peek() < 0) return m_in.fail("a type of nodes");
  int const typeLine = m_in.getLine();
  return m_in.readWord(type) && readTextBody(type, name, field, use, typeLine, "a type of nodes");
}

bool SoReader::readTextBody(SbString const& typeName, SbString const& definedAs, SoField* field, Use use,
                            std::int64_t line, char const* expected) {
  Frame frame;
  frame.field = field;
  frame.use = use;
  frame.place = line;
  SoType const type = typeOf(typeName);
  if (type.isBad() || type.isDerivedFrom(SoUnknownNode::getClassTypeId())) {
    frame.container = readUnknown(typeName, line, expected);
    if (!frame.container) return false;
  } else {
    if (use != Use::SOURCE && !type.isDerivedFrom(SoNode::getClassTypeId())) {
      return m_in.failText("expected " + expectedText(expected) + ", found the engine " + quoted(typeName), line);
    }
    frame.container = makeContainer(type);
    if (!frame.container)
      return m_in.failText("there are no nodes of the type " + quoted(typeName) + " itself", line);
    if (!m_in.expect('{')) return false;
  }
  if (definedAs.empty()) return open(std::move(frame), SbName());
  SbName const name(definedAs);
  frame.definition = &m_definitions[name];
  // What follows '+' only tells nodes of a file apart.
  std::size_t const plus = definedAs.str().find('+');
  return open(std::move(frame), plus == std::string::npos ? name : SbName(definedAs.str().substr(0, plus)));
}

SoType SoReader::typeOf(SbString const& name) {
  auto const [known, added] = m_types.try_emplace(name.str());
  if (added) {
    SoType const type = SoType::fromName(SbName(name));
    if (type.isDerivedFrom(SoNode::getClassTypeId()) || isEngineType(type)) known->second = type;
  }
  return known->second;
}

SoReader::Container SoReader::readUnknown(SbString const& typeName, std::int64_t line,
                                          char const* expected) {
  if (m_in.peek() != '{') {
    m_in.failText("expected " + expectedText(expected) + ", found " + quoted(typeName), line);
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
  return Container(node.get());
}
