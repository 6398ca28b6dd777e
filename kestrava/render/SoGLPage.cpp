#include "kestrava/render/SoGLPage.h"

#include <epoxy/gl.h>

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <unordered_map>

#include "kestrava/base/SbVec2f.h"
#include "kestrava/render/SoGLProgram.h"

namespace {

struct Vertex {
  SbVec3f position;
  std::uint32_t normal;  // 10 bits each
  std::uint32_t color;
  std::uint32_t material;
};

struct Instance {
  float rows[3][4];  // column by column of the matrix
  std::uint32_t color;
  std::uint32_t material;
};

std::uint32_t packNormal(SbVec3f const& n) {
  std::uint32_t packed = 0;
  for (int i = 0; i < 3; ++i) {
    int const value = static_cast<int>(std::lround(std::clamp(n[i], -1.0f, 1.0f) * 511));
    packed |= (static_cast<std::uint32_t>(value) & 1023) << (10 * i);
  }
  return packed;
}

/// Corners on the rim of a face of the shape, not the diagonals that cut it into triangles.
std::vector<std::uint32_t> edgesOf(SoMesh const& mesh) {
  struct Edge {
    int count = 0;
    int face = -1;
    SbVec3f normal;
    bool inner = false;
  };
  std::unordered_map<std::uint64_t, Edge> edges;
  std::vector<std::uint64_t> order;
  for (int t = 0; t < mesh.getNumTriangles(); ++t) {
    std::uint32_t const* const v = &mesh.triangles[3 * static_cast<size_t>(t)];
    SbVec3f const normal = (mesh.positions[v[1]] - mesh.positions[v[0]])
                               .cross(mesh.positions[v[2]] - mesh.positions[v[0]])
                               .normalized();
    int const face = mesh.faces.empty() ? -1 : mesh.faces[t];
    for (int i = 0; i < 3; ++i) {
      std::uint64_t const a = std::min(v[i], v[(i + 1) % 3]), b = std::max(v[i], v[(i + 1) % 3]);
      std::uint64_t const key = a << 32 | b;
      Edge& edge = edges[key];
      if (edge.count++ == 0) {
        order.push_back(key);
        edge.face = face;
        edge.normal = normal;
      } else if (face >= 0 && edge.face == face && edge.normal.dot(normal) > 0.9999f) {
        edge.inner = true;
      }
    }
  }
  std::vector<std::uint32_t> lines;
  for (std::uint64_t key : order) {
    if (edges[key].inner) continue;
    lines.push_back(static_cast<std::uint32_t>(key >> 32));
    lines.push_back(static_cast<std::uint32_t>(key));
  }
  return lines;
}

/// The vertices of a mesh that are drawn, in the order of drawing.
std::vector<std::uint32_t> indicesOf(SoMesh const& mesh, SoGLPage::Primitive primitive,
                                     SoDrawStyleElement::Style style) {
  std::vector<std::uint32_t> indices;
  switch (primitive) {
    case SoGLPage::TRIANGLES: return mesh.triangles;
    case SoGLPage::LINES:
      if (style == SoDrawStyleElement::LINES) indices = edgesOf(mesh);
      indices.insert(indices.end(), mesh.lines.begin(), mesh.lines.end());
      return indices;
    case SoGLPage::POINTS: break;
  }
  if (style != SoDrawStyleElement::POINTS) return mesh.points;
  for (std::uint32_t i = 0; i < mesh.positions.size(); ++i) indices.push_back(i);
  return indices;
}

void mix(std::uint64_t& hash, std::uint64_t value) {
  hash = (hash ^ value) * 0x9e3779b97f4a7c15u;
  hash ^= hash >> 29;
}

void mix(std::uint64_t& hash, SbMatrix const& matrix) {
  std::uint64_t words[8];
  static_assert(sizeof words == sizeof matrix);
  std::memcpy(words, matrix.getValue(), sizeof words);
  for (std::uint64_t word : words) mix(hash, word);
}

void setBuffer(unsigned& name, unsigned target, size_t bytes, void const* data) {
  if (!name) glGenBuffers(1, &name);
  glBindBuffer(target, name);
  glBufferData(target, static_cast<GLsizeiptr>(bytes), data, GL_STATIC_DRAW);
}

void attribute(unsigned index, int size, unsigned type, bool normalized, size_t stride, size_t offset) {
  glEnableVertexAttribArray(index);
  glVertexAttribPointer(index, size, type, normalized, static_cast<int>(stride), reinterpret_cast<void*>(offset));
}

void integerAttribute(unsigned index, size_t stride, size_t offset) {
  glEnableVertexAttribArray(index);
  glVertexAttribIPointer(index, 1, GL_UNSIGNED_INT, static_cast<int>(stride), reinterpret_cast<void*>(offset));
}

constexpr std::uint32_t MAX_RANGE_INDICES = 4096;
constexpr std::uint32_t MAX_RANGE_PLACES = 64;

}  // namespace

