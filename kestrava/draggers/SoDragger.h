#pragma once

#include <memory>
#include <vector>

#include "kestrava/base/SbBox3f.h"
#include "kestrava/draggers/SoDragGesture.h"
#include "kestrava/draggers/SoDraggerHandle.h"
#include "kestrava/draggers/SoHandleGeometry.h"
#include "kestrava/fields/SoSFBool.h"
#include "kestrava/fields/SoSFFloat.h"
#include "kestrava/fields/SoSFRotation.h"
#include "kestrava/fields/SoSFVec3f.h"
#include "kestrava/kits/SoBaseKit.h"

class SoHandleEventAction;
class SoPath;
class SoStateAction;

/// Who holds a dragger and takes part in its changes.
class SoDraggerOwner {
 public:
  /// A field that says where the dragger has brought things was set; nobody else has heard of it yet.
  virtual void draggerMoved(SoField* field) = 0;

 protected:
  ~SoDraggerOwner() = default;
};

/// The part of a dragger that holds one of its handles.
class SoHandlePart : public SoKitPart {
 public:
  SoHandlePart(SoBaseKit* kit, char const* name)
      : SoKitPart(kit, name, SoSeparator::getClassTypeId(), SoDraggerHandle::getClassTypeId(), "this") {}
};

/// Base of the kits that a user moves in the view to change something.
///
/// Its parts are its handles. While a handle is dragged, the pointer sets the dragger's fields
/// (`translation`, `rotation`, `scaleFactor`, whichever it has) in the coordinates that the dragger stands
/// in; a program that sets them moves the handles. The left button drags. Shift keeps to one axis, Ctrl moves
/// across or scales about the opposite point, Escape puts everything back as it was. A program may put other
/// geometry into a part; below an SoDraggerHandle it shows in the dragger's colours. A dragger leaves the
/// traversal state as it was.
class SoDragger : public SoBaseKit {
  SO_ABSTRACT_NODE(SoDragger, SoBaseKit)
  using Callback = void(void* data, SoDragger* dragger);

  SoSFBool isActive{this, "isActive", false, SoField::READ_ONLY}; ///< true while it is dragged

  // Functions are called in the order they were added; they may remove themselves, and take the dragger out
  // of the graph or release it. Adding one twice calls it twice, removing takes away one.
  void addStartCallback(Callback* function, void* data = nullptr) { add(START, function, data); }
  void removeStartCallback(Callback* function, void* data = nullptr) { remove(START, function, data); }
  /// Called after each movement, when the fields are set.
  void addMotionCallback(Callback* function, void* data = nullptr) { add(MOTION, function, data); }
  void removeMotionCallback(Callback* function, void* data = nullptr) { remove(MOTION, function, data); }
  /// Called when a drag ends, however it ends.
  void addFinishCallback(Callback* function, void* data = nullptr) { add(FINISH, function, data); }
  void removeFinishCallback(Callback* function, void* data = nullptr) { remove(FINISH, function, data); }
  /// Called whenever a field that says where things are brought was set, by a drag or by a program.
  void addValueChangedCallback(Callback* function, void* data = nullptr) { add(VALUE, function, data); }
  void removeValueChangedCallback(Callback* function, void* data = nullptr) { remove(VALUE, function, data); }

  /// What the fields say.
  SoPlacement getPlacement() const;
  /// Sets the fields that the dragger has and that change; each notifies.
  void setPlacement(SoPlacement const& placement);
  /// The transformation that the fields make.
  SbMatrix getMotionMatrix() const { return getPlacement().getMatrix(); }
  /// The same at the start of the drag; the present one while nothing is dragged.
  SbMatrix getStartMotionMatrix() const;
  /// Where the handle was taken hold of and where the pointer holds it now, in the coordinates that the
  /// dragger stands in; the origin while nothing is dragged.
  SbVec3f getLocalStartingPoint() const;
  SbVec3f getLocalPoint() const;
  /// The name of the part that is dragged, empty while nothing is.
  SbName getActivePart() const;

