#include "vantle/viewer/SoVantleViewer.h"

#include <QDockWidget>
#include <QGuiApplication>
#include <QScreen>
#include <QStatusBar>

#include "kestrava/base/SoPreferences.h"
#include "kestrava/nodes/SoSelection.h"
#include "kestrava/render/SoGuiRenderArea.h"
#include "kestrava/render/SoHighlightRenderAction.h"
#include "kestrava/render/SoSceneManager.h"
#include "kestrava_qt/SoQtExaminerViewer.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/inspect/SoVantleEdition.h"
#include "vantle/prefs/SoVantleConfig.h"
#include "vantle/prefs/TreeViewConfig.h"
#include "vantle/session/SoVantleImpl.h"
#include "vantle/session/VantleMessageBox.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/session/VntShellImpl.h"
#include "vantle/tree/SoVantleTreeView.h"

SoVantleViewer* SoVantleViewer::m_instance = nullptr;

namespace {

constexpr char SETTINGS[] = "/VantleViewer/VantleMainFrame";
constexpr int NO_SIZE = 32767; // stored for a window that was maximised
/// With a click in the 3D view. Alt belongs to many a window manager, Shift moves the view.
constexpr Qt::KeyboardModifier LIST_KEY = Qt::ControlModifier;
constexpr int HOST_INTERVAL = 200; // milliseconds
/// References to the scene that are the inspector's: the viewer's and the selection node's.
constexpr int OWN_REFERENCES = 2;

QString key(char const* name) { return QLatin1String(SETTINGS) + QLatin1String(name); }
QString fileKey(int number) { return key("/File") + QString::number(number); }

bool isOnScreen(QRect const& window) {
  for (QScreen const* screen : QGuiApplication::screens()) {
    QRect const visible = screen->availableGeometry().intersected(window);
    if (visible.width() >= 100 && visible.height() >= 50) return true;
  }
  return false;
}

QByteArray storedLayout() {
  return QByteArray::fromBase64(SoVantleConfig::readEntry(key("/MainWindowLayout")).toLatin1());
}

bool isHostLaunched() {
  return SoPreferences::getBool("KSRU_LAUNCH_VANTLE", false) ||
         SoPreferences::getBool("PLX_LAUNCH_VANTLE", false);
}

} // namespace

SoVantleViewer* SoVantleViewer::getInstance() {
  if (!m_instance) new SoVantleViewer;
  return m_instance;
}

void SoVantleViewer::releaseInstance() {
  delete m_instance;
  m_instance = nullptr;
}

SoVantleViewer::SoVantleViewer() {
  m_instance = this; // the panels made here ask for it
  VntServicesImpl* const services = VntServicesImpl::getImplInstance();
  SoVantleMainFrame* const frame = mainFrame();
  if (services->isStandaloneApplication()) makeExaminer();
  if (!SoPreferences::getBool("PLX_LAUNCH_VANTLE", false)) chooseHighlight();

  m_selection = new SoSelection;
  m_selection->policy.setValue(SoSelection::SINGLE);
  // The tree decides what a click in the 3D view selects.
  m_selection->setTakingClicks(false);
  setHighlighting(TreeViewConfig::highlightSelectedNode(SoVantleTreeView::getTreeViewPreferencesPath()));
  SoSceneManager* const manager = services->getSceneManager();
  connect(&m_hostTimer, &QTimer::timeout, this, &SoVantleViewer::lookAfterHost);
  if (manager && !services->isStandaloneApplication()) attachToHost(manager);

  m_treeView = new SoVantleTreeView(frame);
  if (m_examiner) {
    m_examiner->setSceneGraph(m_selection);
    m_treeDock = makeDock("dockMainWin", tr("Tree View"), Qt::LeftDockWidgetArea);
    m_treeDock->setWidget(m_treeView);
  } else {
    frame->setCentralWidget(m_treeView);
  }
  m_treeView->setGraphSelection(m_selection);
  if (m_examiner) m_examiner->getWidget()->installEventFilter(m_treeView);

  m_overviewDock = makeDock("dockNodeOverview", tr("Node Overview"), Qt::RightDockWidgetArea);
  m_watchDock = makeDock("dockFieldWatch", tr("Field Watch"), Qt::BottomDockWidgetArea);
  m_watchDock->setMinimumHeight(0);
  for (QDockWidget* dock : {m_overviewDock, m_watchDock}) {
    dock->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  }
  // Tree and fields keep the whole height: rows are what there is most of, and editors want room.
  frame->setCorner(Qt::BottomLeftCorner, Qt::LeftDockWidgetArea);
  frame->setCorner(Qt::BottomRightCorner, Qt::RightDockWidgetArea);
  m_edition = std::make_unique<SoVantleEdition>(m_treeView, m_overviewDock, m_watchDock);
}

