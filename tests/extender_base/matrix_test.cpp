// The editor of matrices: the grid, and translation, rotation and scale.

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabBar>

#include "kestrava/base/SbRotation.h"
#include "kestrava/nodes/SoMatrixTransform.h"
#include "tests/extender_base/EditorTest.h"
#include "vantle/frame/SoVantleMainFrame.h"

namespace {

class MatrixTest : public EditorTest {
 public:
  void editMatrix(char const* value) {
    m_node = new SoMatrixTransform;
    ASSERT_TRUE(m_node->matrix.set(value));
    edit(m_node.get(), "matrix");
  }
  void showParts() {
    auto* const pages = find<QTabBar>("pages");
    QTest::mouseClick(pages, Qt::LeftButton, {}, pages->tabRect(1).center());
    EXPECT_TRUE(find<QLineEdit>("translationX")->isVisible());
    EXPECT_FALSE(find<QLineEdit>("m00")->isVisible());
  }
  /// One of the rotation or of the scale's axes.
  QLineEdit* line(char const* part, char const* name) const {
    return find<QWidget>(part)->findChild<QLineEdit*>(name);
  }
  QString shown(char const* name) const { return find<QLineEdit>(name)->text(); }
  QString reason() const {
    auto const* const label = find<QLabel>("reason");
    EXPECT_NE(label->isVisibleTo(panel()), find<QWidget>("parts")->isVisibleTo(panel()));
    return label->isVisibleTo(panel()) ? label->text() : QString();
  }
  SbMatrix const& matrix() const { return m_node->matrix.getValue(); }
  SoMatrixTransform* node() const { return m_node.get(); }

