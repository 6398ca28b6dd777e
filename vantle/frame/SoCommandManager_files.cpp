// The slots of the file and help menus.

#include <QAction>
#include <QDesktopServices>
#include <QFileDialog>
#include <QUrl>

#include "kestrava/base/SbFileHelper.h"
#include "vantle/frame/SoAboutVantle.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/inspect/SoFieldWatch.h"
#include "vantle/inspect/SoTabNodeOverview.h"
#include "vantle/inspect/SoVantleEdition.h"
#include "vantle/session/LiveInput.h"
#include "vnt/QtText.h"
#include "vantle/session/SoVantleImpl.h"
#include "vantle/session/VantleManual.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"
#include "vantle/viewer/SoVantleViewer.h"

void SoCommandManager::openFile() {
  QString const name = QFileDialog::getOpenFileName(
      mainFrame(), tr("open file"), toQString(SbFileHelper::expandString("$KSVHOME/data/models")),
      tr("Kestrava files (*.kv *.kvz *.kv.gz)") + ";;" + tr("All files (*.*)"));
  if (name.isEmpty()) return;
  LiveInput in(name, mainFrame());
  if (in.openFile(toSbString(name).c_str())) SoVantleViewer::getInstance()->fileLoad(in);
}

void SoCommandManager::openFileRecent() {
  if (auto* const action = qobject_cast<QAction*>(sender())) {
    SoVantleViewer::getInstance()->fileLoad(action->data().toString());
  }
}

void SoCommandManager::reloadFile() { SoVantleViewer::getInstance()->fileLoadRecent(0); }
void SoCommandManager::newFile() { SoVantleViewer::getInstance()->setScene(nullptr, true); }

// The history goes before anything is written, and stays gone when the save is cancelled or fails.
void SoCommandManager::saveFile() {
  clearUndoCommands();
  SoVantleViewer::getInstance()->fileSave();
}

void SoCommandManager::saveAsFile() {
  clearUndoCommands();
  SoVantleViewer::getInstance()->fileSaveAs(nullptr);
}

void SoCommandManager::closeFile() {
  if (SoVantleViewer::getInstance()->fileClose()) mainFrame()->m_reloadAction->setEnabled(false);
}

void SoCommandManager::saveSubSceneGraph(SoTreeViewItem* item) {
  if (!item) item = currentTreeItem();
  if (item && item->getNode()) SoVantleViewer::getInstance()->fileSaveAs(item->getNode());
}

void SoCommandManager::closeApp() { mainFrame()->close(); }

void SoCommandManager::exitApp() {
  SoVantleViewer::getInstance()->saveMainFrameSettings();
  m_edition->getTabNodeOverview()->savePreferences();
  m_edition->getFieldWatch()->savePreferences();
  // Not now: this runs inside a slot of the frame that would be torn down.
  SoVantleImpl::stop(false);
}

void SoCommandManager::printFile() { SoVantleViewer::getInstance()->printFile(); }
void SoCommandManager::printQt() { SoVantleViewer::getInstance()->printQt(); }
void SoCommandManager::cut() { SoVantleViewer::getInstance()->cut(); }
void SoCommandManager::copy() { SoVantleViewer::getInstance()->copy(); }
void SoCommandManager::paste() { SoVantleViewer::getInstance()->paste(); }

void SoCommandManager::setScene(SoNode* root, bool clearUndoCommand) {
  m_edition->clearScene();
  SoVantleViewer::getInstance()->setScene(root, clearUndoCommand);
}

void SoCommandManager::launchAboutVantleFrame() { SoAboutVantle(mainFrame()).exec(); }

void SoCommandManager::launchVantleHelpViewer() {
  QDesktopServices::openUrl(QUrl(VantleManual::page("/refmans/10.3/RefManCpp/toolsvantle.html")));
}
