#pragma once

#include <QAction>
#include <QMenu>
#include <QObject>
#include <QPointer>
#include <memory>

#include <vnt/VntExtension.h>

class QDockWidget;
class QToolBar;
class SoFieldContainer;
class StatisticsPanel;
class StatisticsPreferences;

/// The extension "Statistics": registers a dock, its entry in the view menu, a tool bar, a contextual menu on
/// groups and a preference page, and connects them.
class StatisticsExtension : public QObject, public VntExtension {
  Q_OBJECT
 public:
  ~StatisticsExtension() override;

  SbString getName() const override { return "Statistics"; }
  SbString getInfo() const override { return "Statistics"; }
  void activate() override;
  void deactivate() override;
  void show() override;
  void hide() override;

 private:
  void makeActions();
  void selectNode(SoFieldContainer* container);
  void showGroup();
  void selectScene();

  // The window is the parent of dock and tool bar, and may end before they are deleted here.
  QPointer<QDockWidget> m_dock;
  QPointer<QToolBar> m_toolBar;
  StatisticsPanel* m_panel = nullptr; // the dock's
  std::unique_ptr<StatisticsPreferences> m_preferences;
  std::unique_ptr<QMenu> m_contextMenu;
  QAction* m_pinned = nullptr; // the tool bar's
};
