#include <cmath>

#include "kestrava/render/SoMeshBuilder.h"

namespace {

/// Beyond this many corners cutting ears takes too long; such a polygon is taken as convex.
constexpr size_t MAX_EAR_CORNERS = 10000;

struct Point {
  double x, y;
};

double cross(Point const& a, Point const& b, Point const& c) {
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

/// Seen along the polygon's normal, so that it runs counterclockwise.
std::vector<Point> flatten(std::span<SbVec3f const> points) {
  double normal[3] = {0, 0, 0};
  for (size_t i = 0; i < points.size(); ++i) {
    SbVec3f const& a = points[i];
    SbVec3f const& b = points[(i + 1) % points.size()];
    for (int k = 0; k < 3; ++k) {
      int const u = (k + 1) % 3, v = (k + 2) % 3;
      normal[k] += (double{a[u]} - b[u]) * (double{a[v]} + b[v]);
    }
  }
  int axis = 0;
  for (int k = 1; k < 3; ++k) {
    if (std::abs(normal[k]) > std::abs(normal[axis])) axis = k;
  }
  int u = (axis + 1) % 3, v = (axis + 2) % 3;
  if (normal[axis] < 0) std::swap(u, v);
  std::vector<Point> flat;
  flat.reserve(points.size());
  for (SbVec3f const& p : points) flat.push_back({p[u], p[v]});
  return flat;
}

bool hasNoReflexCorner(std::vector<Point> const& p) {
  size_t const n = p.size();
  for (size_t i = 0; i < n; ++i) {
    if (cross(p[i], p[(i + 1) % n], p[(i + 2) % n]) < 0) return false;
  }
  return true;
}

bool isInside(Point const& p, Point const& a, Point const& b, Point const& c) {
  return cross(a, b, p) >= 0 && cross(b, c, p) >= 0 && cross(c, a, p) >= 0;
}

bool isSame(Point const& a, Point const& b) { return a.x == b.x && a.y == b.y; }

class EarCutter {
 public:
  explicit EarCutter(std::vector<Point> points) : m_points(std::move(points)) {
    int const n = static_cast<int>(m_points.size());
    for (int i = 0; i < n; ++i) {
      m_next.push_back((i + 1) % n);
      m_previous.push_back((i + n - 1) % n);
    }
  }

  void cut(std::vector<int>& triangles) {
    int left = static_cast<int>(m_points.size());
    int at = 0;
    int misses = 0;
    while (left > 2) {
      // A polygon that cuts itself may have no ear left, or hide them for long: any corner will do then.
      if (misses < left && m_looks < MAX_LOOKS * m_points.size() && !isEar(at)) {
        at = m_next[at];
        ++misses;
        continue;
      }
      int const before = m_previous[at], after = m_next[at];
      triangles.insert(triangles.end(), {before, at, after});
      m_next[before] = after;
      m_previous[after] = before;
      // Going on one corner further keeps the triangles from all meeting in one corner.
      at = m_next[after];
      misses = 0;
      --left;
    }
  }

 private:
  bool isReflex(int i) const { return cross(m_points[m_previous[i]], m_points[i], m_points[m_next[i]]) < 0; }
  bool isEar(int i) {
    Point const &a = m_points[m_previous[i]], &b = m_points[i], &c = m_points[m_next[i]];
    if (cross(a, b, c) <= 0) return false;
    for (int k = m_next[m_next[i]]; k != m_previous[i]; k = m_next[k]) {
      Point const& p = m_points[k];
      ++m_looks;
      if (isReflex(k) && isInside(p, a, b, c) && !isSame(p, a) && !isSame(p, b) && !isSame(p, c))
        return false;
    }
    return true;
  }

  /// Corners looked at for each corner that there is: plain polygons stay far below.
  static constexpr size_t MAX_LOOKS = 20000;

  std::vector<Point> m_points;
  size_t m_looks = 0;
  std::vector<int> m_next, m_previous;
};

} // namespace

void SoTriangulate(std::span<SbVec3f const> points, bool isConvex, std::vector<int>& triangles) {
  int const n = static_cast<int>(points.size());
  if (n > 3 && !isConvex && points.size() <= MAX_EAR_CORNERS) {
    std::vector<Point> flat = flatten(points);
    if (!hasNoReflexCorner(flat)) {
      EarCutter(std::move(flat)).cut(triangles);
      return;
    }
  }
  for (int i = 1; i + 1 < n; ++i) triangles.insert(triangles.end(), {0, i, i + 1});
}
