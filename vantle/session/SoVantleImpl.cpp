#include "vantle/session/SoVantleImpl.h"

#include <QApplication>
#include <QDialog>
#include <QPointer>
#include <QThread>
#include <clocale>
#include <memory>

#include "kestrava/base/SbFileHelper.h"
#include "kestrava/base/SbVec2s.h"
#include "kestrava/base/SoDynamicLibManager.h"
#include "kestrava/base/SoError.h"
#include "kestrava/base/SoKestravaBase.h"
#include "kestrava/base/SoLibVantle.h"
#include "kestrava/base/SoModule.h"
#include "kestrava/base/SoModuleTool.h"
#include "kestrava/base/SoPreferences.h"
#include "kestrava/fields/SoSFFieldContainer.h"
#include "kestrava/io/SoInput.h"
#include "kestrava/nodes/SoGradientBackground.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/render/SoGuiRenderArea.h"
#include "kestrava/render/SoSceneManager.h"
#include "kestrava_qt/SoQt.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/prefs/SoVantleConfig.h"
#include "vantle/session/SoVantleIdleManager.h"
#include "vantle/session/VantleDefaults.h"
#include "vantle/session/VantleEventWatch.h"
#include "vantle/session/VantleHostState.h"
#include "vantle/session/VantleSnapshot.h"
#include "vantle/session/VntNodeInfo.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/session/VntShellImpl.h"
#include "vantle/session/vantleSignalHandler.h"
#include "vantle/viewer/SoVantleViewer.h"
#include "vnt/VntPluginsManager.h"

bool SoVantleImpl::m_isRunning = false;
bool SoVantleImpl::m_needFinish = false;
bool SoVantleImpl::m_noQApp = false;
bool SoVantleImpl::m_didModulesinit = false;
bool SoVantleImpl::m_finishesSoon = false;
bool SoVantleImpl::m_isFinishing = false;
int SoVantleImpl::m_calls = 0;

namespace {

SbString const DEFAULT_CONFIGURATION_FILE("$KSVHOME/data/Vantle/VntConfiguration.xml");

// Optional modules of the toolkit, brought in in this order and out in the reverse one; a missing one is no
// fault.
constexpr char const* EXTENSION_MODULES[] = {"foreign_formats", "image_formats", "ray_picking"};

// The application that the session makes for a host refers to these as long as it lives.
int qargc = 1;
char qargName[] = "qAppInstance";
char* qargv[] = {qargName, nullptr};

[[maybe_unused]] bool const registered = [] {
  SoModule::registerModule("libqor_vantle.so", VANTLE_VERSION, "Linux");
  return true;
}();

// Present while a session does. Raw: a program that ends without a stop must not destroy them afterwards.
VantleHostState* hostState = nullptr;
VantleEventWatch* eventWatch = nullptr;
bool modulesInitialised = false;
QString addedLibraryPath; // in Qt's search path for the session's own application

/// Qt sets the C library's locale when it makes its application. The program's numbers and texts are to stay
/// as they are.
class KeptCLocale {
 public:
  KeptCLocale() : m_former(std::setlocale(LC_ALL, nullptr)) {}
  ~KeptCLocale() { std::setlocale(LC_ALL, m_former.c_str()); }

 private:
  std::string m_former;
};

/// The render area that shows a scene manager: it refers to the manager by a field, and so is its auditor.
SoGuiRenderArea* findRenderArea(SoSceneManager* manager) {
  SoAuditorList const& auditors = manager->getImpl()->getAuditors();
  for (int i = 0; i < auditors.getLength(); ++i) {
    if (auditors.getKind(i) != SoAuditorList::FIELD) continue;
    auto* const field = static_cast<SoField*>(auditors.getObject(i));
    if (!field->isOfType(SoSFFieldContainer::getClassTypeId())) continue;
    SoFieldContainer* const container = field->getContainer();
    if (container && container->isOfType(SoGuiRenderArea::getClassTypeId())) {
      return static_cast<SoGuiRenderArea*>(container);
    }
  }
  return nullptr;
}

} // namespace

void SoVantleImpl::registerConfiguration() {
  SoInput::addInMemoryTextFile(VantleDefaults::FILE_NAME, VantleDefaults::text());
}

