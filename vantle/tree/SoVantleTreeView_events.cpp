#include <QDesktopServices>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>
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
constexpr int MESSAGE_TIME = 10000; // milliseconds; an address wants to be read

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

void SoVantleTreeView::mouseReleaseEvent(QMouseEvent* event) {
  m_lastButton = event->button();
  m_lastReleasePos = event->globalPosition().toPoint();
  m_drag.row = QModelIndex();
  m_drag.isArmed = false;
  bool const wantsMenu = event->button() == Qt::RightButton && std::exchange(m_menuRequested, false);
  QPoint const pos = event->position().toPoint();
  QPointer<SoVantleTreeView> const self(this);
  QTreeWidget::mouseReleaseEvent(event);
  if (self && wantsMenu) Q_EMIT customContextMenuRequested(pos);
}

void SoVantleTreeView::focusInEvent(QFocusEvent* event) {
  SoVantleStateManager::setCurrentState(QStringLiteral("TreeViewState"));
  QTreeWidget::focusInEvent(event);
}

// What is released elsewhere is not told here.
void SoVantleTreeView::focusOutEvent(QFocusEvent* event) {
  m_pressedKey = 0;
  if (!m_drag.isRunning) m_spaceHeld = false;
  QTreeWidget::focusOutEvent(event);
}

bool SoVantleTreeView::eventFilter(QObject* watched, QEvent* event) {
  // The 3D view belongs to the tree: what the shared actions do there they do to rows.
  bool const own = watched == this || watched == viewport() || isAncestorOf(qobject_cast<QWidget*>(watched));
  if (!own && event->type() == QEvent::FocusIn)
    SoVantleStateManager::setCurrentState(QStringLiteral("TreeViewState"));
  return QTreeWidget::eventFilter(watched, event);
}

void SoVantleTreeView::keyPressEvent(QKeyEvent* event) {
  m_pressedKey = event->key();
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
  // A key that is held sends releases too.
  if (event->isAutoRepeat()) return QTreeWidget::keyReleaseEvent(event);
  // One whose press went elsewhere, perhaps to a shortcut, is not meant for the rows.
  bool const wasPressed = std::exchange(m_pressedKey, 0) == event->key();
  SoTreeViewItem* const item = currentItem();
  if (event->key() == Qt::Key_Space) m_spaceHeld = false;
  QPointer<SoVantleTreeView> const self(this);
  if (event->key() == Qt::Key_F1 && wasPressed && item) openReferencePage(item);
  if (event->key() == Qt::Key_Delete && wasPressed && item && commandManager())
    commandManager()->treeDeleteNode(item);
  if (self) QTreeWidget::keyReleaseEvent(event);
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
  QString const address = VantleManual::page(QLatin1String(CLASS_PAGES) + page + QLatin1String(".html"));
  if (QDesktopServices::openUrl(QUrl(address)) || !VntShell::getInstance()) return;
  VntShell::getInstance()->showStatusBarMessage(toSbString(tr("No browser could be opened for %1.").arg(address)),
                                                MESSAGE_TIME);
}
