#include "kestrava/kits/SoBaseKit.h"

#include <cstdlib>
#include <map>
#include <mutex>

#include "kestrava/base/SoError.h"
#include "kestrava/base/SoKeepAlive.h"
#include "kestrava/kits/SoNodeKitListPart.h"
#include "kestrava/nodes/SoGroup.h"
#include "kestrava/nodes/SoSwitch.h"

bool SoBaseKit::searchingChildren = false;

SoKitPart::SoKitPart(SoBaseKit* kit, char const* name, SoType type, SoType made, char const* parent,
                     bool isPublic)
    : SoSFNode(kit, name), m_type(type), m_made(made), m_parent(parent), m_isPublic(isPublic) {}

SoKitListPart::SoKitListPart(SoBaseKit* kit, char const* name, SoType container, SoType item,
                             char const* parent)
    : SoKitPart(kit, name, SoNodeKitListPart::getClassTypeId(), SoNodeKitListPart::getClassTypeId(), parent) {
  m_containerType = container;
  m_itemType = item;
}

int SoNodekitCatalog::getPartNumber(SbName const& name) const {
  for (int i = 0; i < getNumEntries(); ++i) {
    if (m_entries[i].name == name) return i;
  }
  return -1;
}

SoNodekitCatalog const& SoBaseKit::getNodekitCatalog() const {
  static std::mutex mutex;
  static auto& catalogs = *new std::map<SoType, SoNodekitCatalog>;
  std::lock_guard lock(mutex);
  auto [known, added] = catalogs.try_emplace(getTypeId());
  SoNodekitCatalog& catalog = known->second;
  if (!added) return catalog;
  catalog.m_entries.push_back({SbName("this"), getTypeId(), getTypeId(), {}, {}, 0, false});
  for (int i = 0; i < getNumFields(); ++i) {
    auto const* part = dynamic_cast<SoKitPart const*>(getField(i));
    if (!part) continue;
    // A parent is declared before its parts.
    int const parent = catalog.getPartNumber(SbName(part->getParentName()));
    catalog.m_entries.push_back({part->getName(), part->getPartType(), part->getMadeType(),
                                 part->getContainerType(), part->getItemType(), std::max(parent, 0),
                                 part->isPublic()});
  }
  return catalog;
}

SoKitPart* SoBaseKit::findPart(SbName const& name) const { return dynamic_cast<SoKitPart*>(getField(name)); }

SbString SoBaseKit::getPartString(SoFieldContainer const* node) const {
  if (!node || node == this) return SbString();
  for (int i = 0; i < getNumFields(); ++i) {
    auto const* part = dynamic_cast<SoKitPart const*>(getField(i));
    SoNode const* const value = part ? part->getValue() : nullptr;
    if (!value) continue;
    SbString const name = part->getName().toString();
    if (value == node) return name;
    if (auto const* list = dynamic_cast<SoNodeKitListPart const*>(value)) {
      int const count = list->getNumChildren();
      for (int k = 0; k < count; ++k) {
        SoNode const* const entry = list->getChild(k);
        if (entry == node) return SbString::format("%s[%d]", name.c_str(), k);
        auto const* kit = dynamic_cast<SoBaseKit const*>(entry);
        SbString const inner = kit ? kit->getPartString(node) : SbString();
        if (!inner.empty()) return SbString::format("%s[%d].%s", name.c_str(), k, inner.c_str());
      }
    } else if (auto const* kit = dynamic_cast<SoBaseKit const*>(value)) {
      SbString const inner = kit->getPartString(node);
      if (!inner.empty()) return name + "." + inner.str();
    }
  }
  return SbString();
}

/// Where a name leads: a part of a kit, or an entry of that part, which is a list then.
struct SoBaseKit::Place {
  SoBaseKit* kit = nullptr;
  SoKitPart* part = nullptr;
  SoNodeKitListPart* list = nullptr;
  int entry = -1;

  SoNode* get() const { return list ? list->getChild(entry) : part->getValue(); }
};

bool SoBaseKit::resolve(SbString const& name, bool makes, Place& place) {
  std::string_view rest = name.str();
  place = {this, nullptr, nullptr, -1};
  while (true) {
    std::string_view step = rest.substr(0, rest.find('.'));
    rest.remove_prefix(std::min(rest.size(), step.size() + 1));
    size_t const bracket = step.find('[');
    place.part = place.kit->findPart(SbName(step.substr(0, bracket)));
    place.list = nullptr;
    if (!place.part || !place.part->isPublic()) return false;
    bool const isLast = rest.empty();
    if (bracket != std::string_view::npos) {
      std::string const digits(step.substr(bracket + 1));
      char* end = nullptr;
      long const entry = std::strtol(digits.c_str(), &end, 10);
      if (end == digits.c_str() || std::string_view(end) != "]" || entry < 0 || entry > INT_MAX) return false;
      SoNode* const list = makes ? place.kit->make(*place.part) : place.part->getValue();
      place.list = dynamic_cast<SoNodeKitListPart*>(list);
      place.entry = static_cast<int>(entry);
      if (!place.list) return false;
    }
    if (isLast) return true;
    SoNode* const next = makes && !place.list ? place.kit->make(*place.part) : place.get();
    place.kit = dynamic_cast<SoBaseKit*>(next);
    if (!place.kit) return false;
  }
}

