#include "kestrava/actions/SoGetBoundingBoxAction.h"

#include <mutex>

#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoShape.h"

namespace {

/// The bounds that separators keep are asked for by several threads.
std::mutex keptBounds;

void visitShape(SoGetBoundingBoxAction& action, SoShape& shape) {
  action.extendBy(shape.getBounds(action.getState()));
}
void visitSeparatorMethod(SoGetBoundingBoxAction& action, SoSeparator& group) {
  action.visitSeparator(group);
}
void visitGroupMethod(SoGetBoundingBoxAction& action, SoGroup& group) { action.visitGroup(group); }

bool const registered = SoAction::addMethods<visitShape, visitSeparatorMethod, visitGroupMethod>();

} // namespace

void SoGetBoundingBoxAction::begin() {
  SoStateAction::begin();
  m_box.makeEmpty();
  m_before.clear();
  m_shared.clear();
}

void SoGetBoundingBoxAction::extendBy(SbBox3f const& box) {
  m_box.extendBy(box.transformed(getState().peek<SoModelMatrixElement>().matrix));
}

void SoGetBoundingBoxAction::resetBounds() {
  getState().noteOutsideRead();
  m_box.makeEmpty();
  for (Before& before : m_before) before.box.makeEmpty();
}

// Gathers what is below a group in coordinates of its own and in a scope of its own, and notes whether
// anything from outside of the scope plays a part.
void SoGetBoundingBoxAction::gatherApart(SoGroup& group) {
  enterChildren(&group, 1, [this](int) {
    SoState& state = getState();
    m_before.push_back({m_box, state.peek<SoModelMatrixElement>().matrix, {}});
    state.modify<SoOuterMatrixElement>().matrix =
        m_before.back().matrix * state.peek<SoOuterMatrixElement>().matrix;
    state.modify<SoModelMatrixElement>().matrix = SbMatrix();
    m_before.back().use = state.exchangeUse();
    m_box.makeEmpty();
  });
}

SbBox3f SoGetBoundingBoxAction::finishApart(bool& isOwn) {
  SoState& state = getState();
  Before const before = m_before.back();
  m_before.pop_back();
  isOwn = state.getUse().lowestRead >= state.getDepth();
  SoStateUse use = before.use;
  use.merge(state.getUse());
  state.exchangeUse(use);
  SbBox3f const gathered = m_box;
  m_box = before.box;
  m_box.extendBy(gathered.transformed(before.matrix));
  return gathered;
}

void SoGetBoundingBoxAction::visitSeparator(SoSeparator& group) {
  if (getAppliedPath() || group.boundingBoxCaching.getValue() == SoSeparator::OFF) {
    enterChildren(&group, true);
    return;
  }
  std::uint64_t const id = group.getNodeId();
  std::unique_lock lock(keptBounds);
  if (group.m_boundsId == id) {
    SbBox3f const box = group.m_bounds;
    lock.unlock();
    extendBy(box);
    return;
  }
  lock.unlock();
  gatherApart(group);
  whenLeft([this, &group] {
    bool isOwn = false;
    SbBox3f const box = finishApart(isOwn);
    if (!isOwn) return;
    std::lock_guard keep(keptBounds);
    group.m_bounds = box;
    group.m_boundsId = group.getNodeId();
  });
}

// Groups leave traces in the state, so their bounds can not be kept without a look at what is in them: the
// first visit finds out whether they do. Only groups that are met several times are worth it.
void SoGetBoundingBoxAction::visitGroup(SoGroup& group) {
  if (getAppliedPath() || group.getAuditors().getLength() < 2) {
    enterChildren(&group, false);
    return;
  }
  auto const [known, isFirst] = m_shared.try_emplace(&group);
  if (isFirst) {
    enterChildren(&group, false);
    SoStateUse const before = getState().exchangeUse();
    whenLeft([this, &group, before] {
      SoState& state = getState();
      if (state.getUse().lowestModified > state.getDepth()) m_shared[&group].kind = Shared::UNKNOWN_BOX;
      SoStateUse use = before;
      use.merge(state.getUse());
      state.exchangeUse(use);
    });
    return;
  }
  switch (known->second.kind) {
    case Shared::CHANGES_STATE:
    case Shared::DEPENDS_ON_STATE:
      enterChildren(&group, false);
      break;
    case Shared::BOXED:
      extendBy(known->second.box);
      break;
    case Shared::UNKNOWN_BOX:
      gatherApart(group);
      whenLeft([this, &group] {
        bool isOwn = false;
        SbBox3f const box = finishApart(isOwn);
        Shared& shared = m_shared[&group];
        shared.kind = isOwn ? Shared::BOXED : Shared::DEPENDS_ON_STATE;
        shared.box = box;
      });
  }
}
