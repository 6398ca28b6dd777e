#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>
#include <memory>

#include "kestrava/base/SoBase.h"
#include "kestrava/fields/SoFieldContainer.h"
#include "kestrava/sensors/SoFieldSensor.h"

class VntCommand;

/// The way in which an editor changes a field: every edit is one undoable command of the services, and a drag
/// is one edit however many values it passes through.
///
/// It holds no reference: when the field goes, with its node, gone() is sent and getField() is null from then
/// on. Neither do the commands: a step on a field that has gone does nothing. GUI thread only.
/// The virtual operations let the same editors change a part of another field, whose value this one stands for.
class VntFieldEdit : public QObject {
  Q_OBJECT
 public:
  explicit VntFieldEdit(SoField* field, QObject* parent = nullptr);
  /// A drag that was not finished is given up: the value from before comes back.
  ~VntFieldEdit() override;

  /// Null once the field is gone.
  SoField* getField() const { return m_field; }
  /// For an editor that was made for this type of field. Null once the field is gone.
  template <class Field> Field* getFieldAs() const { return static_cast<Field*>(m_field); }
  /// What an undo step is about: `translation of Transform "wheel"`.
  virtual QString getDescription() const;
  /// False while the field follows another one, and for fields that only their node sets.
  bool isEditable() const;

  // Whole values. `what` tells the user what the step does ("Turn ..."); empty: "Set " and the description.
  // False, with failed() sent, when the value was not taken; true, without a step, when the field has it
  // already.
  bool setValue(SoField const& value, QString const& what = {});
  /// From the text form that files use. The reason of a failure is sent with failed().
  virtual bool setText(QString const& text, QString const& what = {});
  /// For fields of one value of a plain type.
  template <class Field> bool set(typename Field::ValueType const& value, QString const& what = {}) {
    Field wanted;
    wanted.setValue(value);
    return setValue(wanted, what);
  }

  // A drag: any number of previews, then one finish() or cancel(). Each preview is in the scene at once.
  virtual bool preview(SoField const& value);
  template <class Field> bool preview(typename Field::ValueType const& value) {
    Field wanted;
    wanted.setValue(value);
    return preview(wanted);
  }
  virtual bool isPreviewing() const { return m_before != nullptr; }
  /// Makes one step of what the previews have changed; none when the value is that from before.
  virtual void finish(QString const& what = {});
  /// Gives back the value from before.
  virtual void cancel();

  /// Hands over a command of the editor's own, for changes of a part of a large field. The command holds what
  /// it needs to run when this object is gone.
  void execute(std::unique_ptr<VntCommand> command);

  // The state of the field. Each is one step; nothing happens when it is so already.
  void setIgnored(bool on);
  /// Ends the connection; undoing makes it again.
  void disconnectField();
  /// Gives back the value that a new object of the container's type has.
  void resetToDefault();

  /// A field of the same type that stands alone and has the same value.
  static std::unique_ptr<SoField> clone(SoField const& field);
  /// Tells the panel that shows the editor what is wrong (failed()), or with an empty text that all is well.
  void report(QString const& problem) { Q_EMIT failed(problem); }

 Q_SIGNALS:
  /// The field's value or state has changed, whoever changed it. Several changes by the program may be told
  /// as one, from the event loop; an edit made here is told before the call returns.
  void changed();
  /// The field is being destroyed.
  void gone();
  /// The value could not be set, and why; empty: the last one could.
  void failed(QString const& reason);

 private:
  static void fieldChangedCB(void* edit, SoSensor*);
  static void fieldDiesCB(void* edit, SoSensor*);
  void tellChanged();
  /// Notes the value from before. False, with failed() sent, when the field can not be edited.
  bool begin();
  void push(std::unique_ptr<VntCommand> command);

  SoField* m_field;
  SoFieldSensor m_sensor;
  std::unique_ptr<SoField> m_before; // while a drag goes on
  bool m_wasDefault = false;
  bool m_tellingQueued = false;
  QElapsedTimer m_told; // since a change by the program was told
};
