#include "kestrava/nodes/SoManipChild.h"

#include <cmath>

#include "kestrava/actions/SoGetBoundingBoxAction.h"
#include "kestrava/base/SoError.h"
#include "kestrava/base/SoKeepAlive.h"
#include "kestrava/base/SoPath.h"
#include "kestrava/kits/SoBaseKit.h"
#include "kestrava/kits/SoNodeKitListPart.h"
#include "kestrava/nodes/SoGroup.h"

void SoManipChild::release() {
  SoDragger* const dragger = getDragger();
  if (dragger && dragger->getOwner() == this) dragger->setOwner(nullptr);
  m_list.truncate(0);
}

void SoManipChild::hold(SoDragger* dragger) {
  SoRef<SoDragger> const kept(dragger);
  release();
  if (!dragger) return;
  m_list.append(dragger);
  dragger->setOwner(this);
  manipChanged(nullptr);
}

void SoManipChild::adopt() {
  if (SoDragger* const dragger = getDragger()) dragger->setOwner(this);
}

bool SoManipChild::setDragger(SoDragger* dragger) {
  if (dragger == getDragger()) return true;
  char const* reason = nullptr;
  if (dragger && dragger->getOwner()) reason = "another manipulator holds it";
  if (dragger && SoNode::closesCircle(m_manip, dragger)) reason = "it contains the manipulator";
  if (reason) {
    SoDebugError::post("SoManip::setDragger", "%s: %s", dragger->getTypeId().getName().c_str(), reason);
    return false;
  }
  hold(dragger);
  m_manip->touch();
  return true;
}

void SoManipChild::manipChanged(SoField* field) {
  SoDragger* const dragger = getDragger();
  if (!dragger || m_busy) return;
  m_busy = true;
  m_exchange.toDragger(m_manip, dragger, field);
  m_busy = false;
}

void SoManipChild::draggerMoved(SoField* field) {
  if (m_busy) return;
  m_busy = true;
  m_exchange.toManip(m_manip, getDragger(), field);
  m_busy = false;
}

void SoCopyToSameName(SoField* field, SoFieldContainer* container) {
  SoField* const own = container->getField(field->getName());
  if (own && own->getTypeId() == field->getTypeId() && !own->isSame(*field)) own->copyFrom(*field);
}

namespace {

/// Takes value, flags and connections of a field over from one of the same name and type.
void takeOver(SoField* from, SoField* to) {
  SoField* const source = from->getConnectedField();
  bool const isDefault = from->isDefault();
  if (!to->isSame(*from)) to->copyFrom(*from);
  to->setDefault(isDefault);
  to->setIgnored(from->isIgnored());
  if (source) {
    from->disconnect();
    to->connectFrom(source);
  }
  for (SoField* follower : from->getFollowers()) {
    if (follower != to) follower->connectFrom(to);
  }
}

/// The fields that nodes of a type have, whatever more the two have.
void takeOverFields(SoNode* from, SoNode* to, SoType plain) {
  SoRef<SoNode> const prototype(SoNode::create(plain));
  for (int i = 0; prototype && i < prototype->getNumFields(); ++i) {
    SbName const name = prototype->getFieldData()->getFieldName(i);
    SoField *const source = from->getField(name), *const target = to->getField(name);
    if (source && target && target->getTypeId() == source->getTypeId()) takeOver(source, target);
  }
}

bool putInPlace(SoNode* parent, int index, SoNode* old, SoNode* wanted) {
  if (parent->isOfType(SoGroup::getClassTypeId())) {
    auto* group = static_cast<SoGroup*>(parent);
    group->replaceChild(index, wanted);
    return group->getChild(index) == wanted;
  }
  if (!parent->isOfType(SoBaseKit::getClassTypeId())) return false;
  auto* kit = static_cast<SoBaseKit*>(parent);
  SbString const part = kit->getPartString(old);
  return !part.empty() && kit->setPart(part, wanted);
}

/// The kit whose part a child of a kit's inner group is, null when none: the group itself would not tell the
/// kit.
SoBaseKit* kitAbove(SoPath const& path, SoNode* node) {
  for (int i = path.getLength() - 2; i >= 0; --i) {
    if (!path.getNode(i)->isOfType(SoBaseKit::getClassTypeId())) continue;
    auto* kit = static_cast<SoBaseKit*>(path.getNode(i));
    return kit->getPartString(node).empty() ? nullptr : kit;
  }
  return nullptr;
}

} // namespace

