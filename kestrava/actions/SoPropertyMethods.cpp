// What property nodes do to the traversal state.

#include <algorithm>
#include <cmath>
#include <type_traits>

#include "kestrava/actions/SoStateAction.h"
#include "kestrava/nodes/SoBaseColor.h"
#include "kestrava/nodes/SoColorIndex.h"
#include "kestrava/nodes/SoComplexity.h"
#include "kestrava/nodes/SoCoordinate3.h"
#include "kestrava/nodes/SoCoordinate4.h"
#include "kestrava/nodes/SoDrawStyle.h"
#include "kestrava/nodes/SoEnvironment.h"
#include "kestrava/nodes/SoFont.h"
#include "kestrava/nodes/SoLightModel.h"
#include "kestrava/nodes/SoMaterial.h"
#include "kestrava/nodes/SoMaterialBinding.h"
#include "kestrava/nodes/SoNormal.h"
#include "kestrava/nodes/SoNormalBinding.h"
#include "kestrava/nodes/SoPickStyle.h"
#include "kestrava/nodes/SoShapeHints.h"
#include "kestrava/nodes/SoTexture2.h"
#include "kestrava/nodes/SoTexture2Transform.h"
#include "kestrava/nodes/SoTexture3.h"
#include "kestrava/nodes/SoTexture3Transform.h"
#include "kestrava/nodes/SoTextureCoordinate2.h"
#include "kestrava/nodes/SoTextureCoordinate3.h"
#include "kestrava/nodes/SoTextureCoordinateBinding.h"
#include "kestrava/nodes/SoTextureCoordinateEnvironment.h"
#include "kestrava/nodes/SoTextureCoordinatePlane.h"
#include "kestrava/nodes/SoVertexProperty.h"

