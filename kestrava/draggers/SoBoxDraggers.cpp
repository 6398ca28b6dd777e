// The draggers that stand around an object.

#include "kestrava/draggers/SoCenterballDragger.h"
#include "kestrava/draggers/SoHandleBoxDragger.h"
#include "kestrava/draggers/SoJackDragger.h"
#include "kestrava/draggers/SoTabBoxDragger.h"
#include "kestrava/draggers/SoTabPlaneDragger.h"
#include "kestrava/draggers/SoTrackballDragger.h"
#include "kestrava/draggers/SoTransformBoxDragger.h"
#include "kestrava/draggers/SoTransformerDragger.h"

namespace {

constexpr float CUBE = 0.06f;

SoHandleGeometry cube(float half = CUBE) { return SoHandleGeometry().box({}, SbVec3f(half, half, half)); }

std::vector<SbVec3f> corners() {
  std::vector<SbVec3f> points;
  for (int i = 0; i < 8; ++i) points.emplace_back(i & 1 ? 1 : -1, i & 2 ? 1 : -1, i & 4 ? 1 : -1);
  return points;
}

/// The middles of the four edges along an axis.
std::vector<SbVec3f> edgesAlong(int axis) {
  std::vector<SbVec3f> points;
  for (int i = 0; i < 4; ++i) {
    SbVec3f point;
    point[(axis + 1) % 3] = i & 1 ? 1 : -1;
    point[(axis + 2) % 3] = i & 2 ? 1 : -1;
    points.push_back(point);
  }
  return points;
}

} // namespace

SoBoxDragger::SoBoxDragger() : SoTransformDragger(BOX) {
  SoKitPart* const parts[] = {&translator1, &translator2, &translator3,
                              &translator4, &translator5, &translator6};
  for (int i = 0; i < 6; ++i) {
    int const axis = i / 2;
    SbVec3f const u = axisOf((axis + 1) % 3), v = axisOf((axis + 2) % 3),
                  middle = axisOf(axis) * (i % 2 ? 1.0f : -1.0f);
    SoHandleGeometry side;
    side.quad(middle - u - v, middle + u - v, middle + u + v, middle - u + v);
    side.line({middle - u - v, middle + u - v, middle + u + v, middle - u + v, middle - u - v});
    addHandle(*parts[i], Gesture::MOVE_ON_PLANE, axisOf(axis), paleColor(), side, 0.85f);
  }
}

SoHandleBoxDragger::SoHandleBoxDragger() {
  addHandle(scaler, Gesture::SCALE_EVENLY, X, plainColor(), cube(), corners());
  SoKitPart* const scalers[] = {&xScaler, &yScaler, &zScaler};
  for (int i = 0; i < 3; ++i) {
    addHandle(*scalers[i], Gesture::SCALE_ON_LINE, axisOf(i), axisColor(i), cube(), {axisOf(i), -axisOf(i)});
  }
}

SoTransformBoxDragger::SoTransformBoxDragger() {
  addHandle(scaler, Gesture::SCALE_EVENLY, X, plainColor(), cube(), corners());
  SoKitPart* const rotators[] = {&xRotator, &yRotator, &zRotator};
  for (int i = 0; i < 3; ++i) {
    addHandle(*rotators[i], Gesture::TURN_FLAT, axisOf(i), axisColor(i), SoHandleGeometry().ball({}, 0.075f),
              edgesAlong(i));
  }
}

SoTabBoxDragger::SoTabBoxDragger() {
  addHandle(scaler, Gesture::SCALE_EVENLY, X, plainColor(), cube(0.075f), corners());
  SoKitPart* const scalers[] = {&xScaler, &yScaler, &zScaler};
  for (int i = 0; i < 3; ++i) {
    SbVec3f const half = SbVec3f(0.03f, 0.03f, 0.03f) + axisOf(i) * 0.1f;
    addHandle(*scalers[i], Gesture::SCALE_ON_PLANE, axisOf(i), axisColor(i), SoHandleGeometry().box({}, half),
              edgesAlong(i));
  }
}

