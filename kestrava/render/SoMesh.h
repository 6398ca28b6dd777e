#pragma once

#include <cstdint>
#include <vector>

#include "kestrava/base/SbBox3f.h"
#include "kestrava/base/SbVec3f.h"

/// What a shape consists of: vertices, and triangles, lines and points that refer to them. An optional array
/// is empty or has one entry a vertex.
struct SoMesh {
  std::vector<SbVec3f> positions;
  std::vector<SbVec3f> normals;         // unit length; empty for shapes that are not lit (lines, points)
  std::vector<SbVec3f> texCoords;       // s, t, r; empty when no texture is active
  std::vector<std::int32_t> materials;  // index into the material's values; empty: index 0 for all
  std::vector<std::uint32_t> triangles; // three vertex indices a triangle, front side counterclockwise
  std::vector<std::uint32_t> lines;     // two a segment
  std::vector<std::uint32_t> points;
  std::vector<std::int32_t> faces;       // for each triangle, the face (or part) of the shape it belongs to
  std::vector<std::int32_t> parts;       // for each triangle, its strip or row; empty where faces are parts
  std::vector<std::int32_t> lineNumbers; // for each segment, the line of the shape it belongs to; empty: 0 for all
  std::vector<std::int32_t> coordIndices; // for each vertex, its index among the shape's coordinates; may be empty

  int getNumTriangles() const { return static_cast<int>(triangles.size() / 3); }
  int getNumLines() const { return static_cast<int>(lines.size() / 2); }
  int getNumPoints() const { return static_cast<int>(points.size()); }
  SbBox3f getBounds() const;
};
