#include "extender_base/VntTableScan.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "kestrava/fields/SoMField.h"

namespace {

constexpr int MOST_GROUPS = 1024;
constexpr int PIECE = 16384;  // numbers that are looked at in one go
constexpr int PAUSE_MS = 100; // between two scans of a large field that changes all the time
constexpr VntTableScan::Range NOTHING = {std::numeric_limits<double>::infinity(),
                                         -std::numeric_limits<double>::infinity()};

} // namespace

void VntTableScan::Range::add(double number) {
  low = std::min(low, number);
  high = std::max(high, number);
}

void VntTableScan::Range::add(Range const& other) {
  low = std::min(low, other.low);
  high = std::max(high, other.high);
}

VntTableScan::VntTableScan(VntTableEdits& edits, QObject* parent) : QObject(parent), m_edits(edits) {
  m_timer.setSingleShot(true);
  connect(&m_timer, &QTimer::timeout, this, &VntTableScan::step);
}

void VntTableScan::follow() {
  SoMField const* const field = m_edits.getField();
  if (!field) return m_timer.stop();
  m_isStale = true;
  int const numNumbers = std::max(1, m_edits.getAccess().getNumNumbers());
  if (static_cast<std::int64_t>(field->getNum()) * numNumbers <= PIECE) {
    m_isRunning = false;
    step();
  } else if (!m_timer.isActive()) {
    m_timer.start(m_result.count == 0 ? 0 : PAUSE_MS);
  }
}

void VntTableScan::begin() {
  m_isRunning = true;
  m_isStale = false;
  m_done = 0;
  int const numNumbers = m_edits.getAccess().getNumNumbers();
  m_next = Result();
  m_next.count = m_edits.getField()->getNum();
  m_next.numGroups = std::min(m_next.count, MOST_GROUPS);
  m_next.columns.assign(numNumbers, NOTHING);
  m_next.groups.assign(static_cast<std::size_t>(numNumbers) * m_next.numGroups, NOTHING);
}

void VntTableScan::scan(int count) {
  int const numNumbers = m_edits.getAccess().getNumNumbers();
  m_numbers.resize(static_cast<std::size_t>(count) * numNumbers);
  m_edits.getAccess().getNumbers(*m_edits.getField(), m_done, count, m_numbers.data());
  double const* number = m_numbers.data();
  for (int row = m_done; row < m_done + count; ++row) {
    auto const group = static_cast<int>(static_cast<std::int64_t>(row) * m_next.numGroups / m_next.count);
    for (int column = 0; column < numNumbers; ++column, ++number) {
      if (std::isfinite(*number))
        m_next.groups[column * m_next.numGroups + group].add(*number);
      else
        ++m_next.numNotFinite;
    }
  }
  m_done += count;
}

void VntTableScan::step() {
  SoMField const* const field = m_edits.getField();
  if (!field) return;
  int const numNumbers = m_edits.getAccess().getNumNumbers();
  if (!m_isRunning || field->getNum() != m_next.count) begin();
  if (numNumbers > 0) scan(std::min(m_next.count - m_done, PIECE / numNumbers));
  if (numNumbers > 0 && m_done < m_next.count) return m_timer.start(0);
  for (int column = 0; column < numNumbers; ++column) {
    for (int i = 0; i < m_next.numGroups; ++i)
      m_next.columns[column].add(m_next.groups[column * m_next.numGroups + i]);
  }
  std::swap(m_result, m_next);
  m_isRunning = false;
  if (m_isStale) m_timer.start(PAUSE_MS);
  Q_EMIT finished();
}
