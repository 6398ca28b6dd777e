#pragma once

#include <algorithm>
#include <climits>
#include <memory>
#include <utility>
#include <vector>

/// The outermost scopes whose elements were read and modified over some time: who keeps a result made inside
/// a scope must know whether it depends on what lies outside, or changes it. A default that is read counts as
/// depth 0.
struct SoStateUse {
  int lowestRead = INT_MAX;
  int lowestModified = INT_MAX;
  void merge(SoStateUse const& other) {
    lowestRead = std::min(lowestRead, other.lowestRead);
    lowestModified = std::min(lowestModified, other.lowestModified);
  }
};

/// What the nodes met so far mean for the nodes to come. An element is a plain struct whose member
/// initialisers are its defaults; any struct can be one, also a plug-in's.
///
///     state.modify<SoDrawStyleElement>().lineWidth = 2;
///     float width = state.get<SoDrawStyleElement>().lineWidth;
///
/// push() and pop() bracket a scope: what is modified inside is undone by pop(). An element is copied
/// only when it is modified for the first time in a scope.
class SoState {
 public:
  SoState() = default;
  SoState(SoState const&) = delete;
  SoState& operator=(SoState const&) = delete;

  /// Notes the reading, see Use.
  template <class Element> Element const& get() const {
    HolderBase const* const holder = top(indexOf<Element>());
    m_use.lowestRead = std::min(m_use.lowestRead, holder ? holder->depth : 0);
    return contents<Element>(holder);
  }

  /// The same without noting it, for what does not depend on the answer.
  template <class Element> Element const& peek() const { return contents<Element>(top(indexOf<Element>())); }

  template <class Element> Element& modify() {
    int const index = indexOf<Element>();
    if (index >= static_cast<int>(m_stacks.size())) m_stacks.resize(index + 1);
    m_use.lowestModified = std::min(m_use.lowestModified, m_depth);
    Stack& stack = m_stacks[index];
    if (stack.used == 0 || stack.holders[stack.used - 1]->depth < m_depth) {
      // Holders stay when a scope ends: the next scope that needs one assigns to it instead of allocating.
      if (stack.used == stack.holders.size()) {
        auto added = std::make_unique<Holder<Element>>(peek<Element>());
        stack.holders.push_back(std::move(added));
      } else {
        static_cast<Holder<Element>&>(*stack.holders[stack.used]).element = peek<Element>();
      }
      stack.holders[stack.used++]->depth = m_depth;
      m_modified.push_back({m_depth, index});
    }
    return static_cast<Holder<Element>&>(*stack.holders[stack.used - 1]).element;
  }

  void push() { ++m_depth; }
  void pop() {
    while (!m_modified.empty() && m_modified.back().depth == m_depth) {
      --m_stacks[m_modified.back().index].used;
      m_modified.pop_back();
    }
    --m_depth;
  }
  int getDepth() const { return m_depth; }

  using Use = SoStateUse;
  /// Starts noting anew from `use`; answers what was noted so far.
  Use exchangeUse(Use const& use = Use()) { return std::exchange(m_use, use); }
  Use const& getUse() const { return m_use; }
  /// Notes a dependence on something outside of any scope.
  void noteOutsideRead() const { m_use.lowestRead = 0; }

 private:
  struct HolderBase {
    virtual ~HolderBase() = default;
    int depth = 0;
  };
  template <class Element> struct Holder : HolderBase {
    explicit Holder(Element const& from) : element(from) {}
    Element element;
  };
  struct Stack {
    std::vector<std::unique_ptr<HolderBase>> holders;
    size_t used = 0;
  };
  struct Modified {
    int depth;
    int index;
  };
  static int nextIndex();
  template <class Element> static int indexOf() {
    static int const index = nextIndex();
    return index;
  }
  HolderBase const* top(int index) const {
    if (index >= static_cast<int>(m_stacks.size()) || m_stacks[index].used == 0) return nullptr;
    return m_stacks[index].holders[m_stacks[index].used - 1].get();
  }
  template <class Element> static Element const& contents(HolderBase const* holder) {
    if (holder) return static_cast<Holder<Element> const&>(*holder).element;
    static Element const defaults{};
    return defaults;
  }

  std::vector<Stack> m_stacks;
  std::vector<Modified> m_modified;
  mutable Use m_use;
  int m_depth = 0;
};
