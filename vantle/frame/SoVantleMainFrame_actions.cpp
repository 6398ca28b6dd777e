// Actions, menus, tool bars and what they are connected to.

#include <QAction>
#include <QLineEdit>
#include <QMenuBar>
#include <QToolBar>

#include "vantle/frame/SoCommandManager.h"
#include "vantle/frame/SoFindBox.h"
#include "vantle/frame/SoVantleMainFrame.h"
#include "vantle/inspect/SoVantleEdition.h"
#include "vantle/prefs/SoVantleStateManager.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/tree/SoVantleTreeView.h"
#include "vantle/viewer/SoVantleViewer.h"

namespace {

QIcon icon(char const* file) {
  return file ? QIcon(QStringLiteral(":/Vantle_icons/Icons/") + QLatin1String(file)) : QIcon();
}

} // namespace

QAction* SoVantleMainFrame::makeAction(QString const& text, char const* iconFile, char const* shortcut) {
  auto* action = new QAction(icon(iconFile), text, this);
  if (shortcut) action->setShortcut(QKeySequence(QLatin1String(shortcut)));
  // Being the window's own, the shortcuts of actions that stand in no menu work too.
  addAction(action);
  return action;
}

QAction* SoVantleMainFrame::makeCheckAction(QString const& text, char const* iconFile, bool checked) {
  QAction* const action = makeAction(text, iconFile);
  action->setCheckable(true);
  action->setChecked(checked);
  return action;
}

void SoVantleMainFrame::setupActions() {
  m_newAction = makeAction(tr("&New"), "filenew.png", "Ctrl+N");
  m_openAction = makeAction(tr("&Open..."), "fileopen", "Ctrl+O");
  m_reloadAction = makeAction(tr("&Reload"), "reload.png", "Ctrl+R");
  m_closeAction = makeAction(tr("&Close"), "fileclose.png");
  m_saveAction = makeAction(tr("&Save"), "filesave.png", "Ctrl+S");
  m_saveAsAction = makeAction(tr("Save &As..."), "filesaveas.png");
  m_printAction = makeAction(tr("&Print..."), "fileprint.png", "Ctrl+P");
  m_exportAction = makeAction(tr("&Export"), "filequickprint.png", "Ctrl+E");
  m_quitAction = makeAction(tr("&Quit"), "exit.png", "Ctrl+Q");

  m_undoAction = makeAction(tr("&Undo"), "undo.png", "Ctrl+Z");
  m_redoAction = makeAction(tr("&Redo"), "redo.png", "Ctrl+Y");
  m_cutAction = makeAction(tr("Cu&t"), "editcut.png", "Ctrl+X");
  m_copyAction = makeAction(tr("&Copy"), "editcopy.png", "Ctrl+C");
  m_pasteAction = makeAction(tr("&Paste"), "editpaste.png", "Ctrl+V");
  m_deleteAction = makeAction(tr("&Delete"), "editdelete.png");

  // The same key as "&New", and further down F2 and Shift+F2 twice: required as they stand.
  m_findAction = makeAction(tr("&Find..."), "find.png", "Ctrl+N");
  m_findNextAction = makeAction(tr("Find &Next"), "findnext.png", "F3");
  m_findPreviousAction = makeAction(tr("Find Pre&vious"), "findprevious.png", "Shift+F3");

  m_toggleBookmarkAction = makeAction(tr("Toggle Bookmark"), "bookmark.png", "Ctrl+F2");
  m_nextBookmarkAction = makeAction(tr("Next Bookmark"), "bookmarknext.png", "F2");
  m_previousBookmarkAction = makeAction(tr("Previous Bookmark"), "bookmarkprevious.png", "Shift+F2");
  m_clearBookmarksAction = makeAction(tr("Clear All Bookmarks"), "bookmarkclear.png", "Alt+F2");

  m_toggleFilterAction = makeCheckAction(tr("Toggle Filters"), "filter.png", true);
  struct Category {
    QString text;
    char const* icon;
  };
  Category const categories[CATEGORIES] = {
      {tr("Appearance"), "appearance.png"}, {tr("Callback"), "callback.png"},
      {tr("Camera"), "camera.png"},         {tr("Group"), "group.png"},
      {tr("Light"), "light.png"},           {tr("Manipulator"), "manipulator.png"},
      {tr("Nodekit"), "nodekit.png"},       {tr("Property"), "property.png"},
      {tr("Selection"), "selection.png"},   {tr("Separator"), "separator.png"},
      {tr("Shape"), "shape.png"},           {tr("Switch"), "switch.png"},
      {tr("Topology"), "topology.png"},     {tr("Transform"), "transform.png"}};
  for (int i = 0; i < CATEGORIES; ++i) {
    m_categoryActions[i] = makeCheckAction(categories[i].text, categories[i].icon, true);
  }
  m_customFilterAction = makeCheckAction(tr("Custom..."), "filtercustom.png", false);

  m_exploreAction = makeAction(tr("&Explore"));
  m_exploreAllAction = makeAction(tr("Explore &all"));
  m_filterAction = makeAction(tr("&Filter..."));
  m_insertAction = makeAction(tr("&Insert..."));
  m_insertClipboardAction = makeAction(tr("Insert &clipboard"));
  m_ignoreEnableAction = makeAction(tr("&Set Ignored/Enable"));
  m_showAllReferencesAction = makeAction(tr("Show &All References"), nullptr, "F4");
  m_hideAllReferencesAction = makeAction(tr("&Hide All References"), nullptr, "Ctrl+F4");
  m_nextReferenceAction = makeAction(tr("Ne&xt"), nullptr, "F2");
  m_previousReferenceAction = makeAction(tr("Pre&vious"), nullptr, "Shift+F2");
  m_openViewerAction = makeAction(tr("&Open Viewer"));

  m_preferencesAction = makeAction(tr("&Preferences..."), "configure.png");
  m_contentsAction = makeAction(tr("&Contents"), "help.png", "Shift+F1");
  m_aboutAction = makeAction(tr("&About Vantle"), "info.png");
}

