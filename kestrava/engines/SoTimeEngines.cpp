// Engines that follow the clock.

#include <algorithm>
#include <cmath>
#include <utility>

#include "kestrava/engines/SoClock.h"
#include "kestrava/engines/SoElapsedTime.h"
#include "kestrava/engines/SoOneShot.h"
#include "kestrava/engines/SoTimeCounter.h"

SoElapsedTime::SoElapsedTime() : SoEngine(EVENTS) {
  connectByDefault(timeIn, SoClock::getField());
  m_timeSource = timeIn.getConnectedField();
}

void SoElapsedTime::advance() {
  SbTime const now = timeIn.getValue();
  if (m_hasBegun && isRunning()) m_elapsed += (now - m_last).seconds * m_speed;
  m_last = now;
  m_hasBegun = true;
}

void SoElapsedTime::inputChanged(SoField* input) {
  if (input == &timeIn) {
    // Another clock shows another time: nothing has gone by.
    if (std::exchange(m_timeSource, timeIn.getConnectedField()) != timeIn.getConnectedField()) {
      m_last = timeIn.getValue();
    }
    if (isRunning()) send(timeOut);
    return;
  }
  advance();
  if (input == &reset || (input == &on && on.getValue() && !m_isOn)) m_elapsed = 0;
  m_speed = speed.getValue();
  m_isOn = on.getValue();
  m_isPaused = pause.getValue();
  send(timeOut);
}

void SoElapsedTime::evaluate() {
  advance();
  timeOut.setValue(SbTime(m_elapsed));
}

void SoElapsedTime::copyContents(SoFieldContainer const& from, SoCopier&) {
  auto const& other = static_cast<SoElapsedTime const&>(from);
  m_last = other.m_last;
  m_speed = other.m_speed;
  m_isOn = other.m_isOn;
  m_isPaused = other.m_isPaused;
  m_hasBegun = other.m_hasBegun;
  m_timeSource = timeIn.getConnectedField();
  m_elapsed = other.m_elapsed;
}

SoOneShot::SoOneShot() : SoEngine(EVENTS) { connectByDefault(timeIn, SoClock::getField()); }

void SoOneShot::end() {
  m_isActive = false;
  if (!(flags.getValue() & HOLD_FINAL)) m_elapsed = m_ramp = 0;
  sendAll();
}

void SoOneShot::inputChanged(SoField* input) {
  if (input == &trigger) {
    if (disable.getValue() || (m_isActive && !(flags.getValue() & RETRIGGERABLE))) return;
    m_start = timeIn.getValue();
    m_elapsed = m_ramp = 0;
    m_isActive = true;
    sendAll();
  }
  if (!m_isActive) return;
  double const whole = duration.getValue().seconds;
  m_elapsed = std::clamp((timeIn.getValue() - m_start).seconds, 0.0, std::max(whole, 0.0));
  m_ramp = whole > 0 ? m_elapsed / whole : 1;
  if (m_ramp >= 1 || disable.getValue()) {
    end();
  } else {
    send(timeOut);
    send(ramp);
  }
}

void SoOneShot::evaluate() {
  timeOut.setValue(SbTime(m_elapsed));
  isActive.setValue(m_isActive);
  ramp.setValue(static_cast<float>(m_ramp));
}

void SoOneShot::copyContents(SoFieldContainer const& from, SoCopier&) {
  auto const& other = static_cast<SoOneShot const&>(from);
  m_start = other.m_start;
  m_elapsed = other.m_elapsed;
  m_ramp = other.m_ramp;
  m_isActive = other.m_isActive;
}

SoTimeCounter::SoTimeCounter() : SoEngine(EVENTS) {
  connectByDefault(timeIn, SoClock::getField());
  m_timeSource = timeIn.getConnectedField();
}

int SoTimeCounter::countStages() const {
  int const span = max.getValue() - min.getValue();
  int const by = std::abs(static_cast<int>(step.getValue()));
  return span <= 0 || by == 0 ? 1 : span / by + 1;
}

// The share of a round that has gone by when a stage begins.
double SoTimeCounter::startOf(int stage) const {
  int const stages = countStages();
  double before = 0, whole = 0;
  for (int i = 0; i < stages; ++i) {
    // Where there are not as many weights all stages are alike.
    double const weight = duty.getNum() == stages ? std::max(duty[i], 0.f) : 1;
    if (i < stage) before += weight;
    whole += weight;
  }
  return whole > 0 ? before / whole : 0;
}

int SoTimeCounter::stageAt(double phase) const {
  int const stages = countStages();
  if (duty.getNum() != stages) return std::min(static_cast<int>(phase * stages), stages - 1);
  double whole = 0, gone = 0;
  for (float weight : duty.values()) whole += std::max(weight, 0.f);
  for (int i = 0; i + 1 < stages; ++i) {
    gone += std::max(duty[i], 0.f);
    if (phase * whole < gone) return i;
  }
  return stages - 1;
}

void SoTimeCounter::advance() {
  SbTime const now = timeIn.getValue();
  if (m_hasBegun && m_isOn) m_phase += (now - m_last).seconds * m_frequency;
  m_last = now;
  m_hasBegun = true;
  double const rounds = std::floor(m_phase);
  m_phase = std::isfinite(m_phase) ? m_phase - rounds : 0;
  if (rounds != 0) send(syncOut);
}

void SoTimeCounter::inputChanged(SoField* input) {
  if (std::exchange(m_timeSource, timeIn.getConnectedField()) != timeIn.getConnectedField()) {
    m_last = timeIn.getValue();  // another clock
  }
  advance();
  m_isOn = on.getValue();
  m_frequency = std::max(frequency.getValue(), 0.f);
  bool const isDown = step.getValue() < 0;
  int const by = std::max(std::abs(static_cast<int>(step.getValue())), 1);
  if (input == &syncIn) {
    m_phase = 0;
    send(syncOut);
  } else if (input == &reset) {
    int const distance = isDown ? max.getValue() - reset.getValue() : reset.getValue() - min.getValue();
    m_phase = startOf(std::clamp(distance / by, 0, countStages() - 1));
  }
  int const counted = stageAt(m_phase) * by;
  int const value = isDown ? std::max(max.getValue() - counted, std::min<int>(min.getValue(), max.getValue()))
                           : min.getValue() + counted;
  if (std::exchange(m_output, value) != value || input != &timeIn) send(output);
}

void SoTimeCounter::evaluate() {
  if (!m_hasBegun) inputChanged(&timeIn);
  output.setValue(static_cast<std::int16_t>(m_output));
}

void SoTimeCounter::copyContents(SoFieldContainer const& from, SoCopier&) {
  auto const& other = static_cast<SoTimeCounter const&>(from);
  m_last = other.m_last;
  m_phase = other.m_phase;
  m_frequency = other.m_frequency;
  m_output = other.m_output;
  m_isOn = other.m_isOn;
  m_hasBegun = other.m_hasBegun;
  m_timeSource = timeIn.getConnectedField();
}
