#pragma once

#include <QWidget>
#include <map>
#include <memory>

#include "apps/gallery/GalleryPage.h"
#include "kestrava_qt/SoQtExaminerViewer.h"

class QLabel;
class QToolBar;
class QTreeWidget;

/// The window of the gallery: the list of pages, the viewer with the page's scene, its choices, and what
/// there is to say about it.
class GalleryWindow : public QWidget {
  Q_OBJECT
 public:
  GalleryWindow();
  ~GalleryWindow() override;

  void showPage(GalleryPage const& page);

 protected:
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  void fillList();
  void fillChoices();
  void choose(int which);
  void clicked(SbVec2s position, SbViewportRegion const& region);
  void say(QString const& text);
  void fitCamera();

  QTreeWidget* m_list; // the window's, as the other widgets
  std::unique_ptr<SoQtExaminerViewer> m_viewer;
  QToolBar* m_choices;
  QLabel* m_about;
  QLabel* m_answer;
  // Pages stay as they were left.
  std::map<GalleryPage const*, std::unique_ptr<GalleryScene>> m_scenes;
  GalleryPage const* m_page = nullptr;
  GalleryScene* m_scene = nullptr;
  float m_heightAngle = 0; // of the camera that came with the page
};
