#include "kestrava/render/SoDrawListAction.h"

#include <atomic>
#include <bit>

#include "kestrava/base/SoError.h"
#include "kestrava/base/SoPreferences.h"
#include "kestrava/nodes/SoAnnotation.h"
#include "kestrava/nodes/SoCallback.h"
#include "kestrava/nodes/SoCamera.h"
#include "kestrava/nodes/SoFragmentShader.h"
#include "kestrava/nodes/SoGeometryShader.h"
#include "kestrava/nodes/SoGradientBackground.h"
#include "kestrava/nodes/SoImageBackground.h"
#include "kestrava/nodes/SoInstanceParameter.h"
#include "kestrava/nodes/SoLOD.h"
#include "kestrava/nodes/SoLevelOfDetail.h"
#include "kestrava/nodes/SoShaderProgram.h"
#include "kestrava/nodes/SoShape.h"
#include "kestrava/nodes/SoText2.h"
#include "kestrava/nodes/SoVertexShader.h"
#include "kestrava/render/SoGLProgram.h"
#include "kestrava/render/SoMeshBuilder.h"
#include "kestrava/render/SoTessellation.h"

namespace {

/// The program that draws what follows, as an index into the list.
struct SoShaderElement {
  int shader = -1;
};

bool isSame(SoLightElement::Light const& a, SoLightElement::Light const& b) {
  return a.kind == b.kind && a.color == b.color && a.position == b.position && a.direction == b.direction &&
         a.dropOffRate == b.dropOffRate && a.cutOffAngle == b.cutOffAngle && a.attenuation == b.attenuation;
}

bool isSame(SoDrawSurroundings const& a, std::vector<SoLightElement::Light> const& lights,
            std::vector<SbPlane> const& planes, SoEnvironmentElement const& environment) {
  SoEnvironmentElement const& e = a.environment;
  return a.clipPlanes == planes &&
         std::equal(a.lights.begin(), a.lights.end(), lights.begin(), lights.end(),
                    [](auto const& x, auto const& y) { return isSame(x, y); }) &&
         e.fog == environment.fog && e.ambientIntensity == environment.ambientIntensity &&
         e.ambientColor == environment.ambientColor && e.fogColor == environment.fogColor &&
         e.fogVisibility == environment.fogVisibility;
}

SoDrawTexture::Alpha alphaOf(SbImage const& image) {
  if (!image.hasAlpha()) return SoDrawTexture::SOLID;
  size_t const step = image.getNumComponents();
  size_t between = 0, absent = 0;
  unsigned char const* const bytes = image.getBytes();
  for (size_t i = step - 1; i < image.getNumBytes(); i += step) {
    if (bytes[i] < 16) {
      ++absent;
    } else if (bytes[i] < 240) {
      ++between;
    }
  }
  if (absent + between == 0) return SoDrawTexture::SOLID;
  // The soft rim of a cut-out shape is a small part of it.
  return between * 6 < image.getNumBytes() / step ? SoDrawTexture::CUT_OUT : SoDrawTexture::TRANSLUCENT;
}

SoDrawMaterial materialOf(SoMaterialElement const& element) {
  SoDrawMaterial material;
  material.id = element.id;
  if (element.packed && element.packedCount > 0) {
    material.colors.assign(element.packed, element.packed + element.packedCount);
  } else {
    int const count = std::max({1, element.diffuse.count, element.transparency.count});
    for (int i = 0; i < count; ++i) {
      material.colors.push_back(element.diffuse[i].getPackedValue(element.transparency[i]));
    }
  }
  material.transparent = std::any_of(material.colors.begin(), material.colors.end(),
                                     [](std::uint32_t color) { return (color & 0xff) < 0xff; });
  int const count = std::max({1, element.ambient.count, element.specular.count, element.emissive.count,
                              element.shininess.count});
  for (int i = 0; i < count; ++i) {
    material.gloss.push_back({element.ambient[i], element.specular[i], element.emissive[i], element.shininess[i]});
  }
  return material;
}

/// The index under a hash that `isIt` accepts; -1 when there is none.
template <class IsIt> int find(std::unordered_multimap<size_t, int> const& indices, size_t hash, IsIt const& isIt) {
  auto const [first, last] = indices.equal_range(hash);
  auto const found = std::find_if(first, last, [&](auto const& entry) { return isIt(entry.second); });
  return found == last ? -1 : found->second;
}

void mix(std::uint64_t& hash, float value) { hash = SoMixKey(hash, std::bit_cast<std::uint32_t>(value + 0.0f)); }
void mix(std::uint64_t& hash, SbVec3f const& value) {
  for (int i = 0; i < 3; ++i) mix(hash, value[i]);
}

/// Of what makes the difference in nearly all scenes; equal ones have equal hashes.
size_t hashOf(std::vector<SoLightElement::Light> const& lights, std::vector<SbPlane> const& planes,
              SoEnvironmentElement const& environment) {
  std::uint64_t hash = lights.size();
  for (SoLightElement::Light const& light : lights) {
    mix(hash, light.color);
    mix(hash, light.position);
    mix(hash, light.direction);
  }
  for (SbPlane const& plane : planes) {
    mix(hash, plane.getNormal());
    mix(hash, plane.getDistanceFromOrigin());
  }
  mix(hash, environment.fogVisibility);
  mix(hash, environment.ambientIntensity);
  return hash;
}

size_t hashOf(SoDrawLook const& look) {
  std::uint64_t hash = look.linePattern;
  for (int const number : {look.texture, look.surroundings, look.shader, look.inputs, static_cast<int>(look.layer),
                           static_cast<int>(look.style), look.lit + 2 * look.culled + 4 * look.ordered}) {
    hash = SoMixKey(hash, static_cast<std::uint64_t>(number));
  }
  mix(hash, look.pointSize);
  mix(hash, look.lineWidth);
  return hash;
}

/// A graph that shares much may have more places than anybody can draw, or wait for.
constexpr int DEFAULT_MAX_SHAPES = 1'000'000;
constexpr int MAX_VISITS = 10'000'000;

size_t maxShapes() {
  static int const shapes = SoPreferences::getInt("KSV_MAX_SHAPES", DEFAULT_MAX_SHAPES);
  return static_cast<size_t>(std::max(shapes, 1));
}

/// What a node means beside what every action does at it.
enum class Role : char { ORDINARY, CAMERA, VIEW_DEPENDENT, CALLBACK };

Role roleOf(SoType type) {
  // One entry for each type met so far; asked for every node.
  static thread_local std::vector<signed char> roles;
  auto const index = static_cast<size_t>(type.getIndex());
  if (index >= roles.size()) roles.resize(index + 1, -1);
  if (roles[index] < 0) {
    Role role = Role::ORDINARY;
    if (type.isDerivedFrom(SoCamera::getClassTypeId())) {
      role = Role::CAMERA;
    } else if (type.isDerivedFrom(SoLOD::getClassTypeId()) ||
               type.isDerivedFrom(SoLevelOfDetail::getClassTypeId())) {
      role = Role::VIEW_DEPENDENT;
    } else if (type.isDerivedFrom(SoCallback::getClassTypeId())) {
      role = Role::CALLBACK;
    }
    roles[index] = static_cast<signed char>(role);
  }
  return static_cast<Role>(roles[index]);
}

}  // namespace

