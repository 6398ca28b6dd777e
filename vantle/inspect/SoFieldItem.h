#pragma once

#include <QTreeWidgetItem>

#include "kestrava/sensors/SoFieldSensor.h"

class SoField;
class SoFieldContainer;
class SoVantleList;

/// A row of a list of fields: one field, followed by a sensor of its own. The row may outlive the field; it
/// is then grey and disabled, and keeps the last value.
class SoFieldItem : public QTreeWidgetItem {
 public:
  static constexpr int TYPE = QTreeWidgetItem::UserType + 2;

  /// Appended to the list; `index` is that of the field in both containers. The default instance may be null.
  SoFieldItem(SoVantleList* list, SoFieldContainer* container, SoFieldContainer* defaultInstance, int index,
              bool catalogPart);
  /// A row for the same field in another list.
  SoFieldItem(SoVantleList* list, SoFieldItem const* other);
  SoFieldItem(SoFieldItem const&) = delete;
  SoFieldItem& operator=(SoFieldItem const&) = delete;

  static SoFieldItem* cast(QTreeWidgetItem* item) {
    return item && item->type() == TYPE ? static_cast<SoFieldItem*>(item) : nullptr;
  }

  /// Null once the field is gone.
  SoField* getField() const { return m_field; }
  /// The same field of a fresh instance; null when the type has none.
  SoField* getDefaultField() const { return m_defaultField; }
  bool isCatalogPart() const { return m_catalogPart; }
  /// Asks the field itself: a value that was set counts as changed even when it equals the default.
  bool isDefault() const;
  SoVantleList* listView() const { return m_list; }
  SoFieldItem* nextSibling() const;

  QVariant data(int column, int role) const override;

 private:
  static void fieldDiesCB(void* item, SoSensor* sensor);
  void watch();

  SoVantleList* m_list;
  SoField* m_field;
  SoField* m_defaultField;
  bool m_catalogPart;
  SoFieldSensor m_sensor;
};