/// What is going to be uploaded.
struct SoGLPage::Data {
  std::vector<Vertex> vertices;
  std::vector<float> texCoords;  // two or three a vertex
  std::vector<std::uint32_t> indices;
  // Where matrices are apart: of each vertex, or of each place of one mesh.
  std::vector<std::uint32_t> placeNumbers;
  std::vector<float> inputs;
  std::vector<float> matrices;  // three rows a place
  void addPlace(Plan const& plan, SoDrawList const& list, int item, size_t number, size_t count);
};

/// Enters a place, and for each of so many vertices which one it is.
void SoGLPage::Data::addPlace(Plan const& plan, SoDrawList const& list, int item, size_t number, size_t count) {
  SbMatrix const& matrix = list.getItems()[item].matrix;
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 4; ++column) matrices.push_back(matrix[column][row]);
  }
  placeNumbers.insert(placeNumbers.end(), count, static_cast<std::uint32_t>(number));
  int const instance = list.getItems()[item].instance;
  if (instance < 0) return;
  size_t size = 0;
  for (SoDrawInput const& input : plan.inputs) size += static_cast<size_t>(input.components);
  auto const values = list.getInputValues().begin() + instance;
  for (size_t i = 0; i < count; ++i) inputs.insert(inputs.end(), values, values + static_cast<std::ptrdiff_t>(size));
}

bool SoGLPage::has(SoMesh const& mesh, Primitive primitive, SoDrawStyleElement::Style style) {
  bool const filled = style == SoDrawStyleElement::FILLED;
  switch (primitive) {
    case TRIANGLES: return filled && !mesh.triangles.empty();
    case LINES:
      return style != SoDrawStyleElement::POINTS &&
             (!mesh.lines.empty() || (style == SoDrawStyleElement::LINES && !mesh.triangles.empty()));
    case POINTS: return (style == SoDrawStyleElement::POINTS && !mesh.positions.empty()) || !mesh.points.empty();
  }
  return false;
}

std::uint64_t SoGLPage::Plan::hash(SoDrawList const& list, std::vector<std::uint32_t> const& materialRows) const {
  std::uint64_t hash = primitive * 64 + style * 8 + textured * 4 + instanced * 2 + separate;
  hash += 1024 * (sortable * 8 + solid * 4 + fillsTexture * 2 + placed);
  for (SoDrawInput const& input : inputs) mix(hash, static_cast<std::uint64_t>(input.components));
  for (int i : items) {
    SoDrawList::Item const& item = list.getItems()[i];
    mix(hash, item.mesh->key);
    mix(hash, item.matrix);
    mix(hash, list.getMaterials()[item.material].id);
    mix(hash, materialRows[item.material]);
    if (item.instance >= 0) {
      float const* value = &list.getInputValues()[item.instance];
      for (SoDrawInput const& input : inputs) {
        for (int k = 0; k < input.components; ++k) mix(hash, std::bit_cast<std::uint32_t>(*value++));
      }
    }
    if (item.textureMatrix >= 0) mix(hash, list.getTextureMatrices()[item.textureMatrix]);
  }
  return hash;
}

