#include "vantle/inspect/SoTabNodeOverview.h"

#include <QHeaderView>
#include <QSettings>

#include "kestrava/nodes/SoNode.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/inspect/SoFieldItem.h"
#include "vantle/inspect/SoNodeOverview.h"
#include "vantle/inspect/SoNodeOverviewList.h"
#include "vantle/inspect/SoVantleEdition.h"
#include "vantle/prefs/NodeOverviewConfig.h"
#include "vantle/prefs/SoVantleConfig.h"
#include "vnt/QtText.h"
#include "vantle/session/VntNodeInfo.h"
#include "vantle/session/VntServicesImpl.h"
#include "vantle/tree/SoVantleTreeView.h"

namespace {

SoCommandManager* commandManager() {
  return VntServicesImpl::isInstance() ? VntServicesImpl::getImplInstance()->getCommandManager() : nullptr;
}

} // namespace

SoTabNodeOverview::SoTabNodeOverview(SoVantleTreeView* treeView, SoVantleEdition* edition, QWidget* parent,
                                     char const* name)
    : QTabWidget(parent), m_treeView(treeView), m_edition(edition) {
  setObjectName(QString::fromLatin1(name ? name : "SoTabNodeOverview"));
  setIconSize(QSize(16, 16));
  addTab(makePage(), QString());
  setTabsClosable(true);
  connect(this, &QTabWidget::tabCloseRequested, this, &SoTabNodeOverview::tabClose);
  connect(this, &QTabWidget::currentChanged, this, &SoTabNodeOverview::tabNodeOverviewChanged);
}

SoNodeOverview* SoTabNodeOverview::makePage() {
  auto* const page = new SoNodeOverview(this);
  page->getList()->initPreferences();
  setNodeOverviewPreferences(page);
  connect(page->getList(), &QTreeWidget::currentItemChanged, m_edition, &SoVantleEdition::setField);
  connect(page->getList(), &QTreeWidget::itemActivated, m_edition, &SoVantleEdition::activateField);
  connect(page->getList(), &SoVantleList::columnWidthChanged, this,
          &SoTabNodeOverview::overviewColumnListChanged);
  // Rows show names too.
  connect(page, &SoNodeOverview::containerRenamed, m_treeView, [this] { m_treeView->viewport()->update(); });
  return page;
}

void SoTabNodeOverview::setNodeOverviewPreferences(SoNodeOverview* page) {
  QString const group = SoNodeOverview::getNodeOverviewPreferencesPath();
  QMap<QString, ConfigStyle> const styles = NodeOverviewConfig::readStyles(group);
  ConfigStyle const unchanged = styles[QStringLiteral("Default Value")];
  ConfigStyle const changed = styles[QStringLiteral("Changed Value")];
  page->getList()->setStyles(unchanged.color, unchanged.font, changed.color, changed.font);
  page->getList()->showCatalogPart(NodeOverviewConfig::showCatalogPart(group));
}

void SoTabNodeOverview::addTabNode() { setCurrentIndex(addTab(makePage(), QString())); }

SoNodeOverview* SoTabNodeOverview::page(int index) const {
  return qobject_cast<SoNodeOverview*>(widget(index));
}
SoNodeOverview* SoTabNodeOverview::getCurrentNodeOverview() const { return page(currentIndex()); }

SoFieldItem* SoTabNodeOverview::getCurrentFieldItem() const {
  SoNodeOverview const* const current = getCurrentNodeOverview();
  return current ? current->getList()->currentItem() : nullptr;
}

SoFieldContainer* SoTabNodeOverview::getCurrentNode() const {
  SoNodeOverview const* const current = getCurrentNodeOverview();
  return current ? current->getAttachedNode() : nullptr;
}

bool SoTabNodeOverview::hasSelectableField(SoNodeOverview const* page) {
  return page && page->getList()->firstEnabledChild();
}

void SoTabNodeOverview::setSceneNode(SoFieldContainer* container, SoNode* kit) {
  SoNodeOverview* const current = getCurrentNodeOverview();
  if (!current || !container) return;
  current->setSceneNode(container, kit);
  if (!hasSelectableField(current)) Q_EMIT clearFieldEditorEvent();
  bool const isNode = container->isOfType(SoNode::getClassTypeId());
  setTabIcon(currentIndex(), isNode ? VntNodeInfo::icon(static_cast<SoNode*>(container)) : QIcon());
  setTabText(currentIndex(), toQString(container->getTypeId().getName().toString()));
}

void SoTabNodeOverview::tabClose(int index) {
  if (count() <= 1) return;
  // The command manager keeps the tabs' rows and closes the tab.
  if (SoCommandManager* commands = commandManager()) {
    commands->closeNodeOverview(index);
  } else {
    closeNodeOverview(index);
  }
}

void SoTabNodeOverview::closeNodeOverview(int index) {
  if (count() <= 1) return;
  if (index < 0) index = currentIndex();
  QWidget* const closed = widget(index);
  removeTab(index);
  delete closed;
}

void SoTabNodeOverview::tabNodeOverviewChanged(int index) {
  SoNodeOverview* const current = page(index);
  if (!current) return;
  if (SoCommandManager* commands = commandManager()) commands->highlightNodeItem();
  if (!hasSelectableField(current)) {
    Q_EMIT clearFieldEditorEvent();
    return;
  }
  SoFieldItem* const first = current->getList()->firstEnabledChild();
  current->getList()->setCurrentItem(first);
  m_edition->setField(first, nullptr);
}

void SoTabNodeOverview::overviewColumnListChanged(int column, int width) {
  // Setting the others makes them say so in their turn.
  if (std::exchange(m_applyingWidth, true)) return;
  for (int i = 0; i < count(); ++i) {
    page(i)->getList()->header()->setSectionResizeMode(column, QHeaderView::Interactive);
    page(i)->getList()->setColumnWidth(column, width);
  }
  int const stored = column < 2 ? width : width != 0 ? -1 : 0;
  NodeOverviewConfig::setListColumnWidth(column, stored, SoNodeOverview::getNodeOverviewPreferencesPath());
  m_applyingWidth = false;
}

void SoTabNodeOverview::savePreferences() { SoVantleConfig::getSettingsInterface()->sync(); }

void SoTabNodeOverview::clear() {
  for (int i = count() - 1; i > 0; --i) tabClose(i);
  page(0)->clear();
  setTabText(0, QString());
  setTabIcon(0, QIcon());
}
