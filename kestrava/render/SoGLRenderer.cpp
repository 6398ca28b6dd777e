#include "kestrava/render/SoGLRenderer.h"

#include <epoxy/gl.h>

#include <cmath>
#include <cstring>

#include "kestrava/base/SoError.h"
#include "kestrava/render/SoGLBackground.h"
#include "kestrava/render/SoGLState.h"

namespace {

// The uniform blocks of the shaders.
struct ViewBlock {
  float viewProjection[16], view[16], projection[16], inverseView[16], viewport[4], unproject[4], shift[4];
};
struct LightBlock {
  float position[4], direction[4], color[4], attenuation[4];
};
struct SurroundingsBlock {
  LightBlock lights[SoGLProgram::MAX_LIGHTS];
  float clipPlanes[SoGLProgram::MAX_CLIP_PLANES][4];
  float ambient[4], fogColor[4], counts[4];
};

void store(float* target, SbVec3f const& v, float w = 0) {
  for (int i = 0; i < 3; ++i) target[i] = v[i];
  target[3] = w;
}

void store(LightBlock& block, SoLightElement::Light const& light, SbMatrix const& view) {
  store(block.position, view.multVecMatrix(light.position), static_cast<float>(light.kind));
  store(block.direction, view.multDirMatrix(light.direction).normalized(), std::cos(light.cutOffAngle));
  store(block.color, light.color, light.dropOffRate * 128);
  store(block.attenuation, light.attenuation);
}

SurroundingsBlock blockOf(SoDrawSurroundings const& surroundings, SbMatrix const& view, bool headlight, float reach) {
  SurroundingsBlock block{};
  int numLights = 0;
  if (headlight) {
    // From above the viewer's left shoulder: straight from the eye, boxes seen head-on would have no edges.
    store(block.lights[numLights].direction, SbVec3f(0.3f, -0.4f, -1).normalized());
    store(block.lights[numLights++].color, SbVec3f(1, 1, 1));
  }
  for (auto const& light : surroundings.lights) {
    if (numLights == SoGLProgram::MAX_LIGHTS) break;
    store(block.lights[numLights++], light, view);
  }
  int numPlanes = 0;
  for (SbPlane const& plane : surroundings.clipPlanes) {
    if (numPlanes == SoGLProgram::MAX_CLIP_PLANES) break;
    store(block.clipPlanes[numPlanes++], plane.getNormal(), plane.getDistanceFromOrigin());
  }
  SoEnvironmentElement const& environment = surroundings.environment;
  store(block.ambient, environment.ambientColor * environment.ambientIntensity);
  store(block.fogColor, environment.fogColor, static_cast<float>(environment.fog));
  block.counts[0] = static_cast<float>(numLights);
  block.counts[1] = static_cast<float>(numPlanes);
  block.counts[2] = environment.fogVisibility > 0 ? environment.fogVisibility : reach;
  return block;
}

/// For programs that leave no room for the stage that widens lines: as wide as the context lets lines be.
void setPlainLineWidth(float width) {
  if (width != 1) {
    int flags = 0;
    float range[2] = {1, 1};
    glGetIntegerv(GL_CONTEXT_FLAGS, &flags);
    glGetFloatv(GL_ALIASED_LINE_WIDTH_RANGE, range);
    width = flags & GL_CONTEXT_FLAG_FORWARD_COMPATIBLE_BIT ? 1 : std::clamp(width, range[0], range[1]);
  }
  glLineWidth(width);
}

constexpr size_t MAX_PAGE_VERTICES = 16384;
constexpr size_t MIN_PLACES = 16;             // of a mesh that is worth a draw call of its own
constexpr size_t MIN_PLACED_VERTICES = 4096;

}  // namespace

SoGLRenderer::SoGLRenderer() = default;
SoGLRenderer::~SoGLRenderer() = default;

