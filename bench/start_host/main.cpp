// A host without Qt that starts the inspector on a small scene and prints what each step took: loading the
// library, the start, and the time until the window's picture is on the screen; in milliseconds.

#include <X11/Xlib.h>
#include <X11/Xutil.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <set>

#include "kestrava/base/SoLibVantle.h"
#include "kestrava/nodes/SoCube.h"
#include "kestrava/nodes/SoMaterial.h"
#include "kestrava/nodes/SoSeparator.h"

namespace {

double milliseconds() {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

/// The viewable window of that title at or below a window; 0: there is none.
Window findWindow(Display* display, Window at, char const* title) {
  char* name = nullptr;
  bool const found = XFetchName(display, at, &name) && std::strcmp(name, title) == 0;
  if (name) XFree(name);
  if (found) {
    XWindowAttributes attributes;
    if (XGetWindowAttributes(display, at, &attributes) && attributes.map_state == IsViewable) return at;
  }
  Window root, parent, *children = nullptr;
  unsigned count = 0;
  Window result = 0;
  if (!XQueryTree(display, at, &root, &parent, &children, &count)) return 0;
  for (unsigned i = 0; i < count && !result; ++i) result = findWindow(display, children[i], title);
  if (children) XFree(children);
  return result;
}

/// True when the screen shows more than a plain background along a line through the menu bar and one further
/// down.
bool isPainted(Display* display, Window window) {
  XWindowAttributes attributes;
  if (!XGetWindowAttributes(display, window, &attributes) || attributes.width < 300 ||
      attributes.height < 200)
    return false;
  for (int y : {12, attributes.height - 120}) {
    XImage* const line = XGetImage(display, window, 0, y, 300, 1, AllPlanes, ZPixmap);
    if (!line) return false;
    std::set<unsigned long> colours;
    for (int x = 0; x < 300; ++x) colours.insert(XGetPixel(line, x, 0));
    XDestroyImage(line);
    if (colours.size() < 2) return false;
  }
  return true;
}

} // namespace

int main() {
  Display* const display = XOpenDisplay(nullptr);
  if (!display) return 1;
  // A window may be gone before it is asked about.
  XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
  SoRef<SoSeparator> const scene(new SoSeparator);
  for (int i = 0; i < 10; ++i) {
    scene->addChild(new SoMaterial);
    scene->addChild(new SoCube);
  }

  double const begin = milliseconds();
  if (!SoLibVantle::isAvailable()) {
    std::fprintf(stderr, "start_host: %s\n", SoLibVantle::getLastError().c_str());
    return 1;
  }
  double const loaded = milliseconds();
  SoLibVantle* const inspector = SoLibVantle::instance();
  inspector->startNode(scene);
  double const started = milliseconds();
  Window window = 0;
  while (!window || !isPainted(display, window)) {
    inspector->processEvents();
    if (!window) window = findWindow(display, DefaultRootWindow(display), "Vantle");
    if (milliseconds() - begin > 20000) return 1;
  }
  double const shown = milliseconds();
  inspector->stop();
  std::printf("%.1f %.1f %.1f\n", loaded - begin, started - loaded, shown - started);
  XCloseDisplay(display);
  return 0;
}
