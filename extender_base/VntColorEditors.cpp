// The editor for a colour.

#include <QColorDialog>
#include <QCompleter>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPointer>
#include <QResizeEvent>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <cmath>

#include "extender_base/VntColorSlider.h"
#include "extender_base/VntEditorTable.h"
#include "extender_base/VntEditorWidget.h"
#include "extender_base/VntNumberEdit.h"
#include "kestrava/fields/SoSFColor.h"
#include "vnt/VntFieldEdit.h"

namespace {

enum Part { RED, GREEN, BLUE, HUE, SATURATION, VALUE, PARTS };

double limitOf(int part) { return part == HUE ? 360 : 1; }

bool isFinite(SbColor const& color) {
  return std::isfinite(color[0]) && std::isfinite(color[1]) && std::isfinite(color[2]);
}

bool isShown(SbColor const& color) {
  return std::all_of(&color[0], &color[0] + 3, [](float part) { return part >= 0 && part <= 1; });
}

/// Hue in degrees, saturation, value. Where a colour has none of its own, as grey has no hue, that of
/// `before` stays: the sliders do not jump while a user passes through grey or black.
std::array<double, 3> toHsv(SbColor const& color, std::array<double, 3> before) {
  double const r = color[0], g = color[1], b = color[2];
  double const highest = std::max({r, g, b}), width = highest - std::min({r, g, b});
  std::array<double, 3> hsv{before[0], before[1], highest};
  if (highest != 0) hsv[1] = width / highest;
  if (!isFinite(color) || width == 0) return hsv;
  double const sixth = highest == r   ? (g - b) / width
                       : highest == g ? 2 + (b - r) / width
                                      : 4 + (r - g) / width;
  hsv[0] = std::fmod(sixth * 60 + 360, 360);
  return hsv;
}

SbColor fromHsv(std::array<double, 3> const& hsv) {
  SbColor color;
  for (int i = 0; i < 3; ++i) {
    double const k = std::fmod(std::fmod(hsv[0] / 60, 6) + 11 - 2 * i, 6);
    color[i] = static_cast<float>(hsv[2] - hsv[2] * hsv[1] * std::clamp(std::min(k, 4 - k), 0.0, 1.0));
  }
  return color;
}

/// As a screen shows it.
QColor toQColor(SbColor const& color) {
  auto const cut = [](float part) { return part > 0 ? std::min(part, 1.0f) : 0.0f; };
  return QColor::fromRgbF(cut(color[0]), cut(color[1]), cut(color[2]));
}

SbColor toColor(QColor const& color) { return {color.redF(), color.greenF(), color.blueF()}; }

/// Swatch, text, platform dialog, and for each part of the colour a slider and a number.
class ColorEditor : public VntEditorWidget {
 public:
  ColorEditor(VntFieldEdit* edit, QWidget* parent);

 private:
  struct Row {
    QLabel* label;
    VntColorSlider* slider;
    VntNumberEdit* number;
  };

  void buildTop();
  void buildRow(Part part, QString const& name, QString const& tip);
  void arrange(bool isWide);
  void showValue() override;
  void showColors();
  void escape() override;
  void resizeEvent(QResizeEvent* event) override;

  SbColor current() const { return edit()->getFieldAs<SoSFColor>()->getValue(); }
  /// The field's colour with another value of one part.
  SbColor with(Part part, double value);
  void preview(SbColor const& color);
  void enter(SbColor const& color);
  void enterText();
  void followTyping();
  void dropTyping();
  void openDialog();

