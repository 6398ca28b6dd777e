#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QPointer>

#include "kestrava/nodes/SoNode.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/prefs/SoTreeViewState.h"
#include "vantle/prefs/SoVantleStateManager.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/session/VntShellImpl.h"
#include "vantle/tree/SoTreeContextMenu.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"

// The context menu.

QMenu* SoVantleTreeView::getContextMenu() const { return m_contextMenu; }

bool SoVantleTreeView::viewportEvent(QEvent* event) {
  if (event->type() == QEvent::ContextMenu) {
    // Under X11 the request comes with the press. The menu opens where the button is let go.
    bool const byMouse = static_cast<QContextMenuEvent*>(event)->reason() == QContextMenuEvent::Mouse;
    if (byMouse && (QGuiApplication::mouseButtons() & Qt::RightButton)) {
      m_menuRequested = true;
      event->accept();
      return true;
    }
  }
  return QTreeWidget::viewportEvent(event);
}

/// On the screen: where a mouse button was let go last, over whatever row.
QPoint SoVantleTreeView::menuPosition() const {
  if (m_lastReleasePos) return *m_lastReleasePos;
  QRect const row = visualItemRect(currentItem()).intersected(viewport()->rect());
  return viewport()->mapToGlobal(row.isEmpty() ? viewport()->rect().center()
                                               : QPoint(row.left(), row.bottom() + 1));
}

void SoVantleTreeView::onCustomContextMenu(QPoint const&) {
  SoTreeViewItem* const item = currentItem();
  if (!item || !(item->flags() & Qt::ItemIsEnabled)) return;
  if (VntShellImpl::isInstance()) SoVantleStateManager::setCurrentState(QStringLiteral("TreeViewState"));
  if (m_state) m_state->updateActions();
  // The menus of plug-ins are about the selected node. Who is told of it may change the tree.
  QPersistentModelIndex const row(indexFromItem(item));
  VntServices* const services = VntServices::getInstance();
  if (services && services->getSelectedNode() != item->getNode()) services->setSelectedNode(item->getNode());
  if (!row.isValid() || currentItem() != item) return;

  m_contextMenu->fill(item);
  if (m_contextMenu->isEmpty()) return;
  // The entries are about the current row: when another one becomes that, this menu is not about it.
  auto const moved =
      connect(this, &QTreeWidget::currentItemChanged, m_contextMenu, [menu = m_contextMenu] { menu->close(); });
  auto const reset =
      connect(model(), &QAbstractItemModel::modelReset, m_contextMenu, [menu = m_contextMenu] { menu->close(); });
  // The menu may end with the session; nothing of the view is touched after it.
  m_contextMenu->exec(menuPosition());
  disconnect(moved);
  disconnect(reset);
}

void SoVantleTreeView::addNode() {
  if (!VntServicesImpl::isInstance()) return;
  if (SoCommandManager* commands = VntServicesImpl::getImplInstance()->getCommandManager()) {
    commands->treeAddNode(currentItem());
  }
}

/// A node of a type under the current row.
void SoVantleTreeView::addNode(QString const&) { addNode(); }
