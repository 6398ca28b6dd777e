#pragma once

#include <memory>
#include <string>
#include <vector>

#include "kestrava/base/SbName.h"
#include "kestrava/base/SbString.h"
#include "kestrava/base/SoNotification.h"
#include "kestrava/base/SoType.h"
#include "kestrava/fields/SoFieldData.h"

class SoFieldContainer;
class SoFieldSensor;
class SoInput;
class SoOutput;

/// Declares type and factory of a field class; its type name is the class name without "So".
#define SO_FIELD_COMMON_(Class, Parent, factory)                                                          \
 public:                                                                                                  \
  static SoType getClassTypeId() {                                                                        \
    static SoType const type = SoType::createType(Parent::getClassTypeId(), &#Class[2], factory);         \
    return type;                                                                                          \
  }                                                                                                       \
  SoType getTypeId() const override { return getClassTypeId(); }                                          \
                                                                                                          \
 private:                                                                                                 \
  inline static bool const s_registered = !getClassTypeId().isBad();                                      \
                                                                                                          \
 public:
#define SO_FIELD(Class, Parent) \
  SO_FIELD_COMMON_(Class, Parent, ([]() -> void* { return static_cast<SoField*>(new Class); }))
#define SO_ABSTRACT_FIELD(Class, Parent) SO_FIELD_COMMON_(Class, Parent, nullptr)

/// A value of a container, or one that stands alone, that can be read, written, watched and connected.
///
/// A connected field follows its source lazily: a change of the source marks it and tells its container; the
/// value is fetched when somebody reads it. Setting a connected field breaks nothing: the next change of
/// the source overwrites the value.
class SoField {
 public:
  /// Three bits that say what a field is for.
  enum FieldType {
    NORMAL = 0,      ///< read and written like any field
    PRIVATE = 1,     ///< the container's own affair; not shown
    READ_ONLY = 2,   ///< shown, set only by the container
    EVENT_IN = 3,    ///< receives values, keeps none
    EVENT_OUT = 4,   ///< sends values
    EXPOSED = 5,     ///< receives and sends
    INTERNAL = 6,    ///< written to files, not shown
    DEPRECATED = 7,  ///< read from old files, neither shown nor written
  };

  virtual ~SoField();
  SoField(SoField const&) = delete;
  SoField& operator=(SoField const&) = delete;

  static SoType getClassTypeId();
  virtual SoType getTypeId() const = 0;
  bool isOfType(SoType type) const { return getTypeId().isDerivedFrom(type); }

  /// Null for a field that stands alone.
  SoFieldContainer* getContainer() const { return m_container; }
  /// Index in the container's field data, -1 for a field that stands alone.
  int getIndex() const { return m_container ? m_index : -1; }
  /// Empty for a field that stands alone.
  SbName getName() const;
  FieldType getFieldType() const { return static_cast<FieldType>(m_flags & KIND_MASK); }
  void setFieldType(FieldType type) { m_flags = static_cast<std::uint16_t>((m_flags & ~KIND_MASK) | static_cast<int>(type)); }

  /// The value as text, in the form that scene files use.
  void get(SbString& text) const;
  /// Sets the value from text; false and unchanged when the text is not a value of this type. The reason is
  /// then in `reason`, or posted as a read error when that is null.
  bool set(char const* text, SbString* reason = nullptr);

  bool isIgnored() const { return m_flags & IGNORED; }
  /// Notifies.
  void setIgnored(bool on);
  /// True until the value is set for the first time.
  bool isDefault() const { return m_flags & DEFAULT; }
  /// Marks the present value as default or not; does not notify.
  void setDefault(bool on);

  /// Takes the value from another field from now on. Refused (false, with a debug error) when the field is
  /// `this`, when it would close a loop, or when the values can not be converted.
  bool connectFrom(SoField* source);
  void disconnect();
  bool isConnected() const { return m_links && m_links->source; }
  SoField* getConnectedField() const { return m_links ? m_links->source : nullptr; }
  bool hasFollowers() const { return m_links && !m_links->followers.empty(); }
  /// The fields that take their value from this one.
  std::vector<SoField*> getFollowers() const { return m_links ? m_links->followers : std::vector<SoField*>(); }
  /// True while a value is waiting at the source of the connection.
  bool needsEvaluation() const { return m_flags & PENDING; }
  /// Fetches the value that is waiting, if any. Every read does this first.
  void evaluate() const {
    if (m_flags & PENDING) const_cast<SoField*>(this)->fetch();
  }

  /// Notifies as if the value had changed.
  void touch();
  /// Switches notification by this field off or on; answers what it was.
  bool enableNotify(bool on);
  bool isNotifyEnabled() const { return !(m_flags & SILENT); }

  /// True when both have the same type and value.
  bool isSame(SoField const& other) const { return getTypeId() == other.getTypeId() && hasValueOf(other); }
  /// Takes value of a field of the same type, or of one whose text form fits; notifies. False when it does not fit.
  bool copyFrom(SoField const& other);
  /// The number of values: 1 for single-value fields.
  virtual int getNumValues() const { return 1; }

  /// Reads and writes the value alone, in ASCII or binary as the stream says. Reading neither notifies nor
  /// touches the default flag; it answers false when the stream has failed.
  virtual bool readValue(SoInput& in) = 0;
  virtual void writeValue(SoOutput& out) const = 0;
  /// Tells everybody that the value was set: clears the default flag, followers, sensors, container. Whoever changes
  /// a value in place calls this afterwards.
  void valueChanged();

  void addSensor(SoFieldSensor* sensor);
  void removeSensor(SoFieldSensor* sensor);

 protected:
  explicit SoField(SoFieldContainer* container = nullptr, char const* name = nullptr, FieldType type = NORMAL,
                   std::vector<SoEnumSymbol> const* symbols = nullptr);
  /// The symbols of this field; those of the field it is read for, when it is a copy made to parse into.
  std::vector<SoEnumSymbol> const& getSymbols() const;
  /// The table that takes symbols met in a file, where the container knows no others; mostly null.
  std::vector<SoEnumSymbol>* getOpenSymbols() const;
  /// Same type is given.
  virtual bool hasValueOf(SoField const& other) const = 0;
  virtual void takeValueOf(SoField const& other) = 0;

 private:
  friend class SoFieldContainer;
  enum Flag : std::uint16_t { KIND_MASK = 7, IGNORED = 8, DEFAULT = 16, PENDING = 32, SILENT = 64, FETCHING = 128 };
  struct Links {
    SoField* source = nullptr;
    SoField const* parsedFor = nullptr;
    std::vector<SoField*> followers;
    std::vector<SoFieldSensor*> sensors;
  };
  Links& links();
  void fetch();
  bool follows(SoField const* other) const;
  void spread();
  void notifySensors();

  SoFieldContainer* m_container;
  std::unique_ptr<Links> m_links;  // only where there is a connection or a sensor, or for a parsing copy
  std::uint16_t m_index = 0;
  std::uint16_t m_flags = DEFAULT;
};
