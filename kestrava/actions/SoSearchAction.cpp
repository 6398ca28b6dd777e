#include "kestrava/actions/SoSearchAction.h"

#include "kestrava/actions/SoElements.h"
#include "kestrava/kits/SoBaseKit.h"
#include "kestrava/nodes/SoSwitch.h"

namespace {

void searchSwitch(SoSearchAction& action, SoSwitch& group) {
  if (action.isSearchingAll()) {
    action.enterChildren(&group, false);
  } else {
    SoAction::enterChosenChildren(action, group);
  }
}

void searchKit(SoSearchAction& action, SoBaseKit& kit) {
  if (SoBaseKit::searchingChildren) action.enterChildren(&kit, false);
}

bool const registered = SoAction::addMethods<searchSwitch, searchKit>();

} // namespace

void SoSearchAction::reset() {
  setNode(nullptr);
  setType(SoType::badType());
  setName(SbName());
  setInterest(FIRST);
  setSearchingAll(false);
  m_paths.clear();
}

bool SoSearchAction::isMatch(SoNode const* node) const {
  if (m_node && node != m_node) return false;
  if (!m_type.isBad() && (m_derived ? !node->isOfType(m_type) : node->getTypeId() != m_type)) return false;
  if (!m_name.empty() && node->getName() != m_name) return false;
  return m_node || !m_type.isBad() || !m_name.empty();
}

// A node, and nodes of a name, are known beforehand: only what stands above them has to be entered.
void SoSearchAction::findWaysUp() {
  m_ways.clear();
  m_knowsWays = m_node || !m_name.empty();
  if (!m_knowsWays) return;
  std::vector<SoNode*> found;
  if (m_node) {
    found.push_back(m_node);
  } else {
    for (SoBase* base : SoBase::getNamedBases(m_name, SoNode::getClassTypeId()))
      found.push_back(static_cast<SoNode*>(base));
  }
  m_ways.insert(found.begin(), found.end());
  while (!found.empty()) {
    SoAuditorList const& auditors = found.back()->getAuditors();
    found.pop_back();
    for (int i = 0; i < auditors.getLength(); ++i) {
      if (auditors.getKind(i) != SoAuditorList::PARENT) continue;
      auto* const parent = static_cast<SoNode*>(auditors.getObject(i));
      if (m_ways.insert(parent).second) found.push_back(parent);
    }
  }
}

void SoSearchAction::begin() {
  m_paths.clear();
  m_barren.clear();
  m_numFound = 0;
  findWaysUp();
}

void SoSearchAction::end() {
  m_ways.clear();
  m_barren.clear();
}

void SoSearchAction::visit(SoNode* node) {
  if (m_knowsWays && !m_ways.contains(node)) return;
  // A node that is met once is not worth remembering.
  bool const isShared = node->getAuditors().getLength() > 1 && node->getChildren();
  Barren const key{node, isShared ? getState().peek<SoSwitchElement>().whichChild : 0};
  if (isShared && m_barren.contains(key)) return;

  std::uint64_t const before = m_numFound;
  if (isMatch(node)) {
    ++m_numFound;
    if (m_interest == LAST) m_paths.clear();
    m_paths.emplace_back(getCurPath().copy());
    if (m_interest == FIRST) {
      terminate();
      return;
    }
  }
  SoAction::visit(node);
  if (!isShared) return;
  whenLeft([this, key, before] {
    if (m_numFound == before) m_barren.insert(key);
  });
}
