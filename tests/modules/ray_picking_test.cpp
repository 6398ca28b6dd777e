#include <gtest/gtest.h>

#include <map>
#include <random>

#include "kestrava/base/SoModuleTool.h"
#include "kestrava/render/SoMeshIntersector.h"

namespace {

using Ray = SoMeshIntersector::Ray;
using Hit = SoMeshIntersector::Hit;

/// Triangles of all sizes in a cube around the origin, some without area, some with coordinates that are no
/// numbers.
SoMesh randomTriangles(int count, std::mt19937& random) {
  std::uniform_real_distribution<float> place(-1, 1), exponent(-6, -0.5f);
  SoMesh mesh;
  for (int i = 0; i < count; ++i) {
    SbVec3f const center(place(random), place(random), place(random));
    float const size = std::exp2(2 * exponent(random));
    for (int k = 0; k < 3; ++k) {
      mesh.positions.push_back(center + SbVec3f(place(random), place(random), place(random)) * size);
      mesh.triangles.push_back(static_cast<std::uint32_t>(mesh.positions.size() - 1));
    }
    if (i % 97 == 0) mesh.positions.back() = mesh.positions[mesh.positions.size() - 2];
    if (i % 101 == 0) mesh.positions.back()[i % 3] = i % 2 ? NAN : INFINITY;
  }
  return mesh;
}

std::map<std::uint32_t, Hit> hitsOf(SoMeshIntersector const& intersector, Ray const& ray, bool nearest) {
  std::map<std::uint32_t, Hit> hits;
  intersector.intersect(ray, [&](Hit const& hit) {
    if (nearest) hits.clear();
    hits[hit.triangle] = hit;
    return nearest;
  });
  return hits;
}

std::map<std::uint32_t, Hit> everyTriangle(SoMesh const& mesh, Ray const& ray) {
  std::map<std::uint32_t, Hit> hits;
  for (std::uint32_t i = 0; i < static_cast<std::uint32_t>(mesh.getNumTriangles()); ++i) {
    Hit hit{i, 0, 0, 0};
    if (SoMeshIntersector::meet(mesh, ray, hit)) hits[i] = hit;
  }
  return hits;
}

/// True when a ray passes so near an edge that one may see a hit and another may not.
bool isOnEdge(Hit const& hit) { return std::min({hit.u, hit.v, 1 - hit.u - hit.v}) < 1e-3f; }

void expectSame(std::map<std::uint32_t, Hit> const& actual, std::map<std::uint32_t, Hit> const& wanted,
                char const* what) {
  for (auto const& [triangle, hit] : wanted) {
    auto const found = actual.find(triangle);
    ASSERT_TRUE(found != actual.end() || isOnEdge(hit)) << what << ", triangle " << triangle;
    if (found == actual.end()) continue;
    EXPECT_NEAR(found->second.distance, hit.distance, 1e-5f * (1 + hit.distance)) << what;
  }
  for (auto const& [triangle, hit] : actual) {
    EXPECT_TRUE(wanted.count(triangle) || isOnEdge(hit)) << what << ", triangle " << triangle;
  }
}

TEST(RayPicking, MeetsWhatEveryTriangleByItselfMeets) {
  std::mt19937 random(7);
  std::uniform_real_distribution<float> place(-1.5f, 1.5f);
  SoMesh const mesh = randomTriangles(6000, random);
  auto const own = SoMeshIntersector::makeOwn(mesh);
  if (!SoModuleTool::initModule("ray_picking")) GTEST_SKIP() << "the module is not built";
  auto const module = SoMeshIntersector::make(mesh);
  ASSERT_NE(typeid(*module), typeid(*own));
  size_t met = 0;
  for (int i = 0; i < 3000; ++i) {
    Ray ray{SbVec3f(place(random), place(random), place(random)), {}};
    ray.direction = SbVec3f(place(random), place(random), place(random)) * 0.5f - ray.origin;
    if (i % 10 == 0) ray.direction = SbVec3f(0, i % 20 ? 1.0f : -1.0f, 0); // along an axis
    if (i % 5 == 0) ray.to = 1.2f;
    auto const wanted = everyTriangle(mesh, ray);
    met += wanted.size();
    expectSame(hitsOf(*own, ray, false), wanted, "own");
    expectSame(hitsOf(*module, ray, false), wanted, "module");
    if (wanted.empty()) continue;
    auto const nearest = std::min_element(wanted.begin(), wanted.end(), [](auto const& a, auto const& b) {
                           return a.second.distance < b.second.distance;
                         })->second;
    for (auto const* intersector : {own.get(), module.get()}) {
      auto const found = hitsOf(*intersector, ray, true);
      if (isOnEdge(nearest)) continue;
      ASSERT_EQ(found.size(), 1u);
      // Embree may see a hit on an edge that lies before.
      if (isOnEdge(found.begin()->second)) continue;
      EXPECT_EQ(found.begin()->first, nearest.triangle) << "ray " << i;
    }
  }
  EXPECT_GT(met, 3000u) << "the rays tell nothing";

  // What was made lives on when the module is finished.
  ASSERT_TRUE(SoModuleTool::finishModule("ray_picking"));
  Ray const ray{SbVec3f(0, 0, -5), SbVec3f(0, 0, 1)};
  expectSame(hitsOf(*module, ray, false), everyTriangle(mesh, ray), "after the end");
  EXPECT_EQ(typeid(*SoMeshIntersector::make(mesh)), typeid(*own));
}

TEST(RayPicking, SmallAndEmptyMeshesAreLeftToTheToolkit) {
  if (!SoModuleTool::initModule("ray_picking")) GTEST_SKIP() << "the module is not built";
  SoMesh mesh;
  EXPECT_TRUE(hitsOf(*SoMeshIntersector::make(mesh), {SbVec3f(), SbVec3f(0, 0, 1)}, false).empty());
  mesh.positions = {SbVec3f(0, 0, 0), SbVec3f(1, 0, 0), SbVec3f(0, 1, 0)};
  mesh.triangles = {0, 1, 2};
  Ray const ray{SbVec3f(0.2f, 0.2f, -1), SbVec3f(0, 0, 2)};
  auto const hits = hitsOf(*SoMeshIntersector::make(mesh), ray, true);
  ASSERT_EQ(hits.size(), 1u);
  EXPECT_NEAR(hits.at(0).distance, 0.5f, 1e-6f) << "in lengths of the direction";
  SoModuleTool::finishModule("ray_picking");
}

} // namespace
