#include "kestrava/fields/SoSFArray.h"

std::ptrdiff_t SoSFArray::countValues(SbVec3i32 const& size) {
  std::size_t count = 1;
  for (int i = 0; i < 3; ++i) {
    if (size[i] < 0 || (size[i] > 0 && count > MAX_VALUES / static_cast<std::size_t>(size[i]))) return -1;
    count *= static_cast<std::size_t>(size[i]);
  }
  return static_cast<std::ptrdiff_t>(count);
}

bool SoSFArray::setValue(SbVec3i32 const& size, std::vector<float> values) {
  if (countValues(size) != static_cast<std::ptrdiff_t>(values.size())) return false;
  m_size = size;
  m_values = std::move(values);
  valueChanged();
  return true;
}

bool SoSFArray::readValue(SoInput& in) {
  SbVec3i32 size;
  if (!SoReadValue(in, size)) return false;
  std::ptrdiff_t const count = countValues(size);
  if (count < 0) {
    return in.failText("an array of " + std::to_string(size[0]) + " x " + std::to_string(size[1]) + " x " +
                       std::to_string(size[2]) + " numbers is not possible");
  }
  m_size = size;
  if (in.isBinary()) return SoReadBlock(in, m_values, static_cast<std::size_t>(count));
  m_values.clear();
  while (static_cast<std::ptrdiff_t>(m_values.size()) < count) {
    float value = 0;
    if (!in.read(value)) return false;
    m_values.push_back(value);
  }
  return true;
}

void SoSFArray::writeValue(SoOutput& out) const {
  SoWriteValue(out, m_size);
  if (out.isBinary()) return SoWriteBlock(out, m_values.data(), m_values.size());
  for (float value : m_values) {
    constexpr int USUAL_LINE = 90;
    if (out.getColumn() > USUAL_LINE) {
      out.newLine();
    } else {
      out.put(" ");
    }
    out.write(value);
  }
}

bool SoSFArray::hasValueOf(SoField const& other) const {
  auto const& array = static_cast<SoSFArray const&>(other);
  return getSize() == array.getSize() && getValues() == array.getValues();
}

void SoSFArray::takeValueOf(SoField const& other) {
  auto const& array = static_cast<SoSFArray const&>(other);
  m_size = array.m_size;
  m_values = array.m_values;
}
