#include "apps/gallery/GalleryWindow.h"

#include <QActionGroup>
#include <QCoreApplication>
#include <QEvent>
#include <QLabel>
#include <QSplitter>
#include <QToolBar>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "apps/gallery/GalleryCamera.h"
#include "kestrava/actions/SoRayPickAction.h"
#include "kestrava/nodes/SoCamera.h"
#include "kestrava/render/SoSceneManager.h"

namespace {

QString translated(char const* text) { return QCoreApplication::translate("GalleryPage", text); }

QLabel* makeLine(QWidget* parent, char const* name) {
  auto* const label = new QLabel(parent);
  label->setObjectName(QLatin1String(name));
  label->setWordWrap(true);
  label->setTextInteractionFlags(Qt::TextSelectableByMouse);
  return label;
}

} // namespace

GalleryWindow::GalleryWindow() {
  setWindowTitle(tr("Gallery"));
  auto* const splitter = new QSplitter(this);
  m_list = new QTreeWidget(splitter);
  m_list->setObjectName(QStringLiteral("pages"));
  m_list->setHeaderHidden(true);
  m_list->setRootIsDecorated(false);
  m_list->setIndentation(12);
  auto* const right = new QWidget(splitter);
  m_viewer = std::make_unique<SoQtExaminerViewer>(right, "Gallery");
  m_choices = new QToolBar(right);
  m_choices->setObjectName(QStringLiteral("choices"));
  m_about = makeLine(right, "about");
  m_answer = makeLine(right, "answer");

  auto* const lines = new QVBoxLayout;
  lines->setContentsMargins(8, 4, 8, 8);
  lines->addWidget(m_about);
  lines->addWidget(m_answer);
  auto* const column = new QVBoxLayout(right);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSpacing(0);
  column->addWidget(m_viewer->getWidget(), 1);
  column->addWidget(m_choices);
  column->addLayout(lines);
  auto* const all = new QVBoxLayout(this);
  all->setContentsMargins(0, 0, 0, 0);
  all->addWidget(splitter);
  splitter->setStretchFactor(1, 1);
  splitter->setCollapsible(1, false);

  fillList();
  connect(m_list, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
    if (item && item->parent()) showPage(GalleryPage::all()[item->data(0, Qt::UserRole).toInt()]);
  });
  connect(m_viewer.get(), &SoQtExaminerViewer::picked, this, &GalleryWindow::clicked);
  m_viewer->getViewWidget()->installEventFilter(this);
}

GalleryWindow::~GalleryWindow() {
  // The scenes' own render actions outlive the viewer.
  m_viewer.reset();
}

void GalleryWindow::fillList() {
  QTreeWidgetItem* group = nullptr;
  int index = 0;
  for (GalleryPage const& page : GalleryPage::all()) {
    if (!group || group->text(0) != translated(page.group)) {
      group = new QTreeWidgetItem(m_list, {translated(page.group)});
      group->setFlags(Qt::ItemIsEnabled);
      QFont font = m_list->font();
      font.setBold(true);
      group->setFont(0, font);
    }
    auto* const item = new QTreeWidgetItem(group, {translated(page.title)});
    item->setData(0, Qt::UserRole, index++);
  }
  m_list->expandAll();
  m_list->setItemsExpandable(false);
  m_list->resizeColumnToContents(0);
  m_list->setMinimumWidth(120);
  static_cast<QSplitter*>(m_list->parentWidget())->setSizes({m_list->columnWidth(0) + 24, 800});
}

void GalleryWindow::showPage(GalleryPage const& page) {
  if (m_page == &page) return;
  m_page = &page;
  std::unique_ptr<GalleryScene>& scene = m_scenes[&page];
  if (!scene) scene = page.open();
  m_scene = scene.get();
  SoSceneManager& manager = *m_viewer->getSceneManager();
  manager.setGLRenderAction(nullptr);
  m_viewer->setTransparencyType(SoGLRenderer::SORTED);
  m_viewer->setSceneGraph(m_scene ? m_scene->getRoot() : nullptr);
  m_heightAngle = GalleryCamera::getHeightAngle(*m_viewer->getCamera());
  fitCamera();
  m_viewer->saveHomePosition();
  m_viewer->setViewing(!m_scene || !m_scene->isForClicks());
  m_about->setText(translated(page.about));
  say(m_scene ? QString() : tr("The page's file could not be read."));
  fillChoices();
  choose(0);
  int const index = static_cast<int>(&page - GalleryPage::all().data());
  QTreeWidgetItem* item = m_list->topLevelItem(0);
  while (item && (!item->parent() || item->data(0, Qt::UserRole).toInt() != index))
    item = m_list->itemBelow(item);
  if (item) m_list->setCurrentItem(item);
}

void GalleryWindow::fillChoices() {
  m_choices->clear();
  auto* const group = new QActionGroup(m_choices);
  if (m_scene) {
    for (std::string const& choice : m_scene->getChoices()) {
      QAction* const action = m_choices->addAction(translated(choice.c_str()));
      action->setCheckable(true);
      group->addAction(action);
      int const which = static_cast<int>(group->actions().size()) - 1;
      connect(action, &QAction::triggered, this, [this, which] { choose(which); });
    }
  }
  if (!group->actions().empty()) group->actions().front()->setChecked(true);
  m_choices->setVisible(!group->actions().empty());
}

void GalleryWindow::choose(int which) {
  if (!m_scene) return;
  m_scene->choose(which, *m_viewer->getSceneManager());
  m_viewer->getSceneManager()->scheduleRedraw();
}

void GalleryWindow::clicked(SbVec2s position, SbViewportRegion const& region) {
  if (!m_scene) return;
  SoRayPickAction pick(region);
  pick.setPoint(position);
  pick.setCamera(m_viewer->getCamera());
  pick.apply(m_scene->getRoot());
  say(QString::fromStdString(m_scene->click(pick.getPickedPoint())));
}

void GalleryWindow::say(QString const& text) {
  m_answer->setText(text);
  m_answer->setVisible(!text.isEmpty());
}

void GalleryWindow::fitCamera() {
  QWidget const* const view = m_viewer->getViewWidget();
  SoCamera& camera = *m_viewer->getCamera();
  if (m_heightAngle <= 0 || !view->height()) return;
  GalleryCamera::fit(camera, m_heightAngle,
                     static_cast<float>(view->width()) / static_cast<float>(view->height()));
}

bool GalleryWindow::eventFilter(QObject* object, QEvent* event) {
  if (event->type() == QEvent::Resize) fitCamera();
  return QWidget::eventFilter(object, event);
}
