#include "vantle/inspect/SoVantleEdition.h"

#include <QDockWidget>
#include <QPushButton>

#include "kestrava/fields/SoMFNode.h"
#include "kestrava/fields/SoMFUniformShaderParameter.h"
#include "kestrava/fields/SoSFNode.h"
#include "kestrava/nodes/SoNode.h"
#include "vantle/inspect/SoFieldItem.h"
#include "vantle/inspect/SoFieldWatch.h"
#include "vantle/inspect/SoNodeOverview.h"
#include "vantle/inspect/SoTabNodeOverview.h"
#include "vantle/inspect/SoVantleList.h"
#include "vantle/prefs/SoFieldWatchState.h"
#include "vnt/VntServices.h"

SoVantleEdition::SoVantleEdition(SoVantleTreeView* treeView, QDockWidget* overviewDock,
                                 QDockWidget* watchDock)
    : m_overviewDock(overviewDock), m_watchDock(watchDock) {
  initClass(treeView);
}

SoVantleEdition::SoVantleEdition(SoNode* node, SoNode* kit, SoVantleTreeView* treeView,
                                 QDockWidget* overviewDock, QDockWidget* watchDock)
    : SoVantleEdition(treeView, overviewDock, watchDock) {
  setNode(node, kit, false);
}

SoVantleEdition::~SoVantleEdition() {
  m_watchState.reset();
  delete m_fieldWatch;
  delete m_overviews;
}

SoTabNodeOverview* SoVantleEdition::getTabNodeOverview() const { return m_overviews; }
SoFieldWatch* SoVantleEdition::getFieldWatch() const { return m_fieldWatch; }

void SoVantleEdition::initClass(SoVantleTreeView* treeView) {
  m_overviews = new SoTabNodeOverview(treeView, this, m_overviewDock);
  m_overviewDock->setWidget(m_overviews);
  connect(m_overviews, &SoTabNodeOverview::clearFieldEditorEvent, this, [this] { setField(nullptr); });
  m_fieldWatch = new SoFieldWatch(m_watchDock, "m_fieldWatch");
  m_watchDock->setWidget(m_fieldWatch);
}

void SoVantleEdition::setNode(SoFieldContainer* container, SoNode* kit, bool newTab) {
  if (!container || !m_overviews) return;
  if (m_overviewDock) m_overviewDock->show();
  if (m_watchDock) m_watchDock->show();
  if (newTab) m_overviews->addTabNode();
  m_overviews->setSceneNode(container, kit);
}

void SoVantleEdition::clearScene() {
  if (m_fieldWatch) m_fieldWatch->clear();
  if (m_overviews) m_overviews->clear();
}

void SoVantleEdition::setEditionStates() {
  if (!m_fieldWatch) return;
  m_watchState = std::make_unique<SoFieldWatchState>(m_fieldWatch);
  m_fieldWatch->setState(m_watchState.get());
}

void SoVantleEdition::setField(QTreeWidgetItem* current, QTreeWidgetItem*) {
  SoFieldItem const* const item = SoFieldItem::cast(current);
  if (item) {
    if (auto* overview = qobject_cast<SoNodeOverview*>(item->listView()->parentWidget())) {
      overview->getWatchButton()->setEnabled(true);
    }
  }
  if (VntServices* services = VntServices::getInstance())
    services->setSelectedField(item ? item->getField() : nullptr);
}

void SoVantleEdition::activateField(QTreeWidgetItem* row) {
  setField(row);
  VntServices* const services = VntServices::getInstance();
  if (services && services->getSelectedField()) Q_EMIT services->fieldActivated(services->getSelectedField());
}

void SoVantleEdition::addFieldWatch() {
  SoFieldItem const* const item = m_overviews ? m_overviews->getCurrentFieldItem() : nullptr;
  SoField const* const field = item ? item->getField() : nullptr;
  if (!field || !m_fieldWatch) return;
  for (SoType type : {SoSFNode::getClassTypeId(), SoMFNode::getClassTypeId(),
                      SoMFUniformShaderParameter::getClassTypeId()}) {
    if (field->isOfType(type)) return;
  }
  m_fieldWatch->insertFieldItem(item);
}