namespace {

/// True when something above has fixed this kind of property; otherwise the node may fix it itself.
bool isFixed(SoState& state, unsigned kind, bool overrides) {
  if (state.peek<SoOverrideElement>().fixed & kind) return true;
  if (overrides) state.modify<SoOverrideElement>().fixed |= kind;
  return false;
}
template <class Node> bool isFixed(SoStateAction& action, Node const& node, SoOverrideElement::Kind kind) {
  return isFixed(action.getState(), kind, node.override_.getValue());
}

template <class Field, class T> void take(Field const& field, T& target) {
  if (field.isIgnored()) return;
  if constexpr (std::is_enum_v<T>) {
    // A field may have a number that none of its symbols stands for.
    auto const means = [&](SoEnumSymbol const& symbol) { return symbol.value == field.getValue(); };
    if (std::none_of(field.symbols().begin(), field.symbols().end(), means)) return;
  }
  target = static_cast<T>(field.getValue());
}

template <class Field, class T> void takeValues(Field const& field, SoMaterialValues<T>& target) {
  if (field.isIgnored() || field.getNumValues() == 0) return;
  target.first = field[0];
  target.values = field.getValues();
  target.count = field.getNumValues();
}

/// The id of an element that a node has changed in part.
std::uint64_t combineIds(std::uint64_t before, std::uint64_t node) {
  return (before ^ (node + 0x9e3779b97f4a7c15u)) * 0xff51afd7ed558ccdu;
}

void takeDiffuse(SoMFColor const& field, SoMaterialElement& element) {
  if (field.isIgnored() || field.getNumValues() == 0) return;
  takeValues(field, element.diffuse);
  element.packed = nullptr;
  element.packedCount = 0;
}

void visitMaterial(SoStateAction& action, SoMaterial& node) {
  if (isFixed(action, node, SoOverrideElement::MATERIAL)) return;
  SoState& state = action.getState();
  auto& element = state.modify<SoMaterialElement>();
  takeValues(node.ambientColor, element.ambient);
  if (!(state.peek<SoOverrideElement>().fixed & SoOverrideElement::COLOR))
    takeDiffuse(node.diffuseColor, element);
  takeValues(node.specularColor, element.specular);
  takeValues(node.emissiveColor, element.emissive);
  takeValues(node.shininess, element.shininess);
  takeValues(node.transparency, element.transparency);
  element.id = combineIds(element.id, node.getNodeId());
}

void visitBaseColor(SoStateAction& action, SoBaseColor& node) {
  SoState& state = action.getState();
  if (state.peek<SoOverrideElement>().fixed & SoOverrideElement::MATERIAL) return;
  if (isFixed(action, node, SoOverrideElement::COLOR)) return;
  auto& element = state.modify<SoMaterialElement>();
  takeDiffuse(node.rgb, element);
  element.id = combineIds(element.id, node.getNodeId());
}

void visitColorIndex(SoStateAction& action, SoColorIndex& node) {
  SoState& state = action.getState();
  if (state.peek<SoOverrideElement>().fixed & SoOverrideElement::MATERIAL) return;
  if (isFixed(action, node, SoOverrideElement::COLOR)) return;
  if (node.index.isIgnored() || node.index.getNumValues() == 0) return;
  std::vector<SbColor> const& colors = node.getColors();
  auto& element = state.modify<SoMaterialElement>();
  element.diffuse = {colors[0], colors.data(), static_cast<int>(colors.size())};
  element.packed = nullptr;
  element.packedCount = 0;
  element.id = combineIds(element.id, node.getNodeId());
}

void visitMaterialBinding(SoStateAction& action, SoMaterialBinding& node) {
  if (isFixed(action, node, SoOverrideElement::MATERIAL_BINDING)) return;
  take(node.value, action.getState().modify<SoMaterialBindingElement>().value);
}

void visitNormalBinding(SoStateAction& action, SoNormalBinding& node) {
  if (isFixed(action, node, SoOverrideElement::NORMAL_BINDING)) return;
  take(node.value, action.getState().modify<SoNormalBindingElement>().value);
}

void visitLightModel(SoStateAction& action, SoLightModel& node) {
  if (isFixed(action, node, SoOverrideElement::LIGHT_MODEL) || node.model.isIgnored()) return;
  action.getState().modify<SoLightModelElement>().lit = node.model.getValue() != SoLightModel::BASE_COLOR;
}

void visitDrawStyle(SoStateAction& action, SoDrawStyle& node) {
  if (isFixed(action, node, SoOverrideElement::DRAW_STYLE)) return;
  auto& element = action.getState().modify<SoDrawStyleElement>();
  take(node.style, element.style);
  take(node.pointSize, element.pointSize);
  take(node.lineWidth, element.lineWidth);
  take(node.linePattern, element.linePattern);
  if (!(element.pointSize > 0)) element.pointSize = 1;
  if (!(element.lineWidth > 0)) element.lineWidth = 1;
}

void visitShapeHints(SoStateAction& action, SoShapeHints& node) {
  if (isFixed(action, node, SoOverrideElement::SHAPE_HINTS)) return;
  auto& element = action.getState().modify<SoShapeHintsElement>();
  take(node.vertexOrdering, element.ordering);
  if (!node.shapeType.isIgnored()) element.solid = node.shapeType.getValue() == SoShapeHints::SOLID;
  if (!node.faceType.isIgnored()) element.convex = node.faceType.getValue() == SoShapeHints::CONVEX;
  take(node.creaseAngle, element.creaseAngle);
}

void visitComplexity(SoStateAction& action, SoComplexity& node) {
  if (isFixed(action, node, SoOverrideElement::COMPLEXITY)) return;
  auto& element = action.getState().modify<SoComplexityElement>();
  take(node.type, element.type);
  take(node.value, element.value);
}

void visitPickStyle(SoStateAction& action, SoPickStyle& node) {
  if (isFixed(action, node, SoOverrideElement::PICK_STYLE) || node.style.isIgnored()) return;
  auto& element = action.getState().modify<SoPickStyleElement>();
  element.pickable = node.style.getValue() != SoPickStyle::UNPICKABLE;
  element.boundingBox = node.style.getValue() == SoPickStyle::BOUNDING_BOX;
}

void visitFont(SoStateAction& action, SoFont& node) {
  SoState& state = action.getState();
  if (state.get<SoOverrideElement>().fixed & SoOverrideElement::FONT) return;
  isFixed(action, node, SoOverrideElement::FONT);
  // A part that is ignored comes from outside.
  if (node.name.isIgnored() || node.size.isIgnored()) state.get<SoFontElement>();
  auto& element = state.modify<SoFontElement>();
  take(node.name, element.name);
  take(node.size, element.size);
  element.id = combineIds(element.id, node.getNodeId());
}

void visitEnvironment(SoStateAction& action, SoEnvironment& node) {
  if (isFixed(action, node, SoOverrideElement::ENVIRONMENT)) return;
  auto& element = action.getState().modify<SoEnvironmentElement>();
  take(node.ambientIntensity, element.ambientIntensity);
  take(node.ambientColor, element.ambientColor);
  take(node.attenuation, element.attenuation);
  take(node.fogType, element.fog);
  take(node.fogColor, element.fogColor);
  take(node.fogVisibility, element.fogVisibility);
}

void setCoordinates(SoState& state, SoMFVec3f const& field, SoNode const& node) {
  auto& element = state.modify<SoCoordinateElement>();
  element = {field.getValues(), nullptr, field.getNumValues(), node.getNodeId()};
}

void visitCoordinate3(SoStateAction& action, SoCoordinate3& node) {
  if (!node.point.isIgnored()) setCoordinates(action.getState(), node.point, node);
}

void visitCoordinate4(SoStateAction& action, SoCoordinate4& node) {
  if (node.point.isIgnored()) return;
  action.getState().modify<SoCoordinateElement>() = {nullptr, node.point.getValues(),
                                                     node.point.getNumValues(), node.getNodeId()};
}

void setNormals(SoState& state, SoMFVec3f const& field, SoNode const& node) {
  state.modify<SoNormalElement>() = {field.getValues(), field.getNumValues(), node.getNodeId()};
}

void visitNormal(SoStateAction& action, SoNormal& node) {
  if (!node.vector.isIgnored()) setNormals(action.getState(), node.vector, node);
}

/// Coordinates without values leave it to the shape.
void setTextureCoordinates(SoState& state, SbVec2f const* coords2, SbVec3f const* coords3, int count,
                           SoNode const& node) {
  auto& element = state.modify<SoTextureCoordinateElement>();
  element.source =
      count > 0 ? SoTextureCoordinateElement::EXPLICIT : SoTextureCoordinateElement::SHAPE_DEFAULT;
  element.coords2 = coords2;
  element.coords3 = coords3;
  element.count = count;
  element.id = node.getNodeId();
}

void visitTextureCoordinate2(SoStateAction& action, SoTextureCoordinate2& node) {
  if (node.point.isIgnored()) return;
  setTextureCoordinates(action.getState(), node.point.getValues(), nullptr, node.point.getNumValues(), node);
}

void visitTextureCoordinate3(SoStateAction& action, SoTextureCoordinate3& node) {
  if (node.point.isIgnored()) return;
  setTextureCoordinates(action.getState(), nullptr, node.point.getValues(), node.point.getNumValues(), node);
}

void visitTextureCoordinatePlane(SoStateAction& action, SoTextureCoordinatePlane& node) {
  auto& element = action.getState().modify<SoTextureCoordinateElement>();
  element = SoTextureCoordinateElement();
  element.source = SoTextureCoordinateElement::PLANE;
  take(node.directionS, element.directionS);
  take(node.directionT, element.directionT);
  element.id = node.getNodeId();
}

void visitTextureCoordinateEnvironment(SoStateAction& action, SoTextureCoordinateEnvironment& node) {
  auto& element = action.getState().modify<SoTextureCoordinateElement>();
  element = SoTextureCoordinateElement();
  element.source = SoTextureCoordinateElement::ENVIRONMENT;
  element.id = node.getNodeId();
}

void visitTextureCoordinateBinding(SoStateAction& action, SoTextureCoordinateBinding& node) {
  if (node.value.isIgnored()) return;
  action.getState().modify<SoTextureCoordinateBindingElement>().value =
      node.value.getValue() == SoTextureCoordinateBinding::PER_VERTEX ? SoBinding::PER_VERTEX
                                                                      : SoBinding::PER_VERTEX_INDEXED;
}

template <class Node> void setTexture(SoStateAction& action, Node& node) {
  auto& element = action.getState().modify<SoTextureImageElement>();
  element.image = node.getImage();
  element.repeatS = node.wrapS.isIgnored() || node.wrapS.getValue() == Node::REPEAT;
  element.repeatT = node.wrapT.isIgnored() || node.wrapT.getValue() == Node::REPEAT;
  element.model = SoTextureImageElement::MODULATE;
  take(node.model, element.model);
  take(node.blendColor, element.blendColor);
  element.id = element.image.isEmpty() ? 0 : node.getNodeId();
}

void visitTexture2(SoStateAction& action, SoTexture2& node) {
  if (!isFixed(action, node, SoOverrideElement::TEXTURE)) setTexture(action, node);
}

void visitTexture3(SoStateAction& action, SoTexture3& node) {
  if (isFixed(action, node, SoOverrideElement::TEXTURE)) return;
  setTexture(action, node);
  action.getState().modify<SoTextureImageElement>().repeatR =
      node.wrapR.isIgnored() || node.wrapR.getValue() == SoTexture3::REPEAT;
}

void visitTexture2Transform(SoStateAction& action, SoTexture2Transform& node) {
  SbVec2f translation, scale(1, 1), center;
  float rotation = 0;
  take(node.translation, translation);
  take(node.rotation, rotation);
  take(node.scaleFactor, scale);
  take(node.center, center);
  SbMatrix matrix;
  matrix.setTransform(SbVec3f(translation[0], translation[1], 0), SbRotation(SbVec3f(0, 0, 1), rotation),
                      SbVec3f(scale[0], scale[1], 1), SbRotation(), SbVec3f(center[0], center[1], 0));
  action.getState().modify<SoTextureMatrixElement>().matrix.multLeft(matrix);
}

void visitTexture3Transform(SoStateAction& action, SoTexture3Transform& node) {
  SbVec3f translation, scale(1, 1, 1), center;
  SbRotation rotation, scaleOrientation;
  take(node.translation, translation);
  take(node.rotation, rotation);
  take(node.scaleFactor, scale);
  take(node.scaleOrientation, scaleOrientation);
  take(node.center, center);
  SbMatrix matrix;
  matrix.setTransform(translation, rotation, scale, scaleOrientation, center);
  action.getState().modify<SoTextureMatrixElement>().matrix.multLeft(matrix);
}

void visitVertexProperty(SoStateAction& action, SoVertexProperty& node) { node.apply(action.getState()); }

bool const registered =
    SoAction::addMethods<visitMaterial, visitBaseColor, visitColorIndex, visitMaterialBinding, visitNormalBinding,
                         visitLightModel, visitDrawStyle, visitShapeHints, visitComplexity, visitPickStyle,
                         visitFont, visitEnvironment, visitCoordinate3, visitCoordinate4, visitNormal,
                         visitTextureCoordinate2, visitTextureCoordinate3, visitTextureCoordinatePlane,
                         visitTextureCoordinateEnvironment, visitTextureCoordinateBinding, visitTexture2,
                         visitTexture2Transform, visitTexture3, visitTexture3Transform, visitVertexProperty>();

} // namespace

void SoVertexProperty::apply(SoState& state) const {
  if (!vertex.isIgnored() && vertex.getNumValues() > 0) setCoordinates(state, vertex, *this);
  if (!normal.isIgnored() && normal.getNumValues() > 0) {
    setNormals(state, normal, *this);
    if (!isFixed(state, SoOverrideElement::NORMAL_BINDING, false)) {
      take(normalBinding, state.modify<SoNormalBindingElement>().value);
    }
  }
  if (!texCoord.isIgnored() && texCoord.getNumValues() > 0) {
    setTextureCoordinates(state, texCoord.getValues(), nullptr, texCoord.getNumValues(), *this);
  }
  if (orderedRGBA.isIgnored() || orderedRGBA.getNumValues() == 0) return;
  if (!isFixed(state, SoOverrideElement::MATERIAL | SoOverrideElement::COLOR, false)) {
    auto& element = state.modify<SoMaterialElement>();
    element.packed = orderedRGBA.getValues();
    element.packedCount = orderedRGBA.getNumValues();
    element.id = combineIds(element.id, getNodeId());
  }
  if (!isFixed(state, SoOverrideElement::MATERIAL_BINDING, false)) {
    take(materialBinding, state.modify<SoMaterialBindingElement>().value);
  }
}
