#pragma once

#include <utility>
#include <vector>

#include "kestrava/base/SbColor.h"
#include "kestrava/render/SoGLRenderAction.h"

/// Draws a scene and then marks what is selected in the selection nodes of the graph, or draws the mark alone over what
/// another action has drawn. What is drawn for the mark is gathered again only when the graph or the selection has
/// changed.
class SoHighlightRenderAction : public SoGLRenderAction {
  SO_ACTION(SoHighlightRenderAction, SoGLRenderAction)
 public:
  ~SoHighlightRenderAction() override = default;

  /// False: the scene is drawn without the mark.
  void setVisible(bool on) { m_visible = on; }
  bool isVisible() const { return m_visible; }
  void setColor(SbColor const& color) { m_color = color; }
  SbColor const& getColor() const { return m_color; }
  /// Pixels.
  void setLineWidth(float pixels) { m_lineWidth = pixels; }
  float getLineWidth() const { return m_lineWidth; }
  void releaseGL() override;

  /// Marks what is selected in the graph below `root` over the frame that `frame` has just drawn, in its view and with
  /// its context current. The coordinates of `root` are those of that frame's scene. OpenGL's state stays as it was.
  void markOver(SoNode* root, SoGLRenderAction const& frame);

  /// What the mark has on the GPU.
  struct Objects {
    unsigned program = 0, vertexArray = 0, buffer = 0;
    /// With their context current.
    void release();
  };
  /// Gives them away, for a mark that ends while the context is not current.
  Objects takeObjects();

 protected:
  /// What the mark is made of, in world coordinates.
  struct Mark {
    std::vector<SbVec3f> lines;      // two a segment
    std::vector<SbVec3f> triangles;  // three a triangle
  };
  explicit SoHighlightRenderAction(SbViewportRegion const& region = SbViewportRegion())
      : SoGLRenderAction(region) {}
  void visit(SoNode* root) override;
  /// Adds what is drawn for one selected path, which starts at the root.
  virtual void gather(SoPath& path, Mark& mark) = 0;
  /// With program, buffer, colour and viewport set.
  virtual void drawMark() = 0;
  /// Draws the gathered lines or triangles once, or several times around their place to make them wide. `x` and `y`
  /// shift them by pixels.
  void drawLines(float width, float x = 0, float y = 0);
  void drawTriangles();
  void drawTrianglesAround(float pixels);
  /// How far what is drawn comes towards the eye, in sizes of a pixel where it is.
  void setNearer(float pixels);
  /// What is drawn next has that colour; the mark's own unless set.
  void setPaint(SbColor const& color, float alpha = 1);
  /// All triangles, and what is a line anyway, of a path; `asEdges` turns triangles into their edges.
  void gatherPrimitives(SoPath& path, Mark& mark, bool asEdges);

 private:
  void update(SoNode* root);
  void findSelections(SoNode* root);
  void mark(SoNode* root, SbViewVolume const& volume);
  bool bindObjects();
  void setShift(float x, float y);

  using Step = std::pair<SoNode*, int>;
  // From the root to each selection node. Nothing is referenced: while the root's id stands, so do its nodes.
  std::vector<std::vector<Step>> m_selections;
  std::uint64_t m_searchedId = 0;
  std::vector<Step> m_shown;  // compared, never followed
  std::uint64_t m_shownId = 0;
  Mark m_mark;
  bool m_uploaded = false;
  bool m_visible = true;
  SbColor m_color{1, 0.55f, 0};
  float m_lineWidth = 2;
  Objects m_objects;
  int m_shift = -1;
};

/// Marks by drawing the edges of the selected shapes.
class SoLineHighlightRenderAction : public SoHighlightRenderAction {
  SO_ACTION(SoLineHighlightRenderAction, SoHighlightRenderAction)
 public:
  explicit SoLineHighlightRenderAction(SbViewportRegion const& region = SbViewportRegion())
      : SoHighlightRenderAction(region) {
    setLineWidth(1);
  }

 protected:
  void gather(SoPath& path, Mark& mark) override { gatherPrimitives(path, mark, true); }
  void drawMark() override;
};

/// Marks by drawing the bounding box of what is selected.
class SoBoxHighlightRenderAction : public SoHighlightRenderAction {
  SO_ACTION(SoBoxHighlightRenderAction, SoHighlightRenderAction)
 public:
  explicit SoBoxHighlightRenderAction(SbViewportRegion const& region = SbViewportRegion())
      : SoHighlightRenderAction(region) {}

 protected:
  void gather(SoPath& path, Mark& mark) override;
  void drawMark() override;
};

/// Marks by a bright rim around the selected shapes.
class SoHaloHighlightRenderAction : public SoHighlightRenderAction {
  SO_ACTION(SoHaloHighlightRenderAction, SoHighlightRenderAction)
 public:
  explicit SoHaloHighlightRenderAction(SbViewportRegion const& region = SbViewportRegion())
      : SoHighlightRenderAction(region) {
    setLineWidth(3);
  }
  /// True: also where something else hides the selected shape.
  void setHaloAlwaysVisible(bool on) { m_alwaysVisible = on; }
  bool isHaloAlwaysVisible() const { return m_alwaysVisible; }

 protected:
  void gather(SoPath& path, Mark& mark) override { gatherPrimitives(path, mark, false); }
  void drawMark() override;

 private:
  void drawRim();
  bool m_alwaysVisible = false;
};
