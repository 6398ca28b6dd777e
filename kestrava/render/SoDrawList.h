#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <thread>
#include <unordered_map>

#include "kestrava/base/SbLine.h"
#include "kestrava/base/SoPath.h"
#include "kestrava/render/SoDrawContents.h"
#include "kestrava/render/SoDrawListPicker.h"
#include "kestrava/render/SoScreenText.h"
#include "kestrava/render/SoTessellation.h"

class SoCamera;
class SoNode;
class SoShape;

/// Everything that a scene shows, in the order of the graph, prepared for drawing: one item for each place of
/// a shape. The list is made by walking the graph and stays as long as the node id of the root; neither the
/// camera that looks at it nor the viewport is part of it. Only scenes in which the view decides what is
/// shown (levels of detail) are walked again when the view changes, and those with shapes that are as fine as they are
/// large on the screen when one of these has to become finer or coarser.
class SoDrawList {
 public:
  struct Item {
    SoShape const* shape;  // lives as long as the graph is unchanged
    std::shared_ptr<SoDrawMesh const> mesh;
    SbMatrix matrix;  // to world coordinates
    SbBox3f bounds;   // in world coordinates
    int material;
    int look;
    int textureMatrix;  // -1: identity
    int place;          // for getPath()
    int instance;       // where its inputs begin among the list's input values; -1: it has none
    bool pickable;
    bool pickedAsBox;
  };
  /// From where the scene is going to be seen.
  struct View {
    SbViewportRegion region;
    /// Set: stands for every camera of the scene.
    SoCamera* camera = nullptr;
    SbViewVolume volume;  // of that camera
  };
  struct Hit {
    int item = -1;
    int triangle = -1;
    SbVec3f point, normal;  // in world coordinates; the normal is that of the triangle
    float distance = 0;
  };

  SoDrawList();
  ~SoDrawList();
  SoDrawList(SoDrawList const&) = delete;
  SoDrawList& operator=(SoDrawList const&) = delete;

  /// Makes the list anew when that is necessary. Null makes an empty list.
  void update(SoNode* root, View const& view);
  /// A list that somebody else on this thread keeps for the root, brought up to date; null when there is none, or
  /// none for this view where that matters. For a short look: it is its owner's.
  static SoDrawList const* findPrepared(SoNode* root, View const& view);
  /// How often the graph was walked.
  int getNumRebuilds() const { return m_numRebuilds; }
  /// Another number after each rebuild; no two states of any lists share one. Never 0.
  std::uint64_t getVersion() const { return m_version; }

  std::vector<Item> const& getItems() const { return m_items; }
  std::vector<SoDrawMaterial> const& getMaterials() const { return m_materials; }
  std::vector<SoDrawLook> const& getLooks() const { return m_looks; }
  std::vector<SoDrawTexture> const& getTextures() const { return m_textures; }
  std::vector<SoDrawSurroundings> const& getSurroundings() const { return m_surroundings; }
  std::vector<SoDrawShader> const& getShaders() const { return m_shaders; }
  std::vector<std::vector<SoDrawInput>> const& getInputs() const { return m_inputs; }
  std::vector<float> const& getInputValues() const { return m_inputValues; }
  std::vector<SbMatrix> const& getTextureMatrices() const { return m_textureMatrices; }
  SoDrawBackground const& getBackground() const { return m_background; }
  /// Around all items, in world coordinates.
  SbBox3f const& getBounds() const { return m_bounds; }
  bool hasLights() const { return m_hasLights; }
  /// A copy of the scene's first camera and the way from its coordinates to those of the world; null when there is none.
  SoCamera* getCamera() const { return m_camera; }
  SbMatrix const& getCameraMatrix() const { return m_cameraMatrix; }
  /// What that camera sees through a viewport of an aspect, in world coordinates; nothing when there is none.
  std::optional<SbViewVolume> getCameraVolume(float aspect) const;

  /// A path from the root to the shape of an item.
  SoRef<SoPath> getPath(int item) const;
  /// True when an item stands at the end of a path from the root, or below it.
  bool isBelow(int item, SoPath const& path) const;
  std::vector<SoScreenText> const& getScreenTexts() const { return m_screenTexts; }
  /// Made when it is first asked for; good until the next update().
  SoDrawListPicker const& getPicker() const;
  /// The triangle that a ray meets first, lines and points left out; item -1 when it meets none.
  Hit intersect(SbLine const& ray) const;

 private:
  friend class SoDrawListAction;
  /// A node on the way to some shape.
  struct Place {
    SoNode* node;
    int childIndex;
    int above;  // index of the place above, -1 for the root
  };
  void clear();
  void keepNodes();
  bool fits(View const& view) const;

  SoNode const* m_root = nullptr; // never looked into: it may be gone
  std::atomic<std::thread::id> m_thread;  // where the list was last brought up to date; the rest is read only there
  bool m_updating = false;
  std::uint64_t m_rootId = 0;
  View m_view;
  bool m_dependsOnView = false;
  int m_numRebuilds = 0;
  std::uint64_t m_version;

  std::vector<Item> m_items;
  std::vector<Place> m_places;
  std::vector<SoDrawMaterial> m_materials;
  std::vector<SoDrawLook> m_looks;
  std::vector<SoDrawTexture> m_textures;
  std::vector<SoDrawSurroundings> m_surroundings;
  std::vector<SoDrawShader> m_shaders;
  std::vector<std::vector<SoDrawInput>> m_inputs;
  std::vector<float> m_inputValues;
  std::vector<SbMatrix> m_textureMatrices;
  std::vector<SoScreenText> m_screenTexts;
  std::vector<SoTessellation::ScreenSize> m_screenSizes;
  mutable std::unique_ptr<SoDrawListPicker> m_picker;
  std::vector<SoRef<SoNode>> m_kept;  // what a callback of the scene might have removed while the list was made
  SoDrawBackground m_background;
  SbBox3f m_bounds;
  bool m_hasLights = false;
  SoRef<SoCamera> m_camera;
  SbMatrix m_cameraMatrix;
  // Meshes and what was found out about textures outlive a rebuild.
  struct KnownMesh {
    std::shared_ptr<SoDrawMesh const> mesh;
    int rebuild = 0;  // the latest one that it was met in
  };
  std::unordered_map<std::uint64_t, KnownMesh> m_meshes;
  std::unordered_map<std::shared_ptr<SbImage::Bytes const>, SoDrawTexture::Alpha> m_textureAlphas;
};
