#include "vantle/inspect/SoFieldItem.h"

#include "kestrava/fields/SoFieldContainer.h"
#include "vantle/inspect/SoVantleList.h"
#include "vnt/QtText.h"

SoFieldItem::SoFieldItem(SoVantleList* list, SoFieldContainer* container, SoFieldContainer* defaultInstance,
                         int index, bool catalogPart)
    : QTreeWidgetItem(TYPE),
      m_list(list),
      m_field(container->getField(index)),
      m_defaultField(defaultInstance && index < defaultInstance->getNumFields()
                         ? defaultInstance->getField(index)
                         : nullptr),
      m_catalogPart(catalogPart),
      m_sensor(&SoVantleList::fieldSensorCB, list) {
  setText(SoVantleList::NODE_TYPE_COLUMN, toQString(container->getTypeId().getName().toString()));
  setText(SoVantleList::NODE_NAME_COLUMN, toQString(container->getName().toString()));
  setText(SoVantleList::FIELD_TYPE_COLUMN, toQString(m_field->getTypeId().getName().toString()));
  setText(SoVantleList::FIELD_NAME_COLUMN, toQString(m_field->getName().toString()));
  if (SoVantleList::hasNetNameColumn()) {
    setText(SoVantleList::NET_NAME_COLUMN, toQString(container->getNetName().toString()));
  }
  watch();
}

SoFieldItem::SoFieldItem(SoVantleList* list, SoFieldItem const* other)
    : QTreeWidgetItem(TYPE),
      m_list(list),
      m_field(other->m_field),
      m_defaultField(other->m_defaultField),
      m_catalogPart(other->m_catalogPart),
      m_sensor(&SoVantleList::fieldSensorCB, list) {
  for (int column = 0; column < other->columnCount(); ++column) {
    if (column != SoVantleList::FIELD_VALUE_COLUMN) setText(column, other->text(column));
  }
  m_value = other->m_value;
  if (m_defaultField) list->keepDefaultInstance(m_defaultField->getContainer());
  watch();
}

void SoFieldItem::watch() {
  // The base class counts columns by what it has been given.
  setText(SoVantleList::FIELD_VALUE_COLUMN, QString());
  m_sensor.attach(m_field);
  m_sensor.setDeleteCallback(&SoFieldItem::fieldDiesCB, this);
  m_list->m_rows.insert(m_field, this);
  m_list->addTopLevelItem(this);
}

SoFieldItem::~SoFieldItem() {
  if (m_field && m_list) m_list->m_rows.remove(m_field, this);
}

void SoFieldItem::leaveList() {
  m_sensor.detach();
  m_list = nullptr;
}

void SoFieldItem::fieldDiesCB(void* data, SoSensor*) {
  auto* const item = static_cast<SoFieldItem*>(data);
  item->m_list->m_rows.remove(item->m_field, item);
  item->m_field = nullptr;
  if (item->m_list->currentItem() == item) item->m_list->setCurrentItem(nullptr);
  item->setFlags(item->flags() & ~Qt::ItemIsEnabled);
}

bool SoFieldItem::isDefault() const { return !m_field || m_field->isDefault(); }

SoFieldItem* SoFieldItem::nextSibling() const {
  int const row = m_list->indexOfTopLevelItem(const_cast<SoFieldItem*>(this));
  return SoFieldItem::cast(m_list->topLevelItem(row + 1));
}

SoFieldItem::Change SoFieldItem::fetch() {
  SoVantleList::Value const value = SoVantleList::valueOf(m_field);
  bool const enabled = value.enabled && m_field->getFieldType() != SoField::READ_ONLY;
  if (enabled != bool(flags() & Qt::ItemIsEnabled)) setFlags(flags() ^ Qt::ItemIsEnabled);
  bool const ignored = m_field->isIgnored(), connected = m_field->isConnected(),
             byDefault = m_field->isDefault();
  Change change = NOTHING;
  // An image has no text; what stood there stays.
  if (!value.isImage && m_value != value.text) {
    m_value = value.text;
    change = VALUE;
  }
  // Style and icons.
  if (ignored != m_ignored || connected != m_connected || byDefault != m_wasDefault) change = ROW;
  m_ignored = ignored;
  m_connected = connected;
  m_wasDefault = byDefault;
  return change;
}

QVariant SoFieldItem::data(int column, int role) const {
  // Drawing a text of a million characters takes long. The largest array that is shown is shorter than this.
  constexpr int LONGEST = 65'536, LONGEST_TIP = 1000;
  if (role == Qt::DisplayRole && column == SoVantleList::FIELD_VALUE_COLUMN) return m_value.left(LONGEST);
  if (role == Qt::DecorationRole && column == SoVantleList::IGNORED_COLUMN)
    return SoVantleList::ignoredIcon(m_ignored);
  if (role == Qt::DecorationRole && column == SoVantleList::CONNECTED_COLUMN) {
    return SoVantleList::connectedIcon(m_connected);
  }
  bool const enabled = flags() & Qt::ItemIsEnabled;
  if (role == Qt::ForegroundRole && enabled) {
    QColor const& color = m_list->valueColor(isDefault());
    if (color.isValid()) return color;
  } else if (role == Qt::FontRole) {
    return m_list->valueFont(isDefault());
  } else if (role == Qt::ToolTipRole && column == SoVantleList::FIELD_VALUE_COLUMN) {
    // For values that the column is too narrow for.
    return m_value.left(LONGEST_TIP);
  }
  return QTreeWidgetItem::data(column, role);
}
