#include "kestrava/render/SoGLRenderer.h"

#include <epoxy/gl.h>

#include <cmath>
#include <cstring>

#include "kestrava/render/SoGLBackground.h"
#include "kestrava/render/SoGLState.h"

namespace {

// The uniform blocks of the shaders.
struct ViewBlock {
  float viewProjection[16], view[16], viewport[4], unproject[4], shift[4];
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

constexpr size_t MAX_PAGE_VERTICES = 16384;
constexpr size_t MIN_PLACES = 16;             // of a mesh that is worth a draw call of its own
constexpr size_t MIN_PLACED_VERTICES = 4096;

}  // namespace

SoGLRenderer::SoGLRenderer() = default;
SoGLRenderer::~SoGLRenderer() = default;

void SoGLRenderer::render(SoDrawList const& list, Frame const& frame) {
  SbVec2s const origin = frame.region.getViewportOriginPixels(), size = frame.region.getViewportSizePixels();
  if (size[0] <= 0 || size[1] <= 0) return;
  SoGLState const before;
  m_statistics.drawCalls = m_statistics.rangesSeen = m_statistics.rangesCulled = 0;
  if (m_preparedVersion != list.getVersion()) prepare(list);

  glViewport(origin[0], origin[1], size[0], size[1]);
  glScissor(origin[0], origin[1], size[0], size[1]);
  glEnable(GL_SCISSOR_TEST);
  glDisable(GL_STENCIL_TEST);
  glDisable(GL_FRAMEBUFFER_SRGB);
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
  glDisable(GL_BLEND);
  m_clipDistances = 0;
  for (unsigned i = 0; i < 6; ++i) glDisable(GL_CLIP_DISTANCE0 + i);
  if (frame.clears) {
    SbColorRGBA const& c = frame.background;
    glClearColor(c[0], c[1], c[2], c[3]);
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
  if (frame.transparency != NONE) {
    glEnable(GL_BLEND);
    glDepthMask(GL_FALSE);
  }
  if (frame.transparency == SORTED) {
    drawInTurn(list, frame);
  } else {
    drawLayer(list, SoDrawLook::TRANSPARENT);
  }
  bool const annotated = std::any_of(m_groups.begin(), m_groups.end(),
                                     [](Group const& g) { return g.look.layer == SoDrawLook::ANNOTATION; });
  if (annotated) {
    glDepthMask(GL_TRUE);
    glClear(GL_DEPTH_BUFFER_BIT);
    glEnable(GL_BLEND);
    drawLayer(list, SoDrawLook::ANNOTATION);
  }
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

void SoGLRenderer::prepare(SoDrawList const& list) {
  m_preparedVersion = list.getVersion();
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
  m_textures.endSweep();
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
        together.items = placed->second;
        addPage(together);
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
    if (look.environmentMap) features |= P::ENVIRONMENT_MAP;
    if (texture.alpha == SoDrawTexture::CUT_OUT && texture.element.model != SoTextureImageElement::DECAL &&
        look.layer != SoDrawLook::TRANSPARENT) {
      features |= P::CUT_OUT;
    }
  }
  if (!surroundings.clipPlanes.empty()) features |= P::CLIP;
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

bool SoGLRenderer::bindGroup(SoDrawList const& list, Group const& group) {
  unsigned features = group.features;
  if (features & SoGLProgram::LIT) {
    size_t const lights = list.getSurroundings()[group.look.surroundings].lights.size() + m_headlight;
    features |= SoGLProgram::withLights(static_cast<int>(std::min<size_t>(lights, SoGLProgram::MAX_LIGHTS)));
  }
  auto const [known, isNew] = m_programs.try_emplace(features);
  if (isNew) known->second = SoGLProgram::make(features);
  SoGLProgram const& program = known->second;
  if (!program.getName()) return false;
  SoDrawLook const& look = group.look;
  glUseProgram(program.getName());
  glBindBufferRange(GL_UNIFORM_BUFFER, SoGLProgram::SURROUNDINGS_BLOCK, m_surroundingsBuffer,
                    static_cast<GLintptr>(look.surroundings) * m_surroundingsStride, sizeof(SurroundingsBlock));
  if (group.features & SoGLProgram::TEXTURE) {
    SoTextureImageElement const& texture = list.getTextures()[look.texture].element;
    if (!m_textures.bind(SoGLProgram::IMAGE_UNIT, texture.image, texture.repeatS, texture.repeatT)) return false;
    glUniform1i(program.getUniform(SoGLProgram::TEXTURE_MODEL), texture.model);
    glUniform3fv(program.getUniform(SoGLProgram::BLEND_COLOR), 1, texture.blendColor.getValue());
  }
  if (group.features & SoGLProgram::WIDE_LINES) {
    glUniform1f(program.getUniform(SoGLProgram::LINE_WIDTH), look.lineWidth);
    glUniform1i(program.getUniform(SoGLProgram::LINE_PATTERN), static_cast<int>(look.linePattern));
  }
  glUniform1f(program.getUniform(SoGLProgram::POINT_SIZE), look.pointSize);
  bool const culls = look.culled && group.primitive == SoGLPage::TRIANGLES;
  culls ? glEnable(GL_CULL_FACE) : glDisable(GL_CULL_FACE);
  bool const clips = group.features & SoGLProgram::CLIP && !(group.features & SoGLProgram::WIDE_LINES);
  int const distances = clips ? SoGLProgram::MAX_CLIP_PLANES : 0;
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

void SoGLRenderer::drawLayer(SoDrawList const& list, SoDrawLook::Layer layer) {
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
      if (!bound && !bindGroup(list, group)) break;
      bound = true;
      drawRuns(*page, m_runs);
    }
  }
}

void SoGLRenderer::drawInTurn(SoDrawList const& list, Frame const& frame) {
  SbVec3f const eye = frame.volume.getProjectionPoint(), ahead = frame.volume.getProjectionDirection();
  m_turns.clear();
  for (Group const& group : m_groups) {
    if (group.look.layer != SoDrawLook::TRANSPARENT) continue;
    for (SoGLPage const* page : group.pages) {
      for (SoGLPage::Range const& range : page->getRanges()) {
        if (SbViewVolume::isOutside(m_boundaries, range.bounds)) {
          ++m_statistics.rangesCulled;
          continue;
        }
        ++m_statistics.rangesSeen;
        m_turns.push_back({(range.bounds.getCenter() - eye).dot(ahead), &group, page, &range});
      }
    }
  }
  std::stable_sort(m_turns.begin(), m_turns.end(),
                   [](Turn const& a, Turn const& b) { return a.distance > b.distance; });
  Group const* bound = nullptr;
  bool usable = false;
  for (size_t i = 0; i < m_turns.size();) {
    Turn const& turn = m_turns[i];
    m_runs.clear();
    for (; i < m_turns.size() && m_turns[i].group == turn.group && m_turns[i].page == turn.page; ++i) {
      m_runs.push_back(*m_turns[i].range);
    }
    if (turn.group != bound) {
      bound = turn.group;
      usable = bindGroup(list, *bound);
    }
    if (usable) drawRuns(*turn.page, m_runs);
  }
}

void SoGLRenderer::release() {
  for (auto& [hash, page] : m_pages) page->release();
  for (auto& [features, program] : m_programs) glDeleteProgram(program.getName());
  m_background.release();
  m_textures.release();
  unsigned const buffers[] = {m_materialBuffer, m_viewBuffer, m_surroundingsBuffer};
  glDeleteBuffers(3, buffers);
  glDeleteTextures(1, &m_materialTexture);
  forget();
}

void SoGLRenderer::forget() {
  m_preparedVersion = 0;
  m_groups.clear();
  m_pages.clear();
  m_materialTable.clear();
  m_programs.clear();
  m_textures.forget();
  m_background.forget();
  m_materialBuffer = m_materialTexture = m_viewBuffer = m_surroundingsBuffer = 0;
}
