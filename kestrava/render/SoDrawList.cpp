#include "kestrava/render/SoDrawList.h"

#include <algorithm>
#include <atomic>
#include <mutex>

#include "kestrava/base/SoChildList.h"
#include "kestrava/nodes/SoCamera.h"
#include "kestrava/nodes/SoShape.h"
#include "kestrava/render/SoDrawListAction.h"

namespace {

std::uint64_t nextVersion() {
  static std::atomic<std::uint64_t> last{0};
  return ++last;
}

/// Without a camera of its own a view is that of the scene's cameras, which are part of the scene.
bool isSame(SoDrawList::View const& a, SoDrawList::View const& b) {
  if (a.region != b.region || !a.camera != !b.camera) return false;
  return !a.camera || a.volume.getMatrix() == b.volume.getMatrix();
}

/// Every list there is, so that who picks finds one that who draws has prepared.
struct Lists {
  std::mutex mutex;
  std::vector<SoDrawList*> all;
};
Lists& lists() {
  static Lists& instance = *new Lists;
  return instance;
}

}  // namespace

SoDrawList::SoDrawList() : m_version(nextVersion()) {
  std::lock_guard lock(lists().mutex);
  lists().all.push_back(this);
}

SoDrawList::~SoDrawList() {
  std::lock_guard lock(lists().mutex);
  std::erase(lists().all, this);
}

SoDrawList const* SoDrawList::findPrepared(SoNode* root, View const& view) {
  SoDrawList* found = nullptr;
  if (!root) return nullptr;
  {
    std::lock_guard lock(lists().mutex);
    for (SoDrawList* list : lists().all) {
      if (list->m_thread != std::this_thread::get_id() || list->m_root != root || list->m_updating) continue;
      bool const isCurrent = list->m_rootId == root->getNodeId();
      if (list->m_dependsOnView && !isSame(list->m_view, view)) continue;
      if (!isCurrent && !list->m_view.camera != !view.camera) continue;
      found = list;
      if (isCurrent) break;
    }
  }
  if (!found) return nullptr;
  // The list's own camera may be gone by now.
  View updated = found->m_view;
  updated.camera = updated.camera ? view.camera : nullptr;
  // The owner would have to do this before its next frame anyway.
  if (found->m_rootId != root->getNodeId()) found->update(root, updated);
  return found->m_dependsOnView && !isSame(found->m_view, view) ? nullptr : found;
}

/// Holds all nodes that the list names so far.
void SoDrawList::keepNodes() {
  for (size_t i = m_kept.size(); i < m_places.size(); ++i) m_kept.emplace_back(m_places[i].node);
}

void SoDrawList::clear() {
  m_items.clear();
  m_places.clear();
  m_kept.clear();
  m_materials.clear();
  m_looks.clear();
  m_textures.clear();
  m_surroundings.clear();
  m_shaders.clear();
  m_inputs.clear();
  m_inputValues.clear();
  m_textureMatrices.clear();
  m_screenTexts.clear();
  m_screenSizes.clear();
  m_picker.reset();
  m_background = SoDrawBackground();
  m_bounds.makeEmpty();
  m_hasLights = false;
  m_camera.reset();
  m_cameraMatrix.makeIdentity();
  m_dependsOnView = false;
}

/// True when the list would be the same for another view.
bool SoDrawList::fits(View const& view) const {
  if (m_dependsOnView && !isSame(view, m_view)) return false;
  if (m_screenSizes.empty()) return true;
  auto const volume = view.camera ? view.volume : getCameraVolume(view.region.getViewportAspectRatio());
  return !volume || std::all_of(m_screenSizes.begin(), m_screenSizes.end(),
                                [&](auto const& size) { return size.fits(*volume, view.region); });
}

void SoDrawList::update(SoNode* root, View const& view) {
  m_thread = std::this_thread::get_id();
  std::uint64_t const id = root ? root->getNodeId() : 0;
  if (id == m_rootId && fits(view)) return;
  m_view = view;
  m_root = root;
  m_updating = true;
  clear();
  SoDrawListAction(*this, m_view).apply(root);
  m_updating = false;
  // A field that fetched its value from a connection meanwhile has changed the id. What a callback has changed may
  // be missing from the list.
  m_rootId = root && m_kept.empty() ? root->getNodeId() : id;
  ++m_numRebuilds;
  m_version = nextVersion();
}

std::optional<SbViewVolume> SoDrawList::getCameraVolume(float aspect) const {
  if (!m_camera) return std::nullopt;
  SbViewVolume volume = m_camera->getViewVolume(aspect);
  if (m_cameraMatrix.isIdentity()) return volume;
  SbVec3f translation, scale;
  SbRotation rotation, scaleOrientation;
  m_cameraMatrix.getTransform(translation, rotation, scale, scaleOrientation);
  SbVec3f const position = volume.getProjectionPoint();
  volume.rotateCamera(rotation);
  volume.translateCamera(m_cameraMatrix.multVecMatrix(position) - position);
  return volume;
}

bool SoDrawList::isBelow(int item, SoPath const& path) const {
  std::vector<Place const*> places;
  for (int i = m_items[item].place; i >= 0; i = m_places[i].above) places.push_back(&m_places[i]);
  int const length = path.getLength();
  if (static_cast<int>(places.size()) < length) return false;
  for (int i = 0; i < length; ++i) {
    Place const& place = *places[places.size() - 1 - static_cast<size_t>(i)];
    if (place.node != path.getNode(i) || (i > 0 && place.childIndex != path.getIndex(i))) return false;
  }
  return true;
}

SoRef<SoPath> SoDrawList::getPath(int item) const {
  std::vector<Place const*> places;
  for (int i = m_items[item].place; i >= 0; i = m_places[i].above) places.push_back(&m_places[i]);
  SoRef<SoPath> path(new SoPath);
  for (auto place = places.rbegin(); place != places.rend(); ++place) {
    path->appendNode((*place)->node, (*place)->childIndex);
  }
  return path;
}

SoDrawListPicker const& SoDrawList::getPicker() const {
  if (!m_picker) m_picker = std::make_unique<SoDrawListPicker>(*this);
  return *m_picker;
}

SoDrawList::Hit SoDrawList::intersect(SbLine const& ray) const {
  SoDrawListPicker::Query query;
  query.ray = ray;
  Hit hit;
  for (auto const& met : getPicker().pick(query)) {
    hit = {met.item, met.primitive, met.point, met.normal, met.distance};
  }
  return hit;
}
