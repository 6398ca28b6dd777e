#pragma once

#include <QMap>
#include <QStringList>
#include <QWidget>
#include <memory>

#include "vantle/prefs/ConfigStyle.h"

class QListWidgetItem;

namespace Ui {
class QStyleEditor;
}

/// Edits a set of text styles: the elements in a list, beside it the style of the current one with a preview.
class SoStyleEditor : public QWidget {
  Q_OBJECT
 public:
  explicit SoStyleEditor(QWidget* parent = nullptr);
  ~SoStyleEditor() override;

  /// `names` in the order of the list. The user can switch those in `switchable` off and on. The element that
  /// was current stays it.
  void setStyles(QStringList const& names, QMap<QString, ConfigStyle> const& styles,
                 QStringList const& switchable = {});
  QMap<QString, ConfigStyle> const& getStyles() const { return m_styles; }
  /// The elements whose style is another one than what was set.
  QStringList getChangedNames() const;

 private:
  void showElement();
  void showPreview();
  void takeEdits();
  void chooseColor();
  void setColor(QColor const& color);

  std::unique_ptr<Ui::QStyleEditor> m_form;
  QMap<QString, ConfigStyle> m_styles, m_original;
  QStringList m_switchable;
  QString m_current; // empty: no element
  bool m_isShowing = false;
};