  QToolButton* m_swatch;
  QLineEdit* m_text;
  QLabel* m_hint;
  QGridLayout* m_grid;
  std::array<Row, PARTS> m_rows;
  std::array<double, 3> m_hsv{};
  QPointer<QColorDialog> m_dialog;
  bool m_isWide = false;
};

ColorEditor::ColorEditor(VntFieldEdit* edit, QWidget* parent)
    : VntEditorWidget(edit, parent),
      m_swatch(new QToolButton(this)),
      m_text(new QLineEdit(this)),
      m_hint(new QLabel(tr("Parts outside 0 to 1 are kept; the screen shows them cut."), this)),
      m_grid(new QGridLayout) {
  buildTop();
  m_grid->setHorizontalSpacing(8);
  m_grid->setVerticalSpacing(4);
  content()->addLayout(m_grid);
  buildRow(RED, tr("Red"), tr("0 to 1; other values are kept"));
  buildRow(GREEN, tr("Green"), tr("0 to 1; other values are kept"));
  buildRow(BLUE, tr("Blue"), tr("0 to 1; other values are kept"));
  buildRow(HUE, tr("Hue"), tr("In degrees: 0 red, 120 green, 240 blue"));
  buildRow(SATURATION, tr("Saturation"), tr("0 grey to 1 pure"));
  buildRow(VALUE, tr("Value"), tr("0 black to 1 bright"));
  m_hint->setObjectName("colorHint");
  m_hint->setWordWrap(true);
  content()->addWidget(m_hint);
  content()->addStretch();
  setFocusProxy(m_text);
  arrange(false);
}

void ColorEditor::buildTop() {
  m_swatch->setObjectName("swatch");
  m_swatch->setIconSize(QSize(64, 24));
  m_swatch->setToolTip(tr("Choose a colour in a dialog"));
  m_swatch->setAccessibleName(tr("Colour"));
  m_swatch->setFocusPolicy(Qt::StrongFocus);
  connect(m_swatch, &QToolButton::clicked, this, &ColorEditor::openDialog);

  m_text->setObjectName("colorText");
  m_text->setToolTip(tr("#rrggbb, a name such as \"steelblue\", or three numbers"));
  m_text->setMinimumWidth(70);
  auto* const names = new QCompleter(QColor::colorNames(), m_text);
  names->setCaseSensitivity(Qt::CaseInsensitive);
  m_text->setCompleter(names);
  watchTyping(m_text);
  connect(m_text, &QLineEdit::editingFinished, this, &ColorEditor::enterText);
  // The line takes the name over as if the program had set it; by then it has.
  connect(
      names, qOverload<QString const&>(&QCompleter::activated), this,
      [this] {
        m_text->setModified(true);
        enterText();
      },
      Qt::QueuedConnection);

  auto* const choose = new QToolButton(this);
  choose->setObjectName("choose");
  choose->setText(tr("Choose..."));
  choose->setToolTip(m_swatch->toolTip());
  choose->setFocusPolicy(Qt::StrongFocus);
  connect(choose, &QToolButton::clicked, this, &ColorEditor::openDialog);

  auto* const top = new QHBoxLayout;
  top->addWidget(m_swatch);
  top->addWidget(m_text, 1);
  top->addWidget(choose);
  content()->addLayout(top);
  setTabOrder(m_text, choose);
}

void ColorEditor::buildRow(Part part, QString const& name, QString const& tip) {
  static char const* const NAMES[] = {"red", "green", "blue", "hue", "saturation", "value"};
  Row& row = m_rows[part];
  row.label = new QLabel(name, this);
  row.slider = new VntColorSlider(this);
  row.slider->setLimits(0, limitOf(part));
  row.slider->setObjectName(QLatin1String(NAMES[part]) + QLatin1String("Slider"));
  row.number = new VntNumberEdit(VntNumberEdit::SINGLE, this);
  row.number->setObjectName(QLatin1String(NAMES[part]));
  row.number->setStep(part == HUE ? 1 : 0.01);
  row.number->setDragLabel(row.label);
  row.label->setBuddy(row.number);
  for (QWidget* widget : {static_cast<QWidget*>(row.label), static_cast<QWidget*>(row.slider),
                          static_cast<QWidget*>(row.number)}) {
    widget->setToolTip(tip);
    widget->setAccessibleName(name);
  }
  if (part == HUE) row.number->setDegrees(true);
  setTabOrder(row.slider, row.number);

  connect(row.slider, &VntSlider::numberPreviewed, this, [this, part](double value) {
    dropTyping();
    if (this->edit()->getField()) preview(with(part, value));
  });
  connect(row.slider, &VntSlider::dragFinished, this, [this] { this->edit()->finish(); });
  connect(row.slider, &VntSlider::dragCancelled, this, &ColorEditor::escape);
  connect(row.number, &VntNumberEdit::valuePreviewed, this, [this, part](double value) {
    if (this->edit()->getField()) preview(with(part, value));
  });
  connect(row.number, &VntNumberEdit::dragFinished, this, [this] { this->edit()->finish(); });
  connect(row.number, &VntNumberEdit::dragCancelled, this, &ColorEditor::escape);
  connect(row.number, &VntNumberEdit::valueEntered, this, [this, part](double value) {
    if (this->edit()->getField()) enter(with(part, value));
  });
  connect(row.number, &VntNumberEdit::typingChanged, this, &ColorEditor::followTyping);
  connect(row.number, &VntNumberEdit::rejected, this,
          [this](QString const& why) { this->edit()->report(why); });
}

/// A low wide dock has room for the two groups side by side.
void ColorEditor::arrange(bool isWide) {
  m_isWide = isWide;
  for (int part = RED; part < PARTS; ++part) {
    int const row = isWide ? part % 3 : part, column = isWide && part >= HUE ? 3 : 0;
    m_grid->addWidget(m_rows[static_cast<std::size_t>(part)].label, row, column);
    m_grid->addWidget(m_rows[static_cast<std::size_t>(part)].slider, row, column + 1);
    m_grid->addWidget(m_rows[static_cast<std::size_t>(part)].number, row, column + 2);
  }
  for (int column : {0, 3}) {
    bool const isUsed = column == 0 || isWide;
    m_grid->setColumnStretch(column + 1, isUsed ? 2 : 0);
    m_grid->setColumnStretch(column + 2, isUsed ? 1 : 0);
  }
}

void ColorEditor::resizeEvent(QResizeEvent* event) {
  constexpr int WIDE = 560;
  if ((event->size().width() >= WIDE) != m_isWide) arrange(!m_isWide);
  VntEditorWidget::resizeEvent(event);
}

void ColorEditor::showValue() {
  SbColor const color = current();
  // What the user has just set in these terms stays as he has set it, without the noise of converting it.
  if (!(fromHsv(m_hsv) == color)) m_hsv = toHsv(color, m_hsv);
  for (int part = RED; part < PARTS; ++part) {
    Row& row = m_rows[static_cast<std::size_t>(part)];
    double const value = part < HUE ? color[part] : m_hsv[static_cast<std::size_t>(part - HUE)];
    // What converting adds in the last digits is nothing that a user wants to read.
    double const digits = part == HUE ? 1e4 : 1e6;
    bool const isRounded = part == HUE || part == SATURATION;
    row.number->setValue(isRounded ? std::round(value * digits) / digits : value);
    row.slider->setNumber(value);
  }
  if (!m_text->isModified()) m_text->setText(toQColor(color).name());
  m_hint->setVisible(!isShown(color));
  showColors();
}

void ColorEditor::showColors() {
  SbColor const color = current();
  QPixmap swatch(m_swatch->iconSize());
  swatch.fill(toQColor(color));
  QPainter painter(&swatch);
  painter.setPen(QColor(128, 128, 128));
  painter.drawRect(swatch.rect().adjusted(0, 0, -1, -1));
  painter.end();
  m_swatch->setIcon(swatch);

  std::array<double, 3> hsv = m_hsv;
  for (double& part : hsv) part = std::isfinite(part) ? part : 0;
  for (int part = RED; part < PARTS; ++part) {
    QGradientStops stops;
    int const last = part == HUE ? 6 : 1;
    for (int i = 0; i <= last; ++i) {
      double const at = static_cast<double>(i) / last;
      SbColor shown = color;
      if (part < HUE) {
        shown[part] = static_cast<float>(at);
      } else {
        std::array<double, 3> other = hsv;
        other[static_cast<std::size_t>(part - HUE)] = at * limitOf(part);
        // A grey or black colour would give a groove without hues.
        if (part == HUE) other = {other[0], std::max(other[1], 0.3), std::max(other[2], 0.5)};
        shown = fromHsv(other);
      }
      stops << QGradientStop(at, toQColor(shown));
    }
    m_rows[static_cast<std::size_t>(part)].slider->setColors(stops);
  }
}

SbColor ColorEditor::with(Part part, double value) {
  SbColor color = current();
  if (part < HUE) {
    color[part] = static_cast<float>(value);
    return color;
  }
  for (double& other : m_hsv) other = std::isfinite(other) ? other : 0;
  m_hsv[static_cast<std::size_t>(part - HUE)] =
      part == HUE && (value < 0 || value > 360) ? std::fmod(std::fmod(value, 360) + 360, 360) : value;
  return fromHsv(m_hsv);
}

void ColorEditor::preview(SbColor const& color) {
  if (edit()->preview<SoSFColor>(color)) showValue();
}

void ColorEditor::enter(SbColor const& color) {
  // A dialog that is open goes on from there.
  edit()->finish();
  edit()->set<SoSFColor>(color);
}

void ColorEditor::enterText() {
  if (!m_text->isModified() || !edit()->getField()) return;
  QString const text = m_text->text().trimmed();
  QColor const named(text);
  SoSFColor numbers;
  SbString reason;
  if (named.isValid()) {
    numbers.setValue(toColor(named));
  } else if (!numbers.set(text.toUtf8().constData(), &reason)) {
    return edit()->report(tr("\"%1\" is no colour: #rrggbb, a name such as \"steelblue\" or three numbers "
                             "like \"0.2 0.5 1\" are.")
                              .arg(text));
  }
  m_text->setModified(false);
  enter(numbers.getValue());
  if (edit()->getField()) followTyping();
}

void ColorEditor::followTyping() {
  setTyping(m_text->isModified() ||
            std::any_of(m_rows.begin(), m_rows.end(), [](Row const& row) { return row.number->isTyping(); }));
}

void ColorEditor::dropTyping() {
  if (!isTyping()) return;
  m_text->setModified(false);
  for (Row& row : m_rows) row.number->revert();
  edit()->report({});
  setTyping(false);
}

void ColorEditor::escape() {
  dropTyping();
  VntEditorWidget::escape();
}

void ColorEditor::openDialog() {
  if (m_dialog) return m_dialog->activateWindow();
  if (!edit()->getField()) return;
  dropTyping();
  QColor const start = toQColor(current());
  m_dialog = new QColorDialog(start, this);
  m_dialog->setObjectName("colorDialog");
  m_dialog->setAttribute(Qt::WA_DeleteOnClose);
  m_dialog->setWindowTitle(edit()->getDescription());
  connect(m_dialog, &QColorDialog::currentColorChanged, this, [this, start](QColor const& color) {
    // A colour that a screen cannot show stays until another one is chosen.
    if (edit()->getField() && (color != start || edit()->isPreviewing())) preview(toColor(color));
  });
  connect(m_dialog, &QColorDialog::colorSelected, this, [this, start](QColor const& color) {
    // Escape in the editor may have taken the preview back while the dialog stayed.
    if (!edit()->isPreviewing() && color != start && edit()->getField()) preview(toColor(color));
    edit()->finish();
  });
  connect(m_dialog, &QDialog::rejected, this, [this] {
    edit()->cancel();
    refresh();
  });
  m_dialog->show();
}

} // namespace

void addColorEditors(VntEditorTable& table) {
  table.push_back({"SFColor", "Colour", makeEditor<ColorEditor>});
}
