#pragma once

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QDrag>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLineEdit>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTest>
#include <QTimer>
#include <QWheelEvent>
#include <QWindow>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <random>

/// A number from the environment, for longer runs by hand.
inline int setting(char const* name, int otherwise) {
  char const* const text = std::getenv(name);
  return text ? std::atoi(text) : otherwise;
}

/// Uses whatever widgets it finds, by mouse and keyboard, without any sense. Modal boxes that it opens, and
/// menus that wait for an answer, are closed again. VANTLE_RANDOM_LOG=1 tells each act on standard error.
class CarelessPerson {
 public:
  explicit CarelessPerson(unsigned seed) : m_random(seed) {
    // Not from the timer itself, which does not fire again while what it closes opens the next box.
    QObject::connect(
        &m_closer, &QTimer::timeout, &m_closer, [this] { closeBoxes(); }, Qt::QueuedConnection);
    m_closer.start(10);
    m_acting.start();
  }

  int below(int count) { return count > 0 ? static_cast<int>(m_random() % static_cast<unsigned>(count)) : 0; }
  bool happens(int percent) { return below(100) < percent; }
  template <class List> auto const& pick(List const& list) {
    return list[static_cast<decltype(list.size())>(below(static_cast<int>(list.size())))];
  }

  /// One act on something that can be seen below a widget, or on a window that has come up beside the main
  /// one.
  void act(QWidget* root) {
    m_acting.start();
    QWidget* target = root;
    QList<QWidget*> others;
    for (QWidget* window : QApplication::topLevelWidgets()) {
      bool const isOwn = window != root->window() && !qobject_cast<QMainWindow*>(window);
      if (isOwn && window->isVisible() && window->windowHandle()) others << window;
    }
    if (!others.isEmpty() && happens(70)) target = pick(others);
    int const kind = below(100);
    if (kind < 30) return click(target);
    if (kind < 60) return drag(target);
    if (kind < 68) return turnWheel(target);
    if (kind < 82) return pressKeys();
    if (kind < 95) return type(target, nonsense());
    trigger(target);
  }

  /// A click, or the press, move or release of a drag that goes on from act to act.
  void click(QWidget* root) {
    QWidget* const widget = choose(root);
    if (!widget) return;
    Qt::MouseButton const button = happens(90) ? Qt::LeftButton : Qt::RightButton;
    QPoint const place = placeIn(widget);
    log("click", widget, QString("%1 %2").arg(place.x()).arg(place.y()));
    QPointer<QWindow> const window = widget->window()->windowHandle();
    letGo(); // which may be the end of the widget
    bool const twice = happens(15);
    for (int i = 0; i < (twice ? 2 : 1); ++i) {
      if (window) QTest::mousePress(window, button, modifiers(), place);
      if (window) QTest::mouseRelease(window, button, {}, place);
    }
    if (window && twice) QTest::mouseDClick(window, button, {}, place);
  }

  void drag(QWidget* root) {
    if (!m_held) {
      QWidget* const widget = choose(root);
      if (!widget) return;
      m_held = widget->window()->windowHandle();
      m_heldAt = placeIn(widget);
      log("press", widget);
      QTest::mousePress(m_held, Qt::LeftButton, {}, m_heldAt);
      return;
    }
    for (int i = below(4); i >= 0 && m_held; --i) {
      m_heldAt += QPoint(below(61) - 30, below(31) - 15);
      m_heldAt.setX(qBound(0, m_heldAt.x(), m_held->width() - 1));
      m_heldAt.setY(qBound(0, m_heldAt.y(), m_held->height() - 1));
      QTest::mouseMove(m_held, m_heldAt);
    }
    if (happens(30)) letGo();
  }

  void letGo() {
    if (m_held) log("release", nullptr);
    QPointer<QWindow> const window = std::exchange(m_held, nullptr);
    if (window) QTest::mouseRelease(window, Qt::LeftButton, {}, m_heldAt);
  }

  void turnWheel(QWidget* root) {
    QWidget* const widget = choose(root);
    if (!widget) return;
    log("wheel", widget);
    QPointF const place = widget->rect().center();
    QWheelEvent event(place, widget->mapToGlobal(place), {}, QPoint(0, happens(50) ? 120 : -120),
                      Qt::NoButton, modifiers(), Qt::NoScrollPhase, false);
    QApplication::sendEvent(widget, &event);
  }

  void pressKeys() {
    static constexpr std::array KEYS{
        Qt::Key_Tab,    Qt::Key_Tab,    Qt::Key_Backtab, Qt::Key_Return, Qt::Key_Return,    Qt::Key_Escape,
        Qt::Key_Escape, Qt::Key_Up,     Qt::Key_Down,    Qt::Key_Left,   Qt::Key_Right,     Qt::Key_PageDown,
        Qt::Key_PageUp, Qt::Key_Home,   Qt::Key_End,     Qt::Key_Delete, Qt::Key_Backspace, Qt::Key_Space,
        Qt::Key_F2,     Qt::Key_Insert, Qt::Key_1};
    static constexpr std::array WITH_CONTROL{Qt::Key_A, Qt::Key_C, Qt::Key_V, Qt::Key_V,
                                             Qt::Key_X, Qt::Key_Z, Qt::Key_Y};
    for (int i = below(3); i >= 0; --i) {
      if (happens(25))
        press(pick(WITH_CONTROL), Qt::ControlModifier);
      else
        press(pick(KEYS), modifiers());
    }
  }

