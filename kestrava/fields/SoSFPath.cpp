#include "kestrava/fields/SoSFPath.h"

#include "kestrava/fields/SoMFPath.h"
#include "kestrava/io/SoReader.h"
#include "kestrava/io/SoWriter.h"

namespace {

bool readSteps(SoInput& in, SoPath& path) {
  std::vector<std::int32_t> indices;
  if (!SoReadValues(in, indices)) return false;
  for (int index : indices) {
    if (!path.append(index)) return in.failText("a path has no child " + std::to_string(index) + " to go on with");
  }
  return true;
}

}  // namespace

bool SoReadPath(SoInput& in, SoRef<SoPath>& path) {
  path.reset();
  if (in.isBinary()) return in.failText("paths are read from the ASCII form only");
  if (in.skipWord("NULL")) return true;
  if (!in.skipWord("Path")) return in.fail("Path or NULL");
  if (!in.expect('{')) return false;
  SoRef<SoNode> const head = SoReader(in).readNode();
  if (!head) return false;
  path = SoRef<SoPath>(new SoPath(head));
  return readSteps(in, *path) && in.expect('}');
}

void SoWritePath(SoOutput& out, SoPath const* path) {
  if (!path || path->getLength() == 0) return out.put("NULL");
  out.put("Path { ");
  SoWriter(out).writeValues({path->getHead()}, false);
  std::vector<std::int32_t> indices;
  for (int i = 1; i < path->getLength(); ++i) indices.push_back(path->getIndex(i));
  out.put(" ");
  SoWriteValues(out, indices);
  out.put(" }");
}

bool SoSamePath(SoPath const* a, SoPath const* b) { return a == b || (a && b && *a == *b); }

bool SoSFPath::readValue(SoInput& in) { return SoReadPath(in, m_value); }
void SoSFPath::writeValue(SoOutput& out) const { SoWritePath(out, m_value); }

bool SoSFPath::hasValueOf(SoField const& other) const {
  return SoSamePath(getValue(), static_cast<SoSFPath const&>(other).getValue());
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
