#pragma once

#include <cstdint>
#include <functional>

#include "kestrava/base/SbName.h"

/// The run-time type of toolkit objects: a small value, an index into the process-wide type registry.
/// Types are registered from any thread, also at static-initialisation time, and never removed.
class SoType {
 public:
  /// Makes a new instance with reference count 0. For an abstract type there is none.
  using Factory = void* (*)();

  /// The bad type.
  constexpr SoType() = default;
  static constexpr SoType badType() { return SoType(); }

  /// Registers a type; `name` stands as given. Registering a name again answers the type it has.
  static SoType createType(SoType parent, SbName const& name, Factory factory = nullptr);
  /// The type of that name; a leading "So" may be missing or superfluous. Bad type when unknown.
  static SoType fromName(SbName const& name);
  /// Number of registered types, the bad type at index 0 included.
  static int getNumTypes();
  /// Name of the type at an index, 1 to getNumTypes() - 1; empty otherwise.
  static SbName getTypeName(int index);
  static SoType fromIndex(int index);

  bool isBad() const { return m_index == 0; }
  int getIndex() const { return m_index; }
  SbName getName() const;
  SoType getParent() const;
  /// True for the type itself and every ancestor; false when either is the bad type.
  bool isDerivedFrom(SoType ancestor) const;
  bool canCreateInstance() const;
  /// A new instance with reference count 0, null for an abstract type. The caller knows which base class
  /// the type has: the pointer is the one the factory made (an SoFieldContainer* for nodes, an SoField* for
  /// fields).
  void* createInstance() const;

  friend bool operator==(SoType, SoType) = default;
  friend bool operator<(SoType a, SoType b) { return a.m_index < b.m_index; }

 private:
  constexpr explicit SoType(std::uint16_t index) : m_index(index) {}
  std::uint16_t m_index = 0;
};

template <>
struct std::hash<SoType> {
  size_t operator()(SoType type) const noexcept { return static_cast<size_t>(type.getIndex()); }
};
