// Sessions over and over, and programs that end in the middle of one. Each in a process of its own: a Qt
// application that the session makes can be had there only.

#include <gtest/gtest.h>
#include <malloc.h>

#include <QAction>
#include <QApplication>
#include <QDockWidget>
#include <QLocale>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QOpenGLWidget>
#include <QPixmapCache>
#include <QPointer>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <QTreeWidget>
#include <QWindow>
#include <algorithm>
#include <clocale>
#include <cstdio>
#include <filesystem>
#include <fstream>

#include "kestrava/base/SoError.h"
#include "kestrava/base/SoPreferences.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoSeparator.h"
#include "kestrava/nodes/SoWWWInline.h"
#include "kestrava/render/SoGuiRenderArea.h"
#include "tests/vantle/SessionChild.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/session/SoVantleImpl.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/session/VntShellImpl.h"
#include "vantle/tree/SoVantleTreeView.h"
#include "vantle/viewer/SoVantleViewer.h"
#include "vnt/VntServices.h"

namespace {

int argumentCount = 1;
char programName[] = "host";
char* arguments[] = {programName, nullptr};

SoSeparator* makeScene() {
  auto* const root = new SoSeparator;
  root->ref();
  for (int i = 0; i < 10; ++i) root->addChild(new SoCube);
  return root;
}

bool nothingIsLeft() {
  return !SoVantleImpl::isRunning() && !VntServicesImpl::isInstance() && !VntShellImpl::isInstance() &&
         !SoVantleViewer::isInstance();
}

SoVantleMainFrame* frame() { return VntShellImpl::getImplInstance()->getMainFrame(); }

/// A host's turns, until the window is there.
bool showsWindow() {
  for (int i = 0; i < 1000; ++i) {
    if (!SoVantleImpl::processEvents()) return false;
    QCoreApplication::processEvents(); // a host with Qt does that itself
    if (frame()->windowHandle() && frame()->windowHandle()->isExposed()) return true;
    QTest::qSleep(5);
  }
  return false;
}

// Everything that a host finds changed, or not, after a session.
struct Surroundings {
  QLocale locale;
  std::string cLocale = std::setlocale(LC_ALL, nullptr);
  QStringList libraryPaths = QCoreApplication::libraryPaths();
  QCoreApplication* application = QCoreApplication::instance();
  std::vector<std::pair<SoErrorCB*, void*>> handlers{
      {SoError::getHandlerCallback(), SoError::getHandlerData()},
      {SoDebugError::getHandlerCallback(), SoDebugError::getHandlerData()},
      {SoReadError::getHandlerCallback(), SoReadError::getHandlerData()},
      {SoErrorStack::getHandlerCallback(), SoErrorStack::getHandlerData()}};
  SoWWWInlineFetchURLCB* fetch = SoWWWInline::getFetchURLCallBack();
  void* fetchData = SoWWWInline::getFetchURLData();
  std::optional<SbString> stackError = SoPreferences::getSetValue("KSV_DEBUG_STACKERROR");
  std::optional<SbString> stackFormat = SoPreferences::getSetValue("KSV_STACKWALKER_HTML_OUTPUT");

