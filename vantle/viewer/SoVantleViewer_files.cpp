// Scene files: reading, writing, the recent ones.

#include <QAction>
#include <QFile>
#include <QFileDialog>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QStatusBar>

#include "kestrava/actions/SoSearchAction.h"
#include "kestrava/actions/SoWriteAction.h"
#include "kestrava/base/SbFileHelper.h"
#include "kestrava/base/SoReadError.h"
#include "kestrava/io/SoDB.h"
#include "kestrava/io/SoInput.h"
#include "kestrava/io/SoOutput.h"
#include "kestrava/io/SoSearchPath.h"
#include "kestrava/nodes/SoFile.h"
#include "kestrava/nodes/SoSeparator.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/session/LiveInput.h"
#include "vnt/QtText.h"
#include "vantle/session/VantleMessageBox.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/tree/SoVantleTreeView.h"
#include "vantle/tree/SoVantleTreeView.h"
#include "vantle/viewer/SoVantleViewer.h"

namespace {

/// Takes the toolkit's read errors for as long as it lives.
class ReadErrorHandler {
 public:
  ReadErrorHandler(SoErrorCB* callback, void* data)
      : m_callback(SoReadError::getHandlerCallback()), m_data(SoReadError::getHandlerData()) {
    SoReadError::setHandlerCallback(callback, data);
  }
  ~ReadErrorHandler() { SoReadError::setHandlerCallback(m_callback, m_data); }
  ReadErrorHandler(ReadErrorHandler const&) = delete;
  ReadErrorHandler& operator=(ReadErrorHandler const&) = delete;

 private:
  SoErrorCB* m_callback;
  void* m_data;
};

SoCommandManager* commands() { return VntServicesImpl::getImplInstance()->getCommandManager(); }

std::string trimmed(SbString const& text) { return toQString(text).trimmed().toStdString(); }

} // namespace

/// Only the first error of a read is kept.
void SoVantleViewer::readErrorCB(SoError const* error, void* viewer) {
  auto& kept = static_cast<SoVantleViewer*>(viewer)->m_readError;
  if (!kept) kept = std::make_unique<QString>(QString::fromStdU16String(error->getDebugString().toUtf16()));
}

void SoVantleViewer::displayReadError() {
  if (!m_readError) return;
  std::unique_ptr<QString> const text = std::move(m_readError);
  VantleMessageBox::warning(mainFrame(), tr("VantleReadFile"), *text);
}

SoVantleViewer::WriteFileType SoVantleViewer::checkHeaderType(SbString const& name) {
  SoInput in;
  if (!in.openFile(name.c_str(), true)) return FROM_HEADER;
  std::string const header = trimmed(in.getHeader());
  if (header == trimmed(SoOutput::getDefaultASCIIHeader())) return ASCII;
  if (header == trimmed(SoOutput::getDefaultBinaryHeader())) return BINARY;
  return FROM_HEADER;
}

void SoVantleViewer::setFileName(QString const& name) {
  m_fileName = name;
  mainFrame()->setWindowTitle(name.isEmpty() ? tr("Vantle") : tr("Vantle -- %1").arg(name));
}

void SoVantleViewer::fileLoad(QString const& name) {
  {
    ReadErrorHandler const handler(readErrorCB, this);
    LiveInput in(name, mainFrame());
    // A file whose own name holds a $ is meant as it stands.
    in.openFile(toSbString(name).c_str(), false, !QFile::exists(name));
    fileLoad(in);
  }
  displayReadError(); // the file could not even be opened
}

void SoVantleViewer::fileLoad(SoInput& in) {
  SbString const name = in.getCurFileName();
  if (name.empty()) return;
  // What the scene refers to is looked for beside it.
  SbString const folder = SbFileHelper::getDirName(name);
  bool const isNew = !SoSearchPath::contains(folder);
  SoInput::removeDirectory(folder);
  SoInput::addDirectoryLast(folder);

  SoRef<SoNode> root;
  {
    ReadErrorHandler const handler(readErrorCB, this);
    checkHeaderType(name);
    root = SoDB::readAll(&in);
    in.closeFile();
  }
  if (!root && isNew) SoInput::removeDirectory(folder);
  if (root) {
    if (isNew) {
      leaveSceneFolder();
      m_sceneFolder = folder;
    } else if (m_sceneFolder != folder) {
      leaveSceneFolder();
    }
    setFileName(toQString(name));
    setScene(root, true);
    updateRecentFiles(m_fileName);
    mainFrame()->m_reloadAction->setEnabled(true);
  }
  displayReadError();
}

void SoVantleViewer::leaveSceneFolder() {
  if (!m_sceneFolder.empty()) SoInput::removeDirectory(m_sceneFolder);
  m_sceneFolder = SbString();
}

void SoVantleViewer::fileLoadRecent(int index) {
  if (!okToClear()) return;
  QString const path = m_recentFiles.value(index);
  if (path.isEmpty() || !QFile::exists(path)) {
    VantleMessageBox::critical(mainFrame(), tr("Vantle -- Load File"),
                               tr("Can't load '%1'. \n This file doesn't exist anymore.").arg(path));
    return;
  }
  fileLoad(path);
}

void SoVantleViewer::updateRecentFiles(QString const& name) {
  m_recentFiles.removeAll(name);
  m_recentFiles.prepend(name);
  if (m_recentFiles.size() > MAX_RECENT_FILES) m_recentFiles.removeLast();
  updateRecentFilesMenu();
}

