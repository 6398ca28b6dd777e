#pragma once

#include "kestrava/actions/SoStateAction.h"
#include "kestrava/nodes/SoLOD.h"
#include "kestrava/nodes/SoLevelOfDetail.h"
#include "kestrava/nodes/SoSwitch.h"

/// The transformation at the tail of a path, its own included, to the coordinates that the head stands in. What a
/// switch or a level of detail on the path shows at present does not matter.
class SoGetMatrixAction : public SoStateAction {
  SO_ACTION(SoGetMatrixAction, SoStateAction)
 public:
  using SoStateAction::SoStateAction;

  SbMatrix const& getMatrix() const { return m_matrix; }
  SbMatrix getInverse() const { return m_matrix.inverse(); }

 protected:
  void begin() override {
    SoStateAction::begin();
    m_matrix = SbMatrix();
  }
  void visit(SoNode* node) override {
    if (int const chosen = childOfChoice(node); chosen >= 0) return enterChildren(node, false, chosen, chosen);
    SoStateAction::visit(node);
    bool const isTail = getAppliedPath() ? getCurPath() == *getAppliedPath() : getCurPath().getLength() == 1;
    if (!isTail) return;
    m_matrix = getState().get<SoModelMatrixElement>().matrix;
    terminate();
  }

 private:
  /// Where the path goes on below a node of which not all children are shown; -1 for other nodes.
  int childOfChoice(SoNode const* node) const {
    SoPath const* const along = getAppliedPath();
    if (!along || !(node->isOfType(SoSwitch::getClassTypeId()) || node->isOfType(SoLOD::getClassTypeId()) ||
                    node->isOfType(SoLevelOfDetail::getClassTypeId()))) {
      return -1;
    }
    int const here = getCurPath().getLength();
    if (here >= along->getLength()) return -1;
    SoRef<SoPath> const way(along->copy(0, here));
    return getCurPath() == *way ? along->getIndex(here) : -1;
  }

  SbMatrix m_matrix;
};
