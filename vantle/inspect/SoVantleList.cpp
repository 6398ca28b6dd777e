#include "vantle/inspect/SoVantleList.h"

#include <QAction>
#include <QHash>
#include <QMenu>
#include <array>

#include "kestrava/base/SoPreferences.h"
#include "kestrava/fields/SoFieldContainer.h"
#include "kestrava/kits/SoBaseKit.h"
#include "kestrava/kits/SoNodekitCatalog.h"
#include "kestrava/sensors/SoFieldSensor.h"
#include "vantle/inspect/SoFieldItem.h"
#include "vantle/inspect/SoHeaderView.h"
#include "vnt/QtText.h"

namespace {

char const styleText[] = R"(
QTreeView { show-decoration-selected: 0; outline: 0; }
QTreeView::item { height: 24px; border: none; }
QTreeView::branch { border: none; }
QTreeView::item:hover, QTreeView::branch:hover {
  background: qlineargradient(x1: 0, y1: 0, x2: 0, y2: 1, stop: 0 #e7effd, stop: 1 #cbdaf1);
}
QTreeView::item:selected:active, QTreeView::branch:selected:active {
  background: qlineargradient(x1: 0, y1: 0, x2: 0, y2: 1, stop: 0 #6ea1f1, stop: 1 #567dbc);
}
QTreeView::item:selected:!active, QTreeView::branch:selected:!active {
  background: qlineargradient(x1: 0, y1: 0, x2: 0, y2: 1, stop: 0 #6b9be8, stop: 1 #577fbf);
}
)";

QIcon const& ignoreIcon() {
  static QIcon const& icon = *new QIcon(QStringLiteral(":/Vantle_icons/Icons/ignore.png"));
  return icon;
}
QIcon const& connectionIcon() {
  static QIcon const& icon = *new QIcon(QStringLiteral(":/Vantle_icons/Icons/connection.png"));
  return icon;
}

/// Names in the header menu, for the columns from the first one that is shown.
std::array<char const*, 8> const menuNames{
    QT_TRANSLATE_NOOP("SoVantleList", "Ignore"),      QT_TRANSLATE_NOOP("SoVantleList", "Connected"),
    QT_TRANSLATE_NOOP("SoVantleList", "Node Type"),   QT_TRANSLATE_NOOP("SoVantleList", "Node Name"),
    QT_TRANSLATE_NOOP("SoVantleList", "Field Type"),  QT_TRANSLATE_NOOP("SoVantleList", "Field Name"),
    QT_TRANSLATE_NOOP("SoVantleList", "Field Value"), QT_TRANSLATE_NOOP("SoVantleList", "Node NetName")};

} // namespace

SoVantleList::SoVantleList(QWidget* parent, char const* name, Qt::WindowFlags flags) : QTreeWidget(parent) {
  if (flags) setWindowFlags(flags);
  setObjectName(QString::fromLatin1(name ? name : "SoVantleList"));
  auto* const headerView = new SoHeaderView(this);
  headerView->setSectionsClickable(true);
  headerView->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  headerView->setStretchLastSection(true);
  headerView->setMinimumSectionSize(0); // columns are hidden by width
  setHeader(headerView);
  connect(headerView, &SoHeaderView::rightClicked, this, &SoVantleList::headerRightClicked);
  setStyleSheet(QString::fromLatin1(styleText));

  setColumnCount(hasNetNameColumn() ? 9 : 8);
  QStringList labels{QString(), QString(), QString()};
  for (int column = NODE_TYPE_COLUMN; column < columnCount(); ++column)
    labels.append(tr(menuNames[column - 1]));
  setHeaderLabels(labels);
  setColumnHidden(HIDDEN_COLUMN, true);
  headerItem()->setIcon(IGNORED_COLUMN, ignoreIcon());
  headerItem()->setToolTip(IGNORED_COLUMN, tr("This field is ignored"));
  headerItem()->setIcon(CONNECTED_COLUMN, connectionIcon());
  headerItem()->setToolTip(CONNECTED_COLUMN, tr("This field is connected"));
  QTreeWidget::setColumnWidth(IGNORED_COLUMN, 20);
  QTreeWidget::setColumnWidth(CONNECTED_COLUMN, 20);
  QTreeWidget::setColumnWidth(FIELD_TYPE_COLUMN, 80);
  QTreeWidget::setColumnWidth(FIELD_NAME_COLUMN, 120);

  setSelectionMode(SingleSelection);
  setEditTriggers(NoEditTriggers);
  setRootIsDecorated(false);
  setIndentation(0);
  setUniformRowHeights(true);
  setIconSize(QSize(16, 16));
  headerView->setSectionsMovable(false);
  // Declared order until the user asks for another one.
  headerView->setSortIndicator(-1, Qt::AscendingOrder);
  setSortingEnabled(true);

  connect(headerView, &QHeaderView::sectionResized, this, [this](int column, int, int width) {
    bool const stretched = header()->stretchLastSection() && column == columnCount() - 1;
    if (!m_settingWidth && !stretched) Q_EMIT columnWidthChanged(column, width);
  });
}

SoVantleList::~SoVantleList() {
  disconnect(this, nullptr, nullptr, nullptr);
  QTreeWidget::clear();
  // Rows that were taken out are somebody else's.
  for (SoFieldItem* row : std::as_const(m_rows)) row->leaveList();
}

bool SoVantleList::hasNetNameColumn() {
  static bool const on =
      SoPreferences::getBool("KSRU_LAUNCH_VANTLE", SoPreferences::getBool("PLX_LAUNCH_VANTLE", false));
  return on;
}

SoFieldContainer* SoVantleList::makeDefaultInstance(SoFieldContainer const* container) {
  SoType const type = container->getTypeId();
  for (auto const& instance : m_defaultInstances) {
    if (instance->getTypeId() == type && instance->getNumFields() == container->getNumFields())
      return instance;
  }
  auto* const made = static_cast<SoFieldContainer*>(type.createInstance());
  if (made) keepDefaultInstance(made);
  return made;
}

void SoVantleList::keepDefaultInstance(SoFieldContainer* instance) {
  for (auto const& kept : m_defaultInstances) {
    if (kept == instance) return;
  }
  m_defaultInstances.emplace_back(instance);
}

void SoVantleList::setNode(SoFieldContainer* container) {
  clear();
  if (!container) return;
  SoFieldContainer* const defaults = makeDefaultInstance(container);
  SoNodekitCatalog const* catalog = nullptr;
  if (container->isOfType(SoBaseKit::getClassTypeId())) {
    catalog = &static_cast<SoBaseKit*>(container)->getNodekitCatalog();
  }
  SoFieldData const* const fields = container->getFieldData();
  for (int i = 0; i < fields->getNumFields(); ++i) {
    int const part = catalog ? catalog->getPartNumber(fields->getFieldName(i)) : -1;
    if (part >= 0 ? !catalog->isPublic(part) : !isShown(fields->getField(container, i))) continue;
    auto* const item = new SoFieldItem(this, container, defaults, i, part >= 0);
    displayFieldItem(item);
    if (part >= 0 && !m_showCatalogParts) item->setHidden(true);
  }
}

bool SoVantleList::isShown(SoField const* field) {
  SoField::FieldType const kind = field->getFieldType();
  return kind != SoField::PRIVATE && kind != SoField::INTERNAL && kind != SoField::DEPRECATED;
}

void SoVantleList::displayFieldItem(SoFieldItem* item) {
  if (!item->getField()) return;
  SoFieldItem::Change const change = item->fetch();
  if (change == SoFieldItem::NOTHING) return;
  // Rows that stand in the order of their values find their new place.
  if (header()->sortIndicatorSection() == FIELD_VALUE_COLUMN) return item->emitDataChanged();
  // All changes until the next paint make one; rows that nobody sees cost nothing.
  if (item->m_shownInPaint != m_paint) return;
  QRect place = item->m_shownAt;
  if (change == SoFieldItem::VALUE) {
    place.setLeft(columnViewportPosition(FIELD_VALUE_COLUMN));
    place.setWidth(columnWidth(FIELD_VALUE_COLUMN));
  }
  viewport()->update(place);
}

// Whatever moves rows, or shows the list again, ends in a paint.
void SoVantleList::paintEvent(QPaintEvent* event) {
  ++m_paint;
  int const bottom = viewport()->height();
  for (QTreeWidgetItem* item = itemAt(0, 0); item; item = itemBelow(item)) {
    QRect const place = visualItemRect(item);
    if (place.top() >= bottom) break;
    auto* const row = static_cast<SoFieldItem*>(item);
    row->m_shownAt = QRect(0, place.top(), viewport()->width(), place.height());
    row->m_shownInPaint = m_paint;
  }
  QTreeWidget::paintEvent(event);
}

QIcon SoVantleList::ignoredIcon(bool ignored) { return ignored ? ignoreIcon() : QIcon(); }
QIcon SoVantleList::connectedIcon(bool connected) { return connected ? connectionIcon() : QIcon(); }

void SoVantleList::revert(SoField const* field) {
  if (field) {
    if (SoFieldItem* item = getListItemFromField(field)) displayFieldItem(item);
    return;
  }
  for (SoFieldItem* item : items()) displayFieldItem(item);
}

std::vector<SoFieldItem*> SoVantleList::items() const {
  std::vector<SoFieldItem*> rows;
  for (int i = 0; i < topLevelItemCount(); ++i) rows.push_back(static_cast<SoFieldItem*>(topLevelItem(i)));
  return rows;
}

SoFieldItem* SoVantleList::getListItemFromField(SoField const* field) const {
  for (auto row = m_rows.constFind(field); row != m_rows.cend() && row.key() == field; ++row) {
    if (row.value()->treeWidget()) return row.value();
  }
  return nullptr;
}

void SoVantleList::fieldSensorCB(void* list, SoSensor* sensor) {
  if (list && sensor)
    static_cast<SoVantleList*>(list)->revert(static_cast<SoFieldSensor*>(sensor)->getTriggerField());
}

SoFieldItem* SoVantleList::firstChild() const { return SoFieldItem::cast(topLevelItem(0)); }

SoFieldItem* SoVantleList::firstEnabledChild() const {
  for (int i = 0; i < topLevelItemCount(); ++i) {
    if (topLevelItem(i)->flags() & Qt::ItemIsEnabled) return SoFieldItem::cast(topLevelItem(i));
  }
  return nullptr;
}

SoFieldItem* SoVantleList::currentItem() const { return SoFieldItem::cast(QTreeWidget::currentItem()); }

void SoVantleList::takeItem(QTreeWidgetItem* item) {
  int const index = item ? indexOfTopLevelItem(item) : -1;
  if (index >= 0) takeTopLevelItem(index);
}

void SoVantleList::clear() {
  // The base class does not say that the current row goes.
  if (QTreeWidget::currentItem()) setCurrentItem(nullptr);
  QTreeWidget::clear();
}

void SoVantleList::setStyles(QColor const& defaultColor, QFont const& defaultFont, QColor const& changedColor,
                             QFont const& changedFont) {
  m_defaultColor = defaultColor;
  m_defaultFont = defaultFont;
  m_changedColor = changedColor;
  m_changedFont = changedFont;
  viewport()->update();
}

void SoVantleList::showChangedValues(bool on) {
  m_showChangedValues = on;
  for (SoFieldItem* item : items()) {
    if (!item->isDefault()) continue;
    if (on) {
      item->setHidden(true);
    } else if (m_showCatalogParts || !item->isCatalogPart()) {
      item->setHidden(false);
    }
  }
}

void SoVantleList::showCatalogPart(bool on) {
  m_showCatalogParts = on;
  for (SoFieldItem* item : items()) {
    if (!item->isCatalogPart()) continue;
    if (!on) {
      item->setHidden(true);
    } else if (!m_showChangedValues || !item->isDefault()) {
      item->setHidden(false);
    }
  }
}

void SoVantleList::setColumnWidth(int column, int width) {
  if (column < 0 || column >= columnCount()) return;
  int const before = columnWidth(column);
  m_settingWidth = true;
  // A last column that has been given a width keeps it.
  if (column == columnCount() - 1) header()->setStretchLastSection(false);
  QTreeWidget::setColumnWidth(column, width);
  m_settingWidth = false;
  if (columnWidth(column) != before) Q_EMIT columnWidthChanged(column, columnWidth(column));
}

void SoVantleList::headerRightClicked(QPoint const& pos) {
  QMenu menu(this);
  connect(&menu, &QMenu::triggered, this, &SoVantleList::toggleHeaderColumnVisibility);
  for (int column = IGNORED_COLUMN; column < columnCount(); ++column) {
    QAction* const action = menu.addAction(tr(menuNames[column - 1]));
    action->setCheckable(true);
    action->setChecked(columnWidth(column) != 0);
  }
  menu.exec(pos);
}

int SoVantleList::restoredWidth(int column) const {
  if (column == IGNORED_COLUMN) return 20;
  return QFontMetrics(header()->font()).horizontalAdvance(headerItem()->text(column)) + 10;
}

void SoVantleList::toggleHeaderColumnVisibility(QAction* toggledAction) {
  if (!toggledAction) return;
  for (int column = IGNORED_COLUMN; column < columnCount(); ++column) {
    if (toggledAction->text() != tr(menuNames[column - 1])) continue;
    if (columnWidth(column) != 0) {
      setColumnWidth(column, 0);
      return;
    }
    if (column != IGNORED_COLUMN) header()->setSectionResizeMode(column, QHeaderView::Interactive);
    setColumnWidth(column, restoredWidth(column));
    return;
  }
}
