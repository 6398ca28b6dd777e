// What actions do at groups: which children they enter, how often, and in which scope.

#include <algorithm>
#include <cmath>
#include <optional>

#include "kestrava/actions/SoGetBoundingBoxAction.h"
#include "kestrava/actions/SoStateAction.h"
#include "kestrava/base/SbBox2f.h"
#include "kestrava/base/SoChildList.h"
#include "kestrava/base/SoError.h"
#include "kestrava/kits/SoBaseKit.h"
#include "kestrava/kits/SoNodeKitListPart.h"
#include "kestrava/nodes/SoArray.h"
#include "kestrava/nodes/SoCallback.h"
#include "kestrava/nodes/SoFile.h"
#include "kestrava/nodes/SoLOD.h"
#include "kestrava/nodes/SoLevelOfDetail.h"
#include "kestrava/nodes/SoMultipleCopy.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoSwitch.h"
#include "kestrava/nodes/SoTransformSeparator.h"
#include "kestrava/nodes/SoWWWInline.h"

void SoAction::enterChosenChildren(SoAction& action, SoSwitch& group) {
  SoState& state = action.getState();
  int which = group.whichChild.isIgnored() ? SoSwitch::NONE : group.whichChild.getValue();
  if (which == SoSwitch::INHERIT) {
    which = state.get<SoSwitchElement>().whichChild;
  } else {
    state.modify<SoSwitchElement>().whichChild = which;
  }
  if (which == SoSwitch::ALL) {
    action.enterChildren(&group, false);
  } else if (which >= 0 && which < group.getNumChildren()) {
    action.enterChildren(&group, false, which, which);
  }
}

