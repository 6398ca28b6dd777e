#include "extender_base/VntComponentsEdit.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QLabel>
#include <QRegularExpression>
#include <algorithm>
#include <cmath>
#include <limits>

#include "extender_base/VntExpression.h"

namespace {

constexpr int NARROWEST_CELL = 68; // pixels; narrower ones do not show the digits that matter

QRegularExpression const& separators() {
  static QRegularExpression const expression("[\\s,;\\[\\]{}]+");
  return expression;
}

/// The numbers of a list as programs write it, "1 2 3", "(1, 2, 3)" or with line breaks, each an expression;
/// none when anything else is in between.
std::vector<double> readNumbers(QString const& text) {
  QString list = text.trimmed();
  if (list.startsWith('(') && list.endsWith(')')) list = list.mid(1, list.size() - 2);
  std::vector<double> numbers;
  for (QString const& part : list.split(separators(), Qt::SkipEmptyParts)) {
    VntExpression::Result const number = VntExpression::evaluate(part);
    if (!number) return {};
    numbers.push_back(number.value);
  }
  return numbers;
}

} // namespace

VntComponentsEdit::VntComponentsEdit(VntNumberEdit::Kind kind, std::vector<VntComponent> const& components,
                                     int columns, QWidget* parent)
    : VntPartEdit(parent),
      m_isInteger(kind == VntNumberEdit::INTEGER),
      m_lowest(kind == VntNumberEdit::SINGLE ? std::numeric_limits<float>::lowest()
                                             : std::numeric_limits<double>::lowest()),
      m_highest(-m_lowest),
      m_columns(columns),
      m_values(components.size()),
      m_grid(new QGridLayout(this)) {
  m_grid->setContentsMargins(0, 0, 0, 0);
  m_grid->setHorizontalSpacing(6);
  m_grid->setVerticalSpacing(4);
  for (VntComponent const& component : components) addLine(kind, component);
  arrange(columns);
  setFocusProxy(m_lines.front());
}

void VntComponentsEdit::addLine(VntNumberEdit::Kind kind, VntComponent const& component) {
  auto* const cell = new QWidget(this);
  auto* const row = new QHBoxLayout(cell);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(4);
  auto* const line = new VntNumberEdit(kind, cell);
  line->setObjectName(component.name);
  if (!component.tip.isEmpty()) line->setToolTip(component.tip);
  line->setMinimumWidth(40);
  if (!component.label.isEmpty()) {
    auto* const label = new QLabel(component.label, cell);
    label->setBuddy(line);
    label->setToolTip(line->toolTip());
    line->setDragLabel(label);
    line->setAccessibleName(component.label);
    row->addWidget(label);
  }
  row->addWidget(line, 1);
  int const index = static_cast<int>(m_lines.size());
  m_lines.push_back(line);
  m_cells.push_back(cell);

  line->installEventFilter(this);
  connect(line, &QLineEdit::textEdited, this, [this, index] { takePasted(index); });
  connect(line, &VntNumberEdit::valueEntered, this, [this, index](double value) {
    change(index, value);
    Q_EMIT entered();
  });
  connect(line, &VntNumberEdit::valuePreviewed, this, [this, index](double value) {
    change(index, value);
    Q_EMIT previewed();
  });
  connect(line, &VntNumberEdit::dragFinished, this, &VntPartEdit::dragFinished);
  connect(line, &VntNumberEdit::dragCancelled, this, &VntPartEdit::dragCancelled);
  connect(line, &VntNumberEdit::typingChanged, this, &VntPartEdit::pendingChanged);
  connect(line, &VntNumberEdit::rejected, this, &VntPartEdit::rejected);
}

void VntComponentsEdit::change(int index, double value) {
  Q_EMIT beforeChange();
  m_changed = index;
  m_values[static_cast<std::size_t>(index)] = value;
  m_lines[static_cast<std::size_t>(index)]->setValue(value);
}

void VntComponentsEdit::setRange(double lowest, double highest) {
  m_lowest = lowest;
  m_highest = highest;
  for (VntNumberEdit* line : m_lines) line->setRange(lowest, highest);
}

void VntComponentsEdit::setStep(double step) {
  for (VntNumberEdit* line : m_lines) line->setStep(step);
}

void VntComponentsEdit::setFoldable(bool on) {
  m_foldable = on;
  updateGeometry();
}

