#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "kestrava/base/SbBox3f.h"

class SoNode;

/// What a scene consists of. Nodes are those that the scene's file shows: hidden children do not count.
///
/// Counts follow the distinct nodes, not the places: a scene with 2^40 places takes no longer than its nodes.
struct SceneStatistics {
  /// `roots` are the nodes at the top, `scene` is what holds them.
  SceneStatistics(std::vector<SoNode*> const& roots, SoNode* scene);

  std::uint64_t nodes = 0;
  std::uint64_t places = 0;  ///< a shared node counts wherever it stands; stops at the largest number there is
  std::uint64_t shared = 0;  ///< nodes that stand more than once below a parent
  std::uint64_t depth = 0;   ///< nodes in the longest chain
  std::uint64_t triangles = 0, lines = 0, points = 0;  ///< each shape counts once
  std::uint64_t trianglesDrawn = 0;                    ///< each place of a shape counts
  SbBox3f boundingBox;
  std::map<std::string, std::uint64_t> types;  ///< nodes of each type
};
