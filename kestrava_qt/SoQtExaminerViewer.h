#pragma once

#include <QVariantAnimation>

#include "kestrava_qt/SoQtRenderArea.h"

class QAbstractButton;
class QMouseEvent;

/// A widget in which a user examines a scene: turns, moves and enlarges it, and picks in it.
///
/// Viewing: left drag turns about the focus, middle drag or Shift+left moves, wheel, right drag or left+middle
/// enlarge at the pointer; S and a click go to a point; Home goes home, V shows everything, P changes the
/// projection. Escape changes between viewing and picking. The camera is the viewer's own; a camera of the scene is
/// where it starts.
///
/// While picking, the nodes of the scene get what the user does first; a click that none of them handles reports its
/// position, and keys that none of them handles do what they do while viewing.
class SoQtExaminerViewer : public SoQtRenderArea {
  Q_OBJECT
 public:
  /// `name` becomes the widget's object name.
  explicit SoQtExaminerViewer(QWidget* parent = nullptr, char const* name = nullptr);
  ~SoQtExaminerViewer() override;

  /// Referenced. Goes to the scene's first camera, or else shows everything, and makes that the home position.
  void setSceneGraph(SoNode* root) override;
  SoCamera* getCamera() const { return m_camera; }
  /// Null is refused.
  void setCamera(SoCamera* camera);

  void viewAll();
  void saveHomePosition();
  void resetToHomePosition();
  /// Goes half the way to what is seen at a position (pixels from the lower left corner of the view), which
  /// becomes the focus; false when nothing is there.
  bool seekToPoint(SbVec2s position);
  void togglePerspective();

  /// True: the mouse moves the view, and a drag in the scene ends; false: it picks.
  void setViewing(bool on);
  bool isViewing() const { return m_viewing; }
  void setSeeking(bool on);
  bool isSeeking() const { return m_seeking; }
  /// True: always; false: never. Before the first call: while the scene has no light of its own.
  void setHeadlight(bool on);
  /// True: picked() reports the clicks that a node has handled as well.
  void setReportingAllClicks(bool on) { m_reportsAllClicks = on; }

 signals:
  /// A click while picking: device pixels from the lower left corner of the view.
  void picked(SbVec2s position, SbViewportRegion region);
  void viewingChanged(bool on);

 protected:
  void beforeFrame() override;
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  enum Motion { NOTHING, TURN, MOVE, ENLARGE };
  void makeButtons();
  bool mousePressed(QMouseEvent* event);
  bool mouseMoved(QMouseEvent* event);
  bool mouseReleased(QMouseEvent* event);
  bool keyPressed(int key);
  void updateCursor();
  Motion motionFor(Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers) const;
  bool viewEvent(QEvent* event, bool wasPicking, bool handled);
  SbVec2f normalized(QPointF const& position) const;
  float aspect() const;
  void fly(SbVec3f const& position, float focalDistance, float height);

  SoRef<SoCamera> m_camera, m_home;
  QVariantAnimation m_flight;
  QPointer<QAbstractButton> m_viewButton, m_pickButton, m_seekButton, m_projectionButton;
  Motion m_motion = NOTHING;
  QPointF m_pressedAt, m_lastAt;
  SbVec2f m_enlargeAt;
  bool m_dragged = false;
  bool m_sceneTookIt = false;  // a node has handled a part of the present click
  bool m_reportsAllClicks = false;
  bool m_viewing = true;
  bool m_seeking = false;
  bool m_headlightSet = false, m_headlight = true;
};
