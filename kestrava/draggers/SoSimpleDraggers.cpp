// The draggers that do one thing: move, scale or turn.

#include "kestrava/draggers/SoDragPointDragger.h"
#include "kestrava/draggers/SoRotateCylindricalDragger.h"
#include "kestrava/draggers/SoRotateDiscDragger.h"
#include "kestrava/draggers/SoRotateSphericalDragger.h"
#include "kestrava/draggers/SoScale1Dragger.h"
#include "kestrava/draggers/SoScale2Dragger.h"
#include "kestrava/draggers/SoScale2UniformDragger.h"
#include "kestrava/draggers/SoScaleUniformDragger.h"
#include "kestrava/draggers/SoTranslate1Dragger.h"
#include "kestrava/draggers/SoTranslate2Dragger.h"

namespace {

constexpr float CUBE = 0.07f;
SbVec3f const CUBE_SIZE(CUBE, CUBE, CUBE);

/// A square frame in the x-y plane with a cube at each corner.
SoHandleGeometry frame() {
  SoHandleGeometry geometry;
  SbVec3f const corners[] = {{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}};
  for (int i = 0; i < 4; ++i) {
    geometry.box(corners[i], CUBE_SIZE).rod(corners[i], corners[(i + 1) % 4], 0.02f);
    geometry.line({corners[i], corners[(i + 1) % 4]});
  }
  return geometry;
}

} // namespace

SoTranslate1Dragger::SoTranslate1Dragger() {
  addHandle(translator, Gesture::MOVE_ON_LINE, X, plainColor(),
            SoHandleGeometry().arrow({}, X, 0.03f).arrow({}, -X, 0.03f));
}

SoTranslate2Dragger::SoTranslate2Dragger() {
  SoHandleGeometry geometry;
  for (SbVec3f const& to : {X, Y, -X, -Y}) geometry.arrow({}, to, 0.03f);
  addHandle(translator, Gesture::MOVE_ON_PLANE, Z, plainColor(), geometry);
}

SoDragPointDragger::SoDragPointDragger() {
  addHandle(point, Gesture::MOVE_IN_VIEW, Z, plainColor(), SoHandleGeometry().ball({}, 0.12f));
  SoKitPart* const arrows[] = {&xTranslator, &yTranslator, &zTranslator};
  SoKitPart* const tiles[] = {&yzTranslator, &xzTranslator, &xyTranslator};
  for (int i = 0; i < 3; ++i) {
    SbVec3f const &axis = axisOf(i), &u = axisOf((i + 1) % 3), &v = axisOf((i + 2) % 3);
    addHandle(*arrows[i], Gesture::MOVE_ON_LINE, axis, axisColor(i),
              SoHandleGeometry().arrow(axis * 0.14f, axis, 0.022f));
    float const near = 0.25f, far = 0.45f;
    addHandle(*tiles[i], Gesture::MOVE_ON_PLANE, axis, axisColor(i),
              SoHandleGeometry().quad(u * near + v * near, u * far + v * near, u * far + v * far,
                                      u * near + v * far));
  }
}

SoScale1Dragger::SoScale1Dragger() {
  addHandle(scaler, Gesture::SCALE_ON_LINE, X, plainColor(),
            SoHandleGeometry().rod(-X, X, 0.03f).line({-X, X}).box(X, CUBE_SIZE).box(-X, CUBE_SIZE));
}

SoScale2Dragger::SoScale2Dragger() { addHandle(scaler, Gesture::SCALE_ON_PLANE, Z, plainColor(), frame()); }

SoScaleUniformDragger::SoScaleUniformDragger() {
  SoHandleGeometry geometry;
  for (int corner = 0; corner < 8; ++corner) {
    SbVec3f const at(corner & 1 ? 1 : -1, corner & 2 ? 1 : -1, corner & 4 ? 1 : -1);
    geometry.box(at, CUBE_SIZE);
    for (int i = 0; i < 3; ++i) {
      if (at[i] > 0) continue;
      geometry.rod(at, at + axisOf(i) * 2, 0.015f).line({at, at + axisOf(i) * 2});
    }
  }
  addHandle(scaler, Gesture::SCALE_EVENLY, X, plainColor(), geometry);
}

SoScale2UniformDragger::SoScale2UniformDragger() {
  addHandle(scaler, Gesture::SCALE_FLAT, Z, plainColor(), frame());
}

SoRotateSphericalDragger::SoRotateSphericalDragger() {
  SoHandleGeometry geometry;
  geometry.ball({}, 1);
  addHandle(rotator, Gesture::TURN_FREELY, X, plainColor(), geometry, 0.6f);
  SoHandleGeometry rings;
  for (int i = 0; i < 3; ++i) rings.ring({}, axisOf(i), 1.01f, 0.015f);
  rings.addTo(static_cast<SoSeparator*>(rotator.getValue()));
}

SoRotateCylindricalDragger::SoRotateCylindricalDragger() {
  addHandle(
      rotator, Gesture::TURN_ROUND, Y, plainColor(),
      SoHandleGeometry().band(Y, 1, 0.18f).ring(Y * 0.18f, Y, 1, 0.025f).ring(Y * -0.18f, Y, 1, 0.025f));
}

SoRotateDiscDragger::SoRotateDiscDragger() {
  addHandle(rotator, Gesture::TURN_FLAT, Z, plainColor(),
            SoHandleGeometry()
                .ring({}, Z, 1, 0.03f)
                .rod({}, X, 0.02f)
                .line({{}, X})
                .ball({}, 0.06f)
                .ball(X, 0.08f));
}