  void press(Qt::Key key, Qt::KeyboardModifiers keys = {}) {
    QWidget* const focus = QApplication::focusWidget();
    QWindow* const window = focus ? focus->window()->windowHandle() : QGuiApplication::focusWindow();
    if (!window) return;
    log("key", focus, QString::number(key, 16));
    QTest::keyClick(window, key, keys);
  }

  /// Into some line of text, which is entered or not.
  void type(QWidget* root, QString const& text) {
    QList<QWidget*> lines;
    for (auto* line : root->findChildren<QLineEdit*>()) lines << line;
    for (auto* box : root->findChildren<QPlainTextEdit*>()) lines << box;
    lines.removeIf([](QWidget* line) { return !line->isVisible() || !line->isEnabled(); });
    if (lines.isEmpty()) return;
    QPointer<QWidget> const line = pick(lines);
    log("type", line, text);
    line->setFocus();
    if (line && happens(80)) QTest::keyClick(line, Qt::Key_A, Qt::ControlModifier);
    for (QChar letter : text) {
      if (line) QTest::keyEvent(QTest::Click, line, letter.toLatin1() ? letter.toLatin1() : '?');
    }
    static constexpr std::array ENDS{Qt::Key_Return, Qt::Key_Return, Qt::Key_Tab, Qt::Key_Escape};
    if (line && happens(75)) QTest::keyClick(line, pick(ENDS));
  }

  void trigger(QWidget* root) {
    QList<QAction*> actions = root->findChildren<QAction*>();
    actions.removeIf([](QAction* action) { return !action->isEnabled() || action->menu(); });
    if (actions.isEmpty()) return;
    QAction* const action = pick(actions);
    log("trigger", nullptr, action->text() + " " + action->objectName());
    action->trigger();
  }

  /// What is pasted next.
  void fillClipboard() {
    QString text;
    for (int row = below(6); row >= 0; --row) {
      for (int column = below(5); column >= 0; --column) text += nonsense() + (column > 0 ? "\t" : "");
      text += happens(10) ? "\r\n" : "\n";
    }
    log("clipboard", nullptr, text);
    QGuiApplication::clipboard()->setText(text);
  }

  /// Numbers, expressions, field values, and what is none of them.
  QString nonsense() {
    static QStringList const PIECES{
        "0",    "1",     "-1",  "3.5",     "1e9",     "1e39", "1/3", "pi",   "(",     ")",   "+",   "*",
        "^",    "-",     " ",   ",",       "[",       "]",    "\"",  "TRUE", "x",     "nan", "inf", "0x1f",
        "sqrt", "deg",   "%",   "#ff8800", "abc",     "ALL",  "|",   "NONE", "..",    "'",   "\\",  "{",
        "}",    "USE a", "DEF", "1 0 0",   "0 0 1 2", "#",    ";",   "NULL", "$HOME", "old", "row", "random"};
    if (happens(40)) return QString::number((below(20001) - 10000) / (happens(50) ? 1.0 : 1000.0));
    QString text;
    for (int i = below(6); i >= 0; --i) text += pick(PIECES);
    return text;
  }

  void log(char const* what, QWidget const* widget, QString const& more = {}) const {
    if (!m_isLogged) return;
    std::fprintf(stderr, "  %s %s \"%s\" %s\n", what, widget ? widget->metaObject()->className() : "",
                 widget ? qPrintable(widget->objectName()) : "", qPrintable(more));
  }

 private:
  Qt::KeyboardModifiers modifiers() {
    int const kind = below(10);
    return kind == 0 ? Qt::ControlModifier : kind == 1 ? Qt::ShiftModifier : Qt::NoModifier;
  }

  QWidget* choose(QWidget* root) {
    QList<QWidget*> widgets = root->findChildren<QWidget*>();
    bool const anything = happens(15);
    widgets.removeIf([&](QWidget* widget) {
      if (!widget->isVisible() || !widget->window()->windowHandle() || widget->visibleRegion().isEmpty())
        return true;
      return !anything && widget->focusPolicy() == Qt::NoFocus && !widget->focusProxy();
    });
    return widgets.isEmpty() ? nullptr : pick(widgets);
  }

  /// In its window.
  QPoint placeIn(QWidget* widget) {
    QRect const seen = widget->visibleRegion().boundingRect();
    QPoint const place = seen.topLeft() + QPoint(below(seen.width()), below(seen.height()));
    return widget->mapTo(widget->window(), place);
  }

  void closeBoxes() {
    if (auto* const dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
      log("close", dialog, dialog->windowTitle());
      // What a file dialog would write or read is none of the random user's business.
      bool const takes = !qobject_cast<QFileDialog*>(dialog) && ++m_boxes % 2;
      return takes ? dialog->accept() : dialog->reject();
    }
    // An act that lasts waits for something.
    if (m_acting.elapsed() < 300) return;
    if (QWidget* const popup = QApplication::activePopupWidget()) popup->close();
    QDrag::cancel();
  }

  std::mt19937 m_random;
  QTimer m_closer;
  QElapsedTimer m_acting;
  QPointer<QWindow> m_held; // in which the mouse button is down
  QPoint m_heldAt;
  int m_boxes = 0;
  bool const m_isLogged = setting("VANTLE_RANDOM_LOG", 0) != 0;
};
