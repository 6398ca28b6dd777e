#include "kestrava_qt/SoQtCanvas.h"

#include <QGuiApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QOpenGLWidget>
#include <QPainter>
#include <QPointer>
#include <QTimer>
#include <cstring>

#include "kestrava/base/SoPreferences.h"
#include "kestrava/render/SoOffscreenRenderArea.h"
#include "kestrava/render/SoSceneManager.h"

namespace {

struct OpenGL {
  bool exists = false;
  bool isSoftware = false;
};

QSurfaceFormat formatOf(int samples) {
  QSurfaceFormat format;
  format.setRenderableType(QSurfaceFormat::OpenGL);
  format.setVersion(3, 3);
  format.setProfile(QSurfaceFormat::CoreProfile);
  format.setDepthBufferSize(24);
  format.setStencilBufferSize(8);
  format.setSamples(samples);
  return format;
}

OpenGL probe() {
  OpenGL result;
  // These platforms promise OpenGL that their windows can not show.
  QString const platform = QGuiApplication::platformName();
  if (platform == QLatin1String("offscreen") || platform.startsWith(QLatin1String("minimal")) ||
      platform == QLatin1String("vnc") || platform == QLatin1String("linuxfb")) {
    return result;
  }
  QOpenGLContext context;
  context.setFormat(formatOf(0));
  if (!context.create()) return result;
  QOffscreenSurface surface;
  surface.setFormat(context.format());
  surface.create();
  QOpenGLContext* const before = QOpenGLContext::currentContext();
  QSurface* const surfaceBefore = before ? before->surface() : nullptr;
  if (!surface.isValid() || !context.makeCurrent(&surface)) return result;
  result.exists = !context.isOpenGLES() && context.format().version() >= qMakePair(3, 3);
  if (result.exists) {
    auto const* const renderer = reinterpret_cast<char const*>(context.functions()->glGetString(GL_RENDERER));
    result.isSoftware = renderer && (std::strstr(renderer, "llvmpipe") || std::strstr(renderer, "softpipe"));
  }
  context.doneCurrent();
  if (before) before->makeCurrent(surfaceBefore);
  return result;
}

OpenGL const& openGL() {
  static OpenGL const result = probe();
  return result;
}

SbVec2s pixelsOf(QWidget const& widget) {
  qreal const ratio = widget.devicePixelRatioF();
  auto pixels = [ratio](int size) { return static_cast<short>(qBound(1, qRound(size * ratio), 32767)); };
  return SbVec2s(pixels(widget.width()), pixels(widget.height()));
}

class GLWidget : public QOpenGLWidget {
 public:
  GLWidget(SoSceneManager* manager, std::function<void()> beforeFrame, QWidget* parent)
      : QOpenGLWidget(parent), m_manager(manager), m_beforeFrame(std::move(beforeFrame)) {
    // Several samples a pixel make software rendering several times as slow.
    setFormat(formatOf(openGL().isSoftware ? 0 : 4));
  }
  ~GLWidget() override {
    // The context goes after what this class holds.
    if (context()) disconnect(context(), nullptr, this, nullptr);
    releaseGL();
  }

 protected:
  void initializeGL() override {
    connect(context(), &QOpenGLContext::aboutToBeDestroyed, this, [this] { releaseGL(); }, Qt::DirectConnection);
  }
  void paintGL() override {
    m_manager->setViewportRegion(SbViewportRegion(pixelsOf(*this)));
    m_beforeFrame();
    m_manager->render();
  }

 private:
  void releaseGL() {
    if (!context()) return;
    makeCurrent();
    m_manager->releaseGL();
    doneCurrent();
  }
  SoRef<SoSceneManager> m_manager;
  std::function<void()> m_beforeFrame;
};

class GLCanvas : public SoQtCanvas {
 public:
  explicit GLCanvas(GLWidget* widget) : m_widget(widget) {}
  ~GLCanvas() override { delete m_widget; }
  QWidget* getWidget() const override { return m_widget; }

 private:
  QPointer<QWidget> m_widget;
};

class ImageWidget : public QWidget {
 public:
  ImageWidget(SoSceneManager* manager, std::function<void()> beforeFrame, QWidget* parent)
      : QWidget(parent), m_manager(manager), m_area(new SoOffscreenRenderArea), m_beforeFrame(std::move(beforeFrame)) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    m_area->setSceneManager(manager);
  }
  void setNumSamples(int samples) { m_area->setNumSamples(samples); }

 protected:
  void paintEvent(QPaintEvent*) override {
    SbVec2s const size = pixelsOf(*this);
    m_manager->setViewportRegion(SbViewportRegion(size));
    m_beforeFrame();
    m_area->setSize(SbVec2i32(size));
    SbImage image;
    QPainter painter(this);
    if (!m_area->renderToImage(image)) {
      painter.fillRect(rect(), Qt::darkGray);
      painter.setPen(Qt::white);
      painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap,
                       QCoreApplication::translate("SoQtCanvas", "This machine has no OpenGL 3.3 to draw the scene with."));
      return;
    }
    QImage const shown(image.getBytes(), size[0], size[1], 3 * size[0], QImage::Format_RGB888);
    painter.drawImage(rect(), shown.mirrored());
  }

 private:
  SoRef<SoSceneManager> m_manager;
  SoRef<SoOffscreenRenderArea> m_area;
  std::function<void()> m_beforeFrame;
};

class ImageCanvas : public SoQtCanvas {
 public:
  explicit ImageCanvas(ImageWidget* widget) : m_widget(widget), m_imageWidget(widget) {
    m_still.setSingleShot(true);
    m_still.setInterval(300);
    QObject::connect(&m_still, &QTimer::timeout, widget, [widget] {
      widget->setNumSamples(4);
      widget->update();
    });
  }
  ~ImageCanvas() override { delete m_widget; }
  QWidget* getWidget() const override { return m_widget; }
  void setMoving(bool on) override {
    if (on) {
      m_still.stop();
      if (m_widget) m_imageWidget->setNumSamples(0);
    } else {
      m_still.start();
    }
  }

 private:
  QPointer<QWidget> m_widget;   // asked while it is being destroyed, too
  ImageWidget* m_imageWidget;  // the same
  QTimer m_still;
};

}  // namespace

bool SoQtCanvas::usesOpenGL() {
  return !SoPreferences::getBool("KSV_VIEWER_OFFSCREEN", false) && openGL().exists;
}

std::unique_ptr<SoQtCanvas> SoQtCanvas::make(SoSceneManager* manager, std::function<void()> beforeFrame,
                                             QWidget* parent) {
  if (usesOpenGL()) return std::make_unique<GLCanvas>(new GLWidget(manager, std::move(beforeFrame), parent));
  return std::make_unique<ImageCanvas>(new ImageWidget(manager, std::move(beforeFrame), parent));
}