SoDrawListAction::SoDrawListAction(SoDrawList& list, SoDrawList::View const& view)
    : SoStateAction(view.region), m_list(list), m_view(view) {}

void SoDrawListAction::begin() {
  SoStateAction::begin();
  getState().modify<SoScreenSizesElement>().sizes = &m_list.m_screenSizes;
  m_formerAlphas.swap(m_list.m_textureAlphas);
  if (!m_view.camera) return;
  auto& element = getState().modify<SoCameraElement>();
  element.set = true;
  element.volume = m_view.volume;
  element.camera = m_view.camera;
}

void SoDrawListAction::end() {
  for (SoDrawList::Item const& item : m_list.m_items) m_list.m_bounds.extendBy(item.bounds);
  std::erase_if(m_list.m_meshes, [this](auto const& entry) { return entry.second.rebuild != m_list.m_numRebuilds; });
}

void SoDrawListAction::visit(SoNode* node) {
  if (++m_numVisits > MAX_VISITS || m_list.m_items.size() >= maxShapes()) {
    static std::atomic<bool> reported{false};
    if (!reported.exchange(true)) {
      SoDebugError::postWarning("SoGLRenderAction",
                                "the scene is drawn in part: it has more than %zu shapes (KSV_MAX_SHAPES) or %d "
                                "places of nodes",
                                maxShapes(), MAX_VISITS);
    }
    return terminate();
  }
  size_t const depth = getCurPath().getLength();
  m_steps.resize(depth, Step{});
  m_steps.back() = {node, getCurPath().getIndex(static_cast<int>(depth) - 1), -1};
  switch (roleOf(node->getTypeId())) {
    case Role::CAMERA:
      addCamera(static_cast<SoCamera&>(*node));
      if (m_view.camera) return;
      break;
    case Role::VIEW_DEPENDENT: m_list.m_dependsOnView = true; break;
    case Role::CALLBACK:
      if (static_cast<SoCallback*>(node)->getCallback()) m_list.keepNodes();
      break;
    case Role::ORDINARY: break;
  }
  SoStateAction::visit(node);
}

