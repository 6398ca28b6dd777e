#pragma once

#include <memory>
#include <string>
#include <vector>

#include "kestrava/base/SbName.h"
#include "kestrava/base/SbString.h"
#include "kestrava/base/SoNotification.h"
#include "kestrava/base/SoType.h"
#include "kestrava/fields/SoFieldData.h"

class SoCopier;
class SoFieldContainer;
class SoFieldSensor;
class SoFieldWalk;
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
/// the source overwrites the value. Everything that follows a change, through engines too, is marked before
/// anybody is told of it. A connection keeps an engine or a global field alive, but no node.
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

  /// Takes the value from another field from now on. Refused (false, with a debug error) when this is an output
  /// of an engine, when it would close a loop of fields and engines, or when the values can not be converted.
  ///
  /// Numbers (truth values, times and enumerations too) convert into each other, without a fraction and cut to the
  /// range where the new type is one of integers, and so do vectors and colours of the same size; strings take the text of any value, and give
  /// it where it fits. A field of many values follows a single one as its only value; a single one follows the
  /// first of many.
  bool connectFrom(SoField* source);
  void disconnect();
  bool isConnected() const { return m_links && m_links->source; }
  SoField* getConnectedField() const { return m_links ? m_links->source : nullptr; }
  /// True while the field follows what its class has connected it to: that need not be written to files.
  bool isConnectionDefault() const { return m_flags & OWN_CONNECTION; }
  bool hasFollowers() const { return m_links && !m_links->followers.empty(); }
  /// True while sensors are attached.
  bool isWatched() const { return m_links && !m_links->sensors.empty(); }
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
  /// Takes a value for a copied graph: what refers to something inside of the original refers to its copy.
  virtual void takeCopyOf(SoField const& other, SoCopier&) { takeValueOf(other); }

  /// How many numbers make one value, 0 for values that are not made of numbers.
  virtual int countNumbers() const { return 0; }
  /// Appends the numbers of all values.
  virtual void getNumbers(std::vector<double>&) const {}
  /// Takes values that are made of as many numbers; a single-value field the first of them, where there is one.
  virtual void setNumbers(std::vector<double> const&) {}

 private:
  friend class SoCopier;
  friend class SoEngine;
  friend class SoFieldContainer;
  friend class SoFieldWalk;
  enum Flag : std::uint16_t {
    KIND_MASK = 7,
    IGNORED = 8,
    DEFAULT = 16,
    PENDING = 32,
    SILENT = 64,
    OWN_CONNECTION = 128,
  };
  struct Links {
    SoField* source = nullptr;
    SoField const* parsedFor = nullptr;
    std::vector<SoField*> followers;
    std::vector<SoFieldSensor*> sensors;
    std::uint32_t visit = 0;  // number of the last walk that came by
    int listed = 0;           // in that many walks
  };
  Links& links();
  void markPending();
  void clearFlag(Flag flag) { m_flags = static_cast<std::uint16_t>(m_flags & ~flag); }
  /// Appends what has to be evaluated before this field can be.
  void addNeeded(std::vector<SoField*>& fields) const;
  void fetch();
  void takeWaiting();
  bool isConvertible(SoField& source) const;
  /// False, and unchanged, where this type has no such value.
  bool convertFrom(SoField const& source, SbString* reason);
  bool dependsOn(SoField const* other) const;
  void link(SoField* source);
  void unlink();
  void tellOnly();
  void spread();

  SoFieldContainer* m_container;
  std::unique_ptr<Links> m_links;  // only where there is a connection or a sensor, or for a parsing copy
  std::uint16_t m_index = 0;
  std::uint16_t m_flags = DEFAULT;
};
