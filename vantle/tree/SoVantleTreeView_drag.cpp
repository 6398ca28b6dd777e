#include <QApplication>
#include <QDrag>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>

#include "kestrava/base/SoChildList.h"
#include "kestrava/nodes/SoNode.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"

// Dragging rows.

namespace {

char const MIME_TEXT[] = "Vantle/Drop";

/// Sees the space bar while something is dragged: the drag keeps all keys to itself, but for filters that come
/// later than its own.
class SpaceWatch : public QObject {
 public:
  explicit SpaceWatch(std::function<void(bool)> held) : m_held(std::move(held)) {
    QMetaObject::invokeMethod(
        this, [this] { QCoreApplication::instance()->installEventFilter(this); }, Qt::QueuedConnection);
  }
  bool eventFilter(QObject* watched, QEvent* event) override {
    bool const pressed = event->type() == QEvent::KeyPress;
    if (pressed || event->type() == QEvent::KeyRelease) {
      auto const* const key = static_cast<QKeyEvent*>(event);
      if (key->key() == Qt::Key_Space && !key->isAutoRepeat()) m_held(pressed);
    }
    return QObject::eventFilter(watched, event);
  }

 private:
  std::function<void(bool)> m_held;
};

} // namespace

SoTreeViewItem* SoVantleTreeView::draggedItem() const {
  return SoTreeViewItem::cast(itemFromIndex(m_drag.row));
}

void SoVantleTreeView::mousePressEvent(QMouseEvent* event) {
  SoTreeViewItem* const item = itemAt(event->position().toPoint());
  m_menuRequested = false;
  m_drag.row = indexFromItem(item);
  m_drag.pressPos = event->position().toPoint();
  m_drag.isArmed = item && item != firstChild();
  QTreeWidget::mousePressEvent(event);
}

void SoVantleTreeView::mouseMoveEvent(QMouseEvent* event) {
  if (!m_drag.isArmed || !(event->buttons() & Qt::LeftButton)) return QTreeWidget::mouseMoveEvent(event);
  // The base class would select what the pointer comes over on its way.
  QPoint const way = event->position().toPoint() - m_drag.pressPos;
  if (way.manhattanLength() >= QApplication::startDragDistance()) dragRow();
}

/// Returns when the row is dropped.
void SoVantleTreeView::dragRow() {
  m_drag.isArmed = false;
  if (!draggedItem()) return;
  auto* const data = new QMimeData;
  data->setText(QLatin1String(MIME_TEXT));
  auto* const drag = new QDrag(this);
  drag->setMimeData(data);
  drag->setPixmap(QPixmap(QStringLiteral(":/Vantle_icons/Icons/drag.png")));
  QPointer<SoVantleTreeView> const self(this);
  SpaceWatch const watch([self](bool held) {
    if (self) self->m_spaceHeld = held;
  });
  m_drag.isRunning = true;
  drag->exec(Qt::MoveAction);
  if (!self) return;
  m_drag.isRunning = false;
  forgetDrag();
}

void SoVantleTreeView::forgetDrag() {
  m_drag.row = QModelIndex();
  m_drag.isArmed = false;
  m_drag.refused.clear();
  setDropTarget(nullptr);
}

/// With the view, which may go because the session ends, ends what is dragged from it.
void SoVantleTreeView::hideEvent(QHideEvent* event) {
  if (m_drag.isRunning) QDrag::cancel();
  QTreeWidget::hideEvent(event);
}

bool SoVantleTreeView::isRowDrag(QDropEvent const* event) const {
  return event->mimeData()->text() == QLatin1String(MIME_TEXT) && draggedItem();
}

