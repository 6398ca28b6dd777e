#include "kestrava/actions/SoCallbackAction.h"

#include <algorithm>

#include "kestrava/nodes/SoShape.h"
#include "kestrava/render/SoMeshBuilder.h"

namespace {

SbColorRGBA colorAt(SoMaterialElement const& material, int index) {
  if (!material.packed || material.packedCount <= 0) {
    return SbColorRGBA(material.diffuse[index], 1 - material.transparency[index]);
  }
  SbColorRGBA color;
  color.setPackedValue(material.packed[std::clamp(index, 0, material.packedCount - 1)]);
  return color;
}

} // namespace

SoPrimitiveVertex SoPrimitiveVertex::transformed(SbMatrix const& matrix) const {
  SoPrimitiveVertex result = *this;
  result.point = matrix.multVecMatrix(point);
  bool invertible = false;
  SbMatrix const inverse = matrix.inverse(&invertible);
  // Normals go with the transposed inverse.
  if (invertible) result.normal = inverse.transpose().multDirMatrix(normal);
  result.normal.normalize();
  return result;
}

SoCallbackAction::Response SoCallbackAction::call(std::vector<Callback<NodeCB>> const& callbacks,
                                                  SoNode* node) {
  for (auto const& callback : callbacks) {
    if (!node->isOfType(callback.type)) continue;
    Response const response = callback.function(callback.data, this, node);
    if (response == ABORT) terminate();
    if (response != CONTINUE) return response;
  }
  return CONTINUE;
}

void SoCallbackAction::visit(SoNode* node) {
  if (call(m_pre, node) != CONTINUE) return;
  SoStateAction::visit(node);
  if (node->isOfType(SoShape::getClassTypeId())) callForPrimitives(node);
  bool const hasPost =
      std::any_of(m_post.begin(), m_post.end(), [node](auto const& c) { return node->isOfType(c.type); });
  if (hasPost) whenLeft([this, node] { call(m_post, node); });
}

void SoCallbackAction::callForPrimitives(SoNode* node) {
  auto fits = [node](auto const& callback) { return node->isOfType(callback.type); };
  if (!std::any_of(m_triangles.begin(), m_triangles.end(), fits) &&
      !std::any_of(m_lines.begin(), m_lines.end(), fits) &&
      !std::any_of(m_points.begin(), m_points.end(), fits)) {
    return;
  }
  SoMesh mesh;
  static_cast<SoShape*>(node)->buildShownMesh(getState(), mesh);
  SoOwnStateScope const own(static_cast<SoShape const&>(*node), getState());
  auto const& material = getState().get<SoMaterialElement>();
  auto vertex = [&mesh, &material](std::uint32_t i) {
    SoPrimitiveVertex v;
    v.point = mesh.positions[i];
    if (!mesh.normals.empty()) v.normal = mesh.normals[i];
    if (!mesh.texCoords.empty()) v.texCoord = mesh.texCoords[i];
    if (!mesh.materials.empty()) v.materialIndex = mesh.materials[i];
    if (!mesh.coordIndices.empty()) v.coordIndex = mesh.coordIndices[i];
    v.color = colorAt(material, v.materialIndex);
    return v;
  };
  for (auto const& callback : m_triangles) {
    if (!fits(callback)) continue;
    for (size_t i = 0; i < mesh.triangles.size(); i += 3) {
      callback.function(callback.data, this, vertex(mesh.triangles[i]), vertex(mesh.triangles[i + 1]),
                        vertex(mesh.triangles[i + 2]));
    }
  }
  for (auto const& callback : m_lines) {
    if (!fits(callback)) continue;
    for (size_t i = 0; i < mesh.lines.size(); i += 2) {
      callback.function(callback.data, this, vertex(mesh.lines[i]), vertex(mesh.lines[i + 1]));
    }
  }
  for (auto const& callback : m_points) {
    if (!fits(callback)) continue;
    for (std::uint32_t const i : mesh.points) callback.function(callback.data, this, vertex(i));
  }
}
