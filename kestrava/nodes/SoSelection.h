#pragma once

#include <optional>
#include <vector>

#include <vector>

#include "kestrava/base/SoPath.h"
#include "kestrava/fields/SoSFEnum.h"
#include "kestrava/nodes/SoSeparator.h"

class SoSelection;
using SoSelectionPathCB = void(void* data, SoPath* path);
using SoSelectionClassCB = void(void* data, SoSelection* selection);

/// A separator that keeps a list of selected paths. A path starts at the selection node; what comes before it
/// on a longer path is cut off.
///
/// select(), deselect() and toggle() are for programs: they do what they say whatever the policy is. invoke()
/// is what a pick by a user does, as the policy says. Callbacks run synchronously, after the list has
/// changed; the change callbacks come last.
class SoSelection : public SoSeparator {
  SO_NODE(SoSelection, SoSeparator)
  enum Policy {
    SINGLE, ///< a pick replaces the selection; a pick of nothing clears it
    TOGGLE, ///< a pick adds or removes
    SHIFT,  ///< as SINGLE, with the shift key as TOGGLE
  };
  static std::vector<SoEnumSymbol> const& policies() {
    static std::vector<SoEnumSymbol> const symbols{{"SINGLE", SINGLE}, {"TOGGLE", TOGGLE}, {"SHIFT", SHIFT}};
    return symbols;
  }

  SoSFEnum policy{this, "policy", SHIFT, policies()};

  /// Refused, with a debug error, when the path does not run through this node. A selected path is not
  /// selected again.
  void select(SoPath* path);
  void deselect(SoPath* path);
  void deselect(int which);
  void toggle(SoPath* path);
  void deselectAll();
  bool isSelected(SoPath* path) const { return findPath(path) >= 0; }
  /// What a pick of `path` does; null is a pick of nothing.
  void invoke(SoPath* path, bool shiftDown = false);

  int getNumSelected() const { return static_cast<int>(m_paths.size()); }
  /// A path of the caller's own. It ends above a node that has left the graph since it was selected; `isWhole`
  /// then is false.
  SoRef<SoPath> getPath(int which, bool* isWhole = nullptr) const;

  void addSelectionCallback(SoSelectionPathCB* function, void* data = nullptr);
  void removeSelectionCallback(SoSelectionPathCB* function, void* data = nullptr);
  void addDeselectionCallback(SoSelectionPathCB* function, void* data = nullptr);
  void removeDeselectionCallback(SoSelectionPathCB* function, void* data = nullptr);
  void addChangeCallback(SoSelectionClassCB* function, void* data = nullptr);
  void removeChangeCallback(SoSelectionClassCB* function, void* data = nullptr);

 protected:
  ~SoSelection() override = default;

 private:
  template <class Function> struct Callback {
    Function* function;
    void* data;
    friend bool operator==(Callback const&, Callback const&) = default;
  };
  template <class Function, class Argument>
  static void callAll(std::vector<Callback<Function>> const& callbacks, Argument* argument);
  /// Selecting takes no references: the nodes are looked up again, and never followed before they were found.
  struct Step {
    SoNode const* node;
    int index;
    friend bool operator==(Step const&, Step const&) = default;
  };
  using Steps = std::vector<Step>;
  /// The part of a path below this node; nothing when it does not run through it.
  std::optional<Steps> belowThis(SoPath* path) const;
  int findPath(SoPath* path) const;
  void add(Steps below);
  void remove(int which);
  void tellChange();

  std::vector<Steps> m_paths; // below this node
  std::vector<Callback<SoSelectionPathCB>> m_selectionCallbacks, m_deselectionCallbacks;
  std::vector<Callback<SoSelectionClassCB>> m_changeCallbacks;
};