/// Enters the nodes from the root to the present one; answers the place of the present one.
int SoDrawListAction::enterPlaces() {
  size_t first = m_steps.size();
  while (first > 0 && m_steps[first - 1].place < 0) --first;
  for (size_t i = first; i < m_steps.size(); ++i) {
    int const above = i > 0 ? m_steps[i - 1].place : -1;
    m_list.m_places.push_back({m_steps[i].node, m_steps[i].childIndex, above});
    m_steps[i].place = static_cast<int>(m_list.m_places.size()) - 1;
  }
  return m_steps.back().place;
}

std::shared_ptr<SoDrawMesh const> SoDrawListAction::meshOf(SoShape const& shape) {
  std::uint64_t const key = shape.getMeshKey(getState());
  SoDrawList::KnownMesh& known = m_list.m_meshes[key];
  known.rebuild = m_list.m_numRebuilds;
  if (known.mesh) return known.mesh;
  auto made = std::make_shared<SoDrawMesh>();
  made->key = key;
  shape.buildShownMesh(getState(), made->mesh);
  made->bounds = made->mesh.getBounds();
  return known.mesh = std::move(made);
}

int SoDrawListAction::materialIndex(SoMaterialElement const& element) {
  auto const [known, isNew] = m_materialIndices.try_emplace(element.id, static_cast<int>(m_list.m_materials.size()));
  if (isNew) m_list.m_materials.push_back(materialOf(element));
  return known->second;
}

int SoDrawListAction::textureIndex(SoTextureImageElement const& element) {
  if (element.image.isEmpty()) return -1;
  auto& textures = m_list.m_textures;
  auto const isSameTexture = [&](int i) {
    SoTextureImageElement const& other = textures[i].element;
    return other.image.getSharedBytes() == element.image.getSharedBytes() &&
           other.image.getSize() == element.image.getSize() && other.repeatS == element.repeatS &&
           other.repeatT == element.repeatT && other.repeatR == element.repeatR && other.model == element.model &&
           other.blendColor == element.blendColor;
  };
  size_t const hash = std::hash<void const*>()(element.image.getBytes());
  if (int const known = find(m_textureIndices, hash, isSameTexture); known >= 0) return known;
  m_textureIndices.emplace(hash, static_cast<int>(textures.size()));
  auto const [known, isNew] = m_list.m_textureAlphas.try_emplace(element.image.getSharedBytes());
  if (isNew) {
    auto const former = m_formerAlphas.find(known->first);
    known->second = former != m_formerAlphas.end() ? former->second : alphaOf(element.image);
  }
  textures.push_back({element, known->second});
  return static_cast<int>(textures.size()) - 1;
}

