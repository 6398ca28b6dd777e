#pragma once

#include <unordered_map>
#include <vector>

#include "kestrava/actions/SoStateAction.h"
#include "kestrava/base/SbBox3f.h"

class SoGroup;
class SoSeparator;

/// The box around everything below a root (or around the tail of a path), in the coordinates that the root
/// stands in.
///
/// A separator whose contents depend on nothing outside keeps their bounds until something below it changes,
/// so that asking again costs nothing. What is put together is boxes: of a turned separator the box of its
/// turned box.
class SoGetBoundingBoxAction : public SoStateAction {
  SO_ACTION(SoGetBoundingBoxAction, SoStateAction)
 public:
  explicit SoGetBoundingBoxAction(SbViewportRegion const& region) : SoStateAction(region) {}

  /// Empty when there is nothing.
  SbBox3f const& getBoundingBox() const { return m_box; }
  SbVec3f getCenter() const { return m_box.getCenter(); }

  /// For methods: adds a box in the coordinates of the visited node.
  void extendBy(SbBox3f const& box);
  void resetBounds() override;

  // The methods of groups.
  void visitSeparator(SoSeparator& group);
  void visitGroup(SoGroup& group);

 protected:
  void begin() override;

 private:
  /// What was gathered before a group was entered.
  struct Before {
    SbBox3f box;
    SbMatrix matrix;
    SoStateUse use;
  };
  /// What is known of a group that stands at several places.
  struct Shared {
    enum { CHANGES_STATE, DEPENDS_ON_STATE, UNKNOWN_BOX, BOXED } kind = CHANGES_STATE;
    SbBox3f box;
  };
  void gatherApart(SoGroup& group);
  /// Answers the bounds of what was gathered apart; `isOwn` tells whether nothing outside had a part in them.
  SbBox3f finishApart(bool& isOwn);

  SbBox3f m_box;
  std::vector<Before> m_before;
  std::unordered_map<SoGroup const*, Shared> m_shared;
};
