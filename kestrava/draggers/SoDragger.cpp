#include "kestrava/draggers/SoDragger.h"

#include <algorithm>
#include <cmath>

#include "kestrava/actions/SoHandleEventAction.h"
#include "kestrava/actions/SoRayPickAction.h"
#include "kestrava/base/SoKeepAlive.h"
#include "kestrava/events/SoKeyboardEvent.h"
#include "kestrava/events/SoLocation2Event.h"
#include "kestrava/events/SoMouseButtonEvent.h"

/// One drag, from the press of the button to its release.
struct SoDragger::Drag {
  int handle;
  SoDragGesture gesture;
  // From the root down to the dragger. Nothing is referenced, so that the graph may go; an address counts
  // only once it was found again among the children of the one above.
  std::vector<SoNode const*> place;
};

namespace {

SbName const TRANSLATION("translation"), ROTATION("rotation"), SCALE_FACTOR("scaleFactor"),
    SCALE_ORIENTATION("scaleOrientation"), CENTER("center"), ANGLE("angle");

template <class Field> Field* fieldOf(SoDragger const* dragger, SbName const& name) {
  SoField* const field = dragger->getField(name);
  return field && field->getTypeId() == Field::getClassTypeId() ? static_cast<Field*>(field) : nullptr;
}
template <class Field, class T> void take(SoDragger const* dragger, SbName const& name, T& value) {
  if (auto* field = fieldOf<Field>(dragger, name)) value = field->getValue();
}
template <class Field, class T> void give(SoDragger const* dragger, SbName const& name, T const& value) {
  auto* field = fieldOf<Field>(dragger, name);
  if (field && !(field->getValue() == value)) field->setValue(value);
}

void visitDragger(SoStateAction& action, SoDragger& dragger) {
  SbMatrix const matrix = dragger.getHandleMatrix(action.getState().get<SoDraggerElement>().around);
  SbVec3f lengths;
  for (int i = 0; i < 3; ++i) lengths[i] = SbVec3f(matrix[i]).length();
  action.enterChildren(&dragger, 1, [&action, matrix, lengths](int) {
    SoState& state = action.getState();
    state.modify<SoModelMatrixElement>().matrix.multLeft(matrix);
    state.modify<SoDraggerElement>() = {SbBox3f(), lengths};
  });
}
void offerEvent(SoHandleEventAction& action, SoDragger& dragger) { dragger.handleEvent(action); }
bool const registered = SoAction::addMethods<visitDragger, offerEvent>();

SoDragGesture::Pointer pointerOf(SoHandleEventAction& action) {
  SoEvent const& event = *action.getEvent();
  return {event.position, action.getViewportRegion(), action.getViewVolume(), event.shiftDown,
          event.ctrlDown};
}

} // namespace

SoDragger::SoDragger(Fit fit) : m_fit(fit) {}
SoDragger::~SoDragger() = default;

SbColor SoDragger::axisColor(int i) {
  return i == 0   ? SbColor(0.85f, 0.25f, 0.22f)
         : i == 1 ? SbColor(0.3f, 0.72f, 0.28f)
                  : SbColor(0.28f, 0.45f, 0.92f);
}

void SoDragger::addHandle(SoKitPart& part, Gesture::Kind kind, SbVec3f const& axis, SbColor const& color,
                          SoHandleGeometry const& geometry, float transparency) {
  auto* handle = new SoDraggerHandle;
  if (color != plainColor()) handle->color = color;
  if (transparency > 0) handle->transparency = transparency;
  geometry.addTo(handle);
  m_handles.push_back({&part, kind, axis});
  part.setValue(handle);
  // What every dragger has of itself is not written.
  part.setDefault(true);
}

void SoDragger::addHandle(SoKitPart& part, Gesture::Kind kind, SbVec3f const& axis, SbColor const& color,
                          SoHandleGeometry const& geometry, std::vector<SbVec3f> anchors) {
  addHandle(part, kind, axis, color, geometry);
  static_cast<SoDraggerHandle*>(part.getValue())->anchor.setValues(std::move(anchors));
}

