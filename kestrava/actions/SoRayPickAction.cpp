#include "kestrava/actions/SoRayPickAction.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "kestrava/nodes/SoCamera.h"
#include "kestrava/nodes/SoShape.h"
#include "kestrava/render/SoMesh.h"

namespace {

void pickMethod(SoRayPickAction& action, SoShape& shape) { action.pickShape(shape); }
bool const registered = SoAction::addMethods<pickMethod>();

/// Where a line from `start` along `direction` (any length; the answer is in its lengths) enters a box; nothing
/// when it misses it or the box lies behind.
std::optional<float> entry(SbBox3f const& box, SbVec3f const& start, SbVec3f const& direction) {
  float from = 0, to = std::numeric_limits<float>::infinity();
  for (int i = 0; i < 3; ++i) {
    if (direction[i] == 0) {
      if (start[i] < box.getMin()[i] || start[i] > box.getMax()[i]) return {};
      continue;
    }
    float a = (box.getMin()[i] - start[i]) / direction[i], b = (box.getMax()[i] - start[i]) / direction[i];
    if (a > b) std::swap(a, b);
    from = std::max(from, a);
    to = std::min(to, b);
  }
  return from <= to ? std::optional(from) : std::nullopt;
}

}  // namespace

void SoRayPickAction::setPoint(SbVec2s pixel) {
  m_pixel = pixel;
  m_hasPixel = true;
  m_fixedLine = false;
}

void SoRayPickAction::setCamera(SoCamera const* camera) {
  m_fixedVolume.reset();
  if (camera) m_fixedVolume = camera->getViewVolume(getViewportRegion().getViewportAspectRatio());
}

void SoRayPickAction::setRay(SbVec3f const& start, SbVec3f const& direction) {
  m_line.setPosDir(start, direction);
  m_length = 0;
  m_fixedLine = true;
}

void SoRayPickAction::begin() {
  SoStateAction::begin();
  m_points.clear();
}

void SoRayPickAction::end() {
  std::stable_sort(m_points.begin(), m_points.end(), [](SoPickedPoint const& a, SoPickedPoint const& b) {
    return a.getDistance() < b.getDistance();
  });
}

// Cameras stand before the shapes they show, so the line is known when a shape is met.
bool SoRayPickAction::findRay() {
  if (m_fixedLine) return true;
  if (!m_hasPixel) return false;
  auto const& camera = getState().get<SoCameraElement>();
  if (!m_fixedVolume && !camera.set) return false;
  m_volume = m_fixedVolume ? *m_fixedVolume : camera.volume;
  SbVec3f onNear, onFar;
  m_volume.projectPointToLine(getViewportRegion().normalize(m_pixel), onNear, onFar);
  SbVec3f const along = onFar - onNear;
  m_line.setPosDir(onNear, along);
  m_length = along.length();
  if (m_fixedVolume) {
    // Who looks through a camera of its own fits the planes to the scene: what is seen counts, not they.
    bool const perspective = m_volume.getProjectionType() == SbViewVolume::PERSPECTIVE;
    m_line.setPosDir(perspective ? m_volume.getProjectionPoint() : onNear - along * 10, along);
    m_length = 0;
  }
  return true;
}

void SoRayPickAction::add(SoPickedPoint point) {
  if (point.m_distance < 0 || (m_length > 0 && point.m_distance > m_length)) return;
  if (!m_all && !m_points.empty()) {
    if (point.m_distance >= m_points.front().m_distance) return;
    m_points.clear();
  }
  point.m_path = SoRef<SoPath>(getCurPath().copy());
  m_points.push_back(std::move(point));
}

void SoRayPickAction::pickShape(SoShape& shape) {
  SoState& state = getState();
  auto const& style = state.get<SoPickStyleElement>();
  if (!style.pickable || state.get<SoDrawStyleElement>().style == SoDrawStyleElement::INVISIBLE || !findRay()) return;
  SbMatrix const toRoot = state.get<SoModelMatrixElement>().matrix;
  SbBox3f box = shape.getBounds(state).transformed(toRoot);
  if (box.isEmpty()) return;
  if (!m_fixedLine) {
    // Lines and points are met a little beside the ray: as much as the radius is wide at the far side of the box.
    float const height = getViewportRegion().getViewportSizePixels()[1];
    float const depth = (box.getCenter() - m_line.getPosition()).length() + box.getSize().length() * 0.5f;
    bool const perspective = m_volume.getProjectionType() == SbViewVolume::PERSPECTIVE;
    float const perPixel = m_volume.getHeight() / std::max(height, 1.0f) *
                           (perspective ? (depth + m_volume.getNearDist()) / m_volume.getNearDist() : 1.0f);
    SbVec3f const around(1, 1, 1);
    SbBox3f const exact = box;
    box.extendBy(exact.getMin() - around * (perPixel * m_radius));
    box.extendBy(exact.getMax() + around * (perPixel * m_radius));
  }
  auto const enters = entry(box, m_line.getPosition(), m_line.getDirection());
  if (!enters || (!m_all && !m_points.empty() && *enters > m_points.front().m_distance)) return;

  SoMesh mesh;
  shape.buildMesh(state, mesh);
  if (style.boundingBox) {
    pickBox(mesh, toRoot);
    return;
  }
  pickTriangles(mesh, toRoot);
  if (!m_fixedLine) pickThin(mesh, toRoot);
}