int SoDrawListAction::surroundingsIndex() {
  SoState& state = getState();
  auto const& lights = state.get<SoLightElement>().lights;
  auto const& planes = state.get<SoClipPlaneElement>().planes;
  auto const& environment = state.get<SoEnvironmentElement>();
  auto& known = m_list.m_surroundings;
  auto const isKnown = [&](int i) { return isSame(known[i], lights, planes, environment); };
  if (!known.empty() && isKnown(static_cast<int>(known.size()) - 1)) return static_cast<int>(known.size()) - 1;
  size_t const hash = hashOf(lights, planes, environment);
  if (int const index = find(m_surroundingsIndices, hash, isKnown); index >= 0) return index;
  m_surroundingsIndices.emplace(hash, static_cast<int>(known.size()));
  known.push_back({lights, planes, environment});
  if (!lights.empty()) m_list.m_hasLights = true;
  return static_cast<int>(known.size()) - 1;
}

int SoDrawListAction::lookIndex(SoDrawLook const& look) {
  auto& looks = m_list.m_looks;
  if (!looks.empty() && looks.back() == look) return static_cast<int>(looks.size()) - 1;
  size_t const hash = hashOf(look);
  int const known = find(m_lookIndices, hash, [&](int i) { return looks[i] == look; });
  if (known >= 0) return known;
  m_lookIndices.emplace(hash, static_cast<int>(looks.size()));
  looks.push_back(look);
  return static_cast<int>(looks.size()) - 1;
}

int SoDrawListAction::textureMatrixIndex(SbMatrix const& matrix) {
  auto& matrices = m_list.m_textureMatrices;
  if (matrix.isIdentity()) return -1;
  if (matrices.empty() || matrices.back() != matrix) matrices.push_back(matrix);
  return static_cast<int>(matrices.size()) - 1;
}

SoDrawLook SoDrawListAction::lookOf(SoDrawMesh const& mesh, SoDrawMaterial const& material) {
  SoState& state = getState();
  auto const& style = state.get<SoDrawStyleElement>();
  auto const& hints = state.get<SoShapeHintsElement>();
  auto const& coordinates = state.get<SoTextureCoordinateElement>();
  SoDrawLook look;
  look.style = style.style;
  look.pointSize = style.pointSize;
  look.lineWidth = style.lineWidth;
  look.linePattern = style.linePattern & 0xffff;
  look.lit = state.get<SoLightModelElement>().lit && !mesh.mesh.normals.empty();
  look.ordered = hints.ordering != SoShapeHintsElement::UNKNOWN_ORDERING;
  look.culled = hints.solid && look.ordered;
  look.environmentMap = coordinates.source == SoTextureCoordinateElement::ENVIRONMENT;
  look.surroundings = surroundingsIndex();
  auto const& image = state.get<SoTextureImageElement>();
  if (look.environmentMap || !mesh.mesh.texCoords.empty()) {
    look.texture = textureIndex(image);
    look.fillsTexture = look.texture >= 0 && image.image.getDepth() > 0 &&
                        coordinates.source == SoTextureCoordinateElement::SHAPE_DEFAULT;
  }
  look.shader = state.get<SoShaderElement>().shader;
  // Of several colours a shape without a binding shows the first.
  bool const transparent =
      mesh.mesh.materials.empty() ? (material.getColor(0) & 0xff) < 0xff : material.transparent;
  if (m_annotations > 0) {
    look.layer = SoDrawLook::ANNOTATION;
  } else if (transparent) {
    look.layer = SoDrawLook::TRANSPARENT;
  } else if (look.texture >= 0) {
    SoDrawTexture const& texture = m_list.m_textures[look.texture];
    if (texture.alpha == SoDrawTexture::TRANSLUCENT && texture.element.model != SoTextureImageElement::DECAL) {
      look.layer = SoDrawLook::TRANSPARENT;
    }
  }
  return look;
}

