#pragma once

#include "kestrava/actions/SoStateAction.h"
#include "kestrava/render/SoDrawList.h"
#include "kestrava/render/SoGLRenderer.h"

/// Draws a scene with the OpenGL context that is current, through a draw list that it keeps from frame to
/// frame. Used with one context only: releaseGL() with that context current before the context or the action
/// goes.
class SoGLRenderAction : public SoStateAction {
  SO_ACTION(SoGLRenderAction, SoStateAction)
 public:
  using Headlight = SoGLRenderer::Headlight;
  using Transparency = SoGLRenderer::Transparency;

  explicit SoGLRenderAction(SbViewportRegion const& region = SbViewportRegion());
  ~SoGLRenderAction() override;

  /// Where the scene brings no background of its own.
  void setBackgroundColor(SbColorRGBA const& color) { m_frame.background = color; }
  SbColorRGBA const& getBackgroundColor() const { return m_frame.background; }
  void setTransparencyType(Transparency type) { m_frame.transparency = type; }
  Transparency getTransparencyType() const { return m_frame.transparency; }
  void setHeadlight(Headlight headlight) { m_frame.headlight = headlight; }
  Headlight getHeadlight() const { return m_frame.headlight; }
  /// False: draws over what is there already.
  void setClearing(bool on) { m_frame.clears = on; }

  /// A camera outside the scene; it stands for those inside. Null: the scene's first one, and where there is
  /// none the scene is seen from the front as a whole. Referenced.
  void setCamera(SoCamera* camera);
  SoCamera* getCamera() const { return m_camera; }
  /// The camera that shows the latest scene from the front; null while there is one in the scene or outside.
  SoCamera* getFrontCamera() const { return m_camera ? nullptr : m_frontCamera.get(); }
  /// True: the near and far planes close around the scene instead of being the camera's.
  void setFitDepth(bool on) { m_fitDepth = on; }

  /// Brings the list up to date for a scene without drawing; needs no context.
  void prepare(SoNode* root);
  SoDrawList const& getDrawList() const { return m_list; }
  /// As of the latest frame.
  SbViewVolume const& getViewVolume() const { return m_frame.volume; }
  SoGLRenderer& getRenderer() { return m_renderer; }
  virtual void releaseGL() { m_renderer.release(); }

 protected:
  /// Draws the whole scene at its root.
  void visit(SoNode* root) override;

 private:
  SbViewVolume sceneVolume(SoNode* root);

  SoDrawList m_list;
  SoGLRenderer m_renderer;
  SoGLRenderer::Frame m_frame;
  SoRef<SoCamera> m_camera, m_frontCamera;
  bool m_fitDepth = false;
};

/// The same view with near and far planes close around a box; they are as they were when nothing of the box
/// lies ahead.
SbViewVolume SoFitDepth(SbViewVolume const& volume, SbBox3f const& box);
