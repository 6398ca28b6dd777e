// The meshes of the shapes that have no coordinates: cube, sphere, cone, cylinder.

#include <algorithm>
#include <cmath>
#include <numbers>

#include "kestrava/nodes/SoCone.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoCylinder.h"
#include "kestrava/nodes/SoSphere.h"
#include "kestrava/render/SoMeshBuilder.h"
#include "kestrava/render/SoTessellation.h"

namespace {

/// The value of a field, its default when the field is ignored.
float valueOf(SoSFFloat const& field, float normally) {
  return field.isIgnored() ? normally : field.getValue();
}

SbBox3f boxAround(float x, float y, float z) {
  x = std::abs(x), y = std::abs(y), z = std::abs(z);
  return SbBox3f(SbVec3f(-x, -y, -z), SbVec3f(x, y, z));
}

std::uint64_t roundKey(SoShape const& shape, std::uint64_t key, SoState const& state) {
  return SoMixKey(key, static_cast<std::uint64_t>(SoTessellation::getSlices(state, shape.getBounds(state))));
}

class PrimitiveBuilder {
 public:
  PrimitiveBuilder(SoState const& state, SbBox3f const& bounds, SoMesh& mesh, bool bindsParts = true)
      : m_texCoords(state.get<SoTextureCoordinateElement>()), m_bounds(bounds), m_mesh(mesh) {
    SoBinding const binding = state.get<SoMaterialBindingElement>().value;
    m_perPart = bindsParts && (binding == SoBinding::PER_PART || binding == SoBinding::PER_PART_INDEXED);
    m_textured = state.get<SoTextureImageElement>().id != 0 &&
                 m_texCoords.source != SoTextureCoordinateElement::ENVIRONMENT;
  }

  void startPart(int part) { m_part = part; }

  std::uint32_t vertex(SbVec3f const& point, SbVec3f const& normal, float s, float t) {
    m_mesh.positions.push_back(point);
    m_mesh.normals.push_back(normal);
    if (m_perPart) m_mesh.materials.push_back(m_part);
    if (m_textured) {
      bool const projected = m_texCoords.source == SoTextureCoordinateElement::PLANE;
      m_mesh.texCoords.push_back(projected ? SoProjectTexture(m_texCoords, m_bounds, point)
                                           : SbVec3f(s, t, 0));
    }
    return static_cast<std::uint32_t>(m_mesh.positions.size() - 1);
  }

  void triangle(std::uint32_t a, std::uint32_t b, std::uint32_t c) {
    m_mesh.triangles.insert(m_mesh.triangles.end(), {a, b, c});
    m_mesh.faces.push_back(m_part);
  }
  void quad(std::uint32_t a, std::uint32_t b, std::uint32_t c, std::uint32_t d) {
    triangle(a, b, c);
    triangle(a, c, d);
  }

  /// A disc across the y axis, seen from above (`up`) or from below.
  void disc(float radius, float y, bool up, int slices) {
    SbVec3f const normal(0, up ? 1 : -1, 0);
    std::uint32_t const center = vertex(SbVec3f(0, y, 0), normal, 0.5f, 0.5f);
    std::uint32_t const first = center + 1;
    for (int i = 0; i <= slices; ++i) {
      float const angle = turn(i, slices), x = -std::sin(angle), z = -std::cos(angle);
      vertex(SbVec3f(radius * x, y, radius * z), normal, 0.5f + x / 2, up ? 0.5f - z / 2 : 0.5f + z / 2);
      if (i == 0) continue;
      std::uint32_t const a = first + static_cast<std::uint32_t>(i) - 1, b = a + 1;
      up ? triangle(center, a, b) : triangle(center, b, a);
    }
  }

