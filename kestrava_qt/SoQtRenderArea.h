#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>
#include <memory>

#include "kestrava/render/SoGuiRenderArea.h"

class SoQtCanvas;
class SoQtEventFeeder;

/// A widget that shows a scene and offers the nodes in it what the user does there. It moves no camera: what
/// is seen is what the scene's camera, or that of the scene manager, shows.
class SoQtRenderArea : public QObject {
  Q_OBJECT
 public:
  /// `name` becomes the widget's object name.
  explicit SoQtRenderArea(QWidget* parent = nullptr, char const* name = nullptr);
  ~SoQtRenderArea() override;

  /// Holds the view and has the keyboard focus. The parent's; null once it was deleted.
  QWidget* getWidget() const { return m_widget; }
  /// The part of the widget that shows the picture.
  QWidget* getViewWidget() const;
  SoGuiRenderArea* getRenderArea() const { return m_area; }
  SoSceneManager* getSceneManager() const { return m_area->getSceneManager(); }

  /// Referenced.
  virtual void setSceneGraph(SoNode* root) { getSceneManager()->setSceneGraph(root); }
  SoNode* getSceneGraph() const { return getSceneManager()->getSceneGraph(); }
  void setTransparencyType(SoGLRenderAction::Transparency type);
  void setBackgroundColor(SbColor const& color);
  SbViewportRegion const& getViewportRegion() const { return getSceneManager()->getViewportRegion(); }

 protected:
  /// Called before each frame, when the scene manager knows its viewport.
  virtual void beforeFrame() {}
  /// Offers an event of the view, or a key of the widget, to the scene; true when it was handled there. This
  /// object may be gone afterwards.
  bool offerToScene(QEvent const& event);
  /// Tells the scene that the pointer is over none of its nodes. This object may be gone afterwards.
  void tellPointerLeft();
  bool eventFilter(QObject* object, QEvent* event) override;
  SoQtCanvas* getCanvas() const { return m_canvas.get(); }

 private:
  SoRef<SoGuiRenderArea> m_area;
  QPointer<QWidget> m_widget;
  std::unique_ptr<SoQtCanvas> m_canvas;
  std::unique_ptr<SoQtEventFeeder> m_feeder;
};
