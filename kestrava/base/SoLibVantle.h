#pragma once

#include "kestrava/base/SbString.h"
#include "kestrava/base/SbVec2s.h"

class SbViewportRegion;
class SoGuiRenderArea;
class SoNode;
class SoSceneManager;

/// Starts the inspector in a host program that does not link it: loads libqor_vantle.so when first needed and
/// calls its entry points.
///
/// The library is taken from the path that the preference or environment variable KSV_VANTLE_LIBRARY names
/// when that is set, else from beside the toolkit's library, else from where the dynamic linker searches; once
/// loaded it stays. One that was built for another version of the toolkit is refused before any of its
/// functions is called. Loading it makes no Qt application. Everything is for the GUI thread. A host calls
/// processEvents() over and over until it answers false. A start that is not possible posts a debug error.
class SoLibVantle {
 public:
  /// True when the library is loaded, now or before, and complete. Otherwise getLastError() says why.
  static bool isAvailable();
  /// The one loader, made when it does not exist. Never null.
  static SoLibVantle* instance();
  /// Why the library could not be loaded: each place that was tried, and what was wrong there. Empty when it
  /// was loaded.
  static SbString const& getLastError();

  /// `nativeHandle` is a window that the inspector's is created over; null: a top-level one. False when the
  /// library is not available.
  bool startNode(SoNode* root, void* nativeHandle = nullptr);
  bool startSceneManager(SoSceneManager* manager, void* nativeHandle = nullptr);
  bool startRenderArea(SoGuiRenderArea* area);
  /// With an application of its own.
  bool startStandalone(int argc, char** argv);
  /// Without a library there is nothing to stop: no error, here and below.
  void stop();
  bool isRunning();
  /// False once the session has ended.
  bool processEvents();
  /// Selects in the inspector what lies under a pixel.
  void setPickAction(SbViewportRegion const& viewport, SbVec2s position);
  void setSceneGraph(SoNode* root);

 private:
  struct EntryPoints {
    void (*startNode)(SoNode*, void*);
    void (*startSceneManager)(SoSceneManager*, void*);
    void (*startRenderArea)(SoGuiRenderArea*);
    void (*startStandalone)(int, char**);
    void (*stop)();
    bool (*isRunning)();
    bool (*processEvents)();
    void (*setPickAction)(SbViewportRegion const&, SbVec2s);
    void (*setSceneGraph)(SoNode*);
  };

  SoLibVantle() = default;
  bool load();
  std::string loadFrom(SbString const& path);
  bool takeEntryPoints(void* library);
  bool canStart(char const* operation);

  bool m_loaded = false;
  SbString m_lastError;
  EntryPoints m_entry{};
};
