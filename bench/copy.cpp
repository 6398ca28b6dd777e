// Deep copies against building the same graph by its constructors.

#include "bench/bench.h"
#include "bench/tree100k.h"

namespace {

void measure(bool ownBoxes) {
  // Releasing is no part of it.
  std::vector<SoRef<SoNode>> kept;
  double const build = bench::fastest([&] { kept.emplace_back(bench::makeTree100k(ownBoxes).get()); });
  SoRef<SoNode> const root = kept.front();
  kept.clear();
  double const copy = bench::fastest([&] { kept.emplace_back(root->copy()); });
  bench::report({"", copy * 1e3, "ms", build * 1e3});
}

} // namespace

BENCH(copy_own_boxes) { measure(true); }
BENCH(copy_shared_box) { measure(false); }
