#include "kestrava/actions/SoAction.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <utility>

#include "kestrava/actions/SoActionMethods.h"
#include "kestrava/base/SoChildList.h"
#include "kestrava/base/SoKeepAlive.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoShape.h"

struct SoAction::Extra {
  std::function<void(int)> prepare;
  std::function<void()> left;
};

/// The children of one node that are being visited. The node is referenced meanwhile: functions of the
/// program that are called may take it out of the graph.
struct SoAction::Frame {
  SoNode* node = nullptr;
  SoChildList* children = nullptr;
  int index = -1;
  int first = 0;
  int last = -1;
  int next = 0;
  int pass = 0;
  int passes = 0; // 0: once, without a scope of its own
  int step = 0;   // for ON_PATH: position of the node on the path that is followed
  bool scoped = false;
  Part part = Part::ALL;
  std::unique_ptr<Extra> extra;
};

/// The method of one action class for each node type that was known when the table was made.
struct SoAction::MethodTable {
  int version = 0;
  std::vector<Method> methods;
};

namespace {

struct Registry {
  std::mutex mutex;
  int version = 0;
  std::map<std::pair<SoType, SoType>, SoAction::Method> methods; // by action type and node type
};

Registry& registry() {
  static Registry& instance = *new Registry;
  return instance;
}

SoAction::Method resolve(Registry const& r, SoType actionType, SoType nodeType) {
  for (; !nodeType.isBad(); nodeType = nodeType.getParent()) {
    for (SoType action = actionType; !action.isBad(); action = action.getParent()) {
      auto found = r.methods.find({action, nodeType});
      if (found != r.methods.end()) return found->second;
    }
  }
  return nullptr;
}

bool mayChangeState(SoNode const* node) {
  SoType const type = node->getTypeId();
  return !type.isDerivedFrom(SoShape::getClassTypeId()) && !type.isDerivedFrom(SoSeparator::getClassTypeId());
}

} // namespace

SoAction::SoAction() : m_path(new SoPath) {}
SoAction::~SoAction() = default;

SoType SoAction::getClassTypeId() {
  static SoType const type = SoType::createType(SoType::badType(), "Action");
  return type;
}

void SoAction::addMethod(SoType actionType, SoType nodeType, Method method) {
  Registry& r = registry();
  std::lock_guard lock(r.mutex);
  r.methods[{actionType, nodeType}] = method;
  ++r.version;
}

SoAction::Method SoActionMethods::find(SoType actionType, SoType nodeType) {
  Registry& r = registry();
  std::lock_guard lock(r.mutex);
  return resolve(r, actionType, nodeType);
}

int SoActionMethods::getVersion() {
  Registry& r = registry();
  std::lock_guard lock(r.mutex);
  return r.version;
}

std::shared_ptr<SoAction::MethodTable const> SoAction::tableFor(SoType actionType) {
  static auto& tables = *new std::map<SoType, std::shared_ptr<MethodTable const>>;
  Registry& r = registry();
  std::lock_guard lock(r.mutex);
  auto& table = tables[actionType];
  int const numTypes = SoType::getNumTypes();
  if (!table || table->version != r.version || static_cast<int>(table->methods.size()) != numTypes) {
    auto made = std::make_shared<MethodTable>();
    made->version = r.version;
    made->methods.resize(numTypes);
    for (int i = 1; i < numTypes; ++i) made->methods[i] = resolve(r, actionType, SoType::fromIndex(i));
    table = std::move(made);
  }
  return table;
}

void SoAction::apply(SoNode* root) { run(root, nullptr); }

void SoAction::apply(SoPath* path) {
  if (!path || !path->getHead()) return;
  SoRef<SoPath> const along(path);
  run(path->getHead(), path);
}

void SoAction::run(SoNode* root, SoPath* along) {
  if (!root) return;
  SoKeepAlive const kept(root);
  m_terminated = false;
  m_table = tableFor(getTypeId());
  m_along = along;
  m_state.push();
  begin();
  if (!m_terminated) arrive(root, -1, along && along->getLength() > 1 ? Part::ON_PATH : Part::ALL);
  while (!m_frames.empty() && !m_terminated) {
    Frame& frame = m_frames.back();
    if (frame.next <= frame.last && frame.next < frame.children->getLength()) {
      stepInto(frame);
    } else if (frame.passes > 0 && frame.pass + 1 < frame.passes) {
      m_state.pop();
      m_state.push();
      frame.next = frame.first;
      frame.extra->prepare(++frame.pass);
    } else {
      leave();
    }
  }
  while (!m_frames.empty()) {
    if (m_frames.back().scoped) m_state.pop();
    popFrame();
  }
  end();
  m_state.pop();
  m_path->truncate(0);
  m_along = nullptr;
}

