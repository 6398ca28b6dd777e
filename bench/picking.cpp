// What picking costs: the structure over one large mesh with a pick on it, by the toolkit alone and with the
// module that uses Embree, and picks in a scene of many shapes.

#include <cmath>
#include <string>

#include "bench/bench.h"
#include "kestrava/actions/SoRayPickAction.h"
#include "kestrava/base/SoModuleTool.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoTranslation.h"
#include "kestrava/render/SoMeshIntersector.h"

namespace {

/// A hilly square of 512 x 512 cells, two triangles each: 524,288 triangles.
SoMesh makeHills() {
  constexpr int CELLS = 512;
  SoMesh mesh;
  for (int y = 0; y <= CELLS; ++y) {
    for (int x = 0; x <= CELLS; ++x) {
      float const u = static_cast<float>(x) / CELLS, v = static_cast<float>(y) / CELLS;
      mesh.positions.emplace_back(
          u, v, 0.05f * std::sin(40 * u) * std::cos(30 * v) + 0.01f * std::sin(300 * (u + v)));
    }
  }
  for (int y = 0; y < CELLS; ++y) {
    for (int x = 0; x < CELLS; ++x) {
      auto const a = static_cast<std::uint32_t>(y * (CELLS + 1) + x), b = a + 1, c = a + CELLS + 1, d = c + 1;
      mesh.triangles.insert(mesh.triangles.end(), {a, b, d, a, d, c});
    }
  }
  return mesh;
}

void measureMesh(std::string const& name) {
  SoMesh const mesh = makeHills();
  std::unique_ptr<SoMeshIntersector> intersector;
  double const build = bench::fastest([&] { intersector = SoMeshIntersector::make(mesh); });
  constexpr int PICKS = 100000;
  int met = 0;
  double const picks = bench::fastest([&] {
    met = 0;
    for (int i = 0; i < PICKS; ++i) {
      // From one eye to places all over the square.
      float const u = std::fmod(0.618034f * static_cast<float>(i), 1.0f), v = static_cast<float>(i) / PICKS;
      SbVec3f const eye(0.5f, -0.6f, 0.8f);
      bool hit = false;
      intersector->intersect({eye, SbVec3f(u, v, 0) - eye},
                             [&](SoMeshIntersector::Hit const&) { return hit = true; });
      met += hit;
    }
  });
  bench::keep(met);
  bench::report({name + "_build", build * 1e3, "ms", 0});
  bench::report({name + "_pick", picks / PICKS * 1e6, "us", 0});
}

} // namespace

// The marks are 73 ms and 7.6 us.
BENCH(pick_mesh) { measureMesh("pick_mesh"); }
BENCH(pick_mesh_module) {
  if (!SoModuleTool::initModule("ray_picking")) return;
  measureMesh("pick_mesh_module");
  SoModuleTool::finishModule("ray_picking");
}

// 100,000 places of a cube: the first pick, which prepares the list and its structure, one after that, and
// one after a change.
BENCH(pick_scene_100k) {
  SoRef<SoSeparator> const root(new SoSeparator);
  auto* const cube = new SoCube;
  SoTranslation* last = nullptr;
  for (int i = 0; i < 100000; ++i) {
    auto* const place = new SoSeparator;
    last = new SoTranslation;
    last->translation = SbVec3f(static_cast<float>(3 * (i % 317)), static_cast<float>(3 * (i / 317)), 0);
    place->addChild(last);
    place->addChild(cube);
    root->addChild(place);
  }
  SoRayPickAction pick(SbViewportRegion(100, 100));
  int i = 0;
  auto const once = [&] {
    i = (i + 7919) % 100000;
    pick.setRay(SbVec3f(3 * static_cast<float>(i % 317) - 40, 3 * static_cast<float>(i / 317), 90),
                SbVec3f(4, 0, -9));
    pick.apply(root);
    bench::keep(pick.getPickedPoint());
  };
  bench::report({"pick_scene_100k_first", bench::fastest(once, 1) * 1e3, "ms", 0});
  bench::report({"pick_scene_100k_again", bench::fastest([&] {
                                            for (int k = 0; k < 1000; ++k) once();
                                          }) * 1e3,
                 "us", 0});
  bench::report({"pick_scene_100k_changed", bench::fastest([&] {
                                              last->translation = SbVec3f(static_cast<float>(i), -9, 0);
                                              once();
                                            }) * 1e3,
                 "ms", 0});
}
