#pragma once

#include <functional>
#include <memory>

class QWidget;
class SoSceneManager;

/// The widget in which a scene manager's picture appears: an OpenGL widget where the platform has OpenGL, and
/// otherwise one that paints an image drawn without a display.
class SoQtCanvas {
 public:
  virtual ~SoQtCanvas() = default;
  /// A canvas whose widget is the parent's. The manager outlives it. `beforeFrame` is called before each frame,
  /// when the manager knows its viewport.
  static std::unique_ptr<SoQtCanvas> make(SoSceneManager* manager, std::function<void()> beforeFrame, QWidget* parent);
  /// False for platforms that have no OpenGL for windows and when KSV_VIEWER_OFFSCREEN is set.
  static bool usesOpenGL();

  /// Null once its parent has deleted it.
  virtual QWidget* getWidget() const = 0;
  /// The user is moving the view: speed goes before smooth edges.
  virtual void setMoving(bool) {}
};
