#include "kestrava/render/SoDrawListPicker.h"

#include <algorithm>
#include <cmath>

#include "kestrava/render/SoDrawList.h"

namespace {

using Hit = SoDrawListPicker::Hit;

bool isInFront(SoDrawList const& list, SoDrawList::Item const& item) {
  return list.getLooks()[item.look].layer == SoDrawLook::ANNOTATION;
}

bool isFinite(SbVec3f const& p) { return std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2]); }

/// Of what can be met: a coordinate that is no number does not hide the others.
SbBox3f usableBounds(SoDrawList::Item const& item) {
  if (isFinite(item.bounds.getMin()) && isFinite(item.bounds.getMax())) return item.bounds;
  SbBox3f box;
  for (SbVec3f const& point : item.mesh->mesh.positions) {
    if (isFinite(point)) box.extendBy(point);
  }
  return box.transformed(item.matrix);
}

std::vector<SbBox3f> boxesOf(SoDrawList const& list, bool inFront) {
  std::vector<SbBox3f> boxes(list.getItems().size());
  for (size_t i = 0; i < boxes.size(); ++i) {
    SoDrawList::Item const& item = list.getItems()[i];
    if (item.pickable && isInFront(list, item) == inFront) boxes[i] = usableBounds(item);
  }
  return boxes;
}

} // namespace

SoDrawListPicker::SoDrawListPicker(SoDrawList const& list)
    : m_list(list), m_front(boxesOf(list, true)), m_rest(boxesOf(list, false)) {}

/// One query while it is answered.
class SoDrawListPicker::Search {
 public:
  Search(SoDrawList const& list, Query const& query) : m_list(list), m_query(query), m_limit(query.length) {
    if (!query.pixel) return;
    SbViewVolume const& volume = query.pixel->volume;
    m_eye = volume.getProjectionPoint();
    m_ahead = volume.getProjectionDirection();
    m_isPerspective = volume.getProjectionType() == SbViewVolume::PERSPECTIVE;
    m_size = query.pixel->region.getViewportSizePixels();
    m_perPixel = volume.getHeight() / std::max(1.0f, static_cast<float>(m_size[1]));
    if (m_isPerspective) m_perPixel /= volume.getNearDist();
  }

  void search(SoBoxTree const& tree, bool inFront) {
    m_limit = m_query.length;
    auto const grow = [this](SbVec3f const& center, SbVec3f const& half) { return reach(center, half); };
    tree.traverse(m_query.ray.getPosition(), m_query.ray.getDirection(), m_limit, grow,
                  [this](std::uint32_t item) { meetItem(static_cast<int>(item)); });
    if (!m_query.pixel) return;
    for (SoScreenText const& text : m_list.getScreenTexts()) {
      SoDrawList::Item const& item = m_list.getItems()[text.item];
      if (item.pickable && isInFront(m_list, item) == inFront && isWanted(text.item)) meetText(text, item);
    }
  }
  std::vector<Hit> takeHits() {
    std::stable_sort(m_hits.begin(), m_hits.end(), [](Hit const& a, Hit const& b) {
      return a.distance != b.distance ? a.distance < b.distance : a.item < b.item;
    });
    auto const end = std::unique(m_hits.begin(), m_hits.end(), isSameCrossing);
    m_hits.erase(end, m_hits.end());
    return std::exchange(m_hits, {});
  }

 private:
  /// Where a ray runs through the edge between two triangles it crosses the surface once.
  static bool isSameCrossing(Hit const& a, Hit const& b) {
    auto const onEdge = [](Hit const& hit) { return std::min({hit.u, hit.v, 1 - hit.u - hit.v}) < 1e-5f; };
    return a.item == b.item && a.kind == Hit::FACE && b.kind == Hit::FACE && a.fromBehind == b.fromBehind &&
           onEdge(a) && onEdge(b) && b.distance - a.distance <= 1e-6f * (1 + a.distance);
  }
  bool isWanted(int item) const { return !m_query.wanted || m_query.wanted(item); }

  /// How far from the ray, in units of the world, something inside a box may be to be met.
  float reach(SbVec3f const& center, SbVec3f const& half) const {
    if (!m_query.pixel) return m_query.radius;
    if (!m_isPerspective) return m_query.radius * m_perPixel;
    float depth = (center - m_eye).dot(m_ahead);
    for (int i = 0; i < 3; ++i) depth += std::abs(m_ahead[i]) * half[i];
    return m_query.radius * m_perPixel * std::max(0.0f, depth);
  }

  /// Notes a hit; true when nothing farther matters.
  bool note(Hit const& hit) {
    if (!(hit.distance >= 0 && hit.distance <= m_limit)) return false;
    if (m_query.all) {
      m_hits.push_back(hit);
      return false;
    }
    // Of two in one place the first in the graph counts, in whatever order they are met.
    if (!m_hits.empty() && hit.distance == m_hits[0].distance && hit.item >= m_hits[0].item) return false;
    m_hits.assign(1, hit);
    m_limit = hit.distance;
    return true;
  }

