#pragma once

#include <QString>

#include "vnt/VntExtension.h"

class QWidget;
class VntFieldEdit;

/// An extension that makes editors for the fields of one type, the one whose name it has: "SFColor".
///
/// A configuration names it as a controlled extension of "Field Editor". That shows an editor for the field
/// that is selected: one of the field's own type, or else of the nearest type that it is derived from
/// ("SField" and "MField" at the end).
class VntFieldEditor : public VntExtension {
 public:
  /// A new widget that shows and changes the field of `edit`, which outlives it. It is made for that field
  /// alone and destroyed when another one is selected or the field goes. Null: another editor is asked, one
  /// that was there for this type before, or else one of a more general type.
  virtual QWidget* createEditor(VntFieldEdit* edit, QWidget* parent) = 0;
};
