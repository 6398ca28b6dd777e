#pragma once

#include "kestrava/base/SbBox3f.h"
#include "kestrava/base/SbViewVolume.h"
#include "kestrava/base/SbViewportRegion.h"
#include "kestrava/fields/SoSFEnum.h"
#include "kestrava/fields/SoSFFloat.h"
#include "kestrava/fields/SoSFRotation.h"
#include "kestrava/fields/SoSFVec3f.h"
#include "kestrava/nodes/SoNode.h"

/// Base of the cameras: from where and how the scene is seen.
class SoCamera : public SoNode {
  SO_ABSTRACT_NODE(SoCamera, SoNode)
  enum ViewportMapping {
    CROP_VIEWPORT_FILL_FRAME,
    CROP_VIEWPORT_LINE_FRAME,
    CROP_VIEWPORT_NO_FRAME,
    ADJUST_CAMERA,
    LEAVE_ALONE
  };
  static std::vector<SoEnumSymbol> const& mappings() {
    static std::vector<SoEnumSymbol> const symbols{{"CROP_VIEWPORT_FILL_FRAME", CROP_VIEWPORT_FILL_FRAME},
                                                   {"CROP_VIEWPORT_LINE_FRAME", CROP_VIEWPORT_LINE_FRAME},
                                                   {"CROP_VIEWPORT_NO_FRAME", CROP_VIEWPORT_NO_FRAME},
                                                   {"ADJUST_CAMERA", ADJUST_CAMERA},
                                                   {"LEAVE_ALONE", LEAVE_ALONE}};
    return symbols;
  }

  SoSFEnum viewportMapping{this, "viewportMapping", ADJUST_CAMERA,
                           mappings()}; ///< what happens when the viewport has another aspect
  SoSFVec3f position{this, "position", SbVec3f(0, 0, 1)};
  SoSFRotation orientation{this, "orientation"};    ///< from looking along -z with y up
  SoSFFloat aspectRatio{this, "aspectRatio", 1.0f}; ///< width by height
  SoSFFloat nearDistance{this, "nearDistance", 1.0f};
  SoSFFloat farDistance{this, "farDistance", 10.0f};
  SoSFFloat focalDistance{this, "focalDistance", 5.0f}; ///< of the point of interest

  /// What is seen through a viewport of an aspect (width by height), in the coordinates of the camera node.
  /// An aspect of 0 stands for the camera's own.
  SbViewVolume getViewVolume(float viewportAspect = 0) const;
  /// Moves the camera back, its orientation kept, until everything can be seen; sets the distances.
  void viewAll(SoNode* root, SbViewportRegion const& region, float slack = 1);
  /// The same for known bounds in the coordinates of the camera node; empty bounds change nothing.
  void viewAll(SbBox3f const& bounds, float viewportAspect, float slack = 1);
  /// Turns the camera so that it looks at a point with y up as far as that goes.
  void pointAt(SbVec3f const& target);
  /// Makes what is seen larger (below 1) or smaller (above 1).
  virtual void scaleHeight(float factor) = 0;

 protected:
  SoCamera() = default;
  virtual SbViewVolume volumeOf(float aspect) const = 0;
  /// Moves the camera so that a sphere fills the view.
  virtual void viewSphere(SbVec3f const& center, float radius, float aspect) = 0;
  ~SoCamera() override = default;
};