void SoGLRenderer::render(SoDrawList const& list, Frame const& frame) {
  SbVec2s const origin = frame.region.getViewportOriginPixels(), size = frame.region.getViewportSizePixels();
  if (size[0] <= 0 || size[1] <= 0) return;
  int const ownUnits = list.getShaders().empty() ? 0 : SoGLProgram::MAX_OWN_UNITS;
  SoGLState const before(SoGLProgram::FIRST_OWN_UNIT + ownUnits);
  before.setPlain();
  m_statistics.drawCalls = m_statistics.rangesSeen = m_statistics.rangesCulled = 0;
  bool const sortable = frame.transparency == SORTED_TRIANGLES;
  if (m_preparedVersion != list.getVersion() || m_preparedSortable != sortable) prepare(list, frame);

  glViewport(origin[0], origin[1], size[0], size[1]);
  glScissor(origin[0], origin[1], size[0], size[1]);
  glEnable(GL_SCISSOR_TEST);
  glEnable(GL_MULTISAMPLE);
  glEnable(GL_PROGRAM_POINT_SIZE);
  glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
  glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
  glDepthMask(GL_TRUE);
  glDepthFunc(GL_LEQUAL);
  glFrontFace(GL_CCW);
  glCullFace(GL_BACK);
  glLineWidth(1);
  glBlendEquation(GL_FUNC_ADD);
  // Opaque stays opaque: a window behind must not shine through.
  glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
  m_clipDistances = 0;
  if (frame.clears) {
    SbColorRGBA const& c = frame.background;
    // Where the ground is not opaque the picture holds colours multiplied by alpha.
    glClearColor(c[0] * c[3], c[1] * c[3], c[2] * c[3], c[3]);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    m_background.draw(list.getBackground(), size, m_textures);
  }
  setView(frame);
  setSurroundings(list, frame);
  glActiveTexture(GL_TEXTURE0 + SoGLProgram::MATERIAL_UNIT);
  glBindTexture(GL_TEXTURE_BUFFER, m_materialTexture);
  glBindSampler(SoGLProgram::MATERIAL_UNIT, 0);

  glEnable(GL_DEPTH_TEST);
  drawLayer(list, SoDrawLook::OPAQUE);
  drawTexts(list, frame, SoDrawLook::OPAQUE);
  drawTransparent(list, frame);
  bool const annotated = std::any_of(m_groups.begin(), m_groups.end(),
                                     [](Group const& g) { return g.look.layer == SoDrawLook::ANNOTATION; });
  if (annotated || m_texts.hasAnnotations()) {
    glDepthMask(GL_TRUE);
    glClear(GL_DEPTH_BUFFER_BIT);
    glEnable(GL_BLEND);
    drawLayer(list, SoDrawLook::ANNOTATION);
    drawTexts(list, frame, SoDrawLook::ANNOTATION);
  }
}

void SoGLRenderer::drawTexts(SoDrawList const& list, Frame const& frame, SoDrawLook::Layer layer) {
  // The program of texts clips them as a whole.
  for (int i = 0; i < m_clipDistances; ++i) glDisable(GL_CLIP_DISTANCE0 + static_cast<unsigned>(i));
  m_clipDistances = 0;
  m_texts.draw(list, layer, frame.volume, frame.region);
}

/// What is beyond the limits of the shaders is told once, until it is no more.
void SoGLRenderer::checkLimits(SoDrawList const& list) {
  size_t lights = 0, planes = 0;
  for (SoDrawSurroundings const& surroundings : list.getSurroundings()) {
    lights = std::max(lights, surroundings.lights.size());
    planes = std::max(planes, surroundings.clipPlanes.size());
  }
  bool const exceeded = lights > SoGLProgram::MAX_LIGHTS || planes > SoGLProgram::MAX_CLIP_PLANES;
  if (exceeded && !m_toldLimits) {
    SoDebugError::postWarning("SoGLRenderer",
                              "some shape stands among %zu lights and %zu clipping planes; the first %d lights and "
                              "the first %d planes count",
                              lights, planes, SoGLProgram::MAX_LIGHTS, SoGLProgram::MAX_CLIP_PLANES);
  }
  m_toldLimits = exceeded;
}