SoNode* SoBaseKit::make(SoKitPart& part) {
  if (!part.getValue() && part.getMadeType().canCreateInstance()) {
    part.setValue(SoNode::create(part.getMadeType()));
  }
  return part.getValue();
}

SoNode* SoBaseKit::getPart(SbString const& name, bool makeIfNeeded) {
  Place place;
  if (!resolve(name, makeIfNeeded, place)) return nullptr;
  if (place.list || !makeIfNeeded) return place.get();
  return place.kit->make(*place.part);
}

/// A node may have got hold of a group of the kit that it is to stand below, or stand below a part that it is to hold.
bool SoBaseKit::closesCircleOfParts(SoKitPart const& part, SoNode const* node) const {
  SoNodekitCatalog const& catalog = getNodekitCatalog();
  int const number = catalog.getPartNumber(part.getName());
  auto const valueOf = [&](int i) -> SoNode const* {
    auto const* other = dynamic_cast<SoKitPart const*>(getField(catalog.getName(i)));
    return other ? other->getValue() : nullptr;
  };
  for (int i = catalog.getParentPartNumber(number); i > 0; i = catalog.getParentPartNumber(i)) {
    if (SoNode const* above = valueOf(i); above && closesCircle(above, node)) return true;
  }
  for (int i = 1; i < catalog.getNumEntries(); ++i) {
    int above = catalog.getParentPartNumber(i);
    while (above > 0 && above != number) above = catalog.getParentPartNumber(above);
    if (above != number) continue;
    if (SoNode const* below = valueOf(i); below && closesCircle(node, below)) return true;
  }
  return false;
}

bool SoBaseKit::accepts(SoKitPart const& part, SoNode const* node, SbString const& name) const {
  if (!node) return true;
  char const* reason = nullptr;
  if (!node->isOfType(part.getPartType())) {
    reason = "takes no nodes of type";
  } else if (closesCircle(this, node) || closesCircleOfParts(part, node)) {
    reason = "would contain its own kit through a node of type";
  }
  if (reason) {
    SoDebugError::post("SoBaseKit::setPart", "the part '%s' of %s %s %s", name.c_str(),
                       getTypeId().getName().c_str(), reason, node->getTypeId().getName().c_str());
  }
  return !reason;
}

bool SoBaseKit::setPart(SbString const& name, SoNode* node) {
  SoKeepAlive const self(this);
  Place place;
  if (!resolve(name, node != nullptr, place)) {
    SoDebugError::post("SoBaseKit::setPart", "%s has no public part '%s'", getTypeId().getName().c_str(),
                       name.c_str());
    return false;
  }
  if (place.list) {
    if (!node) return place.list->removeChild(place.entry);
    return place.entry < place.list->getNumChildren() ? place.list->replaceChild(place.entry, node)
                                                      : place.list->insertChild(node, place.entry);
  }
  if (!place.kit->accepts(*place.part, node, name)) return false;
  place.part->setValue(node);
  return true;
}

void SoBaseKit::fieldChanged(SoField* field) {
  auto* part = dynamic_cast<SoKitPart*>(field);
  if (!part || m_arranging) return;
  SoNode* const node = part->getValue();
  if (node && !accepts(*part, node, part->getName().toString())) part->holdQuietly(nullptr);
  if (auto* list = dynamic_cast<SoNodeKitListPart*>(part->getValue())) {
    list->setItemType(part->getItemType());
    SoType const container = part->getContainerType();
    if (list->getNumChildren() == 0 && list->getContainer() && !list->getContainer()->isOfType(container)) {
      auto* group = SoNode::create(container);
      // A list of alternatives shows its first entry.
      if (auto* choice = dynamic_cast<SoSwitch*>(group)) choice->whichChild = 0;
      list->containerNode.setValue(group);
      list->containerNode.setDefault(true);
    }
  }
  arrangeChildren(SbName(part->getParentName()));
  // The part may be the parent of others.
  if (SoNode* value = part->getValue(); value && value->isOfType(SoGroup::getClassTypeId())) {
    arrangeChildren(part->getName());
  }
}

void SoBaseKit::arrangeChildren(SbName const& parent) {
  static SbName const self("this");
  std::vector<SoNode*> wanted;
  bool isParent = parent == self;
  for (int i = 0; i < getNumFields(); ++i) {
    auto* part = dynamic_cast<SoKitPart*>(getField(i));
    if (!part || SbName(part->getParentName()) != parent) continue;
    isParent = true;
    if (SoNode* node = part->getValue()) wanted.push_back(node);
  }
  if (!isParent) return;

  SoChildList* list = &m_children;
  SoNode* holder = nullptr;
  if (parent != self) {
    SoKitPart* const part = findPart(parent);
    if (!part || (!part->getValue() && wanted.empty())) return;
    bool const wasThere = part->getValue() != nullptr;
    holder = make(*part);
    // What the kit makes for itself need not be written.
    if (!wasThere) part->setDefault(true);
    list = holder ? holder->getChildren() : nullptr;
    if (!list) return;
  }
  if (std::equal(wanted.begin(), wanted.end(), list->begin(), list->end())) return;
  std::vector<SoRef<SoNode>> const kept(list->begin(), list->end());
  list->truncate(0);
  for (SoNode* node : wanted) list->append(node);
  if (!holder) return;
  // The holder has changed too; those who watch the kit hear of the field alone.
  bool const notifies = enableNotify(false);
  holder->touch();
  enableNotify(notifies);
}
