#pragma once

class SoCamera;

/// How the pages' cameras fit windows of any shape.
namespace GalleryCamera {

/// The pages are composed for a view of 4 by 3. Where the view is narrower (`aspect` is its width by its
/// height) the camera, which sees `heightAngle` radians there, is opened further, so that nothing is cut off
/// at the sides. Does nothing to a camera without an angle.
void fit(SoCamera& camera, float heightAngle, float aspect);
/// The angle of a camera, 0 when it has none.
float getHeightAngle(SoCamera const& camera);

} // namespace GalleryCamera
