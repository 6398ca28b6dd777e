// A program without Qt: a plain window, a loop of its own, and a scene that the toolkit draws into it. It
// neither links the inspector nor anything that the inspector needs; the toolkit loads them when the
// inspector is started.

#include <X11/XKBlib.h>
#include <X11/keysym.h>
#include <unistd.h>

#include <cctype>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

#include "apps/host_loop/LoopWindow.h"
#include "apps/host_loop/RobotArm.h"
#include "apps/hosts/SceneChanges.h"
#include "kestrava/base/SoLibVantle.h"
#include "kestrava/render/SoGuiRenderArea.h"
#include "kestrava/render/SoOffscreenRenderArea.h"
#include "kestrava/sensors/SoSensorManager.h"

namespace {

constexpr char USAGE[] =
    "Usage: host_loop [OPTION]...\n"
    "Shows a robot arm that the inspector can look into.\n"
    "\n"
    "  --inspect node|manager|area   start the inspector at once, on what is named\n"
    "  --over                        over a window of this program that it opens for the inspector\n"
    "  --frames N                    end after N frames\n"
    "  --shot FILE.png               with --frames: write the view to FILE.png at the end\n"
    "  --abrupt                      end without stopping the inspector\n"
    "  --keys LETTERS                press these keys, one every tenth frame\n"
    "  --help                        print this text\n"
    "\n"
    "Keys\n"
    "  1, 2, 3   start the inspector on the root node, the scene manager, the render area\n"
    "  0         stop it\n"
    "  Q, X      end; X without stopping the inspector\n";

void printUsage() {
  std::fputs(USAGE, stdout);
  for (auto const& key : SceneChanges::KEYS) std::printf("  %c         %s\n", std::toupper(key.letter), key.what);
  std::fputs(
      "A click in the view selects in the inspector what lies there; with the control key held, the inspector lists\n"
      "all that does.\n",
      stdout);
}

struct Options {
  std::string inspect, shot, keys;
  long frames = 0; // 0: no end
  bool over = false, abrupt = false;
};

[[noreturn]] void refuse(std::string const& what) {
  std::fprintf(stderr, "host_loop: %s\nTry 'host_loop --help'.\n", what.c_str());
  std::exit(2);
}

Options parse(int argc, char** argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    std::string const argument = argv[i];
    auto value = [&]() -> std::string {
      if (i + 1 == argc) refuse(argument + " needs a value");
      return argv[++i];
    };
    if (argument == "--inspect") {
      options.inspect = value();
      if (options.inspect != "node" && options.inspect != "manager" && options.inspect != "area") {
        refuse("--inspect takes node, manager or area");
      }
    } else if (argument == "--frames") {
      options.frames = std::atol(value().c_str());
      if (options.frames < 1) refuse("--frames takes a number from 1");
    } else if (argument == "--shot") {
      options.shot = value();
    } else if (argument == "--keys") {
      options.keys = value();
    } else if (argument == "--over") {
      options.over = true;
    } else if (argument == "--abrupt") {
      options.abrupt = true;
    } else if (argument == "--help") {
      printUsage();
      std::exit(0);
    } else {
      refuse("unknown option " + argument);
    }
  }
  if (!options.shot.empty() && options.frames == 0) refuse("--shot goes with --frames");
  return options;
}

/// The program: a window, a scene in it, and at times the inspector.
class Host {
 public:
  explicit Host(Options const& options)
      : m_options(options),
        m_window("Robot arm  (keys: 1 2 3 0 inspector, A R S P L K M changes, Q quit)", 800, 640),
        m_area(new SoGuiRenderArea) {
    if (getError()) return;
    manager()->setSceneGraph(m_arm.getRoot());
    manager()->setViewportRegion(SbViewportRegion(800, 640));
    // The manager hears of every change of the scene and asks for one frame, out of processDelayQueue().
    manager()->setRenderCallback(
        [](void* host, SoSceneManager*) { static_cast<Host*>(host)->m_needsFrame = true; }, this);
    if (!m_options.inspect.empty()) inspect(m_options.inspect[0]);
  }
  ~Host() {
    // In order: the inspector goes first, while everything that it looks at is there; it asks the scene
    // manager for a last frame without its mark, which nobody draws any more. Then what the manager has in
    // the context, and then, with the window, the context.
    SoLibVantle::instance()->stop();
    if (getError()) return;
    manager()->setRenderCallback(nullptr);
    m_window.makeCurrent();
    manager()->releaseGL();
  }
  Host(Host const&) = delete;
  Host& operator=(Host const&) = delete;

  char const* getError() const { return m_window.getError(); }

  int run() {
    using Clock = std::chrono::steady_clock;
    Clock::time_point const start = Clock::now();
    auto seconds = [start] { return std::chrono::duration<double>(Clock::now() - start).count(); };
    for (long frame = 1; !m_ends; ++frame) {
      double const began = seconds();
      handleEvents();
      pressGivenKey(frame);
      m_arm.pose(began);
      say(m_changes.turn(began));
      // The toolkit's timers and what waits for the end of all changes; idle sensors too, as this loop has
      // the time.
      SoSensorManager::processTimerQueue();
      SoSensorManager::processDelayQueue(true);
      if (std::exchange(m_needsFrame, false)) draw();
      // The inspector's windows live from this call; it also carries out the stop that the user asks for by
      // closing them. False: it does not run, or does not run any more.
      bool const ran = std::exchange(m_runs, SoLibVantle::instance()->processEvents());
      if (ran && !m_runs) say("the inspector has ended");
      if (frame == m_options.frames) break;
      m_window.wait(began + 1.0 / 60 - seconds());
    }
    return m_options.shot.empty() ? 0 : writeShot();
  }
  bool endsAbruptly() const { return m_options.abrupt; }

