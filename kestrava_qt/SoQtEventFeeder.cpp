#include "kestrava_qt/SoQtEventFeeder.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <QWidget>
#include <cmath>

#include "kestrava/events/SoKeyboardEvent.h"
#include "kestrava/events/SoLocation2Event.h"
#include "kestrava/events/SoMouseButtonEvent.h"
#include "kestrava/events/SoMouseWheelEvent.h"
#include "kestrava/render/SoSceneManager.h"

namespace {

SoMouseButtonEvent::Button buttonOf(Qt::MouseButton button) {
  switch (button) {
    case Qt::LeftButton:
      return SoMouseButtonEvent::LEFT;
    case Qt::MiddleButton:
      return SoMouseButtonEvent::MIDDLE;
    case Qt::RightButton:
      return SoMouseButtonEvent::RIGHT;
    default:
      return SoMouseButtonEvent::ANY;
  }
}

int keyOf(int key) {
  // Qt's codes of letters, digits and signs are their upper-case ASCII codes, too.
  if (key >= Qt::Key_Space && key <= Qt::Key_AsciiTilde) return key;
  if (key >= Qt::Key_F1 && key <= Qt::Key_F12) return SoKeyboardEvent::F1 + (key - Qt::Key_F1);
  switch (key) {
    case Qt::Key_Backspace:
      return SoKeyboardEvent::BACKSPACE;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
      return SoKeyboardEvent::TAB;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return SoKeyboardEvent::RETURN;
    case Qt::Key_Escape:
      return SoKeyboardEvent::ESCAPE;
    case Qt::Key_Delete:
      return SoKeyboardEvent::DELETE;
    case Qt::Key_Home:
      return SoKeyboardEvent::HOME;
    case Qt::Key_Left:
      return SoKeyboardEvent::LEFT_ARROW;
    case Qt::Key_Up:
      return SoKeyboardEvent::UP_ARROW;
    case Qt::Key_Right:
      return SoKeyboardEvent::RIGHT_ARROW;
    case Qt::Key_Down:
      return SoKeyboardEvent::DOWN_ARROW;
    case Qt::Key_PageUp:
      return SoKeyboardEvent::PAGE_UP;
    case Qt::Key_PageDown:
      return SoKeyboardEvent::PAGE_DOWN;
    case Qt::Key_End:
      return SoKeyboardEvent::END;
    case Qt::Key_Insert:
      return SoKeyboardEvent::INSERT;
    case Qt::Key_Shift:
      return SoKeyboardEvent::SHIFT;
    case Qt::Key_Control:
      return SoKeyboardEvent::CONTROL;
    case Qt::Key_Alt:
      return SoKeyboardEvent::ALT;
    default:
      return SoKeyboardEvent::OTHER;
  }
}

std::unique_ptr<SoEvent> mouseButton(QMouseEvent const& event, SoButtonEvent::State state) {
  auto made = std::make_unique<SoMouseButtonEvent>();
  made->button = buttonOf(event.button());
  made->state = state;
  // What is neither left, middle nor right has no name here, and ANY is every button to those who ask.
  if (made->button == SoMouseButtonEvent::ANY) return nullptr;
  return made;
}

std::unique_ptr<SoEvent> key(QKeyEvent const& event, SoButtonEvent::State state) {
  // A key that is held types again and again; it is released once.
  if (state == SoButtonEvent::UP && event.isAutoRepeat()) return nullptr;
  auto made = std::make_unique<SoKeyboardEvent>();
  made->state = state;
  made->key = keyOf(event.key());
  QString const text = event.text();
  // Control characters stand for the keys, which are told already.
  if (!text.isEmpty() && (text[0].isPrint() || text[0].isHighSurrogate()))
    made->text = SbString(text.toStdString());
  return made;
}

std::unique_ptr<SoEvent> wheel(QWheelEvent const& event) {
  QPoint const turned = event.angleDelta();
  // With Alt some platforms turn a wheel sideways.
  int const delta = turned.y() || !(event.modifiers() & Qt::AltModifier) ? turned.y() : turned.x();
  if (delta == 0) return nullptr;
  auto made = std::make_unique<SoMouseWheelEvent>();
  made->delta = delta;
  return made;
}

std::unique_ptr<SoEvent> pointerElsewhere() {
  auto made = std::make_unique<SoLocation2Event>();
  made->position = SbVec2s(-1, -1);
  made->time = SbTime::now();
  return made;
}

} // namespace

