#include "kestrava/render/SoMeshIntersector.h"

#include <atomic>

#include "kestrava/base/SbVec3d.h"

namespace {

std::atomic<SoMeshIntersector::Factory> ownFactory{nullptr};

/// Empty where a coordinate is not finite.
SbBox3f boxOf(SoMesh const& mesh, std::uint32_t const* corners, int count) {
  float const* p = mesh.positions[corners[0]].v;
  float min[3] = {p[0], p[1], p[2]}, max[3] = {p[0], p[1], p[2]};
  float sum = 0 * p[0] + 0 * p[1] + 0 * p[2];  // 0, or no number
  for (int i = 1; i < count; ++i) {
    p = mesh.positions[corners[i]].v;
    sum += 0 * p[0] + 0 * p[1] + 0 * p[2];
    for (int k = 0; k < 3; ++k) {
      min[k] = p[k] < min[k] ? p[k] : min[k];
      max[k] = p[k] > max[k] ? p[k] : max[k];
    }
  }
  return std::isfinite(sum) ? SbBox3f(SbVec3f(min), SbVec3f(max)) : SbBox3f();
}

std::vector<SbBox3f> boxesOf(SoMesh const& mesh, std::vector<std::uint32_t> const& indices, int step) {
  std::vector<SbBox3f> boxes;
  boxes.reserve(indices.size() / static_cast<size_t>(step) + mesh.points.size());
  for (size_t i = 0; i + static_cast<size_t>(step) <= indices.size(); i += static_cast<size_t>(step)) {
    boxes.push_back(boxOf(mesh, &indices[i], step));
  }
  return boxes;
}

class TriangleTree : public SoMeshIntersector {
 public:
  explicit TriangleTree(SoMesh const& mesh) : m_mesh(mesh), m_tree(boxesOf(mesh, mesh.triangles, 3)) {}

  void intersect(Ray const& ray, Take const& take) const override {
    Ray rest = ray;
    auto const exact = [](SbVec3f const&, SbVec3f const&) { return 0.0f; };
    m_tree.traverse(ray.origin, ray.direction, rest.to, exact, [&](std::uint32_t triangle) {
      Hit hit{triangle, 0, 0, 0};
      if (meet(m_mesh, rest, hit) && take(hit)) rest.to = hit.distance;
    });
  }

 private:
  SoMesh const& m_mesh;
  SoBoxTree m_tree;
};

} // namespace

// After Moeller and Trumbore, "Fast, Minimum Storage Ray/Triangle Intersection"; with doubles, because an eye
// is often far from what it looks at.
bool SoMeshIntersector::meet(SoMesh const& mesh, Ray const& ray, Hit& hit) {
  std::uint32_t const* const corner = &mesh.triangles[3 * static_cast<size_t>(hit.triangle)];
  SbVec3d const origin(ray.origin), direction(ray.direction), a(mesh.positions[corner[0]]);
  SbVec3d const ab = SbVec3d(mesh.positions[corner[1]]) - a, ac = SbVec3d(mesh.positions[corner[2]]) - a;
  SbVec3d const p = direction.cross(ac);
  double const det = ab.dot(p);
  if (det == 0) return false;
  SbVec3d const s = origin - a;
  double const u = s.dot(p) / det;
  if (!(u >= 0 && u <= 1)) return false;
  SbVec3d const q = s.cross(ab);
  double const v = direction.dot(q) / det;
  if (!(v >= 0 && u + v <= 1)) return false;
  double const distance = ac.dot(q) / det;
  if (!(distance >= 0 && distance <= ray.to)) return false;
  hit.distance = static_cast<float>(distance);
  hit.u = static_cast<float>(u);
  hit.v = static_cast<float>(v);
  return true;
}

void SoMeshIntersector::setFactory(Factory factory) { ownFactory = factory; }

std::unique_ptr<SoMeshIntersector> SoMeshIntersector::make(SoMesh const& mesh) {
  if (Factory const factory = ownFactory) {
    if (auto made = factory(mesh)) return made;
  }
  return makeOwn(mesh);
}

std::unique_ptr<SoMeshIntersector> SoMeshIntersector::makeOwn(SoMesh const& mesh) {
  return std::make_unique<TriangleTree>(mesh);
}

SoMeshIntersector const& SoMeshPicking::getFaces(SoMesh const& mesh) {
  if (!m_faces) m_faces = SoMeshIntersector::make(mesh);
  return *m_faces;
}

SoBoxTree const& SoMeshPicking::getThin(SoMesh const& mesh) {
  if (m_thin) return *m_thin;
  std::vector<SbBox3f> boxes = boxesOf(mesh, mesh.lines, 2);
  for (std::uint32_t const point : mesh.points) boxes.push_back(boxOf(mesh, &point, 1));
  m_thin = std::make_unique<SoBoxTree>(boxes);
  return *m_thin;
}