  bool isClipped(SoDrawList::Item const& item, SbVec3f const& point) const {
    auto const& planes = m_list.getSurroundings()[m_list.getLooks()[item.look].surroundings].clipPlanes;
    return std::any_of(planes.begin(), planes.end(),
                       [&](SbPlane const& p) { return !p.isInHalfSpace(point); });
  }

  void meetItem(int index) {
    SoDrawList::Item const& item = m_list.getItems()[index];
    if (!isWanted(index)) return;
    bool invertible = false;
    SbMatrix const toShape = item.matrix.inverse(&invertible);
    if (invertible) {
      // The direction is not brought to unit length, so that distances stay those of the world.
      m_origin = toShape.multVecMatrix(m_query.ray.getPosition());
      m_direction = toShape.multDirMatrix(m_query.ray.getDirection());
      if (item.pickedAsBox) {
        meetBox(index, item, toShape);
        return;
      }
      if (!item.mesh->mesh.triangles.empty()) meetFaces(index, item, toShape);
    }
    if (m_query.radius > 0 && !item.pickedAsBox) meetThin(index, item, toShape, invertible);
  }

  void meetFaces(int index, SoDrawList::Item const& item, SbMatrix const& toShape) {
    SoMesh const& mesh = item.mesh->mesh;
    bool const culled = m_list.getLooks()[item.look].culled;
    SoMeshIntersector::Ray const ray{m_origin, m_direction, m_limit};
    item.mesh->picking.getFaces(mesh).intersect(ray, [&](SoMeshIntersector::Hit const& met) {
      std::uint32_t const* const corner = &mesh.triangles[3 * static_cast<size_t>(met.triangle)];
      SbVec3f const& a = mesh.positions[corner[0]];
      SbVec3f normal = (mesh.positions[corner[1]] - a).cross(mesh.positions[corner[2]] - a);
      Hit hit;
      hit.item = index;
      hit.primitive = static_cast<int>(met.triangle);
      hit.u = met.u;
      hit.v = met.v;
      hit.distance = met.distance;
      hit.fromBehind = normal.dot(m_direction) > 0;
      if (culled && hit.fromBehind) return false;
      hit.point = m_query.ray.getPoint(hit.distance);
      if (isClipped(item, hit.point)) return false;
      // Normals go with the transposed inverse.
      hit.normal = toShape.transpose().multDirMatrix(normal).normalized();
      return note(hit);
    });
  }

  void meetBox(int index, SoDrawList::Item const& item, SbMatrix const& toShape) {
    SbBox3f const& box = item.mesh->bounds;
    float from = 0, to = std::numeric_limits<float>::infinity();
    int side = -1;
    for (int i = 0; i < 3; ++i) {
      if (m_direction[i] == 0) {
        if (m_origin[i] < box.getMin()[i] || m_origin[i] > box.getMax()[i]) return;
        continue;
      }
      float in = (box.getMin()[i] - m_origin[i]) / m_direction[i];
      float out = (box.getMax()[i] - m_origin[i]) / m_direction[i];
      if (in > out) std::swap(in, out);
      if (in > from) from = in, side = i;
      to = std::min(to, out);
    }
    if (!(from <= to)) return;
    Hit hit;
    hit.kind = Hit::BOX;
    hit.item = index;
    hit.distance = from;
    hit.point = m_query.ray.getPoint(from);
    if (side >= 0) {
      SbVec3f normal;
      normal[side] = m_direction[side] > 0 ? -1.0f : 1.0f;
      hit.normal = toShape.transpose().multDirMatrix(normal).normalized();
    }
    if (!isClipped(item, hit.point)) note(hit);
  }

  // Boxes of the tree are in the shape's own coordinates: there the reach is at most so many times as long.
  void meetThin(int index, SoDrawList::Item const& item, SbMatrix const& toShape, bool invertible) {
    SoMesh const& mesh = item.mesh->mesh;
    if (mesh.lines.empty() && mesh.points.empty()) return;
    auto const meet = [&](std::uint32_t number) { meetThinPrimitive(index, item, static_cast<int>(number)); };
    if (!invertible) {
      int const count = mesh.getNumLines() + mesh.getNumPoints();
      for (int i = 0; i < count; ++i) meetThinPrimitive(index, item, i);
      return;
    }
    float norm = 0;
    for (int i = 0; i < 3; ++i) {
      for (int k = 0; k < 3; ++k) norm += toShape[i][k] * toShape[i][k];
    }
    norm = std::sqrt(norm);
    auto const grow = [&](SbVec3f const& center, SbVec3f const& half) {
      SbBox3f const box = SbBox3f(center - half, center + half).transformed(item.matrix);
      return norm * reach(box.getCenter(), box.getSize() * 0.5f);
    };
    // What lies a little behind the start of the ray, or beyond the limit, is sorted out by its own distance.
    item.mesh->picking.getThin(mesh).traverse(m_origin, m_direction, m_limit, grow, meet);
  }