/// Null in the list stands for a separator.
static void fill(QWidget* menuOrBar, QList<QAction*> const& actions) {
  for (QAction* action : actions) {
    if (!action) {
      action = new QAction(menuOrBar);
      action->setSeparator(true);
    }
    menuOrBar->addAction(action);
  }
}

void SoVantleMainFrame::setupMenuBar() {
  // The one title without a mnemonic, on purpose.
  m_fileMenu = menuBar()->addMenu(tr("File"));
  m_recentFilesMenu = new QMenu(tr("Recent &Files"), m_fileMenu);
  SoCommandManager* const commands = VntServicesImpl::getImplInstance()->getCommandManager();
  for (int i = 0; i < SoVantleViewer::MAX_RECENT_FILES; ++i) {
    QAction* const action =
        m_recentFilesMenu->addAction(QString(), commands, &SoCommandManager::openFileRecent);
    action->setVisible(false);
  }
  fill(m_fileMenu, {m_newAction, m_openAction, nullptr, m_reloadAction, nullptr, m_closeAction, nullptr,
                    m_saveAction, m_saveAsAction, nullptr, m_exportAction, nullptr, m_printAction, nullptr,
                    m_recentFilesMenu->menuAction(), nullptr, m_quitAction});

  m_editMenu = menuBar()->addMenu(tr("&Edit"));
  fill(m_editMenu, {m_undoAction, m_redoAction, nullptr, m_cutAction, m_copyAction, m_pasteAction, nullptr,
                    m_deleteAction, nullptr, m_preferencesAction});

  m_viewMenu = menuBar()->addMenu(tr("&View"));

  m_treeviewMenu = menuBar()->addMenu(tr("&TreeView"));
  m_bookmarkMenu = new QMenu(tr("Bookmarks"), m_treeviewMenu);
  fill(m_bookmarkMenu, {m_toggleBookmarkAction, nullptr, m_nextBookmarkAction, m_previousBookmarkAction,
                        nullptr, m_clearBookmarksAction});
  m_filterMenu = new QMenu(tr("Filter"), m_treeviewMenu);
  fill(m_filterMenu, {m_toggleFilterAction, nullptr});
  fill(m_filterMenu, QList<QAction*>(m_categoryActions.begin(), m_categoryActions.end()));
  // The preferences stand where one would look for the previous reference; meant so.
  fill(m_treeviewMenu, {m_ignoreEnableAction, nullptr, m_showAllReferencesAction, m_hideAllReferencesAction,
                        nullptr, m_nextReferenceAction, m_preferencesAction, nullptr, m_findAction,
                        m_findNextAction, nullptr, m_bookmarkMenu->menuAction(), m_filterMenu->menuAction()});

  m_helpMenu = menuBar()->addMenu(tr("&?"));
  fill(m_helpMenu, {m_contentsAction, nullptr, m_aboutAction});
}

