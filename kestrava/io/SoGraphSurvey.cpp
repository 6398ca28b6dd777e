#include "kestrava/io/SoGraphSurvey.h"

#include "kestrava/base/SoPath.h"
#include "kestrava/fields/SoMFNode.h"
#include "kestrava/fields/SoMFPath.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/fields/SoSFPath.h"
#include "kestrava/fields/SoSFTrigger.h"
#include "kestrava/nodes/SoGroup.h"
#include "kestrava/nodes/SoUnknownNode.h"

namespace {

using FieldKind = SoGraphSurvey::FieldKind;

FieldKind kindOfType(SoType type) {
  if (type.isDerivedFrom(SoSFNode::getClassTypeId())) return FieldKind::NODE;
  if (type.isDerivedFrom(SoSFPath::getClassTypeId())) return FieldKind::PATH;
  if (type.isDerivedFrom(SoMFPath::getClassTypeId())) return FieldKind::PATHS;
  return type.isDerivedFrom(SoSFTrigger::getClassTypeId()) ? FieldKind::TRIGGER : FieldKind::PLAIN;
}

/// False for nodes that are certainly met once and named by nobody, which is nearly all.
bool mayBeShared(SoFieldContainer const* container) {
  if (container->getAuditors().getLength() > 1) return true;
  SoFieldData const& data = *container->getFieldData();
  for (int i = 0; i < data.getNumFields(); ++i) {
    if (data.getField(container, i)->hasFollowers()) return true;
  }
  return false;
}

} // namespace

FieldKind SoGraphSurvey::kindOf(SoField const* field) {
  // Asked for every field of a file: known for a type once it was found out.
  constexpr std::uint8_t NOT_KNOWN = 255;
  thread_local std::vector<std::uint8_t> kinds;
  SoType const type = field->getTypeId();
  auto const index = static_cast<std::size_t>(type.getIndex());
  if (index >= kinds.size()) kinds.resize(index + 1, NOT_KNOWN);
  if (kinds[index] == NOT_KNOWN) {
    // Fields of several nodes that are types of their own (of shader parameters) are no relatives by type.
    FieldKind const kind = dynamic_cast<SoMFNode const*>(field) ? FieldKind::NODES : kindOfType(type);
    kinds[index] = static_cast<std::uint8_t>(kind);
  }
  return static_cast<FieldKind>(kinds[index]);
}

bool SoGraphSurvey::isNode(SoFieldContainer const* container) {
  return container->isOfType(SoNode::getClassTypeId());
}

bool SoGraphSurvey::isWritten(SoField const* field) {
  switch (field->getFieldType()) {
    case SoField::PRIVATE:
    case SoField::DEPRECATED:
    case SoField::EVENT_OUT:
      return false;
    default:
      break;
  }
  // What the class itself has connected comes back with the next instance.
  if (field->isConnectionDefault()) return field->isIgnored();
  return !field->isDefault() || field->isIgnored() || field->isConnected();
}

SoChildList const* SoGraphSurvey::getWrittenChildren(SoFieldContainer const* container) {
  return container->isOfType(SoGroup::getClassTypeId())
             ? static_cast<SoGroup const*>(container)->getChildren()
             : nullptr;
}

std::vector<SoNode*> SoGraphSurvey::nodesOf(SoField const* field, FieldKind kind) {
  if (kind == FieldKind::NODE) return {static_cast<SoSFNode const*>(field)->getValue()};
  std::vector<SoNode*> nodes;
  if (kind != FieldKind::NODES) return nodes;
  auto const* many = static_cast<SoMFNode const*>(field);
  for (int i = 0; i < many->getNumValues(); ++i) nodes.push_back(many->getNode(i));
  return nodes;
}

std::vector<SoPath*> SoGraphSurvey::pathsOf(SoField const* field, FieldKind kind) {
  if (kind == FieldKind::PATH) return {static_cast<SoSFPath const*>(field)->getValue()};
  std::vector<SoPath*> paths;
  if (kind != FieldKind::PATHS) return paths;
  auto const* many = static_cast<SoMFPath const*>(field);
  for (int i = 0; i < many->getNumValues(); ++i) paths.push_back((*many)[i]);
  return paths;
}

SoGraphSurvey::Class& SoGraphSurvey::classOf(SoFieldContainer const* container) {
  SoFieldData const* const data = container->getFieldData();
  if (data == m_lastData) return *m_lastClass;
  auto& known = m_classes[data];
  if (!known) {
    known = std::make_unique<Class>();
    auto const* unknown = dynamic_cast<SoUnknownNode const*>(container);
    known->typeName = unknown ? unknown->getFileTypeName() : container->getTypeId().getName();
    for (int i = 0; i < data->getNumFields(); ++i) {
      FieldKind const kind = kindOf(data->getField(container, i));
      known->kinds.push_back(kind);
      if (kind != FieldKind::PLAIN && kind != FieldKind::TRIGGER) known->references.push_back(i);
    }
  }
  m_lastData = data;
  m_lastClass = known.get();
  return *known;
}

