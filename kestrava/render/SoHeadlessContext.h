#pragma once

#include <memory>

/// An OpenGL 3.3 core context without any window or display, made through EGL.
class SoHeadlessContext {
 public:
  /// Null, with a debug error, when the machine has no such OpenGL.
  static std::unique_ptr<SoHeadlessContext> make();
  ~SoHeadlessContext();
  SoHeadlessContext(SoHeadlessContext const&) = delete;
  SoHeadlessContext& operator=(SoHeadlessContext const&) = delete;

  /// Makes the context current on this thread for as long as it lives; whatever context was current before,
  /// of EGL or GLX, is current again afterwards.
  class Current {
   public:
    explicit Current(SoHeadlessContext const& context);
    ~Current();
    Current(Current const&) = delete;
    Current& operator=(Current const&) = delete;
    bool succeeded() const { return m_succeeded; }

   private:
    struct Former;
    std::unique_ptr<Former> m_former;
    bool m_succeeded;
  };

 private:
  SoHeadlessContext() = default;
  void* m_display = nullptr;
  void* m_context = nullptr;
};
