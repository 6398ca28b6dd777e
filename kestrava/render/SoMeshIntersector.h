#pragma once

#include <functional>
#include <limits>
#include <memory>

#include "kestrava/render/SoBoxTree.h"
#include "kestrava/render/SoMesh.h"

/// Finds where rays meet the triangles of one mesh. What it needs for that is made once; the mesh stays as it
/// is and outlives it.
class SoMeshIntersector {
 public:
  struct Ray {
    SbVec3f origin, direction; // distances are in lengths of the direction
    float to = std::numeric_limits<float>::infinity();
  };
  struct Hit {
    std::uint32_t triangle;
    float distance;
    float u, v; // weights of the second and the third corner
  };
  /// Answers true when nothing that lies farther than this hit is of interest any more.
  using Take = std::function<bool(Hit const&)>;
  /// Makes an intersector; null leaves the mesh to the toolkit's own one.
  using Factory = std::unique_ptr<SoMeshIntersector> (*)(SoMesh const& mesh);

  virtual ~SoMeshIntersector() = default;
  /// Calls `take` for hits from both sides, in no order. Triangles without area or with coordinates that are
  /// not finite are met by nothing.
  virtual void intersect(Ray const& ray, Take const& take) const = 0;

  /// For the meshes that are met from now on; null brings the toolkit's own back. On the GUI thread.
  static void setFactory(Factory factory);
  static std::unique_ptr<SoMeshIntersector> make(SoMesh const& mesh);
  /// The toolkit's own, whatever the factory.
  static std::unique_ptr<SoMeshIntersector> makeOwn(SoMesh const& mesh);
  /// Meets one triangle, which `hit` names; false when the ray misses it. Exact enough for eyes that are far
  /// away.
  static bool meet(SoMesh const& mesh, Ray const& ray, Hit& hit);
};

/// What picking keeps with a mesh, made when it is asked for. Not for several threads at a time.
class SoMeshPicking {
 public:
  SoMeshIntersector const& getFaces(SoMesh const& mesh);
  /// Segments by their number, then points, counted on.
  SoBoxTree const& getThin(SoMesh const& mesh);

 private:
  std::unique_ptr<SoMeshIntersector> m_faces;
  std::unique_ptr<SoBoxTree> m_thin;
};
