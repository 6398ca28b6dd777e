#include "kestrava/nodes/SoSelection.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "kestrava/actions/SoHandleEventAction.h"
#include "kestrava/base/SoError.h"
#include "kestrava/base/SoKeepAlive.h"
#include "kestrava/events/SoMouseButtonEvent.h"
#include "kestrava/fields/SoMFNode.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/nodes/SoCopier.h"

namespace {

// A hand that clicks trembles this much.
constexpr int CLICK_PIXELS = 4;

void offerEvent(SoHandleEventAction& action, SoSelection& node) { node.handleEvent(action); }
bool const registered = SoAction::addMethods<offerEvent>();

/// The node when a field of `above` holds it, else null.
SoNode* findHeld(SoNode* above, SoNode const* node) {
  for (int i = 0; i < above->getNumFields(); ++i) {
    SoField* const field = above->getField(i);
    if (field->isOfType(SoSFNode::getClassTypeId())) {
      SoNode* const value = static_cast<SoSFNode*>(field)->getValue();
      if (value == node) return value;
    } else if (field->isOfType(SoMFNode::getClassTypeId())) {
      auto& nodes = *static_cast<SoMFNode*>(field);
      int const index = nodes.findNode(node);
      if (index >= 0) return nodes[index];
    }
  }
  return nullptr;
}

} // namespace

template <class Function, class Argument>
void SoSelection::callAll(std::vector<Callback<Function>> const& callbacks, Argument* argument) {
  // A copy: a callback may add and remove callbacks.
  for (auto const& callback : std::vector<Callback<Function>>(callbacks)) {
    if (std::find(callbacks.begin(), callbacks.end(), callback) != callbacks.end()) {
      callback.function(callback.data, argument);
    }
  }
}

std::optional<SoSelection::Steps> SoSelection::belowThis(SoPath* path) const {
  int const from = path ? path->findNode(this) : -1;
  if (from < 0) return {};
  Steps below;
  for (int i = from + 1; i < path->getLength(); ++i) below.push_back({path->getNode(i), path->getIndex(i)});
  return below;
}

int SoSelection::findPath(SoPath* path) const {
  auto const below = belowThis(path);
  auto const found = below ? std::find(m_paths.begin(), m_paths.end(), *below) : m_paths.end();
  return found == m_paths.end() ? -1 : static_cast<int>(found - m_paths.begin());
}

SoRef<SoPath> SoSelection::getPath(int which, bool* isWhole) const {
  SoRef<SoPath> path(new SoPath(const_cast<SoSelection*>(this)));
  for (Step const& step : m_paths[which]) {
    SoNode* const above = path->getTail();
    if (SoChildList const* children = above->getChildren()) {
      bool const isThere =
          step.index >= 0 && step.index < children->getLength() && (*children)[step.index] == step.node;
      if (path->append(isThere ? step.index : children->find(step.node))) continue;
    }
    SoNode* const held = findHeld(above, step.node);
    if (!held) break;
    path->appendNode(held, -1);
  }
  if (isWhole) *isWhole = path->getLength() == static_cast<int>(m_paths[which].size()) + 1;
  return path;
}

void SoSelection::add(Steps below) {
  m_paths.push_back(std::move(below));
  SoRef<SoPath> const path = getPath(getNumSelected() - 1);
  callAll(m_selectionCallbacks, path.get());
}

void SoSelection::remove(int which) {
  SoRef<SoPath> const path = getPath(which);
  m_paths.erase(m_paths.begin() + which);
  callAll(m_deselectionCallbacks, path.get());
}

void SoSelection::tellChange() { callAll(m_changeCallbacks, this); }

void SoSelection::select(SoPath* path) {
  auto below = belowThis(path);
  if (!below) {
    SoDebugError::post("SoSelection::select", "the path does not run through '%s'", getName().c_str());
    return;
  }
  if (isSelected(path)) return;
  SoKeepAlive const self(this);
  add(std::move(*below));
  tellChange();
}

void SoSelection::deselect(SoPath* path) { deselect(findPath(path)); }

void SoSelection::deselect(int which) {
  if (which < 0 || which >= getNumSelected()) return;
  SoKeepAlive const self(this);
  remove(which);
  tellChange();
}

void SoSelection::toggle(SoPath* path) {
  int const which = findPath(path);
  which < 0 ? select(path) : deselect(which);
}

void SoSelection::deselectAll() {
  if (m_paths.empty()) return;
  SoKeepAlive const self(this);
  while (!m_paths.empty()) remove(getNumSelected() - 1);
  tellChange();
}

bool SoSelection::isChangedBy(SoPath* path, bool toggles) const {
  if (toggles) return path;
  return path ? getNumSelected() != 1 || !isSelected(path) : getNumSelected() > 0;
}

void SoSelection::invoke(SoPath* path, bool shiftDown) {
  if (path && !belowThis(path)) path = nullptr;
  bool const toggles = policy.getValue() == TOGGLE || (policy.getValue() == SHIFT && shiftDown);
  if (!isChangedBy(path, toggles)) return;
  SoKeepAlive const self(this);
  SoRef<SoPath> const kept(path);
  callAll(m_startCallbacks, this);
  if (toggles) {
    toggle(path);
  } else if (isChangedBy(path, false)) {
    while (!m_paths.empty()) remove(getNumSelected() - 1);
    if (path) add(*belowThis(path));
    tellChange();
  }
  callAll(m_finishCallbacks, this);
}