/// Prepares a start; false when there can be none. What a deferred stop has left is torn down first.
bool SoVantleImpl::beginStart(char const* operation) {
  if (m_isRunning) return false;
  QCoreApplication* const application = QCoreApplication::instance();
  char const* fault = nullptr;
  if (m_isFinishing || (m_needFinish && isOnStack())) {
    fault = "the session before is still handling an event; start again when that is done";
  } else if (application && !m_needFinish && !qobject_cast<QApplication*>(application)) {
    fault = "the Qt application is not a QApplication, so it can not have windows";
  } else if (application && QThread::currentThread() != application->thread()) {
    fault = "this is not the thread of the Qt application";
  }
  if (fault) {
    SoDebugError::post(operation, "%s.", fault);
    return false;
  }
  if (m_needFinish) finish();
  registerConfiguration();
  return true;
}

/// A plug-in may have asked for a stop while it was brought up.
void SoVantleImpl::endStart() {
  if (m_isRunning) watchTheEnd();
  finishWaiting();
}

/// True when the host has a Qt application; otherwise Qt's plug-in path is ready for one of ours.
bool SoVantleImpl::hasQtApplication() {
  m_noQApp = !QCoreApplication::instance();
  if (!m_noQApp) return true;
  if (SbFileHelper::exists("qt.conf")) return false;
  if (!SoPreferences::getString("QT_QPA_PLATFORM_PLUGIN_PATH").empty()) return false;
  SbString folder = SbFileHelper::getDirName(
      SoDynamicLibManager::getLibraryFromSymbol(reinterpret_cast<void const*>(&SoKestravaBase::init)));
  folder = SbFileHelper::toUnixPath(folder + "qtplugins/");
  if (!SbFileHelper::isAccessible(folder)) return false;
  QStringList const before = QCoreApplication::libraryPaths();
  QCoreApplication::addLibraryPath(QString::fromStdString(folder.str()));
  for (QString const& path : QCoreApplication::libraryPaths()) {
    if (!before.contains(path)) addedLibraryPath = path;
  }
  return false;
}

void SoVantleImpl::makeQtApplication(int& argc, char** argv) {
  KeptCLocale const locale;
  new QApplication(argc, argv); // finish() destroys it
}

void SoVantleImpl::start(SoNode* root, void* window) {
  if (!beginStart("SoVantleImpl::start")) return;
  VntServicesImpl* const services = VntServicesImpl::getImplInstance();
  services->setIsStandaloneApplication(false);
  services->setSceneManager(nullptr);
  startInHost(root, nullptr, window);
}

void SoVantleImpl::start(SoSceneManager* manager, void* window) {
  if (!manager) return start(static_cast<SoNode*>(nullptr), window);
  if (!beginStart("SoVantleImpl::start")) return;
  manager->getImpl()->setOwnVantle(1);
  VntServicesImpl* const services = VntServicesImpl::getImplInstance();
  services->setIsStandaloneApplication(false);
  services->setSceneManager(manager);
  if (!services->getRenderArea()) services->setRenderArea(findRenderArea(manager));
  startInHost(manager->getSceneGraph(), manager, window);
}

void SoVantleImpl::startInHost(SoNode* root, SoSceneManager* manager, void* window) {
  {
    Call const call;
    if (!hasQtApplication()) makeQtApplication(qargc, qargv);
    SoVantleMainFrame* const frame =
        VntShellImpl::getImplInstance(reinterpret_cast<unsigned long long>(window))->getMainFrame();
    // A host whose own windows are not Qt's is not to quit with this one.
    frame->setAttribute(Qt::WA_QuitOnClose, false);
    QList<QString> const noArguments;
    init(&noArguments, manager);
    SoVantleViewer::getInstance()->setScene(root, true);
    SoVantleViewer::getInstance()->followHost();
    if (m_isRunning) frame->show();
  }
  endStart();
}

void SoVantleImpl::start(SoGuiRenderArea* area) {
  if (m_isRunning || !area) return;
  if (!beginStart("SoVantleImpl::start")) return;
  VntServicesImpl::getImplInstance()->setRenderArea(area, true);
  start(area->getSceneManager(), nullptr);
}

