#pragma once

#include "kestrava/base/SoChildList.h"
#include "kestrava/kits/SoKitPart.h"
#include "kestrava/kits/SoNodekitCatalog.h"
#include "kestrava/nodes/SoNode.h"

/// A node made of parts, each in a field of its own. Parts are made when they are asked for; the kit keeps
/// them at their places in the graph below it. A kit is no group: its children are hidden.
///
/// Names of parts: "appearance"; an entry of a list, "childList[2]"; a part of a part that is a kit,
/// "appearance.material".
class SoBaseKit : public SoNode {
  SO_NODE(SoBaseKit, SoNode)
  SoBaseKit() = default;

  /// The parts of this kit's class.
  SoNodekitCatalog const& getNodekitCatalog() const;
  /// Where a node stands in this kit, empty when nowhere. For an entry of a list the name holds its index.
  SbString getPartString(SoFieldContainer const* node) const;
  /// The part, made first when `makeIfNeeded`; null when it is missing, not public or unknown.
  SoNode* getPart(SbString const& name, bool makeIfNeeded);
  /// Puts a node in a part's place, null removes the part. Refused (false, with a debug error) when the part
  /// is unknown or not public, or the node of a type that does not fit, or a node that contains the kit.
  bool setPart(SbString const& name, SoNode* node);

  /// Whether searches enter kits. Process-wide, off at first.
  static bool isSearchingChildren() { return searchingChildren; }
  static void setSearchingChildren(bool on) { searchingChildren = on; }
  static bool searchingChildren;

  /// The parts directly under the kit, without the missing ones, in the order of their fields.
  SoChildList* getChildren() const override { return &m_children; }

 protected:
  ~SoBaseKit() override = default;
  void fieldChanged(SoField* field) override;

 private:
  struct Place;
  SoKitPart* findPart(SbName const& name) const;
  SoNode* make(SoKitPart& part);
  bool resolve(SbString const& name, bool make, Place& place);
  bool closesCircleOfParts(SoKitPart const& part, SoNode const* node) const;
  bool accepts(SoKitPart const& part, SoNode const* node, SbString const& name) const;
  void arrangeChildren(SbName const& parent);

  mutable SoChildList m_children{this};
  bool m_arranging = false;
};
