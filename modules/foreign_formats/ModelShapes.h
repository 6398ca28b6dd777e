#pragma once

#include <assimp/mesh.h>

#include <vector>

#include "kestrava/nodes/SoNode.h"
#include "modules/foreign_formats/ModelMaterials.h"

/// What a mesh of a model becomes: a face set, a line set and a point set, those that it has; they share one
/// vertex property. `tinted`: its colours are factors of the material's.
struct ModelShapes {
  ModelShapes(aiMesh const& mesh, ModelMaterials::Look const& look, bool tinted);

  std::vector<SoRef<SoNode>> nodes;
  bool hasPolygons = false; // with more than three corners
  bool hasNormals = false;
  bool hasTexCoords = false;
  bool isClockwise = false; // most faces, seen from where their normals point
};