// What a click does.

void SoSelection::handleEvent(SoHandleEventAction& action) {
  action.enterChildren(this, true);
  if (!m_takesClicks) return;
  // The functions run only when nobody below has handled the event.
  if (SoMouseButtonEvent::isPress(*action.getEvent(), SoMouseButtonEvent::ANY)) {
    m_press.reset();
    if (SoMouseButtonEvent::isPress(*action.getEvent(), SoMouseButtonEvent::LEFT)) {
      action.whenLeft([this, &action] { pressed(action); });
    }
  } else if (m_press && SoMouseButtonEvent::isRelease(*action.getEvent(), SoMouseButtonEvent::LEFT)) {
    action.whenLeft([this, &action, press = *std::exchange(m_press, std::nullopt)] { released(action, press); });
  }
}

void SoSelection::pressed(SoHandleEventAction& action) {
  SoPickedPoint const* const point = action.getPickedPoint();
  m_press = Press{action.getEvent()->position, belowThis(point ? point->getPath() : nullptr)};
}

void SoSelection::released(SoHandleEventAction& action, Press const& press) {
  SbVec2s const at = action.getEvent()->position;
  if (std::abs(at[0] - press.position[0]) > CLICK_PIXELS || std::abs(at[1] - press.position[1]) > CLICK_PIXELS) return;
  SoPickedPoint const* const point = action.getPickedPoint();
  SoRef<SoPath> path(point ? point->getPath() : nullptr);
  auto const below = belowThis(path);
  if (below != press.below) return;
  if (below) {
    action.setHandled();
    if (m_pickFilter) path = SoRef<SoPath>(m_pickFilter(m_pickFilterData, point));
    if (path && !belowThis(path)) {
      SoDebugError::post("SoSelection", "the pick filter of '%s' answered a path that does not run through it",
                         getName().c_str());
      return;
    }
  }
  invoke(below ? path.get() : nullptr, action.getEvent()->shiftDown);
}

namespace {

template <class List, class Entry> void eraseFirst(List& list, Entry const& entry) {
  auto const found = std::find(list.begin(), list.end(), entry);
  if (found != list.end()) list.erase(found);
}

} // namespace

void SoSelection::addSelectionCallback(SoSelectionPathCB* function, void* data) {
  m_selectionCallbacks.push_back({function, data});
}
void SoSelection::removeSelectionCallback(SoSelectionPathCB* function, void* data) {
  eraseFirst(m_selectionCallbacks, Callback<SoSelectionPathCB>{function, data});
}
void SoSelection::addDeselectionCallback(SoSelectionPathCB* function, void* data) {
  m_deselectionCallbacks.push_back({function, data});
}
void SoSelection::removeDeselectionCallback(SoSelectionPathCB* function, void* data) {
  eraseFirst(m_deselectionCallbacks, Callback<SoSelectionPathCB>{function, data});
}
void SoSelection::addChangeCallback(SoSelectionClassCB* function, void* data) {
  m_changeCallbacks.push_back({function, data});
}
void SoSelection::removeChangeCallback(SoSelectionClassCB* function, void* data) {
  eraseFirst(m_changeCallbacks, Callback<SoSelectionClassCB>{function, data});
}
void SoSelection::addStartCallback(SoSelectionClassCB* function, void* data) {
  m_startCallbacks.push_back({function, data});
}
void SoSelection::removeStartCallback(SoSelectionClassCB* function, void* data) {
  eraseFirst(m_startCallbacks, Callback<SoSelectionClassCB>{function, data});
}
void SoSelection::addFinishCallback(SoSelectionClassCB* function, void* data) {
  m_finishCallbacks.push_back({function, data});
}
void SoSelection::removeFinishCallback(SoSelectionClassCB* function, void* data) {
  eraseFirst(m_finishCallbacks, Callback<SoSelectionClassCB>{function, data});
}
void SoSelection::setPickFilterCallback(SoSelectionPickCB* function, void* data) {
  m_pickFilter = function;
  m_pickFilterData = data;
}

// The same places of the copy are selected. What is selected no more, because it has left the graph, is left out.
void SoSelection::copyContents(SoFieldContainer const& from, SoCopier& copier) {
  auto const& other = static_cast<SoSelection const&>(from);
  m_paths = other.m_paths;
  std::erase_if(m_paths, [&copier](Steps& steps) {
    for (Step& step : steps) step.node = copier.findNode(step.node);
    return std::any_of(steps.begin(), steps.end(), [](Step const& step) { return !step.node; });
  });
  m_takesClicks = other.m_takesClicks;
  m_pickFilter = other.m_pickFilter;
  m_pickFilterData = other.m_pickFilterData;
  m_selectionCallbacks = other.m_selectionCallbacks;
  m_deselectionCallbacks = other.m_deselectionCallbacks;
  m_changeCallbacks = other.m_changeCallbacks;
  m_startCallbacks = other.m_startCallbacks;
  m_finishCallbacks = other.m_finishCallbacks;
}
