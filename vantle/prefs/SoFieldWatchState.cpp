#include "vantle/prefs/SoFieldWatchState.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QCursor>
#include <QMenu>
#include <memory>

#include "vantle/frame/SoCommandManager.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/inspect/SoFieldWatch.h"
#include "vantle/prefs/SoVantleStateManager.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/session/VntShellImpl.h"

namespace {

QAction* deleteAction() {
  SoVantleMainFrame* const frame =
      VntShellImpl::isInstance() ? VntShellImpl::getImplInstance()->getMainFrame() : nullptr;
  return frame ? frame->m_deleteAction : nullptr;
}
SoCommandManager* commandManager() {
  return VntServicesImpl::isInstance() ? VntServicesImpl::getImplInstance()->getCommandManager() : nullptr;
}

} // namespace

SoFieldWatchState::SoFieldWatchState(SoFieldWatch* watch) : m_watch(watch) {}
SoFieldWatchState::~SoFieldWatchState() { SoVantleStateManager::stateUnregister(this); }

void SoFieldWatchState::activate() {
  SoCommandManager* const commands = commandManager();
  if (!deleteAction() || !commands) return;
  connect(deleteAction(), &QAction::triggered, commands, [commands] { commands->deleteFieldWatch(); });
  connect(m_watch, &QTreeWidget::currentItemChanged, this, &SoFieldWatchState::updateItemFieldWatchAction);
  connect(m_watch, &SoFieldWatch::listCleared, this, &SoFieldWatchState::listClearedSlot);
  updateItemFieldWatchAction(m_watch->QTreeWidget::currentItem(), nullptr);
}

void SoFieldWatchState::desactivate() {
  disconnect(m_watch, &QTreeWidget::currentItemChanged, this, &SoFieldWatchState::updateItemFieldWatchAction);
  disconnect(m_watch, &SoFieldWatch::listCleared, this, &SoFieldWatchState::listClearedSlot);
  if (deleteAction() && commandManager())
    disconnect(deleteAction(), &QAction::triggered, commandManager(), nullptr);
}

void SoFieldWatchState::updateItemFieldWatchAction(QTreeWidgetItem* current, QTreeWidgetItem*) {
  if (QAction* action = deleteAction()) action->setEnabled(current);
}

void SoFieldWatchState::listClearedSlot() {
  if (QAction* action = deleteAction()) action->setEnabled(false);
}

void SoFieldWatchState::createContextPopupMenu(QContextMenuEvent* event) {
  SoCommandManager* const commands = commandManager();
  if (commands && m_watch->itemAt(event->pos())) {
    auto const menu = std::make_unique<QMenu>();
    menu->addAction(tr("&Delete"), commands, [commands] { commands->deleteFieldWatch(); });
    menu->exec(QCursor::pos());
  }
  event->accept();
}
