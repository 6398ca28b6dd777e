#pragma once

#include "kestrava/base/SoChildList.h"
#include "kestrava/draggers/SoDragger.h"

class SoPath;

/// The hidden child of a manipulator: the dragger by which a user changes the manipulator's fields. The two
/// follow each other.
class SoManipChild : private SoDraggerOwner {
 public:
  /// How the values go from one to the other; neither may be null.
  struct Exchange {
    void (*toManip)(SoNode* manip, SoDragger* dragger, SoField* changed);
    void (*toDragger)(SoNode* manip, SoDragger* dragger, SoField* changed); // `changed` null: all
  };
  SoManipChild(SoNode* manip, Exchange const& exchange)
      : m_manip(manip), m_exchange(exchange), m_list(manip) {}
  ~SoManipChild() { release(); }

  SoChildList* getList() { return &m_list; }
  /// Null when there is none.
  SoDragger* getDragger() const {
    return m_list.getLength() > 0 ? static_cast<SoDragger*>(m_list[0]) : nullptr;
  }
  /// Null takes the dragger away. One that another manipulator holds, or that contains the manipulator, is
  /// refused (false, with a debug error). Notifies.
  bool setDragger(SoDragger* dragger);
  /// A field of the manipulator has changed.
  void manipChanged(SoField* field);

  /// Takes charge of a dragger that was put into the list from outside.
  void adopt();
  /// For constructors.
  void hold(SoDragger* dragger);

  // Between a manipulator and a node of the plain kind.
  /// Puts `wanted` in the place of the path's tail, which is of the type `plain`: in a group, a list or a
  /// part of a kit. It takes the values of the plain type's fields, and their connections in both directions;
  /// the path then ends at it. Refused (false, with a debug error naming `caller`) where that can not be.
  static bool exchangeTail(SoPath* path, SoNode* wanted, SoType plain, char const* caller);

 private:
  void draggerMoved(SoField* field) override;
  void release();

  SoNode* m_manip;
  Exchange m_exchange;
  SoChildList m_list;
  bool m_busy = false;
};

/// Copies a field to the one of the same name, if there is one whose value differs.
void SoCopyToSameName(SoField* field, SoFieldContainer* container);
/// The box of the nodes that follow the visited one among its siblings, in the coordinates behind the visited
/// node's own effect. Empty when nothing follows.
SbBox3f SoBoundsOfFollowers(SoStateAction& action);
/// A box around the origin whose corners lie on a ball of that radius; empty for 0.
SbBox3f SoBoxInBall(float radius);
