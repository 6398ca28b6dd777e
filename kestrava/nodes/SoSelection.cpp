#include "kestrava/nodes/SoSelection.h"

#include <algorithm>

#include "kestrava/base/SoError.h"

template <class Function, class Argument>
void SoSelection::callAll(std::vector<Callback<Function>> const& callbacks, Argument* argument) {
  // A copy: a callback may add and remove callbacks.
  for (auto const& callback : std::vector<Callback<Function>>(callbacks)) {
    if (std::find(callbacks.begin(), callbacks.end(), callback) != callbacks.end()) {
      callback.function(callback.data, argument);
    }
  }
}

SoRef<SoPath> SoSelection::belowThis(SoPath* path) const {
  int const from = path ? path->findNode(this) : -1;
  if (from < 0) return nullptr;
  SoRef<SoPath> below(new SoPath);
  for (int i = from + 1; i < path->getLength(); ++i) below->appendNode(path->getNode(i), path->getIndex(i));
  return below;
}

int SoSelection::findPath(SoPath* path) const {
  SoRef<SoPath> const below = belowThis(path);
  for (int i = 0; below && i < getNumSelected(); ++i) {
    SoPath const& other = *m_paths[i];
    bool const sameFirst =
        below->getLength() == 0 || (other.getLength() > 0 && below->getIndex(0) == other.getIndex(0));
    if (sameFirst && other == *below) return i;
  }
  return -1;
}

SoRef<SoPath> SoSelection::getPath(int which) const {
  SoRef<SoPath> path(new SoPath(const_cast<SoSelection*>(this)));
  path->append(*m_paths[which]);
  return path;
}

void SoSelection::add(SoRef<SoPath> below) {
  m_paths.push_back(std::move(below));
  SoRef<SoPath> const path = getPath(getNumSelected() - 1);
  touch();
  callAll(m_selectionCallbacks, path.get());
}

void SoSelection::remove(int which) {
  SoRef<SoPath> const path = getPath(which);
  m_paths.erase(m_paths.begin() + which);
  touch();
  callAll(m_deselectionCallbacks, path.get());
}

void SoSelection::tellChange() { callAll(m_changeCallbacks, this); }

void SoSelection::select(SoPath* path) {
  SoRef<SoPath> below = belowThis(path);
  if (!below) {
    SoDebugError::post("SoSelection::select", "the path does not run through '%s'", getName().c_str());
    return;
  }
  if (isSelected(path)) return;
  SoRef<SoSelection> const self(this);
  add(std::move(below));
  tellChange();
}

void SoSelection::deselect(SoPath* path) { deselect(findPath(path)); }

void SoSelection::deselect(int which) {
  if (which < 0 || which >= getNumSelected()) return;
  SoRef<SoSelection> const self(this);
  remove(which);
  tellChange();
}

void SoSelection::toggle(SoPath* path) {
  int const which = findPath(path);
  which < 0 ? select(path) : deselect(which);
}

void SoSelection::deselectAll() {
  if (m_paths.empty()) return;
  SoRef<SoSelection> const self(this);
  while (!m_paths.empty()) remove(getNumSelected() - 1);
  tellChange();
}

void SoSelection::invoke(SoPath* path, bool shiftDown) {
  bool const toggles = policy.getValue() == TOGGLE || (policy.getValue() == SHIFT && shiftDown);
  if (toggles) {
    if (path) toggle(path);
    return;
  }
  if (path && getNumSelected() == 1 && isSelected(path)) return;
  SoRef<SoSelection> const self(this);
  bool const had = !m_paths.empty();
  while (!m_paths.empty()) remove(getNumSelected() - 1);
  if (SoRef<SoPath> below = belowThis(path)) {
    add(std::move(below));
    tellChange();
  } else if (had) {
    tellChange();
  }
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
