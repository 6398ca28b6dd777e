// Engines that react to triggers, and those that combine truth values.

#include <algorithm>

#include "kestrava/engines/SoBoolOperation.h"
#include "kestrava/engines/SoCounter.h"
#include "kestrava/engines/SoEngineArrays.h"
#include "kestrava/engines/SoOnOff.h"
#include "kestrava/engines/SoTriggerAny.h"

void SoOnOff::inputChanged(SoField* input) {
  bool const was = m_isOn;
  if (input == &on) m_isOn = true;
  if (input == &off) m_isOn = false;
  if (input == &toggle) m_isOn = !m_isOn;
  if (m_isOn != was) sendAll();
}

void SoOnOff::evaluate() {
  isOn.setValue(m_isOn);
  isOff.setValue(!m_isOn);
}

void SoOnOff::copyContents(SoFieldContainer const& from, SoCopier&) {
  m_isOn = static_cast<SoOnOff const&>(from).m_isOn;
}

void SoTriggerAny::evaluate() { output.setValue(); }

void SoCounter::count() {
  int const low = std::min(min.getValue(), max.getValue());
  int const high = std::max(min.getValue(), max.getValue());
  if (m_willReset) {
    m_count = std::clamp<int>(reset.getValue(), low, high);
  } else {
    m_count = (m_hasCount ? m_count : min.getValue()) + step.getValue();
    if (m_count < low || m_count > high) {
      m_count = step.getValue() < 0 ? high : low;
      send(syncOut);
    }
  }
  m_hasCount = true;
  m_willReset = false;
}

void SoCounter::inputChanged(SoField* input) {
  if (input == &reset) {
    m_willReset = true;
  } else if (input == &trigger) {
    count();
    send(output);
  } else if (!m_hasCount) {
    send(output);
  }
}

void SoCounter::evaluate() {
  output.setValue(m_hasCount ? static_cast<std::int16_t>(m_count) : min.getValue());
}

void SoCounter::copyContents(SoFieldContainer const& from, SoCopier&) {
  auto const& other = static_cast<SoCounter const&>(from);
  m_count = other.m_count;
  m_hasCount = other.m_hasCount;
  m_willReset = other.m_willReset;
}

namespace {

bool combine(bool a, bool b, int operation) {
  switch (operation) {
    case SoBoolOperation::CLEAR:
      return false;
    case SoBoolOperation::SET:
      return true;
    case SoBoolOperation::A:
      return a;
    case SoBoolOperation::NOT_A:
      return !a;
    case SoBoolOperation::B:
      return b;
    case SoBoolOperation::NOT_B:
      return !b;
    case SoBoolOperation::A_OR_B:
      return a || b;
    case SoBoolOperation::NOT_A_OR_B:
      return !a || b;
    case SoBoolOperation::A_OR_NOT_B:
      return a || !b;
    case SoBoolOperation::NOT_A_OR_NOT_B:
      return !a || !b;
    case SoBoolOperation::A_AND_B:
      return a && b;
    case SoBoolOperation::NOT_A_AND_B:
      return !a && b;
    case SoBoolOperation::A_AND_NOT_B:
      return a && !b;
    case SoBoolOperation::NOT_A_AND_NOT_B:
      return !a && !b;
    case SoBoolOperation::A_EQUALS_B:
      return a == b;
    case SoBoolOperation::A_NOT_EQUALS_B:
      return a != b;
    default:
      return false;
  }
}

} // namespace

void SoBoolOperation::evaluate() {
  using SoEngineArrays::at;
  std::vector<SbBool> values, inverted;
  for (int i = 0, count = SoEngineArrays::getLongest(a, b, operation); i < count; ++i) {
    values.push_back(combine(at(a, i), at(b, i), at(operation, i)));
    inverted.push_back(!values.back());
  }
  output.setValues(std::move(values));
  inverse.setValues(std::move(inverted));
}