SoTransformerDragger::SoTransformerDragger() {
  addHandle(scaler, Gesture::SCALE_EVENLY, X, plainColor(), cube(), corners());
  SoKitPart* const scalers[] = {&xScaler, &yScaler, &zScaler};
  SoKitPart* const rotators[] = {&xRotator, &yRotator, &zRotator};
  std::vector<SbVec3f> spikes;
  SoHandleGeometry rods;
  for (int i = 0; i < 3; ++i) {
    SbVec3f const axis = axisOf(i);
    addHandle(*scalers[i], Gesture::SCALE_ON_LINE, axis, axisColor(i), cube(), {axis, -axis});
    addHandle(*rotators[i], Gesture::TURN_FLAT, axis, axisColor(i), SoHandleGeometry().ball({}, 0.07f),
              edgesAlong(i));
    for (float side : {-1.0f, 1.0f}) {
      spikes.push_back(axis * (side * 1.4f));
      rods.line({axis * side, axis * (side * 1.4f)});
    }
  }
  addHandle(rotator, Gesture::TURN_FREELY, X, plainColor(), SoHandleGeometry().ball({}, 0.09f), spikes);
  rods.addTo(static_cast<SoSeparator*>(translator1.getValue()));
}

SoTrackballDragger::SoTrackballDragger() : SoTransformDragger(ROUND) {
  addHandle(rotator, Gesture::TURN_FREELY, X, paleColor(), SoHandleGeometry().ball({}, 1), 0.88f);
  SoKitPart* const rotators[] = {&xRotator, &yRotator, &zRotator};
  for (int i = 0; i < 3; ++i) {
    addHandle(*rotators[i], Gesture::TURN_ROUND, axisOf(i), axisColor(i),
              SoHandleGeometry().ring({}, axisOf(i), 1.02f, 0.022f));
  }
}

SoCenterballDragger::SoCenterballDragger() : SoTransformDragger(CENTRED) {
  addHandle(rotator, Gesture::TURN_FREELY, X, paleColor(), SoHandleGeometry().ball({}, 1), 0.88f);
  SoKitPart* const rotators[] = {&xRotator, &yRotator, &zRotator};
  SoKitPart* const changers[] = {&yzCenterChanger, &xzCenterChanger, &xyCenterChanger};
  for (int i = 0; i < 3; ++i) {
    SbVec3f const axis = axisOf(i), u = axisOf((i + 1) % 3) * 0.14f, v = axisOf((i + 2) % 3) * 0.14f;
    addHandle(*rotators[i], Gesture::TURN_ROUND, axis, axisColor(i),
              SoHandleGeometry().ring({}, axis, 1.02f, 0.022f));
    SoHandleGeometry cross;
    for (float side : {-1.0f, 1.0f}) {
      SbVec3f const at = axis * (side * 1.06f);
      for (SbVec3f const& arm : {u, v, -u, -v}) cross.arrow(at, at + arm, 0.012f);
    }
    addHandle(*changers[i], Gesture::MOVE_CENTER, axis, plainColor(), cross);
  }
}

SoJackDragger::SoJackDragger() : SoTransformDragger(ROUND) {
  addHandle(point, Gesture::MOVE_IN_VIEW, X, plainColor(), SoHandleGeometry().ball({}, 0.12f));
  SoKitPart* const rods[] = {&xTranslator, &yTranslator, &zTranslator};
  std::vector<SbVec3f> cubes, balls;
  for (int i = 0; i < 3; ++i) {
    SbVec3f const axis = axisOf(i);
    SoHandleGeometry rod;
    rod.rod(axis * -0.95f, axis * 0.95f, 0.025f).line({axis * -0.95f, axis * 0.95f});
    addHandle(*rods[i], Gesture::MOVE_ON_LINE, axis, axisColor(i), rod);
    cubes.push_back(axis);
    balls.push_back(-axis);
  }
  addHandle(scaler, Gesture::SCALE_EVENLY, X, plainColor(), cube(0.08f), cubes);
  addHandle(rotator, Gesture::TURN_FREELY, X, plainColor(), SoHandleGeometry().ball({}, 0.1f), balls);
}

SoTabPlaneDragger::SoTabPlaneDragger() {
  SoHandleGeometry square;
  square.quad({-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0})
      .line({{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}, {-1, -1, 0}});
  addHandle(translator, Gesture::MOVE_ON_PLANE, Z, paleColor(), square, 0.8f);
  SbVec3f const tab(0.08f, 0.08f, 0.02f);
  addHandle(scaler, Gesture::SCALE_ON_PLANE, Z, plainColor(), SoHandleGeometry().box({}, tab),
            {{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}});
  addHandle(xScaler, Gesture::SCALE_ON_LINE, X, axisColor(0), SoHandleGeometry().box({}, tab),
            {{-1, 0, 0}, {1, 0, 0}});
  addHandle(yScaler, Gesture::SCALE_ON_LINE, Y, axisColor(1), SoHandleGeometry().box({}, tab),
            {{0, -1, 0}, {0, 1, 0}});
}