// The panels are taken down one by one, each while what it watches is still there.
SoVantleViewer::~SoVantleViewer() {
  // What the user has set to ignored is not lost to the host.
  m_treeView->enableAll();
  m_treeView->setGraphSelection(nullptr);
  m_edition.reset();
  delete m_treeView;
  delete m_treeDock;
  delete m_overviewDock;
  delete m_watchDock;
  if (m_hostSensor.getAttachedContainer()) {
    auto* const manager = static_cast<SoSceneManager*>(m_hostSensor.getAttachedContainer());
    manager->getImpl()->setHighlight(nullptr, nullptr);
  }
  leaveSceneFolder();
  m_selection->removeAllChildren();
  m_examiner.reset();
}

SoVantleMainFrame* SoVantleViewer::mainFrame() const {
  return VntShellImpl::getImplInstance()->getMainFrame();
}

QDockWidget* SoVantleViewer::makeDock(char const* name, QString const& title, Qt::DockWidgetArea area) {
  auto* dock = new QDockWidget(title, mainFrame());
  dock->setObjectName(QLatin1String(name));
  mainFrame()->addDockWidget(area, dock);
  return dock;
}

void SoVantleViewer::chooseHighlight() {
  SbString const mode = SoPreferences::getString("VANTLE_HIGHLIGHTING_MODE", "LINE");
  if (mode == "HALO") {
    auto halo = std::make_unique<SoHaloHighlightRenderAction>();
    halo->setHaloAlwaysVisible(true);
    m_highlight = std::move(halo);
  } else if (mode == "BOX") {
    m_highlight = std::make_unique<SoBoxHighlightRenderAction>();
  } else {
    m_highlight = std::make_unique<SoLineHighlightRenderAction>();
  }
  VntServicesImpl* const services = VntServicesImpl::getImplInstance();
  SoSceneManager* const manager = services->getSceneManager();
  if (services->isStandaloneApplication() && manager) manager->setGLRenderAction(m_highlight.get());
}

void SoVantleViewer::setHighlighting(bool on) {
  if (isHostLaunched()) return;
  if (m_highlight) m_highlight->setVisible(on);
  VntServicesImpl* const services = VntServicesImpl::getImplInstance();
  services->redrawOnSelectionChange(on ? m_selection.get() : nullptr);
  if (SoSceneManager* manager = services->getSceneManager()) manager->scheduleRedraw();
}

/// A host's own render action stays; the mark is drawn over what it has drawn.
void SoVantleViewer::attachToHost(SoSceneManager* manager) {
  m_hostSensor.setPriority(0);
  m_hostSensor.setDeleteCallback(hostIsGone, this);
  m_hostSensor.attach(manager);
  if (m_highlight && !isHostLaunched()) manager->getImpl()->setHighlight(m_highlight.get(), m_selection);
}

/// A host may take its scene manager down while the inspector runs on.
void SoVantleViewer::hostIsGone(void* viewer, SoSensor*) {
  if (VntServicesImpl::isInstance()) VntServicesImpl::getImplInstance()->setSceneManager(nullptr);
  areaIsGone(viewer, nullptr);
}

