// The reader's half for the binary form.

#include "kestrava/io/SoGraphForm.h"
#include "kestrava/io/SoReadText.h"
#include "kestrava/io/SoReader.h"
#include "kestrava/io/SoValueIO.h"

using namespace SoReadText;
using namespace SoGraphWords;

bool SoReader::readWord(Word& word) {
  std::uint32_t bits = 0;
  if (!m_in.align(4) || !m_in.read(bits)) return false;
  word = {bits & ((1u << KIND_BITS) - 1), bits >> KIND_BITS};
  return true;
}

bool SoReader::readBytesRoots() {
  std::uint32_t version = 0;
  if (!m_in.align(4) || !m_in.read(version)) return false;
  if (version != VERSION) {
    return m_in.failText("the binary form is of version " + std::to_string(version) + ", and only version " +
                         std::to_string(VERSION) + " can be read");
  }
  for (Word word;;) {
    if (!readWord(word)) return false;
    if (word.kind == END) break;
    if (word.kind == NONE) return m_in.failText("expected a node, found null");
    if (!readBytesItem(word, nullptr, Use::CHILD) || !readEntries(0)) return false;
  }
  return m_in.atEnd() ? !m_in.hasFailed() : m_in.failText("there is more data than the scene");
}

bool SoReader::readBytesEntry() {
  Frame& frame = m_frames.back();
  SoField* const field = frame.field;
  if (frame.kind == Frame::PATH) {
    return m_in.align(4) && SoReadValues(m_in, m_openPaths.back().steps) && closePath();
  }
  bool const isList = frame.kind != Frame::CONTAINER;
  if (isList && frame.left-- == 0) return closeList();
  Word word;
  if (!readWord(word)) return false;
  if (isList) {
    return frame.kind == Frame::PATHS ? readBytesPath(word, field) : readBytesItem(word, field, Use::VALUE);
  }
  switch (word.kind) {
    case END:
      return close();
    case VALUE:
    case IGNORED:
    case CONNECTED:
      return readBytesField(word);
    case NONE:
      return m_in.failText("a null child stands in " + typeText(frame.container));
    default:
      break;
  }
  if (!frame.children)
    return m_in.failText("a child stands in " + typeText(frame.container) + ", which takes none");
  return readBytesItem(word, nullptr, Use::CHILD);
}

SoField* SoReader::findFileField(Frame& frame, std::uint32_t number) {
  if (number >= frame.fileClass->fields.size()) {
    m_in.failText(typeText(frame.container) + " has no field of the number " + std::to_string(number));
    return nullptr;
  }
  FileClass::Field& known = frame.fileClass->fields[number];
  SoFieldData const& data = *frame.container->getFieldData();
  // Objects with fields of their own need not all have the same table.
  if (known.index < 0 || known.index >= data.getNumFields() || data.getFieldName(known.index) != known.name) {
    known.index = data.getIndex(known.name);
  }
  SoField* const field = known.index < 0 ? nullptr : data.getField(frame.container, known.index);
  if (!field) {
    m_in.failText(quoted(known.name.toString()) + " is not a field of " + typeText(frame.container));
  } else if (field->getTypeId().getName() != known.type) {
    m_in.failText("the field " + quoted(known.name.toString()) + " of " + typeText(frame.container) +
                  " is of type " + field->getTypeId().getName().str() + ", not " + known.type.str());
    return nullptr;
  }
  return field;
}

bool SoReader::readBytesField(Word const& word) {
  Frame& frame = m_frames.back();
  SoField* const field = findFileField(frame, word.number);
  if (!field) return false;
  if (word.kind == IGNORED) {
    field->setIgnored(true);
    return true;
  }
  Word next;
  if (word.kind == CONNECTED) return readWord(next) && readBytesItem(next, field, Use::SOURCE);
  using Kind = SoGraphSurvey::FieldKind;
  Kind const kind = SoGraphSurvey::kindOf(field);
  bool const isNodes = kind == Kind::NODES;
  if (isNodes || kind == Kind::PATHS) {
    Frame list;
    list.kind = isNodes ? Frame::NODES : Frame::PATHS;
    list.field = field;
    if (!m_in.readCount(list.left, sizeof(std::uint32_t))) return false;
    if (isNodes) {
      m_lists.emplace_back();
    } else {
      m_pathLists.push_back({field, frame.container, {}, true});
    }
    m_frames.push_back(std::move(list));
    return true;
  }
  if (kind == Kind::NODE) return readWord(next) && readBytesItem(next, field, Use::VALUE);
  if (kind == Kind::PATH) return readWord(next) && readBytesPath(next, field);
  // A value in the file says that the field follows nothing, unless a source stands behind it.
  if (field->isConnectionDefault()) field->disconnect();
  if (!field->readValue(m_in) || m_in.hasFailed()) return false;
  field->valueChanged();
  return true;
}

