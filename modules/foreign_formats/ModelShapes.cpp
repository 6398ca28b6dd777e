#include "modules/foreign_formats/ModelShapes.h"

#include <bit>
#include <cmath>

#include "kestrava/nodes/SoIndexedFaceSet.h"
#include "kestrava/nodes/SoIndexedLineSet.h"
#include "kestrava/nodes/SoPointSet.h"
#include "kestrava/nodes/SoVertexProperty.h"

namespace {

float finite(float value) { return std::isfinite(value) ? value : 0.0f; }
SbVec3f toVec3(aiVector3D const& v) { return SbVec3f(finite(v.x), finite(v.y), finite(v.z)); }

std::uint32_t toByte(float value) {
  return value > 0 ? static_cast<std::uint32_t>(std::lround(255 * std::min(value, 1.0f))) : 0;
}

/// What a vertex property holds.
struct Arrays {
  std::vector<SbVec3f> points, normals;
  std::vector<SbVec2f> texCoords;
  std::vector<std::uint32_t> colors;
};

/// The corners of a mesh, in the form of the fields.
class Corners : public Arrays {
 public:
  Corners(aiMesh const& mesh, ModelMaterials::Look const& look, bool tinted) : m_mesh(mesh) {
    unsigned const channel = static_cast<unsigned>(look.textureChannel);
    unsigned const used = look.texture && channel < AI_MAX_NUMBER_OF_TEXTURECOORDS ? channel : 0;
    m_texCoords = mesh.HasTextureCoords(used) ? mesh.mTextureCoords[used] : nullptr;
    m_tint = tinted ? look.diffuse : SbColor(1, 1, 1);
    m_opacity = 1 - look.transparency;
    m_isOpaque = look.isOpaque;
    m_isLinear = look.isLinear;
    if (isUnindexed()) {
      join();
    } else {
      keepAll();
    }
  }

  int count() const { return static_cast<int>(points.size()); }
  int indexOf(unsigned corner) const {
    return m_joined.empty() ? static_cast<int>(corner) : m_joined[corner];
  }

 private:
  /// True when every face has corners of its own in the file.
  bool isUnindexed() const {
    std::size_t used = 0;
    for (unsigned i = 0; i < m_mesh.mNumFaces; ++i) used += m_mesh.mFaces[i].mNumIndices;
    return used == m_mesh.mNumVertices;
  }

  std::uint32_t colorOf(unsigned i) const {
    aiColor4D c = m_mesh.mColors[0][i];
    if (m_isLinear) c = aiColor4D(fromLinear(c.r), fromLinear(c.g), fromLinear(c.b), c.a);
    return toByte(c.r * m_tint[0]) << 24 | toByte(c.g * m_tint[1]) << 16 | toByte(c.b * m_tint[2]) << 8 |
           toByte(m_isOpaque ? 1.0f : c.a * m_opacity);
  }

  void add(unsigned i) {
    points.push_back(toVec3(m_mesh.mVertices[i]));
    if (m_mesh.HasNormals()) {
      SbVec3f normal = toVec3(m_mesh.mNormals[i]);
      if (!(normal.normalize() > 0)) normal = SbVec3f(0, 0, 1);
      normals.push_back(normal);
    }
    if (m_texCoords) texCoords.emplace_back(finite(m_texCoords[i].x), finite(m_texCoords[i].y));
    if (m_mesh.HasVertexColors(0)) colors.push_back(colorOf(i));
  }

  void keepAll() {
    points.reserve(m_mesh.mNumVertices);
    if (m_mesh.HasNormals()) normals.reserve(m_mesh.mNumVertices);
    if (m_texCoords) texCoords.reserve(m_mesh.mNumVertices);
    for (unsigned i = 0; i < m_mesh.mNumVertices; ++i) add(i);
  }

  /// Corners that are the same in everything become one.
  void join() {
    std::size_t const size = std::bit_ceil(2 * std::size_t(m_mesh.mNumVertices) + 1);
    std::vector<std::int32_t> table(size, -1);
    m_joined.reserve(m_mesh.mNumVertices);
    for (unsigned i = 0; i < m_mesh.mNumVertices; ++i) {
      add(i);
      int const last = count() - 1;
      std::size_t slot = hashOf(last) & (size - 1);
      while (table[slot] >= 0 && !isSame(table[slot], last)) slot = (slot + 1) & (size - 1);
      if (table[slot] < 0) {
        table[slot] = last;
      } else {
        dropLast();
      }
      m_joined.push_back(table[slot]);
    }
    points.shrink_to_fit();
    normals.shrink_to_fit();
    texCoords.shrink_to_fit();
  }

  std::size_t hashOf(int i) const {
    std::uint64_t hash = colors.empty() ? 0 : colors[i];
    auto mix = [&hash](float value) {
      hash = (hash ^ std::bit_cast<std::uint32_t>(value + 0.0f)) * 0x9e3779b97f4a7c15u;
      hash ^= hash >> 29;
    };
    for (int axis = 0; axis < 3; ++axis) {
      mix(points[i][axis]);
      if (!normals.empty()) mix(normals[i][axis]);
      if (!texCoords.empty() && axis < 2) mix(texCoords[i][axis]);
    }
    return hash;
  }
  bool isSame(int a, int b) const {
    return points[a] == points[b] && (normals.empty() || normals[a] == normals[b]) &&
           (texCoords.empty() || texCoords[a] == texCoords[b]) && (colors.empty() || colors[a] == colors[b]);
  }
  void dropLast() {
    points.pop_back();
    if (!normals.empty()) normals.pop_back();
    if (!texCoords.empty()) texCoords.pop_back();
    if (!colors.empty()) colors.pop_back();
  }

