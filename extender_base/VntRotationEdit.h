#pragma once

#include "extender_base/VntEulerAngles.h"
#include "extender_base/VntPartEdit.h"

class QBoxLayout;
class QComboBox;
class QPushButton;
class VntComponentsEdit;
class VntTrackball;

/// A rotation as axis and angle, as Euler angles and as a ball, all in step. What the user has typed in one
/// form stays as he typed it for as long as it says the rotation that is there: the axis of a turn by
/// nothing, an angle of three turns, Euler angles where others would mean the same.
class VntRotationEdit : public VntPartEdit {
  Q_OBJECT
 public:
  enum Forms { ALL, AXIS_AND_ANGLE };
  VntRotationEdit(Forms forms, QWidget* parent);

  /// Sends nothing.
  void setRotation(SbRotation const& rotation);
  SbRotation const& getRotation() const { return m_rotation; }
  /// Whether the last signal was about the ball, for the text of the step.
  bool wasTurned() const { return m_turned; }
  bool isRefused() const override;
  void revert() override;
  QSize minimumSizeHint() const override;

 protected:
  bool hasTypedText() const override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  void buildAngle(QWidget* row);
  void buildEuler(QWidget* page);
  QWidget* buildForm(Forms forms);
  /// Passes on what the user does in a part, with `take` to make it this rotation; false: refused.
  template <class Take> void pass(VntPartEdit* part, Take take);
  /// The axis is that of its row; radians.
  bool takeAxisAndAngle(double angle);
  void chooseUnit(int degrees);
  void chooseOrder(int order);
  void makeIdentity();
  void showParts();

  SbRotation m_rotation;
  SbVec3f m_axis{0, 0, 1}; // as shown, of any length
  double m_angle = 0;      // radians
  VntEulerAngles m_euler;
  bool m_turned = false;

  QBoxLayout* m_layout;
  QWidget* m_form = nullptr;
  VntTrackball* m_ball = nullptr; // with the Euler angles null where only axis and angle are shown
  VntComponentsEdit* m_axisEdit = nullptr;
  VntComponentsEdit* m_angleEdit = nullptr;
  QComboBox* m_unit = nullptr;
  VntComponentsEdit* m_eulerEdit = nullptr;
  QComboBox* m_order = nullptr;
  QPushButton* m_identity = nullptr;
};