  bool operator==(Surroundings const&) const = default;
};

void hostsErrorHandler(SoError const*, void*) {}
void hostsFetch(SbString const&, void*, SoWWWInline*) {}

/// Starts in one of the four ways.
void startSomehow(int way, SoNode* root, SoGuiRenderArea* area) {
  if (way % 4 == 0) SoVantleImpl::start(root, nullptr);
  if (way % 4 == 1) SoVantleImpl::start(area->getSceneManager(), nullptr);
  if (way % 4 == 2) SoVantleImpl::start(area);
  if (way % 4 == 3) SoVantleImpl::startStandalone(argumentCount, arguments);
}

int leaveAllAsItWas() {
  std::setlocale(LC_ALL, "C"); // of the host; the environment says another one
  QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
  int mark;
  SoErrorStack::setHandlerCallback(hostsErrorHandler, &mark);
  SoWWWInline::setFetchURLCallBack(hostsFetch, &mark);
  SoPreferences::setValue("KSV_STACKWALKER_HTML_OUTPUT", "host's");
  SoNode* const root = makeScene();
  SoRef<SoGuiRenderArea> const area(new SoGuiRenderArea);
  area->getSceneManager()->setSceneGraph(root);
  QCoreApplication::libraryPaths(); // Qt makes them when first asked
  for (int way = 0; way < 8; ++way) {
    Surroundings const before;
    startSomehow(way, root, area);
    CHILD_EXPECT(SoVantleImpl::isRunning());
    CHILD_EXPECT(showsWindow());
    CHILD_EXPECT(QLocale().decimalPoint() == ".");
    CHILD_EXPECT(before.cLocale == std::setlocale(LC_ALL, nullptr));
    CHILD_EXPECT(SoErrorStack::getHandlerCallback() != hostsErrorHandler);
    CHILD_EXPECT(SoPreferences::getString("KSV_DEBUG_STACKERROR") == SbString("1"));
    SoVantleImpl::stop(true);
    CHILD_EXPECT(nothingIsLeft());
    Surroundings const after;
    CHILD_EXPECT(after.application == before.application);
    CHILD_EXPECT(after.libraryPaths == before.libraryPaths);
    CHILD_EXPECT(after.locale == before.locale);
    CHILD_EXPECT(after == before);
    CHILD_EXPECT(root->getRefCount() == 2 && root->getAuditors().getLength() == 1);
  }
  area->getSceneManager()->setSceneGraph(nullptr);
  root->unref();
  return 0;
}

int leaveAllAsItWasInQtHost() {
  QApplication application(argumentCount, arguments);
  return leaveAllAsItWas();
}

SessionChild const surroundings("surroundings", leaveAllAsItWas);
SessionChild const surroundingsInQtHost("surroundings in a Qt host", leaveAllAsItWasInQtHost);

TEST(SessionSurroundings, AreAsBeforeAfterAStop) {
  EXPECT_EQ(surroundings.run(), "");
  EXPECT_EQ(surroundingsInQtHost.run(), "");
}

// Over and over.

std::vector<std::string> entriesOf(std::string const& folder) {
  std::vector<std::string> names;
  for (auto const& entry : std::filesystem::directory_iterator(folder))
    names.push_back(entry.path().filename());
  return names;
}

/// The names of the threads tell whose they are.
std::string threadNames() {
  std::vector<std::string> names;
  for (std::string const& id : entriesOf("/proc/self/task")) {
    std::ifstream file("/proc/self/task/" + id + "/comm");
    std::getline(file, names.emplace_back());
  }
  std::sort(names.begin(), names.end());
  std::string text;
  for (std::string const& name : names) text += ' ' + name;
  return text;
}

struct Usage {
  size_t handles = entriesOf("/proc/self/fd").size();
  size_t threads = entriesOf("/proc/self/task").size();
  qsizetype widgets = QApplication::allWidgets().size();
  qsizetype objects = QCoreApplication::instance() ? QCoreApplication::instance()->children().size() : 0;
  int types = SoType::getNumTypes();
  bool operator==(Usage const&) const = default;
  std::string text() const {
    return std::to_string(handles) + " handles, " + std::to_string(threads) + " threads (" + threadNames() +
           "), " + std::to_string(widgets) + " widgets, " + std::to_string(objects) + " objects, " +
           std::to_string(types) + " types";
  }
};

/// Memory in kilobytes: what is allocated, and what the process occupies. The second one sees what a driver
/// maps as well, but also holes between allocations, which come and go.
struct Memory {
  long allocated, resident;
  static Memory now() {
    malloc_trim(0);
    struct mallinfo2 const info = mallinfo2();
    Memory memory{static_cast<long>((info.uordblks + info.hblkhd) / 1024), 0};
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
      if (line.rfind("VmRSS:", 0) == 0) memory.resident = std::atol(line.c_str() + 6);
    }
    return memory;
  }
};

// Rounds that a sanitizer has the patience for. It keeps what is freed, so that nothing can be said of the
// memory; with it lost memory is found otherwise. Making Qt's application takes most of a round.
#ifdef __SANITIZE_ADDRESS__
constexpr int ROUNDS = 40, OWN_APPLICATION_ROUNDS = 20;
constexpr bool HAS_MEMORY = false;
#else
constexpr int ROUNDS = 1000, OWN_APPLICATION_ROUNDS = 100;
constexpr bool HAS_MEMORY = true;
#endif

/// What the rounds after the first quarter have added to the memory; nothing when one fails or something else
/// grows.
template <class Round> std::optional<Memory> growth(int rounds, Round const& doRound) {
  std::string usageBefore;
  std::optional<Usage> before;
  Memory memory{};
  for (int round = 0; round < rounds; ++round) {
    if (!doRound(round)) {
      std::fprintf(stderr, "round %d failed\n", round);
      return std::nullopt;
    }
    if (round != rounds / 4) continue;
    before = Usage();
    usageBefore = before->text();
    memory = Memory::now();
  }
  Usage const after;
  Memory const end = Memory::now();
  Memory const grown{end.allocated - memory.allocated, end.resident - memory.resident};
  std::fprintf(stderr, "%s; then %s; grown by %ld KiB, resident %ld KiB\n", usageBefore.c_str(),
               after.text().c_str(), grown.allocated, grown.resident);
  if (!(after == *before)) return std::nullopt;
  return grown;
}