std::vector<std::uint32_t> SoGLRenderer::uploadMaterials(SoDrawList const& list) {
  int largest = 0;
  glGetIntegerv(GL_MAX_TEXTURE_BUFFER_SIZE, &largest);
  size_t const maxRows = static_cast<size_t>(largest) / 3;
  std::vector<std::uint32_t> rows;
  std::vector<float> table;
  for (SoDrawMaterial const& material : list.getMaterials()) {
    size_t const row = table.size() / 12;
    if (row + material.gloss.size() > maxRows) {
      rows.push_back(0);  // beyond what can be stored surfaces share the first gloss; colours are not concerned
      continue;
    }
    rows.push_back(static_cast<std::uint32_t>(row));
    for (auto const& gloss : material.gloss) {
      table.resize(table.size() + 12);
      float* const values = table.data() + table.size() - 12;
      store(values, gloss.emissive, gloss.shininess);
      store(values + 4, gloss.ambient);
      store(values + 8, gloss.specular);
    }
  }
  if (!m_materialBuffer) {
    glGenBuffers(1, &m_materialBuffer);
    glGenTextures(1, &m_materialTexture);
  }
  if (table != m_materialTable || table.empty()) {
    float const none[12] = {};
    glBindBuffer(GL_TEXTURE_BUFFER, m_materialBuffer);
    glBufferData(GL_TEXTURE_BUFFER, static_cast<GLsizeiptr>(table.empty() ? sizeof none : table.size() * sizeof(float)),
                 table.empty() ? none : table.data(), GL_STATIC_DRAW);
    glActiveTexture(GL_TEXTURE0 + SoGLProgram::MATERIAL_UNIT);
    glBindTexture(GL_TEXTURE_BUFFER, m_materialTexture);
    glTexBuffer(GL_TEXTURE_BUFFER, GL_RGBA32F, m_materialBuffer);
    m_materialTable = std::move(table);
  }
  return rows;
}

void SoGLRenderer::prepare(SoDrawList const& list, Frame const& frame) {
  m_preparedVersion = list.getVersion();
  m_preparedSortable = frame.transparency == SORTED_TRIANGLES;
  checkLimits(list);
  std::vector<std::uint32_t> const rows = uploadMaterials(list);

  constexpr SoGLPage::Primitive primitives[] = {SoGLPage::TRIANGLES, SoGLPage::LINES, SoGLPage::POINTS};
  std::vector<std::vector<int>> members(list.getLooks().size() * std::size(primitives));
  for (size_t i = 0; i < list.getItems().size(); ++i) {
    SoDrawList::Item const& item = list.getItems()[i];
    auto const style = list.getLooks()[item.look].style;
    for (auto primitive : primitives) {
      if (!SoGLPage::has(item.mesh->mesh, primitive, style)) continue;
      members[item.look * std::size(primitives) + primitive].push_back(static_cast<int>(i));
    }
  }

  Pages pages;
  m_groups.clear();
  m_turnsAreCurrent = false;
  for (size_t i = 0; i < members.size(); ++i) {
    if (members[i].empty()) continue;
    Group group;
    group.look = list.getLooks()[i / std::size(primitives)];
    group.primitive = primitives[i % std::size(primitives)];
    group.features = featuresOf(list, group);
    auto shines = [&](int item) { return list.getMaterials()[list.getItems()[item].material].isSpecular(); };
    if (group.look.lit && std::any_of(members[i].begin(), members[i].end(), shines)) {
      group.features |= SoGLProgram::SPECULAR;
    }
    addPages(list, group, members[i], rows, pages);
    m_groups.push_back(std::move(group));
  }
  // Programs change least often, then textures. What is drawn in the order of the graph keeps it.
  std::stable_sort(m_groups.begin(), m_groups.end(), [](Group const& a, Group const& b) {
    if (a.look.layer != b.look.layer) return a.look.layer < b.look.layer;
    if (a.look.layer != SoDrawLook::OPAQUE) return false;
    if (a.look.shader != b.look.shader) return a.look.shader < b.look.shader;
    return a.features != b.features ? a.features < b.features : a.look.texture < b.look.texture;
  });

  for (auto& [hash, page] : m_pages) {
    if (page) page->release();
  }
  m_pages = std::move(pages);
  m_statistics.pages = static_cast<int>(m_pages.size());
  m_textures.beginSweep();
  for (SoDrawTexture const& texture : list.getTextures()) m_textures.keep(texture.element.image);
  m_textures.keep(list.getBackground().image);
  for (SoDrawShader const& shader : list.getShaders()) {
    for (SoDrawShader::Uniform const& uniform : shader.uniforms) m_textures.keep(uniform.value.image);
  }
  m_textures.endSweep();
  m_shaders.sweep(list);
}