bool SoManipChild::exchangeTail(SoPath* path, SoNode* wanted, SoType plain, char const* caller) {
  SoRef<SoNode> const old(path ? path->getTail() : nullptr);
  int const last = path ? path->getLength() - 1 : -1;
  SoNode* const parent = last > 0 ? path->getNode(last - 1) : nullptr;
  int index = -1;
  char const* reason = nullptr;
  if (!parent) {
    reason = "the path has no node below a parent";
  } else if (!old->isOfType(plain)) {
    reason = "the path ends at a node of another type";
  } else if (old == wanted) {
    reason = "the node is there already";
  } else if (SoChildList const* children = parent->getChildren()) {
    index = path->getIndex(last);
    bool const isThere = index >= 0 && index < children->getLength() && (*children)[index] == old;
    if (!isThere) index = children->find(old);
    if (index < 0) reason = "the path leads through what is not there any more";
  }
  SoKeepAlive const kept(wanted);
  if (!reason) {
    // The values first: the scene never shows the new node without them.
    takeOverFields(old, wanted, plain);
    SoBaseKit* const kit = kitAbove(*path, old);
    bool const done =
        kit ? kit->setPart(kit->getPartString(old), wanted) : putInPlace(parent, index, old, wanted);
    if (!done) reason = "the parent does not take it";
  }
  if (reason) {
    SoDebugError::post(caller, "nothing was replaced: %s", reason);
    return false;
  }
  path->pop();
  SoChildList const* const children = parent->getChildren();
  if (children && index < children->getLength() && (*children)[index] == wanted) {
    path->appendNode(wanted, index);
  } else {
    path->appendNode(wanted);
  }
  return true;
}

namespace {

/// The bounds of the children behind one of a group.
class FollowersAction : public SoGetBoundingBoxAction {
 public:
  FollowersAction(SoStateAction& outer, int first)
      : SoGetBoundingBoxAction(outer.getViewportRegion()), m_outer(outer.getState()), m_first(first) {}

 protected:
  void begin() override {
    SoGetBoundingBoxAction::begin();
    take<SoCoordinateElement>();
    take<SoCameraElement>();
    take<SoFontElement>();
    take<SoComplexityElement>();
    take<SoSwitchElement>();
    take<SoUnitsElement>();
  }
  void visit(SoNode* node) override {
    if (m_arrived) {
      SoGetBoundingBoxAction::visit(node);
      return;
    }
    m_arrived = true;
    enterChildren(node, true, m_first);
  }

 private:
  template <class Element> void take() { getState().modify<Element>() = m_outer.get<Element>(); }

  SoState& m_outer;
  int m_first;
  bool m_arrived = false;
};

} // namespace

SbBox3f SoBoundsOfFollowers(SoStateAction& action) {
  SoPath const& path = action.getCurPath();
  int const last = path.getLength() - 1;
  if (last < 1) return SbBox3f();
  SoNode* const parent = path.getNode(last - 1);
  FollowersAction bounds(action, path.getIndex(last) + 1);
  bounds.apply(parent);
  return bounds.getBoundingBox();
}

SbBox3f SoBoxInBall(float radius) {
  if (!(radius > 0)) return SbBox3f();
  float const half = radius / std::sqrt(3.0f);
  return SbBox3f(SbVec3f(-half, -half, -half), SbVec3f(half, half, half));
}
