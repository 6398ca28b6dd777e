#include "vantle/tree/SoTreeContextMenu.h"

#include "kestrava/nodes/SoNode.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/session/VntShellImpl.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"

SoTreeContextMenu::SoTreeContextMenu(SoVantleTreeView* tree) : QMenu(tree), m_tree(tree) {}

QAction* SoTreeContextMenu::addEntry(QAction* action) {
  m_entries << action;
  return action;
}

// Emptying the menu destroys actions that are the menu's own, so they are the tree's.
QAction* SoTreeContextMenu::addSeparatorEntry() {
  auto* const separator = new QAction(m_tree);
  separator->setSeparator(true);
  return addEntry(separator);
}

void SoTreeContextMenu::makeEntries() {
  if (!m_entries.isEmpty() || !VntShellImpl::isInstance() || !VntServicesImpl::isInstance()) return;
  SoVantleMainFrame const* const frame = VntShellImpl::getImplInstance()->getMainFrame();
  SoCommandManager* const commands = VntServicesImpl::getImplInstance()->getCommandManager();
  auto const own = [this](QString const& text, auto* receiver, auto slot) {
    auto* const action = new QAction(text, m_tree);
    connect(action, &QAction::triggered, receiver, slot);
    return addEntry(action);
  };
  own(tr("Expand All"), commands, [commands] { commands->expandAll(); });
  own(tr("Add to Node Overview"), commands, [commands] { commands->setNodeOverview(); });
  own(tr("Add Node"), m_tree, [tree = m_tree] { tree->addNode(); });
  own(tr("&Save scene graph"), commands, [commands] { commands->saveSubSceneGraph(); });
  addEntry(frame->m_deleteAction);
  m_forEachRow = QSet<QAction*>(m_entries.begin(), m_entries.end());
  m_ignoreSeparator = addSeparatorEntry();
  m_ignore = addEntry(frame->m_ignoreEnableAction);
  m_referencesSeparator = addSeparatorEntry();
  m_showReferences = addEntry(frame->m_showAllReferencesAction);
  m_hideReferences = addEntry(frame->m_hideAllReferencesAction);
  m_forEachRow << addSeparatorEntry();
  // The key is the tree's; one of this action would make two of it.
  QString const key = SoVantleTreeView::copyPathKey().toString(QKeySequence::NativeText);
  m_forEachRow << own(tr("Copy &Path") + '\t' + key, m_tree, [tree = m_tree] { tree->copyPath(); });
}

void SoTreeContextMenu::fill(SoTreeViewItem const* row) {
  makeEntries();
  bool const onlyIgnore = row->isIgnored() && !row->baseKitPart();
  // What was shown for an earlier row stays shown, unless that row is an ignored one.
  if (!row->isIgnored()) {
    m_shown.unite(m_forEachRow);
    if (!row->baseKitPart()) show({m_ignoreSeparator, m_ignore});
    if (row->getRefCount() > 1) show({m_referencesSeparator, m_showReferences});
    if (row->showRefImage()) show({m_hideReferences});
  } else if (onlyIgnore) {
    m_shown = {m_ignore};
    // Added to the menu again it stands at its end.
    m_entries.removeOne(m_ignore);
    m_entries.append(m_ignore);
  }
  clear();
  for (QAction* entry : m_entries) {
    if (m_shown.contains(entry)) addAction(entry);
  }
  if (!onlyIgnore) addPlugInMenus(row->getNode()->getTypeId());
}

/// They stay those of the plug-ins, which may take them away while this one is open.
void SoTreeContextMenu::addPlugInMenus(SoType const& type) {
  if (!VntShell::getInstance()) return;
  QList<QMenu*> const menus = VntShell::getInstance()->getContextualMenus(type);
  if (!menus.isEmpty()) addSeparator();
  for (QMenu* menu : menus) addMenu(menu);
}