SoGLPage::SoGLPage(Plan const& plan, SoDrawList const& list, std::vector<std::uint32_t> const& materialRows)
    : m_instanced(plan.instanced) {
  static unsigned const modes[] = {GL_TRIANGLES, GL_LINES, GL_POINTS};
  m_mode = modes[plan.primitive];
  glGenVertexArrays(1, &m_vertexArray);
  for (SoDrawInput const& input : plan.inputs) m_inputSizes.push_back(input.components);
  Data data;
  bool open = false;  // the last range takes more items
  for (int i : plan.items) {
    SoDrawList::Item const& item = list.getItems()[i];
    auto const first = static_cast<std::uint32_t>(data.indices.size());
    add(data, plan, list, i, materialRows[item.material]);
    if (plan.instanced) break;
    auto const count = static_cast<std::uint32_t>(data.indices.size()) - first;
    if (open && m_ranges.back().count + count <= MAX_RANGE_INDICES) {
      m_ranges.back().bounds.extendBy(item.bounds);
      m_ranges.back().count += count;
    } else {
      m_ranges.push_back({item.bounds, first, count});
    }
    open = !plan.separate;
  }
  if (plan.placed && plan.instanced) {
    for (size_t i = 0; i < plan.items.size(); ++i) data.addPlace(plan, list, plan.items[i], i, 1);
  }
  upload(data);
  if (plan.placed) uploadPlaces(data, plan);
  if (plan.instanced) uploadInstances(plan, list, materialRows);
}

void SoGLPage::add(Data& data, Plan const& plan, SoDrawList const& list, int index, std::uint32_t row) {
  SoDrawList::Item const& item = list.getItems()[index];
  SoMesh const& mesh = item.mesh->mesh;
  SoDrawMaterial const& material = list.getMaterials()[item.material];
  bool const moved = !plan.instanced && !plan.placed && !item.matrix.isIdentity();
  bool const mirrored = !plan.instanced && item.matrix.det3() < 0;
  SbMatrix const forNormals = moved ? item.matrix.inverse().transpose() : SbMatrix();
  auto const base = static_cast<std::uint32_t>(data.vertices.size());

  data.vertices.resize(base + mesh.positions.size());
  std::uint32_t const overall = material.getColor(0);
  for (size_t i = 0; i < mesh.positions.size(); ++i) {
    Vertex& vertex = data.vertices[base + i];
    vertex.position = moved ? item.matrix.multVecMatrix(mesh.positions[i]) : mesh.positions[i];
    if (!mesh.normals.empty()) {
      vertex.normal = packNormal(moved ? forNormals.multDirMatrix(mesh.normals[i]).normalized() : mesh.normals[i]);
    } else {
      vertex.normal = 0;
    }
    int const which = mesh.materials.empty() ? 0 : mesh.materials[i];
    vertex.color = which > 0 ? material.getColor(which) : overall;
    vertex.material = row + static_cast<std::uint32_t>(SoDrawMaterial::clampIndex(which, material.gloss.size()));
  }
  if (plan.textured) {
    SbMatrix const* const turn = item.textureMatrix >= 0 ? &list.getTextureMatrices()[item.textureMatrix] : nullptr;
    size_t const size = plan.solid ? 3 : 2;
    data.texCoords.resize(data.vertices.size() * size);
    float* target = data.texCoords.data() + base * size;
    SbVec3f const extent = item.mesh->bounds.getSize();
    for (size_t i = 0; i < mesh.positions.size(); ++i, target += size) {
      SbVec3f p = i < mesh.texCoords.size() ? mesh.texCoords[i] : SbVec3f();
      for (int k = 0; plan.fillsTexture && k < 3; ++k) {
        p[k] = extent[k] > 0 ? (mesh.positions[i][k] - item.mesh->bounds.getMin()[k]) / extent[k] : 0.5f;
      }
      if (turn) p = turn->multVecMatrix(p);
      for (size_t k = 0; k < size; ++k) target[k] = p[static_cast<int>(k)];
    }
  }
  if (plan.placed && !plan.instanced) data.addPlace(plan, list, index, data.matrices.size() / 12, mesh.positions.size());
  size_t const first = data.indices.size();
  for (std::uint32_t v : indicesOf(mesh, plan.primitive, plan.style)) data.indices.push_back(base + v);
  for (size_t i = 0; plan.sortable && i + 2 < mesh.triangles.size(); i += 3) {
    std::uint32_t const* const v = &mesh.triangles[i];
    m_centers.push_back(item.matrix.multVecMatrix(
        (mesh.positions[v[0]] + mesh.positions[v[1]] + mesh.positions[v[2]]) * (1 / 3.0f)));
  }
  // Mirrored corners run the other way round.
  if (mirrored && plan.primitive == TRIANGLES) {
    for (size_t i = first; i + 2 < data.indices.size(); i += 3) std::swap(data.indices[i + 1], data.indices[i + 2]);
  }
}

