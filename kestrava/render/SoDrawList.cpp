#include "kestrava/render/SoDrawList.h"

#include <atomic>
#include <cmath>
#include <limits>

#include "kestrava/base/SoChildList.h"
#include "kestrava/nodes/SoCamera.h"
#include "kestrava/nodes/SoShape.h"
#include "kestrava/render/SoDrawListAction.h"

namespace {

std::uint64_t nextVersion() {
  static std::atomic<std::uint64_t> last{0};
  return ++last;
}

bool isSame(SoDrawList::View const& a, SoDrawList::View const& b) {
  return a.region == b.region && a.camera == b.camera && a.volume.getMatrix() == b.volume.getMatrix();
}

}  // namespace

SoDrawList::SoDrawList() : m_version(nextVersion()) {}
SoDrawList::~SoDrawList() = default;

void SoDrawList::clear() {
  m_items.clear();
  m_places.clear();
  m_materials.clear();
  m_looks.clear();
  m_textures.clear();
  m_surroundings.clear();
  m_textureMatrices.clear();
  m_background = SoDrawBackground();
  m_bounds.makeEmpty();
  m_hasLights = false;
  m_camera.reset();
  m_cameraMatrix.makeIdentity();
  m_dependsOnView = false;
}

void SoDrawList::update(SoNode* root, View const& view) {
  std::uint64_t const id = root ? root->getNodeId() : 0;
  if (id == m_rootId && !(m_dependsOnView && !isSame(view, m_view))) return;
  m_view = view;
  clear();
  SoDrawListAction(*this, m_view).apply(root);
  // A field that fetched its value from a connection meanwhile has changed the id.
  m_rootId = root ? root->getNodeId() : 0;
  ++m_numRebuilds;
  m_version = nextVersion();
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

namespace {

/// Distance along the ray at which it enters a box, negative when it misses.
float enterBox(SbVec3f const& origin, SbVec3f const& direction, SbBox3f const& box) {
  float from = 0, to = std::numeric_limits<float>::max();
  for (int axis = 0; axis < 3; ++axis) {
    if (direction[axis] == 0) {
      if (origin[axis] < box.getMin()[axis] || origin[axis] > box.getMax()[axis]) return -1;
      continue;
    }
    float a = (box.getMin()[axis] - origin[axis]) / direction[axis];
    float b = (box.getMax()[axis] - origin[axis]) / direction[axis];
    if (a > b) std::swap(a, b);
    from = std::max(from, a);
    to = std::min(to, b);
  }
  return from <= to ? from : -1;
}

/// Distance (in lengths of `direction`) at which a ray meets a triangle, negative when it misses.
float meetTriangle(SbVec3f const& origin, SbVec3f const& direction, SbVec3f const& a, SbVec3f const& b,
                   SbVec3f const& c) {
  SbVec3f const ab = b - a, ac = c - a;
  SbVec3f const p = direction.cross(ac);
  float const determinant = ab.dot(p);
  if (determinant == 0) return -1;
  SbVec3f const s = origin - a;
  float const u = s.dot(p) / determinant;
  if (!(u >= 0 && u <= 1)) return -1;
  SbVec3f const q = s.cross(ab);
  float const v = direction.dot(q) / determinant;
  if (!(v >= 0 && u + v <= 1)) return -1;
  return ac.dot(q) / determinant;
}

}  // namespace

SoDrawList::Hit SoDrawList::intersect(SbLine const& ray) const {
  Hit hit;
  hit.distance = std::numeric_limits<float>::max();
  for (size_t i = 0; i < m_items.size(); ++i) {
    Item const& item = m_items[i];
    if (!item.pickable || item.mesh->mesh.triangles.empty()) continue;
    float const entered = enterBox(ray.getPosition(), ray.getDirection(), item.bounds);
    if (entered < 0 || entered >= hit.distance) continue;
    bool invertible = false;
    SbMatrix const toShape = item.matrix.inverse(&invertible);
    if (!invertible) continue;
    // The direction is not brought to unit length, so that distances stay those of the world.
    SbVec3f const origin = toShape.multVecMatrix(ray.getPosition());
    SbVec3f const direction = toShape.multDirMatrix(ray.getDirection());
    SoMesh const& mesh = item.mesh->mesh;
    for (int t = 0; t < mesh.getNumTriangles(); ++t) {
      SbVec3f const* const p = mesh.positions.data();
      std::uint32_t const* const v = &mesh.triangles[3 * static_cast<size_t>(t)];
      float const distance = meetTriangle(origin, direction, p[v[0]], p[v[1]], p[v[2]]);
      if (distance < 0 || distance >= hit.distance) continue;
      hit.item = static_cast<int>(i);
      hit.triangle = t;
      hit.distance = distance;
      hit.normal = (p[v[1]] - p[v[0]]).cross(p[v[2]] - p[v[0]]);
    }
  }
  if (hit.item < 0) return hit;
  hit.point = ray.getPoint(hit.distance);
  hit.normal = m_items[hit.item].matrix.inverse().transpose().multDirMatrix(hit.normal).normalized();
  return hit;
}
