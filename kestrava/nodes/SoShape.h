#pragma once

#include "kestrava/base/SbBox3f.h"
#include "kestrava/nodes/SoNode.h"

class SoState;
struct SoMesh;

/// Base of everything that is drawn. A shape says what it consists of in one operation; drawing,
/// picking, counting and bounds follow from that.
class SoShape : public SoNode {
  SO_ABSTRACT_NODE(SoShape, SoNode)

  /// Appends the shape's triangles, lines and points in its own coordinates, as the traversal state asks
  /// (coordinates, bindings, hints, complexity, font ...). A fault of the data (an index out of range, too
  /// few coordinates) leaves out what is concerned and is posted once a node state as a debug error.
  virtual void buildMesh(SoState const& state, SoMesh& mesh) const = 0;
  /// What is drawn in place of the shape: its mesh, or the box around it where the complexity asks for boxes.
  void buildShownMesh(SoState const& state, SoMesh& mesh) const;
  /// Bounds of what buildMesh() would give; shapes that know better answer without building.
  virtual SbBox3f getBounds(SoState const& state) const;
  /// Sets what the shape brings along for itself alone (the colours and bindings of a vertex property). Who
  /// looks at the state for a shape (its material, say) opens a scope, calls this, and closes the scope
  /// again; the other operations here take it into account by themselves.
  virtual void applyOwnState(SoState& state) const;
  /// Equal keys, equal shown meshes: made from the shape's node id and the ids of the elements it looks at.
  virtual std::uint64_t getMeshKey(SoState const& state) const;

 protected:
  SoShape() = default;
};
