#pragma once

#include <atomic>
#include <utility>
#include <vector>

#include "kestrava/base/SbName.h"
#include "kestrava/base/SoType.h"

/// Base of everything that is counted and named: an object starts with reference count 0 and is destroyed
/// when unref() brings the count back to 0. Counting is thread safe; everything else is not.
class SoBase {
 public:
  SoBase(SoBase const&) = delete;
  SoBase& operator=(SoBase const&) = delete;

  void ref() const { m_refCount.fetch_add(1, std::memory_order_relaxed); }
  /// Destroys the object when the count reaches 0. A chain of objects that own each other, however long, is
  /// destroyed without recursion.
  void unref() const;
  /// Never destroys.
  void unrefNoDelete() const { m_refCount.fetch_sub(1, std::memory_order_relaxed); }
  int getRefCount() const { return m_refCount.load(std::memory_order_relaxed); }

  virtual SoType getTypeId() const = 0;
  static SoType getClassTypeId();
  bool isOfType(SoType type) const { return getTypeId().isDerivedFrom(type); }

  SbName getName() const { return m_name; }
  /// A name may hold anything but what would end it in a file: white space, quotes, backslash, braces,
  /// brackets, '#', ',', '+', '=', '~' and '.' become '_', and so does a digit in front. Read the name back to see what was kept.
  void setName(SbName const& name);
  /// The name that setName() would keep.
  static SbName toValidName(SbName const& name);
  /// The object of that type (or a derived one) that got the name last; null when there is none.
  static SoBase* getNamedBase(SbName const& name, SoType type);
  /// All of them, in no particular order.
  static std::vector<SoBase*> getNamedBases(SbName const& name, SoType type);

 protected:
  SoBase() = default;
  virtual ~SoBase();

 private:
  friend struct SoNameDictionary;
  mutable std::atomic<int> m_refCount{0};
  unsigned m_nameSlot = 0;  // place among the objects of that name
  SbName m_name;
};

/// An owning pointer to a counted object.
template <class T>
class SoRef {
 public:
  SoRef() = default;
  SoRef(T* object) : m_object(object) {
    if (m_object) m_object->ref();
  }
  SoRef(SoRef const& other) : SoRef(other.m_object) {}
  SoRef(SoRef&& other) noexcept : m_object(other.m_object) { other.m_object = nullptr; }
  ~SoRef() { reset(); }
  SoRef& operator=(SoRef other) noexcept {
    std::swap(m_object, other.m_object);
    return *this;
  }
  void reset() {
    if (T* old = std::exchange(m_object, nullptr)) old->unref();
  }
  /// Gives the object away with its count lowered but without destroying it.
  T* release() {
    T* old = std::exchange(m_object, nullptr);
    if (old) old->unrefNoDelete();
    return old;
  }
  T* get() const { return m_object; }
  T* operator->() const { return m_object; }
  T& operator*() const { return *m_object; }
  operator T*() const { return m_object; }

 private:
  T* m_object = nullptr;
};
