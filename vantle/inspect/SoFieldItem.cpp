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
  for (int column = 0; column < other->columnCount(); ++column) setText(column, other->text(column));
  if (m_defaultField) list->keepDefaultInstance(m_defaultField->getContainer());
  watch();
}

void SoFieldItem::watch() {
  m_sensor.attach(m_field);
  m_sensor.setDeleteCallback(&SoFieldItem::fieldDiesCB, this);
  m_list->addTopLevelItem(this);
}

void SoFieldItem::fieldDiesCB(void* data, SoSensor*) {
  auto* const item = static_cast<SoFieldItem*>(data);
  item->m_field = nullptr;
  if (item->m_list->currentItem() == item) item->m_list->setCurrentItem(nullptr);
  item->setFlags(item->flags() & ~Qt::ItemIsEnabled);
}

bool SoFieldItem::isDefault() const { return !m_field || m_field->isDefault(); }

SoFieldItem* SoFieldItem::nextSibling() const {
  int const row = m_list->indexOfTopLevelItem(const_cast<SoFieldItem*>(this));
  return SoFieldItem::cast(m_list->topLevelItem(row + 1));
}

QVariant SoFieldItem::data(int column, int role) const {
  bool const enabled = flags() & Qt::ItemIsEnabled;
  if (role == Qt::ForegroundRole && enabled) {
    QColor const& color = m_list->valueColor(isDefault());
    if (color.isValid()) return color;
  } else if (role == Qt::FontRole) {
    return m_list->valueFont(isDefault());
  } else if (role == Qt::ToolTipRole && column == SoVantleList::FIELD_VALUE_COLUMN) {
    // For values that the column is too narrow for.
    return text(column).left(1000);
  }
  return QTreeWidgetItem::data(column, role);
}
