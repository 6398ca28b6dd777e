#pragma once

#include <optional>
#include <vector>

#include "kestrava/base/SbVec2s.h"
#include "kestrava/base/SoPath.h"
#include "kestrava/fields/SoSFEnum.h"
#include "kestrava/nodes/SoSeparator.h"

class SoHandleEventAction;
class SoPickedPoint;
class SoSelection;
using SoSelectionPathCB = void(void* data, SoPath* path);
using SoSelectionClassCB = void(void* data, SoSelection* selection);
using SoSelectionPickCB = SoPath*(void* data, SoPickedPoint const* point);

/// A separator that keeps a list of selected paths. A path starts at the selection node; what comes before it
/// on a longer path is cut off.
///
/// select(), deselect() and toggle() are for programs: they do what they say whatever the policy is. invoke()
/// is what a pick by a user does, as the policy says. Callbacks run synchronously, after the list has
/// changed; the change callbacks come last.
///
/// A click with the left button that no node below handles is such a pick: press and release a few pixels apart on the
/// same shape, or on nothing. What lies in another part of the scene counts as nothing here. The release is handled
/// when it picked something below this node; a press never is.
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
  /// False: clicks pass by, as for a selection that programs alone change.
  void setTakingClicks(bool on) { m_takesClicks = on; }
  bool isTakingClicks() const { return m_takesClicks; }

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
  /// Start functions are called before a pick changes the selection, finish functions after everything else.
  void addStartCallback(SoSelectionClassCB* function, void* data = nullptr);
  void removeStartCallback(SoSelectionClassCB* function, void* data = nullptr);
  void addFinishCallback(SoSelectionClassCB* function, void* data = nullptr);
  void removeFinishCallback(SoSelectionClassCB* function, void* data = nullptr);
  /// Says what a click selects: a path through this node, which may be new (count 0), or null for nothing. A path that
  /// runs elsewhere is refused with a debug error. Null: the path to the picked shape.
  void setPickFilterCallback(SoSelectionPickCB* function, void* data = nullptr);

  /// The method for events.
  void handleEvent(SoHandleEventAction& action);

 protected:
  ~SoSelection() override = default;
  void copyContents(SoFieldContainer const& from, SoCopier& copier) override;

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
  bool isChangedBy(SoPath* path, bool toggles) const;

  /// Where the left button went down, and on what.
  struct Press {
    SbVec2s position;
    std::optional<Steps> below;
  };
  void pressed(SoHandleEventAction& action);
  void released(SoHandleEventAction& action, Press const& press);

  std::vector<Steps> m_paths; // below this node
  std::optional<Press> m_press;
  bool m_takesClicks = true;
  SoSelectionPickCB* m_pickFilter = nullptr;
  void* m_pickFilterData = nullptr;
  std::vector<Callback<SoSelectionPathCB>> m_selectionCallbacks, m_deselectionCallbacks;
  std::vector<Callback<SoSelectionClassCB>> m_changeCallbacks, m_startCallbacks, m_finishCallbacks;
};
