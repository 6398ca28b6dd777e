#pragma once

#include <vector>

#include "kestrava/actions/SoStateAction.h"
#include "kestrava/base/SbColorRGBA.h"

/// A corner of a triangle, an end of a line segment, or a point, in the coordinates of its shape. What is interpolated
/// between corners is everything but the indices.
struct SoPrimitiveVertex {
  SbVec3f point;
  SbVec3f normal;   // unit length; zero for what has none
  SbVec3f texCoord; // zero for what has none
  int materialIndex = 0;
  SbColorRGBA color; // diffuse colour and opacity, as the shape's material has them at the index
  int coordIndex = -1; // of the shape's coordinates; -1 for shapes without

  /// The same in other coordinates.
  SoPrimitiveVertex transformed(SbMatrix const& matrix) const;
};

/// Walks a graph and calls functions of the program: before and after nodes of a type, and for each triangle,
/// line segment and point that shapes of a type consist of, as they are drawn (the corners of a triangle run
/// counterclockwise on its front side). Texts in the plane of the screen have triangles where a camera stands before
/// them. In a function for primitives the action's state and path are those of the shape.
class SoCallbackAction : public SoStateAction {
  SO_ACTION(SoCallbackAction, SoStateAction)
 public:
  enum Response {
    CONTINUE,
    ABORT, ///< ends the traversal
    PRUNE, ///< leaves out the node and everything below it
  };
  using NodeCB = Response(void* data, SoCallbackAction* action, SoNode const* node);
  using TriangleCB = void(void* data, SoCallbackAction* action, SoPrimitiveVertex const& a,
                          SoPrimitiveVertex const& b, SoPrimitiveVertex const& c);
  using LineSegmentCB = void(void* data, SoCallbackAction* action, SoPrimitiveVertex const& a,
                             SoPrimitiveVertex const& b);
  using PointCB = void(void* data, SoCallbackAction* action, SoPrimitiveVertex const& point);

  using SoStateAction::SoStateAction;

  // Derived types count. Functions are called in the order they were added.
  void addPreCallback(SoType type, NodeCB* function, void* data = nullptr) {
    m_pre.push_back({type, function, data});
  }
  void addPostCallback(SoType type, NodeCB* function, void* data = nullptr) {
    m_post.push_back({type, function, data});
  }
  void addTriangleCallback(SoType type, TriangleCB* function, void* data = nullptr) {
    m_triangles.push_back({type, function, data});
  }
  void addLineSegmentCallback(SoType type, LineSegmentCB* function, void* data = nullptr) {
    m_lines.push_back({type, function, data});
  }
  void addPointCallback(SoType type, PointCB* function, void* data = nullptr) {
    m_points.push_back({type, function, data});
  }

  /// From the coordinates of the visited node to those of the root.
  SbMatrix const& getModelMatrix() { return getState().get<SoModelMatrixElement>().matrix; }

 protected:
  void visit(SoNode* node) override;

 private:
  template <class Function> struct Callback {
    SoType type;
    Function* function;
    void* data;
  };
  Response call(std::vector<Callback<NodeCB>> const& callbacks, SoNode* node);
  void callForPrimitives(SoNode* node);

  std::vector<Callback<NodeCB>> m_pre, m_post;
  std::vector<Callback<TriangleCB>> m_triangles;
  std::vector<Callback<LineSegmentCB>> m_lines;
  std::vector<Callback<PointCB>> m_points;
};
