#pragma once

#include <QObject>
#include <QPointer>

/// Knows whether Qt is delivering an event to something of the inspector's, at any depth: then slots of its
/// widgets are on the stack, and what they belong to must not be destroyed.
///
/// It watches the events of the application and leaves, at the first one for the inspector, a probe for Qt to
/// delete later. Qt does that when control is back in the event loop that delivered the event, not in one
/// nested in it: a probe that lives says that the event may still be on its way. A probe that was left
/// outside of any event loop survives in a loop that is begun later; the functions on the stack tell these
/// two apart. Afterwards a stop that waited is carried out.
class VantleEventWatch : public QObject {
 public:
  /// There is a Qt application.
  VantleEventWatch();
  ~VantleEventWatch() override;

  bool isDelivering();

  /// One call of a function.
  struct Frame {
    unsigned long address, function;
    friend bool operator==(Frame, Frame) = default;
  };
  /// Calls SoVantleImpl::eventDelivered() once what is on the stack now is done, however it came there.
  void callAfterwards();
  /// Whether an object is the main frame, stands below it, or is a menu or an action that is shown there.
  static bool isInspectors(QObject const* object);

 protected:
  bool eventFilter(QObject* receiver, QEvent* event) override;

 private:
  class Probe;
  void leaveProbe();
  void delivered();
  QPointer<QObject> m_probe;
  int m_loopLevel = 0; // when it was left
  Frame m_deliverer{}; // who delivers the event
  bool m_isAsking = false;
  bool m_isWaitedFor = false; // there is something to be called
};
