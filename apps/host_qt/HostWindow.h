#pragma once

#include <QMainWindow>
#include <QElapsedTimer>
#include <QTimer>
#include <array>

#include "apps/hosts/SceneChanges.h"
#include "kestrava/nodes/SoNode.h"
#include "kestrava_qt/SoQtExaminerViewer.h"

class QAction;
class QLabel;

/// The window of a program with a Qt application of its own that lets the inspector look at its scene.
class HostWindow : public QMainWindow {
  Q_OBJECT
 public:
  /// What is handed to the inspector. Only the last two let it mark the selected node in the host's view.
  enum Way { NODE, MANAGER, AREA };

  HostWindow();
  ~HostWindow() override;

  void inspect(Way way);
  void stopInspecting();
  /// Ends the application after that many turns of the timer; first writes the view to a file, unless that is
  /// empty.
  void endAfter(int turns, QString const& picture);
  /// Makes these changes to the scene, one every tenth turn.
  void press(std::string const& letters) { m_letters = letters; }

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void makeMenus();
  void change(char letter);
  void tell(std::string const& what);
  void turn();
  void showState();

  SoRef<SoNode> m_scene;
  SceneChanges m_changes;
  std::string m_letters; // to be pressed yet
  SoQtExaminerViewer m_viewer;
  QTimer m_timer;
  QElapsedTimer m_clock;
  int m_turns = 0;
  int m_lastTurn = 0; // 0: none
  QString m_picture;
  bool m_isLoaded = false;
  int m_way = -1; // the way that the inspector was started in while it runs, otherwise -1
  std::array<QAction*, 3> m_startActions{};
  QAction* m_stopAction = nullptr;
  QLabel* m_state = nullptr;
  QLabel* m_failure = nullptr; // why there is no inspector
};
