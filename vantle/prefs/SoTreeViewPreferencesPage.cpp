#include "vantle/prefs/SoTreeViewPreferencesPage.h"

#include <QLocale>

#include "ui_QTreeViewPreferences.h"
#include "vantle/prefs/TreeViewConfig.h"

SoTreeViewPreferencesPage::SoTreeViewPreferencesPage()
    : m_form(std::make_unique<Ui::QTreeViewPreferences>()) {
  m_form->setupUi(this);
  setObjectName(QStringLiteral("vantletreeview_preferences"));
  QLocale grouped = QLocale::c();
  grouped.setNumberOptions(QLocale::DefaultNumberOptions);
  m_form->m_rows->setLocale(grouped);
  m_form->m_rows->setRange(TreeViewConfig::LEAST_MAXIMUM_ROWS, TreeViewConfig::MOST_MAXIMUM_ROWS);
}

SoTreeViewPreferencesPage::~SoTreeViewPreferencesPage() = default;

void SoTreeViewPreferencesPage::setValues(Values const& values) {
  QString const fromField = QStringLiteral("Node From Field");
  m_form->m_styles->setStyles({QStringLiteral("Node Type"), QStringLiteral("Node/Part Name"),
                               QStringLiteral("Reference Count"), fromField},
                              values.styles, {fromField});
  m_form->m_highlight->setChecked(values.highlightsSelectedNode);
  m_form->m_realCounter->setChecked(values.countsKitReferencesOnce);
  m_form->m_rows->setValue(values.maximumRows);
}

SoTreeViewPreferencesPage::Values SoTreeViewPreferencesPage::getValues() const {
  return {m_form->m_styles->getStyles(), m_form->m_highlight->isChecked(), m_form->m_realCounter->isChecked(),
          m_form->m_rows->value()};
}

QStringList SoTreeViewPreferencesPage::getChangedStyles() const {
  return m_form->m_styles->getChangedNames();
}
