#include "kestrava/render/SoMesh.h"

SbBox3f SoMesh::getBounds() const {
  SbBox3f bounds;
  for (auto const* indices : {&triangles, &lines, &points}) {
    for (std::uint32_t const i : *indices) bounds.extendBy(positions[i]);
  }
  return bounds;
}
