#pragma once

#include <QDockWidget>
#include <QTest>

#include "kestrava/fields/SoFieldContainer.h"
#include "tests/vantle/VantleTest.h"

class SoField;
class SoNode;

/// A session of a host with a field selected in it, whose editor is used as a person would use it: the test knows
/// the editor's widgets by their object names only.
class EditorTest : public VantleTest {
 public:
  /// Selects a field of a node, which becomes the scene at the first call. The editor is then shown and its window
  /// active.
  void edit(SoNode* node, char const* field);
  SoField* field() const { return m_field; }
  /// The field's text form, as files have it.
  std::string value() const;

  QWidget* panel() const;
  /// A widget of the panel; the test fails when there is none of that name.
  template <class Widget>
  Widget* find(char const* name) const {
    Widget* const widget = panel()->findChild<Widget*>(QLatin1String(name));
    EXPECT_TRUE(widget) << "no widget " << name;
    return widget;
  }
  /// Gives it the focus, replaces its text, and presses Enter unless told not to.
  void type(QWidget* line, char const* text, bool enter = true);
  /// What the panel says is wrong; empty when it says nothing.
  QString problem() const;
  /// "changed to ..." while something is being typed; empty when it says nothing.
  QString note() const;

  void undo();
  void redo();
  /// The number of steps that can be undone now; undoes and redoes them.
  int countSteps();

 private:
  SoRef<SoNode> m_scene, m_node;
  SoField* m_field = nullptr;
};
