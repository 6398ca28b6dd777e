#include "kestrava/io/SoGraphBytes.h"

#include "kestrava/fields/SoField.h"
#include "kestrava/fields/SoFieldContainer.h"
#include "kestrava/io/SoValueIO.h"

using namespace SoGraphWords;

void SoGraphBytes::putWord(Kind kind, std::uint32_t number) {
  if (number > MOST) m_out.fail("the graph is too large for the binary form");
  m_out.align(4);
  m_out.write(static_cast<std::uint32_t>(number << KIND_BITS | kind));
}

void SoGraphBytes::beginFile() {
  m_out.align(4);
  m_out.write(VERSION);
}

// Numbers are given in the order in which they are first mentioned, so that a reader finds them without gaps.
int SoGraphBytes::numberOf(SoGraphSurvey::Entry& entry) {
  if (entry.number < 0) entry.number = m_entries++;
  return entry.number;
}

int SoGraphBytes::classNumber(SoFieldContainer const* container, bool& isNew) {
  SoGraphSurvey::Class& fields = m_survey.classOf(container);
  if (fields.number >= 0) return fields.number;
  // Objects with fields of their own have a table each, and many of these say the same.
  std::string key = fields.typeName.str();
  for (int i = 0; i < container->getNumFields(); ++i) {
    SoField const* const field = container->getField(i);
    key += ' ' + field->getTypeId().getName().str() + ' ' + field->getName().str();
  }
  auto const [known, added] = m_classes.try_emplace(std::move(key), static_cast<int>(m_classes.size()));
  isNew = added;
  return fields.number = known->second;
}

void SoGraphBytes::begin(SoFieldContainer const* container, SoGraphSurvey::Entry* entry) {
  if (entry && entry->isReferred) putWord(DEFINE, static_cast<std::uint32_t>(numberOf(*entry)));
  if (SbName const name = container->getName(); !name.empty()) {
    putWord(NAME, 0);
    m_out.write(name);
  }
  bool isNew = false;
  putWord(NODE, static_cast<std::uint32_t>(classNumber(container, isNew)));
  if (!isNew) return;
  m_out.writeName(m_survey.classOf(container).typeName);
  m_out.writeCount(static_cast<std::uint32_t>(container->getNumFields()));
  for (int i = 0; i < container->getNumFields(); ++i) {
    m_out.writeName(container->getField(i)->getName());
    m_out.writeName(container->getField(i)->getTypeId().getName());
  }
}

void SoGraphBytes::beginField(SoField const* field, bool hasValue) {
  if (hasValue) putWord(VALUE, static_cast<std::uint32_t>(field->getIndex()));
}

void SoGraphBytes::putValue(SoField const* field) { field->writeValue(m_out); }

void SoGraphBytes::beginList(int count, bool isMany) {
  if (isMany) m_out.writeCount(static_cast<std::uint32_t>(count));
}

void SoGraphBytes::endPath(std::vector<std::int32_t> const& steps) {
  m_out.align(4);
  SoWriteValues(m_out, steps);
}

void SoGraphBytes::putIgnored(SoField const* field) {
  putWord(IGNORED, static_cast<std::uint32_t>(field->getIndex()));
}

void SoGraphBytes::beginSource(SoField const* follower) {
  putWord(CONNECTED, static_cast<std::uint32_t>(follower->getIndex()));
}

void SoGraphBytes::endSource(SoField const* source) {
  m_out.align(4);
  m_out.writeName(source->getName());
}