void SoVantleMainFrame::setupToolBars() {
  auto const makeBar = [this](QString const& title, char const* name) {
    QToolBar* const bar = addToolBar(title);
    bar->setObjectName(QLatin1String(name)); // the stored layout refers to it
    return bar;
  };
  m_fileToolbar = makeBar(tr("File Tool Bar"), "fileToolBar");
  fill(m_fileToolbar, {m_newAction, m_openAction, nullptr, m_reloadAction, nullptr, m_closeAction, nullptr,
                       m_saveAction, m_saveAsAction, nullptr, m_printAction, m_exportAction});

  m_editToolbar = makeBar(tr("Edit Tool Bar"), "editToolBar");
  fill(m_editToolbar, {m_undoAction, m_redoAction, nullptr, m_cutAction, m_copyAction, m_pasteAction, nullptr,
                       m_deleteAction});

  addToolBarBreak(); // in one row the last ones would hide their buttons on most screens
  m_searchToolbar = makeBar(tr("Search Tool Bar"), "searchToolBar");
  m_findBox = new SoFindBox(VntServicesImpl::getImplInstance()->getCommandManager(), m_searchToolbar);
  m_searchToolbar->addAction(m_findAction);
  m_searchToolbar->addWidget(m_findBox);
  fill(m_searchToolbar, {m_findPreviousAction, m_findNextAction});

  m_bookmarkToolbar = makeBar(tr("Bookmark Tool Bar"), "bookmarkToolBar");
  fill(m_bookmarkToolbar, {m_toggleBookmarkAction, nullptr, m_previousBookmarkAction, m_nextBookmarkAction,
                           nullptr, m_clearBookmarksAction});

  m_filterToolbar = makeBar(tr("Filter Tool Bar"), "filterToolBar");
  fill(m_filterToolbar, {m_toggleFilterAction, nullptr});
  fill(m_filterToolbar, QList<QAction*>(m_categoryActions.begin(), m_categoryActions.end()));
}

void SoVantleMainFrame::setupConnections() {
  using Manager = SoCommandManager;
  Manager* const commands = VntServicesImpl::getImplInstance()->getCommandManager();
  auto const to = [commands](QAction* action, auto slot) {
    connect(action, &QAction::triggered, commands, [commands, slot] { (commands->*slot)(); });
  };
  // New closes, like Close; the command manager's newFile() is for embeddings.
  to(m_newAction, &Manager::closeFile);
  to(m_openAction, &Manager::openFile);
  to(m_reloadAction, &Manager::reloadFile);
  to(m_closeAction, &Manager::closeFile);
  to(m_saveAction, &Manager::saveFile);
  to(m_saveAsAction, &Manager::saveAsFile);
  to(m_printAction, &Manager::printQt);
  to(m_exportAction, &Manager::printFile);
  to(m_quitAction, &Manager::closeApp);
  to(m_undoAction, &Manager::undo);
  to(m_redoAction, &Manager::redo);
  connect(m_cutAction, &QAction::triggered, this, &SoVantleMainFrame::on_cutAction_activated);
  connect(m_copyAction, &QAction::triggered, this, &SoVantleMainFrame::on_copyAction_activated);
  connect(m_pasteAction, &QAction::triggered, this, &SoVantleMainFrame::on_pasteAction_activated);
  connect(m_deleteAction, &QAction::triggered, this, &SoVantleMainFrame::on_deleteAction_activated);
  to(m_findAction, &Manager::showFindDialog);
  to(m_findNextAction, &Manager::findNext);
  to(m_findPreviousAction, &Manager::findPrevious);
  to(m_toggleBookmarkAction, &Manager::toggleBookmark);
  to(m_nextBookmarkAction, &Manager::nextBookmark);
  to(m_previousBookmarkAction, &Manager::previousBookmark);
  to(m_clearBookmarksAction, &Manager::clearBookmark);
  connect(m_toggleFilterAction, &QAction::toggled, this, &SoVantleMainFrame::on_toggleFilterAction_toggled);
  for (QAction* action : m_categoryActions) {
    connect(action, &QAction::toggled, this, &SoVantleMainFrame::on_filterChanged);
  }
  connect(m_customFilterAction, &QAction::toggled, this, &SoVantleMainFrame::on_customFilterAction_toggled);
  to(m_contentsAction, &Manager::launchVantleHelpViewer);
  to(m_aboutAction, &Manager::launchAboutVantleFrame);
  connect(m_findBox->lineEdit(), &QLineEdit::returnPressed, commands, &Manager::find);
}

void SoVantleMainFrame::setDefaultState() {
  using Manager = SoCommandManager;
  Manager* const commands = VntServicesImpl::getImplInstance()->getCommandManager();
  m_deleteAction->setEnabled(false);
  connect(m_showAllReferencesAction, &QAction::triggered, commands,
          [commands] { commands->showAllReferences(); });
  connect(m_hideAllReferencesAction, &QAction::triggered, commands,
          [commands] { commands->removeAllReferences(); });
  connect(m_nextReferenceAction, &QAction::triggered, commands, &Manager::nextReference);
  connect(m_previousReferenceAction, &QAction::triggered, commands, &Manager::previousReference);
  connect(m_ignoreEnableAction, &QAction::triggered, commands, &Manager::ignoreEnable);
  for (QAction* action : {m_showAllReferencesAction, m_hideAllReferencesAction, m_nextReferenceAction,
                          m_previousReferenceAction, m_ignoreEnableAction}) {
    action->setEnabled(false);
  }
  connect(m_preferencesAction, &QAction::triggered, commands, &Manager::editPreferences);
  SoVantleStateManager::init();
  SoVantleViewer::getInstance()->getEdition()->setEditionStates();
  m_treeview->setState();
}
