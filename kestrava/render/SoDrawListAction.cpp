#include "kestrava/render/SoDrawListAction.h"

#include "kestrava/nodes/SoAnnotation.h"
#include "kestrava/nodes/SoCamera.h"
#include "kestrava/nodes/SoGradientBackground.h"
#include "kestrava/nodes/SoImageBackground.h"
#include "kestrava/nodes/SoLOD.h"
#include "kestrava/nodes/SoLevelOfDetail.h"
#include "kestrava/nodes/SoShape.h"
#include "kestrava/nodes/SoText2.h"

namespace {

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

/// What a node means beside what every action does at it.
enum class Role : char { ORDINARY, CAMERA, VIEW_DEPENDENT };

Role roleOf(SoType type) {
  // One entry for each type met so far; asked for every node.
  static thread_local std::vector<signed char> roles;
  auto const index = static_cast<size_t>(type.getIndex());
  if (index >= roles.size()) roles.resize(index + 1, -1);
  if (roles[index] < 0) {
    Role role = Role::ORDINARY;
    if (type.isDerivedFrom(SoCamera::getClassTypeId())) {
      role = Role::CAMERA;
    } else if (type.isDerivedFrom(SoLOD::getClassTypeId()) || type.isDerivedFrom(SoText2::getClassTypeId()) ||
               type.isDerivedFrom(SoLevelOfDetail::getClassTypeId())) {
      role = Role::VIEW_DEPENDENT;
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
  m_formerMeshes.swap(m_list.m_meshes);
  m_formerAlphas.swap(m_list.m_textureAlphas);
  if (!m_view.camera) return;
  auto& element = getState().modify<SoCameraElement>();
  element.set = true;
  element.volume = m_view.volume;
  element.camera = m_view.camera;
}

void SoDrawListAction::end() {
  for (SoDrawList::Item const& item : m_list.m_items) m_list.m_bounds.extendBy(item.bounds);
}

void SoDrawListAction::visit(SoNode* node) {
  size_t const depth = getCurPath().getLength();
  m_steps.resize(depth, Step{});
  m_steps.back() = {node, getCurPath().getIndex(static_cast<int>(depth) - 1), -1};
  switch (roleOf(node->getTypeId())) {
    case Role::CAMERA:
      addCamera(static_cast<SoCamera&>(*node));
      if (m_view.camera) return;
      break;
    case Role::VIEW_DEPENDENT: m_list.m_dependsOnView = true; break;
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
  auto& entry = m_list.m_meshes[key];
  if (entry) return entry;
  if (auto former = m_formerMeshes.find(key); former != m_formerMeshes.end()) return entry = former->second;
  auto made = std::make_shared<SoDrawMesh>();
  made->key = key;
  shape.buildMesh(getState(), made->mesh);
  made->bounds = made->mesh.getBounds();
  return entry = std::move(made);
}

int SoDrawListAction::materialIndex(SoMaterialElement const& element) {
  auto const [known, isNew] = m_materialIndices.try_emplace(element.id, static_cast<int>(m_list.m_materials.size()));
  if (isNew) m_list.m_materials.push_back(materialOf(element));
  return known->second;
}

int SoDrawListAction::textureIndex(SoTextureImageElement const& element) {
  if (element.image.isEmpty()) return -1;
  auto& textures = m_list.m_textures;
  for (int i = static_cast<int>(textures.size()) - 1; i >= 0; --i) {
    SoTextureImageElement const& other = textures[i].element;
    if (other.image.getSharedBytes() == element.image.getSharedBytes() && other.repeatS == element.repeatS &&
        other.repeatT == element.repeatT && other.model == element.model && other.blendColor == element.blendColor) {
      return i;
    }
  }
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
  for (int i = static_cast<int>(known.size()) - 1; i >= 0; --i) {
    if (isSame(known[i], lights, planes, environment)) return i;
  }
  known.push_back({lights, planes, environment});
  if (!lights.empty()) m_list.m_hasLights = true;
  return static_cast<int>(known.size()) - 1;
}

int SoDrawListAction::lookIndex(SoDrawLook const& look) {
  auto& looks = m_list.m_looks;
  auto const found = std::find(looks.rbegin(), looks.rend(), look);
  if (found != looks.rend()) return static_cast<int>(looks.rend() - found) - 1;
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
  if (look.environmentMap || !mesh.mesh.texCoords.empty()) {
    look.texture = textureIndex(state.get<SoTextureImageElement>());
  }
  if (m_annotations > 0) {
    look.layer = SoDrawLook::ANNOTATION;
  } else if (material.transparent) {
    look.layer = SoDrawLook::TRANSPARENT;
  } else if (look.texture >= 0) {
    SoDrawTexture const& texture = m_list.m_textures[look.texture];
    if (texture.alpha == SoDrawTexture::TRANSLUCENT && texture.element.model != SoTextureImageElement::DECAL) {
      look.layer = SoDrawLook::TRANSPARENT;
    }
  }
  return look;
}

void SoDrawListAction::addShape(SoShape const& shape) {
  SoState& state = getState();
  if (state.get<SoDrawStyleElement>().style == SoDrawStyleElement::INVISIBLE) return;
  auto mesh = meshOf(shape);
  if (mesh->bounds.isEmpty()) return;
  state.push();
  shape.applyOwnState(state);
  SoDrawList::Item item;
  item.shape = &shape;
  item.matrix = state.get<SoModelMatrixElement>().matrix;
  item.bounds = mesh->bounds.transformed(item.matrix);
  item.material = materialIndex(state.get<SoMaterialElement>());
  item.look = lookIndex(lookOf(*mesh, m_list.m_materials[item.material]));
  item.textureMatrix = textureMatrixIndex(state.get<SoTextureMatrixElement>().matrix);
  item.place = enterPlaces();
  item.pickable = state.get<SoPickStyleElement>().pickable;
  item.mesh = std::move(mesh);
  state.pop();
  m_list.m_items.push_back(std::move(item));
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

bool const registered =
    SoAction::addMethods<visitShape, visitAnnotation, visitGradient, visitImage>();

}  // namespace
