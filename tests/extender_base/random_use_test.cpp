// Editors in the hands of somebody who pays no attention, with a host that never rests and with one that
// does. VANTLE_RANDOM_SEED and VANTLE_RANDOM_STEPS make other and longer runs.

#include <QDockWidget>
#include <QLabel>
#include <cmath>
#include <cstdlib>

#include "extender_base/VntExpression.h"
#include "kestrava/draggers/SoDragger.h"
#include "kestrava/nodes/SoDirectionalLight.h"
#include "tests/extender_base/EditorTest.h"
#include "tests/vantle/LivelyHost.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/inspect/SoNodeOverview.h"
#include "vantle/inspect/SoNodeOverviewList.h"
#include "vantle/inspect/SoTabNodeOverview.h"
#include "vantle/inspect/SoVantleEdition.h"
#include "vantle/session/SoVantleImpl.h"
#include "vantle/tree/SoVantleTreeView.h"
#include "vnt/VntFieldEdit.h"
#include "vnt/VntServices.h"

class RandomUseTest : public EditorTest {
 public:
  VntServices* services() const { return VntServices::getInstance(); }
  QDockWidget* dock() const { return frame()->findChild<QDockWidget*>("dockFieldEditor"); }

  void startOn(SoNode* root) {
    startAttached(root);
    frame()->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(frame()));
  }

  void clickRow(QAbstractItemView* view) {
    QModelIndex const row = view->indexAt(QPoint(10, user.below(qMax(1, view->viewport()->height()))));
    if (!row.isValid() || !view->isVisible()) return;
    QRect const place = view->visualRect(row);
    user.log("row", view, row.data().toString());
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, place.center());
  }

  /// Something that the user does.
  void use() {
    int const kind = user.below(100);
    if (kind < 62) return user.act(dock()->isFloating() && user.happens(50) ? dock() : panel());
    if (kind < 72) return select();
    if (kind < 79) {
      user.log("undo or redo", nullptr);
      user.happens(60) ? undo() : redo();
      return;
    }
    if (kind < 88) return press(user.happens(30) ? "ignored" : user.happens(50) ? "disconnect" : "reset");
    if (kind < 91) return user.fillClipboard();
    if (kind < 95) return moveDock();
    user.press(user.happens(50) ? Qt::Key_Escape : Qt::Key_Tab);
  }

  void select() {
    auto* const overview = edition()->getTabNodeOverview()->getCurrentNodeOverview();
    int const kind = user.below(10);
    if (kind < 3) return clickRow(tree());
    if (kind < 6 && overview) return clickRow(overview->getList());
    if (kind < 7) return services()->setSelectedField(nullptr);
    SoField* const field = host.anyField();
    user.log("field", nullptr, field ? field->getName().getString() : "none");
    services()->setSelectedField(field);
  }

  void press(char const* name) {
    auto* const button = panel()->findChild<QAbstractButton*>(name);
    if (!button || !button->isVisible() || !button->isEnabled()) return;
    user.log("press", button);
    button->click();
  }

  void moveDock() {
    user.log("dock", nullptr);
    if (user.happens(25)) {
      dock()->close();
      return;
    }
    if (user.happens(30)) dock()->setFloating(!dock()->isFloating());
    dock()->show();
  }

  /// What holds at any time; a dead field is found by the sanitizer.
  void check() {
    SoField* const selected = services()->getSelectedField();
    QString expected = "No field is selected";
    if (selected) {
      SbString text;
      selected->get(text);
      expected = QString::fromUtf8(
          (selected->getContainer() ? selected->getName() : selected->getTypeId().getName()).getString());
    }
    EXPECT_EQ(find<QLabel>("fieldName")->text(), expected);
  }

  void endUse() {
    user.letGo();
    services()->setSelectedField(nullptr);
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
  int undoAll() {
    int steps = 0;
    for (; frame()->m_undoAction->isEnabled(); ++steps) undo();
    return steps;
  }

  unsigned const seed = static_cast<unsigned>(setting("VANTLE_RANDOM_SEED", 1));
  CarelessPerson user{seed};
  LivelyHost host{user};
};