void SoVantleViewer::areaIsGone(void* data, SoSensor*) {
  auto* const viewer = static_cast<SoVantleViewer*>(data);
  VntServicesImpl* const services =
      VntServicesImpl::isInstance() ? VntServicesImpl::getImplInstance() : nullptr;
  // The view that was found for a scene manager is not what the session was started on.
  bool const isViewOnly = services && services->getSceneManager() && !services->isRenderAreaGiven();
  if (services) services->setRenderArea(nullptr);
  if (isViewOnly || !viewer->m_isHostsScene) return;
  viewer->m_hostIsGone = true;
  viewer->lookAfterHost();
}

void SoVantleViewer::followHost() {
  m_isHostsScene = m_scene;
  m_wasShared = false;
  m_areaSensor.setPriority(0);
  m_areaSensor.setDeleteCallback(areaIsGone, this);
  m_areaSensor.attach(VntServicesImpl::getImplInstance()->getRenderArea());
  if (!m_isHostsScene) return;
  m_hostTimer.start(HOST_INTERVAL);
  lookAfterHost();
}

/// Letting go of a node makes no noise: its references are looked at now and then.
void SoVantleViewer::lookAfterHost() {
  if (!m_isHostsScene) return m_hostTimer.stop();
  bool const isShared = m_scene->getRefCount() > OWN_REFERENCES;
  bool const isLetGo = m_wasShared && !isShared;
  m_wasShared = m_wasShared || isShared;
  // The rows may be in use: the timer comes again.
  if ((isLetGo || m_hostIsGone) && !SoVantleImpl::isOnStack()) setScene(nullptr, true);
}

void SoVantleViewer::makeExaminer() {
  auto* dock = new QDockWidget(tr("Kestrava Scenoscope"), mainFrame());
  // As the central widget it can neither be moved nor brought back once closed.
  dock->setFeatures(QDockWidget::NoDockWidgetFeatures);
  m_examiner = std::make_unique<SoQtExaminerViewer>(dock, "Examiner");
  dock->setWidget(m_examiner->getWidget());
  m_examiner->setReportingAllClicks(true);
  connect(m_examiner.get(), &SoQtExaminerViewer::picked, this,
          [this](SbVec2s position, SbViewportRegion const& region) {
            pick(region, position, QGuiApplication::keyboardModifiers() & LIST_KEY);
          });
  VntServicesImpl* const services = VntServicesImpl::getImplInstance();
  services->setRenderArea(m_examiner->getRenderArea());
  services->setSceneManager(m_examiner->getSceneManager());
  mainFrame()->setCentralWidget(dock);
}

void SoVantleViewer::setScene(SoNode* root, bool clear) {
  SoRef<SoNode> const next(root);
  m_edition->clearScene();
  if (VntServices::getInstance()->getSelectedNode()) VntServices::getInstance()->setSelectedNode(nullptr);
  if (root != m_scene.get()) m_treeView->enableAll();
  m_selection->deselectAll();
  m_selection->removeAllChildren();
  m_scene = next;
  m_isHostsScene = m_hostIsGone = false;
  // The tree follows by itself what stands below the selection node.
  m_treeView->setShowingProgress(true);
  if (root) m_selection->addChild(root);
  m_treeView->setShowingProgress(false);
  m_treeView->setScene(root);
  if (clear) VntServicesImpl::getImplInstance()->getCommandManager()->clearUndoCommands();
  // Looks through the new scene's own camera, or shows all of it.
  if (m_examiner) m_examiner->setSceneGraph(m_selection);
}

// The host's window need not be Qt's: no event has told what is held there.
void SoVantleViewer::setPickAction(SbViewportRegion const& region, SbVec2s position) {
  pick(region, position, QGuiApplication::queryKeyboardModifiers() & LIST_KEY);
}

void SoVantleViewer::pick(SbViewportRegion const& region, SbVec2s position, bool listsAll) {
  SoSceneManager* const manager = VntServices::getInstance()->getSceneManager();
  SoNode* root = manager ? manager->getSceneGraph() : m_selection.get();
  if (!root) return;
  // The tree cuts the way to what was found behind its first selection node: that is to be the inspector's own, not
  // one of the host's.
  if (m_selection->findChild(root) >= 0) root = m_selection;
  if (listsAll) return m_treeView->listPicked(region, position, root);
  makePickedCurrent([&] { return m_treeView->setPickAction(region, position, root); });
}

