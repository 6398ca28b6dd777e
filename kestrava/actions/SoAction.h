#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "kestrava/actions/SoState.h"
#include "kestrava/base/SoPath.h"
#include "kestrava/base/SoType.h"

class SoChildList;
class SoNode;
class SoSwitch;

/// Declares an action class; stands first in it.
#define SO_ACTION(Class, Parent)                                                                 \
 public:                                                                                         \
  static SoType getClassTypeId() {                                                               \
    static SoType const type = SoType::createType(Parent::getClassTypeId(), soTypeName(#Class)); \
    return type;                                                                                 \
  }                                                                                              \
  SoType getTypeId() const override { return getClassTypeId(); }                                 \
                                                                                                 \
 private:

/// Something done to every node of a graph, in order.
///
/// What an action does at a node is a method registered for the pair of action type and node type. Looked up
/// for a node: its own type, then its base types; at each of them this action, then its base actions. A node
/// type without a method is passed by. The traversal keeps its own stack, so depth is limited by memory only:
/// a method never calls itself for children but says which are to be entered when it returns.
class SoAction {
 public:
  using Method = void (*)(SoAction* action, SoNode* node);

  SoAction();
  virtual ~SoAction();
  SoAction(SoAction const&) = delete;
  SoAction& operator=(SoAction const&) = delete;

  static SoType getClassTypeId();
  virtual SoType getTypeId() const = 0;
  bool isOfType(SoType type) const { return getTypeId().isDerivedFrom(type); }

  /// Registers what an action does at nodes of a type; a later registration for the same pair wins. Any time,
  /// also at static-initialisation time; not while an action runs.
  static void addMethod(SoType actionType, SoType nodeType, Method method);
  /// The same for functions `void f(ActionClass&, NodeClass&)`, whose parameters say which types are meant.
  template <auto... functions> static bool addMethods() {
    (MethodOf<functions>::add(functions), ...);
    return true;
  }

  /// Applies the action to a graph. The root is referenced meanwhile.
  void apply(SoNode* root);
  /// Applies the action along a path and to everything below its tail: beside the path only nodes that
  /// change the state for it are visited.
  void apply(SoPath* path);

  // For methods, about the node that is visited.
  SoState& getState() { return m_state; }
  /// Enters children first..last of the node once the method has returned; `last` -1 is the last child. A
  /// scope undoes on leaving what the children did to the state. One call a visit.
  void enterChildren(SoNode* node, bool scoped, int first = 0, int last = -1);
  /// The same several times over; `prepare(pass)` is called before each pass inside its own scope.
  void enterChildren(SoNode* node, int passes, std::function<void(int pass)> prepare);
  /// Enters what a switch shows.
  static void enterChosenChildren(SoAction& action, SoSwitch& group);
  /// Calls a function when everything below the node has been visited, before the scope is undone. Several
  /// functions are called in the order they were given.
  void whenLeft(std::function<void()> function);
  /// Visits a node that a field holds (a vertex property, a kit's part) in the same way, at once and
  /// without its children.
  void visitHeld(SoNode* node);
  /// From the root of the traversal to the node that is visited; good until the method returns. Made when it
  /// is asked for.
  SoPath const& getCurPath() const;
  /// Ends the traversal after this method.
  void terminate() { m_terminated = true; }
  bool hasTerminated() const { return m_terminated; }
  /// The path that the action is applied along, null when it is applied to a whole graph.
  SoPath* getAppliedPath() const { return m_along; }

 protected:
  /// Called before and after a traversal.
  virtual void begin() {}
  virtual void end() {}
  /// Calls the node's method; subclasses may look on.
  virtual void visit(SoNode* node);

 private:
  template <auto function> struct MethodOf {
    template <class Action, class Node> static void add(void (*)(Action&, Node&)) {
      addMethod(Action::getClassTypeId(), Node::getClassTypeId(), [](SoAction* action, SoNode* node) {
        function(static_cast<Action&>(*action), static_cast<Node&>(*node));
      });
    }
  };
  struct Extra;
  struct Frame;
  struct MethodTable;
  /// What of a subgraph is visited.
  enum class Part : unsigned char { ALL, ON_PATH, STATE_CHANGES };
  /// A node that is visited and its position among its parent's children.
  struct Visited {
    SoNode* node;
    int index;
  };

  static std::shared_ptr<MethodTable const> tableFor(SoType actionType);
  void run(SoNode* root, SoPath* along);
  void arrive(SoNode* node, int index, Part part, int step = 0);
  void stepInto(Frame& frame);
  void leave();
  void popFrame();
  Frame& asked();
  Extra& askedExtra();

  SoState m_state;
  SoPath* m_along = nullptr;
  std::vector<Frame> m_frames; // from the root down; the last one may still be filled by the method that runs
  std::vector<Visited> m_visited; // below the frames: the node whose method runs, and those it holds
  bool m_asks = false;            // the method that runs wants its children entered, or to be called later
  int m_numAsked = 0;             // frames that are still being filled
  std::shared_ptr<MethodTable const> m_table;
  bool m_terminated = false;
  SoRef<SoPath> m_path;
  mutable int m_pathFrames = 0; // so many nodes of m_path stand for frames that are still there
};
