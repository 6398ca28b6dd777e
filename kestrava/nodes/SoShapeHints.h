#pragma once

#include "kestrava/fields/SoSFBool.h"
#include "kestrava/fields/SoSFEnum.h"
#include "kestrava/fields/SoSFFloat.h"
#include "kestrava/nodes/SoNode.h"

/// What is known about the faces that follow.
class SoShapeHints : public SoNode {
  SO_NODE(SoShapeHints, SoNode)
  enum VertexOrdering { UNKNOWN_ORDERING, CLOCKWISE, COUNTERCLOCKWISE };
  static std::vector<SoEnumSymbol> const& orderings() {
    static std::vector<SoEnumSymbol> const symbols{{"UNKNOWN_ORDERING", UNKNOWN_ORDERING},
                                                   {"CLOCKWISE", CLOCKWISE},
                                                   {"COUNTERCLOCKWISE", COUNTERCLOCKWISE}};
    return symbols;
  }
  enum ShapeType { UNKNOWN_SHAPE_TYPE, SOLID };
  static std::vector<SoEnumSymbol> const& shapeTypes() {
    static std::vector<SoEnumSymbol> const symbols{{"UNKNOWN_SHAPE_TYPE", UNKNOWN_SHAPE_TYPE},
                                                   {"SOLID", SOLID}};
    return symbols;
  }
  enum FaceType { UNKNOWN_FACE_TYPE, CONVEX };
  static std::vector<SoEnumSymbol> const& faceTypes() {
    static std::vector<SoEnumSymbol> const symbols{{"UNKNOWN_FACE_TYPE", UNKNOWN_FACE_TYPE},
                                                   {"CONVEX", CONVEX}};
    return symbols;
  }

  SoSFEnum vertexOrdering{this, "vertexOrdering", UNKNOWN_ORDERING, orderings()}; ///< as seen from the front
  SoSFEnum shapeType{this, "shapeType", UNKNOWN_SHAPE_TYPE,
                     shapeTypes()}; ///< SOLID with a known ordering: back faces are never seen
  SoSFEnum faceType{this, "faceType", CONVEX, faceTypes()}; ///< CONVEX: faces need no test
  SoSFFloat creaseAngle{this, "creaseAngle",
                        0.0f};                 ///< radians; computed normals are smooth across smaller angles
  SoSFBool override_{this, "override", false}; ///< what this node sets can not be changed further down

 protected:
  ~SoShapeHints() override = default;
};