void SoVantleViewer::showPicked(SoPath const* path) {
  makePickedCurrent([&] {
    SoTreeViewItem* const found = m_treeView->showPicked(path);
    if (!found) mainFrame()->statusBar()->showMessage(tr("What was picked is not in the scene any more"), 5000);
    return found;
  });
}

void SoVantleViewer::makePickedCurrent(std::function<SoTreeViewItem*()> const& makeCurrent) {
  m_mode = 1;
  SoTreeViewItem* const found = makeCurrent();
  m_mode = 0;
  // The pick did not come from a selection: what was found is marked now.
  if (found && SoVantleTreeView::isAutoHighlight()) m_treeView->highlightPath(found);
}

// Window settings.

void SoVantleViewer::initViewer() {
  SoVantleMainFrame* const frame = mainFrame();
  // Nobody's own layout belongs into a picture that is taken unattended.
  if (VantleMessageBox::isUnattended()) return frame->setDefaultLayout(true);
  for (int number = 1; number <= MAX_RECENT_FILES; ++number) {
    QString const file = SoVantleConfig::readEntry(fileKey(number));
    if (!file.isEmpty()) m_recentFiles << file;
  }
  if (!m_recentFiles.isEmpty()) updateRecentFilesMenu();

  QSize const size(SoVantleConfig::readNumEntry(key("/WindowWidth"), NO_SIZE),
                   SoVantleConfig::readNumEntry(key("/WindowHeight"), NO_SIZE));
  QPoint const position(SoVantleConfig::readNumEntry(key("/WindowX"), 0),
                        SoVantleConfig::readNumEntry(key("/WindowY"), 0));
  QByteArray const layout = storedLayout();
  bool const hasSize = size.width() != NO_SIZE && size.height() != NO_SIZE;
  // The screen that the window stood on may be gone.
  if (isOnScreen(QRect(position, hasSize ? size : QSize(800, 600)))) frame->move(position);
  if (!layout.isEmpty() && hasSize)
    frame->resize(size);
  else
    frame->setWindowState(frame->windowState() | Qt::WindowMaximized);
  frame->setDefaultLayout(!restoreLayout());
}

bool SoVantleViewer::restoreLayout() {
  QByteArray const layout = VantleMessageBox::isUnattended() ? QByteArray() : storedLayout();
  return !layout.isEmpty() && mainFrame()->restoreState(layout);
}

void SoVantleViewer::saveMainFrameSettings() {
  SoVantleMainFrame const* const frame = mainFrame();
  bool const maximised = frame->isMaximized();
  SoVantleConfig::writeEntry(key("/WindowWidth"), maximised ? NO_SIZE : frame->width());
  SoVantleConfig::writeEntry(key("/WindowHeight"), maximised ? NO_SIZE : frame->height());
  SoVantleConfig::writeEntry(key("/WindowX"), frame->x());
  SoVantleConfig::writeEntry(key("/WindowY"), frame->y());
  SoVantleConfig::writeEntry(key("/MainWindowLayout"), QString::fromLatin1(frame->saveState().toBase64()));
  for (int number = 1; number <= MAX_RECENT_FILES; ++number) {
    SoVantleConfig::writeEntry(fileKey(number), m_recentFiles.value(number - 1));
  }
}

void SoVantleViewer::applyDefaultLayout() {
  SoVantleMainFrame* const frame = mainFrame();
  int const width = frame->width();
  if (m_treeDock) {
    frame->resizeDocks({m_treeDock, m_overviewDock}, {width * 27 / 100, width * 29 / 100}, Qt::Horizontal);
  } else {
    frame->resizeDocks({m_overviewDock}, {width * 50 / 100}, Qt::Horizontal);
  }
  frame->resizeDocks({m_watchDock}, {frame->height() * 16 / 100}, Qt::Vertical);
  if (auto* const editor = frame->findChild<QDockWidget*>(QStringLiteral("dockFieldEditor"))) {
    frame->resizeDocks({m_overviewDock, editor}, {frame->height() * 42 / 100, frame->height() * 46 / 100},
                       Qt::Vertical);
  }
}
