#pragma once

#include "kestrava/base/SbVec3f.h"
#include "kestrava/base/SoPath.h"

/// One place where a pick met a shape.
class SoPickedPoint {
 public:
  /// In the coordinates of the picked root.
  SbVec3f const& getPoint() const { return m_point; }
  /// Unit length, in the coordinates of the picked root; zero for lines and points.
  SbVec3f const& getNormal() const { return m_normal; }
  SbVec3f const& getTextureCoords() const { return m_texCoords; }
  int getMaterialIndex() const { return m_materialIndex; }
  /// The face (or part) of the shape, -1 where it has none.
  int getFaceIndex() const { return m_faceIndex; }
  /// From the eye, along the ray.
  float getDistance() const { return m_distance; }
  /// From the root to the shape.
  SoPath* getPath() const { return m_path.get(); }

 private:
  friend class SoRayPickAction;
  SbVec3f m_point, m_normal, m_texCoords;
  int m_materialIndex = 0;
  int m_faceIndex = -1;
  float m_distance = 0;
  SoRef<SoPath> m_path;
};
