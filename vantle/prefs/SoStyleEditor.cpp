#include "vantle/prefs/SoStyleEditor.h"

#include <QColorDialog>
#include <QFontInfo>
#include <QPixmap>

#include "ui_QStyleEditor.h"

SoStyleEditor::SoStyleEditor(QWidget* parent)
    : QWidget(parent), m_form(std::make_unique<Ui::QStyleEditor>()) {
  m_form->setupUi(this);
  m_form->m_preview->setBackgroundRole(QPalette::Base); // as rows have it
  m_form->m_preview->setAutoFillBackground(true);
  connect(m_form->m_elementList, &QListWidget::currentItemChanged, this, &SoStyleEditor::showElement);
  connect(m_form->m_family, &QFontComboBox::currentFontChanged, this, &SoStyleEditor::takeEdits);
  connect(m_form->m_size, &QSpinBox::valueChanged, this, &SoStyleEditor::takeEdits);
  for (QCheckBox* box : {m_form->m_show, m_form->m_bold, m_form->m_italic, m_form->m_underline})
    connect(box, &QCheckBox::toggled, this, &SoStyleEditor::takeEdits);
  connect(m_form->m_color, &QPushButton::clicked, this, &SoStyleEditor::chooseColor);
}

SoStyleEditor::~SoStyleEditor() = default;

void SoStyleEditor::setStyles(QStringList const& names, QMap<QString, ConfigStyle> const& styles,
                              QStringList const& switchable) {
  int const row = names.indexOf(m_current);
  m_current.clear();
  m_form->m_elementList->clear();
  m_styles = m_original = styles;
  m_switchable = switchable;
  for (QString const& name : names) {
    auto* item = new QListWidgetItem(tr(qPrintable(name)), m_form->m_elementList);
    item->setData(Qt::UserRole, name);
  }
  m_form->m_elementList->setCurrentRow(row < 0 ? 0 : row);
}

QStringList SoStyleEditor::getChangedNames() const {
  QStringList names;
  for (auto it = m_styles.begin(); it != m_styles.end(); ++it) {
    if (!(*it == m_original.value(it.key()))) names << it.key();
  }
  return names;
}

void SoStyleEditor::showElement() {
  QListWidgetItem const* const item = m_form->m_elementList->currentItem();
  if (!item) return;
  m_current = item->data(Qt::UserRole).toString();
  ConfigStyle const style = m_styles.value(m_current);
  m_isShowing = true;
  m_form->m_show->setVisible(m_switchable.contains(m_current));
  m_form->m_show->setChecked(style.show);
  m_form->m_family->setCurrentFont(style.font);
  m_form->m_size->setValue(QFontInfo(style.font).pointSize());
  m_form->m_bold->setChecked(style.font.bold());
  m_form->m_italic->setChecked(style.font.italic());
  m_form->m_underline->setChecked(style.font.underline());
  m_isShowing = false;
  showPreview();
}

void SoStyleEditor::showPreview() {
  ConfigStyle const style = m_styles.value(m_current);
  QPixmap swatch(16, 16);
  swatch.fill(style.color);
  m_form->m_color->setIcon(swatch);
  m_form->m_color->setText(style.color.name());
  QPalette palette = m_form->m_preview->palette();
  palette.setColor(QPalette::WindowText, SoReadableColor(style.color, palette.color(QPalette::Base)));
  m_form->m_preview->setPalette(palette);
  m_form->m_preview->setFont(style.font);
  m_form->m_preview->setText(m_form->m_elementList->currentItem()->text());
}

void SoStyleEditor::takeEdits() {
  if (m_isShowing || m_current.isEmpty()) return;
  ConfigStyle& style = m_styles[m_current];
  // Only what was edited: a family that is not installed is shown as another one.
  if (sender() == m_form->m_family) style.font.setFamily(m_form->m_family->currentFont().family());
  if (sender() == m_form->m_size) style.font.setPointSize(m_form->m_size->value());
  style.font.setBold(m_form->m_bold->isChecked());
  style.font.setItalic(m_form->m_italic->isChecked());
  style.font.setUnderline(m_form->m_underline->isChecked());
  style.show = m_form->m_show->isChecked();
  showPreview();
}

void SoStyleEditor::chooseColor() {
  auto* dialog = new QColorDialog(m_styles.value(m_current).color, this);
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  connect(dialog, &QColorDialog::colorSelected, this, &SoStyleEditor::setColor);
  dialog->open();
}

void SoStyleEditor::setColor(QColor const& color) {
  if (!color.isValid() || m_current.isEmpty()) return;
  m_styles[m_current].color = color.rgb();
  showPreview();
}
