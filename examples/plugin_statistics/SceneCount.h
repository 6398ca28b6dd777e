#pragma once

#include <cstdint>
#include <vector>

#include <kestrava/base/SoType.h>

class SoNode;

/// What there is in a part of a scene. A node that is shared stands in several places: everything is counted
/// both ways, once a node and once a place.
struct SceneCount {
  struct Numbers {
    std::uint64_t nodes = 0;
    std::uint64_t places = 0;
    std::uint64_t triangles = 0;         // of each shape once
    std::uint64_t trianglesInPlaces = 0; // as many as the graphics card gets
    std::uint64_t bytes = 0;             // a shared node is in memory once
    Numbers& operator+=(Numbers const& other);
    bool operator==(Numbers const&) const = default;
  };
  struct Row {
    SoType type;
    Numbers numbers;
    bool operator==(Row const&) const = default;
  };

  std::vector<Row> rows; // one a type
  Numbers total;

  /// Counts a node and everything below it. `scene` is the graph that it stands in (may be null): shapes draw
  /// with the coordinates that they find there. A shape is measured in the first of its places.
  static SceneCount of(SoNode* node, SoNode* scene);
};
