#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// Who must hear of a change of an object: the parents that hold it, the sensors attached to it, the fields
/// that refer to it. One pointer wide while there is at most one entry, which is the common case. An object
/// that holds another one several times is listed as often.
class SoAuditorList {
 public:
  enum Kind { PARENT = 0, SENSOR = 1, PATH = 2, FIELD = 3 };

  SoAuditorList() = default;
  SoAuditorList(SoAuditorList const&) = delete;
  SoAuditorList& operator=(SoAuditorList const&) = delete;
  ~SoAuditorList() {
    if (isMany()) delete many();
  }

  int getLength() const { return isMany() ? static_cast<int>(many()->size()) : m_value ? 1 : 0; }
  void* getObject(int i) const { return reinterpret_cast<void*>(at(i) & ~std::uintptr_t{7}); }
  Kind getKind(int i) const { return static_cast<Kind>(at(i) & 3); }

  /// `auditor` is aligned to 8 bytes, as every object with a virtual table is.
  void append(void* auditor, Kind kind);
  /// Removes one entry; the order of the others may change. Entries near either end are found at once, so
  /// that releasing many users of one object in the order (or reverse order) they came is linear.
  void remove(void* auditor, Kind kind);

 private:
  static constexpr std::uintptr_t MANY = 4;
  bool isMany() const { return m_value & MANY; }
  std::vector<std::uintptr_t>* many() const {
    return reinterpret_cast<std::vector<std::uintptr_t>*>(m_value & ~std::uintptr_t{7});
  }
  std::uintptr_t at(int i) const { return isMany() ? (*many())[i] : m_value; }

  std::uintptr_t m_value = 0;
};
