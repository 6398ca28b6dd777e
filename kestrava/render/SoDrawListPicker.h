#pragma once

#include <functional>
#include <limits>
#include <optional>
#include <vector>

#include "kestrava/base/SbLine.h"
#include "kestrava/base/SbViewVolume.h"
#include "kestrava/base/SbViewportRegion.h"
#include "kestrava/render/SoBoxTree.h"

class SoDrawList;

/// Finds what of a prepared list a ray meets. Made for one state of the list.
class SoDrawListPicker {
 public:
  /// A point of the screen that a ray belongs to.
  struct Pixel {
    SbViewVolume volume;
    SbViewportRegion region;
    SbVec2f point; // of the viewport, 0 to 1
  };
  struct Query {
    SbLine ray; // in world coordinates
    float length = std::numeric_limits<float>::infinity();
    /// How far lines and points may be off: in pixels where there is a pixel, in units of the world
    /// otherwise.
    float radius = 0;
    std::optional<Pixel> pixel;
    bool all = false; // false: the nearest hit alone
    /// Which items count; empty: all.
    std::function<bool(int item)> wanted;
  };
  struct Hit {
    enum Kind { FACE, LINE, POINT, BOX, TEXT } kind = FACE;
    int item = -1;
    int primitive = -1;      // triangle, segment or point of the mesh
    float u = 0, v = 0;      // weights of the second and the third corner, of a segment's end
    float distance = 0;      // from the start of the ray
    SbVec3f point;           // in world coordinates
    SbVec3f normal;          // of the triangle or the side of the box, unit length, in world coordinates
    bool fromBehind = false; // a triangle that shows its back
  };

  explicit SoDrawListPicker(SoDrawList const& list);

  /// Nearest first; what is drawn over everything else comes before the rest.
  std::vector<Hit> pick(Query const& query) const;

 private:
  class Search;

  SoDrawList const& m_list;
  SoBoxTree m_front, m_rest; // over the items: annotations, and all others
};
