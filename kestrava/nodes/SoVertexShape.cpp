#include "kestrava/nodes/SoVertexShape.h"

#include <algorithm>
#include <bit>

#include "kestrava/nodes/SoFaceSet.h"
#include "kestrava/nodes/SoIndexedFaceSet.h"
#include "kestrava/nodes/SoIndexedLineSet.h"
#include "kestrava/nodes/SoIndexedTriangleStripSet.h"
#include "kestrava/nodes/SoLineSet.h"
#include "kestrava/nodes/SoPointSet.h"
#include "kestrava/nodes/SoQuadMesh.h"
#include "kestrava/nodes/SoTriangleStripSet.h"
#include "kestrava/render/SoMeshBuilder.h"

SoVertexProperty const* SoVertexShape::getVertexProperty() const {
  SoNode const* node = vertexProperty.isIgnored() ? nullptr : vertexProperty.getValue();
  bool const fits = node && node->isOfType(SoVertexProperty::getClassTypeId());
  return fits ? static_cast<SoVertexProperty const*>(node) : nullptr;
}

void SoVertexShape::applyOwnState(SoState& state) const {
  if (SoVertexProperty const* own = getVertexProperty()) own->apply(state);
}

std::uint64_t SoVertexShape::getMeshKey(SoState const& state) const {
  SoOwnStateScope const own(*this, state);
  std::uint64_t key = SoShape::getMeshKey(state);
  key = SoMixKey(key, state.get<SoCoordinateElement>().id);
  key = SoMixKey(key, state.get<SoNormalElement>().id);
  auto const& hints = state.get<SoShapeHintsElement>();
  key = SoMixKey(key, std::bit_cast<std::uint32_t>(hints.creaseAngle));
  return SoMixKey(key, static_cast<std::uint64_t>(state.get<SoNormalBindingElement>().value) |
                           static_cast<std::uint64_t>(state.get<SoTextureCoordinateBindingElement>().value)
                               << 8 |
                           static_cast<std::uint64_t>(hints.ordering) << 16 |
                           static_cast<std::uint64_t>(hints.convex) << 24);
}

namespace {

SbVec3f pointAt(SoCoordinateElement const& coords, int i) {
  if (!coords.points4) return coords.points[i];
  SbVec4f const& p = coords.points4[i];
  float const w = p[3] != 0 ? p[3] : 1;
  return SbVec3f(p[0] / w, p[1] / w, p[2] / w);
}

SoMeshBuilder::Indices indicesOf(SoIndexedShape const& shape) {
  auto values = [](SoMFInt32 const& field) {
    return field.isIgnored() ? std::span<std::int32_t const>() : field.values();
  };
  return {values(shape.coordIndex), values(shape.materialIndex), values(shape.normalIndex),
          values(shape.textureCoordIndex)};
}

/// One corner of a face, line or strip, before the bindings are looked at.
struct Entry {
  int coord;
  int slot;   // in coordIndex
  int vertex; // corners before it
};
using Run = std::span<Entry const>;

/// Calls `function(run, number, isGood)` for each run of indices up to a -1. A run that has an index that no
/// coordinate has is not good: it counts, but is left out.
template <class Function>
void forEachRun(SoIndexedShape const& shape, SoMeshBuilder& builder, Function function) {
  std::span<std::int32_t const> const indices = indicesOf(shape).coord;
  std::vector<Entry> run;
  int number = 0, vertex = 0;
  bool isGood = true;
  auto end = [&] {
    function(Run(run), number++, isGood);
    run.clear();
    isGood = true;
  };
  for (int slot = 0; slot < static_cast<int>(indices.size()); ++slot) {
    if (indices[slot] == -1) {
      end();
      continue;
    }
    isGood = builder.isCoord(indices[slot]) && isGood;
    run.push_back({indices[slot], slot, vertex++});
  }
  if (!run.empty()) end();
}

/// The same for shapes that take their coordinates in order: runs of the given lengths, -1 for all that are
/// left. A run for which too few coordinates are left ends the shape.
template <class Function>
void forEachRun(SoNonIndexedShape const& shape, SoMFInt32 const& lengths, SoMeshBuilder& builder,
                Function function) {
  std::vector<Entry> run;
  int const start = shape.startIndex.isIgnored() ? 0 : shape.startIndex.getValue();
  int next = start;
  for (int number = 0; number < lengths.getNumValues(); ++number) {
    int const left = builder.getNumCoords() - next;
    int const length = lengths[number] < 0 ? std::max(0, left) : lengths[number];
    if (next < 0 || length > left) {
      SoPostDataError(shape, SbString::format("run %d wants %d coordinates from %d on, there are %d", number,
                                              length, next, builder.getNumCoords()));
      return;
    }
    run.clear();
    for (int i = 0; i < length; ++i, ++next) run.push_back({next, next - start, next - start});
    function(Run(run), number, true);
  }
}

/// Faces: a part is a face.
class FaceMaker {
 public:
  explicit FaceMaker(SoMeshBuilder& builder) : m_builder(builder) {}
  void operator()(Run run, int number, bool isGood) {
    if (!isGood) return;
    m_corners.clear();
    for (Entry const& e : run)
      m_corners.push_back(m_builder.corner(e.coord, {e.slot, e.vertex, number, number}));
    m_builder.addFace(m_corners, number);
  }

