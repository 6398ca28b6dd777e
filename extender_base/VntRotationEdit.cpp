#include "extender_base/VntRotationEdit.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <algorithm>
#include <cmath>
#include <numbers>

#include "extender_base/VntComponentsEdit.h"
#include "extender_base/VntFoldingForm.h"
#include "extender_base/VntTrackball.h"
#include "kestrava/base/SbVec3f.h"

namespace {

constexpr int NARROWEST_FORM = 285; // pixels, with the labels beside the rows
constexpr int SMALLEST_BALL = 86, USUAL_BALL = 116, BALL_ABOVE = 140, LARGEST_BALL = 360;

constexpr double DEGREE = std::numbers::pi / 180;

// What the user has chosen last, for the editors to come.
bool s_degrees = true;
VntEulerAngles::Order s_order = VntEulerAngles::XYZ;

/// An angle in the unit that is chosen, without the digits that are noise of single precision.
double toShown(double radians) {
  double const angle = s_degrees ? radians / DEGREE : radians;
  for (double parts : {1.0, 10.0, 100.0, 1e3, 1e4}) {
    double const rounded = std::round(angle * parts) / parts;
    if (std::abs(rounded - angle) <= 3e-7 * std::abs(angle)) return rounded == 0 ? 0 : rounded;
  }
  return angle;
}

double fromShown(double angle) { return s_degrees ? angle * DEGREE : angle; }

std::vector<VntComponent> xyz(QString const& prefix, QString const& tip) {
  return {{prefix + "X", "x", tip.arg("x")},
          {prefix + "Y", "y", tip.arg("y")},
          {prefix + "Z", "z", tip.arg("z")}};
}

} // namespace

VntRotationEdit::VntRotationEdit(Forms forms, QWidget* parent)
    : VntPartEdit(parent), m_layout(new QBoxLayout(QBoxLayout::LeftToRight, this)) {
  m_layout->setContentsMargins(0, 0, 0, 0);
  if (forms == ALL) {
    m_ball = new VntTrackball(this);
    m_layout->addWidget(m_ball, 0);
    pass(m_ball, [this] {
      m_rotation = m_ball->getRotation();
      return true;
    });
  }
  m_form = buildForm(forms);
  m_layout->addWidget(m_form, 1, Qt::AlignTop);
  setFocusProxy(m_axisEdit);
  showParts();
}

QWidget* VntRotationEdit::buildForm(Forms forms) {
  auto* const page = new QWidget(this);
  auto* const form = new VntFoldingForm(NARROWEST_FORM - 20, page);
  m_axisEdit = new VntComponentsEdit(VntNumberEdit::SINGLE,
                                     xyz("axis", tr("%1 of the axis; its length does not count")), 3, page);
  m_axisEdit->setStep(0.1);
  pass(m_axisEdit, [this] { return takeAxisAndAngle(m_angle); });
  form->addRow(tr("Axis"), m_axisEdit);
  auto* const angle = new QWidget(page);
  buildAngle(angle);
  form->addRow(tr("Angle"), angle);
  if (forms == ALL) {
    buildEuler(page);
    form->addRow(m_order, m_eulerEdit);
  }
  return page;
}

void VntRotationEdit::buildAngle(QWidget* row) {
  m_angleEdit = new VntComponentsEdit(
      VntNumberEdit::SINGLE,
      {{"angle", {}, tr("Right-handed, about the axis; may be negative or several turns")}}, 1, row);
  m_unit = new QComboBox(row);
  m_unit->setObjectName("unit");
  m_unit->addItems({tr("rad"), tr("deg")});
  m_unit->setToolTip(tr("Radians or degrees, for all angles here; files have radians"));
  m_identity = new QPushButton(tr("Identity"), row);
  m_identity->setObjectName("identity");
  m_identity->setToolTip(tr("No turn at all"));
  auto* const layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(m_angleEdit, 1);
  layout->addWidget(m_unit);
  layout->addWidget(m_identity);
  pass(m_angleEdit, [this] { return takeAxisAndAngle(fromShown(m_angleEdit->getValues()[0])); });
  connect(m_unit, &QComboBox::activated, this, &VntRotationEdit::chooseUnit);
  connect(m_identity, &QPushButton::clicked, this, &VntRotationEdit::makeIdentity);
}

void VntRotationEdit::buildEuler(QWidget* page) {
  m_order = new QComboBox(page);
  m_order->setObjectName("eulerOrder");
  for (char const* order : VntEulerAngles::ORDERS) m_order->addItem(QLatin1String(order));
  m_order->setToolTip(
      tr("Euler angles: the order of the turns about the three axes, which stay where they are.\n"
         "Read backwards it is that about axes which turn along."));
  m_eulerEdit =
      new VntComponentsEdit(VntNumberEdit::SINGLE, xyz("euler", tr("The turn about the %1 axis")), 3, page);
  pass(m_eulerEdit, [this] {
    int const changed = m_eulerEdit->getChangedIndex();
    for (std::size_t i = 0; i < 3; ++i) {
      double const angle = m_eulerEdit->getValues()[i];
      if (!std::isfinite(angle)) {
        Q_EMIT rejected(tr("An angle must be finite."));
        return false;
      }
      // The others have more digits than are shown.
      if (changed < 0 || changed == static_cast<int>(i)) m_euler.radians[i] = fromShown(angle);
    }
    m_rotation = m_euler.toRotation(s_order);
    return true;
  });
  connect(m_order, &QComboBox::activated, this, &VntRotationEdit::chooseOrder);
}

