#pragma once

#include "kestrava/base/SbViewVolume.h"
#include "kestrava/base/SbViewportRegion.h"
#include "kestrava/draggers/SoPlacement.h"

/// What one handle does while it is dragged: turns positions of the pointer into placements. Everything is
/// measured against the placement at the start, so that errors do not add up.
class SoDragGesture {
 public:
  enum Kind {
    MOVE_ON_LINE,   ///< along the axis
    MOVE_ON_PLANE,  ///< across the axis
    MOVE_IN_VIEW,   ///< across the direction of view
    MOVE_CENTER,    ///< across the axis; only the centre moves, what is placed stays
    SCALE_ON_LINE,  ///< along the axis
    SCALE_ON_PLANE, ///< in both directions across the axis
    SCALE_FLAT,     ///< in both directions across the axis, alike
    SCALE_EVENLY,   ///< in all directions alike
    TURN_FLAT,      ///< about the axis, as a wheel seen from the side
    TURN_ROUND,     ///< about the axis, as a roller
    TURN_FREELY,    ///< as a ball
    OPEN_CONE,      ///< the angle of a cone whose axis is the axis
  };
  /// The pointer as of one event.
  struct Pointer {
    SbVec2s pixel;
    SbViewportRegion region;
    SbViewVolume volume;
    bool shift = false; ///< moves, scales or turns along or about one axis alone
    bool ctrl = false;  ///< moves across instead; scales about the opposite point instead of the centre
  };
  struct Start {
    Kind kind = MOVE_ON_LINE;
    SbVec3f axis{1, 0, 0}; ///< in the handles' space, unit length
    SoPlacement placement;
    SbMatrix fromHandles; ///< to the space that the dragger stands in
    SbMatrix toRoot;      ///< from there to the root's
    SbVec3f picked;       ///< in the coordinates of the root
    Pointer pointer;
    int minPixels = 0; ///< the pointer moves so far before it chooses an axis
  };

  /// False when the handles are flattened, so that no movement can be told.
  bool begin(Start const& start);
  /// False, and nothing changed, where the pointer says nothing: beyond a horizon, before an axis is chosen.
  bool move(Pointer const& pointer, SoPlacement& placement);

  Start const& getStart() const { return m_start; }
  /// The points that were taken hold of, and that lie under the pointer now, in the space that the dragger
  /// stands in.
  SbVec3f getStartPoint() const;
  SbVec3f getPoint() const { return m_point; }

 private:
  bool isMove() const { return m_start.kind <= MOVE_CENTER; }
  bool isTurn() const { return m_start.kind >= TURN_FLAT && m_start.kind <= TURN_FREELY; }
  bool onLine(Pointer const& pointer, SbVec3f const& through, SbVec3f const& along, SbVec3f& point) const;
  bool onPlane(Pointer const& pointer, SbVec3f const& normal, SbVec3f& point) const;
  bool movePoint(Pointer const& pointer, SbVec3f& from, SbVec3f& to);
  bool scale(Pointer const& pointer, SoPlacement& placement);
  bool turn(Pointer const& pointer, SoPlacement& placement);
  bool turnAbout(Pointer const& pointer, SbVec3f const& axis, bool flat, SbRotation& rotation) const;
  bool turnFreely(Pointer const& pointer, SbRotation& rotation) const;
  bool openCone(Pointer const& pointer, SoPlacement& placement);
  /// Chooses the axis whose picture the pointer follows best; -1 before it has moved far enough.
  int chooseAxis(Pointer const& pointer);
  /// The axis of Shift, of three directions; false while there is none.
  bool isHeldTo(Pointer const& pointer, SbVec3f& axis);

  Start m_start;
  SbMatrix m_space, m_toRoot,
      m_fromRoot;    // of the space that the gesture works in: to the dragger's, to the root's
  SbVec3f m_grabbed; // in that space
  SbVec3f m_pivot;   // of turns, in that space
  SbVec3f m_point;
  int m_axis = -1;
};
