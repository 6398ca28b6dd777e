#pragma once

#include <QMap>
#include <QStringList>
#include <QWidget>
#include <memory>

#include "vantle/prefs/ConfigStyle.h"

namespace Ui {
class QTreeViewPreferences;
}

/// What the tree has to set: the styles of its texts, and its switches.
class SoTreeViewPreferencesPage : public QWidget {
  Q_OBJECT
 public:
  struct Values {
    QMap<QString, ConfigStyle> styles;
    bool highlightsSelectedNode = true;
    bool countsKitReferencesOnce = false;
    int maximumRows = 0;
  };

  SoTreeViewPreferencesPage();
  ~SoTreeViewPreferencesPage() override;

  void setValues(Values const& values);
  Values getValues() const;
  /// The styles that the user has edited since the values were set.
  QStringList getChangedStyles() const;

 private:
  std::unique_ptr<Ui::QTreeViewPreferences> m_form;
};