 private:
  SoMeshBuilder& m_builder;
  std::vector<SoCorner> m_corners;
};

/// Lines: a face is a line, a part is one segment of it.
class LineMaker {
 public:
  explicit LineMaker(SoMeshBuilder& builder) : m_builder(builder) {}
  void operator()(Run run, int number, bool isGood) {
    for (size_t i = 1; i < run.size(); ++i, ++m_part) {
      Entry const &a = run[i - 1], &b = run[i];
      if (!isGood) continue;
      m_builder.addSegment(m_builder.corner(a.coord, {a.slot, a.vertex, number, m_part}),
                           m_builder.corner(b.coord, {b.slot, b.vertex, number, m_part}), number);
    }
  }

 private:
  SoMeshBuilder& m_builder;
  int m_part = 0;
};

/// Strips: a part is a strip, a face is one triangle of it.
class StripMaker {
 public:
  explicit StripMaker(SoMeshBuilder& builder) : m_builder(builder) {}
  void operator()(Run run, int number, bool isGood) {
    for (size_t i = 2; i < run.size(); ++i, ++m_face) {
      if (!isGood) continue;
      // Every second triangle is wound the other way round.
      size_t const first = i % 2 == 0 ? i - 2 : i - 1, second = i % 2 == 0 ? i - 1 : i - 2;
      SoCorner corners[3];
      int n = 0;
      for (Entry const& e : {run[first], run[second], run[i]}) {
        corners[n++] = m_builder.corner(e.coord, {e.slot, e.vertex, m_face, number});
      }
      m_builder.addFace(corners, m_face, number);
    }
  }

 private:
  SoMeshBuilder& m_builder;
  int m_face = 0;
};

template <class Maker> void buildIndexed(SoIndexedShape const& shape, SoState const& state, SoMesh& mesh) {
  SoMeshBuilder builder(shape, state, indicesOf(shape), mesh);
  forEachRun(shape, builder, Maker(builder));
  builder.finish();
}

template <class Maker>
void buildInOrder(SoNonIndexedShape const& shape, SoMFInt32 const& lengths, SoState const& state,
                  SoMesh& mesh) {
  SoMeshBuilder builder(shape, state, {}, mesh);
  forEachRun(shape, lengths, builder, Maker(builder));
  builder.finish();
}

int sumOfRuns(SoMFInt32 const& lengths, int available) {
  std::int64_t sum = 0;
  for (std::int32_t const length : lengths.values()) {
    if (length < 0) return available;
    sum += length;
  }
  return static_cast<int>(std::min<std::int64_t>(sum, available));
}

} // namespace

SbBox3f SoVertexShape::getBounds(SoState const& state) const {
  SoOwnStateScope const own(*this, state);
  auto const& coords = state.get<SoCoordinateElement>();
  SbBox3f bounds;
  forEachUsedCoordinate(coords.count, [&](int i) { bounds.extendBy(pointAt(coords, i)); });
  return bounds;
}

void SoIndexedShape::forEachUsedCoordinate(int count, std::function<void(int)> const& function) const {
  for (std::int32_t const i : indicesOf(*this).coord) {
    if (i >= 0 && i < count) function(i);
  }
}

