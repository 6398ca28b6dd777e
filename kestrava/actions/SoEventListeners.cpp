#include "kestrava/actions/SoEventListeners.h"

#include "kestrava/actions/SoActionMethods.h"
#include "kestrava/actions/SoHandleEventAction.h"
#include "kestrava/base/SoChildList.h"
#include "kestrava/nodes/SoCallback.h"
#include "kestrava/nodes/SoSeparator.h"

void SoEventListeners::begin(bool cameras) {
  int const version = SoActionMethods::getVersion();
  if (version == m_version && cameras == m_cameras) return;
  m_version = version;
  m_cameras = cameras;
  m_types.clear();
  m_known.clear();
}

bool SoEventListeners::isIn(SoNode* node) {
  return traitsOf(node->getTypeId()).listens || (node->getChildren() && find(node));
}

bool SoEventListeners::getRange(SoNode* node, Range& range) {
  Traits const traits = traitsOf(node->getTypeId());
  if (!traits.isScope && !traits.isGroup) return false;
  find(node);
  Known const& known = m_known[node->getNodeId()];
  // Behind the last listener only a group's state counts, for what follows the group.
  range = {known.firstNeeded, traits.isScope ? known.lastListening : known.lastNeeded, traits.isScope};
  return true;
}

// Who has a method for events listens; a callback node is called with every action.
SoEventListeners::Traits SoEventListeners::lookAt(SoType type) {
  auto const index = static_cast<size_t>(type.getIndex());
  if (index >= m_types.size()) m_types.resize(index + 1);
  auto const plain = [](SoType of) { return SoActionMethods::find(SoStateAction::getClassTypeId(), of); };
  auto const method = SoActionMethods::find(SoHandleEventAction::getClassTypeId(), type);
  Traits& traits = m_types[index];
  traits.known = true;
  traits.isCamera = type.isDerivedFrom(SoCamera::getClassTypeId());
  traits.listens = method != plain(type) || type.isDerivedFrom(SoCallback::getClassTypeId()) ||
                   (m_cameras && traits.isCamera);
  traits.isScope = !traits.listens && method == plain(SoSeparator::getClassTypeId());
  traits.isGroup = !traits.listens && method == plain(SoGroup::getClassTypeId());
  return traits;
}

void SoEventListeners::count(Known& known, int child, bool listens, Traits const& traits) {
  if (listens) {
    known.listens = true;
    known.lastListening = child;
  }
  if (traits.isScope && !listens) return;
  if (known.lastNeeded < 0) known.firstNeeded = child;
  known.lastNeeded = child;
}

// A stack of its own: graphs may be deep.
bool SoEventListeners::find(SoNode* root) {
  auto const found = m_known.find(root->getNodeId());
  if (found != m_known.end()) return found->second.listens;
  if (m_known.size() > m_limit) m_known.clear();
  bool const isFresh = m_known.empty();
  bool listens = false;
  std::vector<Frame> frames{{root, 0, {}}};
  while (!frames.empty()) {
    Frame& frame = frames.back();
    SoChildList const& children = *frame.node->getChildren();
    if (frame.next < children.getLength()) {
      SoNode* const child = children[frame.next];
      Traits const traits = traitsOf(child->getTypeId());
      bool childListens = traits.listens;
      if (!childListens && child->getChildren()) {
        auto const known = m_known.find(child->getNodeId());
        if (known == m_known.end()) {
          // It is looked at again when it is known.
          frames.push_back({child, 0, {}});
          continue;
        }
        childListens = known->second.listens;
      }
      count(frame.known, frame.next++, childListens, traits);
    } else {
      listens = frame.known.listens;
      m_known[frame.node->getNodeId()] = frame.known;
      frames.pop_back();
    }
  }
  if (isFresh) m_limit = m_known.size() * 2 + 4096;
  return listens;
}