namespace {

#ifdef __SANITIZE_ADDRESS__
constexpr int STEPS = 400;
#else
constexpr int STEPS = 1000;
#endif

TEST_F(RandomUseTest, WithAHostThatNeverRests) {
  // Few runs have been made since the faults that kept it from ending were mended.
  if (!std::getenv("VANTLE_RANDOM_SEED")) GTEST_SKIP() << "to be soaked: set VANTLE_RANDOM_SEED";
  host.newScene(30);
  startOn(host.root());
  // Also where an event loop of the user's doing, a menu's or a dialog's, is what runs.
  QTimer inside;
  QObject::connect(&inside, &QTimer::timeout, [this] {
    if (QApplication::activeModalWidget() || QApplication::activePopupWidget()) host.change();
  });
  inside.start(3);
  int const steps = setting("VANTLE_RANDOM_STEPS", STEPS);
  for (int step = 0; step < steps && !HasFailure(); ++step) {
    SCOPED_TRACE(step);
    use();
    if (user.happens(40)) host.change();
    if (user.happens(15)) host.changeField(services()->getSelectedField());
    if (user.happens(80)) QCoreApplication::processEvents();
    if (user.happens(10)) QTest::qWait(17);
    check();
    if (user.happens(1)) undoAll();
  }
  endUse();
  undoAll();
  inside.stop();
  SoVantleImpl::stop(true);
  EXPECT_EQ(host.root()->getRefCount(), 1);
  EXPECT_EQ(host.root()->getAuditors().getLength(), 0);
}

struct State {
  explicit State(SoField& field)
      : ignored(field.isIgnored()), isDefault(field.isDefault()), source(field.getConnectedField()) {
    field.get(value);
  }
  bool operator==(State const&) const = default;

  SbString value;
  bool ignored, isDefault;
  SoField* source;
};

std::string describe(SoField const& field, State const& state) {
  std::string const value = state.value.str();
  return std::string(field.getContainer()->getTypeId().getName().getString()) + "." +
         field.getName().getString() + (state.ignored ? " ignored" : "") +
         (state.isDefault ? " default" : "") + (state.source ? " connected" : "") + " " +
         (value.size() > 300 ? value.substr(0, 300) + "..." : value);
}

TEST_F(RandomUseTest, EverythingIsAsBeforeWhenAllIsUndone) {
  // Few runs have been made since the faults that kept it from ending were mended.
  if (!std::getenv("VANTLE_RANDOM_SEED")) GTEST_SKIP() << "to be soaked: set VANTLE_RANDOM_SEED";
  int const episodes = qMax(1, setting("VANTLE_RANDOM_STEPS", STEPS) / 50);
  int undone = 0;
  for (int episode = 0; episode < episodes && !HasFailure(); ++episode) {
    SCOPED_TRACE(episode);
    host.newScene(8);
    if (!SoVantleImpl::isRunning()) startOn(host.root());
    services()->setSceneGraph(host.root());
    QCoreApplication::processEvents();
    std::vector<std::pair<SoField*, State>> before;
    std::vector<SoRef<SoNode>> kept;
    for (SoNode* node : host.nodes()) {
      kept.emplace_back(node);
      // A manipulator and its dragger set each other: the value comes back, the default flag of the other one
      // not.
      if (node->isOfType(SoDragger::getClassTypeId())) continue;
      if (std::string_view(node->getTypeId().getName().getString()).ends_with("Manip")) continue;
      for (int i = 0; i < node->getNumFields(); ++i) {
        State const state(*node->getField(i));
        // The text of a field of nodes says what is default in those.
        if (state.value.str().find("Manip ") == std::string::npos)
          before.emplace_back(node->getField(i), state);
      }
    }
    for (int step = 0; step < 50; ++step) {
      use();
      QCoreApplication::processEvents();
      check();
    }
    endUse();
    undone += undoAll();
    for (auto const& [field, state] : before) {
      State const now(*field);
      EXPECT_TRUE(now == state) << describe(*field, now) << "\nwas " << describe(*field, state);
    }
  }
  EXPECT_GT(undone, 0) << "it did nothing that could be undone";
}

// Found by the test above: the step that was made here had nothing to undo, and took the default away.
TEST_F(RandomUseTest, AResetInADragOnlyEndsTheDrag) {
  auto* const light = new SoDirectionalLight;
  edit(light, "intensity");
  VntFieldEdit drag(&light->intensity);
  EXPECT_TRUE(drag.preview<SoSFFloat>(0.5f));
  drag.resetToDefault();
  EXPECT_EQ(light->intensity.getValue(), 1);
  EXPECT_TRUE(light->intensity.isDefault());
  EXPECT_EQ(countSteps(), 0);
}

TEST_F(RandomUseTest, AnUndoInADragGivesTheDragUp) {
  auto* const light = new SoDirectionalLight;
  edit(light, "intensity");
  VntFieldEdit drag(&light->intensity);
  EXPECT_TRUE(drag.set<SoSFFloat>(0.5f));
  EXPECT_TRUE(drag.preview<SoSFFloat>(0.75f));
  undo();
  EXPECT_TRUE(light->intensity.isDefault());
  drag.finish();
  EXPECT_EQ(countSteps(), 0);
  redo();
  EXPECT_EQ(light->intensity.getValue(), 0.5f);
}

TEST_F(RandomUseTest, AnExpressionIsANumberOrAProblem) {
  for (int i = 0; i < 20 * STEPS; ++i) {
    QString text;
    for (int k = user.below(4); k >= 0; --k) text += user.nonsense();
    if (user.happens(20)) text += QChar(user.below(0x10000));
    auto const result = VntExpression::evaluate(text);
    EXPECT_TRUE(!result || std::isfinite(result.value) || text.contains("inf") || text.contains("nan"))
        << text.toStdString();
  }
}

} // namespace
