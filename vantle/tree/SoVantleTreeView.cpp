#include "vantle/tree/SoVantleTreeView.h"

#include <QHeaderView>
#include <QResizeEvent>
#include <QScrollBar>
#include <QShortcut>

#include "kestrava/base/SoPath.h"
#include "kestrava/nodes/SoSelection.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/prefs/SoTreeViewPreferencesPage.h"
#include "vantle/prefs/SoTreeViewState.h"
#include "vantle/prefs/SoVantleStateManager.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/tree/SoGraphTopologyManager.h"
#include "vantle/tree/SoPickMenu.h"
#include "vantle/tree/SoReferencedNodeManager.h"
#include "vantle/tree/SoTreeContextMenu.h"
#include "vantle/tree/SoTreeViewItem.h"

namespace {

char const styleText[] = R"(
QTreeView { show-decoration-selected: 0; outline: 0; }
QTreeView::item { height: 27px; border: none; }
QTreeView::item:hover, QTreeView::branch:hover {
  background: qlineargradient(x1: 0, y1: 0, x2: 0, y2: 1, stop: 0 #e7effd, stop: 1 #cbdaf1);
}
QTreeView::item:selected:active, QTreeView::branch:selected:active {
  background: qlineargradient(x1: 0, y1: 0, x2: 0, y2: 1, stop: 0 #6ea1f1, stop: 1 #567dbc);
}
QTreeView::item:selected:!active, QTreeView::branch:selected:!active {
  background: qlineargradient(x1: 0, y1: 0, x2: 0, y2: 1, stop: 0 #6b9be8, stop: 1 #577fbf);
}
QTreeView::branch:has-siblings:!adjoins-item { border-image: url(:/Vantle_icons/Icons/vline.png) 0; }
QTreeView::branch:has-siblings:adjoins-item { border-image: url(:/Vantle_icons/Icons/branch-more.png) 0; }
QTreeView::branch:!has-children:!has-siblings:adjoins-item {
  border-image: url(:/Vantle_icons/Icons/branch-end.png) 0;
}
QTreeView::branch:has-children:closed { border-image: none; image: url(:/Vantle_icons/Icons/branch-closed.png); }
QTreeView::branch:has-children:open { border-image: none; image: url(:/Vantle_icons/Icons/branch-open.png); }
)";

/// Names may be as long as a line of text; the column shows their beginning.
constexpr int MAX_NAME_WIDTH = 400;

/// Of deeper rows the innermost levels are drawn: more than fit in a view.
constexpr int MAX_DRAWN_LEVELS = 100;

} // namespace

SoVantleTreeView::SoVantleTreeView(QWidget* parent, char const* name)
    : QTreeWidget(parent),
      m_references(std::make_unique<SoReferencedNodeManager>(this, nullptr)),
      m_topology(std::make_unique<SoGraphTopologyManager>(this)) {
  setObjectName(QString::fromLatin1(name ? name : "SoVantleTreeView"));
  setStyleSheet(QString::fromLatin1(styleText));
  setUniformRowHeights(true);
  setIconSize(QSize(16, 16));
  setSelectionMode(SingleSelection);
  setEditTriggers(NoEditTriggers);
  setSortingEnabled(false);
  setHorizontalScrollMode(ScrollPerPixel);

  setColumnCount(COLUMN_COUNT);
  setHeaderLabels({tr("Type"), tr("Name"), tr("Ref. Count"), QString(), QString()});
  setColumnWidth(TYPE_COLUMN, 200);
  setColumnWidth(NAME_COLUMN, 120);
  setColumnWidth(REFERENCE_COLUMN, 44);
  setColumnWidth(BOOKMARK_COLUMN, 24);
  // Columns are fitted to the rows in view; looking at more of them costs more than it gives.
  header()->setResizeContentsPrecision(0);

  connect(this, &QTreeWidget::currentItemChanged, this, &SoVantleTreeView::selectChange);
  connect(this, &QTreeWidget::itemClicked, this, &SoVantleTreeView::onItemClicked);
  m_contextMenu = new SoTreeContextMenu(this);
  setContextMenuPolicy(Qt::CustomContextMenu);
  header()->setContextMenuPolicy(Qt::PreventContextMenu); // the menu is one of rows
  setAcceptDrops(true);
  connect(this, &QTreeWidget::customContextMenuRequested, this, &SoVantleTreeView::onCustomContextMenu);
  connect(this, &QTreeView::expanded, this, &SoVantleTreeView::buildOpened);
  connect(this, &QTreeView::expanded, this, &SoVantleTreeView::applyFilter);
  connect(this, &QTreeWidget::itemExpanded, this, &SoVantleTreeView::resizeAllColumns);
  connect(this, &QTreeWidget::itemCollapsed, this, &SoVantleTreeView::resizeAllColumns);
  // Also when rows go by the base class's clear().
  connect(model(), &QAbstractItemModel::modelAboutToBeReset, this, [this] { m_references->clearNodeMap(); });
  new QShortcut(copyPathKey(), this, this, &SoVantleTreeView::copyPath, Qt::WidgetWithChildrenShortcut);
  followPalette();
  initTreeViewPreferences();
}

SoVantleTreeView::~SoVantleTreeView() {
  disconnect(this, nullptr, this, nullptr);
  disconnect(model(), nullptr, this, nullptr);
  setGraphSelection(nullptr);
  clear();
  m_topology.reset();
}

void SoVantleTreeView::setScene(SoNode*) { Q_EMIT newSceneGraph(); }

SoSelection* SoVantleTreeView::getGraphSelection() const {
  return static_cast<SoSelection*>(m_selection.get());
}

void SoVantleTreeView::setGraphSelection(SoSelection* selection) {
  SoSelectionPathCB* const callback = &SoVantleTreeView::showSelectedPath;
  if (SoSelection* old = getGraphSelection()) old->removeSelectionCallback(callback, this);
  m_topology->setRootNode(selection);
  m_references->setRootNode(selection);
  m_selection = selection;
  if (selection) selection->addSelectionCallback(callback, this);
}

void SoVantleTreeView::selectChange(QTreeWidgetItem* current, QTreeWidgetItem*) {
  SoTreeViewItem* const item = SoTreeViewItem::cast(current);
  if (!item || !item->isRowSelectable()) return;
  if (isPicking()) {
    showItem(item);
  } else {
    bool const follow = std::exchange(m_followInOverview, false);
    if (isAutoHighlight() && (!item->fromSubTreeField() || item->baseKitPart())) highlightPath(item);
    m_followInOverview = follow;
  }
  showInOverview(item);
}

void SoVantleTreeView::showInOverview(SoTreeViewItem* item) {
  if (!m_followInOverview || !VntServicesImpl::isInstance()) return;
  if (SoCommandManager* commands = VntServicesImpl::getImplInstance()->getCommandManager()) {
    commands->setNodeOverview(item, false);
  }
}

void SoVantleTreeView::refreshItem(SoTreeViewItem* item) {
  // Panels follow their nodes themselves; filling them anew would take a value from under the user's hands.
  // The highlight is a path and has to be made anew, unless there is none or it is about the entries of a menu.
  bool const isMarked = getGraphSelection() && getGraphSelection()->getNumSelected() > 0 && !m_pickMenu;
  if (isMarked && item == currentItem() && isAutoHighlight() &&
      (!item->fromSubTreeField() || item->baseKitPart())) {
    highlightPath(item);
  }
  viewport()->update();
}

void SoVantleTreeView::showItem(SoTreeViewItem* item) {
  ensureItemOpen(item);
  setCurrentItem(item);
  scrollToItem(item);
  resizeAllColumns(); // what is in sight now may be wider
}

void SoVantleTreeView::expandAll(QTreeWidgetItem* item) {
  if (!item) return;
  m_batch = true;
  // With a layout due anyway, expanding a row only notes it.
  scheduleDelayedItemsLayout();
  struct Step {
    QModelIndex index;
    int depth;
  };
  int depth = 0;
  for (QTreeWidgetItem* above = item->parent(); above; above = above->parent()) ++depth;
  std::vector<Step> steps{{indexFromItem(item), depth}};
  while (!steps.empty()) {
    Step const step = steps.back();
    steps.pop_back();
    int const count = model()->rowCount(step.index);
    if (count == 0 || step.depth >= MAX_OPEN_DEPTH) continue;
    expand(step.index);
    for (int i = count; i-- > 0;) steps.push_back({model()->index(i, 0, step.index), step.depth + 1});
  }
  m_batch = false;
  resizeAllColumns();
}

void SoVantleTreeView::scrollTo(QModelIndex const& index, ScrollHint hint) {
  std::vector<QModelIndex> above;
  for (QModelIndex up = index.parent(); up.isValid(); up = up.parent()) above.push_back(up);
  // Of a row that is too deep the deepest one above it that may be open.
  bool const tooDeep = above.size() > std::size_t{MAX_OPEN_DEPTH};
  QModelIndex const shown = tooDeep ? above[above.size() - MAX_OPEN_DEPTH] : index;
  if (tooDeep) above.erase(above.begin(), above.end() - MAX_OPEN_DEPTH + 1);
  // The base class would open them one by one, with a layout for each.
  openAll(above);
  QTreeWidget::scrollTo(shown, hint);
}

/// Opens rows that are given from the innermost outwards.
void SoVantleTreeView::openAll(std::vector<QModelIndex> const& rows) {
  if (std::all_of(rows.begin(), rows.end(), [this](QModelIndex const& row) { return isExpanded(row); }))
    return;
  m_batch = true;
  // With a layout due anyway, expanding a row only notes it.
  scheduleDelayedItemsLayout();
  for (std::size_t i = rows.size(); i-- > 0;) expand(rows[i]);
  m_batch = false;
  resizeAllColumns();
}

void SoVantleTreeView::scrollContentsBy(int dx, int dy) {
  QTreeWidget::scrollContentsBy(dx, dy);
  if (dy != 0) m_topRow = indexAt(QPoint(0, 0)).siblingAtColumn(0);
}

void SoVantleTreeView::updateGeometries() {
  QTreeWidget::updateGeometries();
  QRect const top = m_topRow.isValid() && verticalScrollBar()->value() > 0 ? visualRect(m_topRow) : QRect();
  // Of the same height as all others.
  if (!top.isEmpty() && top.top() != 0)
    verticalScrollBar()->setValue(verticalScrollBar()->value() + top.top() / top.height());
}

// The columns fit what is in sight, which is more in a taller view.
void SoVantleTreeView::resizeEvent(QResizeEvent* event) {
  QTreeWidget::resizeEvent(event);
  if (event->size().height() > event->oldSize().height()) resizeAllColumns();
}

void SoVantleTreeView::drawBranches(QPainter* painter, QRect const& rect, QModelIndex const& index) const {
  int depth = 0;
  for (QModelIndex up = index.parent(); up.isValid() && depth <= MAX_DRAWN_LEVELS; up = up.parent()) ++depth;
  if (depth <= MAX_DRAWN_LEVELS) return QTreeWidget::drawBranches(painter, rect, index);
  // The base class draws every level, those far to the left of the view too.
  QStyleOptionViewItem option;
  initViewItemOption(&option);
  option.rect = QRect(rect.right() + 1 - indentation(), rect.top(), indentation(), rect.height());
  QModelIndex level = index;
  for (int i = 0; i < MAX_DRAWN_LEVELS; ++i, level = level.parent()) {
    option.state = level.sibling(level.row() + 1, 0).isValid() ? QStyle::State_Sibling : QStyle::State_None;
    if (i == 0) option.state |= QStyle::State_Item;
    if (i == 0 && model()->hasChildren(index)) option.state |= QStyle::State_Children;
    if (i == 0 && isExpanded(index)) option.state |= QStyle::State_Open;
    style()->drawPrimitive(QStyle::PE_IndicatorBranch, &option, painter, this);
    option.rect.translate(-indentation(), 0);
  }
}

void SoVantleTreeView::ensureItemOpen(QTreeWidgetItem* item) {
  std::vector<QModelIndex> above;
  for (QTreeWidgetItem* up = item ? item->parent() : nullptr; up; up = up->parent())
    above.push_back(indexFromItem(up));
  if (above.size() <= std::size_t{MAX_OPEN_DEPTH}) openAll(above);
}

void SoVantleTreeView::resizeAllColumns() {
  if (m_batch || m_loading) return;
  for (int column = 0; column < COLUMN_COUNT; ++column) resizeColumnToContents(column);
  if (columnWidth(NAME_COLUMN) > MAX_NAME_WIDTH) setColumnWidth(NAME_COLUMN, MAX_NAME_WIDTH);
}

void SoVantleTreeView::resetReferences() {
  for (QTreeWidgetItemIterator it(this); *it; ++it) {
    if (SoTreeViewItem* item = SoTreeViewItem::cast(*it); item && item->showRefImage())
      item->setShowRefImage(false);
  }
  m_references->reset();
}

void SoVantleTreeView::showReference(SoTreeViewItem* item) {
  if (item) showItem(item);
}
void SoVantleTreeView::nextReference() { showReference(m_references->getNextRefItem(currentItem())); }
void SoVantleTreeView::previousReference() { showReference(m_references->getPreviousRefItem(currentItem())); }

void SoVantleTreeView::showAllReferences(SoTreeViewItem* item) {
  m_references->setReferencedList(item);
  QList<SoTreeViewItem*> const* const list = m_references->getAllReferencedItems(item);
  if (!list) return;
  for (SoTreeViewItem* row : *list) row->setShowRefImage(true);
}

void SoVantleTreeView::removeAllReferences(SoTreeViewItem* item) {
  QList<SoTreeViewItem*> const* const list = m_references->getAllReferencedItems(item);
  if (!list) return;
  for (SoTreeViewItem* row : *list) row->setShowRefImage(false);
  m_references->removeReferencedList(item);
}

void SoVantleTreeView::setState() {
  if (!m_state) m_state = std::make_unique<SoTreeViewState>(this);
  SoVantleStateManager::stateRegister(QStringLiteral("TreeViewState"), m_state.get());
}