void SoGLPage::upload(Data const& data) {
  glBindVertexArray(m_vertexArray);
  setBuffer(m_buffers[VERTICES], GL_ARRAY_BUFFER, data.vertices.size() * sizeof(Vertex), data.vertices.data());
  attribute(SoGLProgram::POSITION, 3, GL_FLOAT, false, sizeof(Vertex), offsetof(Vertex, position));
  attribute(SoGLProgram::NORMAL, 4, GL_INT_2_10_10_10_REV, true, sizeof(Vertex), offsetof(Vertex, normal));
  if (!m_instanced) {
    attribute(SoGLProgram::COLOR, 4, GL_UNSIGNED_BYTE, true, sizeof(Vertex), offsetof(Vertex, color));
    integerAttribute(SoGLProgram::MATERIAL, sizeof(Vertex), offsetof(Vertex, material));
  }
  if (!data.texCoords.empty()) {
    int const size = static_cast<int>(data.texCoords.size() / data.vertices.size());
    setBuffer(m_buffers[TEX_COORDS], GL_ARRAY_BUFFER, data.texCoords.size() * sizeof(float), data.texCoords.data());
    attribute(SoGLProgram::TEX_COORD, size, GL_FLOAT, false, 0, 0);
  }
  setBuffer(m_buffers[INDICES], GL_ELEMENT_ARRAY_BUFFER, data.indices.size() * sizeof(std::uint32_t), data.indices.data());
  m_numIndices = static_cast<std::uint32_t>(data.indices.size());
  if (!m_centers.empty()) m_triangles = data.indices;
}

/// Matrices go into a texture, the rest into attributes.
void SoGLPage::uploadPlaces(Data const& data, Plan const& plan) {
  setBuffer(m_buffers[PLACE_MATRICES], GL_TEXTURE_BUFFER, data.matrices.size() * sizeof(float), data.matrices.data());
  glGenTextures(1, &m_placeTexture);
  glActiveTexture(GL_TEXTURE0 + SoGLProgram::PLACES_UNIT);
  glBindTexture(GL_TEXTURE_BUFFER, m_placeTexture);
  glTexBuffer(GL_TEXTURE_BUFFER, GL_RGBA32F, m_buffers[PLACE_MATRICES]);
  setBuffer(m_buffers[INPUTS], GL_ARRAY_BUFFER, data.inputs.size() * sizeof(float), data.inputs.data());
  setBuffer(m_buffers[PLACE_NUMBERS], GL_ARRAY_BUFFER, data.placeNumbers.size() * sizeof(std::uint32_t),
            data.placeNumbers.data());
  if (plan.instanced) {
    glVertexAttribDivisor(SoGLProgram::PLACE, 1);
    for (size_t i = 0; i < m_inputSizes.size(); ++i) {
      glVertexAttribDivisor(SoGLProgram::FIRST_INPUT + static_cast<unsigned>(i), 1);
    }
  } else {
    pointToInputs(0);
  }
}

/// What is known of each vertex's or copy's place, from an entry on; the vertex array is bound.
void SoGLPage::pointToInputs(size_t start) const {
  glBindBuffer(GL_ARRAY_BUFFER, m_buffers[PLACE_NUMBERS]);
  integerAttribute(SoGLProgram::PLACE, sizeof(std::uint32_t), start * sizeof(std::uint32_t));
  size_t stride = 0;
  for (int size : m_inputSizes) stride += static_cast<size_t>(size) * sizeof(float);
  size_t offset = start * stride;
  glBindBuffer(GL_ARRAY_BUFFER, m_buffers[INPUTS]);
  for (size_t i = 0; i < m_inputSizes.size(); ++i) {
    attribute(SoGLProgram::FIRST_INPUT + static_cast<unsigned>(i), m_inputSizes[i], GL_FLOAT, false, stride, offset);
    offset += static_cast<size_t>(m_inputSizes[i]) * sizeof(float);
  }
}

