#pragma once

#include <cstddef>

#include "kestrava/base/SoBase.h"

/// A piece of memory that fields share and that may lie anywhere.
class SoBufferObject : public SoBase {
 public:
  static SoType getClassTypeId() {
    static SoType const type = SoType::createType(SoBase::getClassTypeId(), "BufferObject");
    return type;
  }
  SoType getTypeId() const override { return getClassTypeId(); }

  /// Makes room for `bytes` bytes; what was there is lost.
  virtual void setSize(std::size_t bytes) = 0;
  virtual std::size_t getSize() const = 0;
  /// Where the bytes can be read and written until unmap(); null for an empty buffer.
  virtual void* map() = 0;
  virtual void unmap() = 0;

 protected:
  ~SoBufferObject() override = default;
};
