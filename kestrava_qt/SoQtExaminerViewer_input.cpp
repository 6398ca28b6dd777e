// What the user does with mouse, keyboard and buttons.

#include <QApplication>
#include <QHBoxLayout>
#include <QMouseEvent>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <cmath>

#include "kestrava/nodes/SoCamera.h"
#include "kestrava_qt/SoCameraMotion.h"
#include "kestrava_qt/SoQtCanvas.h"
#include "kestrava_qt/SoQtEventFeeder.h"
#include "kestrava_qt/SoQtExaminerViewer.h"
#include "kestrava_qt/SoQtViewerIcons.h"

void SoQtExaminerViewer::makeButtons() {
  using namespace SoQtViewerIcons;
  auto* const column = new QWidget(getWidget());
  column->setObjectName(QStringLiteral("buttons"));
  auto* const layout = new QVBoxLayout(column);
  layout->setContentsMargins(2, 2, 2, 2);
  layout->setSpacing(2);
  QColor const color = getWidget()->palette().color(QPalette::ButtonText);
  auto add = [&](Icon icon, char const* name, QString const& tip, std::function<void()> const& clicked) {
    auto* const button = new QToolButton(column);
    button->setObjectName(QLatin1String(name));
    button->setIcon(SoQtViewerIcons::make(icon, color));
    button->setIconSize(QSize(20, 20));
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::NoFocus);
    button->setToolTip(tip);
    button->setAccessibleName(tip);
    connect(button, &QToolButton::clicked, this, clicked);
    layout->addWidget(button);
    return button;
  };
  m_viewButton = add(VIEW, "viewButton", tr("View: the mouse moves the scene (Esc)"), [this] { setViewing(true); });
  m_pickButton = add(PICK, "pickButton", tr("Pick: a click selects (Esc)"), [this] { setViewing(false); });
  add(HOME, "homeButton", tr("Go to the home position (Home)"), [this] { resetToHomePosition(); });
  add(SET_HOME, "setHomeButton", tr("Make this the home position"), [this] { saveHomePosition(); });
  add(VIEW_ALL, "viewAllButton", tr("Show the whole scene (V)"), [this] { viewAll(); });
  m_seekButton = add(SEEK, "seekButton", tr("Go to a point that is clicked (S)"), [this] { setSeeking(!m_seeking); });
  m_projectionButton = add(PERSPECTIVE, "projectionButton", tr("Perspective or orthographic view (P)"),
                           [this] { togglePerspective(); });
  QIcon projection = SoQtViewerIcons::make(PERSPECTIVE, color);
  QIcon const flat = SoQtViewerIcons::make(ORTHOGRAPHIC, color);
  for (QSize const& size : flat.availableSizes()) projection.addPixmap(flat.pixmap(size), QIcon::Normal, QIcon::On);
  m_projectionButton->setIcon(projection);
  for (auto const& button : {m_viewButton, m_pickButton, m_seekButton, m_projectionButton}) button->setCheckable(true);
  m_viewButton->setChecked(true);
  layout->addStretch(1);
  static_cast<QHBoxLayout*>(getWidget()->layout())->addWidget(column);
}

void SoQtExaminerViewer::setViewing(bool on) {
  m_viewButton->setChecked(on);
  m_pickButton->setChecked(!on);
  if (!on) setSeeking(false);
  if (m_viewing == on) return;
  m_viewing = on;
  // Nodes may follow the pointer while no button is down.
  getViewWidget()->setMouseTracking(!on);
  QPointer<SoQtExaminerViewer> const self(this);
  if (on) {
    getSceneManager()->releaseGrab();
    if (self) tellPointerLeft();
    if (!self) return;
  }
  updateCursor();
  emit viewingChanged(on);
}

void SoQtExaminerViewer::setSeeking(bool on) {
  m_seeking = on;
  m_seekButton->setChecked(on);
  if (on) setViewing(true);
  updateCursor();
}

void SoQtExaminerViewer::updateCursor() {
  QWidget* const view = getViewWidget();
  if (!view) return;
  if (m_seeking) {
    view->setCursor(Qt::CrossCursor);
  } else if (!m_viewing) {
    view->setCursor(Qt::ArrowCursor);
  } else {
    view->setCursor(m_motion == NOTHING ? Qt::OpenHandCursor : Qt::ClosedHandCursor);
  }
}

SbVec2f SoQtExaminerViewer::normalized(QPointF const& position) const {
  QWidget const* const view = getViewWidget();
  return SbVec2f(position.x() / std::max(1, view->width()), 1 - position.y() / std::max(1, view->height()));
}

SoQtExaminerViewer::Motion SoQtExaminerViewer::motionFor(Qt::MouseButtons buttons,
                                                         Qt::KeyboardModifiers modifiers) const {
  if (buttons.testFlags(Qt::LeftButton | Qt::MiddleButton) || buttons & Qt::RightButton) return ENLARGE;
  if (buttons & Qt::MiddleButton) return MOVE;
  if (buttons & Qt::LeftButton) return modifiers & Qt::ShiftModifier ? MOVE : TURN;
  return NOTHING;
}

