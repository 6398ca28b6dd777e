#include "kestrava/base/SoLibVantle.h"

#include "kestrava/base/SbFileHelper.h"
#include "kestrava/base/SoDynamicLibManager.h"
#include "kestrava/base/SoError.h"
#include "kestrava/base/SoPreferences.h"

// KESTRAVA_VERSION is the toolkit's version, given when this source is compiled.

namespace {

constexpr char LIBRARY_NAME[] = "libqor_vantle.so";
/// A text in the library, not a function: looking at it runs nothing.
constexpr char VERSION_SYMBOL[] = "_toolkitVersion";

struct Place {
  SbString path, description;
};

std::vector<Place> placesToLook() {
  SbString const wanted = SoPreferences::getString("KSV_VANTLE_LIBRARY");
  if (!wanted.empty()) return {{SbFileHelper::expandString(wanted), "named by KSV_VANTLE_LIBRARY"}};
  SbString const own =
      SoDynamicLibManager::getLibraryFromSymbol(reinterpret_cast<void const*>(&SoLibVantle::instance));
  return {{SbFileHelper::getDirName(own) + LIBRARY_NAME, "beside the toolkit"},
          {LIBRARY_NAME, "where the dynamic linker searches"}};
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
  std::string tried;
  for (Place const& place : placesToLook()) {
    std::string const fault = loadFrom(place.path);
    m_loaded = fault.empty();
    if (m_loaded) break;
    tried += (tried.empty() ? "" : "; ") + place.path.str() + " (" + place.description.str() + "): " + fault;
  }
  m_lastError = m_loaded ? SbString() : SbString("The inspector can not be loaded: " + tried);
  return m_loaded;
}

/// Empty when the library is in use now; otherwise what is wrong with it.
std::string SoLibVantle::loadFrom(SbString const& path) {
  bool const isSearched = path.str().find('/') == std::string::npos;
  if (!isSearched && !SbFileHelper::exists(path)) return "no such file";
  void* const library = SoDynamicLibManager::open(path, true); // its plug-ins look for its symbols
  if (!library) return SoDynamicLibManager::getLastError().str();
  std::string fault;
  auto const* const version =
      static_cast<char const*>(SoDynamicLibManager::symbol(library, VERSION_SYMBOL));
  if (!version) {
    fault.append("is not the inspector, it has no symbol ").append(VERSION_SYMBOL);
  } else if (std::string_view(version) != KESTRAVA_VERSION) {
    fault = "is built for version " + std::string(version) + " of the toolkit, which is " KESTRAVA_VERSION " here";
  } else if (!takeEntryPoints(library)) {
    fault = "is not complete: " + SoDynamicLibManager::getLastError().str();
  }
  if (!fault.empty()) SoDynamicLibManager::close(library);
  return fault;
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
