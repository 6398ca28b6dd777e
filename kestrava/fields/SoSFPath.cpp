#include "kestrava/fields/SoSFPath.h"

#include "kestrava/fields/SoMFPath.h"
#include "kestrava/io/SoReader.h"
#include "kestrava/io/SoWriter.h"
#include "kestrava/nodes/SoCopier.h"

bool SoReadPath(SoInput& in, SoRef<SoPath>& path) { return SoReader(in).readPath(path); }
void SoWritePath(SoOutput& out, SoPath const* path) { SoWriter(out).writePath(path); }

bool SoSamePath(SoPath const* a, SoPath const* b) { return a == b || (a && b && *a == *b); }

bool SoSFPath::readValue(SoInput& in) { return SoReadPath(in, m_value); }
void SoSFPath::writeValue(SoOutput& out) const { SoWritePath(out, m_value); }

bool SoSFPath::hasValueOf(SoField const& other) const {
  return SoSamePath(getValue(), static_cast<SoSFPath const&>(other).getValue());
}

void SoSFPath::takeCopyOf(SoField const& other, SoCopier& copier) {
  takeValueOf(other);
  copier.later([this, &copier] { m_value = copier.copyOf(m_value.get()); });
}

void SoMFPath::takeCopyOf(SoField const& other, SoCopier& copier) {
  takeValueOf(other);
  copier.later([this, &copier] {
    for (SoRef<SoPath>& path : m_values) path = copier.copyOf(path.get());
  });
}

void SoMFPath::get1(int index, SbString& text) const {
  SoOutput out;
  out.setBuffer();
  if (index >= 0 && index < getNumValues()) SoWritePath(out, m_values[index]);
  text = SbString(out.takeBuffer());
}

bool SoMFPath::set1(int index, char const* text) {
  SoInput in;
  in.setBuffer(text);
  SoRef<SoPath> path;
  if (index < 0 || !SoReadPath(in, path) || !in.atEnd()) return false;
  if (index >= getNumValues()) m_values.resize(static_cast<std::size_t>(index) + 1);
  m_values[index] = std::move(path);
  valueChanged();
  return true;
}

void SoMFPath::deleteValues(int start, int count) {
  int const end = count < 0 ? getNumValues() : std::min(getNumValues(), start + count);
  if (start < 0 || start >= end) return;
  m_values.erase(m_values.begin() + start, m_values.begin() + end);
  valueChanged();
}

void SoMFPath::insertSpace(int start, int count) {
  if (start < 0 || start > getNumValues() || count <= 0) return;
  m_values.insert(m_values.begin() + start, static_cast<std::size_t>(count), SoRef<SoPath>());
  valueChanged();
}

bool SoMFPath::hasValueOf(SoField const& other) const {
  auto const& paths = static_cast<SoMFPath const&>(other);
  if (getNumValues() != paths.getNumValues()) return false;
  for (int i = 0; i < getNumValues(); ++i) {
    if (!SoSamePath((*this)[i], paths[i])) return false;
  }
  return true;
}

bool SoMFPath::getOne(int index, SoField& single) const {
  if (index < 0 || index >= getNumValues() || !single.isOfType(SoSFPath::getClassTypeId())) return false;
  static_cast<SoSFPath&>(single).setValue(m_values[index]);
  return true;
}

void SoMFPath::appendValuesOf(SoMField const& other) {
  std::vector<SoRef<SoPath>> const paths = static_cast<SoMFPath const&>(other).m_values;
  m_values.insert(m_values.end(), paths.begin(), paths.end());
}
