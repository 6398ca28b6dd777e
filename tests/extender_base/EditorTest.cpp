#include "tests/extender_base/EditorTest.h"

#include <QAction>
#include <QLabel>
#include <QLineEdit>

#include "kestrava/nodes/SoNode.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/session/SoVantleImpl.h"
#include "vnt/VntServices.h"

void EditorTest::edit(SoNode* node, char const* field) {
  m_node = node;
  if (!SoVantleImpl::isRunning()) {
    m_scene = node; // a root that its host lets go of is not shown any longer
    startAttached(node);
  }
  m_field = node->getField(field);
  ASSERT_TRUE(m_field) << field;
  VntServices::getInstance()->setSelectedField(m_field);
  ASSERT_TRUE(panel());
  frame()->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(frame()));
}

std::string EditorTest::value() const {
  SbString text;
  m_field->get(text);
  return text.str();
}

QWidget* EditorTest::panel() const {
  auto* const dock = frame()->findChild<QDockWidget*>("dockFieldEditor");
  return dock ? dock->widget() : nullptr;
}

void EditorTest::type(QWidget* line, char const* text, bool enter) {
  ASSERT_TRUE(line);
  line->setFocus();
  ASSERT_TRUE(waitFor([line] { return line->hasFocus() || line->isAncestorOf(QApplication::focusWidget()); }));
  QWidget* const target = QApplication::focusWidget();
  QTest::keyClick(target, Qt::Key_A, Qt::ControlModifier);
  QTest::keyClicks(target, QString::fromUtf8(text));
  if (enter) QTest::keyClick(target, Qt::Key_Return);
}

QString EditorTest::problem() const {
  auto const* const label = panel()->findChild<QLabel*>("problem");
  return label && label->isVisibleTo(panel()) ? label->text() : QString();
}

QString EditorTest::note() const {
  auto const* const label = panel()->findChild<QLabel*>("changedNote");
  return label && label->isVisibleTo(panel()) ? label->text() : QString();
}

void EditorTest::undo() { VntServices::getInstance()->undo(); }
void EditorTest::redo() { VntServices::getInstance()->redo(); }

int EditorTest::countSteps() {
  int steps = 0;
  while (frame()->m_undoAction->isEnabled()) {
    undo();
    ++steps;
  }
  for (int i = 0; i < steps; ++i) redo();
  return steps;
}
