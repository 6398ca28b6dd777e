#pragma once

#include <array>
#include <memory>
#include <unordered_map>
#include <vector>

#include "kestrava/base/SbColorRGBA.h"
#include "kestrava/base/SbViewVolume.h"
#include "kestrava/render/SoDrawList.h"
#include "kestrava/render/SoGLBackground.h"
#include "kestrava/render/SoGLPage.h"
#include "kestrava/render/SoGLProgram.h"
#include "kestrava/render/SoGLScreenText.h"
#include "kestrava/render/SoGLShaders.h"
#include "kestrava/render/SoGLTextures.h"

/// Draws prepared lists with OpenGL 3.3 (core or compatibility profile). Everything it has on the GPU belongs
/// to one context: call release() with that context current before it goes. The context is current for all
/// operations but forget().
class SoGLRenderer {
 public:
  enum Headlight { OFF, WHEN_DARK, ON };  ///< WHEN_DARK: when the scene has no light of its own
  enum Transparency {
    NONE,              ///< everything is opaque
    BLEND,             ///< in the order of the graph
    SORTED,            ///< the farthest shapes first, of each its far side first
    SORTED_TRIANGLES,  ///< the farthest triangles first, of all shapes together
    SCREEN_DOOR,       ///< a pattern of pixels is left out; in any order
  };
  struct Frame {
    SbViewVolume volume;
    SbViewportRegion region;
    SbColorRGBA background;  ///< where the scene has no background
    bool clears = true;      ///< false: draws over what is there
    Headlight headlight = WHEN_DARK;
    Transparency transparency = SORTED;
  };
  struct Statistics {
    int drawCalls = 0;
    int rangesSeen = 0, rangesCulled = 0;  ///< in the last frame
    int pagesMade = 0;                     ///< since the renderer was made
    int pages = 0;
    int programsMade = 0;  ///< compiled, since the renderer was made
  };

  SoGLRenderer();
  /// Forgets.
  ~SoGLRenderer();
  SoGLRenderer(SoGLRenderer const&) = delete;
  SoGLRenderer& operator=(SoGLRenderer const&) = delete;

  void render(SoDrawList const& list, Frame const& frame);
  Statistics const& getStatistics() const { return m_statistics; }
  /// False leaves out the draw calls alone, to measure what a frame costs besides them.
  void setDrawing(bool on) { m_drawing = on; }

  void release();
  /// For a context that is gone.
  void forget();

 private:
  /// What is drawn with one look and one kind of primitive.
  struct Group {
    SoDrawLook look;
    SoGLPage::Primitive primitive;
    unsigned features = 0;
    std::vector<SoGLPage*> pages;
  };
  /// A part of a group that is drawn in its turn by distance.
  struct Turn {
    float distance;
    Group const* group;
    SoGLPage* page;
    SoGLPage::Range range;
    bool isTriangle;  // its range is set when the order is known
  };
  using Pages = std::unordered_map<std::uint64_t, std::unique_ptr<SoGLPage>>;

  void prepare(SoDrawList const& list, Frame const& frame);
  void checkLimits(SoDrawList const& list);
  SoGLProgram const* useProgram(SoDrawList const& list, Group const& group, unsigned more);
  std::vector<std::uint32_t> uploadMaterials(SoDrawList const& list);
  void addPages(SoDrawList const& list, Group& group, std::vector<int> const& items,
                std::vector<std::uint32_t> const& rows, Pages& pages);
  unsigned featuresOf(SoDrawList const& list, Group const& group) const;
  void setView(Frame const& frame);
  void setSurroundings(SoDrawList const& list, Frame const& frame);
  void drawTransparent(SoDrawList const& list, Frame const& frame);
  /// `more`: features beside those of the groups.
  void drawLayer(SoDrawList const& list, SoDrawLook::Layer layer, unsigned more = 0);
  bool findTurns(Frame const& frame);
  void orderTriangles();
  void drawTexts(SoDrawList const& list, Frame const& frame, SoDrawLook::Layer layer);
  void drawInTurn(SoDrawList const& list, Frame const& frame);
  bool bindGroup(SoDrawList const& list, Group const& group, unsigned more = 0);
  void drawRuns(SoGLPage const& page, std::vector<SoGLPage::Range> const& runs);

  std::uint64_t m_preparedVersion = 0;
  std::vector<Group> m_groups;
  Pages m_pages;
  std::vector<float> m_materialTable;
  std::unordered_map<unsigned, SoGLProgram> m_programs;
  SoGLShaders m_shaders;
  SoGLTextures m_textures;
  unsigned m_materialBuffer = 0, m_materialTexture = 0;
  unsigned m_viewBuffer = 0, m_surroundingsBuffer = 0;
  int m_surroundingsStride = 0;
  SoGLBackground m_background;
  SoGLScreenText m_texts;

  std::array<SbPlane, 6> m_boundaries;
  std::vector<SoGLPage::Range> m_runs;
  // Of the latest frame with transparent things in turn; they serve as long as neither the list nor the view changes.
  std::vector<Turn> m_turns;
  std::array<SbVec3f, 2> m_turnsView;  // eye and direction
  std::array<SbPlane, 6> m_turnsBoundaries;
  bool m_turnsAreCurrent = false;
  int m_turnsSeen = 0, m_turnsCulled = 0;
  int m_clipDistances = 0;
  Statistics m_statistics;
  bool m_headlight = false;
  bool m_preparedSortable = false;
  bool m_toldLimits = false;
  bool m_drawing = true;
};
