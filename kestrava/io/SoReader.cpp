#include "kestrava/io/SoReader.h"

#include "kestrava/fields/SoMFNode.h"
#include "kestrava/fields/SoMFPath.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/fields/SoSFPath.h"
#include "kestrava/io/SoInput.h"
#include "kestrava/io/SoReadText.h"
#include "kestrava/io/SoWriter.h"
#include "kestrava/nodes/SoGroup.h"

using namespace SoReadText;

namespace {

constexpr std::size_t DEEPEST = 1'000'000;

/// A value that holds a graph and is no node-valued field makes reading recursive.
struct ValueDepth {
  static constexpr int DEEPEST_VALUES = 20;
  explicit ValueDepth(SoInput& in) : isFine(++open <= DEEPEST_VALUES) {
    if (!isFine) in.failText("nodes inside of values are nested too deeply");
  }
  ~ValueDepth() { --open; }
  bool const isFine;
  static thread_local int open;
};
thread_local int ValueDepth::open = 0;

/// A container whose fields are made at run time may have lost one while it was read. Looks at the address alone.
bool hasField(SoFieldContainer const* container, SoField const* field) {
  for (int i = 0; i < container->getNumFields(); ++i) {
    if (container->getField(i) == field) return true;
  }
  return false;
}

} // namespace

bool SoReader::failGone(SoFieldContainer const* container, std::int64_t place) {
  return m_in.failText("a field of " + typeText(container) + " was replaced after it had been given a value",
                       place);
}

