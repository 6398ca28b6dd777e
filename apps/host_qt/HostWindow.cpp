#include "apps/host_qt/HostWindow.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QLabel>
#include <QMenuBar>
#include <QStatusBar>
#include <QVBoxLayout>
#include <cctype>
#include <cstdio>

#include "apps/host_qt/HostScene.h"
#include "kestrava/base/SoLibVantle.h"

HostWindow::HostWindow()
    : m_scene(makeHostScene()),
      m_changes(static_cast<SoGroup*>(m_scene.get()),
                static_cast<SoNode*>(SoBase::getNamedBase("moon", SoNode::getClassTypeId())), 3.7f, -1.2f) {
  setWindowTitle(tr("Orrery"));
  auto* const content = new QWidget;
  auto* const layout = new QVBoxLayout(content);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  m_failure = new QLabel;
  m_failure->setObjectName("failure");
  m_failure->setTextFormat(Qt::PlainText);
  m_failure->setWordWrap(true);
  m_failure->setMargin(8);
  m_failure->setStyleSheet("background: #fff3cd; color: #5c4400;");
  m_failure->hide();
  layout->addWidget(m_failure);
  layout->addWidget(m_viewer.getWidget(), 1);
  setCentralWidget(content);
  m_state = new QLabel;
  statusBar()->addWidget(m_state);
  makeMenus();

  m_viewer.setSceneGraph(m_scene);
  // In the view's picking mode, a click selects in the inspector what lies under it.
  connect(&m_viewer, &SoQtExaminerViewer::picked, this, [](SbVec2s position, SbViewportRegion const& region) {
    SoLibVantle::instance()->setPickAction(region, position);
  });

  // This loads the library. A host that must start fast leaves it to the first start.
  m_isLoaded = SoLibVantle::isAvailable();
  if (!m_isLoaded) {
    m_failure->setText(QString::fromUtf8(SoLibVantle::getLastError().c_str()));
    m_failure->show();
  }
  // The inspector's widgets live from this program's event loop. What the inspector needs besides is a call
  // now and then: it carries out the stop that the user asks for by closing the inspector's window.
  connect(&m_timer, &QTimer::timeout, this, &HostWindow::turn);
  m_timer.start(16);
  m_clock.start();
  showState();
}

// Reached without closeEvent() when the program ends otherwise.
HostWindow::~HostWindow() { stopInspecting(); }

void HostWindow::makeMenus() {
  QMenu* const file = menuBar()->addMenu(tr("&File"));
  file->addAction(tr("&Quit"), QKeySequence::Quit, this, &QWidget::close);
  QMenu* const inspector = menuBar()->addMenu(tr("&Inspector"));
  m_startActions = {
      inspector->addAction(tr("Inspect the Root &Node"), tr("Ctrl+1"), this, [this] { inspect(NODE); }),
      inspector->addAction(tr("Inspect the Scene &Manager"), tr("Ctrl+2"), this,
                           [this] { inspect(MANAGER); }),
      inspector->addAction(tr("Inspect the Render &Area"), tr("Ctrl+3"), this, [this] { inspect(AREA); }),
  };
  inspector->addSeparator();
  m_stopAction =
      inspector->addAction(tr("&Stop Inspecting"), tr("Ctrl+0"), this, &HostWindow::stopInspecting);
  // The view has plain letters of its own.
  QMenu* const scene = menuBar()->addMenu(tr("&Scene"));
  for (auto const& key : SceneChanges::KEYS) {
    scene->addAction(tr(key.what), QKeySequence(Qt::CTRL | Qt::Key(std::toupper(key.letter))), this,
                     [this, letter = key.letter] { change(letter); });
  }
}

void HostWindow::change(char letter) { tell(m_changes.press(letter)); }

void HostWindow::tell(std::string const& what) {
  if (what.empty()) return;
  std::printf("host_qt: %s\n", what.c_str());
  std::fflush(stdout);
  statusBar()->showMessage(QString::fromStdString(what), 3000);
}

void HostWindow::inspect(Way way) {
  SoLibVantle* const inspector = SoLibVantle::instance();
  if (!m_isLoaded || inspector->isRunning()) return;
  switch (way) {
    case NODE:
      inspector->startNode(m_scene);
      break;
    case MANAGER:
      inspector->startSceneManager(m_viewer.getSceneManager());
      break;
    case AREA:
      inspector->startRenderArea(m_viewer.getRenderArea());
      break;
  }
  m_way = way;
  showState();
}

void HostWindow::stopInspecting() {
  SoLibVantle::instance()->stop();
  showState();
}

void HostWindow::turn() {
  if (!m_letters.empty() && m_turns % 10 == 9) {
    change(m_letters.front());
    m_letters.erase(0, 1);
  }
  tell(m_changes.turn(static_cast<double>(m_clock.elapsed()) / 1000));
  if (m_way >= 0 && !SoLibVantle::instance()->processEvents()) showState();
  if (++m_turns != m_lastTurn) return;
  if (!m_picture.isEmpty() && !m_viewer.getWidget()->grab().save(m_picture)) {
    qCritical("host_qt: can not write %s", qPrintable(m_picture));
    QCoreApplication::exit(1);
    return;
  }
  close();
}

void HostWindow::showState() {
  bool const runs = SoLibVantle::instance()->isRunning();
  if (!runs) m_way = -1;
  for (QAction* action : m_startActions) action->setEnabled(m_isLoaded && !runs);
  m_stopAction->setEnabled(runs);
  QString const states[] = {tr("The inspector is not running"), tr("Inspected: the root node"),
                            tr("Inspected: the scene manager"), tr("Inspected: the render area")};
  m_state->setText(m_isLoaded ? states[m_way + 1] : tr("There is no inspector"));
}

void HostWindow::endAfter(int turns, QString const& picture) {
  m_lastTurn = turns;
  m_picture = picture;
}

// In order: the inspector goes while everything that it looks at is there. Its window would otherwise stay
// open, and the application go on.
void HostWindow::closeEvent(QCloseEvent* event) {
  stopInspecting();
  event->accept();
}