void SoRayPickAction::pickBox(SoMesh const& mesh, SbMatrix const& toRoot) {
  SbMatrix const toShape = toRoot.inverse();
  SbVec3f const start = toShape.multVecMatrix(m_line.getPosition());
  SbVec3f const direction = toShape.multDirMatrix(m_line.getDirection());
  auto const enters = entry(mesh.getBounds(), start, direction);
  if (!enters) return;
  SoPickedPoint point;
  point.m_distance = *enters;
  point.m_point = m_line.getPoint(*enters);
  add(std::move(point));
}

// In the shape's own coordinates, after Moeller and Trumbore, "Fast, Minimum Storage Ray/Triangle Intersection".
// The direction is not normalised there, so distances along it are those in the root's coordinates.
void SoRayPickAction::pickTriangles(SoMesh const& mesh, SbMatrix const& toRoot) {
  bool invertible = true;
  SbMatrix const toShape = toRoot.inverse(&invertible);
  if (!invertible) return;
  SbVec3f const start = toShape.multVecMatrix(m_line.getPosition());
  SbVec3f const direction = toShape.multDirMatrix(m_line.getDirection());
  for (size_t i = 0; i + 2 < mesh.triangles.size(); i += 3) {
    std::uint32_t const* const corner = &mesh.triangles[i];
    SbVec3f const& a = mesh.positions[corner[0]];
    SbVec3f const ab = mesh.positions[corner[1]] - a, ac = mesh.positions[corner[2]] - a;
    SbVec3f const p = direction.cross(ac);
    float const det = ab.dot(p);
    if (det == 0) continue;
    SbVec3f const t = start - a;
    float const u = t.dot(p) / det;
    if (!(u >= 0 && u <= 1)) continue;
    SbVec3f const q = t.cross(ab);
    float const v = direction.dot(q) / det;
    if (!(v >= 0 && u + v <= 1)) continue;
    SoPickedPoint point;
    point.m_distance = ac.dot(q) / det;
    if (!m_all && !m_points.empty() && point.m_distance >= m_points.front().m_distance) continue;
    point.m_point = m_line.getPoint(point.m_distance);
    auto const mix = [&](std::vector<SbVec3f> const& values) {
      return values[corner[0]] * (1 - u - v) + values[corner[1]] * u + values[corner[2]] * v;
    };
    SbVec3f normal = mesh.normals.empty() ? ab.cross(ac) : mix(mesh.normals);
    // Normals go with the transposed inverse.
    normal = toShape.transpose().multDirMatrix(normal);
    normal.normalize();
    point.m_normal = normal;
    if (!mesh.texCoords.empty()) point.m_texCoords = mix(mesh.texCoords);
    if (!mesh.materials.empty()) point.m_materialIndex = mesh.materials[corner[0]];
    if (i / 3 < mesh.faces.size()) point.m_faceIndex = mesh.faces[i / 3];
    add(std::move(point));
  }
}

// Lines and points, by their distance from the pixel on the screen.
void SoRayPickAction::pickThin(SoMesh const& mesh, SbMatrix const& toRoot) {
  SbVec2s const size = getViewportRegion().getViewportSizePixels();
  SbVec2f const target = getViewportRegion().normalize(m_pixel);
  auto const test = [&](SbVec3f const& place, std::uint32_t vertex) {
    SbVec3f screen;
    if (!m_volume.projectToScreen(place, screen)) return;
    float const dx = (screen[0] - target[0]) * size[0], dy = (screen[1] - target[1]) * size[1];
    if (std::hypot(dx, dy) > m_radius) return;
    SoPickedPoint point;
    point.m_point = place;
    point.m_distance = (place - m_line.getPosition()).dot(m_line.getDirection());
    if (!mesh.materials.empty()) point.m_materialIndex = mesh.materials[vertex];
    add(std::move(point));
  };
  for (std::uint32_t const vertex : mesh.points) test(toRoot.multVecMatrix(mesh.positions[vertex]), vertex);
  for (size_t i = 0; i + 1 < mesh.lines.size(); i += 2) {
    SbVec3f const a = toRoot.multVecMatrix(mesh.positions[mesh.lines[i]]);
    SbVec3f const b = toRoot.multVecMatrix(mesh.positions[mesh.lines[i + 1]]);
    SbVec3f const along = b - a;
    float const length = along.dot(along);
    SbVec3f nearest = a, onRay;
    if (length > 0 && SbLine(a, b).getClosestPoints(m_line, nearest, onRay)) {
      nearest = a + along * std::clamp((nearest - a).dot(along) / length, 0.0f, 1.0f);
    }
    test(nearest, mesh.lines[i]);
  }
}
