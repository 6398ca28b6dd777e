#include "modules/foreign_formats/ModelScene.h"

#include <assimp/commonMetaData.h>
#include <assimp/metadata.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "kestrava/base/SbMatrix.h"
#include "kestrava/base/SbRotation.h"
#include "kestrava/base/SoChildList.h"
#include "kestrava/nodes/SoMatrixTransform.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoShapeHints.h"
#include "kestrava/nodes/SoTransform.h"
#include "modules/foreign_formats/ModelShapes.h"

namespace {

/// Computed normals are smooth across edges up to 35 degrees.
constexpr float CREASE_ANGLE = 0.61f;

SbMatrix toMatrix(aiMatrix4x4 const& m) {
  SbMatrix matrix;
  for (unsigned row = 0; row < 4; ++row) {
    for (unsigned column = 0; column < 4; ++column) matrix[column][row] = static_cast<float>(m[row][column]);
  }
  return matrix;
}

/// A scale that went through a matrix and back, without the last digits' noise.
SbVec3f rounded(SbVec3f scale) {
  for (int i = 0; i < 3; ++i) {
    float const near = std::round(scale[i] * 1e4f) / 1e4f;
    if (std::abs(near - scale[i]) < 1e-6f * std::abs(scale[i])) scale[i] = near;
  }
  return scale;
}

/// The node that does what a matrix does; null for the identity.
SoRef<SoNode> makeTransform(SbMatrix const& matrix) {
  if (matrix.isIdentity()) return {};
  SbVec3f translation, scale;
  SbRotation rotation, scaleOrientation;
  matrix.getTransform(translation, rotation, scale, scaleOrientation);
  auto* const node = new SoTransform;
  SoRef<SoNode> result(node);
  SbMatrix simple, whole;
  simple.setTransform(translation, rotation, scale, SbRotation(), SbVec3f());
  whole.setTransform(translation, rotation, scale, scaleOrientation, SbVec3f());
  float size = 1e-3f;
  for (int i = 0; i < 16; ++i) size = std::max(size, std::abs(matrix.getValue()[i]));
  bool const isSimple = simple.equals(matrix, 1e-5f * size);
  if (!matrix.isAffine() || (!isSimple && !whole.equals(matrix, 1e-5f * size))) {
    auto* const exact = new SoMatrixTransform;
    exact->matrix = matrix;
    return SoRef<SoNode>(exact);
  }
  if (!(translation == SbVec3f())) node->translation = translation;
  if (!(rotation == SbRotation())) node->rotation = rotation;
  scale = rounded(scale);
  if (!(scale == SbVec3f(1, 1, 1))) node->scaleFactor = scale;
  if (!isSimple) node->scaleOrientation = scaleOrientation;
  return result;
}

/// What the FBX format says about its own axes and units. Assimp brings those of the other formats to y up.
SbMatrix conventionOf(aiScene const& scene) {
  SbMatrix matrix;
  if (!scene.mMetaData) return matrix;
  int axis[3] = {0, 1, 2}, sign[3] = {1, 1, 1};
  char const* const names[] = {"Coord", "Up", "Front"};
  bool isKnown = true;
  for (int i = 0; i < 3; ++i) {
    isKnown = scene.mMetaData->Get(std::string(names[i]) + "Axis", axis[i]) && isKnown;
    isKnown = scene.mMetaData->Get(std::string(names[i]) + "AxisSign", sign[i]) && isKnown;
    isKnown = isKnown && axis[i] >= 0 && axis[i] < 3;
  }
  double centimetres = 100;
  float alike = 100;
  if (!scene.mMetaData->Get("UnitScaleFactor", centimetres) && scene.mMetaData->Get("UnitScaleFactor", alike))
    centimetres = alike;
  if (!isKnown) return matrix;
  SbMatrix axes;
  for (int from = 0; from < 3; ++from) {
    for (int to = 0; to < 3; ++to) axes[from][to] = axis[to] == from ? static_cast<float>(sign[to]) : 0.0f;
  }
  if (axes.det3() > 0.5f) matrix = axes;
  float const scale = static_cast<float>(centimetres / 100);
  SbMatrix units;
  if (scale > 0) units.setScale(scale);
  return matrix * units;
}

/// Without SoGroup's search for circles, which would go up all the way for every node.
void append(SoGroup* group, SoNode* child) { group->getChildren()->append(child); }

bool isFormat(aiScene const& scene, char const* beginning) {
  aiString format;
  return scene.mMetaData && scene.mMetaData->Get(AI_METADATA_SOURCE_FORMAT, format) &&
         std::strncmp(format.C_Str(), beginning, std::strlen(beginning)) == 0;
}

} // namespace

