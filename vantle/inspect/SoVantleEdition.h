#pragma once

#include <QObject>
#include <QPointer>
#include <memory>

class QDockWidget;
class QTreeWidgetItem;
class SoFieldContainer;
class SoFieldWatch;
class SoFieldWatchState;
class SoNode;
class SoTabNodeOverview;
class SoVantleTreeView;

/// Holds the panels that show fields, and tells the services which field is selected.
class SoVantleEdition : public QObject {
  Q_OBJECT
 public:
  SoVantleEdition(SoVantleTreeView* treeView, QDockWidget* overviewDock, QDockWidget* watchDock);
  /// Shows the node at once, unless it is null; `kit` is the node kit that it may be a part of.
  SoVantleEdition(SoNode* node, SoNode* kit, SoVantleTreeView* treeView, QDockWidget* overviewDock,
                  QDockWidget* watchDock);
  ~SoVantleEdition() override;

  /// Shows a container in the current overview, in a new one when asked; null does nothing.
  void setNode(SoFieldContainer* container, SoNode* kit, bool newTab);
  void clearScene();
  /// Makes and registers the field watch's state.
  void setEditionStates();
  SoTabNodeOverview* getTabNodeOverview() const;
  SoFieldWatch* getFieldWatch() const;

 public Q_SLOTS:
  /// The current row of a list of fields changed; null: no field is selected.
  void setField(QTreeWidgetItem* current, QTreeWidgetItem* previousField = nullptr);
  /// The user wants to edit the field of that row now.
  void activateField(QTreeWidgetItem* item);
  void addFieldWatch();

 private:
  void initClass(SoVantleTreeView* treeView);

  QPointer<SoTabNodeOverview> m_overviews;
  QPointer<SoFieldWatch> m_fieldWatch;
  QPointer<QDockWidget> m_overviewDock;
  QPointer<QDockWidget> m_watchDock;
  std::unique_ptr<SoFieldWatchState> m_watchState;
};