void SoDrawListAction::addShape(SoShape const& shape, std::shared_ptr<SoDrawMesh const> mesh) {
  SoState& state = getState();
  if (state.get<SoDrawStyleElement>().style == SoDrawStyleElement::INVISIBLE) return;
  state.push();
  if (state.get<SoShaderElement>().shader >= 0 && state.get<SoTextureImageElement>().id == 0) {
    // A shader may want the texture coordinates that shapes have only where there is a texture.
    state.modify<SoTextureImageElement>().id = 1;
  }
  if (!mesh) mesh = meshOf(shape);
  if (mesh->bounds.isEmpty()) return state.pop();
  shape.applyOwnState(state);
  SoDrawList::Item item;
  item.shape = &shape;
  item.matrix = state.get<SoModelMatrixElement>().matrix;
  item.bounds = mesh->bounds.transformed(item.matrix);
  item.material = materialIndex(state.get<SoMaterialElement>());
  SoDrawLook look = lookOf(*mesh, m_list.m_materials[item.material]);
  item.instance = -1;
  if (look.shader >= 0) look.inputs = addInputs(item);
  item.look = lookIndex(look);
  item.textureMatrix = textureMatrixIndex(state.get<SoTextureMatrixElement>().matrix);
  item.place = enterPlaces();
  item.pickable = state.get<SoPickStyleElement>().pickable;
  item.pickedAsBox = state.get<SoPickStyleElement>().boundingBox;
  item.mesh = std::move(mesh);
  state.pop();
  m_list.m_items.push_back(std::move(item));
}

void SoDrawListAction::addText(SoText2 const& text) {
  auto bitmap = SoScreenText::layOut(text, getState());
  SbVec3f const place = getState().get<SoModelMatrixElement>().matrix.multVecMatrix(SbVec3f());
  if (!bitmap || !std::isfinite(place[0] + place[1] + place[2])) return;
  auto point = std::make_shared<SoDrawMesh>();
  point->bounds.extendBy(SbVec3f());
  size_t const before = m_list.m_items.size();
  addShape(text, std::move(point));
  if (m_list.m_items.size() == before) return;
  SoDrawMaterial const& material = m_list.m_materials[m_list.m_items.back().material];
  SoScreenText added;
  added.item = static_cast<int>(before);
  added.place = place;
  added.bitmap = std::move(bitmap);
  added.color.setPackedValue(material.getColor(0));
  if (getState().get<SoLightModelElement>().lit) {
    // As if lit from the front.
    for (int i = 0; i < 3; ++i) added.color[i] = std::min(1.0f, added.color[i] + material.gloss[0].emissive[i]);
  }
  m_list.m_screenTexts.push_back(std::move(added));
}

/// Enters what the groups around say about the copy; answers which set of inputs that is.
int SoDrawListAction::addInputs(SoDrawList::Item& item) {
  auto const& given = getState().get<SoInstanceElement>().values;
  std::vector<SoDrawInput> inputs;
  for (size_t i = 0; i < given.size(); ++i) {
    auto const* const parameter = dynamic_cast<SoInstanceParameter const*>(given[i].parameter);
    if (!parameter || parameter->name.getValue().empty()) continue;
    // Inner groups win.
    std::string const& name = parameter->name.getValue().str();
    bool const isLast = std::none_of(given.begin() + static_cast<std::ptrdiff_t>(i) + 1, given.end(), [&](auto const& other) {
      auto const* const inner = dynamic_cast<SoInstanceParameter const*>(other.parameter);
      return inner && inner->name.getValue().str() == name;
    });
    if (!isLast) continue;
    if (inputs.size() == SoGLProgram::MAX_INPUTS) {
      SoPostDataError(*parameter, SbString::format("a shape has at most %d instance parameters; '%s' is left out",
                                                   SoGLProgram::MAX_INPUTS, name.c_str()));
      break;
    }
    inputs.push_back({name, parameter->getNumComponents()});
    float components[4] = {};
    parameter->getValue(given[i].index, components);
    auto& values = m_list.m_inputValues;
    if (item.instance < 0) item.instance = static_cast<int>(values.size());
    values.insert(values.end(), components, components + parameter->getNumComponents());
  }
  if (inputs.empty()) return -1;
  auto& sets = m_list.m_inputs;
  auto const known = std::find(sets.begin(), sets.end(), inputs);
  if (known != sets.end()) return static_cast<int>(known - sets.begin());
  sets.push_back(std::move(inputs));
  return static_cast<int>(sets.size()) - 1;
}