ModelScene::ModelScene(aiScene& scene, SbString const& model, std::function<void(double)> const& progress)
    : m_scene(scene),
      m_progress(progress),
      m_isGltf(isFormat(scene, "glTF")),
      m_materials(scene, model, m_isGltf, isFormat(scene, "glTF2")),
      m_convention(makeTransform(conventionOf(scene))) {}

SoRef<SoNode> ModelScene::build() {
  SoRef<SoGroup> const hierarchy(new SoSeparator);
  buildHierarchy(hierarchy);
  if (!m_convention && m_scene.mNumLights == 0 && m_scene.mNumCameras == 0)
    return SoRef<SoNode>(hierarchy.get());
  SoRef<SoGroup> const top(new SoSeparator);
  addCameras(top);
  addLights(top);
  if (m_convention) append(top, m_convention);
  append(top, hierarchy);
  return SoRef<SoNode>(top.get());
}

void ModelScene::buildHierarchy(SoGroup* root) {
  std::vector<std::pair<aiNode const*, SoGroup*>> open{{m_scene.mRootNode, root}};
  while (!open.empty()) {
    auto const [node, group] = open.back();
    open.pop_back();
    group->setName(modelName(node->mName));
    if (SoRef<SoNode> const transform = makeTransform(toMatrix(node->mTransformation))) {
      m_transforms[node] = transform;
      append(group, transform);
    }
    addMeshes(*node, group);
    for (unsigned i = 0; i < node->mNumChildren; ++i) {
      auto* const child = new SoSeparator;
      append(group, child);
      open.emplace_back(node->mChildren[i], child);
    }
  }
}

// The properties of a mesh stand in the group of its node where they can reach nothing else.
void ModelScene::addMeshes(aiNode const& node, SoGroup* group) {
  bool const isAlone = node.mNumMeshes == 1 && node.mNumChildren == 0;
  for (unsigned i = 0; i < node.mNumMeshes; ++i) {
    unsigned const index = node.mMeshes[i];
    auto const& nodes = meshNodes(index);
    SoGroup* target = group;
    if (!isAlone && !nodes.empty()) {
      SoRef<SoNode>& shared = m_meshGroups[index];
      bool const isNew = !shared;
      if (isNew) shared = SoRef<SoNode>(new SoSeparator);
      append(group, shared);
      if (!isNew) continue;
      target = static_cast<SoGroup*>(shared.get());
    }
    for (auto const& part : nodes) append(target, part);
  }
}

std::vector<SoRef<SoNode>> const& ModelScene::meshNodes(unsigned index) {
  auto const [known, isNew] = m_meshNodes.try_emplace(index);
  if (!isNew || index >= m_scene.mNumMeshes || !m_scene.mMeshes[index]) return known->second;
  aiMesh const& mesh = *m_scene.mMeshes[index];
  ModelMaterials::Look const& look = m_materials.get(mesh.mMaterialIndex);
  ModelShapes const shapes(mesh, look, m_isGltf);
  if (!shapes.nodes.empty()) {
    known->second.push_back(hints(look.hidesBack, shapes));
    known->second.insert(known->second.end(), look.nodes.begin(), look.nodes.end());
    if (look.texture && shapes.hasTexCoords) known->second.push_back(look.texture);
    known->second.insert(known->second.end(), shapes.nodes.begin(), shapes.nodes.end());
  }
  delete m_scene.mMeshes[index];
  m_scene.mMeshes[index] = nullptr;
  m_progress(static_cast<double>(m_meshNodes.size()) / std::max(1u, m_scene.mNumMeshes));
  return known->second;
}

SoRef<SoNode> ModelScene::hints(bool hidesBack, ModelShapes const& shapes) {
  // Where the two differ, exporters take more care of normals; in glTF the order is part of the format.
  bool const isClockwise = shapes.isClockwise && !m_isGltf;
  SoRef<SoNode>& known = m_hints[{hidesBack, shapes.hasPolygons, shapes.hasNormals, isClockwise}];
  if (known) return known;
  auto* const node = new SoShapeHints;
  known = SoRef<SoNode>(node);
  node->vertexOrdering = isClockwise ? SoShapeHints::CLOCKWISE : SoShapeHints::COUNTERCLOCKWISE;
  if (hidesBack) node->shapeType = SoShapeHints::SOLID;
  if (shapes.hasPolygons) node->faceType = SoShapeHints::UNKNOWN_FACE_TYPE;
  // glTF wants meshes without normals flat; elsewhere normals were left out because the faces give them.
  if (!shapes.hasNormals && !m_isGltf) node->creaseAngle = CREASE_ANGLE;
  return known;
}
