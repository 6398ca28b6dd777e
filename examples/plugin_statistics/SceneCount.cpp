#include "SceneCount.h"

#include <kestrava/actions/SoCallbackAction.h>
#include <kestrava/base/SoChildList.h>
#include <kestrava/fields/SoMFColor.h>
#include <kestrava/fields/SoMFFloat.h>
#include <kestrava/fields/SoMFInt32.h>
#include <kestrava/fields/SoMFMatrix.h>
#include <kestrava/fields/SoMFNode.h>
#include <kestrava/fields/SoMFRotation.h>
#include <kestrava/fields/SoMFString.h>
#include <kestrava/fields/SoMFUInt32.h>
#include <kestrava/fields/SoMFVec2f.h>
#include <kestrava/fields/SoMFVec3f.h>
#include <kestrava/fields/SoMFVec4f.h>
#include <kestrava/fields/SoSFFloat.h>
#include <kestrava/fields/SoSFImage.h>
#include <kestrava/fields/SoSFNode.h>
#include <kestrava/nodes/SoGroup.h>
#include <kestrava/nodes/SoShape.h>

#include <algorithm>
#include <map>
#include <unordered_map>
#include <unordered_set>

namespace {

// Graphs.

/// What stands below a node: its children, and the nodes in its fields (a kit has its parts in both).
std::vector<SoNode*> nodesBelow(SoNode* node) {
  std::vector<SoNode*> result;
  SoChildList const* const children = node->getChildren();
  if (children) result.assign(children->begin(), children->end());
  auto const add = [&](SoNode* value) {
    if (value && !(children && children->find(value) >= 0)) result.push_back(value);
  };
  for (int i = 0; i < node->getNumFields(); ++i) {
    SoField* const field = node->getField(i);
    if (field->isOfType(SoSFNode::getClassTypeId())) {
      add(static_cast<SoSFNode*>(field)->getValue());
    } else if (field->isOfType(SoMFNode::getClassTypeId())) {
      auto* const nodes = static_cast<SoMFNode*>(field);
      for (int k = 0; k < nodes->getNum(); ++k) add(nodes->getNode(k));
    }
  }
  return result;
}

/// All nodes, each once, and each after everything that is above it. With a stack of its own: scenes may be
/// deeper than the program's stack.
std::vector<SoNode*> sorted(SoNode* root) {
  struct Level {
    SoNode* node;
    std::vector<SoNode*> below;
  };
  std::vector<SoNode*> result;
  std::unordered_set<SoNode*> met{root};
  std::vector<Level> stack{{root, nodesBelow(root)}};
  while (!stack.empty()) {
    Level& level = stack.back();
    if (level.below.empty()) {
      result.push_back(level.node);
      stack.pop_back();
      continue;
    }
    SoNode* const next = level.below.back();
    level.below.pop_back();
    if (met.insert(next).second) stack.push_back({next, nodesBelow(next)});
  }
  std::reverse(result.begin(), result.end());
  return result;
}

// Bytes.

template <class T> std::uint64_t bytesOfArray(SoField const* field) {
  auto const* const values = dynamic_cast<SoMFValue<T> const*>(field);
  return values ? std::uint64_t(values->getNum()) * sizeof(T) : 0;
}

/// What a field holds besides itself: arrays, texts and images.
std::uint64_t bytesHeld(SoField const* field) {
  if (auto const* const image = dynamic_cast<SoSFImage const*>(field)) {
    SbImage const& value = image->getValue();
    return std::uint64_t(value.getWidth()) * value.getHeight() * value.getNumComponents();
  }
  std::uint64_t bytes = bytesOfArray<float>(field) + bytesOfArray<std::int32_t>(field) +
                        bytesOfArray<std::uint32_t>(field) + bytesOfArray<SbVec2f>(field) +
                        bytesOfArray<SbVec3f>(field) + bytesOfArray<SbVec4f>(field) +
                        bytesOfArray<SbColor>(field) + bytesOfArray<SbRotation>(field) +
                        bytesOfArray<SbMatrix>(field) + bytesOfArray<SbString>(field);
  if (auto const* const texts = dynamic_cast<SoMFString const*>(field)) {
    for (SbString const& text : texts->values()) bytes += text.getLength();
  }
  return bytes;
}

std::uint64_t bytesOf(SoNode const* node) {
  std::uint64_t bytes = sizeof(SoNode) + node->getNumFields() * sizeof(SoSFFloat);
  for (int i = 0; i < node->getNumFields(); ++i) bytes += bytesHeld(node->getField(i));
  return bytes;
}

// Triangles.

/// Walks the scene until it has been through the counted part once, with the state that stands there.
struct TriangleCounter {
  explicit TriangleCounter(SoNode const* node) : target(node) {}

