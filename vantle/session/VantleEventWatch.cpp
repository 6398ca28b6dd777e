#include "vantle/session/VantleEventWatch.h"

#include <unwind.h>
#include <QAction>
#include <QCoreApplication>
#include <QEvent>
#include <QMenu>
#include <QThread>

#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/session/SoVantleImpl.h"
#include "vantle/session/VntShellImpl.h"

class VantleEventWatch::Probe : public QObject {
 public:
  explicit Probe(VantleEventWatch& watch) : m_watch(watch) {}
  ~Probe() override {
    if (m_watch.m_probe != this) return;
    m_watch.m_probe.clear();
    m_watch.delivered();
  }

 private:
  VantleEventWatch& m_watch;
};

namespace {

/// From leaveProbe() up to a function of Qt that stays on the stack while it delivers the event.
constexpr int DELIVERER = 4;
constexpr int MAX_MENU_DEPTH = 8; // submenus are followed no further

/// True when the calls on the stack did not come by Qt's event delivery. Qt deletes what was given to
/// deleteLater() there in the next event of any kind, and otherwise only at a lower level than it was given
/// at.
bool isOutsideOfEvents() {
  struct Inside : QObject {
    bool event(QEvent*) override {
      QCoreApplication::sendPostedEvents(probe, 0);
      return true;
    }
    QPointer<QObject> probe{new QObject};
  };
  Inside inside;
  inside.probe->deleteLater();
  QEvent event(QEvent::User);
  QCoreApplication::sendEvent(&inside, &event);
  bool const isOutside = !inside.probe;
  delete inside.probe;
  return isOutside;
}

bool isBelow(QObject const* object, QObject const* frame, int depth) {
  for (QObject const* up = object; up; up = up->parent()) {
    if (up == frame) return true;
    auto const* const menu = qobject_cast<QMenu const*>(up);
    auto const* const action = menu ? menu->menuAction() : qobject_cast<QAction const*>(up);
    if (!action || depth == MAX_MENU_DEPTH) continue;
    for (QObject const* user : action->associatedObjects()) {
      if (user != up && isBelow(user, frame, depth + 1)) return true;
    }
  }
  return false;
}

struct Frames {
  int wanted; // counted from the caller of the function that asks; or the frame that is looked for
  VantleEventWatch::Frame frame;
  bool found = false;
};

VantleEventWatch::Frame frameOf(_Unwind_Context* context) {
  return {_Unwind_GetCFA(context), _Unwind_GetRegionStart(context)};
}

/// A function of the stack that calls the one that asks, `level` calls further up.
VantleEventWatch::Frame frameAbove(int level) {
  Frames result{level + 1, {}};
  _Unwind_Backtrace(
      [](_Unwind_Context* context, void* data) {
        auto& frames = *static_cast<Frames*>(data);
        frames.frame = frameOf(context);
        return frames.wanted-- > 0 ? _URC_NO_REASON : _URC_END_OF_STACK;
      },
      &result);
  return result.frame;
}

bool isOnTheStack(VantleEventWatch::Frame frame) {
  Frames result{0, frame};
  _Unwind_Backtrace(
      [](_Unwind_Context* context, void* data) {
        auto& frames = *static_cast<Frames*>(data);
        frames.found = frameOf(context) == frames.frame;
        return frames.found ? _URC_END_OF_STACK : _URC_NO_REASON;
      },
      &result);
  return result.found;
}

/// Nothing that listens to these has a reason to stop the session.
bool isHarmless(QEvent::Type type) {
  return type == QEvent::Paint || type == QEvent::UpdateRequest || type == QEvent::UpdateLater ||
         type == QEvent::DeferredDelete;
}

} // namespace

VantleEventWatch::VantleEventWatch() { QCoreApplication::instance()->installEventFilter(this); }

VantleEventWatch::~VantleEventWatch() {
  if (QObject* const probe = m_probe) {
    m_probe.clear();
    delete probe;
  }
}

bool VantleEventWatch::isInspectors(QObject const* object) {
  return VntShellImpl::isInstance() && isBelow(object, VntShellImpl::getImplInstance()->getMainFrame(), 0);
}

bool VantleEventWatch::isDelivering() {
  if (!m_probe) return false;
  m_isAsking = true;
  // Any type: Qt deletes the probe only if control is back below the level that it was left at.
  QCoreApplication::sendPostedEvents(m_probe, 0);
  m_isAsking = false;
  if (!m_probe) return false;
  // An event loop that was entered since may be one inside of the delivery, or one that was begun after it.
  if (QThread::currentThread()->loopLevel() == m_loopLevel || isOnTheStack(m_deliverer)) return true;
  m_isAsking = true;
  delete m_probe;
  m_isAsking = false;
  return false;
}

void VantleEventWatch::delivered() {
  if (!m_isWaitedFor) return;
  // Who asks is in the middle of something.
  if (m_isAsking)
    QMetaObject::invokeMethod(
        this, [this] { delivered(); }, Qt::QueuedConnection);
  else
    SoVantleImpl::eventDelivered();
}

void VantleEventWatch::callAfterwards() {
  m_isWaitedFor = true;
  leaveProbe();
}

void VantleEventWatch::leaveProbe() {
  if (isDelivering()) return;
  if (QThread::currentThread()->loopLevel() == 0 && isOutsideOfEvents()) return;
  m_loopLevel = QThread::currentThread()->loopLevel();
  m_deliverer = frameAbove(DELIVERER);
  m_probe = new Probe(*this);
  m_probe->deleteLater();
}

bool VantleEventWatch::eventFilter(QObject* receiver, QEvent* event) {
  if (!isHarmless(event->type()) && isInspectors(receiver)) leaveProbe();
  return false;
}