bool SoQtExaminerViewer::mousePressed(QMouseEvent* event) {
  if (m_motion == NOTHING) {
    m_pressedAt = event->position();
    m_dragged = false;
  }
  m_lastAt = event->position();
  m_enlargeAt = normalized(m_pressedAt);
  m_motion = motionFor(event->buttons(), event->modifiers());
  m_flight.stop();
  updateCursor();
  return true;
}

bool SoQtExaminerViewer::mouseMoved(QMouseEvent* event) {
  if (m_motion == NOTHING) return false;
  QPointF const at = event->position();
  if (!m_dragged && (at - m_pressedAt).manhattanLength() < QApplication::startDragDistance() / 2.0) return true;
  if (!m_dragged) getCanvas()->setMoving(true);
  m_dragged = true;
  if (!m_viewing || m_seeking) return true;
  SbVec2f const from = normalized(m_lastAt), to = normalized(at);
  switch (m_motion) {
    case TURN: SoCameraMotion::rotate(*m_camera, from, to, aspect()); break;
    case MOVE: SoCameraMotion::pan(*m_camera, from, to, aspect()); break;
    case ENLARGE:
      SoCameraMotion::zoom(*m_camera, std::exp((from[1] - to[1]) * 3), m_enlargeAt, aspect());
      break;
    case NOTHING: break;
  }
  m_lastAt = at;
  return true;
}

bool SoQtExaminerViewer::mouseReleased(QMouseEvent* event) {
  if (m_motion == NOTHING) return false;
  bool const clicked = !m_dragged && event->button() == Qt::LeftButton;
  m_motion = motionFor(event->buttons(), event->modifiers());
  m_lastAt = event->position();
  if (m_motion == NOTHING && m_dragged) getCanvas()->setMoving(false);
  updateCursor();
  if (!clicked) return true;
  if (m_seeking) {
    seekToPoint(SoQtEventFeeder::toPixels(event->position(), *getViewWidget()));
    setSeeking(false);
  } else if (!m_viewing && (m_reportsAllClicks || !m_sceneTookIt)) {
    emit picked(SoQtEventFeeder::toPixels(event->position(), *getViewWidget()), getViewportRegion());
  }
  return true;
}

bool SoQtExaminerViewer::keyPressed(int key) {
  switch (key) {
    case Qt::Key_Escape: m_seeking ? setSeeking(false) : setViewing(!m_viewing); return true;
    case Qt::Key_Home: resetToHomePosition(); return true;
    case Qt::Key_S: setSeeking(!m_seeking); return true;
    case Qt::Key_V: viewAll(); return true;
    case Qt::Key_P: togglePerspective(); return true;
    default: return false;
  }
}

bool SoQtExaminerViewer::eventFilter(QObject* object, QEvent* event) {
  bool const isKey = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
  if (!object || object != (isKey ? getWidget() : getViewWidget())) return false;
  bool const picking = !m_viewing || getSceneManager()->getGrabber();
  QPointer<SoQtExaminerViewer> const self(this);
  bool const handled = picking && offerToScene(*event);
  // Nobody is left who could be given the event.
  if (!self || !getViewWidget()) return true;
  if (!isKey) return viewEvent(event, picking, handled);
  if (handled || event->type() == QEvent::KeyRelease) return handled;
  auto const* const key = static_cast<QKeyEvent*>(event);
  bool const plain = !(key->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier));
  return plain && keyPressed(key->key());
}

/// What the viewer makes of an event of the view once the scene has had it.
bool SoQtExaminerViewer::viewEvent(QEvent* event, bool wasPicking, bool handled) {
  // A node that is pressed may end picking; the view is not moved with the same press.
  if (wasPicking && m_viewing) return handled;
  switch (event->type()) {
    case QEvent::MouseButtonPress:
      m_sceneTookIt = handled || (m_motion != NOTHING && m_sceneTookIt);
      mousePressed(static_cast<QMouseEvent*>(event));
      // Left unhandled, so that the click gives the focus to the widget around the view.
      return false;
    case QEvent::MouseMove: return mouseMoved(static_cast<QMouseEvent*>(event)) || handled;
    case QEvent::MouseButtonRelease:
      m_sceneTookIt = m_sceneTookIt || handled;
      return mouseReleased(static_cast<QMouseEvent*>(event)) || handled;
    case QEvent::Wheel: {
      auto const* const wheel = static_cast<QWheelEvent*>(event);
      if (!m_viewing) return handled;
      float const steps = static_cast<float>(wheel->angleDelta().y()) / 120.0f;
      SoCameraMotion::zoom(*m_camera, std::pow(0.85f, steps), normalized(wheel->position()), aspect());
      return true;
    }
    default: return handled;
  }
}