SoPlacement SoDragger::getPlacement() const {
  SoPlacement placement;
  take<SoSFVec3f>(this, TRANSLATION, placement.translation);
  take<SoSFRotation>(this, ROTATION, placement.rotation);
  take<SoSFVec3f>(this, SCALE_FACTOR, placement.scaleFactor);
  take<SoSFRotation>(this, SCALE_ORIENTATION, placement.scaleOrientation);
  take<SoSFVec3f>(this, CENTER, placement.center);
  take<SoSFFloat>(this, ANGLE, placement.angle);
  return placement;
}

void SoDragger::setPlacement(SoPlacement const& placement) {
  give<SoSFVec3f>(this, CENTER, placement.center);
  give<SoSFVec3f>(this, TRANSLATION, placement.translation);
  give<SoSFRotation>(this, ROTATION, placement.rotation);
  give<SoSFVec3f>(this, SCALE_FACTOR, placement.scaleFactor);
  give<SoSFRotation>(this, SCALE_ORIENTATION, placement.scaleOrientation);
  give<SoSFFloat>(this, ANGLE, placement.angle);
}

bool SoDragger::isPlacementField(SoField const* field) const {
  SbName const name = field->getName();
  return name == TRANSLATION || name == ROTATION || name == SCALE_FACTOR || name == SCALE_ORIENTATION ||
         name == CENTER || name == ANGLE;
}

SbMatrix SoDragger::getHandleMatrix(SbBox3f const& around) const {
  SoPlacement const placement = getPlacement();
  SbMatrix const motion = placement.getMatrix();
  if (m_fit == FREE) return motion;
  SbMatrix size, place;
  if (m_fit == BOX) {
    if (around.isEmpty()) return motion;
    SbVec3f half = around.getSize() * 0.5f;
    // A flat thing gets a box with some height, a point a small one.
    float const least = std::max({half[0], half[1], half[2], 1e-3f}) * 0.05f;
    for (int i = 0; i < 3; ++i) half[i] = std::max(half[i], least) * 1.02f;
    size.setScale(half);
    place.setTranslate(around.getCenter());
    return size * place * motion;
  }
  SbMatrix const rigid = placement.getRigidMatrix();
  SoPlacement scaling = placement;
  scaling.translation = SbVec3f();
  scaling.rotation = SbRotation();
  SbMatrix const scaled = scaling.getMatrix();
  SbBox3f const box = around.isEmpty() ? SbBox3f() : around.transformed(scaled);
  SbVec3f const& factor = placement.scaleFactor;
  // Around nothing it is as large as the scaling says on the whole.
  size.setScale(std::max(
      box.isEmpty() ? std::cbrt(std::abs(factor[0] * factor[1] * factor[2])) : box.getSize().length() * 0.5f,
      1e-3f));
  bool const atCenter = box.isEmpty() || m_fit == CENTRED;
  place.setTranslate(atCenter ? placement.center : scaled.multVecMatrix(around.getCenter()));
  return size * place * rigid;
}

void SoDragger::fieldChanged(SoField* field) {
  SoBaseKit::fieldChanged(field);
  if (!isPlacementField(field)) return;
  if (m_owner) m_owner->draggerMoved(field);
  bool const isAwaited = std::any_of(m_listeners.begin(), m_listeners.end(),
                                     [](Listener const& listener) { return listener.event == VALUE; });
  if (!isAwaited) return;
  if (getRefCount() == 0) {
    call(VALUE);
    return;
  }
  afterNotification([self = SoRef<SoDragger>(this)] { self->call(VALUE); });
}

// Nobody drags the copy, whatever happens to the original.
void SoDragger::copyContents(SoFieldContainer const& from, SoCopier& copier) {
  SoBaseKit::copyContents(from, copier);
  m_minGesture = static_cast<SoDragger const&>(from).m_minGesture;
  for (size_t i = 0; i < m_handles.size(); ++i) setLook(static_cast<int>(i), SoDraggerHandle::NORMAL);
  if (!isActive.getValue()) return;
  isActive = false;
  isActive.setDefault(true);
}