  aiMesh const& m_mesh;
  aiVector3D const* m_texCoords = nullptr;
  SbColor m_tint{1, 1, 1};
  float m_opacity = 1;
  bool m_isOpaque = false, m_isLinear = false;
  std::vector<std::int32_t> m_joined; // corner of the mesh to that of the fields; empty: the same
};

SoRef<SoVertexProperty> makeProperty(Arrays& corners, SoMaterialBinding::Binding binding) {
  SoRef<SoVertexProperty> property(new SoVertexProperty);
  property->vertex.setValues(std::move(corners.points));
  if (!corners.normals.empty()) property->normal.setValues(std::move(corners.normals));
  if (!corners.texCoords.empty()) property->texCoord.setValues(std::move(corners.texCoords));
  if (!corners.colors.empty()) {
    property->orderedRGBA.setValues(std::move(corners.colors));
    property->materialBinding = binding;
  }
  return property;
}

/// The points of some corners as a point set takes them, in order.
Arrays pickPoints(Arrays const& from, std::vector<std::int32_t> const& indices) {
  Arrays to;
  for (std::int32_t i : indices) {
    to.points.push_back(from.points[i]);
    if (!from.colors.empty()) to.colors.push_back(from.colors[i]);
  }
  return to;
}

/// True when the corners of most faces go round the other way than their normals say.
bool turnsAgainstNormals(aiMesh const& mesh) {
  long against = 0, all = 0;
  for (unsigned i = 0; mesh.HasNormals() && i < mesh.mNumFaces; ++i) {
    aiFace const& face = mesh.mFaces[i];
    if (face.mNumIndices < 3) continue;
    unsigned const* const k = face.mIndices;
    if (k[0] >= mesh.mNumVertices || k[1] >= mesh.mNumVertices || k[2] >= mesh.mNumVertices) continue;
    auto const* const points = mesh.mVertices;
    float const side = ((points[k[1]] - points[k[0]]) ^ (points[k[2]] - points[k[0]])) *
                       (mesh.mNormals[k[0]] + mesh.mNormals[k[1]] + mesh.mNormals[k[2]]);
    ++all;
    against += side < 0 ? 1 : 0;
  }
  return 2 * against > all;
}

/// Segments that go on where the one before ends are one line.
void addSegment(std::vector<std::int32_t>& lines, std::int32_t from, std::int32_t to) {
  if (lines.size() > 1 && lines[lines.size() - 2] == from) {
    lines.back() = to;
  } else {
    lines.insert(lines.end(), {from, to});
  }
  lines.push_back(-1);
}

} // namespace

ModelShapes::ModelShapes(aiMesh const& mesh, ModelMaterials::Look const& look, bool tinted) {
  Corners corners(mesh, look, tinted);
  hasNormals = !corners.normals.empty();
  hasTexCoords = !corners.texCoords.empty();
  isClockwise = turnsAgainstNormals(mesh);

  std::vector<std::int32_t> faces, lines, points;
  faces.reserve(std::size_t(mesh.mNumFaces) * 4);
  for (unsigned i = 0; i < mesh.mNumFaces; ++i) {
    aiFace const& face = mesh.mFaces[i];
    bool isGood = face.mNumIndices > 0;
    for (unsigned k = 0; k < face.mNumIndices; ++k) isGood = isGood && face.mIndices[k] < mesh.mNumVertices;
    if (!isGood) continue;
    auto const index = [&](unsigned k) { return corners.indexOf(face.mIndices[k]); };
    if (face.mNumIndices == 1) {
      points.push_back(index(0));
    } else if (face.mNumIndices == 2) {
      addSegment(lines, index(0), index(1));
    } else {
      for (unsigned k = 0; k < face.mNumIndices; ++k) faces.push_back(index(k));
      faces.push_back(-1);
      hasPolygons = hasPolygons || face.mNumIndices > 3;
    }
  }
  if (mesh.mNumFaces == 0) {
    for (int i = 0; i < corners.count(); ++i) points.push_back(i);
  }

  SbName const name = modelName(mesh.mName);
  if (!points.empty()) {
    auto* const shape = new SoPointSet;
    nodes.emplace_back(shape);
    Arrays own = pickPoints(corners, points);
    shape->vertexProperty = makeProperty(own, SoVertexProperty::PER_VERTEX).get();
  }
  if (faces.empty() && lines.empty()) {
    for (auto const& node : nodes) node->setName(name);
    return;
  }
  SoRef<SoVertexProperty> const property = makeProperty(corners, SoVertexProperty::PER_VERTEX_INDEXED);
  auto addIndexed = [&](SoIndexedShape* shape, std::vector<std::int32_t>& indices) {
    nodes.emplace_back(shape);
    indices.shrink_to_fit();
    shape->coordIndex.setValues(std::move(indices));
    shape->vertexProperty = property.get();
  };
  if (!lines.empty()) addIndexed(new SoIndexedLineSet, lines);
  if (!faces.empty()) addIndexed(new SoIndexedFaceSet, faces);
  nodes.back()->setName(name);
}
