#include "kestrava/nodes/SoCopier.h"

#include "kestrava/base/SoChildList.h"
#include "kestrava/base/SoError.h"
#include "kestrava/base/SoPath.h"
#include "kestrava/engines/SoEngine.h"

SoFieldContainer* SoCopier::copy(SoFieldContainer const* root) {
  // Whoever has one auditor is met once, except for where one begins.
  bool const isNode = root->isOfType(SoNode::getClassTypeId());
  SoRef<SoFieldContainer> result(enter(root, isNode));
  if (!result) return nullptr;
  m_shared.emplace(root, result);
  fillAll();
  m_isGraphComplete = true;
  if (m_copyConnections) {
    copyEngines();
    fillAll();
    connectAll();
  }
  for (auto const& function : m_later) function();
  for (Pair const& pair : m_pairs) pair.to->copyContents(*pair.from, *this);
  m_engines.clear();
  return result.release();
}

SoFieldContainer* SoCopier::enter(SoFieldContainer const* from, bool isNode) {
  SoFieldContainer* const to = from->makeEmpty();
  if (!to) {
    SoDebugError::post("SoNode::copy", "there is no way to make another %s: the copy shares '%s'",
                       from->getTypeId().getName().c_str(), from->getName().c_str());
    return nullptr;
  }
  m_pairs.push_back({from, to, isNode});
  return to;
}

SoNode* SoCopier::copyOf(SoNode const* node) {
  if (!node) return nullptr;
  if (m_isGraphComplete) {
    SoNode* const known = findNode(node);
    return known ? known : const_cast<SoNode*>(node);
  }
  bool const isShared = node->getAuditors().getLength() != 1;
  if (isShared) {
    if (auto const known = m_shared.find(node); known != m_shared.end())
      return static_cast<SoNode*>(known->second);
  }
  SoFieldContainer* to = enter(node, true);
  if (!to) to = const_cast<SoNode*>(node);
  if (isShared) m_shared.emplace(node, to);
  return static_cast<SoNode*>(to);
}

SoFieldContainer* SoCopier::copyOf(SoFieldContainer const* object) {
  if (object && object->isOfType(SoNode::getClassTypeId())) return copyOf(static_cast<SoNode const*>(object));
  SoFieldContainer* const known = m_isGraphComplete ? find(object) : nullptr;
  return known ? known : const_cast<SoFieldContainer*>(object);
}

SoFieldContainer* SoCopier::find(void const* object) {
  if (m_found == 0) m_all.reserve(m_pairs.size());
  for (; m_found < m_pairs.size(); ++m_found) m_all.emplace(m_pairs[m_found].from, m_pairs[m_found].to);
  auto const known = m_all.find(object);
  return known == m_all.end() ? nullptr : known->second;
}

SoRef<SoPath> SoCopier::copyOf(SoPath* path) {
  SoNode* const head = path && path->getHead() ? findNode(path->getHead()) : nullptr;
  if (!head) return SoRef<SoPath>(path);
  SoRef<SoPath> result(new SoPath(head));
  for (int i = 1; i < path->getLength(); ++i) {
    SoNode* const node = findNode(path->getNode(i));
    if (!node) break;
    result->appendNode(node, path->getIndex(i));
  }
  return result;
}

void SoCopier::fillAll() {
  while (m_next < m_pairs.size()) fill(m_pairs[m_next++]);
}

void SoCopier::fill(Pair pair) {
  constexpr int COPIED = SoField::KIND_MASK | SoField::IGNORED | SoField::DEFAULT;
  SoFieldData const& source = *pair.from->getFieldData();
  SoFieldData const& target = *pair.to->getFieldData();
  int const count = std::min(source.getNumFields(), target.getNumFields());
  for (int i = 0; i < count; ++i) {
    SoField const& from = *source.getField(pair.from, i);
    SoField& to = *target.getField(pair.to, i);
    from.evaluate();
    to.takeCopyOf(from, *this);
    to.m_flags = static_cast<std::uint16_t>((to.m_flags & ~COPIED) | (from.m_flags & COPIED));
    if (!m_copyConnections) continue;
    if (from.isConnected()) {
      m_connections.push_back({&from, &to});
    } else if (to.isConnected()) {
      to.unlink();
      to.clearFlag(SoField::OWN_CONNECTION);
    }
  }
  if (!pair.from->getName().empty()) pair.to->setName(pair.from->getName());
  if (SbName const netName = pair.from->getNetName(); !netName.empty()) pair.to->setNetName(netName);
  if (!pair.isNode) return;
  SoChildList const* const children = static_cast<SoNode const*>(pair.from)->getChildren();
  SoChildList* const copies = static_cast<SoNode*>(pair.to)->getChildren();
  if (!children || !copies) return;
  copies->truncate(0);
  copies->reserve(children->getLength());
  for (SoNode* child : *children) copies->append(copyOf(child));
}

