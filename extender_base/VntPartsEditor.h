#pragma once

#include <functional>
#include <vector>

#include "extender_base/VntEditorWidget.h"
#include "vnt/VntFieldEdit.h"

class VntPartEdit;

/// Base of the editors whose value is entered in parts. What is typed into one stays while the program
/// changes the field, and the others follow; entering it changes nothing else. After a value was refused all
/// stay as they are, until it is mended or Escape drops it.
class VntPartsEditor : public VntEditorWidget {
 protected:
  VntPartsEditor(VntFieldEdit* edit, QWidget* parent);

  /// Tells the editor of what the user does in a part. `take` sets the field by it, or previews it while he
  /// drags; false, when the value was refused and the user told why.
  void watch(VntPartEdit* part, std::function<bool(bool isDrag)> take);
  /// What `take` ends with. `what` is the text of the step; empty for the usual one.
  template <class Field>
  bool take(typename Field::ValueType const& value, bool isDrag, QString const& what = {}) {
    m_what = what;
    return isDrag ? edit()->preview<Field>(value) : edit()->set<Field>(value, what);
  }
  /// The free space goes to the widgets, not below them.
  void growContent();
  /// Tells the user why something can not be done.
  bool refuse(QString const& reason) {
    edit()->report(reason);
    return false;
  }
  void escape() override;

 private:
  void updateTyping();
  void updateOthers();

  std::vector<VntPartEdit*> m_parts;
  QString m_what; // of the drag that goes on
};
