#pragma once

#include <memory>

#include "kestrava/base/SbColorRGBA.h"
#include "kestrava/base/SbImage.h"
#include "kestrava/base/SbString.h"
#include "kestrava/base/SbVec2i32.h"
#include "kestrava/base/SoBase.h"
#include "kestrava/render/SoGLRenderAction.h"

class SoBufferObject;
class SoHeadlessContext;
class SoSceneManager;

/// Draws scenes into images, with or without a display. Has an OpenGL context of its own, made for the first
/// picture; the one that the program has current stays as it is.
class SoOffscreenRenderArea : public SoBase {
 public:
  /// RGB: 3 bytes a pixel; RGBA: 4. Rows from the bottom, without gaps.
  enum OutputFormat { RGB, RGBA };

  SoOffscreenRenderArea();
  static SoType getClassTypeId();
  SoType getTypeId() const override { return getClassTypeId(); }

  /// Pixels.
  void setSize(SbVec2i32 const& size) { m_size = size; }
  SbVec2i32 const& getSize() const { return m_size; }
  void setBackgroundColor(SbColorRGBA const& color) { m_action.setBackgroundColor(color); }
  /// Samples a pixel, 4 by default: smooth edges. 0 is several times as fast where OpenGL is software.
  void setNumSamples(int samples) { m_numSamples = samples; }
  /// Referenced.
  void setSceneGraph(SoNode* root) { m_root = SoRef<SoNode>(root); }
  SoNode* getSceneGraph() const { return m_root; }
  /// Draws what a scene manager shows, with its action, instead of an own scene; null ends that. Referenced.
  void setSceneManager(SoSceneManager* manager);
  /// Camera, transparency and headlight. Without a camera the scene's first one counts; a scene that has none is
  /// seen from the front as a whole.
  SoGLRenderAction& getGLRenderAction() { return m_action; }
  void setCamera(SoCamera* camera) { m_action.setCamera(camera); }

  // False, with a debug error, when there is no OpenGL, the size is none, or the result can not be stored.
  bool renderToImage(SbImage& image, OutputFormat format = RGB);
  /// The extension of the name says the kind of file, see SbImageWriter.
  bool renderToFile(SbString const& path, OutputFormat format = RGB);
  /// Gives the buffer the size of the picture.
  bool renderToBuffer(SoBufferObject* buffer, OutputFormat format = RGB);

 protected:
  ~SoOffscreenRenderArea() override;

 private:
  bool draw(OutputFormat format, SbImage::Bytes& bytes);
  void releaseGL();
  bool makeFramebuffers();
  void releaseFramebuffers();

  SbVec2i32 m_size{100, 100};
  SoRef<SoNode> m_root;
  SoRef<SoSceneManager> m_manager;
  SoGLRenderAction m_action;
  std::unique_ptr<SoHeadlessContext> m_context;
  bool m_contextAsked = false;
  SbVec2i32 m_madeSize;
  int m_numSamples = 4, m_madeSamples = 0;
  unsigned m_framebuffers[2] = {};   // drawn into, with several samples a pixel; read from
  unsigned m_renderbuffers[3] = {};  // colour, depth, resolved colour
};
