#include "vantle/prefs/SoTreeViewState.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QCursor>
#include <QMenu>
#include <memory>

#include "kestrava/nodes/SoFile.h"
#include "kestrava/nodes/SoWWWInline.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/prefs/SoVantleStateManager.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/session/VntShellImpl.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"

namespace {

// A state lives and works while its panel does, which is longer than the services live.
SoVantleMainFrame* mainFrame() {
  return VntShellImpl::isInstance() ? VntShellImpl::getImplInstance()->getMainFrame() : nullptr;
}
SoCommandManager* commandManager() {
  return VntServicesImpl::isInstance() ? VntServicesImpl::getImplInstance()->getCommandManager() : nullptr;
}

} // namespace

SoTreeViewState::SoTreeViewState(SoVantleTreeView* view) : m_view(view) {}
SoTreeViewState::~SoTreeViewState() { SoVantleStateManager::stateUnregister(this); }

void SoTreeViewState::activate() {
  SoVantleMainFrame* const frame = mainFrame();
  SoCommandManager* const commands = commandManager();
  if (!frame || !commands) return;
  connect(m_view, &QTreeWidget::currentItemChanged, this, &SoTreeViewState::updateItemTreeViewAction);
  connect(frame->m_deleteAction, &QAction::triggered, commands, [commands] { commands->treeDeleteNode(); });
  for (QAction* action :
       {frame->m_showAllReferencesAction, frame->m_hideAllReferencesAction, frame->m_nextReferenceAction,
        frame->m_previousReferenceAction, frame->m_ignoreEnableAction, frame->m_deleteAction}) {
    action->setEnabled(false);
  }
  // What these do to the current row changes what can be done to it next.
  for (QAction* action :
       {frame->m_showAllReferencesAction, frame->m_hideAllReferencesAction, frame->m_ignoreEnableAction}) {
    connect(action, &QAction::triggered, this, &SoTreeViewState::updateActions, Qt::UniqueConnection);
  }
  updateActions();
}

void SoTreeViewState::updateActions() { updateItemTreeViewAction(m_view->currentItem(), nullptr); }

void SoTreeViewState::desactivate() {
  disconnect(m_view, &QTreeWidget::currentItemChanged, this, &SoTreeViewState::updateItemTreeViewAction);
  SoVantleMainFrame* const frame = mainFrame();
  if (!frame) return;
  for (QAction* action :
       {frame->m_showAllReferencesAction, frame->m_hideAllReferencesAction, frame->m_ignoreEnableAction}) {
    disconnect(action, &QAction::triggered, this, nullptr);
  }
  if (commandManager()) disconnect(frame->m_deleteAction, &QAction::triggered, commandManager(), nullptr);
}

void SoTreeViewState::updateItemTreeViewAction(QTreeWidgetItem* current, QTreeWidgetItem*) {
  SoTreeViewItem const* const item = SoTreeViewItem::cast(current);
  SoVantleMainFrame* const frame = mainFrame();
  if (!item || !frame) return;
  bool const shown = item->showRefImage();
  frame->m_showAllReferencesAction->setEnabled(item->getRefCount() > 1 && !shown);
  frame->m_hideAllReferencesAction->setEnabled(shown);
  frame->m_nextReferenceAction->setEnabled(shown);
  frame->m_previousReferenceAction->setEnabled(shown);
  SoNode const* const node = item->getNode();
  bool const external =
      node && (node->isOfType(SoFile::getClassTypeId()) || node->isOfType(SoWWWInline::getClassTypeId()));
  frame->m_ignoreEnableAction->setEnabled(!item->baseKitPart() && item->parent() && !external);
  frame->m_deleteAction->setEnabled(true);
}

void SoTreeViewState::createContextPopupMenu(QContextMenuEvent* event) {
  SoVantleMainFrame* const frame = mainFrame();
  SoCommandManager* const commands = commandManager();
  SoTreeViewItem const* const item = m_view->itemAt(event->pos());
  if (!frame || !commands) return;
  auto const menu = std::make_unique<QMenu>();
  bool const part = item && item->baseKitPart();
  if (item && (item->flags() & Qt::ItemIsEnabled) && !item->isIgnored()) {
    menu->addAction(tr("Expand All"), commands, [commands] { commands->expandAll(); });
    menu->addAction(tr("Add to Node Overview"), commands, [commands] { commands->setNodeOverview(); });
    menu->addAction(tr("Add Node"), commands, [commands] { commands->treeAddNode(); });
    menu->addAction(tr("&Save scene graph"), commands, [commands] { commands->saveSubSceneGraph(); });
    menu->addAction(tr("&Delete"), commands, [commands] { commands->treeDeleteNode(); });
    if (!part) {
      menu->addSeparator();
      menu->addAction(frame->m_ignoreEnableAction);
    }
    if (item->getRefCount() > 1) {
      menu->addSeparator();
      menu->addAction(frame->m_showAllReferencesAction);
    }
    if (item->showRefImage()) menu->addAction(frame->m_hideAllReferencesAction);
  } else if (item && !part) {
    menu->addAction(frame->m_ignoreEnableAction);
  }
  if (!menu->isEmpty()) menu->exec(QCursor::pos());
}
