#pragma once

#include "kestrava/base/SbRotation.h"
#include "kestrava/base/SbVec2f.h"
#include "kestrava/base/SbVec3f.h"

class SoCamera;

/// How a user moves a camera with the mouse. Points of the window are 0 to 1 from the lower left corner; `aspect`
/// is its width by its height.
namespace SoCameraMotion {

/// The point that the camera turns about.
SbVec3f getFocus(SoCamera const& camera);
/// Turns the scene as a ball around the focus that the pointer holds.
void rotate(SoCamera& camera, SbVec2f const& from, SbVec2f const& to, float aspect);
/// Moves the scene along: what lies at the focus' distance stays under the pointer.
void pan(SoCamera& camera, SbVec2f const& from, SbVec2f const& to, float aspect);
/// Makes everything `1 / factor` times as large; the point under the pointer stays there.
void zoom(SoCamera& camera, float factor, SbVec2f const& at, float aspect);
/// A camera (count 0) of the other projection that shows the focus in the same size.
SoCamera* makeOtherProjection(SoCamera const& camera);

}  // namespace SoCameraMotion
