#include "StatisticsExtension.h"

#include <kestrava/nodes/SoGroup.h>
#include <vantle/session/VntNodeInfo.h>
#include <vnt/VntServices.h>
#include <vnt/VntShell.h>

#include <QDockWidget>
#include <QPainter>
#include <QToolBar>

#include "StatisticsPanel.h"
#include "StatisticsPreferences.h"

namespace {

QIcon chartIcon() {
  QPixmap pixmap(32, 32);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.fillRect(4, 16, 6, 12, QColor(0x3b, 0x7d, 0xc4));
  painter.fillRect(13, 4, 6, 24, QColor(0xd9, 0x48, 0x3b));
  painter.fillRect(22, 10, 6, 18, QColor(0x5a, 0x9e, 0x3c));
  return QIcon(pixmap);
}

QIcon pinIcon() {
  QPixmap pixmap(32, 32);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(QColor(0x55, 0x55, 0x55), 2.5));
  painter.drawLine(15, 16, 6, 28);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(0xd9, 0x48, 0x3b));
  painter.drawEllipse(11, 4, 16, 16);
  return QIcon(pixmap);
}

} // namespace

StatisticsExtension::~StatisticsExtension() { StatisticsExtension::deactivate(); }

void StatisticsExtension::activate() {
  VntShell* const shell = VntShell::getInstance();
  VntServices* const services = VntServices::getInstance();

  // The object names are what the stored layout of the window refers to.
  m_dock = new QDockWidget(tr("Statistics"));
  m_dock->setObjectName("dockStatistics");
  m_panel = new StatisticsPanel;
  m_dock->setWidget(m_panel);
  shell->registerDock(m_dock, Qt::RightDockWidgetArea);
  shell->registerViewMenu(this, true);

  makeActions();
  shell->registerToolBar(m_toolBar, Qt::TopToolBarArea);
  shell->registerContextualMenu(SoGroup::getClassTypeId(), false, m_contextMenu.get());

  m_preferences = std::make_unique<StatisticsPreferences>();
  shell->registerPreferencePanel(this, m_preferences.get(), SLOT(read()), SLOT(write()));
  connect(m_preferences.get(), &StatisticsPreferences::changed, m_panel, &StatisticsPanel::updateSettings);

  connect(services, &VntServices::selectedNodeChanged, this, &StatisticsExtension::selectNode);
  selectNode(services->getSelectedNode());
}

void StatisticsExtension::deactivate() {
  if (!m_preferences) return;
  if (VntServices* const services = VntServices::getInstance()) disconnect(services, nullptr, this, nullptr);
  if (VntShell* const shell = VntShell::getInstance()) {
    shell->unregisterPreferencePanel(this);
    shell->unregisterContextualMenu(m_contextMenu.get());
    shell->unregisterToolBar(m_toolBar);
    shell->unregisterViewMenu(this);
    shell->unregisterDock(m_dock);
  }
  m_preferences.reset();
  m_contextMenu.reset();
  delete m_toolBar;
  delete m_dock;
}

void StatisticsExtension::show() {
  if (m_dock) m_dock->show();
}

void StatisticsExtension::hide() {
  if (m_dock) m_dock->hide();
}

void StatisticsExtension::makeActions() {
  m_toolBar = new QToolBar(tr("Statistics Tool Bar"));
  m_toolBar->setObjectName("statisticsToolBar");
  QAction* const scene = m_toolBar->addAction(chartIcon(), tr("Statistics of the Scene"));
  connect(scene, &QAction::triggered, this, &StatisticsExtension::selectScene);
  QAction* const copy =
      m_toolBar->addAction(QIcon(":/Vantle_icons/Icons/editcopy.png"), tr("Copy Statistics"));
  connect(copy, &QAction::triggered, m_panel, &StatisticsPanel::copyToClipboard);
  m_pinned = m_toolBar->addAction(pinIcon(), tr("Keep This Node"));
  m_pinned->setCheckable(true);
  m_pinned->setToolTip(tr("Keep showing this node when another one is selected"));
  connect(m_pinned, &QAction::toggled, this, [this](bool on) {
    if (!on) selectNode(VntServices::getInstance()->getSelectedNode());
  });

  // Its entries are shown in the menu of a row; the row's node is the selected one then.
  m_contextMenu = std::make_unique<QMenu>(tr("Statistics"));
  QAction* const group = m_contextMenu->addAction(tr("Statistics of This Group"));
  connect(group, &QAction::triggered, this, &StatisticsExtension::showGroup);
}

void StatisticsExtension::selectNode(SoFieldContainer* container) {
  if (!m_pinned->isChecked() || !container) m_panel->setNode(container);
}

void StatisticsExtension::showGroup() {
  m_panel->setNode(VntServices::getInstance()->getSelectedNode());
  m_dock->show();
  m_dock->raise();
}

void StatisticsExtension::selectScene() {
  m_panel->setNode(VntServices::getInstance()->getSceneGraph());
  m_dock->show();
  m_dock->raise();
}
