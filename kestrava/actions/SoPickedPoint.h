#pragma once

#include "kestrava/base/SbVec3f.h"
#include "kestrava/base/SoPath.h"

/// What of a shape a pick met, and where in its data it comes from. Indices count from 0; -1 where there is
/// none.
struct SoPickDetail {
  enum Kind {
    FACE,
    LINE, ///< a segment
    POINT,
    BOX,  ///< the box around a shape that is picked as one
    TEXT, ///< in the plane of the screen
  };
  /// A corner of the triangle, an end of the segment, or the point.
  struct Corner {
    int vertex = -1;     ///< of the shape's mesh
    int coordIndex = -1; ///< of the shape's coordinates
    SbVec3f point;       ///< in the coordinates of the shape
    float weight = 0;    ///< with which it has a share in the picked point; all together are 1
  };

  Kind kind = FACE;
  int faceIndex =
      -1; ///< of FACE: the face of the shape; of a strip or a grid, the triangle or the quadrilateral
  int partIndex =
      -1; ///< the strip, the row, the side of a primitive; of a line, the segment, counted through
  int lineIndex = -1;  ///< of LINE: the line that the segment belongs to
  int pointIndex = -1; ///< of POINT
  int numCorners = 0;
  Corner corners[3];
};

/// One place where a pick met a shape.
class SoPickedPoint {
 public:
  /// In the coordinates of the picked root.
  SbVec3f const& getPoint() const { return m_point; }
  /// Unit length, in the coordinates of the picked root, that of the surface where the shape has normals; it
  /// points to the front side, also when the back was met. Zero for lines and points.
  SbVec3f const& getNormal() const { return m_normal; }
  /// Zero when the shape has none, because no texture is active.
  SbVec3f const& getTextureCoords() const { return m_texCoords; }
  int getMaterialIndex() const { return m_materialIndex; }
  /// The face (or part) of the shape, -1 where it has none.
  int getFaceIndex() const { return m_detail.faceIndex; }
  /// True when a face was met from behind.
  bool isFromBehind() const { return m_fromBehind; }
  SoPickDetail const& getDetail() const { return m_detail; }
  /// From the eye, along the ray.
  float getDistance() const { return m_distance; }
  /// True for what is drawn over everything else; it comes before what may lie nearer.
  bool isOnTop() const { return m_onTop; }
  /// From the root to the shape.
  SoPath* getPath() const { return m_path.get(); }

 private:
  friend class SoRayPickAction;
  SbVec3f m_point, m_normal, m_texCoords;
  int m_materialIndex = 0;
  float m_distance = 0;
  bool m_fromBehind = false, m_onTop = false;
  SoPickDetail m_detail;
  SoRef<SoPath> m_path;
};