SbVec2s SoQtEventFeeder::toPixels(QPointF const& position, QWidget const& view) {
  qreal const ratio = view.devicePixelRatioF();
  auto const inRange = [](qreal pixel) { return static_cast<short>(qBound(-32768.0, pixel, 32767.0)); };
  return SbVec2s(inRange(std::floor(position.x() * ratio)),
                 inRange(std::ceil((view.height() - position.y()) * ratio) - 1));
}

std::unique_ptr<SoEvent> SoQtEventFeeder::convert(QEvent const& event, QWidget const& view,
                                                  SbVec2s keyPosition) {
  std::unique_ptr<SoEvent> made;
  SbVec2s position = keyPosition;
  switch (event.type()) {
    case QEvent::MouseButtonPress:
    // The second press of two that are close together.
    case QEvent::MouseButtonDblClick:
      made = mouseButton(static_cast<QMouseEvent const&>(event), SoButtonEvent::DOWN);
      break;
    case QEvent::MouseButtonRelease:
      made = mouseButton(static_cast<QMouseEvent const&>(event), SoButtonEvent::UP);
      break;
    case QEvent::MouseMove:
      made = std::make_unique<SoLocation2Event>();
      break;
    case QEvent::Leave:
      return pointerElsewhere();
    case QEvent::Wheel:
      made = wheel(static_cast<QWheelEvent const&>(event));
      break;
    case QEvent::KeyPress:
      made = key(static_cast<QKeyEvent const&>(event), SoButtonEvent::DOWN);
      break;
    case QEvent::KeyRelease:
      made = key(static_cast<QKeyEvent const&>(event), SoButtonEvent::UP);
      break;
    default:
      break;
  }
  if (!made) return nullptr;
  auto const& input = static_cast<QInputEvent const&>(event);
  if (event.type() == QEvent::Wheel) {
    position = toPixels(static_cast<QWheelEvent const&>(event).position(), view);
  } else if (event.type() != QEvent::KeyPress && event.type() != QEvent::KeyRelease) {
    position = toPixels(static_cast<QMouseEvent const&>(event).position(), view);
  }
  made->position = position;
  made->time = SbTime::now();
  made->shiftDown = input.modifiers() & Qt::ShiftModifier;
  made->ctrlDown = input.modifiers() & Qt::ControlModifier;
  made->altDown = input.modifiers() & Qt::AltModifier;
  return made;
}

void SoQtEventFeeder::leave() {
  SoRef<SoSceneManager> const manager(m_manager);
  if (!manager->getGrabber()) manager->processEvent(*pointerElsewhere());
}

bool SoQtEventFeeder::offer(QEvent const& event) {
  // A drag goes on outside of the view, where moves tell of it.
  if (event.type() == QEvent::Leave) {
    leave();
    return false;
  }
  std::unique_ptr<SoEvent> const made = convert(event, *m_view, m_pointer);
  if (!made) return false;
  m_pointer = made->position;
  SoRef<SoSceneManager> const manager(m_manager);
  if (SoMouseButtonEvent::isPress(*made, SoMouseButtonEvent::LEFT)) {
    m_leftDown = true;
  } else if (SoMouseButtonEvent::isRelease(*made, SoMouseButtonEvent::LEFT)) {
    m_leftDown = false;
  } else if (m_leftDown && event.type() == QEvent::MouseMove &&
             !(static_cast<QMouseEvent const&>(event).buttons() & Qt::LeftButton)) {
    // The release went elsewhere, to a window that came up under the pointer for instance.
    m_leftDown = false;
    manager->releaseGrab();
  }
  return manager->processEvent(*made);
}
