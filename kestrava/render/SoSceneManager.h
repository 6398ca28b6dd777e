#pragma once

#include <memory>
#include <vector>

#include "kestrava/actions/SoHandleEventAction.h"
#include "kestrava/fields/SoFieldContainer.h"
#include "kestrava/nodes/SoGroup.h"
#include "kestrava/render/SoHighlightRenderAction.h"
#include "kestrava/sensors/SoNodeSensor.h"
#include "kestrava/sensors/SoOneShotSensor.h"

class SoSceneManager;

/// What a scene manager keeps for an inspector that is attached to it.
class SoSceneManagerImpl {
 public:
  explicit SoSceneManagerImpl(SoSceneManager& manager) : m_manager(manager) {}
  /// Not 0: an inspector works on this manager's scene.
  void setOwnVantle(int mark);
  int getOwnVantle() const { return m_ownVantle; }
  /// Who refers to the manager, and in which way.
  SoAuditorList const& getAuditors() const;

  /// While the manager is marked as above: each frame ends with the mark of what is selected below a group, provided
  /// that the manager's scene is one of its children. The group is referenced; the action is the caller's, who takes it
  /// away (null) before it goes. The context need not be current for that.
  void setHighlight(SoHighlightRenderAction* action, SoGroup* selectionAbove);

 private:
  friend class SoSceneManager;
  void frameDrawn(SoGLRenderAction const& frame);
  void releaseGL();

  SoSceneManager& m_manager;
  int m_ownVantle = 0;
  SoHighlightRenderAction* m_highlight = nullptr;
  SoRef<SoGroup> m_marked;
  std::vector<SoHighlightRenderAction::Objects> m_abandoned;  // deleted when their context is current again
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

  /// Offers an event to the nodes of the scene, through the camera and the viewport that it is shown with; true when one
  /// of them has handled it. An event that comes while another one is being offered is refused.
  bool processEvent(SoEvent const& event);
  /// Null when no node gets all events alone.
  SoNode* getGrabber() const { return m_eventAction.getGrabber(); }
  /// Ends a drag: the node that grabs is offered the release of the left button where the pointer was last, and has no
  /// grab afterwards. Another scene ends it as well.
  void releaseGrab();
  /// For the pick radius. It is not applied by others.
  SoHandleEventAction* getHandleEventAction() { return &m_eventAction; }

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
  SoHandleEventAction m_eventAction;
  SbVec2s m_pointer;  // of the latest event
  bool m_offersEvent = false;
  RenderCallback* m_callback = nullptr;
  void* m_callbackData = nullptr;
  SbColorRGBA m_background;
  SbViewportRegion m_region;
};
