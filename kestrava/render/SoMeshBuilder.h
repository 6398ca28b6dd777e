#pragma once

#include <cstdint>
#include <span>
#include <unordered_map>
#include <vector>

#include "kestrava/actions/SoElements.h"
#include "kestrava/actions/SoState.h"
#include "kestrava/render/SoMesh.h"

class SoShape;

/// Posts a fault of a node's data as a debug error, once for each state of the node.
void SoPostDataError(SoNode const& node, SbString const& text);
/// Mixes a number into a key.
std::uint64_t SoMixKey(std::uint64_t key, std::uint64_t number);
/// Texture coordinates of a point that has none of its own: projected as a plane asks, or across the two
/// longest sides of the bounds.
SbVec3f SoProjectTexture(SoTextureCoordinateElement const& element, SbBox3f const& bounds,
                         SbVec3f const& point);

/// Appends a box with the texture coordinates that the state asks for; its parts are its sides. `bindsParts` false:
/// all of it has the first material.
void SoBuildBox(SbBox3f const& bounds, SoState const& state, SoMesh& mesh, bool bindsParts);

/// Opens a scope of the state with what a shape brings along for itself.
class SoOwnStateScope {
 public:
  SoOwnStateScope(SoShape const& shape, SoState const& state);
  ~SoOwnStateScope() { m_state.pop(); }
  SoOwnStateScope(SoOwnStateScope const&) = delete;
  SoOwnStateScope& operator=(SoOwnStateScope const&) = delete;

 private:
  SoState& m_state; // the same after as before: whoever hands it in need not know
};

/// One corner of a face, line or strip: indices into what the state holds.
struct SoCorner {
  int coord = 0;
  int normal = -1;
  int material = 0;
  int texCoord = -1;
};

/// Where a corner stands in its shape; all counted from 0.
struct SoCornerPlace {
  int slot;   // entry of coordIndex
  int vertex; // corners so far
  int face;
  int part;
};

/// Makes a mesh from corners. The shapes made from coordinates hand in their corners, face by face or
/// line by line; finish() computes what is missing and writes the mesh.
class SoMeshBuilder {
 public:
  /// The indices of an indexed shape; empty ones for the others.
  struct Indices {
    std::span<std::int32_t const> coord, material, normal, texCoord;
  };
  SoMeshBuilder(SoShape const& shape, SoState const& state, Indices const& indices, SoMesh& mesh);

  int getNumCoords() const { return static_cast<int>(m_points.size()); }
  /// False, with the error posted, for an index that no coordinate has.
  bool isCoord(int index);
  /// A corner of the coordinate with everything else as the bindings say.
  SoCorner corner(int coord, SoCornerPlace const& place) const;

  /// `part` -1: the face is one.
  void addFace(std::span<SoCorner const> corners, int face, int part = -1);
  void addSegment(SoCorner const& from, SoCorner const& to, int line);
  void addPoint(SoCorner const& at);
  void finish();

 private:
  bool givenNormalsFit() const;
  void computeNormals();
  SbVec3f faceNormal(int face) const;
  void checkTexCoords();
  std::uint32_t vertex(SoCorner const& corner);
  void writeFaces();

  SoShape const& m_shape;
  Indices m_indices;
  SoMesh& m_mesh;
  std::span<SbVec3f const> m_points;
  std::vector<SbVec3f> m_divided; // homogeneous points after the division
  std::span<SbVec3f const> m_normals;
  std::vector<SbVec3f> m_computed;
  SoTextureCoordinateElement m_texCoords;
  SoBinding m_materialBinding, m_normalBinding, m_texCoordBinding;
  SoShapeHintsElement m_hints;
  bool m_textured;
  SbBox3f m_bounds; // of the corners; for default texture coordinates

  std::vector<SoCorner> m_corners; // of all faces
  std::vector<int> m_faceStarts;
  std::vector<int> m_faceNumbers, m_partNumbers;
  std::vector<SoCorner> m_loose; // of segments and points
  std::vector<bool> m_looseIsPoint;
  void numberCoords();
  std::int32_t& firstVertexOf(int coord);

  // Vertices made so far, chained by coordinate.
  std::vector<std::int32_t> m_firstOfCoord, m_nextVertex;
  std::unordered_map<int, std::int32_t> m_firstOfFew; // instead, for few corners out of many coordinates
  std::vector<SoCorner> m_made;
};

/// Splits a polygon of n corners into n - 2 triangles; three indices into `points` a triangle, wound as the
/// polygon is.
void SoTriangulate(std::span<SbVec3f const> points, bool isConvex, std::vector<int>& triangles);