  /// The wall between two circles around the y axis; the texture starts at the back and runs counterclockwise
  /// as seen from above.
  void wall(float bottomRadius, float topRadius, float height, int slices) {
    float const slope = bottomRadius - topRadius;
    for (int i = 0; i <= slices; ++i) {
      float const angle = turn(i, slices), x = -std::sin(angle), z = -std::cos(angle);
      SbVec3f const normal = SbVec3f(x * height, slope, z * height).normalized();
      float const s = static_cast<float>(i) / static_cast<float>(slices);
      vertex(SbVec3f(bottomRadius * x, -height / 2, bottomRadius * z), normal, s, 0);
      auto const top = vertex(SbVec3f(topRadius * x, height / 2, topRadius * z), normal, s, 1);
      if (i == 0) continue;
      triangle(top - 3, top - 1, top);
      if (topRadius != 0) triangle(top - 3, top, top - 2);
    }
  }

  static float turn(int i, int count) {
    // The last corner stands exactly on the first one.
    return i == count ? 0 : 2 * std::numbers::pi_v<float> * static_cast<float>(i) / static_cast<float>(count);
  }

 private:
  SoTextureCoordinateElement m_texCoords;
  SbBox3f m_bounds;
  SoMesh& m_mesh;
  bool m_perPart, m_textured;
  int m_part = 0;
};

} // namespace

SbBox3f SoCube::getBounds(SoState const&) const {
  return boxAround(valueOf(width, 2) / 2, valueOf(height, 2) / 2, valueOf(depth, 2) / 2);
}

void SoCube::buildMesh(SoState const& state, SoMesh& mesh) const {
  SoBuildBox(getBounds(state), state, mesh, true);
}

void SoBuildBox(SbBox3f const& bounds, SoState const& state, SoMesh& mesh, bool bindsParts) {
  PrimitiveBuilder builder(state, bounds, mesh, bindsParts);
  // Normal, direction of s, direction of t.
  static SbVec3f const sides[6][3] = {{SbVec3f(0, 0, 1), SbVec3f(1, 0, 0), SbVec3f(0, 1, 0)},
                                      {SbVec3f(0, 0, -1), SbVec3f(-1, 0, 0), SbVec3f(0, 1, 0)},
                                      {SbVec3f(-1, 0, 0), SbVec3f(0, 0, 1), SbVec3f(0, 1, 0)},
                                      {SbVec3f(1, 0, 0), SbVec3f(0, 0, -1), SbVec3f(0, 1, 0)},
                                      {SbVec3f(0, 1, 0), SbVec3f(1, 0, 0), SbVec3f(0, 0, -1)},
                                      {SbVec3f(0, -1, 0), SbVec3f(1, 0, 0), SbVec3f(0, 0, 1)}};
  SbVec3f const half = bounds.getSize() * 0.5f, center = bounds.getCenter();
  for (int side = 0; side < 6; ++side) {
    builder.startPart(side);
    auto const& [normal, s, t] = sides[side];
    std::uint32_t corners[4];
    for (int i = 0; i < 4; ++i) {
      float const u = i == 1 || i == 2 ? 1 : 0, v = i >= 2 ? 1 : 0;
      SbVec3f point = normal + s * (2 * u - 1) + t * (2 * v - 1);
      for (int k = 0; k < 3; ++k) point[k] = center[k] + point[k] * half[k];
      corners[i] = builder.vertex(point, normal, u, v);
    }
    builder.quad(corners[0], corners[1], corners[2], corners[3]);
  }
}

SbBox3f SoSphere::getBounds(SoState const&) const {
  float const r = valueOf(radius, 1);
  return boxAround(r, r, r);
}

