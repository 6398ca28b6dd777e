#include "extender_base/VntEquationEdit.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QRegularExpression>
#include <cmath>

#include "kestrava/base/SbPlane.h"

namespace {

QString termText(double factor, char name, bool isFirst) {
  QString const sign = factor < 0 ? QStringLiteral("-") : isFirst ? QString() : QStringLiteral("+");
  QString const number =
      std::abs(factor) == 1 ? QString() : QString::number(std::abs(factor), 'g', 7) + QLatin1Char(' ');
  return (isFirst ? sign : QLatin1Char(' ') + sign + QLatin1Char(' ')) + number + QLatin1Char(name);
}

// Adds the terms of one side of the equation.
bool addTerms(QString const& side, double sign, SbVec3d& normal, double& constant) {
  static QRegularExpression const term("([+-]?)((?:\\d+\\.?\\d*|\\.\\d+)(?:e[+-]?\\d+)?)?\\*?([xyz]?)");
  if (side.isEmpty()) return false;
  for (qsizetype at = 0; at < side.size();) {
    auto const match =
        term.match(side, at, QRegularExpression::NormalMatch, QRegularExpression::AnchorAtOffsetMatchOption);
    QString const number = match.captured(2), name = match.captured(3);
    bool const isSeparated = at == 0 || !match.captured(1).isEmpty();
    if (!match.hasMatch() || (number.isEmpty() && name.isEmpty()) || !isSeparated) return false;
    double value = number.isEmpty() ? sign : sign * number.toDouble();
    if (match.captured(1) == QLatin1String("-")) value = -value;
    if (name.isEmpty())
      constant -= value;
    else
      normal[name[0].toLatin1() - 'x'] += value;
    at = match.capturedEnd();
  }
  return true;
}

} // namespace

VntEquationEdit::VntEquationEdit(QWidget* parent) : VntPartEdit(parent), m_line(new QLineEdit(this)) {
  m_line->setObjectName("equation");
  m_line->setToolTip(
      tr("The points of the plane, for example 2x + 3y - z = 5, or the four numbers 2 3 -1 5"));
  auto* const layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(m_line);
  setFocusProxy(m_line);
  connect(m_line, &QLineEdit::textEdited, this, &VntPartEdit::pendingChanged);
  connect(m_line, &QLineEdit::editingFinished, this, &VntEquationEdit::enter);
}

bool VntEquationEdit::hasTypedText() const { return m_line->isModified(); }

void VntEquationEdit::setPlane(SbPlane const& plane) {
  m_text.clear();
  SbVec3f const& normal = plane.getNormal();
  for (int i = 0; i < 3; ++i) {
    if (normal[i] != 0) m_text += termText(normal[i], "xyz"[i], m_text.isEmpty());
  }
  double const distance = plane.getDistanceFromOrigin();
  m_text += QStringLiteral(" = ") + QString::number(distance == 0 ? 0 : distance, 'g', 7);
  if (hasTypedText()) return;
  m_line->setText(m_text);
  m_line->setCursorPosition(0);
}

void VntEquationEdit::revert() {
  m_line->setText(m_text);
  VntPartEdit::revert();
}

bool VntEquationEdit::parse(QString const& text, SbVec3d& normal, double& constant) {
  static QRegularExpression const blanks("[\\s,;]+");
  QStringList const numbers = text.split(blanks, Qt::SkipEmptyParts);
  if (numbers.size() == 4) {
    bool areNumbers[4];
    for (int i = 0; i < 3; ++i) normal[i] = numbers[i].toDouble(&areNumbers[i]);
    constant = numbers[3].toDouble(&areNumbers[3]);
    if (areNumbers[0] && areNumbers[1] && areNumbers[2] && areNumbers[3]) return true;
  }
  normal = SbVec3d();
  constant = 0;
  QStringList const sides = text.toLower().remove(blanks).split(QLatin1Char('='));
  return sides.size() == 2 && addTerms(sides[0], 1, normal, constant) &&
         addTerms(sides[1], -1, normal, constant);
}

void VntEquationEdit::enter() {
  if (!hasTypedText()) return;
  SbVec3d normal;
  double constant = 0;
  if (!parse(m_line->text(), normal, constant)) {
    Q_EMIT rejected(
        tr("\"%1\" is no equation of a plane; one is 2x + 3y - z = 5, for example.").arg(m_line->text()));
  } else if (!std::isfinite(normal.length()) || !std::isfinite(constant)) {
    Q_EMIT rejected(tr("The numbers of a plane must be finite."));
  } else if (normal.length() == 0) {
    Q_EMIT rejected(tr("Without x, y and z this is no plane."));
  } else {
    m_normal = normal;
    m_constant = constant;
    m_line->setModified(false);
    Q_EMIT rejected({});
    Q_EMIT entered();
    Q_EMIT pendingChanged();
  }
}
