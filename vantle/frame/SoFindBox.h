#pragma once

#include <QComboBox>

class QActionGroup;
class QMenu;
class SoCommandManager;

/// The box of the search tool bar: a text, those that were found before, and at its left end a menu of what
/// is searched and how. What the menu shows is the command manager's.
class SoFindBox : public QComboBox {
  Q_OBJECT
 public:
  static constexpr int MAX_TEXTS = 20;

  SoFindBox(SoCommandManager* commands, QWidget* parent);

  /// A text that was found becomes the first of the list.
  void remember(QString const& text);
  /// What is searched and how has changed.
  void showOptions();

 private:
  QAction* addOption(QString const& text, int value);
  void takeFlags();
  void openMenu();

  SoCommandManager* m_commands;
  QMenu* m_menu;
  QActionGroup* m_modes;
  QList<QAction*> m_flags;
};
