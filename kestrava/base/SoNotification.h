#pragma once

class SoField;
class SoFieldContainer;
class SoNode;

/// What changed. `container` is where the change was made; the other members are null (-1) where they do
/// not apply.
struct SoNotification {
  enum Type {
    UNSPECIFIED = 0,           ///< a field changed, or the container was touched
    CHILD_ADDED = 1,           ///< `child` is the last child, at `index`
    CHILD_INSERTED = 2,        ///< `child` is at `index`
    CHILD_REPLACED = 3,        ///< `child` is the new child at `index`
    CHILD_REMOVED = 4,         ///< `child` was at `index`; it lives until the notification is over
    ALL_CHILDREN_REMOVED = 5,  ///< the group is empty
  };
  Type type = UNSPECIFIED;
  SoFieldContainer* container = nullptr;
  SoField* field = nullptr;
  SoNode* child = nullptr;
  int index = -1;
};
