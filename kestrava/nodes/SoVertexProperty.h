#pragma once

#include "kestrava/fields/SoMFUInt32.h"
#include "kestrava/fields/SoMFVec2f.h"
#include "kestrava/fields/SoMFVec3f.h"
#include "kestrava/fields/SoSFEnum.h"
#include "kestrava/nodes/SoMaterialBinding.h"
#include "kestrava/nodes/SoNode.h"

class SoState;

/// Coordinates, normals, texture coordinates, colours and bindings in one. As the vertex property of a
/// shape it serves that shape alone; where a field is empty, the shape takes what the nodes met before have
/// set.
class SoVertexProperty : public SoNode {
  SO_NODE(SoVertexProperty, SoNode)
  using enum SoMaterialBinding::Binding;

  SoMFVec3f vertex{this, "vertex"};
  SoMFVec3f normal{this, "normal"}; ///< unit length
  SoMFVec2f texCoord{this, "texCoord"};
  SoMFUInt32 orderedRGBA{this, "orderedRGBA"}; ///< 0xRRGGBBAA
  SoSFEnum materialBinding{this, "materialBinding", OVERALL,
                           SoMaterialBinding::bindings()}; ///< counts with orderedRGBA
  SoSFEnum normalBinding{this, "normalBinding", PER_VERTEX_INDEXED,
                         SoMaterialBinding::bindings()}; ///< counts with normal

  /// Sets what it has in a traversal state. The state refers to the fields' values from then on.
  void apply(SoState& state) const;

 protected:
  ~SoVertexProperty() override = default;
};
