#include "kestrava/render/SoMeshBuilder.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <mutex>
#include <unordered_set>

#include "kestrava/base/SoError.h"
#include "kestrava/nodes/SoShape.h"

void SoPostDataError(SoNode const& node, SbString const& text) {
  static std::mutex mutex;
  static auto& posted = *new std::unordered_set<std::uint64_t>;
  {
    std::lock_guard lock(mutex);
    // States come and go: only so many are remembered.
    if (posted.size() > 10000) posted.clear();
    if (!posted.insert(node.getNodeId()).second) return;
  }
  SoDebugError::post(node.getTypeId().getName().c_str(), "'%s': %s", node.getName().c_str(), text.c_str());
}

std::uint64_t SoMixKey(std::uint64_t key, std::uint64_t number) {
  key = (key ^ number) * 0x9e3779b97f4a7c15u;
  return key ^ (key >> 29);
}

SbVec3f SoProjectTexture(SoTextureCoordinateElement const& element, SbBox3f const& bounds,
                         SbVec3f const& point) {
  if (element.source == SoTextureCoordinateElement::PLANE) {
    // The length of a direction is that of one image.
    float const s = element.directionS.dot(element.directionS),
                t = element.directionT.dot(element.directionT);
    return SbVec3f(s > 0 ? point.dot(element.directionS) / s : 0,
                   t > 0 ? point.dot(element.directionT) / t : 0, 0);
  }
  SbVec3f const size = bounds.getSize();
  int sAxis = 0;
  for (int i = 1; i < 3; ++i) {
    if (size[i] > size[sAxis]) sAxis = i;
  }
  int tAxis = sAxis == 0 ? 1 : 0;
  for (int i = tAxis + 1; i < 3; ++i) {
    if (i != sAxis && size[i] > size[tAxis]) tAxis = i;
  }
  float const length = size[sAxis];
  if (!(length > 0)) return SbVec3f();
  SbVec3f const from = point - bounds.getMin();
  return SbVec3f(from[sAxis] / length, from[tAxis] / length, 0);
}

SoOwnStateScope::SoOwnStateScope(SoShape const& shape, SoState const& state)
    : m_state(const_cast<SoState&>(state)) {
  m_state.push();
  shape.applyOwnState(m_state);
}

namespace {

/// An index field without values, or with a single -1, leaves it to coordIndex.
std::span<std::int32_t const> givenIndices(std::span<std::int32_t const> indices) {
  return indices.size() == 1 && indices[0] < 0 ? std::span<std::int32_t const>() : indices;
}

int pick(SoBinding binding, std::span<std::int32_t const> indices, std::span<std::int32_t const> coordIndices,
         SoCornerPlace const& place) {
  auto indexed = [&](int i) {
    return indices.empty() ? i : i < static_cast<int>(indices.size()) ? indices[i] : -1;
  };
  switch (binding) {
    case SoBinding::OVERALL:
      return 0;
    case SoBinding::PER_PART:
      return place.part;
    case SoBinding::PER_PART_INDEXED:
      return indexed(place.part);
    case SoBinding::PER_FACE:
      return place.face;
    case SoBinding::PER_FACE_INDEXED:
      return indexed(place.face);
    case SoBinding::PER_VERTEX:
      return place.vertex;
    case SoBinding::PER_VERTEX_INDEXED:
      break;
  }
  if (!indices.empty()) return indexed(place.slot);
  return coordIndices.empty() ? place.vertex : coordIndices[place.slot];
}

} // namespace

