#pragma once

#include <vector>

#include "kestrava/base/SbName.h"
#include "kestrava/base/SoType.h"

/// The parts of one class of kits, by number. Part 0 is the kit itself, named "this"; the others follow in
/// the order of their fields. Unknown names and numbers are answered, not faulted: they have no type, are not
/// public, and hang under the kit.
class SoNodekitCatalog {
 public:
  int getNumEntries() const { return static_cast<int>(m_entries.size()); }
  /// Empty for an unknown number.
  SbName getName(int part) const { return entry(part).name; }
  /// -1 for an unknown name.
  int getPartNumber(SbName const& name) const;
  /// 0 for parts directly under the kit, and for the kit itself.
  int getParentPartNumber(int part) const { return entry(part).parent; }
  int getParentPartNumber(SbName const& name) const { return getParentPartNumber(getPartNumber(name)); }
  SbName getParentName(int part) const { return getName(getParentPartNumber(part)); }
  bool isPublic(int part) const { return entry(part).isPublic; }
  /// What the part may be.
  SoType getType(int part) const { return entry(part).type; }
  /// What is made when the part is missing.
  SoType getDefaultType(int part) const { return entry(part).made; }
  bool isList(int part) const { return !entry(part).item.isBad(); }
  SoType getListItemType(int part) const { return entry(part).item; }
  SoType getListContainerType(int part) const { return entry(part).container; }

 private:
  friend class SoBaseKit;
  struct Entry {
    SbName name;
    SoType type, made, container, item;
    int parent = 0;
    bool isPublic = false;
  };
  Entry const& entry(int part) const {
    static Entry const none;
    return part >= 0 && part < getNumEntries() ? m_entries[part] : none;
  }
  std::vector<Entry> m_entries;
};
