#pragma once

#include <cstdint>
#include <unordered_set>
#include <vector>

#include "kestrava/actions/SoAction.h"
#include "kestrava/base/SbName.h"

/// Looks for nodes: a node, all of a type, all of a name, or what fits several of these. Kits are entered
/// only while SoBaseKit::searchingChildren is on.
///
/// Subgraphs that are met several times and hold no match are searched once.
class SoSearchAction : public SoAction {
  SO_ACTION(SoSearchAction, SoAction)
 public:
  enum Interest { FIRST, LAST, ALL };

  /// Null looks for any node again.
  void setNode(SoNode* node) { m_node = SoRef<SoNode>(node); }
  SoNode* getNode() const { return m_node; }
  /// `derived`: nodes of derived types count too. The bad type looks for any type again.
  void setType(SoType type, bool derived = true) {
    m_type = type;
    m_derived = derived;
  }
  /// The empty name looks for any name again.
  void setName(SbName const& name) { m_name = name; }
  /// FIRST unless set.
  void setInterest(Interest interest) { m_interest = interest; }
  Interest getInterest() const { return m_interest; }
  /// Whether the children that a switch does not show are searched too; off unless set.
  void setSearchingAll(bool on) { m_searchingAll = on; }
  bool isSearchingAll() const { return m_searchingAll; }
  /// Forgets what was found and what was asked for.
  void reset();

  bool isFound() const { return !m_paths.empty(); }
  /// From the root of the search to the match; null when there is none. With ALL the first one.
  SoPath* getPath() const { return isFound() ? m_paths.front().get() : nullptr; }
  std::vector<SoRef<SoPath>> const& getPaths() const { return m_paths; }

 protected:
  void begin() override;
  void end() override;
  void visit(SoNode* node) override;

 private:
  bool isMatch(SoNode const* node) const;
  void findWaysUp();

  SoRef<SoNode> m_node;
  SoType m_type;
  bool m_derived = true;
  SbName m_name;
  Interest m_interest = FIRST;
  bool m_searchingAll = false;
  std::vector<SoRef<SoPath>> m_paths;

  std::uint64_t m_numFound = 0;
  bool m_knowsWays = false;
  std::unordered_set<SoNode const*> m_ways; // the candidates and everything above them
  struct Barren {
    SoNode const* node;
    int shownChild; // what a switch that inherits would show
    friend bool operator==(Barren const&, Barren const&) = default;
  };
  struct BarrenHash {
    size_t operator()(Barren const& b) const {
      return std::hash<void const*>()(b.node) ^ static_cast<size_t>(b.shownChild) * 0x9e3779b9u;
    }
  };
  std::unordered_set<Barren, BarrenHash> m_barren; // shared nodes below which nothing is found
};
