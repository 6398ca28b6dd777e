#pragma once

#include "vantle/inspect/SoVantleList.h"

class SoNode;
class SoVantleState;

/// Fields that stay in view whatever node the overviews show.
class SoFieldWatch : public SoVantleList {
  Q_OBJECT
 public:
  explicit SoFieldWatch(QWidget* parent = nullptr, char const* name = nullptr, Qt::WindowFlags flags = {});
  ~SoFieldWatch() override;

  /// Adds a row for the item's field; null for a field that is listed already or is gone.
  SoFieldItem* insertFieldItem(SoFieldItem const* item);
  void addField(SoNode* node, SoField* field);
  void takeItem(QTreeWidgetItem* item) override;
  /// Writes the node's name into every row.
  void updateItems(SoNode* node);
  /// The state stays the caller's and is registered.
  void setState(SoVantleState* state);
  static QString getFieldWatchPreferencesPath() { return QStringLiteral("/FieldWatchPreferences/"); }
  void initFieldWatchPreferences();
  /// Stores every width one column further left than it is restored, which is how the settings always were.
  void savePreferences();

 public Q_SLOTS:
  void fieldSelectionChanged();
  void showContextMenu(QPoint const& pos);

 Q_SIGNALS:
  /// The last row was taken.
  void listCleared();

 protected:
  void focusInEvent(QFocusEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;

 private:
  SoVantleState* m_state = nullptr;
};