void SoGraphSurvey::lookAt(std::vector<SoNode*> const& roots) {
  walk(roots);
  if (!m_paths.empty()) {
    // A path may begin at any node, so all of them have to be known.
    m_entersAll = true;
    m_entries.clear();
    m_names.clear();
    m_sources.clear();
    m_paths.clear();
    walk(roots);
    for (std::size_t i = 0; i < m_paths.size(); ++i) enterPath(m_paths[i]);
  }
  // Only what was met counts as a source: the others are not in the file.
  for (SoFieldContainer const* source : m_sources) {
    if (Entry* const met = find(source)) met->isReferred = true;
  }
}

void SoGraphSurvey::walk(std::vector<SoNode*> const& roots) {
  for (SoNode* root : roots) visit(root);
  visitAllOpen();
}

void SoGraphSurvey::visitAllOpen() {
  while (!m_open.empty()) {
    SoFieldContainer* const container = m_open.back();
    m_open.pop_back();
    if (!container->getName().empty()) ++m_names[container->getName()];
    visitFields(container);
    if (SoChildList const* children = getWrittenChildren(container)) {
      for (SoNode* child : *children) visit(child);
    }
  }
}

void SoGraphSurvey::visitFields(SoFieldContainer* container) {
  Class const& fields = classOf(container);
  SoFieldData const& data = *container->getFieldData();
  for (int i : fields.references) {
    SoField* const field = data.getField(container, i);
    if (!isWritten(field)) continue;
    for (SoNode* node : nodesOf(field, fields.kinds[i])) visit(node);
    for (SoPath const* path : pathsOf(field, fields.kinds[i])) {
      if (path) m_paths.push_back(path);
    }
  }
  for (int i = 0; i < data.getNumFields(); ++i) {
    SoField const* const field = data.getField(container, i);
    SoField const* const source = field->getConnectedField();
    if (!source || !source->getContainer() || field->isConnectionDefault()) continue;
    if (isNode(source->getContainer())) {
      m_sources.insert(source->getContainer());
    } else if (isWritten(field)) {
      visit(source->getContainer()); // an engine stands where it is used
    }
  }
}

// Enters a container the first time it is met.
void SoGraphSurvey::visit(SoFieldContainer* container) {
  if (!container) return;
  if (!m_entersAll && !mayBeShared(container)) {
    m_open.push_back(container);
    return;
  }
  auto const [known, added] = m_entries.try_emplace(container);
  if (added) {
    m_open.push_back(container);
  } else {
    known->second.isReferred = true;
  }
}

void SoGraphSurvey::enterPath(SoPath const* path) {
  int& start = m_starts.try_emplace(path, -1).first->second;
  for (int i = 0; i < path->getLength(); ++i) {
    Entry* const met = find(path->getNode(i));
    if (!met) continue;
    met->isReferred = true;
    start = i;
    return;
  }
  if (path->getLength() == 0 || m_entangled.contains(path->getHead())) return;
  if (!standsAlone(path->getHead())) {
    m_entangled.insert(path->getHead());
    return;
  }
  start = 0;
  visit(path->getHead());
  m_entries[path->getHead()].standsInPath = true;
  visitAllOpen();
}

/// True when nothing at or below the node was met: it can then be written within a path, which must not hold
/// what is still open around it.
bool SoGraphSurvey::standsAlone(SoNode* head) {
  std::vector<SoNode*> open{head};
  std::unordered_set<SoNode*> seen{head};
  while (!open.empty()) {
    SoNode* const node = open.back();
    open.pop_back();
    if (find(node)) return false;
    Class const& fields = classOf(node);
    std::vector<SoNode*> below;
    for (int i : fields.references) {
      SoField* const field = node->getField(i);
      if (!isWritten(field)) continue;
      std::vector<SoNode*> const held = nodesOf(field, fields.kinds[i]);
      below.insert(below.end(), held.begin(), held.end());
    }
    if (SoChildList const* children = getWrittenChildren(node)) {
      below.insert(below.end(), children->begin(), children->end());
    }
    for (SoNode* next : below) {
      if (next && seen.insert(next).second) open.push_back(next);
    }
  }
  return true;
}

int SoGraphSurvey::getPathStart(SoPath const* path) const {
  auto const known = m_starts.find(path);
  return known == m_starts.end() ? -1 : known->second;
}

std::string const& SoGraphSurvey::getTextName(SoFieldContainer const* container, Entry* entry) {
  SbName const name = container->getName();
  if (!entry || !entry->isReferred) return name.str();
  if (entry->name.empty()) {
    bool const unique = !name.empty() && m_names[name] == 1;
    entry->name = unique ? name.str() : name.str() + "+" + std::to_string(++m_lastNumber);
  }
  return entry->name;
}
