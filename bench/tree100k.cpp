#include "bench/tree100k.h"

#include "kestrava/nodes/SoIndexedFaceSet.h"
#include "kestrava/nodes/SoTransform.h"
#include "kestrava/nodes/SoVertexProperty.h"

namespace {

SoIndexedFaceSet* makeBox() {
  auto* box = new SoIndexedFaceSet;
  auto* corners = new SoVertexProperty;
  std::vector<SbVec3f> points, normals;
  std::vector<std::int32_t> indices;
  for (int axis = 0; axis < 3; ++axis) {
    for (float side : {-1.f, 1.f}) {
      int const first = static_cast<int>(points.size());
      for (int corner = 0; corner < 4; ++corner) {
        SbVec3f point, normal;
        point[axis] = normal[axis] = side;
        point[(axis + 1) % 3] = corner == 1 || corner == 2 ? 1.f : -1.f;
        point[(axis + 2) % 3] = corner > 1 ? 1.f : -1.f;
        points.push_back(point);
        normals.push_back(normal);
      }
      for (int index : {0, 1, 2, -1, 0, 2, 3, -1}) indices.push_back(index < 0 ? -1 : first + index);
    }
  }
  corners->vertex.setValues(std::move(points));
  corners->normal.setValues(std::move(normals));
  box->coordIndex.setValues(std::move(indices));
  box->vertexProperty.setValue(corners);
  return box;
}

} // namespace

SoRef<SoSeparator> bench::makeTree100k(bool ownBoxes) {
  SoRef<SoSeparator> const root(new SoSeparator);
  std::vector<SoGroup*> level{root};
  int number = 0;
  for (int depth = 0; depth < 4; ++depth) {
    std::vector<SoGroup*> next;
    for (SoGroup* group : level) {
      for (int i = 0; i < 10; ++i) {
        auto* below = new SoSeparator;
        below->setName(SbString::format("group_%d", number++));
        group->addChild(below);
        next.push_back(below);
      }
    }
    level = std::move(next);
  }
  constexpr int LEAVES = 44'445;
  SoRef<SoIndexedFaceSet> const box(makeBox());
  for (int i = 0; i < LEAVES; ++i) {
    auto* leaf = new SoSeparator;
    leaf->setName(SbString::format("leaf_%d", i));
    auto* place = new SoTransform;
    place->translation = SbVec3f(static_cast<float>(i % 211), static_cast<float>(i / 211 % 211), 0);
    leaf->addChild(place);
    leaf->addChild(ownBoxes ? makeBox() : box.get());
    level[static_cast<std::size_t>(i) * level.size() / LEAVES]->addChild(leaf);
  }
  return root;
}