class Host {
 public:
  Host() { m_area->getSceneManager()->setSceneGraph(m_root); }
  ~Host() {
    m_area->getSceneManager()->setSceneGraph(nullptr);
    m_root->unref();
  }
  /// A session, started and stopped in another way each time.
  bool startAndStop(int round) {
    int const references = m_root->getRefCount(), auditors = m_root->getAuditors().getLength();
    startSomehow(round, m_root, m_area);
    bool ok = SoVantleImpl::isRunning() && SoVantleImpl::processEvents();
    if (round % 10 == 0) ok = ok && showsWindow();
    SoVantleImpl::stop(round % 3 != 0);
    ok = ok && !SoVantleImpl::processEvents() && nothingIsLeft();
    // In a host's application Qt deletes later what the host's event loop gets to.
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return ok && m_root->getRefCount() == references && m_root->getAuditors().getLength() == auditors;
  }

 private:
  SoNode* const m_root = makeScene();
  SoRef<SoGuiRenderArea> const m_area{new SoGuiRenderArea};
};

/// The widgets that a session has most of, without the inspector.
bool showPlainWindow(int round) {
  QApplication application(argumentCount, arguments);
  QMainWindow window;
  window.setWindowState(Qt::WindowMaximized);
  QMenu* const menu = window.menuBar()->addMenu("Menu");
  QToolBar* const bar = window.addToolBar("Bar");
  for (int i = 0; i < 50; ++i) {
    QPixmap pixmap(16, 16);
    pixmap.fill(Qt::red);
    QAction* const action = bar->addAction(QIcon(pixmap), "Action " + QString::number(i));
    menu->addAction(action);
  }
  for (int i = 0; i < 4; ++i) {
    auto* const dock = new QDockWidget("Dock", &window);
    auto* const tree = new QTreeWidget(dock);
    for (int row = 0; row < 20; ++row) new QTreeWidgetItem(tree, {"Row"});
    dock->setWidget(tree);
    window.addDockWidget(Qt::LeftDockWidgetArea, dock);
  }
  bool const standalone = round % 4 == 3;
  if (standalone) window.setCentralWidget(new QOpenGLWidget(&window));
  window.show();
  QCoreApplication::processEvents();
  for (int i = 0; round % 10 == 0 && i < 1000; ++i) {
    if (window.windowHandle()->isExposed()) break;
    QCoreApplication::processEvents();
    QTest::qSleep(5);
  }
  return true;
}

/// Qt's cache grows up to 10 MB by itself as icons are shown, and the table of its keys without an end: both
/// would hide what a session leaves. Without an application the call does nothing.
void keepNoPixmaps() { QPixmapCache::setCacheLimit(0); }

SessionChild const oftenInQtHost("often in a Qt host", [] {
  QApplication application(argumentCount, arguments);
  keepNoPixmaps();
  Host host;
  std::optional<Memory> const grown = growth(ROUNDS, [&host](int round) { return host.startAndStop(round); });
  CHILD_EXPECT(grown);
  CHILD_EXPECT(!HAS_MEMORY || (grown->allocated < 256 && grown->resident < 4096));
  return 0;
});

SessionChild const oftenAlone("often alone", [] {
  {
    QApplication const application(argumentCount, arguments);
    keepNoPixmaps(); // nor do the applications that follow
  }
  Host host;
  std::optional<Memory> const plain = growth(OWN_APPLICATION_ROUNDS, showPlainWindow);
  std::optional<Memory> const grown =
      growth(OWN_APPLICATION_ROUNDS, [&host](int round) { return host.startAndStop(round); });
  CHILD_EXPECT(plain && grown);
  // Some kilobytes are lost with each application by Qt and the OpenGL libraries, without a session too.
  CHILD_EXPECT(!HAS_MEMORY || grown->allocated < plain->allocated + 3 * OWN_APPLICATION_ROUNDS);
  return 0;
});

TEST(SessionOften, InAHostWithAQtApplication) { EXPECT_EQ(oftenInQtHost.run(), ""); }
TEST(SessionOften, WithAnApplicationOfItsOwn) { EXPECT_EQ(oftenAlone.run(), ""); }

// The order of the teardown, as far as Qt's objects tell it.

