#include "vantle/inspect/SoFieldWatch.h"

#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>

#include "kestrava/nodes/SoNode.h"
#include "vantle/frame/SoCommandManager.h"
#include "vantle/inspect/SoFieldItem.h"
#include "vantle/prefs/FieldWatchConfig.h"
#include "vantle/prefs/SoVantleConfig.h"
#include "vantle/prefs/SoVantleState.h"
#include "vantle/prefs/SoVantleStateManager.h"
#include "vnt/QtText.h"
#include "vantle/session/VntServicesImpl.h"

namespace {

SoCommandManager* commandManager() {
  return VntServicesImpl::isInstance() ? VntServicesImpl::getImplInstance()->getCommandManager() : nullptr;
}

} // namespace

SoFieldWatch::SoFieldWatch(QWidget* parent, char const* name, Qt::WindowFlags flags)
    : SoVantleList(parent, name ? name : "SoFieldWatch", flags) {
  setMinimumHeight(SoVantleConfig::generalSetting(QStringLiteral("FieldWatchHeight")));
  setContextMenuPolicy(Qt::CustomContextMenu);
  connect(this, &QTreeWidget::itemSelectionChanged, this, &SoFieldWatch::fieldSelectionChanged);
  connect(this, &QTreeWidget::itemDoubleClicked, this, [](QTreeWidgetItem* item) {
    if (SoCommandManager* commands = commandManager()) commands->setNodeOverviewFromWatch(item);
  });
  connect(this, &QWidget::customContextMenuRequested, this, &SoFieldWatch::showContextMenu);
  initFieldWatchPreferences();
}

SoFieldWatch::~SoFieldWatch() = default;

SoFieldItem* SoFieldWatch::insertFieldItem(SoFieldItem const* item) {
  if (!item || !item->getField() || getListItemFromField(item->getField())) return nullptr;
  auto* const added = new SoFieldItem(this, item);
  displayFieldItem(added);
  return added;
}

void SoFieldWatch::addField(SoNode* node, SoField* field) {
  if (!node || !field || getListItemFromField(field)) return;
  int const index = node->getFieldData()->getIndex(node, field);
  if (index >= 0) displayFieldItem(new SoFieldItem(this, node, makeDefaultInstance(node), index, false));
}

void SoFieldWatch::takeItem(QTreeWidgetItem* item) {
  int const before = topLevelItemCount();
  SoVantleList::takeItem(item);
  if (before > 0 && topLevelItemCount() == 0) Q_EMIT listCleared();
}

void SoFieldWatch::updateItems(SoNode* node) {
  if (!node) return;
  QString const name = toQString(node->getName().toString());
  for (int i = 0; i < topLevelItemCount(); ++i) topLevelItem(i)->setText(NODE_NAME_COLUMN, name);
}

void SoFieldWatch::setState(SoVantleState* state) {
  m_state = state;
  SoVantleStateManager::stateRegister(QStringLiteral("FieldWatchState"), state);
}

void SoFieldWatch::initFieldWatchPreferences() {
  QString const group = getFieldWatchPreferencesPath();
  QMap<QString, ConfigStyle> const styles = FieldWatchConfig::readStyles(group);
  ConfigStyle const unchanged = styles[QStringLiteral("Default Value")];
  ConfigStyle const changed = styles[QStringLiteral("Changed Value")];
  setStyles(unchanged.color, unchanged.font, changed.color, changed.font);
  for (int i = 0; i < columnCount(); ++i) {
    int const width = FieldWatchConfig::listColumnWidth(i, group);
    if (width == -1) continue;
    header()->setSectionResizeMode(i, QHeaderView::Interactive);
    setColumnWidth(i, width);
  }
}

void SoFieldWatch::savePreferences() {
  for (int i = 0; i < columnCount() - 1; ++i) {
    FieldWatchConfig::setListColumnWidth(i, columnWidth(i + 1), getFieldWatchPreferencesPath());
  }
}

void SoFieldWatch::fieldSelectionChanged() {
  if (SoCommandManager* commands = commandManager()) commands->setFieldEditorFromWatch(currentItem());
}

void SoFieldWatch::showContextMenu(QPoint const& pos) {
  if (!m_state) return;
  QContextMenuEvent event(QContextMenuEvent::Mouse, pos, viewport()->mapToGlobal(pos));
  m_state->createContextPopupMenu(&event);
}

void SoFieldWatch::focusInEvent(QFocusEvent* event) {
  SoVantleStateManager::setCurrentState(QStringLiteral("FieldWatchState"));
  SoVantleList::focusInEvent(event);
}

void SoFieldWatch::keyReleaseEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Delete && currentItem() && commandManager()) {
    commandManager()->deleteFieldWatch(currentItem());
    event->accept();
  }
  SoVantleList::keyReleaseEvent(event);
}
