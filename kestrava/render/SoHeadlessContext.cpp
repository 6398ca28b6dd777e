#include "kestrava/render/SoHeadlessContext.h"

#include <dlfcn.h>
#include <epoxy/egl.h>

#include "kestrava/base/SoError.h"

namespace {

EGLDisplay initialize(EGLDisplay display) {
  if (display == EGL_NO_DISPLAY) return EGL_NO_DISPLAY;
  return eglInitialize(display, nullptr, nullptr) ? display : EGL_NO_DISPLAY;
}

/// The display that needs no screen; shared by all contexts and never ended, as others may use it too.
EGLDisplay headlessDisplay() {
  static EGLDisplay const display = [] {
    EGLDisplay found = EGL_NO_DISPLAY;
    if (epoxy_has_egl_extension(EGL_NO_DISPLAY, "EGL_EXT_platform_base")) {
      if (epoxy_has_egl_extension(EGL_NO_DISPLAY, "EGL_MESA_platform_surfaceless")) {
        found = initialize(eglGetPlatformDisplayEXT(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr));
      }
      EGLDeviceEXT device = nullptr;
      EGLint count = 0;
      if (found == EGL_NO_DISPLAY && epoxy_has_egl_extension(EGL_NO_DISPLAY, "EGL_EXT_device_enumeration") &&
          eglQueryDevicesEXT(1, &device, &count) && count > 0) {
        found = initialize(eglGetPlatformDisplayEXT(EGL_PLATFORM_DEVICE_EXT, device, nullptr));
      }
    }
    return found != EGL_NO_DISPLAY ? found : initialize(eglGetDisplay(EGL_DEFAULT_DISPLAY));
  }();
  return display;
}

/// The parts of GLX that tell and set the current context, taken from the library that the program uses, if any.
struct GLX {
  void* (*getCurrentContext)();
  void* (*getCurrentDisplay)();
  unsigned long (*getCurrentDrawable)();
  unsigned long (*getCurrentReadDrawable)();
  int (*makeContextCurrent)(void* display, unsigned long draw, unsigned long read, void* context);

  static GLX const* find() {
    void* library = nullptr;
    for (char const* name : {"libGLX.so.0", "libGL.so.1"}) {
      if (!library) library = dlopen(name, RTLD_LAZY | RTLD_NOLOAD);
    }
    if (!library) return nullptr;
    static GLX glx;
    auto take = [library](auto& function, char const* name) {
      function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(dlsym(library, name));
      return function != nullptr;
    };
    bool const complete = take(glx.getCurrentContext, "glXGetCurrentContext") &&
                          take(glx.getCurrentDisplay, "glXGetCurrentDisplay") &&
                          take(glx.getCurrentDrawable, "glXGetCurrentDrawable") &&
                          take(glx.getCurrentReadDrawable, "glXGetCurrentReadDrawable") &&
                          take(glx.makeContextCurrent, "glXMakeContextCurrent");
    dlclose(library);
    return complete ? &glx : nullptr;
  }
};

}  // namespace

std::unique_ptr<SoHeadlessContext> SoHeadlessContext::make() {
  EGLDisplay const display = headlessDisplay();
  EGLenum const api = display == EGL_NO_DISPLAY ? EGL_NONE : eglQueryAPI();
  void* made = nullptr;
  if (display != EGL_NO_DISPLAY && eglBindAPI(EGL_OPENGL_API)) {
    static EGLint const wanted[] = {EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_NONE};
    static EGLint const version[] = {EGL_CONTEXT_MAJOR_VERSION, 3, EGL_CONTEXT_MINOR_VERSION, 3,
                                     EGL_CONTEXT_OPENGL_PROFILE_MASK, EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (eglChooseConfig(display, wanted, &config, 1, &count) && count > 0) {
      made = eglCreateContext(display, config, EGL_NO_CONTEXT, version);
    }
    if (api != EGL_NONE) eglBindAPI(api);
  }
  if (!made) {
    SoDebugError::post("SoHeadlessContext", "there is no OpenGL 3.3 without a display on this machine (EGL error 0x%x)",
                       display == EGL_NO_DISPLAY ? 0u : static_cast<unsigned>(eglGetError()));
    return nullptr;
  }
  std::unique_ptr<SoHeadlessContext> context(new SoHeadlessContext);
  context->m_display = display;
  context->m_context = made;
  return context;
}

SoHeadlessContext::~SoHeadlessContext() { eglDestroyContext(m_display, m_context); }

struct SoHeadlessContext::Current::Former {
  EGLDisplay display = EGL_NO_DISPLAY;
  EGLContext context = EGL_NO_CONTEXT;
  EGLSurface draw = EGL_NO_SURFACE, read = EGL_NO_SURFACE;
  EGLenum api = EGL_NONE;
  GLX const* glx = nullptr;
  void* glxDisplay = nullptr;
  void* glxContext = nullptr;
  unsigned long glxDraw = 0, glxRead = 0;
};

SoHeadlessContext::Current::Current(SoHeadlessContext const& context) : m_former(new Former) {
  Former& f = *m_former;
  f.glx = GLX::find();
  if (f.glx && (f.glxContext = f.glx->getCurrentContext())) {
    f.glxDisplay = f.glx->getCurrentDisplay();
    f.glxDraw = f.glx->getCurrentDrawable();
    f.glxRead = f.glx->getCurrentReadDrawable();
    // Contexts of both kinds at a time on one thread are refused.
    f.glx->makeContextCurrent(f.glxDisplay, 0, 0, nullptr);
  }
  f.api = eglQueryAPI();
  f.context = eglGetCurrentContext();
  if (f.context != EGL_NO_CONTEXT) {
    f.display = eglGetCurrentDisplay();
    f.draw = eglGetCurrentSurface(EGL_DRAW);
    f.read = eglGetCurrentSurface(EGL_READ);
  }
  eglBindAPI(EGL_OPENGL_API);
  m_succeeded = eglMakeCurrent(context.m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, context.m_context);
  if (!m_succeeded) {
    SoDebugError::post("SoHeadlessContext", "the context can not be made current (EGL error 0x%x)",
                       static_cast<unsigned>(eglGetError()));
  }
}

SoHeadlessContext::Current::~Current() {
  Former const& f = *m_former;
  if (m_succeeded) eglMakeCurrent(eglGetCurrentDisplay(), EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
  if (f.api != EGL_NONE) eglBindAPI(f.api);
  if (f.context != EGL_NO_CONTEXT) eglMakeCurrent(f.display, f.draw, f.read, f.context);
  if (f.glxContext) f.glx->makeContextCurrent(f.glxDisplay, f.glxDraw, f.glxRead, f.glxContext);
}