void SoVantleImpl::startStandalone(int& argc, char** argv) {
  if (!beginStart("SoVantleImpl::startStandalone")) return;
  {
    Call const call;
    VantleSnapshot::prepare();
    if (!hasQtApplication()) makeQtApplication(argc, argv);
    VntServicesImpl* const services = VntServicesImpl::getImplInstance();
    services->setIsStandaloneApplication(true);
    services->setRenderArea(nullptr);
    services->setSceneManager(nullptr);
    SoLibVantle::instance(); // there is a loader in standalone use, too
    QList<QString> const arguments = QCoreApplication::arguments();
    init(&arguments, nullptr);
    if (m_isRunning && !SoPreferences::getBool("KSV_DISABLE_MAINLOOP", false)) {
      VntShellImpl::getImplInstance()->getMainFrame()->show();
    }
    VantleSnapshot::begin(arguments.size() > 1);
  }
  endStart();
}

void SoVantleImpl::init(QList<QString> const* arguments, SoSceneManager* manager) {
  m_isRunning = true;
  eventWatch = new VantleEventWatch;
  hostState = new VantleHostState;
  hostState->setPreferences();
  SoVantleMainFrame* const frame = VntShellImpl::getImplInstance()->getMainFrame();
  VntServicesImpl* const services = VntServicesImpl::getImplInstance();
  if (services->isStandaloneApplication())
    SoQt::init(frame);
  else
    SoVantleIdleManager();
  hostState->setLocale();
  hostState->setErrorHandler(vantleSignalHandler);
  for (char const* module : EXTENSION_MODULES) SoModuleTool::initModule(module);
  modulesInitialised = true;
  frame->init();
  services->getCommandManager()->init();
  if (!manager) initScene();
  if (arguments && arguments->size() > 1) setFile(&arguments->last());
  readConfiguration();
}

void SoVantleImpl::readConfiguration() {
  VntPluginsManager* const plugins = VntPluginsManager::getInstance();
  // One that the user has named is missed, not just looked for.
  SbString const named =
      SbFileHelper::expandString(SoPreferences::getString("KSV_VANTLE_CONFIGURATION_FILE"));
  if (!named.empty() && !SbFileHelper::isReadable(named)) plugins->read(named, true);
  bool isFile;
  SbString const configuration = configurationFile(isFile);
  // With a faulty file, which is told, the field editors are there as without one.
  if (!plugins->read(configuration, isFile) && isFile)
    plugins->read(SoInput::readTextFile(VantleDefaults::FILE_NAME), false);
}

/// The Qt application, or the program, may end while the session runs.
void SoVantleImpl::watchTheEnd() {
  qAddPostRoutine(applicationEnds);
  struct EndOfThread {
    ~EndOfThread() { programEnds(); }
    bool isUsed = false;
  };
  // exit() destroys the objects of its thread before any static ones, which Qt's widgets need to the last.
  static thread_local EndOfThread end;
  end.isUsed = true;
}

// Runs when the application begins to be destroyed, which is the last time for widgets to go.
void SoVantleImpl::applicationEnds() {
  m_isRunning = false;
  m_noQApp = false; // it goes already
  finish();
}

void SoVantleImpl::programEnds() {
  QCoreApplication const* const application = QCoreApplication::instance();
  bool const exists = m_isRunning || m_needFinish;
  if (!exists || !application || QThread::currentThread() != application->thread()) return;
  // exit() was called inside of the inspector: nothing that is in use there goes any more.
  if (isOnStack()) return;
  m_isRunning = false;
  finish();
}

void SoVantleImpl::initScene() {
  SoRef<SoSeparator> scene(new SoSeparator);
  scene->addChild(new SoGradientBackground);
  SoVantleViewer::getInstance()->setScene(scene, true);
}

/// The path of the plug-in configuration, or with `isFile` false the built-in text.
SbString SoVantleImpl::configurationFile(bool& isFile) {
  isFile = true;
  for (SbString const& choice :
       {SoPreferences::getString("KSV_VANTLE_CONFIGURATION_FILE", DEFAULT_CONFIGURATION_FILE),
        SbString("./VntConfiguration.xml")}) {
    SbString const path = SbFileHelper::expandString(choice);
    if (SbFileHelper::isReadable(path)) return path;
  }
  isFile = false;
  return SoInput::readTextFile(VantleDefaults::FILE_NAME);
}

void SoVantleImpl::setFile(QString const* name) {
  if (name) VntShellImpl::getImplInstance()->getMainFrame()->setFile(*name);
}

