#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "kestrava/render/SoDrawList.h"

/// GPU buffers that hold the primitives of several items, or many places of one mesh, to be drawn with one
/// look. What lies in a page is in world coordinates, but for places of one mesh and what a program of the scene's
/// own draws: there each place has a matrix. Pages are found again by a hash
/// of what they were made of, so that a change of the scene replaces only the pages it concerns.
class SoGLPage {
 public:
  enum Primitive { TRIANGLES, LINES, POINTS };
  /// Indices (or places) that are seen or not seen together.
  struct Range {
    SbBox3f bounds;
    std::uint32_t first, count;
  };

  /// What goes into a page: its items, and for each item where its material begins in the table.
  struct Plan {
    Primitive primitive = TRIANGLES;
    SoDrawStyleElement::Style style = SoDrawStyleElement::FILLED;
    bool textured = false;
    bool solid = false;         // the texture has a depth
    bool fillsTexture = false;  // its coordinates are those in the bounds of the shape
    bool placed = false;        // vertices stay in the coordinates of their shapes
    bool instanced = false;  // all items have the same mesh, one colour each and no texture matrix
    bool sortable = false;      // triangles can be drawn in any order
    bool separate = false;   // one range an item
    std::vector<SoDrawInput> inputs;  // what each copy has of its own; with `placed`
    std::vector<int> items;
    std::uint64_t hash(SoDrawList const& list, std::vector<std::uint32_t> const& materialRows) const;
  };

  /// True when a mesh has something to draw as that primitive in that style.
  static bool has(SoMesh const& mesh, Primitive primitive, SoDrawStyleElement::Style style);

  SoGLPage(Plan const& plan, SoDrawList const& list, std::vector<std::uint32_t> const& materialRows);
  /// Does not touch the GPU: call release() before, with the context current, unless it is gone.
  ~SoGLPage() = default;
  SoGLPage(SoGLPage const&) = delete;
  SoGLPage& operator=(SoGLPage const&) = delete;
  void release();

  std::vector<Range> const& getRanges() const { return m_ranges; }
  bool isInstanced() const { return m_instanced; }
  void bind() const;
  /// With `sortable`: where the triangles stand in the world, in the order of the page.
  std::vector<SbVec3f> const& getTriangleCenters() const { return m_centers; }
  /// Draws triangles in another order from now on; `order` holds their numbers. Not all of them need be there, and
  /// where looks share the page one may be there more than once.
  void setOrder(std::vector<std::uint32_t> const& order);
  /// Draws runs of indices, or of places. The page is bound.
  void draw(std::vector<Range> const& runs) const;

 private:
  struct Data;
  void add(Data& data, Plan const& plan, SoDrawList const& list, int item, std::uint32_t row);
  void upload(Data const& data);
  void uploadInstances(Plan const& plan, SoDrawList const& list, std::vector<std::uint32_t> const& materialRows);
  void uploadPlaces(Data const& data, Plan const& plan);
  void pointToInputs(size_t start) const;
  void pointToInstances(std::uint32_t first) const;

  std::vector<Range> m_ranges;
  unsigned m_mode = 0;
  bool m_instanced = false;
  std::uint32_t m_numIndices = 0;
  unsigned m_vertexArray = 0;
  enum Buffer { VERTICES, TEX_COORDS, INDICES, INSTANCES, PLACE_NUMBERS, PLACE_MATRICES, INPUTS, NUM_BUFFERS };
  unsigned m_buffers[NUM_BUFFERS] = {};
  unsigned m_placeTexture = 0;
  std::vector<int> m_inputSizes;  // components of each
  std::vector<SbVec3f> m_centers;
  std::vector<std::uint32_t> m_triangles;  // corners in the order of the page; with m_centers
};
