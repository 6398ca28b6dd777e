// The lights and cameras of a model.

#include <assimp/version.h>

#include <algorithm>
#include <cmath>

#include "kestrava/base/SbMatrix.h"
#include "kestrava/base/SbRotation.h"
#include "kestrava/nodes/SoDirectionalLight.h"
#include "kestrava/nodes/SoOrthographicCamera.h"
#include "kestrava/nodes/SoPerspectiveCamera.h"
#include "kestrava/nodes/SoPointLight.h"
#include "kestrava/nodes/SoSpotLight.h"
#include "kestrava/nodes/SoSwitch.h"
#include "kestrava/nodes/SoTransformSeparator.h"
#include "modules/foreign_formats/ModelScene.h"

namespace {

SbVec3f toVec3(aiVector3D const& v) { return SbVec3f(v.x, v.y, v.z); }

SbVec3f directionOf(aiVector3D const& v) {
  SbVec3f direction = toVec3(v);
  return direction.normalize() > 0 ? direction : SbVec3f(0, 0, -1);
}

/// Looking along a direction with another one up.
SbRotation orientationOf(aiVector3D const& lookAt, aiVector3D const& up) {
  SbVec3f const back = -directionOf(lookAt);
  SbVec3f right = toVec3(up).cross(back);
  if (!(right.normalize() > 0)) return SbRotation(SbVec3f(0, 0, 1), back);
  SbVec3f const above = back.cross(right);
  SbMatrix matrix;
  SbVec3f const* const rows[] = {&right, &above, &back};
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 3; ++column) matrix[row][column] = (*rows[row])[column];
  }
  return SbRotation(matrix);
}

SoRef<SoLight> makeLight(aiLight const& light, bool isGltf) {
  if (light.mType == aiLightSource_DIRECTIONAL) {
    auto* const node = new SoDirectionalLight;
    node->direction = directionOf(light.mDirection);
    return SoRef<SoLight>(node);
  }
  if (light.mType == aiLightSource_POINT) {
    auto* const node = new SoPointLight;
    node->location = toVec3(light.mPosition);
    return SoRef<SoLight>(node);
  }
  if (light.mType != aiLightSource_SPOT) return {};
  auto* const node = new SoSpotLight;
  node->location = toVec3(light.mPosition);
  node->direction = directionOf(light.mDirection);
  // glTF measures from the axis, the other formats across the cone.
  float const angle = light.mAngleOuterCone * (isGltf ? 1.0f : 0.5f);
  if (angle > 0) node->cutOffAngle = std::min(angle, 1.5707963f);
  return SoRef<SoLight>(node);
}

/// Assimp gives the angle across the width. Up to version 5.2 what it gives for glTF is the angle across the
/// height times the aspect.
float heightAngleOf(aiCamera const& camera, float aspect, bool isGltf) {
  if (isGltf && (aiGetVersionMajor() < 5 || (aiGetVersionMajor() == 5 && aiGetVersionMinor() <= 2)))
    return camera.mHorizontalFOV / aspect;
  return 2 * std::atan(std::tan(camera.mHorizontalFOV / 2) / aspect);
}

SoRef<SoCamera> makeCamera(aiCamera const& camera, bool isGltf) {
  SoRef<SoCamera> node;
  float const aspect = camera.mAspect > 0 ? camera.mAspect : 1;
  if (camera.mOrthographicWidth > 0) {
    auto* const flat = new SoOrthographicCamera;
    node = SoRef<SoCamera>(flat);
    flat->height = 2 * camera.mOrthographicWidth / aspect;
  } else {
    auto* const deep = new SoPerspectiveCamera;
    node = SoRef<SoCamera>(deep);
    // What is hardly an angle stands for none given.
    constexpr float NARROWEST = 0.02f, WIDEST = 3.1f;
    float const angle = heightAngleOf(camera, aspect, isGltf);
    if (angle > NARROWEST && angle < WIDEST) deep->heightAngle = angle;
  }
  // A camera of glTF has no place besides that of its node, which Assimp gives here once more.
  node->position = isGltf ? SbVec3f() : toVec3(camera.mPosition);
  SbRotation const orientation = orientationOf(camera.mLookAt, camera.mUp);
  if (!orientation.equals(SbRotation(), 1e-6f)) node->orientation = orientation;
  node->aspectRatio = aspect;
  if (camera.mClipPlaneNear > 0) node->nearDistance = camera.mClipPlaneNear;
  if (camera.mClipPlaneFar > camera.mClipPlaneNear) node->farDistance = camera.mClipPlaneFar;
  return node;
}

aiNode const* findNode(aiNode const* root, aiString const& name) {
  std::vector<aiNode const*> open{root};
  while (!open.empty()) {
    aiNode const* const node = open.back();
    open.pop_back();
    if (node->mName == name) return node;
    for (unsigned i = node->mNumChildren; i-- > 0;) open.push_back(node->mChildren[i]);
  }
  return nullptr;
}

} // namespace

SoRef<SoNode> ModelScene::placed(aiString const& nodeName, SoNode* content) {
  SoRef<SoGroup> const group(new SoTransformSeparator);
  group->setName(modelName(nodeName));
  std::vector<SoNode*> transforms;
  for (aiNode const* node = findNode(m_scene.mRootNode, nodeName); node; node = node->mParent) {
    auto const known = m_transforms.find(node);
    if (known != m_transforms.end()) transforms.push_back(known->second);
  }
  if (m_convention) transforms.push_back(m_convention);
  for (auto i = transforms.rbegin(); i != transforms.rend(); ++i) group->addChild(*i);
  group->addChild(content);
  return SoRef<SoNode>(group.get());
}

void ModelScene::addLights(SoGroup* top) {
  for (unsigned i = 0; i < m_scene.mNumLights; ++i) {
    aiLight const& light = *m_scene.mLights[i];
    SoRef<SoLight> const node = makeLight(light, m_isGltf);
    if (!node) continue; // ambient and area lights have no counterpart
    aiColor3D const& c = light.mColorDiffuse;
    // Formats count in units of their own; here 1 is the most.
    float const strongest = std::max({c.r, c.g, c.b});
    if (strongest > 0 && std::isfinite(strongest)) {
      node->color = SbColor(c.r / strongest, c.g / strongest, c.b / strongest);
      node->intensity = std::min(strongest, 1.0f);
    }
    top->addChild(placed(light.mName, node));
  }
}

// The first camera is the one that is seen through; a switch lets the others wait.
void ModelScene::addCameras(SoGroup* top) {
  if (m_scene.mNumCameras == 0) return;
  SoRef<SoGroup> group(top);
  if (m_scene.mNumCameras > 1) {
    auto* const chosen = new SoSwitch;
    chosen->setName("cameras");
    chosen->whichChild = 0;
    group = SoRef<SoGroup>(chosen);
    top->addChild(chosen);
  }
  for (unsigned i = 0; i < m_scene.mNumCameras; ++i) {
    aiCamera const& camera = *m_scene.mCameras[i];
    group->addChild(placed(camera.mName, makeCamera(camera, m_isGltf)));
  }
}