void SoGLRenderer::addPages(SoDrawList const& list, Group& group, std::vector<int> const& items,
                            std::vector<std::uint32_t> const& rows, Pages& pages) {
  auto addPage = [&](SoGLPage::Plan const& plan) {
    std::uint64_t const hash = plan.hash(list, rows);
    auto& page = pages[hash];
    if (!page) {
      auto const former = m_pages.find(hash);
      if (former != m_pages.end() && former->second) {
        page = std::move(former->second);
      } else {
        page = std::make_unique<SoGLPage>(plan, list, rows);
        ++m_statistics.pagesMade;
      }
    }
    group.pages.push_back(page.get());
  };
  SoGLPage::Plan plan;
  plan.primitive = group.primitive;
  plan.style = group.look.style;
  plan.textured = group.features & SoGLProgram::TEXTURE;
  plan.separate = group.look.layer == SoDrawLook::TRANSPARENT;
  plan.sortable = plan.separate && m_preparedSortable && plan.primitive == SoGLPage::TRIANGLES;
  plan.solid = group.features & SoGLProgram::SOLID_TEXTURE;
  plan.fillsTexture = group.look.fillsTexture;
  plan.placed = group.look.shader >= 0;
  if (group.look.inputs >= 0) plan.inputs = list.getInputs()[group.look.inputs];

  // Places of one mesh that are worth a page of their own.
  std::unordered_map<SoDrawMesh const*, std::vector<int>> places;
  auto canBePlaced = [&](SoDrawList::Item const& item) {
    return !plan.separate && item.mesh->mesh.materials.empty() && item.textureMatrix < 0 &&
           item.matrix.isAffine() && item.matrix.det3() > 0;
  };
  for (int i : items) {
    SoDrawList::Item const& item = list.getItems()[i];
    if (canBePlaced(item)) places[item.mesh.get()].push_back(i);
  }
  std::erase_if(places, [](auto const& entry) {
    size_t const count = entry.second.size();
    return count < MIN_PLACES || count * entry.first->mesh.positions.size() < MIN_PLACED_VERTICES;
  });

  size_t numVertices = 0;
  for (int i : items) {
    SoDrawList::Item const& item = list.getItems()[i];
    if (!places.empty() && canBePlaced(item)) {
      auto const placed = places.find(item.mesh.get());
      if (placed != places.end()) {
        if (placed->second.front() != i) continue;
        SoGLPage::Plan together = plan;
        together.instanced = true;
        // The matrices of a page with `placed` have to fit into a texture.
        size_t const most = plan.placed ? MAX_PAGE_VERTICES : placed->second.size();
        for (size_t start = 0; start < placed->second.size(); start += most) {
          auto const first = placed->second.begin() + static_cast<std::ptrdiff_t>(start);
          together.items.assign(first, first + static_cast<std::ptrdiff_t>(std::min(most, placed->second.size() - start)));
          addPage(together);
        }
        continue;
      }
    }
    numVertices += item.mesh->mesh.positions.size();
    if (numVertices > MAX_PAGE_VERTICES && !plan.items.empty()) {
      addPage(plan);
      plan.items.clear();
      numVertices = item.mesh->mesh.positions.size();
    }
    plan.items.push_back(i);
  }
  if (!plan.items.empty()) addPage(plan);

  if (plan.placed) return;
  if (std::none_of(group.pages.begin(), group.pages.end(), [](SoGLPage* page) { return page->isInstanced(); })) return;
  // Pages of both kinds need two programs.
  Group rest = group;
  std::erase_if(rest.pages, [](SoGLPage* page) { return page->isInstanced(); });
  if (!rest.pages.empty()) m_groups.push_back(std::move(rest));
  std::erase_if(group.pages, [](SoGLPage* page) { return !page->isInstanced(); });
  group.features |= SoGLProgram::INSTANCED;
}

