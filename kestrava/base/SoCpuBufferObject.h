#pragma once

#include <vector>

#include "kestrava/base/SoBufferObject.h"

/// A buffer in main memory; zero bytes at first.
class SoCpuBufferObject : public SoBufferObject {
 public:
  static SoType getClassTypeId() {
    static SoType const type = SoType::createType(SoBufferObject::getClassTypeId(), "CpuBufferObject");
    return type;
  }
  SoType getTypeId() const override { return getClassTypeId(); }

  void setSize(std::size_t bytes) override { m_bytes.assign(bytes, 0); }
  std::size_t getSize() const override { return m_bytes.size(); }
  void* map() override { return m_bytes.empty() ? nullptr : m_bytes.data(); }
  void unmap() override {}
  /// Takes bytes over.
  void setBytes(std::vector<unsigned char> bytes) { m_bytes = std::move(bytes); }

 protected:
  ~SoCpuBufferObject() override = default;

 private:
  std::vector<unsigned char> m_bytes;
};
