// Editors for fields of one number.

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <utility>

#include "extender_base/VntEditorTable.h"
#include "extender_base/VntEditorWidget.h"
#include "extender_base/VntNumberEdit.h"
#include "extender_base/VntSlider.h"
#include "kestrava/fields/SoSFDouble.h"
#include "kestrava/fields/SoSFFloat.h"
#include "kestrava/fields/SoSFInt32.h"
#include "kestrava/fields/SoSFShort.h"
#include "kestrava/fields/SoSFTime.h"
#include "kestrava/fields/SoSFUInt32.h"
#include "kestrava/fields/SoSFUShort.h"
#include "vnt/QtText.h"
#include "vnt/VntFieldEdit.h"

namespace {

/// What numbers of a kind are like, as one knows it by the end of the field's name. It only shapes the
/// slider: any number can be typed.
struct Habit {
  char const* ending;
  double lowest, highest;
  bool isAngle;
};
Habit const HABITS[] = {
    {"intensity", 0, 1, false}, {"transparency", 0, 1, false},
    {"opacity", 0, 1, false},   {"shininess", 0, 1, false},
    {"quality", 0, 1, false},   {"rate", 0, 1, false},
    {"fraction", 0, 1, false},  {"angle", 0, std::numbers::pi, true},
};

Habit const* habitOf(SoField const& field) {
  QString const name = toQString(field.getName().getString()).toLower();
  for (Habit const& habit : HABITS) {
    if (name.endsWith(QLatin1String(habit.ending))) return &habit;
  }
  return nullptr;
}

/// The least of 1, 2, 5, 10, 20 ... that is above a number; what a slider without a range of its own goes to.
double roundLimit(double above) {
  if (!(above > 0)) return 1;
  double const decade = std::pow(10, std::floor(std::log10(above)));
  for (double const part : {1.0, 2.0, 5.0}) {
    if (part * decade > above) return part * decade;
  }
  return 10 * decade;
}

/// A line for the number and a slider that goes from 0 to some round number, further each time it is let go
/// at its end, or where the field's name tells it over the usual range.
class NumberEditor : public VntEditorWidget {
 public:
  NumberEditor(VntFieldEdit* edit, VntNumberEdit::Kind kind, QWidget* parent);

 protected:
  virtual double number() const = 0;
  virtual bool set(double number) = 0;
  virtual bool preview(double number) = 0;
  void setRange(double lowest, double highest);
  void setStep(double step) { m_line->setStep(step); }

 private:
  void connectParts();
  void showValue() override;
  void escape() override;
  void fitSlider(double number);
  void showReadout(double number);
  bool isAngle() const { return m_habit && m_habit->isAngle; }
  QString limitText(double limit) const {
    return isAngle() ? tr("%1°").arg(limit * 180 / std::numbers::pi)
                     : QString::number(limit, 'g', isInteger() ? 10 : 3);
  }
  bool isInteger() const { return m_kind == VntNumberEdit::INTEGER; }