void SoVantleImpl::setPickAction(SbViewportRegion const& region, SbVec2s position) {
  if (!m_isRunning) return;
  {
    Call const call;
    SoVantleViewer::getInstance()->setPickAction(region, position);
  }
  finishWaiting();
}

bool SoVantleImpl::processEvents() {
  if (m_isRunning && m_noQApp) {
    Call const call;
    QCoreApplication::processEvents(QEventLoop::AllEvents);
  }
  if (m_needFinish && !isOnStack()) finish();
  return m_isRunning;
}

void SoVantleImpl::stop(bool now) {
  m_isRunning = false;
  if (!now) {
    m_needFinish = true;
  } else if (!isOnStack()) {
    finish();
  } else if (!m_isFinishing) {
    m_needFinish = m_finishesSoon = true;
    if (eventWatch) eventWatch->callAfterwards();
    retire();
  }
}

bool SoVantleImpl::isOnStack() {
  if (m_calls > 0 || m_isFinishing) return true;
  // The session's own application must not be destroyed while it runs an event loop.
  if (m_noQApp && QCoreApplication::instance() && QThread::currentThread()->loopLevel() > 0) return true;
  return eventWatch && eventWatch->isDelivering();
}

void SoVantleImpl::eventDelivered() {
  // Here Qt's own application is still at work: processEvents() destroys it.
  if (!m_noQApp) finishWaiting();
}

/// Carries out a stop that had to wait, once it can be.
void SoVantleImpl::finishWaiting() {
  if (m_finishesSoon && !isOnStack()) finish();
}

/// A stopped session that can not be torn down yet: nothing of it is to be seen, and what keeps it on the stack
/// is made to end.
void SoVantleImpl::retire() {
  if (!VntServicesImpl::isInstance() || !VntShellImpl::isInstance()) return;
  if (SoSceneManager* const manager = VntServicesImpl::getImplInstance()->getSceneManager()) {
    manager->getImpl()->setOwnVantle(0);
  }
  SoVantleMainFrame* const frame = VntShellImpl::getImplInstance()->getMainFrame();
  QList<QPointer<QWidget>> windows;
  for (QWidget* window : QApplication::topLevelWidgets()) windows << window;
  for (QPointer<QWidget> const& window : windows) {
    if (!window || window == frame || !window->isVisible() || !VantleEventWatch::isInspectors(window)) continue;
    if (auto* const dialog = qobject_cast<QDialog*>(window))
      dialog->reject();
    else
      window->close();
  }
  frame->hide();
}

void SoVantleImpl::finish() {
  if (m_isFinishing) return;
  m_isFinishing = true; // what is called meanwhile may ask for a stop again
  bool standalone = false;
  if (VntServicesImpl::isInstance()) {
    VntServicesImpl* const services = VntServicesImpl::getImplInstance();
    standalone = services->isStandaloneApplication();
    if (services->getSceneManager()) services->getSceneManager()->getImpl()->setOwnVantle(0);
  }
  bool isFile;
  configurationFile(isFile); // without use, but a host may rely on its reads of the preferences
  delete std::exchange(eventWatch, nullptr);
  VntPluginsManager::releaseInstance();
  VntServicesImpl::releaseInstance();
  SoVantleViewer::releaseInstance();
  VntShellImpl::releaseInstance();
  SoVantleConfig::deleteSettingsInterface();
  VntNodeInfo::clean();
  SoVantleIdleManager::deleteInstance();
  m_isRunning = false;
  if (std::exchange(modulesInitialised, false)) {
    for (auto name = std::rbegin(EXTENSION_MODULES); name != std::rend(EXTENSION_MODULES); ++name) {
      SoModuleTool::finishModule(*name);
    }
  }
  delete std::exchange(hostState, nullptr);
  if (standalone) SoQt::finish();
  qRemovePostRoutine(applicationEnds);
  if (m_noQApp && QCoreApplication::instance()) {
    delete QCoreApplication::instance();
    m_noQApp = false;
  }
  if (!addedLibraryPath.isEmpty()) QCoreApplication::removeLibraryPath(addedLibraryPath);
  addedLibraryPath.clear();
  m_needFinish = m_finishesSoon = m_isFinishing = false;
}
