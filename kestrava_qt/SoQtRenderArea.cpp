#include "kestrava_qt/SoQtRenderArea.h"

#include <QEvent>
#include <QHBoxLayout>

#include "kestrava_qt/SoQt.h"
#include "kestrava_qt/SoQtCanvas.h"
#include "kestrava_qt/SoQtEventFeeder.h"

SoQtRenderArea::SoQtRenderArea(QWidget* parent, char const* name)
    : m_area(new SoGuiRenderArea), m_widget(new QWidget(parent)) {
  SoQt::init(parent);
  m_widget->setObjectName(QLatin1String(name));
  m_widget->setFocusPolicy(Qt::StrongFocus);
  m_widget->setMinimumSize(120, 120);
  auto* const layout = new QHBoxLayout(m_widget);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  SoSceneManager* const manager = getSceneManager();
  m_canvas = SoQtCanvas::make(
      manager, [this] { beforeFrame(); }, m_widget);
  QWidget* const view = getViewWidget();
  layout->addWidget(view, 1);
  view->setObjectName(QStringLiteral("view"));
  // Nodes may follow the pointer while no button is down.
  view->setMouseTracking(true);
  m_feeder = std::make_unique<SoQtEventFeeder>(manager, view);
  view->installEventFilter(this);
  m_widget->installEventFilter(this);
  auto redraw = [](void* data, SoSceneManager*) {
    if (QWidget* const shown = static_cast<SoQtRenderArea*>(data)->getViewWidget()) shown->update();
  };
  manager->setRenderCallback(redraw, this);
}

SoQtRenderArea::~SoQtRenderArea() {
  getSceneManager()->setRenderCallback(nullptr);
  m_canvas.reset();
  delete m_widget;
}

QWidget* SoQtRenderArea::getViewWidget() const { return m_canvas ? m_canvas->getWidget() : nullptr; }

void SoQtRenderArea::setTransparencyType(SoGLRenderAction::Transparency type) {
  getSceneManager()->getGLRenderAction()->setTransparencyType(type);
  getSceneManager()->scheduleRedraw();
}

void SoQtRenderArea::setBackgroundColor(SbColor const& color) {
  getSceneManager()->setBackgroundColorRGBA(SbColorRGBA(color, 1));
}

bool SoQtRenderArea::offerToScene(QEvent const& event) { return getViewWidget() && m_feeder->offer(event); }

void SoQtRenderArea::tellPointerLeft() {
  if (getViewWidget()) m_feeder->leave();
}

bool SoQtRenderArea::eventFilter(QObject* object, QEvent* event) {
  bool const isKey = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
  if (object != (isKey ? m_widget.data() : getViewWidget())) return false;
  QPointer<SoQtRenderArea> const self(this);
  bool const handled = offerToScene(*event);
  // Nobody is left who could be given the event.
  if (!self || !getViewWidget()) return true;
  // A press that nobody handles is passed on in any case, so that the widget around the view gets the focus.
  return handled && event->type() != QEvent::MouseButtonPress;
}