void SoAction::stepInto(Frame& frame) {
  int const index = frame.next++;
  SoNode* const child = (*frame.children)[index];
  if (frame.part == Part::ALL) {
    arrive(child, index, Part::ALL);
    return;
  }
  if (frame.part == Part::ON_PATH) {
    int const wanted = m_along->getIndex(frame.step + 1);
    if (index == wanted && child == m_along->getNode(frame.step + 1)) {
      bool const isTail = frame.step + 2 == m_along->getLength();
      frame.next = frame.last + 1;
      arrive(child, index, isTail ? Part::ALL : Part::ON_PATH, frame.step + 1);
      return;
    }
    if (index >= wanted) {
      frame.next = frame.last + 1;
      return;
    }
  }
  if (mayChangeState(child)) arrive(child, index, Part::STATE_CHANGES);
}

void SoAction::arrive(SoNode* node, int index, Part part, int step) {
  m_visited.push_back({node, index});
  visit(node);
  m_visited.pop_back();
  if (!m_asks) return;
  m_asks = false;
  --m_numAsked;
  Frame& frame = m_frames.back();
  if (m_terminated || !frame.children) {
    std::unique_ptr<Extra> const extra = std::move(frame.extra);
    if (!m_terminated && extra && extra->left) extra->left();
    popFrame();
    return;
  }
  frame.index = index;
  frame.part = part;
  frame.step = step;
  if (!frame.scoped) return;
  m_state.push();
  if (frame.passes > 0) frame.extra->prepare(0);
}

void SoAction::leave() {
  if (m_frames.back().extra) {
    std::unique_ptr<Extra> const extra = std::move(m_frames.back().extra);
    if (extra->left) extra->left();
  }
  if (m_frames.back().scoped) m_state.pop();
  popFrame();
}

void SoAction::popFrame() {
  SoNode* const node = m_frames.back().node;
  m_frames.pop_back();
  m_pathFrames = std::min(m_pathFrames, static_cast<int>(m_frames.size()));
  node->unref();
}

SoPath const& SoAction::getCurPath() const {
  m_path->truncate(m_pathFrames);
  // Frames that running methods have asked for are those of the visited nodes themselves.
  size_t const above = m_frames.size() - static_cast<size_t>(m_numAsked);
  for (size_t i = m_path->getLength(); i < above; ++i)
    m_path->appendNode(m_frames[i].node, m_frames[i].index);
  m_pathFrames = static_cast<int>(above);
  for (Visited const& visited : m_visited) m_path->appendNode(visited.node, visited.index);
  return *m_path;
}

SoAction::Frame& SoAction::asked() {
  if (!m_asks) {
    m_asks = true;
    ++m_numAsked;
    m_frames.emplace_back();
    m_frames.back().node = m_visited.back().node;
    m_frames.back().node->ref();
  }
  return m_frames.back();
}

SoAction::Extra& SoAction::askedExtra() {
  Frame& frame = asked();
  if (!frame.extra) frame.extra = std::make_unique<Extra>();
  return *frame.extra;
}

void SoAction::enterChildren(SoNode* node, bool scoped, int first, int last) {
  SoChildList* const children = node->getChildren();
  if (!children) return;
  Frame& frame = asked();
  frame.children = children;
  frame.first = frame.next = std::max(first, 0);
  frame.last = last < 0 ? children->getLength() - 1 : last;
  frame.scoped = scoped;
}

void SoAction::enterChildren(SoNode* node, int passes, std::function<void(int)> prepare) {
  if (passes <= 0) return;
  enterChildren(node, true);
  askedExtra().prepare = std::move(prepare);
  m_frames.back().passes = passes;
}

void SoAction::whenLeft(std::function<void()> function) {
  auto& left = askedExtra().left;
  if (!left) {
    left = std::move(function);
    return;
  }
  left = [first = std::move(left), second = std::move(function)] {
    first();
    second();
  };
}

void SoAction::visitHeld(SoNode* node) {
  // The method that calls this may have asked for its own children already.
  bool const asked = std::exchange(m_asks, false);
  m_visited.push_back({node, -1});
  visit(node);
  m_visited.pop_back();
  if (m_asks) {
    --m_numAsked;
    popFrame();
  }
  m_asks = asked;
}

void SoAction::visit(SoNode* node) {
  auto const index = static_cast<size_t>(node->getTypeId().getIndex());
  // A type that a plug-in registered since the traversal began is not in the table yet.
  if (index >= m_table->methods.size()) m_table = tableFor(getTypeId());
  if (Method const method = m_table->methods[index]) method(this, node);
}
