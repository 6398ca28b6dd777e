#pragma once

#include <memory>
#include <vector>

#include "kestrava/actions/SoPickedPoint.h"
#include "kestrava/actions/SoStateAction.h"
#include "kestrava/base/SbLine.h"
#include "kestrava/render/SoDrawListPicker.h"

class SoCamera;
class SoDrawList;

/// Finds what lies under a point of the viewport or on a line: faces exactly, lines and points within the
/// radius, texts in the plane of the screen by their box. What is not drawn (invisible, clipped, the culled
/// back of a face) or not pickable is passed by.
///
/// The graph is not walked for a pick: a prepared draw list that somebody on this thread keeps for the root,
/// a scene manager for one, serves; without any, the action makes its own and keeps it from pick to pick.
class SoRayPickAction : public SoStateAction {
  SO_ACTION(SoRayPickAction, SoStateAction)
 public:
  explicit SoRayPickAction(SbViewportRegion const& region);
  ~SoRayPickAction() override;

  /// Pixels from the lower left corner of the window. Looked through with the first camera of the graph, as
  /// it is drawn, or with the one set below.
  void setPoint(SbVec2s pixel);
  /// In pixels; 5 unless set.
  void setRadius(float pixels) { m_radius = pixels; }
  /// A camera that is not part of the graph, referenced; its near and far planes do not count. Null: those of
  /// the graph.
  void setCamera(SoCamera const* camera);
  /// A line in the coordinates of the root in place of a point. Texts in the plane of the screen are not met.
  void setRay(SbVec3f const& start, SbVec3f const& direction);
  /// How far lines and points may be from such a line, in units of the root; 0, unless set, meets none.
  void setRayRadius(float radius) { m_rayRadius = radius; }
  /// True: all hits; false: the nearest alone.
  void setPickAll(bool on) { m_all = on; }

  /// Nearest first, what is drawn on top before the rest. Valid until the next apply().
  std::vector<SoPickedPoint> const& getPickedPoints() const { return m_points; }
  /// The first of them, null when nothing was met.
  SoPickedPoint const* getPickedPoint() const { return m_points.empty() ? nullptr : &m_points.front(); }

 protected:
  void begin() override;
  /// Answers for the whole graph at its root.
  void visit(SoNode* root) override;

 private:
  SoDrawList const& prepare(SoNode* root);
  bool findRay(SoDrawList const& list, SoDrawListPicker::Query& query) const;
  SoPickedPoint makePoint(SoDrawList const& list, SoDrawListPicker::Hit const& hit) const;

  SbVec2s m_pixel;
  float m_radius = 5, m_rayRadius = 0;
  bool m_all = false, m_hasPixel = false, m_fixedLine = false;
  SoRef<SoCamera> m_camera;
  SbLine m_line;                      // set by the program
  std::unique_ptr<SoDrawList> m_list; // null while others' lists serve
  std::vector<SoPickedPoint> m_points;
};