void SoNonIndexedShape::forEachUsedCoordinate(int count, std::function<void(int)> const& function) const {
  int const start = startIndex.isIgnored() ? 0 : startIndex.getValue();
  if (start < 0 || start >= count) return;
  int const end = start + countCoordinates(count - start);
  for (int i = start; i < end; ++i) function(i);
}

void SoIndexedFaceSet::buildMesh(SoState const& state, SoMesh& mesh) const {
  buildIndexed<FaceMaker>(*this, state, mesh);
}
void SoIndexedLineSet::buildMesh(SoState const& state, SoMesh& mesh) const {
  buildIndexed<LineMaker>(*this, state, mesh);
}
void SoIndexedTriangleStripSet::buildMesh(SoState const& state, SoMesh& mesh) const {
  buildIndexed<StripMaker>(*this, state, mesh);
}

void SoFaceSet::buildMesh(SoState const& state, SoMesh& mesh) const {
  buildInOrder<FaceMaker>(*this, numVertices, state, mesh);
}
void SoLineSet::buildMesh(SoState const& state, SoMesh& mesh) const {
  buildInOrder<LineMaker>(*this, numVertices, state, mesh);
}
void SoTriangleStripSet::buildMesh(SoState const& state, SoMesh& mesh) const {
  buildInOrder<StripMaker>(*this, numVertices, state, mesh);
}

int SoFaceSet::countCoordinates(int available) const { return sumOfRuns(numVertices, available); }
int SoLineSet::countCoordinates(int available) const { return sumOfRuns(numVertices, available); }
int SoTriangleStripSet::countCoordinates(int available) const { return sumOfRuns(numVertices, available); }

int SoPointSet::countCoordinates(int available) const {
  int const wanted = numPoints.isIgnored() ? -1 : numPoints.getValue();
  return wanted < 0 ? available : std::min(wanted, available);
}

void SoPointSet::buildMesh(SoState const& state, SoMesh& mesh) const {
  SoMeshBuilder builder(*this, state, {}, mesh);
  int const start = startIndex.isIgnored() ? 0 : startIndex.getValue();
  int const available = std::max(0, builder.getNumCoords() - start);
  int const wanted = numPoints.isIgnored() ? -1 : numPoints.getValue();
  if (start < 0 || wanted > available) {
    SoPostDataError(*this, SbString::format("%d points from %d on are wanted, there are %d coordinates",
                                            wanted, start, builder.getNumCoords()));
    if (start < 0) return;
  }
  // Whatever the binding, a point is its own face and part.
  for (int i = 0, n = countCoordinates(available); i < n; ++i) {
    builder.addPoint(builder.corner(start + i, {i, i, i, i}));
  }
  builder.finish();
}

int SoQuadMesh::countCoordinates(int available) const {
  std::int64_t const wanted =
      std::int64_t{std::max(0, verticesPerRow.getValue())} * std::max(0, verticesPerColumn.getValue());
  return static_cast<int>(std::min<std::int64_t>(wanted, available));
}

void SoQuadMesh::buildMesh(SoState const& state, SoMesh& mesh) const {
  SoMeshBuilder builder(*this, state, {}, mesh);
  int const start = startIndex.isIgnored() ? 0 : startIndex.getValue();
  int const columns = verticesPerRow.getValue();
  int rows = verticesPerColumn.getValue();
  if (columns < 2 || rows < 2) return;
  int const available = start < 0 ? 0 : std::max(0, builder.getNumCoords() - start);
  if (std::int64_t{columns} * rows > available) {
    SoPostDataError(*this, SbString::format("%d x %d coordinates from %d on are wanted, there are %d", rows,
                                            columns, start, builder.getNumCoords()));
    rows = available / columns;
  }
  // A part is a row of quadrilaterals, a face is one of them.
  for (int row = 0, face = 0; row + 1 < rows; ++row) {
    for (int column = 0; column + 1 < columns; ++column, ++face) {
      int const low = row * columns + column, high = low + columns;
      SoCorner corners[4];
      int n = 0;
      for (int const i : {low, high, high + 1, low + 1})
        corners[n++] = builder.corner(start + i, {i, i, face, row});
      builder.addFace(corners, face, row);
    }
  }
  builder.finish();
}
