#pragma once

#include <QPointF>
#include <memory>

#include "kestrava/base/SbVec2s.h"

class QEvent;
class QWidget;
class SoEvent;
class SoSceneManager;

/// Turns what a user does in a widget into events and offers them to the nodes of a scene.
class SoQtEventFeeder {
 public:
  /// `view` is the widget that shows the manager's picture; both outlive the feeder.
  SoQtEventFeeder(SoSceneManager* manager, QWidget* view) : m_manager(manager), m_view(view) {}

  /// True when a node has handled it; false also for what is no event for a scene. Mouse events are those of
  /// the view, keys may come from any widget. Functions of the program that are called meanwhile may destroy
  /// this object.
  bool offer(QEvent const& event);
  /// Tells the nodes that the pointer is over none of them, unless one of them grabs: a move to (-1, -1). A pointer
  /// that leaves the view is told in the same way.
  void leave();

  /// The same for a program with a view of its own: the event for a scene, null when there is none. Keys,
  /// which have no place, get the one that is given.
  static std::unique_ptr<SoEvent> convert(QEvent const& event, QWidget const& view, SbVec2s keyPosition = {});
  /// Device pixels from the lower left corner of a widget.
  static SbVec2s toPixels(QPointF const& position, QWidget const& view);

 private:
  SoSceneManager* m_manager;
  QWidget* m_view;
  SbVec2s m_pointer;       // where the mouse was last
  bool m_leftDown = false; // as far as the view was told
};
