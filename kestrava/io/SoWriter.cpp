#include "kestrava/io/SoWriter.h"

#include <algorithm>

#include "kestrava/base/SoPath.h"
#include "kestrava/fields/SoMFNode.h"
#include "kestrava/fields/SoMFPath.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/fields/SoSFPath.h"
#include "kestrava/io/SoOutput.h"
#include "kestrava/nodes/SoGroup.h"

using FieldKind = SoGraphSurvey::FieldKind;

namespace {

/// What the fields of a node hold, in their order.
std::vector<SoNode*> heldBy(SoNode* node) {
  std::vector<SoNode*> held;
  SoGraphSurvey survey;
  SoGraphSurvey::Class const& fields = survey.classOf(node);
  for (int i : fields.references) {
    for (SoNode* below : SoGraphSurvey::nodesOf(node->getField(i), fields.kinds[i])) {
      if (below) held.push_back(below);
    }
  }
  return held;
}

/// Values that hold graphs and are no node-valued fields make writing recursive.
struct ValueDepth {
  static constexpr int DEEPEST = 20;
  explicit ValueDepth(SoOutput& out) : isFine(++open <= DEEPEST) {
    if (!isFine) out.fail("nodes inside of values are nested too deeply");
  }
  ~ValueDepth() { --open; }
  bool const isFine;
  static thread_local int open;
};
thread_local int ValueDepth::open = 0;

} // namespace

std::vector<std::int32_t> SoWriter::stepsOf(SoPath const* path, int start) {
  std::vector<std::int32_t> steps;
  for (int i = start + 1; i < path->getLength(); ++i) {
    int step = path->getIndex(i);
    if (step < 0) {
      std::vector<SoNode*> const held = heldBy(path->getNode(i - 1));
      auto const found = std::find(held.begin(), held.end(), path->getNode(i));
      if (found == held.end()) break;
      step = -1 - static_cast<int>(found - held.begin());
    }
    steps.push_back(step);
  }
  return steps;
}

bool SoWriter::appendStep(SoPath& path, std::int32_t step) {
  if (step >= 0 || !path.getTail()) return path.append(step);
  std::vector<SoNode*> const held = heldBy(path.getTail());
  auto const index = static_cast<std::size_t>(-1 - static_cast<std::int64_t>(step));
  if (index >= held.size()) return false;
  path.appendNode(held[index], -1);
  return true;
}

SoWriter::SoWriter(SoOutput& out) : m_out(out), m_form(SoGraphForm::make(out, m_survey)) {}

void SoWriter::writeFile(std::vector<SoNode*> const& nodes) {
  m_survey.lookAt(nodes);
  m_form->beginFile();
  for (SoNode* node : nodes) {
    m_form->beginRoot();
    writeGraph(node);
    m_form->endRoot();
  }
  m_form->endFile();
}

void SoWriter::writeValues(std::vector<SoNode*> const& nodes, bool isMany) {
  ValueDepth const depth(m_out);
  if (!depth.isFine) return;
  m_survey.lookAt(nodes);
  if (m_out.isBinary()) {
    m_form->beginList(static_cast<int>(nodes.size()), isMany);
    for (SoNode* node : nodes) writeGraph(node);
    return;
  }
  bool const brackets = isMany && nodes.size() != 1;
  if (brackets) m_out.put("[ ");
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    if (i > 0) m_out.put(", ");
    writeGraph(nodes[i]);
  }
  if (brackets) m_out.put(nodes.empty() ? "]" : " ]");
}

void SoWriter::writePath(SoPath const* path) {
  ValueDepth const depth(m_out);
  if (!depth.isFine) return;
  if (!path || path->getLength() == 0) return m_form->putNull();
  m_survey.lookAt({path->getHead()});
  m_form->beginPath();
  writeGraph(path->getHead());
  m_form->endPath(stepsOf(path, 0));
}

void SoWriter::writeGraph(SoFieldContainer* container) {
  start(container);
  while (!m_frames.empty()) {
    if (!writeNextField() && !writeNextChild()) close();
  }
}

bool SoWriter::start(SoFieldContainer* container) {
  if (!container) {
    m_form->putNull();
    return false;
  }
  SoGraphSurvey::Entry* const entry = m_survey.find(container);
  if (entry && entry->isWritten) {
    m_form->putUse(container, *entry);
    return false;
  }
  if (entry) entry->isWritten = true;
  m_form->begin(container, entry);
  m_frames.push_back({container, &m_survey.classOf(container)});
  return true;
}

