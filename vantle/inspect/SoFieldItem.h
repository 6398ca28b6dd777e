#pragma once

#include <QRect>
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
  ~SoFieldItem() override;

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
  friend class SoVantleList;
  enum Change { NOTHING, VALUE, ROW };
  /// Fetches the value from the field, and says what of the row looks different from before.
  Change fetch();
  /// The list goes before the row does.
  void leaveList();
  static void fieldDiesCB(void* item, SoSensor* sensor);
  void watch();

  SoVantleList* m_list;
  SoField* m_field;
  SoField* m_defaultField;
  bool m_catalogPart;
  // The value, kept here and not by the base class, which would search the view for the row at every change.
  QString m_value;
  bool m_ignored = false, m_connected = false, m_wasDefault = false;
  QRect m_shownAt;            // in the list's viewport, when it was last painted
  quint64 m_shownInPaint = 0; // number of that paint
  SoFieldSensor m_sensor;
};
