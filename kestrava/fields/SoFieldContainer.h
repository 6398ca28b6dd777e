#pragma once

#include <functional>
#include <initializer_list>
#include <vector>

#include "kestrava/base/SbString.h"
#include "kestrava/base/SoAuditorList.h"
#include "kestrava/base/SoBase.h"
#include "kestrava/base/SoNotification.h"
#include "kestrava/fields/SoField.h"
#include "kestrava/fields/SoFieldData.h"

/// Strips the "So" of the toolkit's own class names; other prefixes stay.
constexpr char const* soTypeName(char const* className) {
  return className[0] == 'S' && className[1] == 'o' ? className + 2 : className;
}

/// Also a library that hides its symbols shares the tables in these functions with everybody else.
#define SO_ONE_IN_PROCESS_ __attribute__((visibility("default")))

/// Declares what a class of field containers needs; stands first in the class. The type is registered when
/// a program is loaded that holds a source including the header.
#define SO_CONTAINER_COMMON_(Class, Parent, factory)                                              \
 public:                                                                                          \
  SO_ONE_IN_PROCESS_ static SoType getClassTypeId() {                                             \
    static SoType const type = SoType::createType(Parent::getClassTypeId(), soTypeName(#Class), factory); \
    return type;                                                                                  \
  }                                                                                               \
  SoType getTypeId() const override { return getClassTypeId(); }                                  \
  SO_ONE_IN_PROCESS_ SoFieldData& getClassFieldData() const override {                            \
    static SoFieldData data(Parent::getClassFieldData());                                         \
    return data;                                                                                  \
  }                                                                                               \
                                                                                                  \
 private:                                                                                         \
  inline static bool const s_registered = !getClassTypeId().isBad();                              \
                                                                                                  \
 public:
#define SO_CONTAINER(Class, Parent) \
  SO_CONTAINER_COMMON_(Class, Parent, ([]() -> void* { return static_cast<SoFieldContainer*>(new Class); }))
#define SO_ABSTRACT_CONTAINER(Class, Parent) SO_CONTAINER_COMMON_(Class, Parent, nullptr)

class SoCopier;
class SoFieldWalk;

/// An object with fields. Subclasses declare each field where it lives, with its name and default:
///
///     SoSFFloat radius{this, "radius", 1.0f};
///
/// and reading, writing, copying, field lists and connections work from that declaration.
class SoFieldContainer : public SoBase {
 public:
  static SoType getClassTypeId();

  /// The fields of this object. Objects whose fields are not fixed by their class answer a table of their own.
  virtual SoFieldData const* getFieldData() const { return &getClassFieldData(); }
  /// Null when there is no field of that name.
  SoField* getField(SbName const& name) const;
  SoField* getField(int index) const { return getFieldData()->getField(this, index); }
  int getNumFields() const { return getFieldData()->getNumFields(); }
  /// Sets fields from text, e.g. "radius 2 parts ALL"; false (with a read error posted) at the first fault.
  bool set(char const* fieldsAndValues);
  /// True when both have the same type and their fields the same values.
  bool fieldsAreEqual(SoFieldContainer const& other) const;
  /// Copies values and flags of all fields from an object of the same type; connections too when asked.
  void copyFieldValues(SoFieldContainer const& from, bool copyConnections = false);

  /// The object that a text which was read into this one stands for; this one, mostly. Asked for once everything
  /// in the braces has been read, before connections from here are made.
  virtual SoFieldContainer* getMeant() { return this; }

  /// A second name, given by a host that replicates scenes; empty unless set.
  SbName getNetName() const;
  void setNetName(SbName const& name);

  /// Tells everybody who listens that something changed here.
  void touch() { notify(SoNotification{SoNotification::UNSPECIFIED, this}); }
  /// Switches notification of this object off or on; answers what it was.
  bool enableNotify(bool on);
  bool isNotifyEnabled() const { return m_notifyEnabled; }
  /// Grows with every change of who is whose child, or which node a field refers to, that somebody was not told
  /// of because a notification was off. Who keeps a picture of a graph learns from it how far to trust that.
  static std::uint64_t getSilentChanges();
  /// Passes a change on to every auditor, up to the roots, each object once; then calls the immediate
  /// sensors that were met. Runs on the thread that makes the change.
  void notify(SoNotification const& notification);

  SoAuditorList const& getAuditors() const { return m_auditors; }
  void addAuditor(void* auditor, SoAuditorList::Kind kind) { m_auditors.append(auditor, kind); }
  void removeAuditor(void* auditor, SoAuditorList::Kind kind);

 protected:
  SoFieldContainer() = default;
  ~SoFieldContainer() override;

  friend class SoCopier;
  friend class SoEngine;
  friend class SoField;
  friend class SoFieldWalk;
  friend class SoRunTimeFields;
  friend class SoUnknownNode;
  /// The table of the class whose constructor is running, or of the object's class afterwards.
  virtual SoFieldData& getClassFieldData() const;
  /// Called for every change that reaches this object, its own included, before any sensor is called.
  virtual void changed(SoNotification const&) {}
  /// The symbols of an enumeration field, for containers that learn them from files; else null.
  virtual std::vector<SoEnumSymbol>* getOpenSymbols(int) { return nullptr; }
  /// Makes a field that stands alone one of this object's; called by its constructor.
  void adoptField(SoField* field, SbName const& name);
  /// The same for an object that answers a table of its own.
  void adoptField(SoField* field, SbName const& name, SoFieldData& table);
  /// Called when a field of this object was set, before the notification goes out.
  virtual void fieldChanged(SoField*) {}
  /// From fieldChanged(): calls a function once the notification of that change has reached everybody. The
  /// function sees to it that what it needs is still there.
  static void afterNotification(std::function<void()> function);

  /// Connects a field of this object as its class has it, from its constructor: the field counts as default.
  static void connectByDefault(SoField& field, SoField& source);

  // For a deep copy.
  /// A new object of the same type, count 0, with the same fields; null when there can be none. Classes whose
  /// fields are not the same in every object see to it that they are.
  virtual SoFieldContainer* makeEmpty() const;
  /// Takes what is neither a field nor a child from the original, an object of the same type. Called once the
  /// whole copied graph stands; the copier knows what became of the objects in it. Names and flags are no
  /// concern of this.
  virtual void copyContents(SoFieldContainer const&, SoCopier&) {}

  // For containers that compute fields from others (engines) or live for connections (global fields).
  /// Declares this one of them; from the constructor, before any field is declared.
  void serveConnections() { m_servesConnections = true; }
  /// A field of this object has changed or will; what follows from that is to be entered in the walk.
  virtual void inputReached(SoField*, SoFieldWalk&) {}
  /// Appends the fields of this object from which a field of it is computed.
  virtual void addInputsOf(SoField const*, std::vector<SoField*>&) const {}
  /// Computes a field that needs it.
  virtual void computeField(SoField*) {}
  /// Somebody has begun or ceased to follow or watch a field.
  virtual void listenersChanged(SoField*) {}

 private:
  /// Enters a field that is being constructed; answers its index.
  int addField(SoField* field, char const* name, std::vector<SoEnumSymbol> const* symbols);

  SoAuditorList m_auditors;
  std::uint32_t m_visit = 0;       // number of the last notification that came by
  std::uint16_t m_fieldCursor = 0;  // fields constructed so far
  bool m_notifyEnabled = true;
  bool m_servesConnections = false;
};