void SoWriter::close() {
  Frame const frame = m_frames.back();
  m_frames.pop_back();
  m_form->end();
  if (frame.source) m_form->endSource(frame.source);
  if (frame.path) m_form->endPath(stepsOf(frame.path, 0));
}

bool SoWriter::writeNextField() {
  Frame& frame = m_frames.back();
  if (frame.value >= 0) {
    writeNextValue();
    return true;
  }
  SoFieldData const& data = *frame.container->getFieldData();
  // Objects with fields of their own may change them as they are evaluated.
  int const count = std::min(data.getNumFields(), static_cast<int>(frame.fields->kinds.size()));
  while (frame.field < count) {
    FieldKind const kind = frame.fields->kinds[frame.field];
    SoField* const field = data.getField(frame.container, frame.field++);
    if (!SoGraphSurvey::isWritten(field)) continue;
    field->evaluate();
    bool const isSet = !field->isDefault() && !field->isConnectionDefault();
    bool const isTrigger = kind == FieldKind::TRIGGER;
    bool const hasValue = isSet && !isTrigger;
    // In text a trigger with a mark or a connection can not be told from one that was not set.
    m_form->beginField(field, hasValue || (isSet && !field->isIgnored() && !field->isConnected()));
    if (hasValue && kind == FieldKind::PLAIN) m_form->putValue(field);
    if (hasValue && kind != FieldKind::PLAIN) {
      bool const isMany = kind == FieldKind::NODES || kind == FieldKind::PATHS;
      m_form->beginList(isMany ? field->getNumValues() : 1, isMany);
      frame.value = 0;
      return true;
    }
    writeFieldEnd(field);
    return true;
  }
  return false;
}

void SoWriter::writeNextValue() {
  Frame& frame = m_frames.back();
  FieldKind const kind = frame.fields->kinds[frame.field - 1];
  SoField const* const field = frame.container->getField(frame.field - 1);
  if (frame.value < field->getNumValues()) {
    int const index = frame.value++;
    m_form->beginListValue();
    switch (kind) {
      case FieldKind::NODE:
        start(static_cast<SoSFNode const*>(field)->getValue());
        break;
      case FieldKind::NODES:
        start(static_cast<SoMFNode const*>(field)->getNode(index));
        break;
      case FieldKind::PATH:
        startPath(static_cast<SoSFPath const*>(field)->getValue());
        break;
      default:
        startPath((*static_cast<SoMFPath const*>(field))[index]);
    }
    return; // the frame may have moved
  }
  frame.value = -1;
  m_form->endList();
  writeFieldEnd(field);
}

void SoWriter::startPath(SoPath const* path) {
  int const start = path ? m_survey.getPathStart(path) : -1;
  if (start < 0) return m_form->putNull();
  SoNode* const head = path->getNode(start);
  SoGraphSurvey::Entry& entry = *m_survey.find(head);
  m_form->beginPath();
  if (entry.standsInPath && !entry.isWritten) {
    this->start(head);
    m_frames.back().path = path;
    return;
  }
  m_form->putUse(head, entry);
  m_form->endPath(stepsOf(path, start));
}

void SoWriter::writeFieldEnd(SoField const* field) {
  if (field->isIgnored()) m_form->putIgnored(field);
  SoField const* const source = field->getConnectedField();
  SoFieldContainer* const container = source ? source->getContainer() : nullptr;
  if (!container || field->isConnectionDefault()) return;
  bool const isNode = SoGraphSurvey::isNode(container);
  SoGraphSurvey::Entry* const entry = m_survey.find(container);
  // A source node that is not in the file can not be named: the value stays, the connection does not.
  if (isNode && !entry) return;
  m_form->beginSource(field);
  if (isNode) {
    m_form->putUse(container, *entry);
  } else if (start(container)) {
    m_frames.back().source = source;
    return;
  }
  m_form->endSource(source);
}

bool SoWriter::writeNextChild() {
  Frame& frame = m_frames.back();
  SoChildList const* const children = SoGraphSurvey::getWrittenChildren(frame.container);
  if (!children || frame.child >= children->getLength()) return false;
  m_form->beginChild();
  start((*children)[frame.child++]);
  return true;
}
