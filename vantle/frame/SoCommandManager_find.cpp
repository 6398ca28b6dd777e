// The slots of bookmarks and search.

#include <QLineEdit>
#include <QStatusBar>

#include "vantle/frame/SoCommandManager.h"
#include "vantle/frame/SoFindBox.h"
#include "vantle/frame/SoTreeStatus.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"

namespace {

/// Of what was looked for, in a message: its beginning.
constexpr int MAX_TEXT = 60;

bool isHiddenInTree(SoTreeViewItem const* item) {
  for (; item; item = item->parent()) {
    if (item->isHidden()) return true;
  }
  return false;
}

} // namespace

/// Makes a row current that was reached from the current one, and says what the user would not expect.
void SoCommandManager::goTo(SoTreeViewItem* item, bool backwards, QString const& onlyOne) {
  SoTreeViewItem const* const from = currentTreeItem();
  QString text;
  if (item == from) {
    text = onlyOne;
  } else if (from && SoTreeViewItem::isAbove(item, from) != backwards) {
    text = backwards ? tr("Went on from the last row.") : tr("Went on from the first row.");
  }
  // The row is selected and shown in the panels all the same.
  if (isHiddenInTree(item)) text += QLatin1Char(' ') + tr("The filter hides this row.");
  m_treeView->setCurrentItem(item);
  m_treeView->scrollToItem(item);
  if (text.isEmpty())
    mainFrame()->statusBar()->clearMessage(); // what the last search said
  else
    announce(text.trimmed());
}

// Bookmarks.

void SoCommandManager::toggleBookmark() {
  if (SoTreeViewItem* const item = currentTreeItem()) item->setBookmarked(!item->isBookmarked());
}

void SoCommandManager::nextBookmark() {
  SoTreeViewItem* const item = m_treeView->nextBookmark();
  item ? goTo(item, false, tr("This is the only bookmark.")) : announce(tr("There are no bookmarks."));
}

void SoCommandManager::previousBookmark() {
  SoTreeViewItem* const item = m_treeView->previousBookmark();
  item ? goTo(item, true, tr("This is the only bookmark.")) : announce(tr("There are no bookmarks."));
}

void SoCommandManager::clearBookmark() { m_treeView->clearBookmark(); }

// Search.

/// Until there is a dialog, the box does the same.
void SoCommandManager::showFindDialog() {
  SoFindBox* const box = mainFrame()->getFindBox();
  box->setFocus(Qt::OtherFocusReason);
  box->lineEdit()->selectAll();
}

void SoCommandManager::setFindMode(int mode) {
  if (mode < SoVantleTreeView::FIND_TYPE || mode > SoVantleTreeView::FIND_ID) return;
  m_findMode = mode;
  if (SoFindBox* box = mainFrame()->getFindBox()) box->showOptions();
}

void SoCommandManager::setFindFlags(int flags) {
  m_findFlags = flags;
  if (SoFindBox* box = mainFrame()->getFindBox()) box->showOptions();
}

void SoCommandManager::find() { findWith(m_findFlags); }
void SoCommandManager::findNext() { findWith(m_findFlags & ~SoVantleTreeView::FIND_BACKWARD); }
void SoCommandManager::findPrevious() { findWith(m_findFlags | SoVantleTreeView::FIND_BACKWARD); }

void SoCommandManager::findWith(int flags) {
  SoFindBox* const box = mainFrame()->getFindBox();
  QString const text = box->lineEdit()->text();
  SoTreeViewItem* const found = m_treeView->find(m_findMode, text, flags);
  if (!found) return announce(nothingFound(text, flags));
  box->remember(text);
  goTo(found, flags & SoVantleTreeView::FIND_BACKWARD, tr("No other row fits."));
}

QString SoCommandManager::nothingFound(QString const& text, int flags) const {
  bool const exact = flags & SoVantleTreeView::FIND_EXACT;
  if (text.isEmpty() && !exact) return tr("Nothing to look for: the find box is empty.");
  QString const subjects[] = {tr("type"), tr("name"), tr("address"), tr("id")};
  QString const wanted = text.size() > MAX_TEXT ? text.left(MAX_TEXT) + QStringLiteral("...") : text;
  QString what = (exact ? tr("No row whose %1 is \"%2\"") : tr("No row whose %1 contains \"%2\""))
                     .arg(subjects[m_findMode], wanted);
  if (flags & SoVantleTreeView::FIND_CASE_SENSITIVE) what += tr(", upper and lower case told apart");
  what += QLatin1Char('.');
  if (!m_treeView->isAnyUnbuilt()) return what;
  return what + QLatin1Char(' ') +
         tr("%1 places have no row yet and were not searched.")
             .arg(SoTreeStatus::grouped(m_treeView->placesNotBuilt()));
}