bool SoReader::readBytesPath(Word const& word, SoField* field) {
  if (word.kind == NONE) return endPathValue(field, {});
  if (word.kind != PATH) return m_in.failText("expected a path");
  Frame frame;
  frame.kind = Frame::PATH;
  frame.field = field;
  m_openPaths.emplace_back();
  m_openPaths.back().place = m_in.getPlace();
  m_frames.push_back(std::move(frame));
  Word head;
  if (!readWord(head)) return false;
  if (head.kind != USE) return readBytesItem(head, field, Use::HEAD);
  Definition const* const definition = definitionOf(head.number);
  m_openPaths.back().head.definition = definition;
  return definition;
}

// Numbers come without gaps, so that none costs more than the data that holds it.
SoReader::Definition* SoReader::definitionOf(std::uint32_t number) {
  if (number > m_numbered.size()) {
    m_in.failText("there is no node of the number " + std::to_string(number));
    return nullptr;
  }
  if (number == m_numbered.size()) m_numbered.emplace_back();
  return &m_numbered[number];
}

bool SoReader::readBytesItem(Word word, SoField* field, Use use) {
  std::int64_t const place = m_in.getPlace();
  Definition* definition = nullptr;
  SbName name;
  if (word.kind == DEFINE) {
    definition = definitionOf(word.number);
    if (!definition) return false;
    if (definition->container)
      return m_in.failText("the node " + std::to_string(word.number) + " is defined twice");
    if (!readWord(word)) return false;
  }
  if (word.kind == NAME && (!m_in.read(name) || !readWord(word))) return false;
  if (word.kind == NODE) return readBytesBody(word.number, name, definition, field, use);
  bool const isBare = !definition && name.empty();
  if (isBare && word.kind == NONE && use == Use::VALUE) return deliver({}, field, use);
  if (!isBare || word.kind != USE) return m_in.failText("expected a node");
  Definition const* const used = definitionOf(word.number);
  if (!used) return false;
  if (use == Use::SOURCE) {
    Connection connection{field, m_frames.back().container, {{}, {}, used}, {}, place};
    if (!m_in.readName(name)) return false;
    connection.sourceField = name.str();
    m_connections.push_back(std::move(connection));
    return true;
  }
  std::string const number = std::to_string(word.number);
  if (!used->container) return m_in.failText("there is no node of the number " + number);
  return deliverUse(*used, SbString(number), field, use, place);
}

bool SoReader::readClass(FileClass& fileClass) {
  std::uint32_t count = 0;
  if (!m_in.readName(fileClass.name) || !m_in.readCount(count, 2 * sizeof(std::uint32_t))) return false;
  for (FileClass::Field field; count > 0; --count) {
    if (!m_in.readName(field.name) || !m_in.readName(field.type)) return false;
    fileClass.fields.push_back(field);
  }
  fileClass.type = typeOf(fileClass.name.toString());
  return true;
}

bool SoReader::readBytesBody(std::uint32_t number, SbName const& name, Definition* definition, SoField* field,
                             Use use) {
  Frame frame;
  frame.field = field;
  frame.use = use;
  frame.definition = definition;
  frame.place = m_in.getPlace();
  if (number > m_classes.size())
    return m_in.failText("there is no class of the number " + std::to_string(number));
  if (number == m_classes.size()) {
    FileClass added;
    if (!readClass(added)) return false;
    m_classes.push_back(std::move(added));
  }
  FileClass& fileClass = m_classes[number];
  frame.fileClass = &fileClass;
  bool const isNode = fileClass.type.isDerivedFrom(SoNode::getClassTypeId());
  if (fileClass.type.isBad() || fileClass.type.isDerivedFrom(SoUnknownNode::getClassTypeId())) {
    // One word makes as many fields as the class has: what a small file can ask for is limited.
    constexpr std::uint64_t FREE = 10'000, A_BYTE = 2;
    m_unknownFields += fileClass.fields.size();
    if (m_unknownFields > FREE + A_BYTE * static_cast<std::uint64_t>(m_in.getPlace())) {
      return m_in.failText("there are too many fields of nodes of unknown types for so little data");
    }
    if (!isWord(fileClass.name.str()))
      return m_in.failText(quoted(fileClass.name.toString()) + " is no name of a type");
    SoRef<SoUnknownNode> const node(new SoUnknownNode(fileClass.name));
    for (FileClass::Field const& declared : fileClass.fields) {
      bool const isName = isWord(declared.name.str());
      if (isName && node->declareField(SoType::fromName(declared.type), declared.name)) continue;
      return m_in.failText("a field " + quoted(declared.name.toString()) + " of type " +
                           quoted(declared.type.toString()) + " can not be declared");
    }
    frame.container = Container(node.get());
  } else if (use == Use::SOURCE || isNode) {
    frame.container = makeContainer(fileClass.type);
    if (!frame.container) {
      return m_in.failText("there are no nodes of the type " + quoted(fileClass.name.toString()) + " itself");
    }
  } else {
    return m_in.failText("expected a node, found the engine " + quoted(fileClass.name.toString()));
  }
  return open(std::move(frame), name);
}
