// The slots of the tree, the node overview and the field watch.
//
// What edits the tree and the find dialog come with those; until a slot has its worker it says so in the status bar.

#include <QPointer>
#include <algorithm>

#include "kestrava/fields/SoMFNode.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/kits/SoBaseKit.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/inspect/SoFieldItem.h"
#include "vantle/inspect/SoFieldWatch.h"
#include "vantle/inspect/SoTabNodeOverview.h"
#include "vantle/inspect/SoVantleEdition.h"
#include "vantle/prefs/SoVantlePreferences.h"
#include "vantle/session/VntShellImpl.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"
#include "vnt/VntExtension.h"

namespace {

QString watchKey(QTreeWidgetItem const* entry) { return QString::number(reinterpret_cast<quintptr>(entry)); }

/// Nodes, and lists of nodes or shader parameters, have no value that could be watched.
bool isWatchable(SoField const* field) {
  if (!field) return false;
  static SoType const shaderParameters = SoType::fromName("MFUniformShaderParameter");
  return !field->isOfType(SoSFNode::getClassTypeId()) && !field->isOfType(SoMFNode::getClassTypeId()) &&
         !field->isOfType(shaderParameters);
}

} // namespace

// Node overview.

void SoCommandManager::setNodeOverview(SoTreeViewItem* item, bool addTab) {
  if (!item) item = currentTreeItem();
  if (!item || !m_edition || !m_overviewItems) return;
  m_edition->setNode(item->getNode(), item->getBaseKit(), addTab);
  setOverviewItem(item);
}

/// The row of the current tab; there is one entry a tab at any time.
void SoCommandManager::setOverviewItem(SoTreeViewItem* item) {
  SoTabNodeOverview const* const tabs = m_edition->getTabNodeOverview();
  m_overviewItems->resize(tabs->count());
  if (tabs->currentIndex() >= 0) (*m_overviewItems)[tabs->currentIndex()] = item;
}

void SoCommandManager::selectedNodeChanged(SoFieldContainer* node) {
  if (!node || !m_edition) return;
  if (m_edition->getTabNodeOverview()->getCurrentNode() == node) return;
  m_edition->setNode(node, nullptr, true);
  setOverviewItem(nullptr);
}

void SoCommandManager::closeNodeOverview(int index) {
  if (!m_edition) return;
  SoTabNodeOverview* const tabs = m_edition->getTabNodeOverview();
  if (index < 0) index = tabs->currentIndex();
  if (tabs->count() > 1 && index >= 0 && index < m_overviewItems->size()) m_overviewItems->removeAt(index);
  tabs->closeNodeOverview(index);
}

void SoCommandManager::highlightNodeItem() {
  if (!m_edition || !m_overviewItems) return;
  int const index = m_edition->getTabNodeOverview()->currentIndex();
  SoTreeViewItem* const item = m_overviewItems->value(index, nullptr);
  if (!item) return;
  // The row must not re-target the overview that asked for it.
  bool const follow = m_treeView->isFollowInOverview();
  m_treeView->setFollowInOverview(false);
  m_treeView->setCurrentItem(item);
  m_treeView->scrollToItem(item);
  m_treeView->setFollowInOverview(follow);
}

void SoCommandManager::forgetItem(SoTreeViewItem* item) {
  if (!m_overviewItems) return;
  std::replace(m_overviewItems->begin(), m_overviewItems->end(), item, static_cast<SoTreeViewItem*>(nullptr));
  for (SoTreeViewItem*& origin : *m_watchOrigins) {
    if (origin == item) origin = nullptr;
  }
}

void SoCommandManager::nodeNameChanged(SoNode* node) {
  if (m_edition) m_edition->getFieldWatch()->updateItems(node);
}

void SoCommandManager::nodeSetOverride(bool) {}

/// The panels' pages, and one for each extension that has registered one.
void SoCommandManager::editPreferences() {
  QList<Preferences> pages;
  auto const add = [&pages](auto* provider) {
    Preferences page;
    provider->getPreferences(page.page, page.title, page.receiver, page.initSlot, page.setSlot);
    pages << page;
  };
  add(m_treeView);
  auto const panels = VntShellImpl::getImplInstance()->getPreferencePanel();
  for (auto panel = panels.begin(); panel != panels.end(); ++panel) {
    std::string const title = panel.key()->getInfo().toLatin1();
    pages << Preferences{panel->page, QString::fromLatin1(title.data(), title.size()), panel->page,
                         panel->initSlot, panel->setSlot};
  }
  // The session, and with it the dialog's parent, may end while the dialog is open.
  QPointer<SoVantlePreferences> const dialog = new SoVantlePreferences(pages, mainFrame());
  dialog->exec();
  delete dialog;
}

