#pragma once

#include <vector>

#include "kestrava/fields/SoFieldContainer.h"
#include "kestrava/fields/SoRunTimeFields.h"
#include "kestrava/fields/SoSFName.h"

/// A field that belongs to no node and is known by its name in the whole program. It is the one field that
/// this object has besides `type` and `name`, and is called by that name.
///
/// In files a global field stands as the source of a connection, with its type, its name, and its value where
/// that was set:
///
///     rotation = GlobalField { type "SFTime" name "realTime" } . realTime
///
/// What is read means the field of that name which is there already, with the value that it has (getMeant());
/// where there is none, what was read becomes that field. Connections keep a global field, and so does the
/// program until remove().
class SoGlobalField : public SoFieldContainer {
  SO_CONTAINER(SoGlobalField, SoFieldContainer)
  SoGlobalField();

  SoSFName type{this, "type"}; ///< of the field, "SFTime"; with `name` it makes the field, once
  SoSFName name{this, "name"};

  /// The field of that name. It is made when there is none; null, with a debug error, when there is one of
  /// another type, and when the type or the name will not do.
  static SoField* create(SbName const& name, SoType type);
  /// Null when there is none.
  static SoField* find(SbName const& name);
  static std::vector<SbName> getNames();
  /// Forgets the name; what follows the field goes on to do so. The clock can not be removed.
  static void remove(SbName const& name);

  /// The object of that name, and null.
  static SoGlobalField* findObject(SbName const& name);
  /// The field; null before type and name are set.
  SoField* getValueField() const { return m_fields.getLength() > 0 ? m_fields[0] : nullptr; }

  SoFieldContainer* getMeant() override;
  SoFieldData const* getFieldData() const override {
    SoFieldData const* const own = m_fields.getTable();
    return own ? own : &getClassFieldData();
  }

 protected:
  ~SoGlobalField() override;
  void fieldChanged(SoField* field) override;
  void listenersChanged(SoField* field) override;
  SoFieldContainer* makeEmpty() const override;

 private:
  /// False, with a debug error, when it can not be.
  bool declareValue();

  SoRunTimeFields m_fields;
};
