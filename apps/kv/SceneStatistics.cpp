#include "apps/kv/SceneStatistics.h"

#include <algorithm>
#include <unordered_map>

#include "kestrava/actions/SoCallbackAction.h"
#include "kestrava/actions/SoGetBoundingBoxAction.h"
#include "kestrava/fields/SoMFNode.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/nodes/SoGroup.h"
#include "kestrava/nodes/SoShape.h"
#include "kestrava/nodes/SoUnknownNode.h"

namespace {

std::uint64_t addUpTo(std::uint64_t a, std::uint64_t b) { return a > ~b ? ~std::uint64_t{0} : a + b; }

std::uint64_t timesUpTo(std::uint64_t a, std::uint64_t b) {
  return b != 0 && a > ~std::uint64_t{0} / b ? ~std::uint64_t{0} : a * b;
}

std::string typeText(SoNode const* node) {
  auto const* unknown = dynamic_cast<SoUnknownNode const*>(node);
  return unknown ? unknown->getFileTypeName().str() : node->getTypeId().getName().str();
}

/// What stands directly below a node: first what its fields hold, then the children of a group.
std::vector<SoNode*> below(SoNode* node) {
  std::vector<SoNode*> nodes;
  for (int i = 0; i < node->getNumFields(); ++i) {
    SoField* const field = node->getField(i);
    if (field->isDefault()) continue;
    if (auto* single = dynamic_cast<SoSFNode*>(field)) {
      if (single->getValue()) nodes.push_back(single->getValue());
    } else if (auto* many = dynamic_cast<SoMFNode*>(field)) {
      for (int k = 0; k < many->getNumValues(); ++k) {
        if (many->getNode(k)) nodes.push_back(many->getNode(k));
      }
    }
  }
  if (node->isOfType(SoGroup::getClassTypeId())) {
    nodes.insert(nodes.end(), node->getChildren()->begin(), node->getChildren()->end());
  }
  return nodes;
}

/// A node that was met, with what is known of it so far.
struct Met {
  std::uint64_t places = 0, parents = 0, depth = 1;
  SoNode* firstParent = nullptr;
};

class Survey {
 public:
  explicit Survey(std::vector<SoNode*> const& roots) {
    for (SoNode* root : roots) visit(root);
    for (SoNode* root : roots) {
      Met& met = m_met[root];
      met.places = addUpTo(met.places, 1);
      ++met.parents;
    }
    std::reverse(m_order.begin(), m_order.end());
    for (SoNode* node : m_order) {
      Met const from = m_met[node];
      for (SoNode* child : below(node)) {
        Met& met = m_met[child];
        met.places = addUpTo(met.places, from.places);
        ++met.parents;
        met.depth = std::max(met.depth, from.depth + 1);
        if (!met.firstParent) met.firstParent = node;
      }
    }
  }

  /// Every node before all that stands below it.
  std::vector<SoNode*> const& order() const { return m_order; }
  Met const& operator[](SoNode* node) const { return m_met.at(node); }

  SoRef<SoPath> pathTo(SoNode* node) const {
    std::vector<SoNode*> chain;
    for (SoNode* n = node; n; n = m_met.at(n).firstParent) chain.push_back(n);
    SoRef<SoPath> path(new SoPath(chain.back()));
    for (std::size_t i = chain.size() - 1; i-- > 0;) path->appendNode(chain[i]);
    return path;
  }

 private:
  struct Open {
    SoNode* node;
    std::vector<SoNode*> below;
    std::size_t next = 0;
  };

  void visit(SoNode* root) {
    if (!m_met.try_emplace(root).second) return;
    std::vector<Open> open;
    open.push_back({root, below(root)});
    while (!open.empty()) {
      Open& top = open.back();
      if (top.next == top.below.size()) {
        m_order.push_back(top.node);
        open.pop_back();
        continue;
      }
      SoNode* const child = top.below[top.next++];
      if (m_met.try_emplace(child).second) open.push_back({child, below(child)});
    }
  }