SoMeshBuilder::SoMeshBuilder(SoShape const& shape, SoState const& state, Indices const& indices, SoMesh& mesh)
    : m_shape(shape), m_indices(indices), m_mesh(mesh) {
  m_indices.material = givenIndices(indices.material);
  m_indices.normal = givenIndices(indices.normal);
  m_indices.texCoord = givenIndices(indices.texCoord);

  SoOwnStateScope const own(shape, state);
  auto const& coords = state.get<SoCoordinateElement>();
  if (coords.points4) {
    for (int i = 0; i < coords.count; ++i) {
      SbVec4f const& p = coords.points4[i];
      float const w = p[3] != 0 ? p[3] : 1;
      m_divided.emplace_back(p[0] / w, p[1] / w, p[2] / w);
    }
    m_points = m_divided;
  } else {
    m_points = {coords.points, static_cast<size_t>(coords.count)};
  }
  auto const& normals = state.get<SoNormalElement>();
  m_normals = {normals.normals, static_cast<size_t>(normals.count)};
  m_texCoords = state.get<SoTextureCoordinateElement>();
  m_materialBinding = state.get<SoMaterialBindingElement>().value;
  m_normalBinding = state.get<SoNormalBindingElement>().value;
  m_texCoordBinding = state.get<SoTextureCoordinateBindingElement>().value;
  m_hints = state.get<SoShapeHintsElement>();
  m_textured = state.get<SoTextureImageElement>().id != 0 &&
               m_texCoords.source != SoTextureCoordinateElement::ENVIRONMENT;
}

bool SoMeshBuilder::isCoord(int index) {
  if (index >= 0 && index < getNumCoords()) return true;
  SoPostDataError(m_shape, SbString::format("there is no coordinate %d among %d", index, getNumCoords()));
  return false;
}

SoCorner SoMeshBuilder::corner(int coord, SoCornerPlace const& place) const {
  SoCorner corner;
  corner.coord = coord;
  corner.material = std::max(0, pick(m_materialBinding, m_indices.material, m_indices.coord, place));
  if (!m_normals.empty()) corner.normal = pick(m_normalBinding, m_indices.normal, m_indices.coord, place);
  if (m_textured && m_texCoords.source == SoTextureCoordinateElement::EXPLICIT) {
    corner.texCoord = pick(m_texCoordBinding, m_indices.texCoord, m_indices.coord, place);
  }
  return corner;
}

void SoMeshBuilder::addFace(std::span<SoCorner const> corners, int face, int part) {
  if (corners.size() < 3) return;
  m_faceStarts.push_back(static_cast<int>(m_corners.size()));
  m_faceNumbers.push_back(face);
  if (part >= 0) m_partNumbers.push_back(part);
  m_corners.insert(m_corners.end(), corners.begin(), corners.end());
}

void SoMeshBuilder::addSegment(SoCorner const& from, SoCorner const& to, int line) {
  m_mesh.lineNumbers.push_back(line);
  m_loose.insert(m_loose.end(), {from, to});
  m_looseIsPoint.push_back(false);
}

void SoMeshBuilder::addPoint(SoCorner const& at) {
  m_loose.push_back(at);
  m_looseIsPoint.push_back(true);
}

bool SoMeshBuilder::givenNormalsFit() const {
  if (m_normals.empty()) return false;
  int const count = static_cast<int>(m_normals.size());
  auto fits = [count](SoCorner const& corner) { return corner.normal >= 0 && corner.normal < count; };
  if (std::all_of(m_corners.begin(), m_corners.end(), fits) &&
      std::all_of(m_loose.begin(), m_loose.end(), fits)) {
    return true;
  }
  SoPostDataError(m_shape, SbString::format("%d normals are too few, or are bound otherwise", count));
  return false;
}

void SoMeshBuilder::checkTexCoords() {
  if (!m_textured || m_texCoords.source != SoTextureCoordinateElement::EXPLICIT) return;
  auto fits = [this](SoCorner const& corner) {
    return corner.texCoord >= 0 && corner.texCoord < m_texCoords.count;
  };
  if (std::all_of(m_corners.begin(), m_corners.end(), fits) &&
      std::all_of(m_loose.begin(), m_loose.end(), fits)) {
    return;
  }
  SoPostDataError(m_shape, SbString::format("%d texture coordinates are too few", m_texCoords.count));
  m_texCoords.source = SoTextureCoordinateElement::SHAPE_DEFAULT;
}