void SoDragger::remove(Event event, Callback* function, void* data) {
  auto const found = std::find(m_listeners.begin(), m_listeners.end(), Listener{event, function, data});
  if (found != m_listeners.end()) m_listeners.erase(found);
}

void SoDragger::call(Event event) {
  for (Listener const& listener : std::vector<Listener>(m_listeners)) {
    bool const isThere = std::find(m_listeners.begin(), m_listeners.end(), listener) != m_listeners.end();
    if (isThere && listener.event == event) listener.function(listener.data, this);
  }
}

SbMatrix SoDragger::getStartMotionMatrix() const {
  return m_drag ? m_drag->gesture.getStart().placement.getMatrix() : getMotionMatrix();
}
SbVec3f SoDragger::getLocalStartingPoint() const {
  return m_drag ? m_drag->gesture.getStartPoint() : SbVec3f();
}
SbVec3f SoDragger::getLocalPoint() const { return m_drag ? m_drag->gesture.getPoint() : SbVec3f(); }
SbName SoDragger::getActivePart() const {
  return m_drag ? m_handles[m_drag->handle].part->getName() : SbName();
}

void SoDragger::setLook(int handle, SoDraggerHandle::Look look) {
  if (handle < 0) return;
  SoNode* const node = m_handles[handle].part->getValue();
  if (node && node->isOfType(SoDraggerHandle::getClassTypeId()))
    static_cast<SoDraggerHandle*>(node)->setLook(look);
}

int SoDragger::findHandle(SoPath const& picked, int at) const {
  if (at < 0 || at + 1 >= picked.getLength() || picked.getNode(at) != this) return -1;
  for (size_t i = 0; i < m_handles.size(); ++i) {
    if (m_handles[i].part->getValue() == picked.getNode(at + 1)) return static_cast<int>(i);
  }
  return -1;
}

// At the visited place of the dragger, or at any.
SoDragger::Hit SoDragger::getHit(SoHandleEventAction& action, bool here) const {
  SoPickedPoint const* const point = action.getPickedPoint();
  if (!point) return {};
  SoPath const& picked = *point->getPath();
  int const at = here ? action.getCurPath().getLength() - 1 : picked.findNode(this);
  Hit const hit{findHandle(picked, at), point->getPoint()};
  if (hit.handle < 0) return hit;
  for (int i = 1; here && i <= at; ++i) {
    if (picked.getNode(i) != action.getCurPath().getNode(i) ||
        picked.getIndex(i) != action.getCurPath().getIndex(i))
      return {};
  }
  return lookThrough(action, picked, at, hit);
}

// What is seen through a translucent handle can be taken hold of as well.
SoDragger::Hit SoDragger::lookThrough(SoHandleEventAction& action, SoPath const& picked, int at,
                                      Hit const& hit) const {
  auto const isClear = [this](int handle) {
    auto const* node = dynamic_cast<SoDraggerHandle const*>(m_handles[handle].part->getValue());
    return node && node->transparency.getValue() > 0;
  };
  if (!isClear(hit.handle)) return hit;
  SbLine const ray = action.getViewVolume().projectPointToLine(
      action.getViewportRegion().normalize(action.getEvent()->position));
  SoRayPickAction pick(action.getViewportRegion());
  pick.setRay(ray.getPosition(), ray.getDirection());
  pick.setPickAll(true);
  SoRef<SoPath> const self(picked.copy(0, at + 1));
  pick.apply(self.get());
  for (SoPickedPoint const& point : pick.getPickedPoints()) {
    int const handle = findHandle(*point.getPath(), at);
    if (handle >= 0 && !isClear(handle)) return {handle, point.getPoint()};
  }
  return hit;
}

