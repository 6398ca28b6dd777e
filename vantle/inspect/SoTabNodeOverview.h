#pragma once

#include <QTabWidget>

class SoFieldContainer;
class SoFieldItem;
class SoNode;
class SoNodeOverview;
class SoVantleEdition;
class SoVantleTreeView;

/// Node overviews side by side. There is always at least one.
class SoTabNodeOverview : public QTabWidget {
  Q_OBJECT
 public:
  SoTabNodeOverview(SoVantleTreeView* treeView, SoVantleEdition* edition, QWidget* parent = nullptr,
                    char const* name = nullptr);

  /// Adds an empty page and makes it the current one.
  void addTabNode();
  /// Shows a container in the current page.
  void setSceneNode(SoFieldContainer* container, SoNode* kit);
  void clear();
  SoNodeOverview* getCurrentNodeOverview() const;
  SoNodeOverview* page(int index) const;
  SoFieldItem* getCurrentFieldItem() const;
  SoFieldContainer* getCurrentNode() const;
  /// Widths are stored when they change; this makes sure that the store is on disk.
  void savePreferences();

 public Q_SLOTS:
  void tabClose(int index);
  /// The current one when the index is negative.
  void closeNodeOverview(int index);
  void tabNodeOverviewChanged(int index);
  void overviewColumnListChanged(int column, int width);

 Q_SIGNALS:
  /// The current page has no field that could be edited.
  void clearFieldEditorEvent();

 private:
  SoNodeOverview* makePage();
  void setNodeOverviewPreferences(SoNodeOverview* page);
  static bool hasSelectableField(SoNodeOverview const* page);

  SoVantleTreeView* m_treeView;
  SoVantleEdition* m_edition;
  bool m_applyingWidth = false;
};