unsigned SoGLRenderer::featuresOf(SoDrawList const& list, Group const& group) const {
  using P = SoGLProgram;
  SoDrawLook const& look = group.look;
  SoDrawSurroundings const& surroundings = list.getSurroundings()[look.surroundings];
  unsigned features = 0;
  if (look.lit) {
    features |= P::LIT;
    if (!look.culled || group.primitive != SoGLPage::TRIANGLES) features |= P::BOTH_SIDES;
    if (std::any_of(surroundings.lights.begin(), surroundings.lights.end(), [](SoLightElement::Light const& light) {
          return light.kind != SoLightElement::Light::DIRECTIONAL;
        })) {
      features |= P::POSITIONAL;
    }
    if (look.ordered && group.primitive == SoGLPage::TRIANGLES) features |= P::FACING;
  }
  if (look.texture >= 0) {
    SoDrawTexture const& texture = list.getTextures()[look.texture];
    features |= P::TEXTURE;
    if (texture.element.image.getDepth() > 0) features |= P::SOLID_TEXTURE;
    if (look.environmentMap) features |= P::ENVIRONMENT_MAP;
    if (texture.alpha == SoDrawTexture::CUT_OUT && texture.element.model != SoTextureImageElement::DECAL &&
        look.layer != SoDrawLook::TRANSPARENT) {
      features |= P::CUT_OUT;
    }
  }
  if (look.shader >= 0) features |= P::PLACED | P::SPECULAR | P::POSITIONAL;
  if (!surroundings.clipPlanes.empty()) features |= P::CLIP;
  if (surroundings.clipPlanes.size() > P::MAX_CLIP_DISTANCES) features |= P::MANY_PLANES;
  if (surroundings.environment.fog != SoEnvironmentElement::NONE) features |= P::FOG;
  if (group.primitive == SoGLPage::LINES && (look.lineWidth != 1 || look.linePattern != 0xffff)) {
    features |= P::WIDE_LINES;
  }
  return features;
}

void SoGLRenderer::setView(Frame const& frame) {
  ViewBlock block;
  SbMatrix view, projection;
  frame.volume.getMatrices(view, projection);
  SbMatrix const both = view * projection;
  std::memcpy(block.viewProjection, both.getValue(), sizeof block.viewProjection);
  std::memcpy(block.view, view.getValue(), sizeof block.view);
  std::memcpy(block.projection, projection.getValue(), sizeof block.projection);
  std::memcpy(block.inverseView, view.inverse().getValue(), sizeof block.inverseView);
  SbVec2s const origin = frame.region.getViewportOriginPixels(), size = frame.region.getViewportSizePixels();
  store(block.viewport, SbVec3f(origin[0], origin[1], size[0]), size[1]);
  bool const perspective = frame.volume.getProjectionType() == SbViewVolume::PERSPECTIVE;
  store(block.unproject, SbVec3f(1 / projection[0][0], 1 / projection[1][1], perspective ? 1.0f : 0.0f),
        1 / projection[2][2]);
  int const row = perspective ? 2 : 3;
  store(block.shift, SbVec3f(projection[row][0], projection[row][1], projection[3][2]));
  if (!m_viewBuffer) glGenBuffers(1, &m_viewBuffer);
  glBindBuffer(GL_UNIFORM_BUFFER, m_viewBuffer);
  glBufferData(GL_UNIFORM_BUFFER, sizeof block, &block, GL_STREAM_DRAW);
  glBindBufferBase(GL_UNIFORM_BUFFER, SoGLProgram::VIEW_BLOCK, m_viewBuffer);
  m_boundaries = frame.volume.getBoundaries();
}

