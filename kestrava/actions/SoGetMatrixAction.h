#pragma once

#include "kestrava/actions/SoStateAction.h"

/// The transformation at the tail of a path, its own included, to the coordinates that the head stands in.
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
    SoStateAction::visit(node);
    bool const isTail = getAppliedPath() ? getCurPath() == *getAppliedPath() : getCurPath().getLength() == 1;
    if (!isTail) return;
    m_matrix = getState().get<SoModelMatrixElement>().matrix;
    terminate();
  }

 private:
  SbMatrix m_matrix;
};
