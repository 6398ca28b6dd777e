// What a field costs that changes in every frame while its editor is shown, against the same field without
// one.

#include <time.h>

#include <QApplication>
#include <QDockWidget>
#include <QElapsedTimer>
#include <QWindow>

#include "bench/bench.h"
#include "kestrava/nodes/SoDirectionalLight.h"
#include "kestrava/nodes/SoSeparator.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/session/SoVantleImpl.h"
#include "vantle/session/VntShellImpl.h"
#include "vnt/VntServices.h"

namespace {

constexpr int FRAMES = 60, FRAME_MS = 17;

double cpuSeconds() {
  timespec time;
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

/// Microseconds of this thread for a frame in which the colour changes.
double frameCost(SoDirectionalLight* light) {
  double const from = cpuSeconds();
  QElapsedTimer clock;
  clock.start();
  for (int frame = 0; frame < FRAMES; ++frame) {
    light->color = SbColor(static_cast<float>(frame % 10) / 10, 0.5f, 0.2f);
    do {
      QCoreApplication::processEvents();
      timespec const pause{0, 1'000'000};
      nanosleep(&pause, nullptr);
    } while (clock.elapsed() < (frame + 1) * FRAME_MS);
  }
  return (cpuSeconds() - from) * 1e6 / FRAMES;
}

} // namespace

BENCH(field_editor) {
  if (!QCoreApplication::instance()) {
    if (!qEnvironmentVariableIsSet("DISPLAY")) qputenv("QT_QPA_PLATFORM", "offscreen");
    static int argc = 1;
    static char name[] = "bench";
    static char* argv[] = {name, nullptr};
    new QApplication(argc, argv);
  }
  SoRef<SoSeparator> const scene(new SoSeparator);
  auto* const light = new SoDirectionalLight;
  scene->addChild(light);
  SoVantleImpl::start(scene, nullptr);
  SoVantleMainFrame* const window = VntShellImpl::getImplInstance()->getMainFrame();
  while (!window->isVisible() || !window->windowHandle()->isExposed()) QCoreApplication::processEvents();
  auto* const dock = window->findChild<QDockWidget*>("dockFieldEditor");
  double const bare = frameCost(light);
  VntServices::getInstance()->setSelectedField(&light->color);
  double const shown = frameCost(light);
  if (dock) dock->hide();
  double const hidden = frameCost(light);
  SoVantleImpl::stop(true);
  // Without the plug-in there is nothing to measure.
  if (!dock) return;
  bench::report({"", shown, "us/frame", bare});
  bench::report({"field_editor_hidden", hidden, "us/frame", bare});
}