void SoDrawListAction::setShader(SoDrawShader const& shader) {
  auto& shaders = m_list.m_shaders;
  int& index = getState().modify<SoShaderElement>().shader;
  index = -1;
  bool const isFixed = std::all_of(shader.sources.begin(), shader.sources.end(), [](auto const& s) { return s.empty(); });
  if (isFixed) return;
  auto const known = std::find_if(shaders.begin(), shaders.end(), [&](auto const& s) { return s.id == shader.id; });
  index = static_cast<int>(known - shaders.begin());
  if (known == shaders.end()) shaders.push_back(shader);
}

void SoDrawListAction::addCamera(SoCamera& camera) {
  if (m_list.m_camera) return;
  // A copy: the list is no user of the scene, and is made anew when the camera changes.
  m_list.m_camera = SoRef<SoCamera>(static_cast<SoCamera*>(SoNode::create(camera.getTypeId())));
  m_list.m_camera->copyFieldValues(camera);
  m_list.m_cameraMatrix = getState().get<SoModelMatrixElement>().matrix;
}

namespace {

void visitShape(SoDrawListAction& action, SoShape& shape) { action.addShape(shape); }
void visitText(SoDrawListAction& action, SoText2& text) { action.addText(text); }

void visitAnnotation(SoDrawListAction& action, SoAnnotation& node) {
  action.enterAnnotation();
  action.enterChildren(&node, true);
  action.whenLeft([&action] { action.leaveAnnotation(); });
}

void visitGradient(SoDrawListAction& action, SoGradientBackground& node) {
  SoDrawBackground background;
  background.kind = SoDrawBackground::GRADIENT;
  background.bottom = node.color0.getValue();
  background.top = node.color1.getValue();
  if (node.swapColors.getValue()) std::swap(background.bottom, background.top);
  action.setBackground(background);
}

void visitImage(SoDrawListAction& action, SoImageBackground& node) {
  SoDrawBackground background;
  background.image = node.getImage();
  background.style = node.style.getValue();
  if (background.image.isEmpty() || background.style == SoImageBackground::NONE) return;
  background.kind = SoDrawBackground::IMAGE;
  action.setBackground(background);
}

void visitShaderProgram(SoDrawListAction& action, SoShaderProgram& node) {
  SoDrawShader shader;
  shader.id = node.getNodeId();
  shader.name = node.getName().str();
  bool complete = true;
  for (int i = 0; i < node.shaderObject.getNumValues() && !node.shaderObject.isIgnored(); ++i) {
    SoNode* const child = node.shaderObject[i];
    auto* const object = dynamic_cast<SoShaderObject*>(child);
    int const stage = dynamic_cast<SoVertexShader*>(child)     ? SoDrawShader::VERTEX
                      : dynamic_cast<SoGeometryShader*>(child) ? SoDrawShader::GEOMETRY
                                                               : SoDrawShader::FRAGMENT;
    if (!object) {
      if (child) SoPostDataError(node, "a " + child->getTypeId().getName().str() + " is no shader");
      continue;
    }
    if (!object->isActive.getValue() || object->sourceProgram.getValue().empty()) continue;
    if (!shader.sources[stage].empty()) {
      SoPostDataError(node, "there are two active nodes of type " + object->getTypeId().getName().str());
      continue;
    }
    shader.sources[stage] = object->getSource().str();
    shader.sourceNames[stage] = object->sourceType.getValue() == SoShaderObject::FILENAME
                                    ? object->sourceProgram.getValue().str()
                                    : object->getName().str();
    if (shader.sources[stage].empty()) complete = false;
    for (int k = 0; k < object->parameter.getNumValues(); ++k) {
      auto* const parameter = dynamic_cast<SoUniformShaderParameter*>(object->parameter[k]);
      if (!parameter) {
        SoPostDataError(*object, "a parameter is no shader parameter");
        continue;
      }
      shader.uniforms.push_back(
          {parameter->name.getValue().str(), parameter->identifier.getValue(), parameter->getUniformValue()});
    }
  }
  // What is missing was posted by who asked for it.
  if (!complete) shader.sources = {};
  action.setShader(shader);
}

bool const registered =
    SoAction::addMethods<visitShape, visitText, visitShaderProgram, visitAnnotation, visitGradient, visitImage>();

}  // namespace
