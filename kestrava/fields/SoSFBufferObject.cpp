#include "kestrava/fields/SoSFBufferObject.h"

#include "kestrava/base/SoCpuBufferObject.h"

namespace {
constexpr int BYTES_A_NUMBER = 4;
constexpr std::uint32_t NO_BUFFER = ~0u;  // binary form
}  // namespace

bool SoSFBufferObject::readValue(SoInput& in) {
  std::uint32_t size = NO_BUFFER;
  if (in.isBinary() || !in.skipWord("NULL")) {
    if (!in.read(size)) return false;
  }
  m_value.reset();
  if (size == NO_BUFFER) return true;
  std::vector<unsigned char> bytes;
  if (!SoReadHexBytes(in, bytes, size, BYTES_A_NUMBER)) return false;
  auto* buffer = new SoCpuBufferObject;
  m_value = SoRef<SoBufferObject>(buffer);
  buffer->setBytes(std::move(bytes));
  return true;
}

void SoSFBufferObject::writeValue(SoOutput& out) const {
  if (!m_value) {
    if (out.isBinary()) return out.write(NO_BUFFER);
    return out.put("NULL");
  }
  out.write(static_cast<std::uint32_t>(m_value->getSize()));
  SoWriteHexBytes(out, static_cast<unsigned char const*>(m_value->map()), m_value->getSize(), BYTES_A_NUMBER);
  m_value->unmap();
}
