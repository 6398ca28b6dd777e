#include "kestrava/nodes/SoNode.h"

#include <unordered_set>

#include "kestrava/fields/SoMFInstanceParameter.h"
#include "kestrava/fields/SoMFNode.h"
#include "kestrava/fields/SoMFUniformShaderParameter.h"
#include "kestrava/fields/SoSFBool.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/nodes/SoCopier.h"

std::uint64_t SoNode::nextNodeId() {
  static std::atomic<std::uint64_t> last{0};
  return last.fetch_add(1, std::memory_order_relaxed) + 1;
}

namespace {

struct DestroyedListener {
  SoNode::DestroyedCB* function;
  void* data;
  bool operator==(DestroyedListener const&) const = default;
};
// Nodes may be destroyed after all static objects.
std::vector<DestroyedListener>& destroyedListeners() {
  static auto& listeners = *new std::vector<DestroyedListener>;
  return listeners;
}
std::atomic<bool> anyDestroyedListener{false};

SoSFBool* overrideField(SoNode const* node) {
  static SbName const name("override");
  SoField* field = node->getField(name);
  return field && field->isOfType(SoSFBool::getClassTypeId()) ? static_cast<SoSFBool*>(field) : nullptr;
}

bool canHoldNodes(SoNode const* node) {
  if (node->getChildren()) return true;
  for (int i = 0; i < node->getNumFields(); ++i) {
    SoType const type = node->getField(i)->getTypeId();
    if (type.isDerivedFrom(SoSFNode::getClassTypeId()) || type.isDerivedFrom(SoMFNode::getClassTypeId()) ||
        type.isDerivedFrom(SoMFUniformShaderParameter::getClassTypeId()) ||
        type.isDerivedFrom(SoMFInstanceParameter::getClassTypeId())) {
      return true;
    }
  }
  return false;
}

} // namespace

SoNode::~SoNode() {
  if (!anyDestroyedListener) return;
  // One may be taken away by another's function.
  for (std::size_t i = 0; i < destroyedListeners().size(); ++i) {
    DestroyedListener const listener = destroyedListeners()[i];
    listener.function(listener.data, this);
  }
}

void SoNode::addDestroyedCallback(DestroyedCB* function, void* data) {
  destroyedListeners().push_back({function, data});
  anyDestroyedListener = true;
}

void SoNode::removeDestroyedCallback(DestroyedCB* function, void* data) {
  std::erase(destroyedListeners(), DestroyedListener{function, data});
  anyDestroyedListener = !destroyedListeners().empty();
}

bool SoNode::closesCircle(SoFieldContainer const* holder, SoNode const* held) {
  if (holder == held) return true;
  if (holder->getAuditors().getLength() == 0 || !canHoldNodes(held)) return false;
  std::vector<SoFieldContainer const*> above{holder};
  std::unordered_set<SoFieldContainer const*> seen{holder};
  while (!above.empty()) {
    SoAuditorList const& auditors = above.back()->getAuditors();
    above.pop_back();
    for (int i = 0; i < auditors.getLength(); ++i) {
      void* const auditor = auditors.getObject(i);
      SoFieldContainer const* next = nullptr;
      if (auditors.getKind(i) == SoAuditorList::PARENT) next = static_cast<SoNode*>(auditor);
      if (auditors.getKind(i) == SoAuditorList::FIELD) next = static_cast<SoField*>(auditor)->getContainer();
      if (next == held) return true;
      if (next && seen.insert(next).second) above.push_back(next);
    }
  }
  return false;
}

bool SoNode::isOverride() const {
  SoSFBool const* field = overrideField(this);
  return field && field->getValue();
}

void SoNode::setOverride(bool on) {
  SoSFBool* field = overrideField(this);
  if (field && field->getValue() != on) field->setValue(on);
}

SoNode* SoNode::copy(bool copyConnections) const {
  return static_cast<SoNode*>(SoCopier(copyConnections).copy(this));
}

SoNode* SoNode::create(SoType type) {
  return type.isDerivedFrom(getClassTypeId())
             ? static_cast<SoNode*>(static_cast<SoFieldContainer*>(type.createInstance()))
             : nullptr;
}

SoNode* SoNode::getByName(SbName const& name) {
  return static_cast<SoNode*>(getNamedBase(name, SoNode::getClassTypeId()));
}
