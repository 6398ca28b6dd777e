// What only looks like the inspector's library: the loader must not call any of it.

#include <cstdlib>

#define EXPORT extern "C" __attribute__((visibility("default")))

#ifdef FAKE_VERSION
EXPORT char const _toolkitVersion[];
char const _toolkitVersion[] = FAKE_VERSION;
#endif

#define ENTRY(name) \
  EXPORT void name() { std::abort(); }

ENTRY(_startNode)
ENTRY(_startSceneManager)
ENTRY(_startRenderArea)
ENTRY(_startStandalone)
ENTRY(_isRunning)
ENTRY(_processEvents)
ENTRY(_setPickAction)
ENTRY(_setSceneGraph)
#ifndef FAKE_WITHOUT_STOP
ENTRY(_stop)
#endif
