#pragma once

#include <QList>
#include <QString>

#include "kestrava/base/SbForward.h"
#include "vantle/session/VantleApi.h"

class SoGuiRenderArea;
class SoNode;
class SoSceneManager;

/// The session: starts and stops the inspector, at most once at a time in a process. GUI thread only.
///
/// A stop tears the inspector down before it returns. It can not do so while an operation of the inspector, or
/// Qt delivering an event to one of its widgets, is on the stack: then nothing is running any more and nothing
/// of the inspector is to be seen, on the screen or in the host's picture, and the teardown follows as soon as
/// that is done: in the event loop of a host's Qt application, otherwise in the processEvents() that is
/// running. Code of a plug-in that the inspector does not call, for instance a timer of its own, is not known
/// to be on the stack; it asks for a stop through an event (QMetaObject::invokeMethod(), queued, with a menu or
/// widget that it has in the main frame).
///
/// A session that runs when the Qt application or the program ends is stopped then. What a host had before the
/// start (its Qt application, default locale, C locale, error handlers, preferences, library paths) it has
/// after the stop.
class SoVantleImpl {
 public:
  SoVantleImpl() = default;
  virtual ~SoVantleImpl() = default;

  // Each of these is ignored while a session runs, and refused with a debug error when the teardown of the
  // last one has to wait, or when the host's Qt application can not have windows. `window`: native window that
  // the main frame is created over, null for an ordinary one.
  static void start(SoNode* root, void* window);
  static void start(SoSceneManager* manager, void* window);
  static void start(SoGuiRenderArea* area);
  /// The last argument, when there is one, is opened as a scene. Runs no event loop.
  VANTLE_API static void startStandalone(int& argc, char** argv);

  /// Works off what Qt has waiting when the session made the Qt application itself, then carries out a stop
  /// that was asked for. False once nothing runs any more.
  VANTLE_API static bool processEvents();

  /// `now`: tears down before returning, as far as that can be (see above); otherwise the next processEvents()
  /// does.
  static void stop(bool now);
  /// Tears down whatever exists; creates nothing. Not for code that isOnStack().
  static void finish();
  static bool isRunning() { return m_isRunning; }
  static bool isInstance() { return m_isRunning; }

  /// Opens a scene file; null is ignored.
  static void setFile(QString const* name);
  static void setPickAction(SbViewportRegion const& region, SbVec2s position);
  static void initScene();

  /// While one lives an operation of the inspector that may call others' code is on the stack.
  class Call {
   public:
    Call() { ++m_calls; }
    ~Call() { --m_calls; }
    Call(Call const&) = delete;
    Call& operator=(Call const&) = delete;
  };
  /// Whether objects of the session may be in use further up the stack, so that none may be destroyed now.
  static bool isOnStack();
  /// For VantleEventWatch: nothing for the inspector is being delivered any more.
  static void eventDelivered();

 private:
  static void registerConfiguration();
  static bool beginStart(char const* operation);
  static void endStart();
  static bool hasQtApplication();
  static void makeQtApplication(int& argc, char** argv);
  static void startInHost(SoNode* root, SoSceneManager* manager, void* window);
  static void init(QList<QString> const* arguments, SoSceneManager* manager);
  static void watchTheEnd();
  static void retire();
  static void finishWaiting();
  static void applicationEnds();
  static void programEnds();
  static void readConfiguration();
  static SbString configurationFile(bool& isFile);

  static bool m_isRunning;
  static bool m_needFinish;
  static bool m_noQApp;
  static bool m_didModulesinit; // declared by the interface, without use
  static bool m_finishesSoon;   // a stop could not be carried out at once
  static bool m_isFinishing;
  static int m_calls;
};
