#include <QEvent>

#include "vantle/prefs/ConfigStyleSet.h"
#include "vantle/prefs/SoTreeViewPreferencesPage.h"
#include "vantle/prefs/TreeViewConfig.h"
#include "vantle/tree/SoGraphTopologyManager.h"
#include "vantle/tree/SoTreeViewItem.h"
#include "vantle/tree/SoVantleTreeView.h"
#include "vantle/viewer/SoVantleViewer.h"

// What the user can set of the tree, and how rows look for it.

namespace {

QString const TYPE_STYLE = QStringLiteral("Node Type");
QString const NAME_STYLE = QStringLiteral("Node/Part Name");
QString const REF_COUNT_STYLE = QStringLiteral("Reference Count");
QString const FIELD_STYLE = QStringLiteral("Node From Field");

static_assert(TreeViewConfig::DEFAULT_MAXIMUM_ROWS == SoVantleTreeView::DEFAULT_ROW_LIMIT);

/// The styles as rows show them: all texts of a row have one font until others are chosen for some columns.
QMap<QString, ConfigStyle> shownStyles(QString const& group) {
  QMap<QString, ConfigStyle> styles = TreeViewConfig::readStyles(group);
  for (QString const& name : {NAME_STYLE, REF_COUNT_STYLE}) {
    if (!SoIsStyleStored(name, group)) styles[name].font = styles[TYPE_STYLE].font;
  }
  return styles;
}

} // namespace

void SoVantleTreeView::initTreeViewPreferences() {
  QString const group = getTreeViewPreferencesPath();
  QMap<QString, ConfigStyle> const styles = shownStyles(group);
  ConfigStyle const type = styles[TYPE_STYLE], name = styles[NAME_STYLE],
                    references = styles[REF_COUNT_STYLE], fieldNode = styles[FIELD_STYLE];
  m_normalFont = type.font;
  m_fieldNodeFont = fieldNode.font;
  m_nameFont = m_refCountFont = std::nullopt;
  if (SoIsStyleStored(NAME_STYLE, group)) m_nameFont = name.font;
  if (SoIsStyleStored(REF_COUNT_STYLE, group)) m_refCountFont = references.font;
  m_typeColor = type.color;
  m_nameColor = name.color;
  m_refCountColor = references.color;
  m_fieldNodeColor = fieldNode.color;
  m_showName = name.show;
  m_showRefCount = references.show;
  m_showNodeFromField = fieldNode.show;
  m_countsKitReferencesOnce = TreeViewConfig::showRealNodekitsCounter(group);
  m_topology->setIntervalTimeRefreshing(TreeViewConfig::refreshingTime(group));
  setRowLimit(TreeViewConfig::maximumRows(group));
  resizeAllColumns();
  viewport()->update();
}

bool SoVantleTreeView::isFieldNodeStyled(SoTreeViewItem const& item) const {
  return m_showNodeFromField && !item.baseKitPart() &&
         (item.fromBaseKit() ? item.fromField() : item.fromSubTreeField());
}

QFont const& SoVantleTreeView::textFont(SoTreeViewItem const& item, int column) const {
  if (column == NAME_COLUMN && m_nameFont) return *m_nameFont;
  if (column == REF_COUNT_COLUMN && m_refCountFont) return *m_refCountFont;
  return isFieldNodeStyled(item) ? m_fieldNodeFont : m_normalFont;
}

QColor SoVantleTreeView::textColor(SoTreeViewItem const& item, int column) const {
  QColor color = isFieldNodeStyled(item) ? m_fieldNodeColor : m_typeColor;
  // What stands below an ignored row is out of the graph as well.
  if (!(item.flags() & Qt::ItemIsEnabled) || (item.isIgnored() && column == TYPE_COLUMN)) {
    color = Qt::darkGray;
  } else if (column == NAME_COLUMN) {
    color = m_nameColor;
  } else if (column == REF_COUNT_COLUMN) {
    color = m_refCountColor;
  }
  return SoReadableColor(color, palette().color(QPalette::Base));
}

/// The sheet's light bar under the pointer is made for dark texts.
void SoVantleTreeView::followPalette() {
  bool const isDark = palette().color(QPalette::Base).lightness() < 128;
  if (std::exchange(m_isDark, isDark) == isDark) return;
  QString const dark = QStringLiteral(
      "\nQTreeView::item:hover:!selected, QTreeView::branch:hover:!selected { background: #3a4150; }");
  QString const sheet = styleSheet();
  setStyleSheet(isDark ? sheet + dark : QString(sheet).remove(dark));
}

void SoVantleTreeView::changeEvent(QEvent* event) {
  QTreeWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ApplicationPaletteChange)
    followPalette();
}

// The page.

void SoVantleTreeView::getPreferences(QWidget*& page, QString& title, QObject*& receiver,
                                      char const*& initSlot, char const*& setSlot) {
  if (!m_preferencesPage) m_preferencesPage = std::make_unique<SoTreeViewPreferencesPage>();
  page = m_preferencesPage.get();
  title = tr("Tree View");
  receiver = this;
  initSlot = SLOT(initPreferences());
  setSlot = SLOT(setPreferences());
}

void SoVantleTreeView::initPreferences() {
  if (!m_preferencesPage) return;
  QString const group = getTreeViewPreferencesPath();
  m_preferencesPage->setValues({shownStyles(group), TreeViewConfig::highlightSelectedNode(group),
                                TreeViewConfig::showRealNodekitsCounter(group),
                                TreeViewConfig::maximumRows(group)});
}

void SoVantleTreeView::setPreferences() {
  if (!m_preferencesPage) return;
  QString const group = getTreeViewPreferencesPath();
  SoTreeViewPreferencesPage::Values const values = m_preferencesPage->getValues();
  // What was never touched keeps following the defaults, and with them the desktop's font.
  SoSaveStyles(values.styles, m_preferencesPage->getChangedStyles(), group);
  TreeViewConfig::setSelectedNodeHighlighting(values.highlightsSelectedNode, group);
  TreeViewConfig::setRealNodekitsCounter(values.countsKitReferencesOnce, group);
  TreeViewConfig::setMaximumRows(values.maximumRows, group);
  initTreeViewPreferences();
  if (SoVantleViewer::isInstance())
    SoVantleViewer::getInstance()->setHighlighting(values.highlightsSelectedNode);
  initPreferences();
}