void SoGLRenderer::setSurroundings(SoDrawList const& list, Frame const& frame) {
  int alignment = 256;
  glGetIntegerv(GL_UNIFORM_BUFFER_OFFSET_ALIGNMENT, &alignment);
  m_surroundingsStride = (static_cast<int>(sizeof(SurroundingsBlock)) + alignment - 1) / alignment * alignment;
  SbMatrix view, projection;
  frame.volume.getMatrices(view, projection);
  m_headlight = frame.headlight == ON || (frame.headlight == WHEN_DARK && !list.hasLights());
  float const reach = frame.volume.getNearDist() + frame.volume.getDepth();
  size_t const stride = static_cast<size_t>(m_surroundingsStride);
  std::vector<unsigned char> bytes(std::max<size_t>(1, list.getSurroundings().size()) * stride);
  for (size_t i = 0; i < list.getSurroundings().size(); ++i) {
    SurroundingsBlock const block = blockOf(list.getSurroundings()[i], view, m_headlight, reach);
    std::memcpy(bytes.data() + i * stride, &block, sizeof block);
  }
  if (!m_surroundingsBuffer) glGenBuffers(1, &m_surroundingsBuffer);
  glBindBuffer(GL_UNIFORM_BUFFER, m_surroundingsBuffer);
  glBufferData(GL_UNIFORM_BUFFER, static_cast<GLsizeiptr>(bytes.size()), bytes.data(), GL_STREAM_DRAW);
}

/// The group's program, in use; one of the scene's own that can not be used is stood in for. Null: none compiles.
SoGLProgram const* SoGLRenderer::useProgram(SoDrawList const& list, Group const& group, unsigned more) {
  static constexpr unsigned modes[] = {GL_TRIANGLES, GL_LINES, GL_POINTS};
  SoDrawLook const& look = group.look;
  unsigned features = group.features | more;
  if (features & SoGLProgram::LIT) {
    size_t const lights = list.getSurroundings()[look.surroundings].lights.size() + m_headlight;
    features |= SoGLProgram::withLights(static_cast<int>(std::min<size_t>(lights, SoGLProgram::MAX_LIGHTS)));
  }
  if (look.shader >= 0) {
    SoDrawShader const& shader = list.getShaders()[look.shader];
    auto brings = [&](SoDrawShader::Stage stage) { return !shader.sources[stage].empty(); };
    unsigned own = features & ~unsigned{SoGLProgram::FULL_ALPHA};
    // What two stages of the scene's own tell each other does not pass through one of ours between them.
    if (brings(SoDrawShader::GEOMETRY) || (brings(SoDrawShader::VERTEX) && brings(SoDrawShader::FRAGMENT))) {
      own &= ~unsigned{SoGLProgram::WIDE_LINES};
    }
    static std::vector<SoDrawInput> const none;
    int const before = m_shaders.getNumCompiled();
    SoGLProgram const* const program =
        m_shaders.get(shader, own, look.inputs >= 0 ? list.getInputs()[look.inputs] : none);
    m_statistics.programsMade += m_shaders.getNumCompiled() - before;
    if (program && program->getGeometryInput() && program->getGeometryInput() != modes[group.primitive]) {
      m_shaders.complainAboutGeometry(shader);
    } else if (program) {
      glUseProgram(program->getName());
      m_shaders.setVariables(*program, shader, look.texture >= 0 ? &list.getTextures()[look.texture] : nullptr,
                             m_textures);
      return program;
    }
  }
  auto const [known, isNew] = m_programs.try_emplace(features);
  if (isNew) {
    ++m_statistics.programsMade;
    std::string fault;
    known->second = SoGLProgram::make(features, nullptr, {}, fault);
  }
  if (!known->second.getName()) return nullptr;
  glUseProgram(known->second.getName());
  return &known->second;
}

