#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "kestrava/base/SbBox3f.h"

/// A hierarchy of boxes around things that are known by number: finds those whose boxes a ray comes near
/// without looking at the others. Boxes that are empty or not finite are left out.
class SoBoxTree {
 public:
  explicit SoBoxTree(std::span<SbBox3f const> boxes);

  bool isEmpty() const { return m_nodes.empty(); }

  /// Calls `meet(number)` for everything whose box, enlarged by `grow(center, halfSize)` on all sides, is
  /// entered by the ray between the distances 0 and `to`; near boxes tend to come first. `meet` may lower
  /// `to`. Distances are in lengths of `direction`, which is not zero.
  template <class Grow, class Meet>
  void traverse(SbVec3f const& origin, SbVec3f const& direction, float const& to, Grow const& grow,
                Meet const& meet) const;

 private:
  /// Of an inner node the children stand side by side.
  struct Node {
    float min[3];
    std::uint32_t first; // child, or entry of m_order
    float max[3];
    std::uint32_t count; // 0: inner node
  };
  struct Cluster;
  struct Coded;
  struct Slabs;
  static constexpr int MAX_DEPTH =
      60; // beyond it clusters are halved by number, which adds at most 26 levels
  static constexpr int STACK_SIZE = 128;

  void makeClusters(std::span<SbBox3f const> boxes, std::vector<Coded>& coded,
                    std::vector<Cluster>& clusters);
  void makeNodes(std::vector<Cluster>& clusters, std::span<SbBox3f const> boxes,
                 std::vector<Coded> const& coded);
  void divide(Cluster const& cluster, std::uint32_t root, std::span<SbBox3f const> boxes,
              std::vector<Coded> const& coded);

  std::vector<Node> m_nodes;
  std::vector<std::uint32_t> m_order;
};

/// What a ray is to a box.
struct SoBoxTree::Slabs {
  float origin[3], inverse[3];

  Slabs(SbVec3f const& from, SbVec3f const& along) {
    for (int i = 0; i < 3; ++i) origin[i] = from[i], inverse[i] = 1 / along[i];
  }
  /// The distance of entering, infinite when the box is missed. A product 0 * infinity, of a ray that runs in
  /// a face, is no number and compares as neither.
  float enter(Node const& node, float grown, float to) const {
    float from = 0;
    for (int i = 0; i < 3; ++i) {
      float const a = (node.min[i] - grown - origin[i]) * inverse[i];
      float const b = (node.max[i] + grown - origin[i]) * inverse[i];
      float const in = inverse[i] < 0 ? b : a;
      // Rounding must not lose a box that is flat.
      float const out = (inverse[i] < 0 ? a : b) * 1.000001f;
      if (in > from) from = in;
      if (out < to) to = out;
    }
    return from <= to ? from : __builtin_inff();
  }
};

template <class Grow, class Meet>
void SoBoxTree::traverse(SbVec3f const& origin, SbVec3f const& direction, float const& to, Grow const& grow,
                         Meet const& meet) const {
  if (m_nodes.empty()) return;
  Slabs const slabs(origin, direction);
  auto const enter = [&](Node const& node) {
    SbVec3f const min(node.min), max(node.max);
    return slabs.enter(node, grow((min + max) * 0.5f, (max - min) * 0.5f), to);
  };
  struct Waiting {
    std::uint32_t node;
    float entered;
  };
  Waiting stack[STACK_SIZE];
  int waiting = 0;
  if (float const entered = enter(m_nodes[0]); entered <= to) stack[waiting++] = {0, entered};
  while (waiting > 0) {
    Waiting const next = stack[--waiting];
    if (!(next.entered <= to)) continue;
    Node const* node = &m_nodes[next.node];
    while (node && node->count == 0) {
      Node const* const children = &m_nodes[node->first];
      float const a = enter(children[0]), b = enter(children[1]);
      bool const bIsNear = b < a;
      std::uint32_t const far = node->first + (bIsNear ? 0 : 1);
      if (float const entered = bIsNear ? a : b; entered <= to && entered < __builtin_inff()) {
        stack[waiting++] = {far, entered};
      }
      float const entered = bIsNear ? b : a;
      node = entered <= to && entered < __builtin_inff() ? &children[bIsNear ? 1 : 0] : nullptr;
    }
    if (!node) continue;
    for (std::uint32_t i = 0; i < node->count; ++i) meet(m_order[node->first + i]);
  }
}