void SoDragger::handleEvent(SoHandleEventAction& action) {
  SoEvent const& event = *action.getEvent();
  SoKeepAlive const self(this);
  if (action.getGrabber() == this) {
    moveDrag(action);
    return;
  }
  if (SoMouseButtonEvent::isPress(event, SoMouseButtonEvent::LEFT)) {
    Hit const hit = getHit(action, true);
    if (hit.handle >= 0 && startDrag(action, hit)) action.setHandled();
  } else if (event.isOfType(SoLocation2Event::getClassTypeId()) && !m_drag) {
    pointAt(action);
  }
}

void SoDragger::pointAt(SoHandleEventAction& action) {
  // A pointer that has left the view points at nothing, whatever there is beside the picture.
  SbVec2f const at = action.getViewportRegion().normalize(action.getEvent()->position);
  bool const isInView = at[0] >= 0 && at[0] <= 1 && at[1] >= 0 && at[1] <= 1;
  int const handle = isInView ? getHit(action, false).handle : -1;
  if (handle == m_pointedAt) return;
  setLook(std::exchange(m_pointedAt, handle), SoDraggerHandle::NORMAL);
  setLook(handle, SoDraggerHandle::POINTED_AT);
}

bool SoDragger::startDrag(SoHandleEventAction& action, Hit const& hit) {
  int const handle = hit.handle;
  // Another action's grab may have been lost without a word.
  if (m_drag) endDrag(action);
  SoDragGesture::Start start;
  start.kind = m_handles[handle].kind;
  start.axis = m_handles[handle].axis;
  start.placement = getPlacement();
  start.fromHandles = getHandleMatrix(action.getState().get<SoDraggerElement>().around);
  start.toRoot = action.getState().get<SoModelMatrixElement>().matrix;
  start.picked = hit.point;
  start.pointer = pointerOf(action);
  start.minPixels = m_minGesture;
  auto drag = std::make_unique<Drag>();
  drag->handle = handle;
  if (!drag->gesture.begin(start)) return false;
  SoPath const& path = action.getCurPath();
  for (int i = 0; i < path.getLength(); ++i) drag->place.push_back(path.getNode(i));
  m_drag = std::move(drag);
  action.setGrabber(this);
  setLook(m_pointedAt, SoDraggerHandle::NORMAL);
  m_pointedAt = -1;
  setLook(handle, SoDraggerHandle::ACTIVE);
  isActive = true;
  call(START);
  return true;
}

bool SoDragger::isStillThere(SoHandleEventAction& action) const {
  std::vector<SoNode const*> const& place = m_drag->place;
  SoNode const* node = action.getPickRoot();
  if (node != place.front()) return false;
  for (size_t i = 1; i < place.size(); ++i) {
    SoChildList const* const children = node->getChildren();
    if (!children || children->find(place[i]) < 0) return false;
    node = place[i];
  }
  return true;
}

void SoDragger::moveDrag(SoHandleEventAction& action) {
  SoEvent const& event = *action.getEvent();
  action.setHandled();
  if (!m_drag || !isStillThere(action)) {
    endDrag(action);
    return;
  }
  if (SoKeyboardEvent::isPress(event, SoKeyboardEvent::ESCAPE)) {
    setPlacement(SoPlacement(m_drag->gesture.getStart().placement));
    call(MOTION);
    endDrag(action);
    return;
  }
  bool const isRelease = SoMouseButtonEvent::isRelease(event, SoMouseButtonEvent::LEFT);
  if (!isRelease && !event.isOfType(SoLocation2Event::getClassTypeId())) return;
  SoPlacement placement;
  if (m_drag->gesture.move(pointerOf(action), placement)) {
    setPlacement(placement);
    // What is told of the change may have ended the drag.
    if (m_drag) call(MOTION);
  }
  bool const isThere = m_drag && isStillThere(action);
  if (!isRelease && isThere) return;
  endDrag(action);
  if (isThere && !m_drag) pointAt(action);
}

void SoDragger::endDrag(SoHandleEventAction& action) {
  action.releaseGrabber(this);
  std::unique_ptr<Drag> const drag = std::exchange(m_drag, nullptr);
  if (!drag) return;
  setLook(drag->handle, SoDraggerHandle::NORMAL);
  isActive = false;
  isActive.setDefault(true);
  call(FINISH);
}