 private:
  SoRef<SoMatrixTransform> m_node;
};

constexpr char const* IDENTITY = "1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1";

TEST_F(MatrixTest, TheGridIsEditedSinglyAndFilledAtOnce) {
  editMatrix(IDENTITY);
  type(find<QLineEdit>("m31"), "2.5");
  EXPECT_EQ(value(), "1 0 0 0 0 1 0 0 0 0 1 0 0 2.5 0 1");
  undo();
  EXPECT_EQ(value(), IDENTITY);
  EXPECT_TRUE(waitFor([&] { return shown("m31") == "0"; }));
  redo();
  type(find<QLineEdit>("m12"), "5 6 7 8"); // a row
  EXPECT_EQ(value(), "1 0 0 0 5 6 7 8 0 0 1 0 0 2.5 0 1");
  type(find<QLineEdit>("m20"), "1,2,3,4, 5,6,7,8, 9,10,inf,12, 13,14,15,nan");
  EXPECT_EQ(value(), "1 2 3 4 5 6 7 8 9 10 inf 12 13 14 15 nan");
  EXPECT_EQ(shown("m33"), "nan");
  EXPECT_EQ(countSteps(), 3);

  type(find<QLineEdit>("m00"), "1 2");
  EXPECT_FALSE(problem().isEmpty());
  EXPECT_EQ(shown("m00"), "1 2");
  node()->matrix.setValue(SbMatrix());
  EXPECT_TRUE(waitFor([&] { return note() == QString("changed to ") + IDENTITY; }));
  QTest::keyClick(find<QLineEdit>("m00"), Qt::Key_Escape);
  EXPECT_TRUE(waitFor([&] { return shown("m00") == "1"; }));
  EXPECT_EQ(problem(), "");
}

TEST_F(MatrixTest, InverseTransposeAndIdentity) {
  editMatrix("2 0 0 0 0 4 0 0 0 0 1 0 6 0 0 1");
  EXPECT_EQ(find<QLabel>("determinant")->text(), "Determinant 8");
  QTest::mouseClick(find<QPushButton>("inverse"), Qt::LeftButton);
  EXPECT_EQ(value(), "0.5 0 0 0 0 0.25 0 0 0 0 1 0 -3 0 0 1");
  undo();
  QTest::mouseClick(find<QPushButton>("transpose"), Qt::LeftButton);
  EXPECT_EQ(value(), "2 0 0 6 0 4 0 0 0 0 1 0 0 0 0 1");
  QTest::mouseClick(find<QPushButton>("matrixIdentity"), Qt::LeftButton);
  EXPECT_EQ(value(), IDENTITY);
  EXPECT_EQ(countSteps(), 2);
  undo();
  EXPECT_EQ(value(), "2 0 0 6 0 4 0 0 0 0 1 0 0 0 0 1");

  node()->matrix.set("1 2 3 0 2 4 6 0 0 0 1 0 0 0 0 1");
  QTest::mouseClick(find<QPushButton>("inverse"), Qt::LeftButton);
  EXPECT_EQ(problem(), "The matrix is singular (its determinant is 0): it has no inverse.");
  EXPECT_EQ(value(), "1 2 3 0 2 4 6 0 0 0 1 0 0 0 0 1");
}

TEST_F(MatrixTest, PartsAreSplitAndPutTogether) {
  editMatrix("0 2 0 0 -2 0 0 0 0 0 2 0 1 2 3 1"); // twice the size, a quarter turn about z
  showParts();
  EXPECT_EQ(reason(), "");
  EXPECT_EQ(shown("translationY"), "2");
  EXPECT_EQ(shown("scaleX"), "2");
  EXPECT_EQ(line("rotation", "axisZ")->text(), "1");
  EXPECT_FALSE(find<QWidget>("scaleOrientation")->isVisibleTo(panel())); // tells nothing here

  type(find<QLineEdit>("translationX"), "-7");
  EXPECT_EQ(matrix()[3][0], -7);
  type(find<QLineEdit>("scaleY"), "3");
  EXPECT_TRUE(find<QWidget>("scaleOrientation")->isVisibleTo(panel()));
  EXPECT_NEAR(matrix()[1][0], -3, 1e-6);
  type(line("rotation", "axisX"), "0 1 0");
  EXPECT_NEAR(matrix()[1][1], 3, 1e-6);
  EXPECT_NEAR(matrix()[0][2], -2, 1e-6);
  type(line("rotation", "axisX"), "0 0 0");
  EXPECT_EQ(problem(), "The axis has length 0: it has no direction to turn about.");
  QTest::keyClick(line("rotation", "axisX"), Qt::Key_Escape);
  EXPECT_EQ(line("rotation", "axisY")->text(), "1");
  EXPECT_EQ(countSteps(), 3);

  SbMatrix const before = matrix();
  QWidget* const ball = find<QWidget>("rotation")->findChild<QWidget*>("trackball");
  QTest::mousePress(ball, Qt::LeftButton, {}, ball->rect().center());
  for (int i = 1; i < 20; ++i) QTest::mouseMove(ball, ball->rect().center() + QPoint(i, i));
  EXPECT_NE(matrix(), before);
  QTest::mouseRelease(ball, Qt::LeftButton, {}, ball->rect().center() + QPoint(19, 19));
  EXPECT_EQ(countSteps(), 4);
  undo();
  EXPECT_EQ(matrix(), before);
}

/// Counts how often a widget gets another size.
class ResizeCounter : public QObject {
 public:
  explicit ResizeCounter(QWidget* widget) { widget->installEventFilter(this); }
  bool eventFilter(QObject*, QEvent* event) override {
    m_count += event->type() == QEvent::Resize;
    return false;
  }
  int m_count = 0;
};

TEST_F(MatrixTest, TheLayoutSettlesAtEverySize) {
  editMatrix("0 2 0 0 -2 0 0 0 0 0 1 0 1 2 3 1");
  showParts();
  auto* const dock = frame()->findChild<QDockWidget*>("dockFieldEditor");
  dock->setFloating(true);
  ASSERT_TRUE(QTest::qWaitForWindowExposed(dock));
  ResizeCounter counter(find<QWidget>("rotation"));
  for (int width = 300; width < 640; width += 9) {
    for (int height : {200, 330, 400, 460, 530, 600}) {
      dock->resize(width, height);
      int rounds = 0;
      for (int before = -1; before != counter.m_count && rounds < 20; ++rounds) {
        before = counter.m_count;
        QCoreApplication::processEvents();
      }
      EXPECT_LT(rounds, 20) << width << " x " << height;
      EXPECT_GE(find<QLineEdit>("translationX")->height(),
                find<QLineEdit>("translationX")->sizeHint().height());
      EXPECT_GE(line("rotation", "eulerX")->height(), find<QLineEdit>("translationX")->sizeHint().height());
    }
  }
  dock->setFloating(false);
}

TEST_F(MatrixTest, ATypedScaleAndItsAxesStayAsTheyAre) {
  editMatrix(IDENTITY);
  showParts();
  // The toolkit would split each of these into other parts.
  type(find<QLineEdit>("scaleX"), "-1");
  EXPECT_EQ(shown("scaleX"), "-1");
  EXPECT_EQ(shown("scaleY"), "1");
  type(line("scaleOrientation", "axisX"), "0 0 1");
  type(line("scaleOrientation", "angle"), "pi/4 rad");
  EXPECT_EQ(shown("scaleX"), "-1");
  type(find<QLineEdit>("scaleZ"), "0"); // singular
  EXPECT_EQ(reason(), "");
  EXPECT_EQ(shown("scaleZ"), "0");
  EXPECT_EQ(matrix()[2][2], 0);
  SbMatrix wanted;
  wanted.setTransform(SbVec3f(), SbRotation(), SbVec3f(-1, 1, 0), SbRotation(SbVec3f(0, 0, 1), 0.785398185f),
                      SbVec3f());
  EXPECT_TRUE(matrix().equals(wanted, 1e-6f)) << value();
}

TEST_F(MatrixTest, WhatCanNotBeSplitSaysSoAndKeepsTheGrid) {
  editMatrix(IDENTITY);
  showParts();
  struct Case {
    char const *matrix, *reason;
  };
  for (Case const& c : {Case{"1 0 0 0 0 1 0 0 0 0 1 0.5 0 0 0 1", "projective"},
                        Case{"1 0 0 0 0 1 0 0 0 0 0 0 0 0 0 1", "singular"},
                        Case{"1 0 0 0 0 inf 0 0 0 0 1 0 0 0 0 1", "not finite"},
                        Case{"1 0 0 0 0 1 0 0 0 0 1 0 nan 0 0 1", "not finite"}}) {
    SCOPED_TRACE(c.reason);
    node()->matrix.set(c.matrix);
    EXPECT_TRUE(waitFor([&] { return reason().contains(c.reason); })) << qPrintable(reason());
    EXPECT_EQ(value(), c.matrix);
  }
  node()->matrix.set("1 0.5 0 0 0 1 0 0 0 0 1 0 0 0 0 1"); // a shear has scale axes of its own
  ASSERT_TRUE(waitFor([&] { return reason().isEmpty(); }));
  EXPECT_TRUE(find<QWidget>("scaleOrientation")->isVisibleTo(panel()));
  type(find<QLineEdit>("translationZ"), "9");
  SbMatrix wanted;
  wanted[0][1] = 0.5f;
  wanted[3][2] = 9;
  EXPECT_TRUE(matrix().equals(wanted, 1e-5f)) << value();
}

} // namespace
