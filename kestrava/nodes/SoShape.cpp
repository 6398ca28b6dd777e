#include "kestrava/nodes/SoShape.h"

#include <bit>

#include "kestrava/render/SoMeshBuilder.h"

SbBox3f SoShape::getBounds(SoState const& state) const {
  SoMesh mesh;
  buildMesh(state, mesh);
  return mesh.getBounds();
}

void SoShape::buildShownMesh(SoState const& state, SoMesh& mesh) const {
  if (state.get<SoComplexityElement>().type != SoComplexityElement::BOUNDING_BOX) {
    buildMesh(state, mesh);
  } else if (SbBox3f const bounds = getBounds(state); !bounds.isEmpty()) {
    SoBuildBox(bounds, state, mesh, false);
  }
}

void SoShape::applyOwnState(SoState&) const {}

std::uint64_t SoShape::getMeshKey(SoState const& state) const {
  std::uint64_t key =
      SoMixKey(getNodeId(), static_cast<std::uint64_t>(state.get<SoMaterialBindingElement>().value));
  auto const& complexity = state.get<SoComplexityElement>();
  key = SoMixKey(key, std::bit_cast<std::uint32_t>(complexity.value) |
                          static_cast<std::uint64_t>(complexity.type == SoComplexityElement::BOUNDING_BOX) << 32);
  if (state.get<SoTextureImageElement>().id == 0) return key;
  auto const& texture = state.get<SoTextureCoordinateElement>();
  return SoMixKey(SoMixKey(key, texture.id), static_cast<std::uint64_t>(texture.source) + 1);
}
