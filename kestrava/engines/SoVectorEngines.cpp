// Engines that put vectors, rotations and matrices together and take them apart.

#include <array>

#include "kestrava/engines/SoComposeMatrix.h"
#include "kestrava/engines/SoComposeRotation.h"
#include "kestrava/engines/SoComposeRotationFromTo.h"
#include "kestrava/engines/SoComposeVec2f.h"
#include "kestrava/engines/SoComposeVec3f.h"
#include "kestrava/engines/SoComposeVec4f.h"
#include "kestrava/engines/SoDecomposeMatrix.h"
#include "kestrava/engines/SoDecomposeRotation.h"
#include "kestrava/engines/SoDecomposeVec2f.h"
#include "kestrava/engines/SoDecomposeVec3f.h"
#include "kestrava/engines/SoDecomposeVec4f.h"
#include "kestrava/engines/SoEngineArrays.h"
#include "kestrava/engines/SoTransformVec3f.h"

using SoEngineArrays::at;
using SoEngineArrays::getLongest;

namespace {

template <class Vectors, class... Components>
void compose(Vectors& vectors, Components const&... components) {
  std::vector<typename Vectors::ValueType> values;
  for (int i = 0, count = getLongest(components...); i < count; ++i)
    values.emplace_back(at(components, i)...);
  vectors.setValues(std::move(values));
}

template <class Vectors, class... Components>
void decompose(Vectors const& vectors, Components&... components) {
  int index = 0;
  auto const take = [&](SoMFFloat& component) {
    std::vector<float> values;
    for (auto const& vector : vectors.values()) values.push_back(vector[index]);
    component.setValues(std::move(values));
    ++index;
  };
  (take(components), ...);
}

} // namespace

void SoComposeVec2f::evaluate() { compose(vector, x, y); }
void SoComposeVec3f::evaluate() { compose(vector, x, y, z); }
void SoComposeVec4f::evaluate() { compose(vector, x, y, z, w); }
void SoComposeRotation::evaluate() { compose(rotation, axis, angle); }
void SoComposeRotationFromTo::evaluate() { compose(rotation, from, to); }
void SoDecomposeVec2f::evaluate() { decompose(vector, x, y); }
void SoDecomposeVec3f::evaluate() { decompose(vector, x, y, z); }
void SoDecomposeVec4f::evaluate() { decompose(vector, x, y, z, w); }

void SoDecomposeRotation::evaluate() {
  std::vector<SbVec3f> axes;
  std::vector<float> angles;
  for (SbRotation const& value : rotation.values()) {
    axes.push_back(value.getAxis());
    angles.push_back(value.getAngle());
  }
  axis.setValues(std::move(axes));
  angle.setValues(std::move(angles));
}

void SoComposeMatrix::evaluate() {
  std::vector<SbMatrix> values(getLongest(translation, rotation, scaleFactor, scaleOrientation, center));
  for (int i = 0; i < static_cast<int>(values.size()); ++i) {
    values[i].setTransform(at(translation, i), at(rotation, i), at(scaleFactor, i), at(scaleOrientation, i),
                           at(center, i));
  }
  matrix.setValues(std::move(values));
}

void SoDecomposeMatrix::evaluate() {
  std::size_t const count = getLongest(matrix, center);
  std::vector<SbVec3f> translations(count), scales(count);
  std::vector<SbRotation> rotations(count), orientations(count);
  for (std::size_t i = 0; i < count; ++i) {
    int const k = static_cast<int>(i);
    at(matrix, k).getTransform(translations[i], rotations[i], scales[i], orientations[i], at(center, k));
  }
  translation.setValues(std::move(translations));
  rotation.setValues(std::move(rotations));
  scaleFactor.setValues(std::move(scales));
  scaleOrientation.setValues(std::move(orientations));
}

void SoTransformVec3f::evaluate() {
  std::vector<SbVec3f> points, directions, normals;
  for (int i = 0, count = getLongest(vector, matrix); i < count; ++i) {
    points.push_back(at(matrix, i).multVecMatrix(at(vector, i)));
    directions.push_back(at(matrix, i).multDirMatrix(at(vector, i)));
    normals.push_back(directions.back().normalized());
  }
  point.setValues(std::move(points));
  direction.setValues(std::move(directions));
  normalDirection.setValues(std::move(normals));
}