  void meetThinPrimitive(int index, SoDrawList::Item const& item, int number) {
    SoMesh const& mesh = item.mesh->mesh;
    auto const place = [&](std::uint32_t vertex) {
      return item.matrix.multVecMatrix(mesh.positions[vertex]);
    };
    Hit hit;
    hit.item = index;
    if (number < mesh.getNumLines()) {
      SbVec3f const a = place(mesh.lines[2 * static_cast<size_t>(number)]);
      SbVec3f const b = place(mesh.lines[2 * static_cast<size_t>(number) + 1]);
      hit.kind = Hit::LINE;
      hit.primitive = number;
      if (!isFinite(a) || !isFinite(b)) return;
      hit.u = m_query.pixel ? nearestOnScreen(a, b) : nearestInSpace(a, b);
      hit.point = a + (b - a) * hit.u;
    } else {
      hit.kind = Hit::POINT;
      hit.primitive = number - mesh.getNumLines();
      hit.point = place(mesh.points[static_cast<size_t>(hit.primitive)]);
    }
    hit.distance = (hit.point - m_query.ray.getPosition()).dot(m_query.ray.getDirection());
    if (isNear(hit) && !isClipped(item, hit.point)) note(hit);
  }

  bool isNear(Hit const& hit) const {
    if (!m_query.pixel) {
      return (m_query.ray.getPoint(std::max(0.0f, hit.distance)) - hit.point).length() <= m_query.radius;
    }
    SbVec3f screen;
    if (!m_query.pixel->volume.projectToScreen(hit.point, screen)) return false;
    SbVec2f const off = pixels(screen) - pixels(m_query.pixel->point);
    return off.length() <= m_query.radius;
  }
  template <class Vec> SbVec2f pixels(Vec const& screen) const {
    return SbVec2f(screen[0] * static_cast<float>(m_size[0]), screen[1] * static_cast<float>(m_size[1]));
  }

  /// How far along a segment it comes nearest to the ray, 0 to 1.
  float nearestInSpace(SbVec3f const& a, SbVec3f const& b) const {
    SbVec3f const along = b - a;
    float const length = along.dot(along);
    SbVec3f nearest = a, onRay;
    if (length > 0) SbLine(a, b).getClosestPoints(m_query.ray, nearest, onRay);
    return length > 0 ? std::clamp((nearest - a).dot(along) / length, 0.0f, 1.0f) : 0;
  }
  /// The same for the pixel, as the segment is seen.
  float nearestOnScreen(SbVec3f const& a, SbVec3f const& b) const {
    float const depthA = (a - m_eye).dot(m_ahead), depthB = (b - m_eye).dot(m_ahead);
    float from = 0, to = 1;
    if (m_isPerspective) {
      // Only what lies before the eye is seen.
      float const least = 1e-4f * m_query.pixel->volume.getNearDist();
      if (depthA < least && depthB < least) return 0;
      float const cut = (least - depthA) / (depthB - depthA);
      if (depthA < least) from = cut;
      if (depthB < least) to = cut;
    }
    SbVec3f screenA, screenB;
    if (!m_query.pixel->volume.projectToScreen(a + (b - a) * from, screenA)) return from;
    if (!m_query.pixel->volume.projectToScreen(a + (b - a) * to, screenB)) return to;
    SbVec2f const start = pixels(screenA), along = pixels(screenB) - start;
    float const length = along.dot(along);
    if (!(length > 0)) return from;
    float const t = std::clamp((pixels(m_query.pixel->point) - start).dot(along) / length, 0.0f, 1.0f);
    if (!m_isPerspective) return t;
    float const nearA = depthA + (depthB - depthA) * from, nearB = depthA + (depthB - depthA) * to;
    float const weighted = t * nearA / ((1 - t) * nearB + t * nearA);
    return from + (to - from) * weighted;
  }

  void meetText(SoScreenText const& text, SoDrawList::Item const& item) {
    SbVec3f const& place = text.place;
    SbVec3f screen;
    if (!m_query.pixel->volume.projectToScreen(place, screen)) return;
    SbVec2f const at = pixels(screen), off = pixels(m_query.pixel->point) - SoScreenText::snap(at[0], at[1]);
    if (!text.bitmap->box.contains(off) || isClipped(item, place)) return;
    Hit hit;
    hit.kind = Hit::TEXT;
    hit.item = text.item;
    SbLine const& ray = m_query.ray;
    hit.distance = (place - ray.getPosition()).dot(m_ahead) / ray.getDirection().dot(m_ahead);
    hit.point = ray.getPoint(hit.distance);
    hit.normal = -m_ahead;
    note(hit);
  }

  SoDrawList const& m_list;
  Query const& m_query;
  float m_limit;
  SbVec3f m_eye, m_ahead;
  bool m_isPerspective = false;
  SbVec2s m_size;
  float m_perPixel = 0;          // units a pixel; in a perspective, at distance 1
  SbVec3f m_origin, m_direction; // the ray in the coordinates of the present item
  std::vector<Hit> m_hits;
};

std::vector<Hit> SoDrawListPicker::pick(Query const& query) const {
  Search search(m_list, query);
  search.search(m_front, true);
  std::vector<Hit> hits = search.takeHits();
  if (!query.all && !hits.empty()) return hits;
  search.search(m_rest, false);
  std::vector<Hit> const others = search.takeHits();
  hits.insert(hits.end(), others.begin(), others.end());
  return hits;
}