// Field watch.

void SoCommandManager::setFieldWatch(SoFieldItem* fieldItem, QPoint pos) {
  if (!m_edition) return;
  SoFieldWatch* const watch = m_edition->getFieldWatch();
  if (!pos.isNull() && !watch->rect().contains(watch->mapFrom(mainFrame(), pos))) return;
  if (!fieldItem) fieldItem = m_edition->getTabNodeOverview()->getCurrentFieldItem();
  if (!fieldItem || !isWatchable(fieldItem->getField())) return;
  QTreeWidgetItem* const entry = watch->insertFieldItem(fieldItem);
  if (!entry) return;
  int const tab = m_edition->getTabNodeOverview()->currentIndex();
  m_watchOrigins->insert(watchKey(entry), m_overviewItems->value(tab, nullptr));
}

void SoCommandManager::setFieldEditorFromWatch(QTreeWidgetItem* entry) {
  if (entry) m_edition->setField(entry, nullptr);
}

void SoCommandManager::setNodeOverviewFromWatch(QTreeWidgetItem* entry) {
  SoTreeViewItem* const origin = m_watchOrigins->value(watchKey(entry), nullptr);
  if (!origin) return;
  setNodeOverview(origin, false);
  highlightNodeItem();
}

void SoCommandManager::deleteFieldWatch(QTreeWidgetItem* fieldItem) {
  if (!fieldItem) fieldItem = m_edition->getFieldWatch()->currentItem();
  if (!fieldItem) return;
  m_watchOrigins->remove(watchKey(fieldItem));
  m_edition->getFieldWatch()->takeItem(fieldItem);
  delete fieldItem;
}

// Tree.

void SoCommandManager::expandAll(QTreeWidgetItem* startItem) {
  if (!startItem) startItem = currentTreeItem();
  if (startItem) m_treeView->expandAll(startItem);
}

void SoCommandManager::showAllReferences(SoTreeViewItem* item) {
  if (!item) item = currentTreeItem();
  if (item) m_treeView->showAllReferences(item);
}

void SoCommandManager::removeAllReferences(SoTreeViewItem* item) {
  if (!item) item = currentTreeItem();
  if (item) m_treeView->removeAllReferences(item);
}

void SoCommandManager::nextReference() { m_treeView->nextReference(); }
void SoCommandManager::previousReference() { m_treeView->previousReference(); }
void SoCommandManager::setFilter(int filter) { m_treeView->setFilter(filter); }

void SoCommandManager::ignoreEnable() {
  if (SoTreeViewItem* const item = currentTreeItem()) m_treeView->itemStateChanged(item->isIgnored(), item);
}
void SoCommandManager::treeAddNode(SoTreeViewItem*) { announce(tr("Adding nodes is not available yet.")); }
void SoCommandManager::treeMoveNode(SoTreeViewItem* itemToMove, SoTreeViewItem* itemInsertAfter, bool spaceBarPressed) {
  if (!itemToMove || !itemInsertAfter) return;
  QString const text = spaceBarPressed ? tr("Moving %1 behind %2 is not available yet.")
                                       : tr("Moving %1 onto %2 is not available yet.");
  announce(text.arg(itemToMove->text(SoVantleTreeView::TYPE_COLUMN),
                    itemInsertAfter->text(SoVantleTreeView::TYPE_COLUMN)));
}
void SoCommandManager::treeDeleteNode(SoTreeViewItem* itemToDelete) {
  if (itemToDelete || currentTreeItem()) announce(tr("Deleting nodes is not available yet."));
}
void SoCommandManager::cutNode() {
  if (currentTreeItem()) announce(tr("Cutting nodes is not available yet."));
}
void SoCommandManager::copyNode() {
  if (currentTreeItem()) announce(tr("Copying nodes is not available yet."));
}
void SoCommandManager::pasteNode() { announce(tr("Pasting nodes is not available yet.")); }
