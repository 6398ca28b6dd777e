#pragma once

#include <QObject>
#include <QPointer>
#include <QVariantAnimation>
#include <functional>
#include <memory>

#include "kestrava/render/SoGuiRenderArea.h"

class QAbstractButton;
class QMouseEvent;
class QWidget;
class SoQtCanvas;

/// A widget in which a user examines a scene: turns, moves and enlarges it, and picks in it.
///
/// Viewing: left drag turns about the focus, middle drag or Shift+left moves, wheel, right drag or left+middle
/// enlarge at the pointer; S and a click go to a point; Home goes home, V shows everything, P changes the
/// projection. Escape changes between viewing and picking, where a click reports its position. The camera is
/// the viewer's own; a camera of the scene is where it starts.
class SoQtExaminerViewer : public QObject {
  Q_OBJECT
 public:
  /// `name` becomes the widget's object name.
  explicit SoQtExaminerViewer(QWidget* parent = nullptr, char const* name = nullptr);
  ~SoQtExaminerViewer() override;

  /// Holds the view and the buttons and has the keyboard focus. The parent's; null once it was deleted.
  QWidget* getWidget() const { return m_widget; }
  /// The part of the widget that shows the picture.
  QWidget* getViewWidget() const;
  SoGuiRenderArea* getRenderArea() const { return m_area; }
  SoSceneManager* getSceneManager() const { return m_area->getSceneManager(); }

  /// Referenced. Goes to the scene's first camera, or else shows everything, and makes that the home position.
  void setSceneGraph(SoNode* root);
  SoNode* getSceneGraph() const { return getSceneManager()->getSceneGraph(); }
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

  /// True: the mouse moves the view; false: it picks.
  void setViewing(bool on);
  bool isViewing() const { return m_viewing; }
  void setSeeking(bool on);
  bool isSeeking() const { return m_seeking; }
  /// True: always; false: never. Before the first call: while the scene has no light of its own.
  void setHeadlight(bool on);
  void setTransparencyType(SoGLRenderAction::Transparency type);
  void setBackgroundColor(SbColor const& color);
  SbViewportRegion const& getViewportRegion() const { return getSceneManager()->getViewportRegion(); }

 signals:
  /// A click while picking: device pixels from the lower left corner of the view.
  void picked(SbVec2s position, SbViewportRegion region);
  void viewingChanged(bool on);

 protected:
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  enum Motion { NOTHING, TURN, MOVE, ENLARGE };
  void makeButtons();
  void beforeFrame();
  bool mousePressed(QMouseEvent* event);
  bool mouseMoved(QMouseEvent* event);
  bool mouseReleased(QMouseEvent* event);
  bool keyPressed(int key);
  void updateCursor();
  Motion motionFor(Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers) const;
  SbVec2s toPixels(QPointF const& position) const;
  SbVec2f normalized(QPointF const& position) const;
  float aspect() const;
  void fly(SbVec3f const& position, float focalDistance, float height);

  SoRef<SoGuiRenderArea> m_area;
  QPointer<QWidget> m_widget;
  std::unique_ptr<SoQtCanvas> m_canvas;
  SoRef<SoCamera> m_camera, m_home;
  QVariantAnimation m_flight;
  QPointer<QAbstractButton> m_viewButton, m_pickButton, m_seekButton, m_projectionButton;
  Motion m_motion = NOTHING;
  QPointF m_pressedAt, m_lastAt;
  SbVec2f m_enlargeAt;
  bool m_dragged = false;
  bool m_viewing = true;
  bool m_seeking = false;
  bool m_headlightSet = false, m_headlight = true;
};