  VntNumberEdit::Kind m_kind;
  double m_lowest = std::numeric_limits<float>::lowest(), m_highest = std::numeric_limits<float>::max();
  Habit const* m_habit;
  VntNumberEdit* m_line;
  QLabel* m_readout; // the same number as people say it
  VntSlider* m_slider;
  QLabel* m_from;
  QLabel* m_to;
};

NumberEditor::NumberEditor(VntFieldEdit* edit, VntNumberEdit::Kind kind, QWidget* parent)
    : VntEditorWidget(edit, parent),
      m_kind(kind),
      m_habit(habitOf(*edit->getField())),
      m_line(new VntNumberEdit(kind, this)),
      m_readout(new QLabel(this)),
      m_slider(new VntSlider(this)),
      m_from(new QLabel(this)),
      m_to(new QLabel(this)) {
  m_line->setObjectName("number");
  m_slider->setObjectName("slider");
  m_readout->setObjectName("readout");
  m_slider->setToolTip(tr("Drag to change the number; Escape gives back the one from before"));
  m_readout->hide();
  auto* const row = new QHBoxLayout;
  row->addWidget(m_line, 1);
  row->addWidget(m_readout);
  auto* const sliderRow = new QHBoxLayout;
  sliderRow->addWidget(m_from);
  sliderRow->addWidget(m_slider, 1);
  sliderRow->addWidget(m_to);
  content()->addLayout(row);
  content()->addLayout(sliderRow);
  content()->addStretch();
  setFocusProxy(m_line);
  m_slider->setLimits(0, 0);
  if (m_habit) m_slider->setLimits(m_habit->lowest, m_habit->highest, isInteger());
  if (isAngle()) m_line->setStep(std::numbers::pi / 180);
  connectParts();
}

void NumberEditor::connectParts() {
  connect(m_line, &VntNumberEdit::valueEntered, this, [this](double number) { set(number); });
  connect(m_line, &VntNumberEdit::typingChanged, this, &NumberEditor::setTyping);
  connect(m_line, &VntNumberEdit::rejected, edit(), &VntFieldEdit::report);
  connect(m_line, &VntNumberEdit::valuePreviewed, this, [this](double number) {
    if (preview(number)) showReadout(number);
  });
  connect(m_line, &VntNumberEdit::dragFinished, this, [this] { edit()->finish(); });
  connect(m_line, &VntNumberEdit::dragCancelled, this, [this] { edit()->cancel(); });
  connect(m_slider, &VntSlider::numberPreviewed, this, [this](double number) {
    if (!preview(number)) return;
    m_line->setValue(number);
    showReadout(number);
  });
  connect(m_slider, &VntSlider::dragFinished, this, [this] { edit()->finish(); });
  connect(m_slider, &VntSlider::dragCancelled, this, [this] { edit()->cancel(); });
}

void NumberEditor::setRange(double lowest, double highest) {
  m_lowest = lowest;
  m_highest = highest;
  m_line->setRange(lowest, highest);
}

void NumberEditor::fitSlider(double number) {
  if (!m_habit && !m_slider->isMoving()) {
    double const size = std::isfinite(number) ? std::abs(number) : 0;
    double limit = std::max(std::abs(m_slider->getLowest()), m_slider->getHighest());
    if (limit == 0 || size >= limit || (size > 0 && size < limit / 20)) {
      limit = roundLimit(size);
      if (isInteger()) limit = std::max(limit, 10.0);
    }
    double const lowest = number < 0 || (number == 0 && m_slider->getLowest() < 0) ? -limit : 0;
    m_slider->setLimits(std::max(lowest, m_lowest), std::min(limit, m_highest), isInteger());
  }
  m_from->setText(limitText(m_slider->getLowest()));
  m_to->setText(limitText(m_slider->getHighest()));
  m_slider->setNumber(number);
}

void NumberEditor::showReadout(double number) {
  QString text;
  if (isAngle() && std::isfinite(number))
    text = tr("= %1°").arg(number * 180 / std::numbers::pi, 0, 'g', 5);
  else if (isInteger() && m_lowest == 0)
    text = QStringLiteral("= 0x") + QString::number(static_cast<qulonglong>(number), 16);
  m_readout->setText(text);
  m_readout->setVisible(!text.isEmpty());
}

void NumberEditor::showValue() {
  double const value = number();
  m_line->setValue(value);
  fitSlider(value);
  showReadout(value);
}

void NumberEditor::escape() {
  m_line->revert();
  VntEditorWidget::escape();
}

template <class Field, VntNumberEdit::Kind KIND> class NumberEditorOf : public NumberEditor {
  using Number = typename Field::ValueType;

 public:
  NumberEditorOf(VntFieldEdit* edit, QWidget* parent) : NumberEditor(edit, KIND, parent) {
    if constexpr (KIND == VntNumberEdit::INTEGER)
      setRange(std::numeric_limits<Number>::min(), std::numeric_limits<Number>::max());
    // The time of day is a large number; a hundredth of it would be years.
    if constexpr (std::is_same_v<Number, SbTime>) setStep(0.1);
  }

 private:
  using Numbers = SoNumbers<Number>;
  double number() const override {
    double number;
    Numbers::get(edit()->template getFieldAs<Field>()->getValue(), &number);
    return number;
  }
  bool set(double number) override { return edit()->template set<Field>(Numbers::make(&number)); }
  bool preview(double number) override { return edit()->template preview<Field>(Numbers::make(&number)); }
};

} // namespace

void addNumberEditors(VntEditorTable& table) {
  using Edit = VntNumberEdit;
  table.push_back({"SFFloat", "Number", makeEditor<NumberEditorOf<SoSFFloat, Edit::SINGLE>>});
  table.push_back({"SFInt32", "Whole number", makeEditor<NumberEditorOf<SoSFInt32, Edit::INTEGER>>});
  table.push_back(
      {"SFShort", "Whole number of 16 bits", makeEditor<NumberEditorOf<SoSFShort, Edit::INTEGER>>});
  table.push_back({"SFUShort", "Whole number of 16 bits, not negative",
                   makeEditor<NumberEditorOf<SoSFUShort, Edit::INTEGER>>});
  table.push_back(
      {"SFUInt32", "Whole number, not negative", makeEditor<NumberEditorOf<SoSFUInt32, Edit::INTEGER>>});
}

void addOtherNumberEditors(VntEditorTable& table) {
  using Edit = VntNumberEdit;
  table.push_back({"SFDouble", "Number", makeEditor<NumberEditorOf<SoSFDouble, Edit::DOUBLE>>});
  table.push_back({"SFTime", "Time in seconds", makeEditor<NumberEditorOf<SoSFTime, Edit::DOUBLE>>});
}
