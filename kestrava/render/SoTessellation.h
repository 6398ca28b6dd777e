#pragma once

#include <vector>

#include "kestrava/base/SbBox3f.h"
#include "kestrava/base/SbViewVolume.h"
#include "kestrava/base/SbViewportRegion.h"

class SoState;

/// How finely curved shapes are drawn: as the complexity of the traversal state says, for all views or for
/// the present one.
struct SoTessellation {
  /// A shape that is as fine as it is large on the screen. Who keeps meshes made for a view keeps these to
  /// know whether they serve another view.
  struct ScreenSize {
    SbBox3f box; // in world coordinates
    float value; // of the complexity
    int slices;
    /// True when what was made then is neither too coarse for this view nor much too fine.
    bool fits(SbViewVolume const& volume, SbViewportRegion const& region) const;
  };

  /// Straight pieces of a full turn around something with these bounds, in the coordinates of the visited
  /// shape; a multiple of 4.
  static int getSlices(SoState const& state, SbBox3f const& bounds);
};

/// Where a traversal notes what is as fine as it is large on the screen; null for nowhere.
struct SoScreenSizesElement {
  std::vector<SoTessellation::ScreenSize>* sizes = nullptr;
};
