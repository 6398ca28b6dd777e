#include "vantle/session/SoVantleImpl.h"

#include <QApplication>
#include <QLocale>
#include <memory>

#include "kestrava/base/SbFileHelper.h"
#include "kestrava/base/SbVec2s.h"
#include "kestrava/base/SoDynamicLibManager.h"
#include "kestrava/base/SoErrorStack.h"
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

struct ErrorHandler {
  SoErrorCB* callback;
  void* data;
};
std::unique_ptr<ErrorHandler> formerErrorHandler; // set while ours is installed
bool modulesInitialised = false;

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

/// Prepares a start; false when a session runs. What a deferred stop has left is torn down first.
bool SoVantleImpl::beginStart() {
  if (m_isRunning) return false;
  if (m_needFinish) finish();
  registerConfiguration();
  return true;
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
  if (SbFileHelper::isAccessible(folder))
    QCoreApplication::addLibraryPath(QString::fromStdString(folder.str()));
  return false;
}

void SoVantleImpl::start(SoNode* root, void* window) {
  if (!beginStart()) return;
  VntServicesImpl* const services = VntServicesImpl::getImplInstance();
  services->setIsStandaloneApplication(false);
  services->setSceneManager(nullptr);
  startInHost(root, nullptr, window);
}

void SoVantleImpl::start(SoSceneManager* manager, void* window) {
  if (!manager) return start(static_cast<SoNode*>(nullptr), window);
  if (!beginStart()) return;
  manager->getImpl()->setOwnVantle(1);
  VntServicesImpl* const services = VntServicesImpl::getImplInstance();
  services->setIsStandaloneApplication(false);
  services->setSceneManager(manager);
  if (!services->getRenderArea()) services->setRenderArea(findRenderArea(manager));
  startInHost(manager->getSceneGraph(), manager, window);
}

void SoVantleImpl::startInHost(SoNode* root, SoSceneManager* manager, void* window) {
  if (!hasQtApplication()) new QApplication(qargc, qargv);
  VntShellImpl::getImplInstance(reinterpret_cast<unsigned long long>(window));
  QList<QString> const noArguments;
  init(&noArguments, manager);
  SoVantleViewer::getInstance()->setScene(root, true);
  VntShellImpl::getImplInstance()->getMainFrame()->show();
}

void SoVantleImpl::start(SoGuiRenderArea* area) {
  if (m_isRunning || !area) return;
  if (m_needFinish) finish();
  VntServicesImpl::getImplInstance()->setRenderArea(area);
  start(area->getSceneManager(), nullptr);
}

void SoVantleImpl::startStandalone(int& argc, char** argv) {
  if (!beginStart()) return;
  VantleSnapshot::prepare();
  if (!hasQtApplication()) new QApplication(argc, argv);
  VntServicesImpl* const services = VntServicesImpl::getImplInstance();
  services->setIsStandaloneApplication(true);
  services->setRenderArea(nullptr);
  services->setSceneManager(nullptr);
  SoLibVantle::instance(); // there is a loader in standalone use, too
  QList<QString> const arguments = QCoreApplication::arguments();
  init(&arguments, nullptr);
  if (!SoPreferences::getBool("KSV_DISABLE_MAINLOOP", false)) {
    VntShellImpl::getImplInstance()->getMainFrame()->show();
  }
  VantleSnapshot::begin(arguments.size() > 1);
}

void SoVantleImpl::init(QList<QString> const* arguments, SoSceneManager* manager) {
  m_isRunning = true;
  if (!SoPreferences::hasValue("KSV_DEBUG_STACKERROR")) SoPreferences::setValue("KSV_DEBUG_STACKERROR", "1");
  SoPreferences::setValue("KSV_STACKWALKER_HTML_OUTPUT", "1");
  SoVantleMainFrame* const frame = VntShellImpl::getImplInstance()->getMainFrame();
  VntServicesImpl* const services = VntServicesImpl::getImplInstance();
  if (services->isStandaloneApplication())
    SoQt::init(frame);
  else
    SoVantleIdleManager();
  QLocale::setDefault(QLocale(QLocale::C));
  formerErrorHandler.reset(
      new ErrorHandler{SoErrorStack::getHandlerCallback(), SoErrorStack::getHandlerData()});
  SoErrorStack::setHandlerCallback(vantleSignalHandler);
  for (char const* module : EXTENSION_MODULES) SoModuleTool::initModule(module);
  modulesInitialised = true;
  frame->init();
  services->getCommandManager()->init();
  if (!manager) initScene();
  if (arguments && arguments->size() > 1) setFile(&arguments->last());
  bool isFile;
  SbString const configuration = configurationFile(isFile);
  VntPluginsManager::getInstance()->read(configuration, isFile);
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
  if (m_isRunning) SoVantleViewer::getInstance()->setPickAction(region, position);
}

bool SoVantleImpl::processEvents() {
  if (m_isRunning && m_noQApp) QCoreApplication::processEvents(QEventLoop::AllEvents);
  if (m_needFinish) finish();
  return m_isRunning;
}

void SoVantleImpl::stop(bool now) {
  m_isRunning = false;
  if (now)
    finish();
  else
    m_needFinish = true;
}

void SoVantleImpl::finish() {
  m_needFinish = false;
  bool standalone = false;
  if (VntServicesImpl::isInstance()) {
    VntServicesImpl* const services = VntServicesImpl::getImplInstance();
    standalone = services->isStandaloneApplication();
    if (services->getSceneManager()) services->getSceneManager()->getImpl()->setOwnVantle(0);
  }
  bool isFile;
  configurationFile(isFile); // without use, but a host may rely on its reads of the preferences
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
  if (formerErrorHandler) {
    SoErrorStack::setHandlerCallback(formerErrorHandler->callback, formerErrorHandler->data);
    formerErrorHandler.reset();
  }
  if (standalone) SoQt::finish();
  if (m_noQApp && QCoreApplication::instance()) {
    delete QCoreApplication::instance();
    m_noQApp = false;
  }
}