void SoGLPage::uploadInstances(Plan const& plan, SoDrawList const& list,
                               std::vector<std::uint32_t> const& materialRows) {
  std::vector<Instance> instances;
  for (int i : plan.items) {
    SoDrawList::Item const& item = list.getItems()[i];
    Instance& instance = instances.emplace_back();
    for (int row = 0; row < 3; ++row) {
      for (int column = 0; column < 4; ++column) instance.rows[row][column] = item.matrix[column][row];
    }
    instance.color = list.getMaterials()[item.material].getColor(0);
    instance.material = materialRows[item.material];
    if (m_ranges.empty() || m_ranges.back().count == MAX_RANGE_PLACES) {
      m_ranges.push_back({item.bounds, static_cast<std::uint32_t>(instances.size()) - 1, 1});
    } else {
      m_ranges.back().bounds.extendBy(item.bounds);
      ++m_ranges.back().count;
    }
  }
  setBuffer(m_buffers[INSTANCES], GL_ARRAY_BUFFER, instances.size() * sizeof(Instance), instances.data());
  pointToInstances(0);
  for (unsigned i : {SoGLProgram::COLOR, SoGLProgram::MATERIAL}) glVertexAttribDivisor(i, 1);
  for (unsigned i = 0; i < 3 && !m_placeTexture; ++i) glVertexAttribDivisor(SoGLProgram::MATRIX + i, 1);
}

/// Makes a place the first one that is drawn; the vertex array is bound.
void SoGLPage::pointToInstances(std::uint32_t first) const {
  size_t const start = first * sizeof(Instance);
  glBindBuffer(GL_ARRAY_BUFFER, m_buffers[INSTANCES]);
  attribute(SoGLProgram::COLOR, 4, GL_UNSIGNED_BYTE, true, sizeof(Instance), start + offsetof(Instance, color));
  integerAttribute(SoGLProgram::MATERIAL, sizeof(Instance), start + offsetof(Instance, material));
  if (m_placeTexture) return pointToInputs(first);
  for (unsigned i = 0; i < 3; ++i) {
    attribute(SoGLProgram::MATRIX + i, 4, GL_FLOAT, false, sizeof(Instance), start + i * sizeof(Instance::rows[0]));
  }
}

void SoGLPage::release() {
  glDeleteVertexArrays(1, &m_vertexArray);
  glDeleteBuffers(NUM_BUFFERS, m_buffers);
  glDeleteTextures(1, &m_placeTexture);
  m_vertexArray = m_placeTexture = 0;
  std::fill(std::begin(m_buffers), std::end(m_buffers), 0u);
}

void SoGLPage::bind() const {
  glBindVertexArray(m_vertexArray);
  if (!m_placeTexture) return;
  glActiveTexture(GL_TEXTURE0 + SoGLProgram::PLACES_UNIT);
  glBindTexture(GL_TEXTURE_BUFFER, m_placeTexture);
  glBindSampler(SoGLProgram::PLACES_UNIT, 0);
}

void SoGLPage::setOrder(std::vector<std::uint32_t> const& order) {
  std::vector<std::uint32_t> indices;
  indices.reserve(order.size() * 3);
  for (std::uint32_t triangle : order) {
    auto const corners = m_triangles.begin() + static_cast<std::ptrdiff_t>(triangle) * 3;
    indices.insert(indices.end(), corners, corners + 3);
  }
  glBindVertexArray(m_vertexArray);
  glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(indices.size() * sizeof(std::uint32_t)),
               indices.data(), GL_DYNAMIC_DRAW);
}

void SoGLPage::draw(std::vector<Range> const& runs) const {
  if (m_instanced) {
    for (Range const& run : runs) {
      pointToInstances(run.first);
      glDrawElementsInstanced(m_mode, static_cast<int>(m_numIndices), GL_UNSIGNED_INT, nullptr,
                              static_cast<int>(run.count));
    }
    return;
  }
  static thread_local std::vector<int> counts;
  static thread_local std::vector<void const*> offsets;
  counts.clear();
  offsets.clear();
  for (Range const& run : runs) {
    counts.push_back(static_cast<int>(run.count));
    offsets.push_back(reinterpret_cast<void const*>(run.first * sizeof(std::uint32_t)));
  }
  if (counts.size() == 1) {
    glDrawElements(m_mode, counts[0], GL_UNSIGNED_INT, offsets[0]);
  } else {
    glMultiDrawElements(m_mode, counts.data(), GL_UNSIGNED_INT, offsets.data(), static_cast<int>(counts.size()));
  }
}