  std::unordered_map<SoNode*, Met> m_met;
  std::vector<SoNode*> m_order;
};

struct Primitives {
  std::uint64_t triangles = 0, lines = 0, points = 0;
};

/// Counts what shapes consist of. Equal meshes are made once.
class Counter {
 public:
  Counter() : m_action(SbViewportRegion()) {
    SoType const shapes = SoShape::getClassTypeId();
    m_action.addPreCallback(shapes, &Counter::before, this);
    m_action.addPostCallback(shapes, &Counter::after, this);
    m_action.addTriangleCallback(
        shapes, [](void* self, SoCallbackAction*, auto const&...) { ++counter(self).m_now.triangles; }, this);
    m_action.addLineSegmentCallback(
        shapes, [](void* self, SoCallbackAction*, auto const&...) { ++counter(self).m_now.lines; }, this);
    m_action.addPointCallback(
        shapes, [](void* self, SoCallbackAction*, auto const&...) { ++counter(self).m_now.points; }, this);
  }

  template <class Where>
  void apply(Where* where) {
    m_action.apply(where);
  }
  /// What a shape consists of at the first place where it is shown.
  std::unordered_map<SoNode const*, Primitives> const& shapes() const { return m_shapes; }
  std::uint64_t trianglesShown() const { return m_shown; }

 private:
  static Counter& counter(void* self) { return *static_cast<Counter*>(self); }

  static SoCallbackAction::Response before(void* self, SoCallbackAction* action, SoNode const* node) {
    Counter& c = counter(self);
    c.m_key = static_cast<SoShape const*>(node)->getMeshKey(action->getState());
    c.m_now = {};
    auto const known = c.m_meshes.find(c.m_key);
    if (known == c.m_meshes.end()) return SoCallbackAction::CONTINUE;
    c.m_now = known->second;
    c.enter(node);
    return SoCallbackAction::PRUNE;
  }
  static SoCallbackAction::Response after(void* self, SoCallbackAction*, SoNode const* node) {
    Counter& c = counter(self);
    c.m_meshes[c.m_key] = c.m_now;
    c.enter(node);
    return SoCallbackAction::CONTINUE;
  }
  void enter(SoNode const* node) {
    m_shown += m_now.triangles;
    m_shapes.try_emplace(node, m_now);
  }

  SoCallbackAction m_action;
  std::unordered_map<std::uint64_t, Primitives> m_meshes;
  std::unordered_map<SoNode const*, Primitives> m_shapes;
  Primitives m_now;
  std::uint64_t m_key = 0;
  std::uint64_t m_shown = 0;
};

/// As many places are walked one by one; beyond, each shape is looked at where it stands first.
constexpr std::uint64_t MOST_PLACES = 2'000'000;

}  // namespace

SceneStatistics::SceneStatistics(std::vector<SoNode*> const& roots, SoNode* scene) {
  Survey const survey(roots);
  nodes = survey.order().size();
  for (SoNode* node : survey.order()) {
    Met const& met = survey[node];
    places = addUpTo(places, met.places);
    depth = std::max(depth, met.depth);
    shared += met.parents > 1;
    ++types[typeText(node)];
  }

  Counter counter;
  bool const walkAll = places <= MOST_PLACES + 4 * nodes;
  if (walkAll) {
    counter.apply(scene);
  } else {
    for (SoNode* node : survey.order()) {
      if (node->isOfType(SoShape::getClassTypeId())) counter.apply(survey.pathTo(node).get());
    }
  }
  for (auto const& [shape, primitives] : counter.shapes()) {
    triangles += primitives.triangles;
    lines += primitives.lines;
    points += primitives.points;
    if (walkAll) continue;
    trianglesDrawn =
        addUpTo(trianglesDrawn, timesUpTo(survey[const_cast<SoNode*>(shape)].places, primitives.triangles));
  }
  if (walkAll) trianglesDrawn = counter.trianglesShown();

  SoGetBoundingBoxAction bounds{SbViewportRegion()};
  bounds.apply(scene);
  boundingBox = bounds.getBoundingBox();
}
