// What the toolkit's loader looks up by plain name.

#include "kestrava/base/SbVec2s.h"
#include "kestrava/base/SbViewportRegion.h"
#include "vantle/session/SoVantleImpl.h"

extern "C" {

/// The version of the toolkit that this is built for; the loader compares it before it calls anything.
extern VANTLE_API char const _toolkitVersion[];
char const _toolkitVersion[] = VANTLE_TOOLKIT_VERSION;

VANTLE_API void _startNode(SoNode* root, void* window) { SoVantleImpl::start(root, window); }
VANTLE_API void _startSceneManager(SoSceneManager* manager, void* window) {
  SoVantleImpl::start(manager, window);
}
VANTLE_API void _startRenderArea(SoGuiRenderArea* area) { SoVantleImpl::start(area); }

VANTLE_API void _startStandalone(int argc, char** argv) {
  // Qt keeps a reference to the count for as long as the application lives.
  static int count;
  count = argc;
  SoVantleImpl::startStandalone(count, argv);
}

VANTLE_API void _stop() { SoVantleImpl::stop(true); }
VANTLE_API bool _isRunning() { return SoVantleImpl::isRunning(); }
VANTLE_API bool _processEvents() { return SoVantleImpl::processEvents(); }

VANTLE_API void _setPickAction(SbViewportRegion const& region, SbVec2s position) {
  SoVantleImpl::setPickAction(region, position);
}

// A scene reaches the session through the start entries and the services only; the entry exists because the
// loader looks for it.
VANTLE_API void _setSceneGraph(SoNode*) {}
}