bool SoGLRenderer::bindGroup(SoDrawList const& list, Group const& group, unsigned more) {
  SoGLProgram const* const program = useProgram(list, group, more);
  if (!program) return false;
  SoDrawLook const& look = group.look;
  auto const& surroundings = list.getSurroundings()[look.surroundings];
  glBindBufferRange(GL_UNIFORM_BUFFER, SoGLProgram::SURROUNDINGS_BLOCK, m_surroundingsBuffer,
                    static_cast<GLintptr>(look.surroundings) * m_surroundingsStride, sizeof(SurroundingsBlock));
  if (group.features & SoGLProgram::TEXTURE) {
    SoTextureImageElement const& texture = list.getTextures()[look.texture].element;
    SoGLTextures::Repeat const repeat{texture.repeatS, texture.repeatT, texture.repeatR};
    m_textures.bind(SoGLProgram::IMAGE_UNIT, texture.image, repeat);
    glUniform1i(program->getUniform(SoGLProgram::TEXTURE_MODEL), texture.model);
    glUniform3fv(program->getUniform(SoGLProgram::BLEND_COLOR), 1, texture.blendColor.getValue());
  }
  if (group.features & SoGLProgram::WIDE_LINES) {
    glUniform1f(program->getUniform(SoGLProgram::LINE_WIDTH), look.lineWidth);
    glUniform1i(program->getUniform(SoGLProgram::LINE_PATTERN), static_cast<int>(look.linePattern));
  }
  glUniform1f(program->getUniform(SoGLProgram::POINT_SIZE), look.pointSize);
  if (group.primitive == SoGLPage::LINES) setPlainLineWidth(program->isOwn() ? look.lineWidth : 1);
  bool const culls = look.culled && group.primitive == SoGLPage::TRIANGLES;
  culls ? glEnable(GL_CULL_FACE) : glDisable(GL_CULL_FACE);
  bool const clips = group.features & SoGLProgram::CLIP && !(group.features & SoGLProgram::WIDE_LINES) && !program->isOwn();
  int const planes = static_cast<int>(surroundings.clipPlanes.size());
  int const distances = clips ? std::min(planes, SoGLProgram::MAX_CLIP_DISTANCES) : 0;
  for (int i = m_clipDistances; i < distances; ++i) glEnable(GL_CLIP_DISTANCE0 + static_cast<unsigned>(i));
  for (int i = distances; i < m_clipDistances; ++i) glDisable(GL_CLIP_DISTANCE0 + static_cast<unsigned>(i));
  m_clipDistances = distances;
  return true;
}

void SoGLRenderer::drawRuns(SoGLPage const& page, std::vector<SoGLPage::Range> const& runs) {
  ++m_statistics.drawCalls;
  page.bind();
  if (m_drawing) page.draw(runs);
}

void SoGLRenderer::drawLayer(SoDrawList const& list, SoDrawLook::Layer layer, unsigned more) {
  for (Group const& group : m_groups) {
    if (group.look.layer != layer) continue;
    bool bound = false;
    for (SoGLPage const* page : group.pages) {
      m_runs.clear();
      for (SoGLPage::Range const& range : page->getRanges()) {
        if (SbViewVolume::isOutside(m_boundaries, range.bounds)) {
          ++m_statistics.rangesCulled;
          continue;
        }
        ++m_statistics.rangesSeen;
        if (!m_runs.empty() && m_runs.back().first + m_runs.back().count == range.first) {
          m_runs.back().count += range.count;
        } else {
          m_runs.push_back(range);
        }
      }
      if (m_runs.empty()) continue;
      if (!bound && !bindGroup(list, group, more)) break;
      bound = true;
      drawRuns(*page, m_runs);
    }
  }
}

void SoGLRenderer::release() {
  for (auto& [hash, page] : m_pages) page->release();
  for (auto& [features, program] : m_programs) glDeleteProgram(program.getName());
  m_shaders.release();
  m_background.release();
  m_texts.release();
  m_textures.release();
  unsigned const buffers[] = {m_materialBuffer, m_viewBuffer, m_surroundingsBuffer};
  glDeleteBuffers(3, buffers);
  glDeleteTextures(1, &m_materialTexture);
  forget();
}

void SoGLRenderer::forget() {
  m_preparedVersion = 0;
  m_turnsAreCurrent = false;
  m_groups.clear();
  m_pages.clear();
  m_materialTable.clear();
  m_programs.clear();
  m_shaders.forget();
  m_textures.forget();
  m_background.forget();
  m_texts.forget();
  m_materialBuffer = m_materialTexture = m_viewBuffer = m_surroundingsBuffer = 0;
}
