#pragma once

#include <assimp/scene.h>

#include <map>
#include <string>
#include <vector>

#include "kestrava/base/SbColor.h"
#include "kestrava/base/SbName.h"
#include "kestrava/base/SbString.h"
#include "kestrava/nodes/SoNode.h"

/// A name in a model; empty for those that Assimp gives to what has none.
SbName modelName(aiString const& name);

/// From the linear scale, in which glTF gives colours, to the one of images, in which the toolkit works.
float fromLinear(float value);

class SoTexture2;

/// The materials of a model as nodes, each made once.
class ModelMaterials {
 public:
  ModelMaterials(aiScene const& scene, SbString const& model, bool isGltf, bool isLinear);

  struct Look {
    std::vector<SoRef<SoNode>> nodes; // material, texture, and a light model where it is not lit
    SbColor diffuse{1, 1, 1};
    float transparency = 0;
    bool isLinear = false;  // colours of vertices are
    bool isOpaque = false;  // whatever alpha images and vertices have
    bool hidesBack = false; // faces seen from behind are not drawn
    int textureChannel = 0; // of the coordinates
    SoRef<SoNode> texture;  // null: none
  };
  Look const& get(unsigned index);

 private:
  Look make(aiMaterial const& material);
  void makeTexture(aiMaterial const& material, aiTextureType type, Look& look);
  void setImage(SoTexture2& node, char const* path, bool isOpaque, bool mirrorsS, bool mirrorsT);

  aiScene const& m_scene;
  SbString m_model;
  bool m_isGltf, m_isLinear, m_isObj; // linear: its colours
  std::map<unsigned, Look> m_looks;
  std::map<std::string, SoRef<SoNode>> m_textures;
};