// Engines stand in no graph: whether one belongs to this one shows in who follows it and whom it follows.
void SoCopier::copyEngines() {
  std::unordered_map<SoEngine*, bool> isInside;
  std::vector<SoEngine*> open;
  auto const meet = [&](SoField const* follower) {
    SoField const* const source = follower->getConnectedField();
    SoFieldContainer* const container = source ? source->getContainer() : nullptr;
    if (!container || !container->isOfType(SoEngine::getClassTypeId()) || find(container)) return;
    auto* const engine = static_cast<SoEngine*>(container);
    if (isInside.emplace(engine, true).second) open.push_back(engine);
  };
  auto const forSources = [](SoEngine* engine, auto const& function) {
    for (int i = 0; i < engine->getNumFields(); ++i) {
      if (engine->getField(i)->isConnected()) function(engine->getField(i));
    }
  };
  for (Connection const& connection : m_connections) meet(connection.from);
  std::vector<SoEngine*> all;
  while (!open.empty()) {
    all.push_back(open.back());
    open.pop_back();
    forSources(all.back(), meet);
  }

  // Engines that take something from inside, and engines that follow these.
  std::unordered_set<SoEngine*> fed;
  auto const forFollowers = [](SoEngine* engine, auto const& function) {
    for (int i = 0; i < engine->getNumFields(); ++i) {
      for (SoField* follower : engine->getField(i)->getFollowers()) function(follower);
    }
  };
  for (SoEngine* engine : all) {
    forSources(engine, [&](SoField* input) {
      if (find(input->getConnectedField()->getContainer()) && fed.insert(engine).second)
        open.push_back(engine);
    });
  }
  while (!open.empty()) {
    SoEngine* const engine = open.back();
    open.pop_back();
    forFollowers(engine, [&](SoField* follower) {
      auto* const next = dynamic_cast<SoEngine*>(follower->getContainer());
      if (next && isInside.contains(next) && fed.insert(next).second) open.push_back(next);
    });
  }

  // Of the others those go that somebody outside follows, and then those that only they follow.
  auto const leaves = [&](SoEngine* engine) {
    if (!isInside.at(engine) || fed.contains(engine)) return false;
    bool isFollowedOutside = false;
    forFollowers(engine, [&](SoField* follower) {
      auto* const next = dynamic_cast<SoEngine*>(follower->getContainer());
      auto const known = next ? isInside.find(next) : isInside.end();
      bool const staysInside =
          known != isInside.end() ? known->second : find(follower->getContainer()) != nullptr;
      isFollowedOutside = isFollowedOutside || !staysInside;
    });
    return isFollowedOutside;
  };
  open = all;
  while (!open.empty()) {
    SoEngine* const engine = open.back();
    open.pop_back();
    if (!leaves(engine)) continue;
    isInside[engine] = false;
    forSources(engine, [&](SoField* input) {
      auto* const before = dynamic_cast<SoEngine*>(input->getConnectedField()->getContainer());
      if (before && isInside.contains(before)) open.push_back(before);
    });
  }
  for (SoEngine* engine : all) {
    if (isInside[engine]) m_engines.emplace_back(enter(engine, false));
  }
}

void SoCopier::connectAll() {
  for (Connection const& connection : m_connections) {
    SoField* source = connection.from->getConnectedField();
    SoFieldContainer* const copy = source->getContainer() ? find(source->getContainer()) : nullptr;
    if (copy && source->getIndex() < copy->getNumFields()) source = copy->getField(source->getIndex());
    SoField& to = *connection.to;
    if (to.isConnected()) to.unlink();
    to.link(source);
    to.m_flags |= SoField::PENDING;
    constexpr int OWN = SoField::OWN_CONNECTION;
    to.m_flags = static_cast<std::uint16_t>((to.m_flags & ~OWN) | (connection.from->m_flags & OWN));
  }
}