/// The frame made the actions, one a place.
void SoVantleViewer::updateRecentFilesMenu() {
  QList<QAction*> const actions = mainFrame()->getRecentFilesMenu()->actions();
  for (int i = 0; i < actions.size(); ++i) {
    bool const used = i < m_recentFiles.size();
    actions[i]->setVisible(used);
    if (!used) continue;
    QString path = m_recentFiles[i];
    actions[i]->setData(path);
    actions[i]->setText(tr("&%1 %2").arg(QString::number(i + 1), path.replace('&', "&&")));
  }
}

// Unsaved changes and closing.

QString SoVantleViewer::saveQuestion() const {
  return tr("Save changes ") + (m_fileName.isEmpty() ? QString() : tr("to %1").arg(m_fileName));
}

bool SoVantleViewer::okToClear() {
  if (!commands()->isChanged()) return true;
  QMessageBox box(QMessageBox::Information, tr("Vantle -- Unsaved Changes"), saveQuestion(),
                  QMessageBox::NoButton, mainFrame());
  // Roles would let the desktop put the buttons in an order of its own.
  QPushButton* const yes = box.addButton(tr("Yes"), QMessageBox::ActionRole);
  QPushButton* const no = box.addButton(tr("No"), QMessageBox::ActionRole);
  QPushButton* const cancel = box.addButton(tr("Cancel"), QMessageBox::ActionRole);
  box.setDefaultButton(yes);
  box.setEscapeButton(no); // Escape discards, on purpose
  box.exec();
  if (box.clickedButton() == yes) fileSave();
  return box.clickedButton() != cancel;
}

bool SoVantleViewer::fileClose() {
  if (!okToClear()) return false;
  SoRef<SoNode> const empty(new SoSeparator);
  leaveSceneFolder();
  setFileName(QString());
  setScene(empty, true);
  return true;
}

// Writing.

void SoVantleViewer::fileSave() {
  if (m_fileName.isEmpty()) return fileSaveAs(nullptr);
  if (!m_scene) return;
  SbString const name = toSbString(m_fileName);
  WriteFileType const type = checkHeaderType(name);
  // The next save asks for a name.
  if (type == FROM_HEADER || !fileWrite(m_scene, name, type, false)) m_fileName.clear();
}

void SoVantleViewer::fileSaveAs(SoNode* node) {
  bool const whole = !node;
  QString proposed = QStringLiteral("./Untitled File");
  if (!m_fileName.isEmpty()) proposed = m_fileName.left(m_fileName.lastIndexOf('.'));
  QString const ascii = tr("Kestrava Files [ascii] (*.kv *.kvz *.kv.gz)");
  QString const binary = tr("Kestrava Files [binary] (*.kv *.kvz *.kv.gz)");
  QString filter = ascii;
  QString name = QFileDialog::getSaveFileName(mainFrame(), tr("Vantle -- Save As"), proposed,
                                              ascii + ";;" + binary, &filter)
                     .trimmed();
  if (name.isEmpty()) return;
  if (!name.contains(QLatin1String(".kv"), Qt::CaseInsensitive)) name += QLatin1String(".kv");
  SoRef<SoNode> const written(whole ? m_scene.get() : node);
  if (!fileWrite(written, toSbString(name), filter == binary ? BINARY : ASCII, whole) || !whole) return;
  setFileName(name);
  updateRecentFiles(name);
}

bool SoVantleViewer::fileWrite(SoNode* node, SbString const& name, WriteFileType type, bool becomesScene) {
  if (!node) return false;
  if (type == FROM_HEADER) {
    type = checkHeaderType(name);
    return type != FROM_HEADER && fileWrite(node, name, type, becomesScene);
  }
  if (type == BINARY) detectExternalScenes(node);
  auto const complain = [this](QString const& text) {
    VantleMessageBox::warning(mainFrame(), tr("File Error Dialog"), text);
    return false;
  };
  SoOutput out;
  std::string const extension = SbFileHelper::getExtension(name).lower().str();
  out.setCompression(extension == "kvz" || extension == "gz");
  if (!out.openFile(name)) return complain(tr("Error creating file: ") + toQString(name));
  out.setHeader(type == BINARY ? SoOutput::getDefaultBinaryHeader() : SoOutput::getDefaultASCIIHeader());
  out.setBinary(type == BINARY);
  SoWriteAction(&out).apply(node);
  // Until here the old file stands untouched.
  if (!out.closeFile()) return complain(toQString(out.getErrorText()));
  QStringList const ignored = m_treeView->ignoredBelow(node);
  if (!ignored.isEmpty()) {
    VantleMessageBox::information(
        mainFrame(), tr("Vantle -- Ignored Nodes"),
        tr("%1 was written without what is set to ignored:\n%2").arg(toQString(name), ignored.join('\n')));
  }
  if (becomesScene) setScene(node, true);
  return true;
}

/// Names the files that the scene refers to and that can not be found; they are not part of what is written.
void SoVantleViewer::detectExternalScenes(SoNode* node) {
  static bool busy = false;
  if (busy) return;
  busy = true;
  QStringList missing;
  SoSearchAction search;
  search.setType(SoFile::getClassTypeId());
  search.setInterest(SoSearchAction::ALL);
  search.setSearchingAll(true);
  search.apply(node);
  for (SoPath* path : search.getPaths()) {
    auto const* const file = static_cast<SoFile const*>(path->getTail());
    if (!file->name.getValue().empty() && file->getFullName().empty())
      missing << toQString(file->name.getValue());
  }
  if (!missing.isEmpty()) {
    missing.removeDuplicates();
    mainFrame()->statusBar()->showMessage(tr("Missing files: %1").arg(missing.join(QStringLiteral(", "))));
  }
  busy = false;
}

// The text clipboard, export and printing have no work behind them.

void SoVantleViewer::cut() {}
void SoVantleViewer::copy() {}
void SoVantleViewer::paste() {}
void SoVantleViewer::printFile() {}
void SoVantleViewer::printQt() {}
