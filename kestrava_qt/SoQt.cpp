#include "kestrava_qt/SoQt.h"

#include <QCoreApplication>
#include <QPointer>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <utility>

#include "kestrava/sensors/SoSensorManager.h"

namespace {

/// Lives as long as the application at most.
class Pump : public QObject {
 public:
  explicit Pump(QObject* parent) : QObject(parent) {
    m_next.setSingleShot(true);
    m_next.setInterval(0);
    m_idle.setSingleShot(true);
    m_idle.setInterval(20);
    m_timers.setSingleShot(true);
    m_timers.setTimerType(Qt::PreciseTimer);
    connect(&m_timers, &QTimer::timeout, this, [this] { work([] { SoSensorManager::processTimerQueue(); }); });
    connect(&m_next, &QTimer::timeout, this, [this] { work([] { SoSensorManager::processDelayQueue(false); }); });
    connect(&m_idle, &QTimer::timeout, this, [this] { work([] { SoSensorManager::processDelayQueue(true); }); });
    SoSensorManager::setQueueChangedCallback([this] {
      if (QThread::currentThread() == thread()) {
        startTimers();
      } else {
        QMetaObject::invokeMethod(this, [this] { startTimers(); }, Qt::QueuedConnection);
      }
    });
    startTimers();
  }
  ~Pump() override { stop(); }

  /// For good. A callback that is being worked off may ask for it.
  void stop() {
    if (std::exchange(m_isStopped, true)) return;
    SoSensorManager::setQueueChangedCallback(nullptr);
    for (QTimer* timer : {&m_next, &m_idle, &m_timers}) timer->stop();
  }

 private:
  template <class Function> void work(Function const& function) {
    // What is called may finish all this, from within an event loop of its own too.
    QPointer<Pump> const self(this);
    function();
    if (self) startTimers();
  }
  void startTimers() {
    if (m_isStopped) return;
    if (SoSensorManager::hasPending(false)) {
      if (!m_next.isActive()) m_next.start();
    } else if (SoSensorManager::hasPending(true) && !m_idle.isActive()) {
      m_idle.start();
    }
    double const seconds = SoSensorManager::getTimeToNextTimer();
    if (seconds < 0) {
      m_timers.stop();
    } else {
      constexpr double LONGEST = 3600;  // asked again then
      m_timers.start(static_cast<int>(std::ceil(std::min(seconds, LONGEST) * 1000)));
    }
  }
  QTimer m_next, m_idle, m_timers;
  bool m_isStopped = false;
};

QPointer<Pump>& pump() {
  static QPointer<Pump> instance;
  return instance;
}

}  // namespace

void SoQt::init(QWidget*) {
  if (!pump() && QCoreApplication::instance()) pump() = new Pump(QCoreApplication::instance());
}

void SoQt::finish() {
  if (!pump()) return;
  pump()->stop();
  pump()->deleteLater();
  pump().clear();
}