template <class Take> void VntRotationEdit::pass(VntPartEdit* part, Take take) {
  auto const taking = [this, part, take](void (VntPartEdit::*told)()) {
    bool const isTaken = take();
    part->setRefused(!isTaken);
    if (!isTaken) return;
    for (VntComponentsEdit* other : {m_axisEdit, m_angleEdit, m_eulerEdit}) {
      if (other) other->setRefused(false); // it shows the new value instead
    }
    m_turned = part == m_ball;
    showParts();
    Q_EMIT(this->*told)();
  };
  connect(part, &VntPartEdit::beforeChange, this, &VntPartEdit::beforeChange);
  connect(part, &VntPartEdit::entered, this, [taking] { taking(&VntPartEdit::entered); });
  connect(part, &VntPartEdit::previewed, this, [taking] { taking(&VntPartEdit::previewed); });
  connect(part, &VntPartEdit::dragFinished, this, &VntPartEdit::dragFinished);
  connect(part, &VntPartEdit::dragCancelled, this, &VntPartEdit::dragCancelled);
  connect(part, &VntPartEdit::pendingChanged, this, &VntPartEdit::pendingChanged);
  connect(part, &VntPartEdit::rejected, this, &VntPartEdit::rejected);
}

bool VntRotationEdit::takeAxisAndAngle(double angle) {
  SbVec3f const axis = m_axisEdit->getVec<SbVec3f>();
  float const length = axis.length();
  QString problem;
  if (!std::isfinite(length) || !std::isfinite(angle))
    problem = tr("Axis and angle must be finite.");
  else if (length == 0)
    problem = tr("The axis has length 0: it has no direction to turn about.");
  if (!problem.isEmpty()) {
    Q_EMIT rejected(problem);
    return false;
  }
  m_axis = axis;
  m_angle = angle;
  m_rotation.setValue(axis, static_cast<float>(m_angle));
  return true;
}

void VntRotationEdit::chooseUnit(int degrees) {
  s_degrees = degrees != 0;
  showParts();
}

void VntRotationEdit::chooseOrder(int order) {
  s_order = static_cast<VntEulerAngles::Order>(order);
  m_euler = VntEulerAngles::fromRotation(m_rotation, s_order, {});
  showParts();
}

void VntRotationEdit::makeIdentity() {
  revert();
  m_turned = false;
  m_rotation = SbRotation();
  m_axis = m_rotation.getAxis();
  m_angle = 0;
  m_euler = {};
  showParts();
  Q_EMIT entered();
}

void VntRotationEdit::setRotation(SbRotation const& rotation) {
  m_rotation = rotation;
  showParts();
}

void VntRotationEdit::showParts() {
  if (SbRotation(m_axis, static_cast<float>(m_angle)) != m_rotation) {
    m_axis = m_rotation.getAxis();
    m_angle = m_rotation.getAngle();
  }
  m_axisEdit->setVec(m_axis);
  m_angleEdit->setValues({toShown(m_angle)});
  m_angleEdit->setStep(s_degrees ? 5 : 0.1);
  m_unit->setCurrentIndex(s_degrees);
  findChild<VntNumberEdit*>("angle")->setDegrees(s_degrees);
  if (!m_ball) return;
  m_ball->setRotation(m_rotation);
  if (!m_euler.toRotation(s_order).equals(m_rotation, 1e-6f))
    m_euler = VntEulerAngles::fromRotation(m_rotation, s_order, m_euler);
  std::vector<double> angles;
  for (double radians : m_euler.radians) angles.push_back(toShown(radians));
  m_eulerEdit->setValues(angles);
  m_eulerEdit->setStep(s_degrees ? 5 : 0.1);
  for (VntNumberEdit* line : m_eulerEdit->findChildren<VntNumberEdit*>()) line->setDegrees(s_degrees);
  m_order->setCurrentIndex(s_order);
}

void VntRotationEdit::revert() {
  for (VntComponentsEdit* part : {m_axisEdit, m_angleEdit, m_eulerEdit}) {
    if (part) part->revert();
  }
  VntPartEdit::revert();
}

bool VntRotationEdit::isRefused() const {
  return VntPartEdit::isRefused() || m_axisEdit->isRefused() || m_angleEdit->isRefused() ||
         (m_eulerEdit && m_eulerEdit->isRefused());
}

bool VntRotationEdit::hasTypedText() const {
  return m_axisEdit->isPending() || m_angleEdit->isPending() || (m_eulerEdit && m_eulerEdit->isPending());
}

QSize VntRotationEdit::minimumSizeHint() const {
  // Whatever is beside the ball now can be below it.
  QSize const form = m_form->minimumSizeHint();
  return QSize(std::max(form.width(), m_ball ? SMALLEST_BALL : 0), VntPartEdit::minimumSizeHint().height());
}

void VntRotationEdit::resizeEvent(QResizeEvent* event) {
  VntPartEdit::resizeEvent(event);
  if (!m_ball) return;
  int const beside = width() - NARROWEST_FORM - m_layout->spacing();
  // Less width must never make all lower: a scroll bar that comes and takes width would at once not be
  // needed.
  bool const isAbove = beside < SMALLEST_BALL;
  m_layout->setDirection(isAbove ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
  m_layout->setStretch(0, isAbove ? 1 : 0);
  m_layout->setStretch(1, isAbove ? 0 : 1);
  // The ball is as large as the free space lets it; the numbers have more use for width.
  int const wanted = std::min({height(), isAbove ? width() : width() / 3, LARGEST_BALL});
  int const side = std::min(beside, std::max(wanted, USUAL_BALL));
  m_ball->setMinimumSize(isAbove ? QSize(SMALLEST_BALL, BALL_ABOVE) : QSize(side, USUAL_BALL));
  m_ball->setMaximumSize(isAbove ? QSize(QWIDGETSIZE_MAX, std::max(wanted, BALL_ABOVE))
                                 : QSize(side, QWIDGETSIZE_MAX));
}
