#include "kestrava/draggers/SoDraggerHandle.h"

#include <algorithm>
#include <cmath>

#include "kestrava/actions/SoStateAction.h"

namespace {

/// Moves to an anchor and undoes that the dragger is scaled unevenly.
void moveToAnchor(SoState& state, SbVec3f const& anchor) {
  SbVec3f const lengths = state.get<SoDraggerElement>().lengths;
  float const even = std::cbrt(lengths[0] * lengths[1] * lengths[2]);
  SbMatrix size, place;
  if (even > 0) size.setScale(SbVec3f(even / lengths[0], even / lengths[1], even / lengths[2]));
  place.setTranslate(anchor);
  state.modify<SoModelMatrixElement>().matrix.multLeft(size * place);
}

void visitHandle(SoStateAction& action, SoDraggerHandle& handle) {
  int const numAnchors = handle.anchor.getNumValues();
  action.enterChildren(&handle, std::max(numAnchors, 1), [&action, &handle, numAnchors](int pass) {
    SoState& state = action.getState();
    if (numAnchors > 0) moveToAnchor(state, handle.anchor[pass]);
    state.modify<SoOverrideElement>().fixed = 0;
    SbColor const color = handle.getShownColor();
    auto& material = state.modify<SoMaterialElement>();
    material = SoMaterialElement();
    material.diffuse.first = SbColor(color * 0.6f);
    // Also where no light shines a handle is to be seen.
    material.ambient.first = SbColor(color * 0.5f);
    material.emissive.first = SbColor(color * 0.5f);
    material.transparency.first = handle.transparency.getValue();
    material.id = handle.getNodeId();
    state.modify<SoLightModelElement>() = {};
    state.modify<SoMaterialBindingElement>() = {};
    state.modify<SoShapeHintsElement>() = {};
    state.modify<SoComplexityElement>() = {};
    state.modify<SoTextureImageElement>() = {};
    state.modify<SoTextureMatrixElement>() = {};
    auto& style = state.modify<SoDrawStyleElement>();
    bool const visible = style.style != SoDrawStyleElement::INVISIBLE;
    style = {};
    style.lineWidth = 2;
    if (!visible) style.style = SoDrawStyleElement::INVISIBLE;
    state.modify<SoPickStyleElement>().boundingBox = false;
  });
}

bool const registered = SoAction::addMethods<visitHandle>();

} // namespace

SbColor SoDraggerHandle::getShownColor() const {
  SbColor const normal = color.getValue(), active = activeColor.getValue();
  switch (look.getValue()) {
    case ACTIVE:
      return active;
    case POINTED_AT:
      return SbColor(normal * 0.45f + active * 0.55f);
    default:
      return normal;
  }
}