SoNode* SoReader::readAll() {
  if (!m_in.isOpen()) return nullptr;
  bool const ok = !m_in.hasFailed() && readRoots() && finish();
  m_definitions.clear();
  m_numbered.clear();
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

bool SoReader::readRoots() {
  if (m_in.isBinary()) return readBytesRoots();
  while (!m_in.atEnd()) {
    if (!readTextRoot(Use::CHILD)) return false;
  }
  return !m_in.hasFailed();
}

bool SoReader::readNode(SoRef<SoNode>& node) {
  ValueDepth const depth(m_in);
  if (!depth.isFine || m_in.hasFailed() || !readGraph(Use::VALUE) || !finish()) return false;
  node = std::move(m_complete.back());
  m_complete.clear();
  return true;
}

bool SoReader::readPath(SoRef<SoPath>& path) {
  ValueDepth const depth(m_in);
  if (!depth.isFine || m_in.hasFailed() || !readGraph(Use::HEAD) || !finish()) return false;
  PathValue value = std::move(m_completePaths.back());
  m_completePaths.clear();
  return makePath(value, path);
}

// One value: a node, or (as a head) a path.
bool SoReader::readGraph(Use use) {
  if (!m_in.isBinary()) return readTextRoot(use);
  Word word;
  if (!readWord(word)) return false;
  bool const ok = use == Use::HEAD ? readBytesPath(word, nullptr) : readBytesItem(word, nullptr, use);
  return ok && readEntries(0);
}

// Until only `depth` frames are open.
bool SoReader::readEntries(std::size_t depth) {
  bool const isBinary = m_in.isBinary();
  while (m_frames.size() > depth) {
    if (!(isBinary ? readBytesEntry() : readTextEntry())) return false;
  }
  return true;
}

bool SoReader::finish() { return makeConnections() && setPaths(); }

bool SoReader::open(Frame frame, SbName const& name) {
  if (m_frames.size() >= DEEPEST) {
    return m_in.failText("nodes are nested deeper than " + std::to_string(DEEPEST) + " levels", frame.place);
  }
  frame.container->enableNotify(false);
  if (!name.empty()) frame.container->setName(name);
  if (frame.container->isOfType(SoGroup::getClassTypeId())) {
    frame.children = static_cast<SoGroup*>(frame.container.get())->getChildren();
  }
  if (frame.definition) *frame.definition = {frame.container, true};
  m_frames.push_back(std::move(frame));
  return true;
}

bool SoReader::close() {
  Frame frame = std::move(m_frames.back());
  m_frames.pop_back();
  frame.container->enableNotify(true);
  Definition* const definition = frame.definition;
  bool const isDefinition = definition && definition->container.get() == frame.container.get();
  if (isDefinition) definition->isOpen = false;
  if (frame.use != Use::SOURCE) {
    return deliver(SoRef<SoNode>(static_cast<SoNode*>(frame.container.get())), frame.field, frame.use);
  }
  Container const meant(frame.container->getMeant());
  if (isDefinition) definition->container = meant;
  Connection connection{frame.field, m_frames.back().container, {meant, {}, nullptr}, {}, frame.place};
  if (m_in.isBinary()) {
    SbName output;
    if (!m_in.align(4) || !m_in.readName(output)) return false;
    connection.sourceField = output.str();
  } else {
    SbString output;
    if (!m_in.expect('.') || !m_in.readWord(output)) return false;
    connection.sourceField = output.str();
  }
  m_connections.push_back(std::move(connection));
  return true;
}

bool SoReader::closeList() {
  Frame const frame = std::move(m_frames.back());
  m_frames.pop_back();
  if (frame.kind == Frame::PATHS) {
    m_pathFields.push_back(std::move(m_pathLists.back()));
    m_pathLists.pop_back();
  } else {
    std::vector<SoRef<SoNode>> const values = std::move(m_lists.back());
    m_lists.pop_back();
    static_cast<SoMFNode*>(frame.field)->setValues({values.begin(), values.end()});
  }
  return endField(frame.field);
}

// What follows a value.
bool SoReader::endField(SoField* field) { return m_in.isBinary() || readTextFieldEnd(field); }

bool SoReader::deliver(SoRef<SoNode> node, SoField* field, Use use) {
  if (m_frames.empty()) {
    m_complete.push_back(std::move(node));
    return true;
  }
  Frame& frame = m_frames.back();
  if (use == Use::HEAD) {
    m_openPaths.back().head.container = Container(node.get());
    return true;
  }
  if (frame.kind == Frame::NODES) {
    m_lists.back().push_back(std::move(node));
    return true;
  }
  if (!field) {
    frame.children->append(node);
    return true;
  }
  if (SoGraphSurvey::kindOf(field) == SoGraphSurvey::FieldKind::NODE) {
    auto* const single = static_cast<SoSFNode*>(field);
    single->setValue(node);
    if (single->getValue() != node.get()) {
      return m_in.failText("the field '" + field->getName().str() + "' of " + typeText(frame.container) +
                           " takes no " + typeText(node));
    }
  } else {
    static_cast<SoMFNode*>(field)->setValue(node);
  }
  return endField(field);
}

bool SoReader::deliverUse(Definition const& definition, SbString const& name, SoField* field, Use use,
                          std::int64_t place) {
  if (definition.isOpen) return m_in.failText("the node " + quoted(name) + " would contain itself", place);
  if (!definition.container->isOfType(SoNode::getClassTypeId())) {
    return m_in.failText(quoted(name) + " is no node but a " + typeText(definition.container), place);
  }
  return deliver(SoRef<SoNode>(static_cast<SoNode*>(definition.container.get())), field, use);
}

// The path on top has all its steps.
bool SoReader::closePath() {
  SoField* const field = m_frames.back().field;
  m_frames.pop_back();
  PathValue value = std::move(m_openPaths.back());
  m_openPaths.pop_back();
  return endPathValue(field, std::move(value));
}

bool SoReader::endPathValue(SoField* field, PathValue value) {
  if (m_frames.empty()) {
    m_completePaths.push_back(std::move(value));
    return true;
  }
  if (m_frames.back().kind == Frame::PATHS) {
    m_pathLists.back().values.push_back(std::move(value));
    return true;
  }
  m_pathFields.push_back({field,
                          m_frames.back().container,
                          {},
                          SoGraphSurvey::kindOf(field) == SoGraphSurvey::FieldKind::PATHS});
  m_pathFields.back().values.push_back(std::move(value));
  return endField(field);
}

bool SoReader::resolve(Reference& reference, std::int64_t place) {
  if (reference.container) return true;
  if (reference.definition) {
    reference.container = reference.definition->container;
    return reference.container || m_in.failText("a node is referred to that is not in the file", place);
  }
  auto const known = m_definitions.find(SbName(reference.name));
  if (known == m_definitions.end()) {
    return m_in.failText("no node is defined as " + quoted(SbString(reference.name)), place);
  }
  reference.container = known->second.container;
  return true;
}

bool SoReader::makeConnections() {
  for (Connection& connection : m_connections) {
    if (!hasField(connection.container, connection.field))
      return failGone(connection.container, connection.place);
    if (!resolve(connection.source, connection.place)) return false;
    SoField* const source = findField(connection.source.container, connection.sourceField);
    if (!source) {
      return m_in.failText(quoted(SbString(connection.sourceField)) + " is not a field of " +
                               typeText(connection.source.container),
                           connection.place);
    }
    if (!connection.field->connectFrom(source)) {
      std::string const& name = connection.source.name;
      return m_in.failText("the field '" + connection.field->getName().str() + "' can not follow '" +
                               (name.empty() ? typeText(connection.source.container) : name) + "." +
                               connection.sourceField + "'",
                           connection.place);
    }
  }
  m_connections.clear();
  return true;
}

bool SoReader::makePath(PathValue& value, SoRef<SoPath>& path) {
  path.reset();
  Reference& head = value.head;
  if (!head.container && head.name.empty() && !head.definition) return true;
  if (!resolve(head, value.place)) return false;
  if (!head.container->isOfType(SoNode::getClassTypeId())) {
    return m_in.failText("a path can not begin at a " + typeText(head.container), value.place);
  }
  path = SoRef<SoPath>(new SoPath(static_cast<SoNode*>(head.container.get())));
  for (std::int32_t step : value.steps) {
    if (SoWriter::appendStep(*path, step)) continue;
    return m_in.failText("a path has no child " + std::to_string(step) + " to go on with", value.place);
  }
  return true;
}

bool SoReader::setPaths() {
  for (PathField& pathField : m_pathFields) {
    using Kind = SoGraphSurvey::FieldKind;
    bool const isThere =
        hasField(pathField.container, pathField.field) &&
        SoGraphSurvey::kindOf(pathField.field) == (pathField.isMany ? Kind::PATHS : Kind::PATH);
    if (!isThere) {
      return failGone(pathField.container, pathField.values.empty() ? 0 : pathField.values[0].place);
    }
    std::vector<SoRef<SoPath>> paths(pathField.values.size());
    for (std::size_t i = 0; i < paths.size(); ++i) {
      if (!makePath(pathField.values[i], paths[i])) return false;
    }
    if (pathField.isMany) {
      static_cast<SoMFPath*>(pathField.field)->setValues(std::move(paths));
    } else {
      static_cast<SoSFPath*>(pathField.field)->setValue(paths[0]);
    }
  }
  m_pathFields.clear();
  return true;
}
