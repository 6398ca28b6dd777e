#pragma once

#include <optional>
#include <vector>

#include "kestrava/actions/SoPickedPoint.h"
#include "kestrava/actions/SoStateAction.h"
#include "kestrava/base/SbLine.h"

class SoCamera;
class SoShape;
struct SoMesh;

/// Finds what lies under a point of the viewport or on a line: faces exactly, lines and points within the
/// radius. Shapes that are not drawn (invisible, not pickable) are passed by.
class SoRayPickAction : public SoStateAction {
  SO_ACTION(SoRayPickAction, SoStateAction)
 public:
  explicit SoRayPickAction(SbViewportRegion const& region) : SoStateAction(region) {}

  /// Pixels from the lower left corner of the window. Looked through with the camera met last in the graph, or
  /// the one set below.
  void setPoint(SbVec2s pixel);
  /// In pixels; 5 unless set.
  void setRadius(float pixels) { m_radius = pixels; }
  /// A camera that is not part of the graph; its near and far planes do not count. Null: those of the graph.
  void setCamera(SoCamera const* camera);
  /// A line in the coordinates of the root in place of a point; lines and points of shapes are then not met.
  void setRay(SbVec3f const& start, SbVec3f const& direction);
  /// True: all hits; false: the nearest alone.
  void setPickAll(bool on) { m_all = on; }

  /// Nearest first. Valid until the next apply().
  std::vector<SoPickedPoint> const& getPickedPoints() const { return m_points; }
  /// The nearest, null when nothing was met.
  SoPickedPoint const* getPickedPoint() const { return m_points.empty() ? nullptr : &m_points.front(); }

  /// The method of shapes.
  void pickShape(SoShape& shape);

 protected:
  void begin() override;
  void end() override;

 private:
  bool findRay();
  void pickTriangles(SoMesh const& mesh, SbMatrix const& toRoot);
  void pickThin(SoMesh const& mesh, SbMatrix const& toRoot);
  void pickBox(SoMesh const& mesh, SbMatrix const& toRoot);
  void add(SoPickedPoint point);

  SbVec2s m_pixel;
  float m_radius = 5;
  bool m_all = false, m_hasPixel = false, m_fixedLine = false;
  std::optional<SbViewVolume> m_fixedVolume;
  SbViewVolume m_volume;
  SbLine m_line;
  float m_length = 0;  // of the line, from the near to the far plane; 0: no end
  std::vector<SoPickedPoint> m_points;
};
