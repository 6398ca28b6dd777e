#include "kestrava/base/SoLibVantle.h"

#include "kestrava/base/SbFileHelper.h"
#include "kestrava/base/SoDynamicLibManager.h"
#include "kestrava/base/SoError.h"
#include "kestrava/base/SoPreferences.h"

namespace {

constexpr char LIBRARY_NAME[] = "libqor_vantle.so";

SbString libraryPath() {
  SbString wanted = SoPreferences::getString("KSV_VANTLE_LIBRARY");
  if (!wanted.empty()) return wanted;
  SbString const own =
      SoDynamicLibManager::getLibraryFromSymbol(reinterpret_cast<void const*>(&SoLibVantle::instance));
  SbString const beside = SbFileHelper::getDirName(own) + LIBRARY_NAME;
  return SbFileHelper::exists(beside) ? beside : SbString(LIBRARY_NAME);
}

} // namespace

SoLibVantle* SoLibVantle::instance() {
  static SoLibVantle& loader = *new SoLibVantle;
  return &loader;
}

bool SoLibVantle::isAvailable() { return instance()->load(); }

SbString const& SoLibVantle::getLastError() { return instance()->m_lastError; }

// A failure is not final: the host may say later where the library is.
bool SoLibVantle::load() {
  if (m_loaded) return true;
  SbString const path = libraryPath();
  void* const library = SoDynamicLibManager::open(path, true); // its plug-ins look for its symbols
  if (!library) {
    m_lastError = "The inspector can not be loaded: " + SoDynamicLibManager::getLastError().str();
  } else if (!takeEntryPoints(library)) {
    m_lastError =
        "The library " + path.str() + " is not the inspector: " + SoDynamicLibManager::getLastError().str();
    SoDynamicLibManager::close(library);
  } else {
    m_lastError = SbString();
    m_loaded = true;
  }
  return m_loaded;
}

bool SoLibVantle::takeEntryPoints(void* library) {
  auto find = [library](char const* name, auto& function) {
    function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(
        SoDynamicLibManager::symbol(library, name));
    return function != nullptr;
  };
  return find("_startNode", m_entry.startNode) && find("_startSceneManager", m_entry.startSceneManager) &&
         find("_startRenderArea", m_entry.startRenderArea) &&
         find("_startStandalone", m_entry.startStandalone) && find("_stop", m_entry.stop) &&
         find("_isRunning", m_entry.isRunning) && find("_processEvents", m_entry.processEvents) &&
         find("_setPickAction", m_entry.setPickAction) && find("_setSceneGraph", m_entry.setSceneGraph);
}

bool SoLibVantle::canStart(char const* operation) {
  if (!load()) SoDebugError::post(operation, "%s", m_lastError.c_str());
  return m_loaded;
}

bool SoLibVantle::startNode(SoNode* root, void* nativeHandle) {
  if (!canStart("SoLibVantle::startNode")) return false;
  m_entry.startNode(root, nativeHandle);
  return true;
}

bool SoLibVantle::startSceneManager(SoSceneManager* manager, void* nativeHandle) {
  if (!canStart("SoLibVantle::startSceneManager")) return false;
  m_entry.startSceneManager(manager, nativeHandle);
  return true;
}

bool SoLibVantle::startRenderArea(SoGuiRenderArea* area) {
  if (!canStart("SoLibVantle::startRenderArea")) return false;
  m_entry.startRenderArea(area);
  return true;
}

bool SoLibVantle::startStandalone(int argc, char** argv) {
  if (!canStart("SoLibVantle::startStandalone")) return false;
  m_entry.startStandalone(argc, argv);
  return true;
}

// The rest does not load the library: a session that was never started is not running.
void SoLibVantle::stop() {
  if (m_loaded) m_entry.stop();
}

bool SoLibVantle::isRunning() { return m_loaded && m_entry.isRunning(); }

bool SoLibVantle::processEvents() { return m_loaded && m_entry.processEvents(); }

void SoLibVantle::setPickAction(SbViewportRegion const& viewport, SbVec2s position) {
  if (m_loaded) m_entry.setPickAction(viewport, position);
}

void SoLibVantle::setSceneGraph(SoNode* root) {
  if (m_loaded) m_entry.setSceneGraph(root);
}