SbVec3f SoMeshBuilder::faceNormal(int face) const {
  auto const end = face + 1 < static_cast<int>(m_faceStarts.size()) ? m_faceStarts[face + 1]
                                                                    : static_cast<int>(m_corners.size());
  int const start = m_faceStarts[face];
  // Relative to the first corner: small faces far from the origin keep their precision.
  SbVec3f const origin = m_points[m_corners[start].coord];
  SbVec3d sum;
  for (int i = start + 1; i + 1 < end; ++i) {
    SbVec3d const a(m_points[m_corners[i].coord] - origin), b(m_points[m_corners[i + 1].coord] - origin);
    sum += a.cross(b);
  }
  if (m_hints.ordering == SoShapeHintsElement::CLOCKWISE) sum = -sum;
  return sum.normalize() > 0 ? SbVec3f(sum) : SbVec3f(0, 0, 1);
}

void SoMeshBuilder::computeNormals() {
  int const numFaces = static_cast<int>(m_faceStarts.size());
  int const numCorners = static_cast<int>(m_corners.size());
  std::vector<SbVec3f> flat(numFaces);
  std::vector<int> faceOf(numCorners);
  for (int f = 0; f < numFaces; ++f) {
    flat[f] = faceNormal(f);
    int const end = f + 1 < numFaces ? m_faceStarts[f + 1] : numCorners;
    for (int i = m_faceStarts[f]; i < end; ++i) m_corners[i].normal = faceOf[i] = f;
  }
  m_computed.clear();
  if (m_hints.creaseAngle < 1e-4f) {
    m_computed = std::move(flat);
    m_normals = m_computed;
    return;
  }

  // Corners ordered by where they stand: coordinates that are given several times are one place.
  // By bits, which orders values that are no numbers too; 0 is added to make -0 and 0 the same.
  auto before = [this](int a, int b) {
    SbVec3f const &p = m_points[m_corners[a].coord], &q = m_points[m_corners[b].coord];
    return std::lexicographical_compare(p.v, p.v + 3, q.v, q.v + 3, [](float x, float y) {
      return std::bit_cast<std::uint32_t>(x + 0.0f) < std::bit_cast<std::uint32_t>(y + 0.0f);
    });
  };
  std::vector<int> order(numCorners);
  for (int i = 0; i < numCorners; ++i) order[i] = i;
  std::stable_sort(order.begin(), order.end(), before);

  constexpr int MAX_COMPARED = 1000; // corners in one place; more are taken as one smooth surface
  float const limit = std::cos(std::min(m_hints.creaseAngle, 3.1415927f)) - 1e-5f;
  for (int from = 0; from < numCorners;) {
    int to = from + 1;
    while (to < numCorners && !before(order[from], order[to])) ++to;
    size_t const firstHere = m_computed.size();
    bool const all = to - from > MAX_COMPARED || m_hints.creaseAngle >= 3.1415f;
    for (int i = from; i < to; ++i) {
      SbVec3f const& own = flat[faceOf[order[i]]];
      SbVec3f sum;
      if (!all || i == from) {
        for (int k = from; k < to; ++k) {
          SbVec3f const& other = flat[faceOf[order[k]]];
          if (all || own.dot(other) >= limit) sum += other;
        }
        if (sum.normalize() < 1e-6f) sum = own;
      } else {
        sum = m_computed[firstHere];
      }
      auto const known = std::find(m_computed.begin() + firstHere, m_computed.end(), sum);
      m_corners[order[i]].normal = static_cast<int>(known - m_computed.begin());
      if (known == m_computed.end()) m_computed.push_back(sum);
    }
    from = to;
  }
  m_normals = m_computed;
}

void SoMeshBuilder::numberCoords() {
  // Many small shapes may share one long list of coordinates.
  bool const few = static_cast<size_t>(getNumCoords()) > 8 * (m_corners.size() + m_loose.size());
  if (!few) m_firstOfCoord.assign(getNumCoords(), -1);
}

