#pragma once

#include <QList>
#include <QString>

#include "kestrava/base/SbForward.h"
#include "vantle/session/VantleApi.h"

class SoGuiRenderArea;
class SoNode;
class SoSceneManager;

/// The session: starts and stops the inspector, at most once at a time in a process. GUI thread only.
class SoVantleImpl {
 public:
  SoVantleImpl() = default;
  virtual ~SoVantleImpl() = default;

  // Each of these is ignored while a session runs. `window`: native window that the main frame is created
  // over, null for an ordinary one.
  static void start(SoNode* root, void* window);
  static void start(SoSceneManager* manager, void* window);
  static void start(SoGuiRenderArea* area);
  /// The last argument, when there is one, is opened as a scene. Runs no event loop.
  VANTLE_API static void startStandalone(int& argc, char** argv);

  /// Works off what Qt has waiting when the session made the Qt application itself, then carries out a stop
  /// that was asked for. False once nothing runs any more.
  VANTLE_API static bool processEvents();

  /// `now`: tears down before returning; otherwise the next processEvents() does.
  static void stop(bool now);
  /// Tears down whatever exists; creates nothing.
  static void finish();
  static bool isRunning() { return m_isRunning; }
  static bool isInstance() { return m_isRunning; }

  /// Opens a scene file; null is ignored.
  static void setFile(QString const* name);
  static void setPickAction(SbViewportRegion const& region, SbVec2s position);
  static void initScene();

 private:
  static void registerConfiguration();
  static bool beginStart();
  static bool hasQtApplication();
  static void startInHost(SoNode* root, SoSceneManager* manager, void* window);
  static void init(QList<QString> const* arguments, SoSceneManager* manager);
  static SbString configurationFile(bool& isFile);

  static bool m_isRunning;
  static bool m_needFinish;
  static bool m_noQApp;
  static bool m_didModulesinit; // declared by the interface, without use
};
