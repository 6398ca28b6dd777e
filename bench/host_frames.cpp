// What the inspector costs a host while nobody uses it: a host's frame of 1,000 moving objects with and
// without it.
//
// Rounds with and without the inspector take turns, so that what else happens on the machine falls on both;
// figures are medians of the rounds. The line "_noise" compares the rounds without the inspector with each
// other: what a difference has to exceed to mean anything.

#include <epoxy/gl.h>
#include <time.h>

#include <QApplication>
#include <QWindow>
#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "bench/bench.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoMaterial.h"
#include "kestrava/nodes/SoPerspectiveCamera.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoTransform.h"
#include "kestrava/render/SoGuiRenderArea.h"
#include "kestrava/render/SoHeadlessContext.h"
#include "kestrava/sensors/SoSensorManager.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/inspect/SoFieldWatch.h"
#include "vantle/inspect/SoVantleEdition.h"
#include "vantle/session/SoVantleImpl.h"
#include "vantle/session/VntShellImpl.h"
#include "vantle/viewer/SoVantleViewer.h"

namespace {

constexpr int OBJECTS = 1000;
constexpr int ROUNDS = 9,
              FRAMES = 40; // a round with the inspector and one without it, each of that many frames

double now(clockid_t clock) {
  timespec time;
  clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

/// A host with a Qt application: ten groups of a hundred objects, each with a transform of its own that
/// changes in every frame, drawn through a scene manager with OpenGL of 1280 x 1024 pixels.
class Host {
 public:
  Host() : m_context(SoHeadlessContext::make()), m_current(*m_context) {
    unsigned names[2], framebuffer;
    glGenRenderbuffers(2, names);
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    std::pair<unsigned, unsigned> const parts[] = {{GL_RGBA8, GL_COLOR_ATTACHMENT0},
                                                   {GL_DEPTH_COMPONENT24, GL_DEPTH_ATTACHMENT}};
    for (int i = 0; i < 2; ++i) {
      glBindRenderbuffer(GL_RENDERBUFFER, names[i]);
      glRenderbufferStorage(GL_RENDERBUFFER, parts[i].first, 1280, 1024);
      glFramebufferRenderbuffer(GL_FRAMEBUFFER, parts[i].second, GL_RENDERBUFFER, names[i]);
    }
    auto* const camera = new SoPerspectiveCamera;
    camera->position = SbVec3f(0, 0, 60);
    camera->nearDistance = 10;
    camera->farDistance = 120;
    m_root->addChild(camera);
    for (int g = 0; g < 10; ++g) {
      auto* const group = new SoSeparator;
      m_root->addChild(group);
      for (int i = 0; i < OBJECTS / 10; ++i) {
        auto* const object = new SoSeparator;
        auto* const material = new SoMaterial;
        material->diffuseColor = SbColor(0.1f * static_cast<float>(g), 0.01f * static_cast<float>(i), 0.5f);
        m_transforms.push_back(new SoTransform);
        object->addChild(material);
        object->addChild(m_transforms.back());
        object->addChild(new SoCube);
        group->addChild(object);
      }
    }
    manager()->setSceneGraph(m_root);
    manager()->setViewportRegion(SbViewportRegion(1280, 1024));
  }
  ~Host() { manager()->releaseGL(); }

  SoGuiRenderArea* area() const { return m_area; }
  SoSceneManager* manager() const { return m_area->getSceneManager(); }
  std::vector<SoTransform*> const& transforms() const { return m_transforms; }

  void frame() {
    m_time += 0.02f;
    for (int i = 0; i < OBJECTS; ++i) {
      float const x = static_cast<float>(i % 40) - 20, y = static_cast<float>(i / 40) - 12;
      m_transforms[static_cast<std::size_t>(i)]->translation =
          SbVec3f(2 * x, 2 * y, std::sin(m_time + 0.3f * x + 0.2f * y));
    }
    manager()->render();
    glFinish();
    SoSensorManager::processTimerQueue();
    SoSensorManager::processDelayQueue(true);
    QCoreApplication::processEvents();
    SoVantleImpl::processEvents();
  }

  struct Cost {
    double wall, cpu; // milliseconds a frame; the second of this thread
  };
  /// The mean of all frames: what is done in every tenth frame counts, too.
  Cost round() {
    for (int i = 0; i < 5; ++i) frame();
    double const wall = now(CLOCK_MONOTONIC), cpu = now(CLOCK_THREAD_CPUTIME_ID);
    for (int i = 0; i < FRAMES; ++i) frame();
    return {(now(CLOCK_MONOTONIC) - wall) * 1e3 / FRAMES,
            (now(CLOCK_THREAD_CPUTIME_ID) - cpu) * 1e3 / FRAMES};
  }

 private:
  std::unique_ptr<SoHeadlessContext> m_context;
  SoHeadlessContext::Current m_current;
  SoRef<SoGuiRenderArea> m_area{new SoGuiRenderArea};
  SoRef<SoSeparator> m_root{new SoSeparator};
  std::vector<SoTransform*> m_transforms;
  float m_time = 0;
};

void makeApplication() {
  if (QCoreApplication::instance()) return;
  if (!qEnvironmentVariableIsSet("DISPLAY")) qputenv("QT_QPA_PLATFORM", "offscreen");
  static int argc = 1;
  static char name[] = "bench";
  static char* argv[] = {name, nullptr};
  new QApplication(argc, argv);
}

void compare(void (*showMore)(Host const&)) {
  makeApplication();
  Host host;
  std::vector<double> wall, wallBare, cpu, cpuBare;
  for (int i = 0; i < ROUNDS; ++i) {
    Host::Cost const bare = host.round();
    SoVantleImpl::start(host.area());
    QWidget* const window = VntShellImpl::getImplInstance()->getMainFrame();
    while (!window->isVisible() || !window->windowHandle()->isExposed()) QCoreApplication::processEvents();
    if (showMore) showMore(host);
    for (int k = 0; k < 20; ++k) QCoreApplication::processEvents();
    Host::Cost const inspected = host.round();
    SoVantleImpl::stop(true);
    wall.push_back(inspected.wall);
    cpu.push_back(inspected.cpu);
    wallBare.push_back(bare.wall);
    cpuBare.push_back(bare.cpu);
  }
  bench::report({"", median(wall), "ms", median(wallBare)});
  std::string const name = showMore ? "host_watch" : "host_tree";
  bench::report({name + "_cpu", median(cpu), "ms", median(cpuBare)});
  // Every second round without the inspector against the others.
  std::vector<double> odd, even;
  for (std::size_t i = 0; i < wallBare.size(); ++i) (i % 2 ? odd : even).push_back(wallBare[i]);
  bench::report({name + "_noise", median(odd), "ms", median(even)});
}

} // namespace

// The tree is shown, nothing is selected.
BENCH(host_tree) { compare(nullptr); }

// The field watch lists the translation of every object.
BENCH(host_watch) {
  compare([](Host const& host) {
    SoFieldWatch* const watch = SoVantleViewer::getInstance()->getEdition()->getFieldWatch();
    for (SoTransform* transform : host.transforms()) watch->addField(transform, &transform->translation);
  });
}