namespace {

void enterGroup(SoAction& action, SoGroup& group) { action.enterChildren(&group, false); }
void enterSeparator(SoAction& action, SoSeparator& group) { action.enterChildren(&group, true); }
void enterFile(SoAction& action, SoFile& file) { action.enterChildren(&file, false); }
void enterKit(SoAction& action, SoBaseKit& kit) { action.enterChildren(&kit, false); }
void enterList(SoAction& action, SoNodeKitListPart& list) { action.enterChildren(&list, false); }

void enterInline(SoAction& action, SoWWWInline& node) {
  // The first child is the node's own stand-in for what is not loaded yet.
  if (node.hasChildData()) {
    action.enterChildren(&node, false, 1);
  } else {
    action.enterChildren(&node, false, 0, 0);
  }
}

void enterTransformSeparator(SoAction& action, SoTransformSeparator& group) {
  SoState& state = action.getState();
  SbMatrix const before = state.peek<SoModelMatrixElement>().matrix;
  action.enterChildren(&group, false);
  action.whenLeft([&state, before] {
    if (state.peek<SoModelMatrixElement>().matrix != before)
      state.modify<SoModelMatrixElement>().matrix = before;
  });
}

void enterLevelByRange(SoStateAction& action, SoLOD& group) {
  SoState& state = action.getState();
  auto const& camera = state.get<SoCameraElement>();
  int level = 0;
  if (camera.set && !group.range.isIgnored()) {
    SbVec3f const center = group.center.isIgnored() ? SbVec3f() : group.center.getValue();
    SbMatrix const toWorld =
        state.get<SoModelMatrixElement>().matrix * state.get<SoOuterMatrixElement>().matrix;
    float const distance = (toWorld.multVecMatrix(center) - camera.volume.getProjectionPoint()).length();
    while (level < group.range.getNumValues() && distance > group.range[level]) ++level;
  }
  level = std::min(level, group.getNumChildren() - 1);
  if (level >= 0) action.enterChildren(&group, false, level, level);
}

/// Pixels of the rectangle around a box as it is seen; none for what is not all in front of the camera.
std::optional<float> seenArea(SoState const& state, SbBox3f const& box) {
  SbMatrix const toWorld =
      state.get<SoModelMatrixElement>().matrix * state.get<SoOuterMatrixElement>().matrix;
  SbVec2s const pixels = state.get<SoViewportElement>().region.getViewportSizePixels();
  SbViewVolume const& volume = state.get<SoCameraElement>().volume;
  SbBox2f rectangle;
  for (int corner = 0; corner < 8; ++corner) {
    SbVec3f point, screen;
    for (int k = 0; k < 3; ++k) point[k] = corner >> k & 1 ? box.getMax()[k] : box.getMin()[k];
    if (!volume.projectToScreen(toWorld.multVecMatrix(point), screen)) return std::nullopt;
    rectangle.extendBy(SbVec2f(screen[0], screen[1]));
  }
  SbVec2f const size = rectangle.getSize();
  return size[0] * static_cast<float>(pixels[0]) * size[1] * static_cast<float>(pixels[1]);
}

void enterLevelByArea(SoStateAction& action, SoLevelOfDetail& group) {
  SoState& state = action.getState();
  int level = 0;
  if (state.get<SoCameraElement>().set && group.getNumChildren() > 1 && !group.screenArea.isIgnored()) {
    SoGetBoundingBoxAction bounds(action.getViewportRegion());
    bounds.apply(group.getChild(0));
    if (!bounds.getBoundingBox().isEmpty()) {
      // What is partly behind the camera is near.
      auto const area = seenArea(state, bounds.getBoundingBox());
      while (area && level < group.screenArea.getNumValues() && *area <= group.screenArea[level]) ++level;
    }
  }
  level = std::min(level, group.getNumChildren() - 1);
  if (level >= 0) action.enterChildren(&group, false, level, level);
}

/// Bounds are those of the finest level: choosing one by its bounds would never end.
void enterFinestLevel(SoGetBoundingBoxAction& action, SoLevelOfDetail& group) {
  if (group.getNumChildren() > 0) action.enterChildren(&group, false, 0, 0);
}

/// Every copy stands in a scope of its own.
void enterArray(SoStateAction& action, SoArray& group) {
  SoState& state = action.getState();
  SoSFShort const* const counts[3] = {&group.numElements1, &group.numElements2, &group.numElements3};
  SoSFVec3f const* const separations[3] = {&group.separation1, &group.separation2, &group.separation3};
  int number[3];
  SbVec3f step[3], start;
  for (int axis = 0; axis < 3; ++axis) {
    number[axis] = counts[axis]->isIgnored() ? 1 : std::max(0, static_cast<int>(counts[axis]->getValue()));
    step[axis] = separations[axis]->isIgnored() ? SbVec3f() : separations[axis]->getValue();
    float const last = static_cast<float>(number[axis] - 1);
    if (group.origin.getValue() == SoArray::CENTER) start -= step[axis] * (last / 2);
    if (group.origin.getValue() == SoArray::LAST) start -= step[axis] * last;
  }
  std::int64_t const total = std::int64_t{number[0]} * number[1] * number[2];
  if (total > SoArray::MAX_COPIES) {
    SoDebugError::post("SoArray", "'%s' asks for more than %d copies", group.getName().c_str(),
                       SoArray::MAX_COPIES);
    return;
  }
  action.enterChildren(&group, static_cast<int>(total), [=, &state](int pass) {
    SbVec3f const place = start + step[0] * static_cast<float>(pass % number[0]) +
                          step[1] * static_cast<float>(pass / number[0] % number[1]) +
                          step[2] * static_cast<float>(pass / number[0] / number[1]);
    SbMatrix move;
    move.setTranslate(place);
    state.modify<SoModelMatrixElement>().matrix.multLeft(move);
    state.modify<SoSwitchElement>().whichChild = pass;
  });
}

void enterCopies(SoStateAction& action, SoMultipleCopy& group) {
  SoState& state = action.getState();
  int const passes = group.matrix.isIgnored() ? 1 : group.matrix.getNumValues();
  action.enterChildren(&group, passes, [&state, &group](int pass) {
    if (!group.matrix.isIgnored()) state.modify<SoModelMatrixElement>().matrix.multLeft(group.matrix[pass]);
    state.modify<SoSwitchElement>().whichChild = pass;
    auto const& parameters = group.instanceParameter;
    if (parameters.isIgnored() || parameters.getNumValues() == 0) return;
    auto& element = state.modify<SoInstanceElement>();
    for (int i = 0; i < parameters.getNumValues(); ++i) {
      if (parameters[i]) element.values.push_back({parameters[i], pass});
    }
  });
}

void callFunction(SoAction& action, SoCallback& node) {
  // What the function does may depend on anything.
  action.getState().noteOutsideRead();
  if (auto* function = node.getCallback()) function(node.getData(), &action);
}

bool const registered =
    SoAction::addMethods<enterGroup, enterSeparator, enterFile, enterKit, enterList, enterInline,
                         enterTransformSeparator, SoAction::enterChosenChildren, enterLevelByRange,
                         enterLevelByArea, enterFinestLevel, enterArray, enterCopies, callFunction>();

} // namespace