/// The node and everything that can be reached from it, also what no row shows.
std::unordered_set<SoNode const*> SoVantleTreeView::nodesBelow(SoNode* top) {
  std::unordered_set<SoNode const*> found{top};
  std::vector<SoNode*> waiting{top};
  std::vector<ChildNode> children;
  while (!waiting.empty()) {
    SoNode* const node = waiting.back();
    waiting.pop_back();
    children.clear();
    fieldChildrenOf(node, children);
    for (ChildNode const& child : children) {
      if (found.insert(child.node).second) waiting.push_back(child.node);
    }
    SoChildList const* const list = node->getChildren();
    for (int i = 0, n = list ? list->getLength() : 0; i < n; ++i) {
      if (found.insert((*list)[i]).second) waiting.push_back((*list)[i]);
    }
  }
  return found;
}

/// The row that would take what is dragged; null where it is refused: a node is never moved into its own graph.
SoTreeViewItem* SoVantleTreeView::dropTargetAt(QPoint const& pos) const {
  SoTreeViewItem* const target = itemAt(pos);
  if (!target || target == draggedItem() || m_drag.refused.contains(target->getNode())) return nullptr;
  return target;
}

void SoVantleTreeView::setDropTarget(SoTreeViewItem* item) {
  QModelIndex const target = indexFromItem(item);
  if (m_drag.target == target) return;
  m_drag.target = target;
  viewport()->update();
}

void SoVantleTreeView::dragEnterEvent(QDragEnterEvent* event) {
  if (!isRowDrag(event)) return event->ignore();
  // Once for all moves; the drop itself looks again.
  m_drag.refused = nodesBelow(draggedItem()->getNode());
  event->setDropAction(Qt::MoveAction);
  event->accept();
}

void SoVantleTreeView::dragMoveEvent(QDragMoveEvent* event) {
  QTreeWidget::dragMoveEvent(event); // scrolls near the edges
  m_drag.pos = event->position().toPoint();
  SoTreeViewItem* const target = isRowDrag(event) ? dropTargetAt(m_drag.pos) : nullptr;
  setDropTarget(target);
  event->setDropAction(Qt::MoveAction);
  event->setAccepted(target);
}

// The rows move along under a pointer that stays.
void SoVantleTreeView::verticalScrollbarValueChanged(int value) {
  QTreeWidget::verticalScrollbarValueChanged(value);
  if (m_drag.isRunning && m_drag.target.isValid()) setDropTarget(dropTargetAt(m_drag.pos));
}

void SoVantleTreeView::dragLeaveEvent(QDragLeaveEvent* event) {
  setDropTarget(nullptr);
  QTreeWidget::dragLeaveEvent(event);
}

void SoVantleTreeView::dropEvent(QDropEvent* event) {
  // The base class forgets where the pointer was over the rows; it does not take the drop.
  QDragLeaveEvent leave;
  QTreeWidget::dragLeaveEvent(&leave);
  SoTreeViewItem* const dragged = isRowDrag(event) ? draggedItem() : nullptr;
  if (dragged) m_drag.refused = nodesBelow(dragged->getNode());
  SoTreeViewItem* const target = dragged ? dropTargetAt(event->position().toPoint()) : nullptr;
  forgetDrag();
  event->setDropAction(Qt::MoveAction);
  event->setAccepted(target);
  if (!target || !VntServicesImpl::isInstance()) return;
  if (SoCommandManager* commands = VntServicesImpl::getImplInstance()->getCommandManager()) {
    commands->treeMoveNode(dragged, target, m_spaceHeld);
  }
}

/// Frames the row that a drop would go to.
void SoVantleTreeView::drawRow(QPainter* painter, QStyleOptionViewItem const& option,
                               QModelIndex const& index) const {
  QTreeWidget::drawRow(painter, option, index);
  if (index.row() != m_drag.target.row() || index.siblingAtColumn(0) != m_drag.target) return;
  painter->save();
  painter->setPen(QPen(palette().color(QPalette::Highlight), 2));
  painter->setBrush(Qt::NoBrush);
  painter->drawRect(QRect(0, option.rect.y(), viewport()->width(), option.rect.height()).adjusted(1, 1, -1, -1));
  painter->restore();
}