  /// Pixels that the pointer moves before it chooses an axis for Shift; 8 unless set.
  void setMinGesture(int pixels) { m_minGesture = pixels; }
  int getMinGesture() const { return m_minGesture; }

  /// From the handles' space to the one the dragger stands in, when it surrounds a box.
  SbMatrix getHandleMatrix(SbBox3f const& around) const;

  /// For the holder of a dragger; null: nobody.
  void setOwner(SoDraggerOwner* owner) { m_owner = owner; }
  SoDraggerOwner* getOwner() const { return m_owner; }

  /// The method for events.
  void handleEvent(SoHandleEventAction& action);

 protected:
  /// How the handles follow what the dragger surrounds and how it is scaled.
  enum Fit {
    FREE,    ///< scaled as the fields say
    BOX,     ///< fills the box, scaled with it
    ROUND,   ///< as large as the ball around the box, never distorted
    CENTRED, ///< the same around the point of the field `center`
  };
  using Gesture = SoDragGesture;
  static inline SbVec3f const X{1, 0, 0}, Y{0, 1, 0}, Z{0, 0, 1};
  static SbVec3f const& axisOf(int i) { return i == 0 ? X : i == 1 ? Y : Z; }
  /// Red, green and blue for x, y and z.
  static SbColor axisColor(int i);
  /// Of handles that belong to no axis, and of large translucent ones.
  static SbColor plainColor() { return SbColor(0.15f, 0.6f, 0.68f); }
  static SbColor paleColor() { return SbColor(0.78f, 0.8f, 0.84f); }

  explicit SoDragger(Fit fit = FREE);
  ~SoDragger() override;
  /// For constructors: makes a part and says what dragging it does. The axis is in the handles' space.
  void addHandle(SoKitPart& part, Gesture::Kind kind, SbVec3f const& axis, SbColor const& color,
                 SoHandleGeometry const& geometry, float transparency = 0);
  /// The same geometry at several places, see SoDraggerHandle::anchor.
  void addHandle(SoKitPart& part, Gesture::Kind kind, SbVec3f const& axis, SbColor const& color,
                 SoHandleGeometry const& geometry, std::vector<SbVec3f> anchors);
  void fieldChanged(SoField* field) override;
  void copyContents(SoFieldContainer const& from, SoCopier& copier) override;

 private:
  enum Event { START, MOTION, FINISH, VALUE };
  struct Listener {
    Event event;
    Callback* function;
    void* data;
    friend bool operator==(Listener const&, Listener const&) = default;
  };
  struct Handle {
    SoKitPart* part;
    Gesture::Kind kind;
    SbVec3f axis;
  };
  struct Drag;
  void add(Event event, Callback* function, void* data) { m_listeners.push_back({event, function, data}); }
  void remove(Event event, Callback* function, void* data);
  void call(Event event);
  bool isPlacementField(SoField const* field) const;
  void setLook(int handle, SoDraggerHandle::Look look);
  /// What lies under the pointer: a handle, -1 for none, and the point in the coordinates of the root.
  struct Hit {
    int handle = -1;
    SbVec3f point;
  };
  int findHandle(SoPath const& picked, int at) const;
  Hit getHit(SoHandleEventAction& action, bool here) const;
  Hit lookThrough(SoHandleEventAction& action, SoPath const& picked, int at, Hit const& hit) const;
  /// Lights up the handle under the pointer.
  void pointAt(SoHandleEventAction& action);
  bool startDrag(SoHandleEventAction& action, Hit const& hit);
  void moveDrag(SoHandleEventAction& action);
  void endDrag(SoHandleEventAction& action);
  bool isStillThere(SoHandleEventAction& action) const;

  std::vector<Handle> m_handles;
  std::vector<Listener> m_listeners;
  std::unique_ptr<Drag> m_drag;
  SoDraggerOwner* m_owner = nullptr;
  int m_pointedAt = -1;
  int m_minGesture = 8;
  Fit m_fit;
};
