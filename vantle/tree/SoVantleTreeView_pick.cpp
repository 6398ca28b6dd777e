#include <set>

#include "kestrava/actions/SoRayPickAction.h"
#include "kestrava/base/SbViewportRegion.h"
#include "kestrava/base/SoPath.h"
#include "kestrava/nodes/SoOrthographicCamera.h"
#include "kestrava/nodes/SoSelection.h"
#include "kestrava/render/SoSceneManager.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/tree/SoPickMenu.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"

// From what lies under the pointer in the 3D view to rows.

namespace {

constexpr float PICK_RADIUS = 5.0f; // pixels, without services to ask

/// The camera that the user looks through may stand outside of the scene; null when it does not.
SoCamera const* cameraOutside() {
  SoSceneManager const* const manager =
      VntServicesImpl::isInstance() ? VntServices::getInstance()->getSceneManager() : nullptr;
  return manager ? manager->getCamera() : nullptr;
}

float distanceOf(SoPickedPoint const& point) {
  SoCamera const* const camera = cameraOutside();
  if (!camera || !camera->isOfType(SoOrthographicCamera::getClassTypeId())) return point.getDistance();
  // Such rays begin anywhere.
  SbVec3f const ahead = camera->orientation.getValue().multVec(SbVec3f(0, 0, -1));
  return (point.getPoint() - camera->position.getValue()).dot(ahead);
}

void pick(SoRayPickAction& action, SbVec2s position, SoNode* root) {
  action.setPoint(position);
  action.setRadius(VntServicesImpl::isInstance() ? VntServicesImpl::getImplInstance()->getPickRadius()
                                                 : PICK_RADIUS);
  action.setCamera(cameraOutside());
  action.apply(root);
}

/// The part behind the first selection node, or all of it.
SoRef<SoPath> belowSelection(SoPath const* whole) {
  int from = 0;
  for (int i = 0; i < whole->getLength(); ++i) {
    if (!whole->getNode(i)->isOfType(SoSelection::getClassTypeId())) continue;
    from = i + 1;
    break;
  }
  return SoRef<SoPath>(whole->copy(from));
}

/// The same places in the graph as it is now; null when one of the nodes has left it.
SoRef<SoPath> presentPath(SoPath const* path) {
  SoRef<SoPath> present(new SoPath(path->getHead()));
  for (int i = 1; i < path->getLength(); ++i) {
    SoChildList const* const children = present->getTail()->getChildren();
    if (!children) return {};
    int const index = path->getIndex(i);
    bool const isThere =
        index >= 0 && index < children->getLength() && (*children)[index] == path->getNode(i);
    if (!present->append(isThere ? index : children->find(path->getNode(i)))) return {};
  }
  return present;
}

} // namespace

SoTreeViewItem* SoVantleTreeView::setPickAction(SbViewportRegion const& region, SbVec2s position,
                                                SoNode* root) {
  SoRayPickAction action(region);
  pick(action, position, root);
  SoPickedPoint const* const point = action.getPickedPoint();
  SoTreeViewItem* const item = point ? deepestItem(belowSelection(point->getPath())) : nullptr;
  if (item) showItem(item);
  return item;
}

/// What is inside of a manipulator has no rows; the manipulator has one.
SoTreeViewItem* SoVantleTreeView::deepestItem(SoPath const* path) {
  buildAlong(path);
  SoNode* missing = nullptr;
  int position = 0, index = -1;
  return rowOfRoot(path, position) ? followPath(path, position, missing, index) : nullptr;
}

SoTreeViewItem* SoVantleTreeView::showPicked(SoPath const* picked) {
  SoRef<SoPath> const path = presentPath(picked);
  SoTreeViewItem* const item = path ? deepestItem(path) : nullptr;
  if (item) showItem(item);
  return item;
}

void SoVantleTreeView::listPicked(SbViewportRegion const& region, SbVec2s position, SoNode* root) {
  if (m_pickMenu) m_pickMenu->close();
  if (!m_selection) return;
  SoRayPickAction action(region);
  action.setPickAll(true);
  pick(action, position, root);
  std::vector<SoPickedPlace> places;
  std::set<SoTreeViewItem*> rows;
  for (SoPickedPoint const& point : action.getPickedPoints()) {
    SoTreeViewItem* const row = deepestItem(belowSelection(point.getPath()));
    // Both sides of a shape are one place.
    if (!row || !rows.insert(row).second) continue;
    SoRef<SoPath> const path(getPathFromItem(row));
    path->unrefNoDelete();
    places.push_back({path, row, distanceOf(point)});
  }
  m_pickMenu = new SoPickMenu(this, places);
  m_pickMenu->popUp();
}
