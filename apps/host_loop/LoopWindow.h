#pragma once

#include <GL/glx.h>
#include <X11/Xlib.h>

/// A plain X11 window, with an OpenGL 3.3 context when asked for one.
class LoopWindow {
 public:
  /// Connected to the display that DISPLAY names. When something is missing, getError() says what.
  LoopWindow(char const* title, int width, int height);
  ~LoopWindow();
  LoopWindow(LoopWindow const&) = delete;
  LoopWindow& operator=(LoopWindow const&) = delete;

  char const* getError() const { return m_error; }
  Display* getDisplay() const { return m_display; }
  Window getWindow() const { return m_window; }
  /// Another window of the program, without OpenGL; it goes with this one.
  Window openSecond(char const* title, int width, int height);
  /// True when an event is the user's wish to close its window.
  bool isClose(XEvent const& event) const;
  void makeCurrent() const { glXMakeCurrent(m_display, m_window, m_context); }
  void showFrame() const { glXSwapBuffers(m_display, m_window); }
  /// Waits for an event, at most so long.
  void wait(double seconds) const;

 private:
  Window open(char const* title, int width, int height, XVisualInfo const* visual);
  Display* m_display;
  Window m_window = 0;
  GLXContext m_context = nullptr;
  Colormap m_colormap = 0;
  Atom m_deleteWindow = 0;
  char const* m_error = nullptr;
};