std::int32_t& SoMeshBuilder::firstVertexOf(int coord) {
  return m_firstOfCoord.empty() ? m_firstOfFew.try_emplace(coord, -1).first->second : m_firstOfCoord[coord];
}

std::uint32_t SoMeshBuilder::vertex(SoCorner const& corner) {
  bool const hasMaterials = m_materialBinding != SoBinding::OVERALL;
  std::int32_t& first = firstVertexOf(corner.coord);
  for (int v = first; v >= 0; v = m_nextVertex[v]) {
    SoCorner const& made = m_made[v];
    if (made.normal == corner.normal && made.texCoord == corner.texCoord &&
        (!hasMaterials || made.material == corner.material)) {
      return static_cast<std::uint32_t>(v);
    }
  }
  auto const index = static_cast<std::int32_t>(m_made.size());
  m_made.push_back(corner);
  m_nextVertex.push_back(first);
  first = index;

  SbVec3f const& point = m_points[corner.coord];
  m_mesh.positions.push_back(point);
  m_mesh.coordIndices.push_back(corner.coord);
  if (!m_normals.empty()) {
    SbVec3f normal = m_normals[corner.normal];
    normal.normalize();
    m_mesh.normals.push_back(normal);
  }
  if (hasMaterials) m_mesh.materials.push_back(corner.material);
  if (!m_textured) return static_cast<std::uint32_t>(index);
  if (m_texCoords.source != SoTextureCoordinateElement::EXPLICIT) {
    m_mesh.texCoords.push_back(SoProjectTexture(m_texCoords, m_bounds, point));
  } else if (m_texCoords.coords2) {
    SbVec2f const& st = m_texCoords.coords2[corner.texCoord];
    m_mesh.texCoords.emplace_back(st[0], st[1], 0.0f);
  } else {
    m_mesh.texCoords.push_back(m_texCoords.coords3[corner.texCoord]);
  }
  return static_cast<std::uint32_t>(index);
}

void SoMeshBuilder::writeFaces() {
  std::vector<int> split;
  std::vector<SbVec3f> points;
  bool const turned = m_hints.ordering == SoShapeHintsElement::CLOCKWISE;
  int const numFaces = static_cast<int>(m_faceStarts.size());
  for (int f = 0; f < numFaces; ++f) {
    int const start = m_faceStarts[f];
    int const end = f + 1 < numFaces ? m_faceStarts[f + 1] : static_cast<int>(m_corners.size());
    points.clear();
    for (int i = start; i < end; ++i) points.push_back(m_points[m_corners[i].coord]);
    split.clear();
    SoTriangulate(points, m_hints.convex, split);
    for (size_t k = 0; k + 2 < split.size(); k += 3) {
      std::uint32_t const a = vertex(m_corners[start + split[k]]),
                          b = vertex(m_corners[start + split[k + 1]]),
                          c = vertex(m_corners[start + split[k + 2]]);
      m_mesh.triangles.insert(m_mesh.triangles.end(), {a, turned ? c : b, turned ? b : c});
      m_mesh.faces.push_back(m_faceNumbers[f]);
      if (!m_partNumbers.empty()) m_mesh.parts.push_back(m_partNumbers[f]);
    }
  }
}

void SoMeshBuilder::finish() {
  for (auto const* corners : {&m_corners, &m_loose}) {
    for (SoCorner const& corner : *corners) m_bounds.extendBy(m_points[corner.coord]);
  }
  checkTexCoords();
  if (!givenNormalsFit()) {
    m_normals = {};
    for (SoCorner& corner : m_loose) corner.normal = -1;
    if (!m_corners.empty()) computeNormals();
  }
  numberCoords();
  writeFaces();
  size_t next = 0;
  for (bool const isPoint : m_looseIsPoint) {
    if (isPoint) {
      m_mesh.points.push_back(vertex(m_loose[next++]));
    } else {
      std::uint32_t const from = vertex(m_loose[next]), to = vertex(m_loose[next + 1]);
      m_mesh.lines.insert(m_mesh.lines.end(), {from, to});
      next += 2;
    }
  }
}