int recordOrder() {
  static QStringList order;
  SoNode* const root = makeScene();
  SoVantleImpl::start(root, nullptr);
  CHILD_EXPECT(SoVantleImpl::isRunning());
  auto const record = [](QObject* object, char const* name) {
    QObject::connect(object, &QObject::destroyed, [name] {
      QString entry = name;
      if (QLocale().decimalPoint() != ".") entry += " after the locale";
      order << entry;
    });
  };
  QLocale::setDefault(QLocale(QLocale::C));
  record(VntServices::getInstance(), "services");
  record(SoVantleViewer::getInstance(), "viewer");
  record(frame(), "frame");
  record(QCoreApplication::instance(), "application");
  SoVantleImpl::stop(true);
  CHILD_EXPECT((order == QStringList{"services", "viewer", "frame", "application"}));
  return 0;
}
SessionChild const teardown("teardown", recordOrder);

TEST(SessionTeardown, GoesInOrder) { EXPECT_EQ(teardown.run(), ""); }

// Programs that end.

int startAndShow() {
  SoVantleImpl::start(makeScene(), nullptr);
  CHILD_EXPECT(showsWindow());
  return 0;
}

SessionChild const returns("returns", startAndShow);
SessionChild const exits("exits", [] {
  if (startAndShow() != 0) return 2;
  std::exit(0);
});
SessionChild const exitsInside("exits inside", [] {
  if (startAndShow() != 0) return 2;
  QTimer::singleShot(0, frame(), [] { std::exit(0); });
  while (SoVantleImpl::processEvents()) {
  }
  return 3;
});
SessionChild const standaloneReturns("standalone returns", [] {
  SoVantleImpl::startStandalone(argumentCount, arguments);
  return showsWindow() ? 0 : 2;
});
SessionChild const applicationGoes("application goes", [] {
  {
    QApplication application(argumentCount, arguments);
    if (startAndShow() != 0) return 2;
  }
  CHILD_EXPECT(nothingIsLeft());
  CHILD_EXPECT(!SoVantleImpl::processEvents());
  SoVantleImpl::stop(true);
  // Another one, and again.
  QApplication application(argumentCount, arguments);
  return startAndShow();
});
SessionChild const applicationStays("application stays", [] {
  new QApplication(argumentCount, arguments);
  return startAndShow();
});
SessionChild const exitsInSlotOfHost("exits in a slot of the host", [] {
  QApplication application(argumentCount, arguments);
  if (startAndShow() != 0) return 2;
  QTimer::singleShot(0, [] { std::exit(0); });
  return application.exec();
});
SessionChild const quitsInSlotOfHost("quits in a slot of the host", [] {
  QApplication application(argumentCount, arguments);
  if (startAndShow() != 0) return 2;
  // Deferred, and never carried out by the host.
  QTimer::singleShot(0, [] { SoVantleImpl::stop(false); });
  QTimer::singleShot(20, &application, &QApplication::quit);
  return application.exec();
});

TEST(SessionEnds, WithTheProgram) {
  for (SessionChild const* child : {&returns, &exits, &exitsInside, &standaloneReturns}) {
    EXPECT_EQ(child->run(), "") << child->name();
  }
}

TEST(SessionEnds, WithTheHostsQtApplication) {
  for (SessionChild const* child :
       {&applicationGoes, &applicationStays, &exitsInSlotOfHost, &quitsInSlotOfHost}) {
    EXPECT_EQ(child->run(), "") << child->name();
  }
}

// Stops inside of the processEvents() that drives the session's own application.

int stopInsideOfOwnApplication() {
  SoNode* const root = makeScene();
  for (bool byHand : {true, false}) {
    SoVantleImpl::start(root, nullptr);
    CHILD_EXPECT(showsWindow());
    bool inside = false;
    auto const stop = [&inside] {
      inside = true;
      SoVantleImpl::stop(true);
      inside = inside && !SoVantleImpl::isRunning() && QCoreApplication::instance() &&
               !SoVantleImpl::processEvents() && VntShellImpl::isInstance() && !frame()->isVisible();
    };
    if (byHand) {
      QObject::connect(SoVantleViewer::getInstance()->getTreeView(), &QTreeWidget::itemClicked, stop);
      QWidget* const view = SoVantleViewer::getInstance()->getTreeView()->viewport();
      QTest::mouseClick(frame()->windowHandle(), Qt::LeftButton, {}, view->mapTo(frame(), QPoint(20, 10)));
    } else {
      QTimer::singleShot(0, frame(), stop);
    }
    for (int i = 0; i < 1000 && SoVantleImpl::processEvents(); ++i) QTest::qSleep(1);
    CHILD_EXPECT(inside);
    CHILD_EXPECT(nothingIsLeft());
    CHILD_EXPECT(!QCoreApplication::instance());
    CHILD_EXPECT(root->getRefCount() == 1);
  }
  return 0;
}
SessionChild const stopsInside("stops inside", stopInsideOfOwnApplication);

TEST(SessionEnds, FromInsideOfItsOwnApplication) { EXPECT_EQ(stopsInside.run(), ""); }

} // namespace
