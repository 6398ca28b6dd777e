#pragma once

#include <QColor>
#include <QFont>
#include <QMultiHash>
#include <QString>
#include <QTreeWidget>
#include <vector>

#include "kestrava/fields/SoFieldContainer.h"

class QAction;
class SoFieldItem;
class SoMField;
class SoSensor;

/// The fields of one container as rows: type, name and value, and whether they are ignored or connected.
class SoVantleList : public QTreeWidget {
  Q_OBJECT
 public:
  enum Column {
    HIDDEN_COLUMN,
    IGNORED_COLUMN,
    CONNECTED_COLUMN,
    NODE_TYPE_COLUMN,
    NODE_NAME_COLUMN,
    FIELD_TYPE_COLUMN,
    FIELD_NAME_COLUMN,
    FIELD_VALUE_COLUMN,
    NET_NAME_COLUMN,
  };

  explicit SoVantleList(QWidget* parent = nullptr, char const* name = nullptr, Qt::WindowFlags flags = {});
  ~SoVantleList() override;

  /// Fills the list anew; null empties it.
  void setNode(SoFieldContainer* container);
  void displayFieldItem(SoFieldItem* item);
  /// Draws the row of a field anew; null: every row.
  void revert(SoField const* field);
  SoFieldItem* getListItemFromField(SoField const* field) const;
  SoFieldItem* firstChild() const;
  SoFieldItem* firstEnabledChild() const;
  SoFieldItem* currentItem() const;
  /// Takes a row out without destroying it.
  virtual void takeItem(QTreeWidgetItem* item);
  void clear();
  void showCatalogPart(bool on);
  virtual void setColumnWidth(int column, int width);

  /// For rows whose field holds its default, and for the others.
  void setStyles(QColor const& defaultColor, QFont const& defaultFont, QColor const& changedColor,
                 QFont const& changedFont);
  QColor const& valueColor(bool isDefault) const { return isDefault ? m_defaultColor : m_changedColor; }
  QFont const& valueFont(bool isDefault) const { return isDefault ? m_defaultFont : m_changedFont; }

  /// Whether there is a column for the names that a host gives; it stands fixed while the program runs.
  static bool hasNetNameColumn();
  /// What the value column shows of a field.
  struct Value {
    QString text;
    bool enabled = true;  ///< false: nothing to be edited as text
    bool isImage = false; ///< shown as a picture; without text
  };
  static Value valueOf(SoField* field);
  /// None for false.
  static QIcon ignoredIcon(bool ignored);
  static QIcon connectedIcon(bool connected);
  static void fieldSensorCB(void* list, SoSensor* sensor);

 public Q_SLOTS:
  void showChangedValues(bool on);
  void toggleHeaderColumnVisibility(QAction* toggledAction);
  void headerRightClicked(QPoint const& pos);

 Q_SIGNALS:
  void columnWidthChanged(int column, int newWidth);

 protected:
  /// An instance of a container's type with its default values, kept until the list goes; null for an
  /// abstract type.
  SoFieldContainer* makeDefaultInstance(SoFieldContainer const* container);
  void paintEvent(QPaintEvent* event) override;

 private:
  friend class SoFieldItem;
  static Value multipleValueOf(SoMField* field);
  void keepDefaultInstance(SoFieldContainer* instance);
  std::vector<SoFieldItem*> items() const;
  static bool isShown(SoField const* field);
  int restoredWidth(int column) const;

  QColor m_defaultColor, m_changedColor;
  QFont m_defaultFont, m_changedFont;
  bool m_showCatalogParts = true;
  bool m_showChangedValues = false;
  bool m_settingWidth = false;
  QMultiHash<SoField const*, SoFieldItem*> m_rows; // of all items, those taken out too
  quint64 m_paint = 0;                             // number of the latest paint
  std::vector<SoRef<SoFieldContainer>> m_defaultInstances;
};