void VntComponentsEdit::setValues(std::vector<double> const& values) {
  m_values = values;
  for (std::size_t i = 0; i < m_lines.size(); ++i) m_lines[i]->setValue(values[i]);
}

void VntComponentsEdit::revert() {
  for (VntNumberEdit* line : m_lines) line->revert();
  VntPartEdit::revert();
}

bool VntComponentsEdit::hasTypedText() const {
  return std::any_of(m_lines.begin(), m_lines.end(), [](VntNumberEdit* line) { return line->isTyping(); });
}

void VntComponentsEdit::arrange(int columns) {
  if (m_shownColumns == columns) return;
  m_shownColumns = columns;
  for (int i = 0; i < m_columns; ++i) m_grid->setColumnStretch(i, i < columns ? 1 : 0);
  for (int i = 0; i < static_cast<int>(m_cells.size()); ++i) {
    m_grid->removeWidget(m_cells[static_cast<std::size_t>(i)]);
    m_grid->addWidget(m_cells[static_cast<std::size_t>(i)], i / columns, i % columns);
  }
  updateGeometry();
}

QSize VntComponentsEdit::minimumSizeHint() const {
  QSize const all = VntPartEdit::minimumSizeHint();
  return m_foldable ? QSize(NARROWEST_CELL, all.height()) : all;
}

void VntComponentsEdit::resizeEvent(QResizeEvent* event) {
  VntPartEdit::resizeEvent(event);
  int columns = m_columns;
  int const spacing = m_grid->horizontalSpacing(), cell = NARROWEST_CELL + spacing;
  while (m_foldable && columns > 1 && (m_columns % columns != 0 || columns * cell - spacing > width()))
    --columns;
  arrange(columns);
}

bool VntComponentsEdit::eventFilter(QObject* watched, QEvent* event) {
  bool const isEnter =
      event->type() == QEvent::KeyPress && (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Return ||
                                            static_cast<QKeyEvent*>(event)->key() == Qt::Key_Enter);
  if (isEnter || event->type() == QEvent::FocusOut) {
    auto const line = std::find(m_lines.begin(), m_lines.end(), watched);
    if (line != m_lines.end() && (*line)->isTyping() &&
        takeNumbers(static_cast<int>(line - m_lines.begin()), (*line)->text()))
      return isEnter;
  }
  return VntPartEdit::eventFilter(watched, event);
}

void VntComponentsEdit::takePasted(int index) {
  QString const shown = m_lines[static_cast<std::size_t>(index)]->text().simplified();
  // Asking another program for the clipboard may take its time: not for each key of a single number.
  if (!shown.contains(separators())) return;
  for (auto mode : {QClipboard::Clipboard, QClipboard::Selection}) {
    if (mode == QClipboard::Selection && !QApplication::clipboard()->supportsSelection()) continue;
    QString const pasted = QApplication::clipboard()->text(mode).simplified();
    // The text may have been put into an older one that was not selected; that is replaced.
    if (!pasted.isEmpty() && shown.contains(pasted) && takeNumbers(index, pasted)) return;
  }
}

bool VntComponentsEdit::takeNumbers(int index, QString const& text) {
  std::vector<double> const numbers = readNumbers(text);
  bool const isAll = numbers.size() == m_lines.size();
  if (numbers.size() < 2 || (!isAll && static_cast<int>(numbers.size()) != m_columns)) return false;
  for (double number : numbers) {
    bool const isInRange = number >= m_lowest && number <= m_highest;
    bool const isWhole = number == std::floor(number);
    if (m_isInteger ? isInRange && isWhole : isInRange || !std::isfinite(number)) continue;
    Q_EMIT rejected(isInRange ? tr("Only whole numbers fit here; one of these is %1.").arg(number)
                              : tr("%1 is out of range: %2 to %3.").arg(number).arg(m_lowest).arg(m_highest));
    return true;
  }
  std::size_t const first = isAll ? 0 : static_cast<std::size_t>(index / m_columns * m_columns);
  Q_EMIT beforeChange();
  std::copy(numbers.begin(), numbers.end(), m_values.begin() + static_cast<std::ptrdiff_t>(first));
  m_changed = -1;
  for (std::size_t i = first; i < first + numbers.size(); ++i) {
    m_lines[i]->setValue(m_values[i]);
    m_lines[i]->revert();
  }
  Q_EMIT rejected({});
  Q_EMIT entered();
  return true;
}