  SoNode const* target;
  SoNode const* shape = nullptr; // whose triangles come
  bool inside = false;
  bool found = false;
  std::unordered_set<SoNode const*> met;
  std::unordered_map<SoNode const*, std::uint64_t> triangles;

  static SoCallbackAction::Response enter(void* data, SoCallbackAction*, SoNode const* node) {
    auto* const self = static_cast<TriangleCounter*>(data);
    if (node == self->target) self->inside = self->found = true;
    bool const isShape = node->isOfType(SoShape::getClassTypeId());
    bool const isGroup = node->isOfType(SoGroup::getClassTypeId());
    // What shapes outside look like nobody wants to know, and no shape or group is looked at twice.
    if (isShape && !self->inside) return SoCallbackAction::PRUNE;
    if ((isShape || isGroup) && !self->met.insert(node).second) return SoCallbackAction::PRUNE;
    if (isShape) self->shape = node;
    return SoCallbackAction::CONTINUE;
  }
  static SoCallbackAction::Response leave(void* data, SoCallbackAction*, SoNode const* node) {
    return node == static_cast<TriangleCounter*>(data)->target ? SoCallbackAction::ABORT
                                                               : SoCallbackAction::CONTINUE;
  }
  static void count(void* data, SoCallbackAction*, SoPrimitiveVertex const&, SoPrimitiveVertex const&,
                    SoPrimitiveVertex const&) {
    auto* const self = static_cast<TriangleCounter*>(data);
    ++self->triangles[self->shape];
  }
  void apply(SoNode* root) {
    SoCallbackAction action;
    action.addPreCallback(SoNode::getClassTypeId(), enter, this);
    action.addPostCallback(SoNode::getClassTypeId(), leave, this);
    action.addTriangleCallback(SoShape::getClassTypeId(), count, this);
    action.apply(root);
  }
};

} // namespace

SceneCount::Numbers& SceneCount::Numbers::operator+=(Numbers const& other) {
  nodes += other.nodes;
  places += other.places;
  triangles += other.triangles;
  trianglesInPlaces += other.trianglesInPlaces;
  bytes += other.bytes;
  return *this;
}

SceneCount SceneCount::of(SoNode* node, SoNode* scene) {
  TriangleCounter counter(node);
  if (scene) counter.apply(scene);
  // In a field, or in the part of a switch that is off, the walk does not come by.
  if (!counter.found) counter.apply(node);

  // A node has as many places as those above it have together.
  std::unordered_map<SoNode*, std::uint64_t> places{{node, 1}};
  std::map<SoType, Numbers> types;
  for (SoNode* const each : sorted(node)) {
    std::uint64_t const here = places[each];
    for (SoNode* const below : nodesBelow(each)) places[below] += here;
    std::uint64_t const triangles = counter.triangles[each];
    types[each->getTypeId()] += Numbers{1, here, triangles, triangles * here, bytesOf(each)};
  }
  SceneCount result;
  for (auto const& [type, numbers] : types) {
    result.rows.push_back({type, numbers});
    result.total += numbers;
  }
  return result;
}
