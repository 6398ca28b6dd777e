#pragma once

#include <assimp/scene.h>

#include <functional>
#include <map>
#include <tuple>
#include <vector>

#include "kestrava/nodes/SoGroup.h"
#include "modules/foreign_formats/ModelMaterials.h"

struct ModelShapes;

/// Turns a model that Assimp has read into nodes: its hierarchy as separators, meshes and materials shared,
/// lights and cameras before all shapes, where they stand through the transformations that they share with
/// their nodes.
class ModelScene {
 public:
  /// Takes the meshes out of the scene one by one as they are turned into nodes. `progress` gets 0 to 1.
  ModelScene(aiScene& scene, SbString const& model, std::function<void(double)> const& progress);
  SoRef<SoNode> build();

 private:
  void buildHierarchy(SoGroup* root);
  void addMeshes(aiNode const& node, SoGroup* group);
  std::vector<SoRef<SoNode>> const& meshNodes(unsigned index);
  SoRef<SoNode> hints(bool hidesBack, ModelShapes const& shapes);
  void addLights(SoGroup* top);
  void addCameras(SoGroup* top);
  /// A group with the transformations that lead to the node of a name; `content` comes after them.
  SoRef<SoNode> placed(aiString const& nodeName, SoNode* content);

  aiScene& m_scene;
  std::function<void(double)> const& m_progress;
  bool m_isGltf;
  ModelMaterials m_materials;
  std::map<unsigned, std::vector<SoRef<SoNode>>> m_meshNodes;
  std::map<unsigned, SoRef<SoNode>> m_meshGroups;
  std::map<std::tuple<bool, bool, bool, bool>, SoRef<SoNode>> m_hints;
  std::map<aiNode const*, SoRef<SoNode>> m_transforms; // of the nodes that have one
  SoRef<SoNode> m_convention; // turns the model's units and axes into the toolkit's; null: they are
};
