#pragma once

#include <memory>
#include <unordered_map>

#include "kestrava/base/SbLine.h"
#include "kestrava/base/SoPath.h"
#include "kestrava/render/SoDrawContents.h"

class SoCamera;
class SoNode;
class SoShape;

/// Everything that a scene shows, in the order of the graph, prepared for drawing: one item for each place of
/// a shape. The list is made by walking the graph and stays as long as the node id of the root; neither the
/// camera that looks at it nor the viewport is part of it. Only scenes in which the view decides what is
/// shown (levels of detail, texts in the plane of the screen) are walked again when the view changes.
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
    bool pickable;
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
  /// How often the graph was walked.
  int getNumRebuilds() const { return m_numRebuilds; }
  /// Another number after each rebuild; no two states of any lists share one. Never 0.
  std::uint64_t getVersion() const { return m_version; }

  std::vector<Item> const& getItems() const { return m_items; }
  std::vector<SoDrawMaterial> const& getMaterials() const { return m_materials; }
  std::vector<SoDrawLook> const& getLooks() const { return m_looks; }
  std::vector<SoDrawTexture> const& getTextures() const { return m_textures; }
  std::vector<SoDrawSurroundings> const& getSurroundings() const { return m_surroundings; }
  std::vector<SbMatrix> const& getTextureMatrices() const { return m_textureMatrices; }
  SoDrawBackground const& getBackground() const { return m_background; }
  /// Around all items, in world coordinates.
  SbBox3f const& getBounds() const { return m_bounds; }
  bool hasLights() const { return m_hasLights; }
  /// A copy of the scene's first camera and the way from its coordinates to those of the world; null when there is none.
  SoCamera* getCamera() const { return m_camera; }
  SbMatrix const& getCameraMatrix() const { return m_cameraMatrix; }

  /// A path from the root to the shape of an item.
  SoRef<SoPath> getPath(int item) const;
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
  std::vector<SbMatrix> m_textureMatrices;
  SoDrawBackground m_background;
  SbBox3f m_bounds;
  bool m_hasLights = false;
  SoRef<SoCamera> m_camera;
  SbMatrix m_cameraMatrix;
  // Meshes and what was found out about textures outlive a rebuild.
  std::unordered_map<std::uint64_t, std::shared_ptr<SoDrawMesh const>> m_meshes;
  std::unordered_map<std::shared_ptr<SbImage::Bytes const>, SoDrawTexture::Alpha> m_textureAlphas;
};
