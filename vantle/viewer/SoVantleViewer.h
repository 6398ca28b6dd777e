#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QTimer>
#include <functional>
#include <memory>

#include "kestrava/base/SbForward.h"
#include "kestrava/base/SbString.h"
#include "kestrava/base/SoBase.h"
#include "kestrava/sensors/SoNodeSensor.h"

class QDockWidget;
class QWidget;
class SoError;
class SoInput;
class SoNode;
class SoHighlightRenderAction;
class SoQtExaminerViewer;
class SoSceneManager;
class SoSelection;
class SoTreeViewItem;
class SoVantleEdition;
class SoVantleMainFrame;
class SoVantleTreeView;

/// Holds the inspected scene and its file, and puts the main window together.
class SoVantleViewer : public QObject {
  Q_OBJECT
 public:
  enum WriteFileType { FROM_HEADER = 0, ASCII = 1, BINARY = 2 };
  static constexpr int MAX_RECENT_FILES = 9;

  /// Created on first use, in the shell's main frame.
  static SoVantleViewer* getInstance();
  static bool isInstance() { return m_instance; }
  static void releaseInstance();

  /// Reads the stored window settings and recent files.
  void initViewer();
  /// Puts docks and tool bars to their stored places. What the layout says about those that do not exist is
  /// passed over, so it is to be called again when there are new ones. False when no layout is stored.
  bool restoreLayout();
  void saveMainFrameSettings();

  /// Null: no scene. `clear`: the undo history too.
  void setScene(SoNode* root, bool clear);
  SoNode* getScene() const { return m_scene; }
  /// The scene is the host's: when the host has let go of it, so that only the inspector keeps it alive, and when
  /// its scene manager is gone, or the render area that the session was started on, there is no scene any more.
  void followHost();
  /// The inspector's own selection node; the scene stands below it.
  SoSelection* getSelection() const { return m_selection; }
  SoVantleTreeView* getTreeView() const { return m_treeView; }
  SoVantleEdition* getEdition() const { return m_edition.get(); }
  /// Null when attached to a host.
  SoQtExaminerViewer* getExaminer() const { return m_examiner.get(); }
  QString const& getFileName() const { return m_fileName; }
  QList<QString> const& getRecentFiles() const { return m_recentFiles; }

  /// 1 while a row is made current because of a pick in the 3D view, otherwise 0.
  int getMode() const { return m_mode; }
  /// What the user clicks: goes to the row of what lies there, or lists all that does when the control key is
  /// held.
  void setPickAction(SbViewportRegion const& region, SbVec2s position);
  /// Goes to the row of what was picked a while ago, when it is still in the scene.
  void showPicked(SoPath const* path);
  /// Whether what is selected is marked in the 3D view.
  void setHighlighting(bool on);

  void fileLoad(QString const& name);
  void fileLoad(SoInput& in);
  /// Entry of the recent files; asks about unsaved changes.
  void fileLoadRecent(int index);
  void fileSave();
  /// Null: the whole scene.
  void fileSaveAs(SoNode* node);
  bool fileWrite(SoNode* node, SbString const& name, WriteFileType type, bool becomesScene);
  /// False when the user wants to stay with the unsaved scene.
  bool okToClear();
  bool fileClose();
  WriteFileType checkHeaderType(SbString const& name);
  void updateRecentFiles(QString const& name);
  void updateRecentFilesMenu();
  void displayReadError();

  void cut();
  void copy();
  void paste();
  void printFile();
  void printQt();

  /// Gives the docks the proportions of the first run.
  void applyDefaultLayout();

 private:
  SoVantleViewer();
  ~SoVantleViewer() override;
  SoVantleMainFrame* mainFrame() const;
  QDockWidget* makeDock(char const* name, QString const& title, Qt::DockWidgetArea area);
  void makeExaminer();
  void pick(SbViewportRegion const& region, SbVec2s position, bool listsAll);
  void makePickedCurrent(std::function<SoTreeViewItem*()> const& makeCurrent);
  void chooseHighlight();
  void attachToHost(SoSceneManager* manager);
  static void hostIsGone(void* data, SoSensor* sensor);
  static void areaIsGone(void* data, SoSensor* sensor);
  void lookAfterHost();
  void setFileName(QString const& name);
  void leaveSceneFolder();
  QString saveQuestion() const;
  void detectExternalScenes(SoNode* node);
  static void readErrorCB(SoError const* error, void* viewer);

  static SoVantleViewer* m_instance;

  SoRef<SoNode> m_scene;
  SoRef<SoSelection> m_selection;
  QString m_fileName;
  SbString m_sceneFolder; // put into the search path for the present scene; empty when it was there already
  QList<QString> m_recentFiles; // latest first
  std::unique_ptr<QString> m_readError;
  int m_mode = 0;
  SoNodeSensor m_hostSensor; // on the host's scene manager, whose picture shows the highlight
  SoNodeSensor m_areaSensor; // on the host's render area
  QTimer m_hostTimer;
  bool m_isHostsScene = false; // and has not been replaced
  bool m_wasShared = false;    // others have held the host's scene, too
  bool m_hostIsGone = false;
  std::unique_ptr<SoHighlightRenderAction> m_highlight;  // outlives the examiner, which draws with it
  std::unique_ptr<SoQtExaminerViewer> m_examiner;
  SoVantleTreeView* m_treeView = nullptr; // its dock's, or the main frame's
  QDockWidget* m_treeDock = nullptr;      // null when attached
  QDockWidget* m_overviewDock = nullptr;
  QDockWidget* m_watchDock = nullptr;
  std::unique_ptr<SoVantleEdition> m_edition;
};
