#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "kestrava/render/SoDrawList.h"

/// GPU buffers that hold the primitives of several items, or many places of one mesh, to be drawn with one
/// look. What lies in a page is in world coordinates, places of one mesh apart. Pages are found again by a hash
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
    bool instanced = false;  // all items have the same mesh, one colour each and no texture matrix
    bool separate = false;   // one range an item
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
  /// Draws runs of indices, or of places. The page is bound.
  void draw(std::vector<Range> const& runs) const;

 private:
  struct Data;
  void add(Data& data, Plan const& plan, SoDrawList const& list, int item, std::uint32_t row);
  void upload(Data const& data);
  void uploadInstances(Plan const& plan, SoDrawList const& list, std::vector<std::uint32_t> const& materialRows);
  void pointToInstances(std::uint32_t first) const;

  std::vector<Range> m_ranges;
  unsigned m_mode = 0;
  bool m_instanced = false;
  std::uint32_t m_numIndices = 0;
  unsigned m_vertexArray = 0;
  unsigned m_buffers[4] = {};  // vertices, texture coordinates, indices, places
};
