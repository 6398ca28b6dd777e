#include <QCursor>
#include <QDesktopServices>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QUrl>

#include "kestrava/nodes/SoNode.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/prefs/SoVantleStateManager.h"
#include "vnt/QtText.h"
#include "vantle/session/VantleManual.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"
#include "vnt/VntShell.h"

// Mouse, keys and focus.

namespace {

/// The class pages of the reference manual.
constexpr char CLASS_PAGES[] = "/refmans/10.3/RefManCpp/class";

SoCommandManager* commandManager() {
  return VntServicesImpl::isInstance() ? VntServicesImpl::getImplInstance()->getCommandManager() : nullptr;
}

} // namespace

void SoVantleTreeView::onItemClicked(QTreeWidgetItem* clicked, int column) {
  SoTreeViewItem* const item = SoTreeViewItem::cast(clicked);
  if (!item) return;
  if (VntServicesImpl::isInstance()) VntServicesImpl::getImplInstance()->setSelectedNode(item->getNode());
  if (column == BOOKMARK_COLUMN && m_lastButton == Qt::LeftButton) item->setBookmarked(!item->isBookmarked());
}

void SoVantleTreeView::onCustomContextMenu(QPoint const&) {
  SoTreeViewItem* const item = currentItem();
  if (!item || !(item->flags() & Qt::ItemIsEnabled)) return;
  // The menus of plug-ins are about the selected node.
  VntServices* const services = VntServices::getInstance();
  if (services && services->getSelectedNode() != item->getNode()) services->setSelectedNode(item->getNode());
  buildContextMenu(item);
  if (!m_contextMenu->isEmpty()) m_contextMenu->exec(QCursor::pos());
}

/// The menus stay those of the plug-ins, which may take them away while this one is open.
void SoVantleTreeView::buildContextMenu(SoTreeViewItem* item) {
  m_contextMenu->clear();
  if (!VntShell::getInstance()) return;
  for (QMenu* menu : VntShell::getInstance()->getContextualMenus(item->getNode()->getTypeId())) {
    m_contextMenu->addMenu(menu);
  }
}

void SoVantleTreeView::mouseReleaseEvent(QMouseEvent* event) {
  m_lastButton = event->button();
  m_lastReleasePos = event->globalPosition().toPoint();
  QTreeWidget::mouseReleaseEvent(event);
}

void SoVantleTreeView::focusInEvent(QFocusEvent* event) {
  SoVantleStateManager::setCurrentState(QStringLiteral("TreeViewState"));
  QTreeWidget::focusInEvent(event);
}

bool SoVantleTreeView::eventFilter(QObject* watched, QEvent* event) {
  // The 3D view belongs to the tree: what the shared actions do there they do to rows.
  bool const own = watched == this || watched == viewport() || isAncestorOf(qobject_cast<QWidget*>(watched));
  if (!own && event->type() == QEvent::FocusIn)
    SoVantleStateManager::setCurrentState(QStringLiteral("TreeViewState"));
  return QTreeWidget::eventFilter(watched, event);
}

void SoVantleTreeView::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Space) m_spaceHeld = true;
  if (event->key() == Qt::Key_Asterisk) {
    if (SoCommandManager* commands = commandManager()) {
      commands->expandAll(currentItem());
    } else {
      expandAll(currentItem());
    }
    // The base class would do the same once more, row by row, and then look for a row that begins with "*".
    event->accept();
    return;
  }
  QTreeWidget::keyPressEvent(event);
}

// Columns that were fitted before the view had its size saw hardly any rows.
void SoVantleTreeView::showEvent(QShowEvent* event) {
  QTreeWidget::showEvent(event);
  resizeAllColumns();
}

void SoVantleTreeView::keyReleaseEvent(QKeyEvent* event) {
  SoTreeViewItem* const item = currentItem();
  if (event->key() == Qt::Key_Space) m_spaceHeld = false;
  if (event->key() == Qt::Key_F1 && item) openReferencePage(item);
  if (event->key() == Qt::Key_Delete && item && commandManager()) commandManager()->treeDeleteNode(item);
  QTreeWidget::keyReleaseEvent(event);
}

QString SoVantleTreeView::referencePageName(QString const& typeName) {
  QString page;
  for (QChar const letter : typeName) {
    if (letter.isUpper()) {
      page += QLatin1Char('_');
      page += letter.toLower();
    } else {
      page += letter;
    }
  }
  for (char const* prefix : {"_po_", "_so_", "_mo"}) {
    if (page.contains(QLatin1String(prefix))) return page;
  }
  return QStringLiteral("_so") + page;
}

void SoVantleTreeView::openReferencePage(SoTreeViewItem* item) {
  QString const page = referencePageName(toQString(item->getNode()->getTypeId().getName().toString()));
  QDesktopServices::openUrl(
      QUrl(VantleManual::page(QLatin1String(CLASS_PAGES) + page + QLatin1String(".html"))));
}
