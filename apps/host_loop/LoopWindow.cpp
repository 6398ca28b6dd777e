#include "apps/host_loop/LoopWindow.h"

#include <GL/glxext.h>
#include <X11/Xutil.h>
#include <poll.h>

LoopWindow::LoopWindow(char const* title, int width, int height) : m_display(XOpenDisplay(nullptr)) {
  if (!m_display) {
    m_error = "there is no display";
    return;
  }
  m_deleteWindow = XInternAtom(m_display, "WM_DELETE_WINDOW", False);
  static int const wanted[] = {
      GLX_RENDER_TYPE, GLX_RGBA_BIT, GLX_DOUBLEBUFFER, True, GLX_DEPTH_SIZE, 24, GLX_RED_SIZE, 8, None};
  int count = 0;
  GLXFBConfig* const configs = glXChooseFBConfig(m_display, DefaultScreen(m_display), wanted, &count);
  XVisualInfo* const visual = count > 0 ? glXGetVisualFromFBConfig(m_display, configs[0]) : nullptr;
  auto const createContext = reinterpret_cast<PFNGLXCREATECONTEXTATTRIBSARBPROC>(
      glXGetProcAddressARB(reinterpret_cast<GLubyte const*>("glXCreateContextAttribsARB")));
  if (visual && createContext) {
    m_window = open(title, width, height, visual);
    static int const version[] = {
        GLX_CONTEXT_MAJOR_VERSION_ARB,    3,   GLX_CONTEXT_MINOR_VERSION_ARB, 3, GLX_CONTEXT_PROFILE_MASK_ARB,
        GLX_CONTEXT_CORE_PROFILE_BIT_ARB, None};
    m_context = createContext(m_display, configs[0], nullptr, True, version);
  }
  if (!m_context) m_error = "the display has no OpenGL 3.3";
  if (visual) XFree(visual);
  if (configs) XFree(configs);
}

LoopWindow::~LoopWindow() {
  if (!m_display) return;
  glXMakeCurrent(m_display, None, nullptr);
  if (m_context) glXDestroyContext(m_display, m_context);
  if (m_window) XDestroyWindow(m_display, m_window);
  if (m_colormap) XFreeColormap(m_display, m_colormap);
  XCloseDisplay(m_display);
}

Window LoopWindow::open(char const* title, int width, int height, XVisualInfo const* visual) {
  Window const root = DefaultRootWindow(m_display);
  XSetWindowAttributes attributes{};
  attributes.event_mask = ExposureMask | KeyPressMask | ButtonPressMask | ButtonReleaseMask | StructureNotifyMask;
  unsigned long mask = CWEventMask;
  if (visual) {
    m_colormap = XCreateColormap(m_display, root, visual->visual, AllocNone);
    attributes.colormap = m_colormap;
    mask |= CWColormap | CWBorderPixel;
  } else {
    attributes.background_pixel = 0x3a4048;
    mask |= CWBackPixel;
  }
  Window const window =
      XCreateWindow(m_display, root, 0, 0, static_cast<unsigned>(width), static_cast<unsigned>(height), 0,
                    visual ? visual->depth : CopyFromParent, InputOutput, visual ? visual->visual : nullptr,
                    mask, &attributes);
  XStoreName(m_display, window, title);
  Atom protocols[] = {m_deleteWindow};
  XSetWMProtocols(m_display, window, protocols, 1);
  XMapWindow(m_display, window);
  XFlush(m_display);
  return window;
}

Window LoopWindow::openSecond(char const* title, int width, int height) {
  return open(title, width, height, nullptr);
}

bool LoopWindow::isClose(XEvent const& event) const {
  return event.type == ClientMessage && static_cast<Atom>(event.xclient.data.l[0]) == m_deleteWindow;
}

void LoopWindow::wait(double seconds) const {
  if (seconds <= 0 || XPending(m_display) > 0) return;
  pollfd connection{ConnectionNumber(m_display), POLLIN, 0};
  poll(&connection, 1, static_cast<int>(seconds * 1000));
}
