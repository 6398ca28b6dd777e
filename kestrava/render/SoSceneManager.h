#pragma once

#include <memory>

#include "kestrava/fields/SoFieldContainer.h"
#include "kestrava/render/SoGLRenderAction.h"
#include "kestrava/sensors/SoNodeSensor.h"
#include "kestrava/sensors/SoOneShotSensor.h"

class SoSceneManager;

/// What a scene manager keeps for an inspector that is attached to it.
class SoSceneManagerImpl {
 public:
  explicit SoSceneManagerImpl(SoSceneManager& manager) : m_manager(manager) {}
  /// Not 0: an inspector works on this manager's scene.
  void setOwnVantle(int mark) { m_ownVantle = mark; }
  int getOwnVantle() const { return m_ownVantle; }
  /// Who refers to the manager, and in which way.
  SoAuditorList const& getAuditors() const;

 private:
  SoSceneManager& m_manager;
  int m_ownVantle = 0;
};

/// Keeps a scene drawn: holds it, hears of its changes and asks for a redraw, once for any number of changes.
/// The window that shows the picture answers by calling render() with its OpenGL context current.
class SoSceneManager : public SoFieldContainer {
  SO_CONTAINER(SoSceneManager, SoFieldContainer)
  using RenderCallback = void(void* data, SoSceneManager* manager);

  SoSceneManager();

  /// Referenced; may be null.
  void setSceneGraph(SoNode* root);
  SoNode* getSceneGraph() const { return m_root; }
  /// A camera outside the scene that stands for those inside; referenced. Its changes ask for a redraw, too.
  void setCamera(SoCamera* camera);
  SoCamera* getCamera() const { return m_camera; }

  /// Called from the delay queue when the picture is out of date. Null removes it.
  void setRenderCallback(RenderCallback* function, void* data = nullptr);
  /// Asks for a redraw.
  void scheduleRedraw();

  /// Stays the caller's; null brings the manager's own action back. Viewport, background and camera are set
  /// on it for every frame.
  void setGLRenderAction(SoGLRenderAction* action);
  SoGLRenderAction* getGLRenderAction() const { return m_action; }
  void setBackgroundColorRGBA(SbColorRGBA const& color);
  SbColorRGBA const& getBackgroundColorRGBA() const { return m_background; }
  void setViewportRegion(SbViewportRegion const& region) { m_region = region; }
  SbViewportRegion const& getViewportRegion() const { return m_region; }

  /// Draws the scene with the current OpenGL context. False for `clears` draws over what is there.
  void render(bool clears = true);
  /// Sets viewport, background and camera on an action that draws elsewhere.
  void setUp(SoGLRenderAction& action) const;
  /// With the context current that render() was called with, before it goes.
  void releaseGL();

  SoSceneManagerImpl* getImpl() const { return m_impl.get(); }

 protected:
  ~SoSceneManager() override;

 private:
  static void graphChanged(void* data, SoSensor* sensor);
  static void redrawDue(void* data, SoSensor* sensor);

  std::unique_ptr<SoSceneManagerImpl> m_impl;
  std::unique_ptr<SoGLRenderAction> m_ownAction;
  SoGLRenderAction* m_action;
  SoRef<SoNode> m_root;
  SoRef<SoCamera> m_camera;
  SoNodeSensor m_rootSensor, m_cameraSensor;
  SoOneShotSensor m_redrawSensor;
  RenderCallback* m_callback = nullptr;
  void* m_callbackData = nullptr;
  SbColorRGBA m_background;
  SbViewportRegion m_region;
};
