#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "io_helpers.h"
#include "kestrava/actions/SoGetBoundingBoxAction.h"
#include "kestrava/base/SoChildList.h"
#include "kestrava/base/SoError.h"
#include "kestrava/nodes/SoGroup.h"
#include "kestrava/sensors/SoNodeSensor.h"

namespace node_test {

using io_test::ReadErrors;
using io_test::readText;

/// Collects the debug errors posted while it lives.
class DebugErrors {
 public:
  DebugErrors()
      : m_oldCallback(SoDebugError::getHandlerCallback()), m_oldData(SoDebugError::getHandlerData()) {
    SoDebugError::setHandlerCallback(
        [](SoError const* error, void* data) {
          static_cast<DebugErrors*>(data)->texts.push_back(error->getDebugString().str());
        },
        this);
  }
  ~DebugErrors() { SoDebugError::setHandlerCallback(m_oldCallback, m_oldData); }
  std::vector<std::string> texts;

 private:
  SoErrorCB* m_oldCallback;
  void* m_oldData;
};

/// An immediate sensor that keeps what it was told.
class Listener {
 public:
  struct Call {
    int type;
    SoNode* node;
    SoNode* child;
    int index;
    SoField* field;
    std::vector<int> path; // child indices from the watched node to the trigger node
    int childrenThen;      // of the trigger node, when the call came
  };

  explicit Listener(SoFieldContainer* node) : m_sensor(called, this) {
    m_sensor.setPriority(0);
    m_sensor.setTriggerPathFlag(true);
    m_sensor.attach(node);
  }
  std::vector<Call> take() { return std::exchange(m_calls, {}); }
  SoNodeSensor& sensor() { return m_sensor; }

 private:
  static void called(void* data, SoSensor* sensor) {
    auto* s = static_cast<SoNodeSensor*>(sensor);
    Call call{s->getTriggerType(),
              s->getTriggerNode(),
              s->getTriggerChild(),
              s->getTriggerChildIndex(),
              s->getTriggerField(),
              {},
              -1};
    if (SoPath* path = s->getTriggerPath()) {
      for (int i = 1; i < path->getLength(); ++i) call.path.push_back(path->getIndex(i));
    }
    if (call.node && call.node->getChildren()) call.childrenThen = call.node->getChildren()->getLength();
    static_cast<Listener*>(data)->m_calls.push_back(call);
  }

  SoNodeSensor m_sensor;
  std::vector<Call> m_calls;
};

inline SbBox3f boundsOf(SoNode* root) {
  SoGetBoundingBoxAction action(SbViewportRegion(100, 100));
  action.apply(root);
  return action.getBoundingBox();
}

inline SbBox3f box(float x0, float y0, float z0, float x1, float y1, float z1) {
  return SbBox3f(SbVec3f(x0, y0, z0), SbVec3f(x1, y1, z1));
}

inline ::testing::AssertionResult isNear(SbBox3f const& actual, SbBox3f const& wanted,
                                         float tolerance = 1e-4f) {
  if (actual.isEmpty() == wanted.isEmpty() && (actual.isEmpty() || actual.equals(wanted, tolerance))) {
    return ::testing::AssertionSuccess();
  }
  auto text = [](SbBox3f const& b) {
    if (b.isEmpty()) return std::string("empty");
    std::string s;
    for (SbVec3f const& v : {b.getMin(), b.getMax()}) {
      for (int i = 0; i < 3; ++i) s += std::to_string(v[i]) + " ";
    }
    return s;
  };
  return ::testing::AssertionFailure() << "is " << text(actual) << ", should be " << text(wanted);
}

/// A chain of groups, each of which holds the next one twice, above a leaf.
inline SoRef<SoNode> doublingChain(int length, SoNode* leaf, SoType type) {
  SoRef<SoNode> below(leaf);
  for (int i = 0; i < length; ++i) {
    auto* group = static_cast<SoGroup*>(static_cast<SoFieldContainer*>(type.createInstance()));
    group->addChild(below);
    group->addChild(below);
    below = SoRef<SoNode>(group);
  }
  return below;
}

} // namespace node_test
