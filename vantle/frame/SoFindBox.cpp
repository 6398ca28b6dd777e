#include "vantle/frame/SoFindBox.h"

#include <QAction>
#include <QActionGroup>
#include <QLineEdit>
#include <QMenu>

#include "vantle/frame/SoCommandManager.h"
#include "vantle/tree/SoVantleTreeView.h"

SoFindBox::SoFindBox(SoCommandManager* commands, QWidget* parent) : QComboBox(parent), m_commands(commands) {
  setEditable(true);
  setMinimumWidth(150);
  setDuplicatesEnabled(false);
  setInsertPolicy(NoInsert); // only what was found is kept
  setCompleter(nullptr);     // a part of a name is to stay one
  m_menu = new QMenu(tr("Find Options"), this);
  m_modes = new QActionGroup(this);
  struct Option {
    QString text;
    int value;
  };
  for (auto const& [text, mode] : {Option{tr("By Type"), SoVantleTreeView::FIND_TYPE},
                                   {tr("By Name"), SoVantleTreeView::FIND_NAME},
                                   {tr("By Address"), SoVantleTreeView::FIND_ADDRESS},
                                   {tr("By Id"), SoVantleTreeView::FIND_ID}}) {
    m_modes->addAction(addOption(text, mode));
  }
  m_menu->addSeparator();
  for (auto const& [text, flag] : {Option{tr("Backward"), SoVantleTreeView::FIND_BACKWARD},
                                   {tr("Case Sensitive"), SoVantleTreeView::FIND_CASE_SENSITIVE},
                                   {tr("Exact Match"), SoVantleTreeView::FIND_EXACT}}) {
    m_flags << addOption(text, flag);
    connect(m_flags.back(), &QAction::triggered, this, &SoFindBox::takeFlags);
  }
  connect(m_modes, &QActionGroup::triggered, this,
          [this](QAction* action) { m_commands->setFindMode(action->data().toInt()); });
  QAction* const opener = lineEdit()->addAction(QIcon(QStringLiteral(":/Vantle_icons/Icons/find.png")),
                                                QLineEdit::LeadingPosition);
  opener->setToolTip(tr("What is searched, and how"));
  connect(opener, &QAction::triggered, this, &SoFindBox::openMenu);
  // A key for those who do not use a mouse.
  opener->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Down));
  opener->setShortcutContext(Qt::WidgetShortcut);
  showOptions();
}

QAction* SoFindBox::addOption(QString const& text, int value) {
  QAction* const action = m_menu->addAction(text);
  action->setCheckable(true);
  action->setData(value);
  return action;
}

void SoFindBox::takeFlags() {
  int flags = 0;
  for (QAction const* action : m_flags) flags |= action->isChecked() ? action->data().toInt() : 0;
  m_commands->setFindFlags(flags);
}

void SoFindBox::openMenu() { m_menu->popup(mapToGlobal(rect().bottomLeft())); }

void SoFindBox::showOptions() {
  int const mode = m_commands->getFindMode(), flags = m_commands->getFindFlags();
  for (QAction* action : m_modes->actions()) action->setChecked(action->data().toInt() == mode);
  QStringList how{m_modes->checkedAction()->text()};
  for (QAction* action : m_flags) {
    action->setChecked(flags & action->data().toInt());
    if (action->isChecked()) how << action->text();
  }
  QString const text = how.join(QStringLiteral(", "));
  lineEdit()->setPlaceholderText(text);
  setToolTip(tr("Finds rows: %1. Ctrl+Down changes that.").arg(text));
}

void SoFindBox::remember(QString const& text) {
  if (text.isEmpty()) return;
  QSignalBlocker const blocker(this);
  if (int const known = findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive); known >= 0)
    removeItem(known);
  while (count() >= MAX_TEXTS) removeItem(count() - 1);
  insertItem(0, text);
  setCurrentIndex(0);
}