void SoSphere::buildMesh(SoState const& state, SoMesh& mesh) const {
  SbBox3f const bounds = getBounds(state);
  PrimitiveBuilder builder(state, bounds, mesh);
  float const r = bounds.getMax()[0];
  // Multiples of 4 and 2: the mesh then reaches the bounds along every axis.
  int const slices = SoTessellation::getSlices(state, bounds), stacks = slices / 2;
  for (int row = 0; row <= stacks; ++row) {
    float const down = std::numbers::pi_v<float> * static_cast<float>(row) / static_cast<float>(stacks);
    bool const isPole = row == 0 || row == stacks;
    float const y = row == 0 ? 1 : row == stacks ? -1 : std::cos(down), ring = isPole ? 0 : std::sin(down);
    for (int i = 0; i <= slices; ++i) {
      float const angle = PrimitiveBuilder::turn(i, slices);
      SbVec3f const normal(-ring * std::sin(angle), y, -ring * std::cos(angle));
      auto const at = builder.vertex(normal * r, normal, static_cast<float>(i) / static_cast<float>(slices),
                                     1 - static_cast<float>(row) / static_cast<float>(stacks));
      if (row == 0 || i == 0) continue;
      auto const above = at - static_cast<std::uint32_t>(slices) - 1;
      if (row > 1) builder.triangle(above - 1, at, above);
      if (row < stacks) builder.triangle(above - 1, at - 1, at);
    }
  }
}

SbBox3f SoCone::getBounds(SoState const&) const {
  int const shown = parts.isIgnored() ? static_cast<int>(ALL) : parts.getValue();
  float const r = valueOf(bottomRadius, 1), half = valueOf(height, 2) / 2;
  if (!(shown & ALL)) return SbBox3f();
  SbBox3f box = boxAround(r, half, r);
  if (!(shown & SIDES))
    box.setBounds(box.getMin(), SbVec3f(box.getMax()[0], box.getMin()[1], box.getMax()[2]));
  return box;
}

void SoCone::buildMesh(SoState const& state, SoMesh& mesh) const {
  SbBox3f const bounds = getBounds(state);
  if (bounds.isEmpty()) return;
  PrimitiveBuilder builder(state, bounds, mesh);
  int const shown = parts.isIgnored() ? static_cast<int>(ALL) : parts.getValue();
  float const r = bounds.getMax()[0], half = -bounds.getMin()[1];
  int const slices = SoTessellation::getSlices(state, bounds);
  if (shown & SIDES) builder.wall(r, 0, 2 * half, slices);
  builder.startPart(1);
  if (shown & BOTTOM) builder.disc(r, -half, false, slices);
}

SbBox3f SoCylinder::getBounds(SoState const&) const {
  int const shown = parts.isIgnored() ? static_cast<int>(ALL) : parts.getValue();
  if (!(shown & ALL)) return SbBox3f();
  float const r = valueOf(radius, 1), half = valueOf(height, 2) / 2;
  SbBox3f box = boxAround(r, half, r);
  SbVec3f low = box.getMin(), high = box.getMax();
  if (!(shown & (SIDES | TOP))) high[1] = low[1];
  if (!(shown & (SIDES | BOTTOM))) low[1] = high[1];
  return SbBox3f(low, high);
}

void SoCylinder::buildMesh(SoState const& state, SoMesh& mesh) const {
  int const shown = parts.isIgnored() ? static_cast<int>(ALL) : parts.getValue();
  float const r = std::abs(valueOf(radius, 1)), half = std::abs(valueOf(height, 2) / 2);
  SbBox3f const bounds = getBounds(state);
  PrimitiveBuilder builder(state, bounds, mesh);
  int const slices = SoTessellation::getSlices(state, bounds);
  if (shown & SIDES) builder.wall(r, r, 2 * half, slices);
  builder.startPart(1);
  if (shown & TOP) builder.disc(r, half, true, slices);
  builder.startPart(2);
  if (shown & BOTTOM) builder.disc(r, -half, false, slices);
}

std::uint64_t SoSphere::getMeshKey(SoState const& state) const {
  return roundKey(*this, SoShape::getMeshKey(state), state);
}
std::uint64_t SoCone::getMeshKey(SoState const& state) const {
  return roundKey(*this, SoShape::getMeshKey(state), state);
}
std::uint64_t SoCylinder::getMeshKey(SoState const& state) const {
  return roundKey(*this, SoShape::getMeshKey(state), state);
}