 private:
  SoSceneManager* manager() const { return m_area->getSceneManager(); }
  static void say(std::string const& what) {
    if (what.empty()) return;
    std::printf("host_loop: %s\n", what.c_str());
    std::fflush(stdout);
  }

  /// By the first letter of the way.
  void inspect(char way) {
    SoLibVantle* const inspector = SoLibVantle::instance();
    if (inspector->isRunning()) return say("the inspector runs already");
    // A host that has a place for the inspector passes its window.
    void* handle = nullptr;
    if (m_options.over) {
      if (!m_second) m_second = m_window.openSecond("Robot arm: inspector", 900, 600);
      handle = reinterpret_cast<void*>(m_second);
    }
    bool started = false;
    switch (way) {
      case 'n':
        started = inspector->startNode(m_arm.getRoot(), handle);
        break;
      case 'm':
        started = inspector->startSceneManager(manager(), handle);
        break;
      case 'a':
        started = inspector->startRenderArea(m_area);
        break;
    }
    // The toolkit has said why not, on standard error.
    if (!started) return say("goes on without the inspector");
    m_runs = true;
    say(way == 'n'   ? "inspected: the root node"
        : way == 'm' ? "inspected: the scene manager"
                     : "inspected: the render area");
  }

  void handleEvents() {
    while (XPending(m_window.getDisplay()) > 0) {
      XEvent event;
      XNextEvent(m_window.getDisplay(), &event);
      if (m_window.isClose(event)) m_ends = true;
      if (event.xany.window != m_window.getWindow()) continue;
      switch (event.type) {
        case KeyPress:
          key(XkbKeycodeToKeysym(m_window.getDisplay(), static_cast<KeyCode>(event.xkey.keycode), 0, 0));
          break;
        // Not the press: until the button is up this window keeps the pointer, and the inspector can open no menu.
        case ButtonRelease: {
          if (event.xbutton.button != Button1) break;
          // X counts pixels from above, the toolkit from below.
          SbViewportRegion const& region = manager()->getViewportRegion();
          int const y = region.getViewportSizePixels()[1] - 1 - event.xbutton.y;
          SoLibVantle::instance()->setPickAction(
              region, SbVec2s(static_cast<short>(event.xbutton.x), static_cast<short>(y)));
          break;
        }
        case ConfigureNotify:
          manager()->setViewportRegion(SbViewportRegion(static_cast<short>(event.xconfigure.width),
                                                        static_cast<short>(event.xconfigure.height)));
          [[fallthrough]];
        case Expose:
          m_needsFrame = true;
          break;
      }
    }
  }

  /// Of --keys.
  void pressGivenKey(long frame) {
    long const which = frame / 10 - 1;
    if (frame % 10 == 0 && which < static_cast<long>(m_options.keys.size())) {
      say(m_changes.press(m_options.keys[static_cast<std::size_t>(which)]));
    }
  }

  void key(KeySym symbol) {
    switch (symbol) {
      case XK_1:
        return inspect('n');
      case XK_2:
        return inspect('m');
      case XK_3:
        return inspect('a');
      case XK_0:
        return SoLibVantle::instance()->stop();
      case XK_x:
        m_options.abrupt = true;
        [[fallthrough]];
      case XK_q:
        m_ends = true;
        return;
      default:
        if (symbol < 0x80) say(m_changes.press(static_cast<char>(symbol)));
    }
  }

  /// The inspector may have made another context current since the last frame.
  void draw() {
    m_window.makeCurrent();
    manager()->render();
    m_window.showFrame();
  }

  /// With OpenGL of its own, for which the manager gives up what it has in the window's.
  int writeShot() {
    m_window.makeCurrent();
    manager()->releaseGL();
    SoRef<SoOffscreenRenderArea> const picture(new SoOffscreenRenderArea);
    picture->setSize(SbVec2i32(manager()->getViewportRegion().getViewportSizePixels()));
    picture->setSceneManager(manager());
    return picture->renderToFile(m_options.shot) ? 0 : 1;
  }

  Options m_options;
  LoopWindow m_window;
  RobotArm m_arm;
  SceneChanges m_changes{static_cast<SoGroup*>(m_arm.getRoot()), m_arm.getHand(), 2.2f, 0.3f};
  SoRef<SoGuiRenderArea> m_area;
  Window m_second = 0; // for the inspector; 0: not opened
  bool m_needsFrame = true, m_runs = false, m_ends = false;
};

} // namespace

int main(int argc, char** argv) {
  Options const options = parse(argc, argv);
  Host host(options);
  if (host.getError()) {
    std::fprintf(stderr, "host_loop: %s\n", host.getError());
    return 1;
  }
  int const status = host.run();
  // Ends the process with the inspector running: nothing of this program is taken down, only what the
  // libraries do at the end of a process.
  if (host.endsAbruptly()) std::exit(status);
  return status;
}
