#include "vantle/frame/SoVantleMainFrame.h"

#include <QAction>
#include <QCloseEvent>
#include <QMenuBar>
#include <QMimeData>
#include <QMouseEvent>
#include <QStatusBar>
#include <QToolBar>
#include <QUrl>
#include <QWindow>

#include "kestrava/io/SoDB.h"
#include "kestrava/io/SoInput.h"
#include "kestrava/nodes/SoWWWInline.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/frame/SoFindBox.h"
#include "vantle/frame/SoTreeStatus.h"
#include "vantle/prefs/SoVantleStateManager.h"
#include "vantle/session/LiveInput.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/tree/SoVantleTreeView.h"
#include "vantle/viewer/SoVantleViewer.h"
#include "vnt/QtText.h"

SoVantleMainFrame::SoVantleMainFrame(QWidget* parent, char const* name) : QMainWindow(parent) {
  setObjectName(QString::fromUtf8(name));
}

SoVantleMainFrame::SoVantleMainFrame(unsigned long long nativeWindow, char const* name) : QMainWindow() {
  setObjectName(QString::fromUtf8(name));
  if (!nativeWindow) return;
  // Qt 6 gives a widget a window of its own, whatever it is told at its creation. So the window manager is
  // told: this window stays above the host's, and is put away with it.
  // Under X11 only windows of this type tell it.
  setWindowFlags(Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowMinMaxButtonsHint |
                 Qt::WindowCloseButtonHint);
  create();
  m_hostWindow.reset(QWindow::fromWinId(static_cast<WId>(nativeWindow)));
  windowHandle()->setTransientParent(m_hostWindow.get());
}

SoVantleMainFrame::~SoVantleMainFrame() {
  delete m_bookmarkToolbar;
  delete m_editToolbar;
  delete m_fileToolbar;
  delete m_filterToolbar;
  delete m_findBox;
  delete m_searchToolbar;
  // A host may have set its own meanwhile.
  if (SoWWWInline::getFetchURLData() == this) SoWWWInline::setFetchURLCallBack(nullptr);
  SoVantleStateManager::finish();
}

void SoVantleMainFrame::init() {
  m_filterMask = ALL_CATEGORIES;
  SoWWWInline::setFetchURLCallBack(WWWInlineFetchURLCB, this);
  setWindowTitle(tr("Vantle"));
  setWindowIcon(QIcon(":/Vantle_icons/Icons/VantleIcon.png"));
  setAcceptDrops(true);
  VntServicesImpl* const services = VntServicesImpl::getImplInstance();
  SoVantleViewer* const viewer = SoVantleViewer::getInstance();
  setupActions();
  setupMenuBar();
  setupToolBars();
  setupConnections();
  statusBar(); // from the start: made by its first message it would push everything up under the pointer
  bool const attached = !services->isStandaloneApplication();
  if (attached) {
    m_openAction->setEnabled(false);
    m_closeAction->setEnabled(false);
    m_recentFilesMenu->setEnabled(false);
  }
  m_treeview = viewer->getTreeView();
  statusBar()->addPermanentWidget(new SoTreeStatus(m_treeview, statusBar()));
  setDefaultState();
  services->getCommandManager()->initCommandManager(attached);
  viewer->initViewer();
}

SoNode* SoVantleMainFrame::getVantleSceneGraph() const {
  return SoVantleViewer::isInstance() ? SoVantleViewer::getInstance()->getScene() : nullptr;
}

SoVantleTreeView* SoVantleMainFrame::getTreeview() const { return m_treeview; }

QMenu* SoVantleMainFrame::getTreeviewContextMenu() const {
  return m_treeview ? m_treeview->getContextMenu() : nullptr;
}

QComboBox* SoVantleMainFrame::getFindComboBox() const { return m_findBox; }
void SoVantleMainFrame::addMenu(QMenu* menu) { menuBar()->addMenu(menu); }
void SoVantleMainFrame::removeMenu(QMenu* menu) { menuBar()->removeAction(menu->menuAction()); }

// Edit.

void SoVantleMainFrame::on_cutAction_activated() {
  VntServicesImpl::getImplInstance()->getCommandManager()->cutNode();
}
void SoVantleMainFrame::on_copyAction_activated() {
  VntServicesImpl::getImplInstance()->getCommandManager()->copyNode();
}
void SoVantleMainFrame::on_pasteAction_activated() {
  VntServicesImpl::getImplInstance()->getCommandManager()->pasteNode();
}

// The panel that has the focus connects the action to what deletes there.
void SoVantleMainFrame::on_deleteAction_activated() {}

// Category filter.

void SoVantleMainFrame::on_filterChanged() {
  unsigned mask = 0;
  for (int i = 0; i < CATEGORIES; ++i) {
    if (m_categoryActions[i]->isChecked()) mask |= 1u << i;
  }
  m_filterMask = mask;
  m_treeview->setFilter(static_cast<int>(mask));
}

// One update of the tree instead of one a category. The stored mask stays what the categories last gave.
void SoVantleMainFrame::on_toggleFilterAction_toggled(bool on) {
  for (QAction* action : m_categoryActions) {
    QSignalBlocker const blocker(action);
    action->setChecked(on);
  }
  m_treeview->setFilter(on ? static_cast<int>(ALL_CATEGORIES) : 0);
}

// The custom filter has no contents of its own.
void SoVantleMainFrame::on_customFilterAction_toggled(bool) {}

// Files.

void SoVantleMainFrame::setFile(QString const& name) { SoVantleViewer::getInstance()->fileLoad(name); }

void SoVantleMainFrame::dragEnterEvent(QDragEnterEvent* event) {
  if (!event->mimeData()->urls().isEmpty()) event->acceptProposedAction();
}

void SoVantleMainFrame::dropEvent(QDropEvent* event) {
  QList<QUrl> const urls = event->mimeData()->urls();
  if (urls.isEmpty()) return;
  event->acceptProposedAction();
  QString const name = urls.first().toLocalFile();
  if (name.isEmpty()) return;
  LiveInput in(name, this);
  if (in.openFile(toSbString(name).c_str(), true, false)) SoVantleViewer::getInstance()->fileLoad(in);
}

void SoVantleMainFrame::WWWInlineFetchURLCB(SbString const& url, void*, SoWWWInline* node) {
  SbString ignored;
  SoRef<SoNode> const root = SoDB::readIncluded(url, node->getIncluders(), ignored);
  if (root) node->setChildData(root);
}

// Window.

// Nobody is asked about unsaved changes here: closing saves the settings and stops.
void SoVantleMainFrame::closeEvent(QCloseEvent* event) {
  VntServicesImpl::getImplInstance()->getCommandManager()->exitApp();
  event->accept();
}

void SoVantleMainFrame::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  if (m_defaultLayout) SoVantleViewer::getInstance()->applyDefaultLayout();
}

// Only presses on a splitter between docks arrive here.
void SoVantleMainFrame::mousePressEvent(QMouseEvent* event) {
  m_defaultLayout = false;
  QMainWindow::mousePressEvent(event);
}
