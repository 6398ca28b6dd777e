#include "vantle/frame/SoCommandManager.h"

#include <QAction>
#include <QStatusBar>
#include <QTextDocument>

#include "kestrava/base/SoError.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/inspect/SoVantleEdition.h"
#include "vantle/session/SoVantleImpl.h"
#include "vantle/session/VantleMessageBox.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/session/VntShellImpl.h"
#include "vantle/tree/SoVantleTreeView.h"
#include "vantle/viewer/SoVantleViewer.h"
#include "vnt/QtText.h"
#include "vnt/VntCommand.h"

namespace {

constexpr int MESSAGE_TIME = 3000; // milliseconds

/// A command's text may hold what the user typed, and that what looks like markup.
QString toolTip(QString const& text) {
  return Qt::mightBeRichText(text) ? QStringLiteral("<qt>%1</qt>").arg(text.toHtmlEscaped()) : text;
}

/// Empty texts bring back what Qt shows for the action by itself.
void describe(QAction* action, QString const& text) {
  action->setToolTip(toolTip(text));
  action->setStatusTip(text);
}

} // namespace

SoCommandManager::SoCommandManager() = default;
SoCommandManager::~SoCommandManager() = default;

void SoCommandManager::init() {
  m_commandHistory = std::make_unique<QList<VntCommand*>>();
  m_historyIndex = 0;
  m_overviewItems = std::make_unique<QList<SoTreeViewItem*>>();
  m_watchOrigins = std::make_unique<QMultiHash<QString, SoTreeViewItem*>>();
  m_nodeClipboard = nullptr;
  connect(VntServices::getInstance(), SIGNAL(selectedNodeChanged(SoFieldContainer*)), this,
          SLOT(selectedNodeChanged(SoFieldContainer*)));
}

void SoCommandManager::initCommandManager(bool) {
  SoVantleMainFrame* const frame = mainFrame();
  frame->m_undoAction->setEnabled(false);
  frame->m_redoAction->setEnabled(false);
  frame->m_reloadAction->setEnabled(false);
  m_edition = SoVantleViewer::getInstance()->getEdition();
  m_treeView = SoVantleViewer::getInstance()->getTreeView();
}

SoVantleMainFrame* SoCommandManager::mainFrame() const {
  return VntShellImpl::getImplInstance()->getMainFrame();
}

SoTreeViewItem* SoCommandManager::currentTreeItem() const {
  return m_treeView ? m_treeView->currentItem() : nullptr;
}

// The history.

void SoCommandManager::addCommand(VntCommand* command) {
  if (!command || !m_commandHistory) return;
  SoVantleImpl::Call const call;
  ++m_busyDepth;
  mainFrame()->m_redoAction->setEnabled(false);
  while (m_commandHistory->size() > m_historyIndex + 1) {
    VntCommand* const dropped = m_commandHistory->takeLast();
    // The same command may stand in the history several times; its last entry takes it along.
    if (dropped != command && !m_commandHistory->contains(dropped)) delete dropped;
  }
  mainFrame()->m_undoAction->setEnabled(true);
  m_commandHistory->append(command);
  m_historyIndex = m_commandHistory->size() - 1;
  command->execute();
  m_changed = true;
  endOperation();
}

void SoCommandManager::undo() {
  if (!m_commandHistory || m_commandHistory->isEmpty() || m_historyIndex < 0) return;
  SoVantleImpl::Call const call;
  ++m_busyDepth;
  mainFrame()->m_redoAction->setEnabled(true);
  VntCommand* const command = m_commandHistory->at(m_historyIndex);
  QString const text = toQString(command->getText());
  command->undo();
  if (--m_historyIndex < 0) mainFrame()->m_undoAction->setEnabled(false);
  endOperation();
  if (!text.isEmpty()) announce(tr("Undone: %1").arg(text));
}

void SoCommandManager::redo() {
  if (!m_commandHistory || m_historyIndex + 1 >= m_commandHistory->size()) return;
  SoVantleImpl::Call const call;
  ++m_busyDepth;
  mainFrame()->m_undoAction->setEnabled(true);
  VntCommand* const command = m_commandHistory->at(++m_historyIndex);
  QString const text = toQString(command->getText());
  command->redo();
  if (m_historyIndex + 1 == m_commandHistory->size()) mainFrame()->m_redoAction->setEnabled(false);
  endOperation();
  if (!text.isEmpty()) announce(tr("Redone: %1").arg(text));
}

void SoCommandManager::endOperation() {
  --m_busyDepth;
  processClearUndoCommand();
  describeHistory();
}

/// The actions keep their names and say what they would do.
void SoCommandManager::describeHistory() {
  auto const textOf = [this](int index) {
    bool const exists = m_commandHistory && index >= 0 && index < m_commandHistory->size();
    return exists ? toQString(m_commandHistory->at(index)->getText()) : QString();
  };
  QString const undone = textOf(m_historyIndex), redone = textOf(m_historyIndex + 1);
  describe(mainFrame()->m_undoAction, undone.isEmpty() ? QString() : tr("Undo: %1").arg(undone));
  describe(mainFrame()->m_redoAction, redone.isEmpty() ? QString() : tr("Redo: %1").arg(redone));
}

void SoCommandManager::announce(QString const& what) { mainFrame()->statusBar()->showMessage(what, MESSAGE_TIME); }

void SoCommandManager::clearUndoCommands() {
  m_clearPending = true;
  processClearUndoCommand();
}

// The commands are not destroyed: whoever made them may still hold them.
void SoCommandManager::processClearUndoCommand() {
  if (!m_clearPending || m_busyDepth > 0) return;
  if (m_commandHistory) m_commandHistory->clear();
  mainFrame()->m_undoAction->setEnabled(false);
  mainFrame()->m_redoAction->setEnabled(false);
  m_historyIndex = -1;
  m_changed = false;
  m_clearPending = false;
  describeHistory();
}

// Read errors.

void SoCommandManager::applySceneErrorCB(SoError const* error, void* manager) {
  auto& pending = static_cast<SoCommandManager*>(manager)->m_pendingReadError;
  if (!pending) {
    pending = std::make_unique<QString>(QString::fromStdU16String(error->getDebugString().toUtf16()));
  }
}

void SoCommandManager::displayError() {
  if (!m_pendingReadError) return;
  // Taken first: the box lets events in, and with them perhaps the next read.
  std::unique_ptr<QString> const text = std::move(m_pendingReadError);
  VantleMessageBox::warning(mainFrame(), tr("VantleReadFile"), *text);
}
