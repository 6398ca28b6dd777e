#pragma once

#include <QTimer>
#include <vector>

#include "extender_base/VntTableEdits.h"

/// What all numbers of a table come to: the least and the greatest of each column, and the ranges of groups
/// of rows, for a chart. Large tables are gone through a piece at a time, when the program is idle.
class VntTableScan : public QObject {
  Q_OBJECT
 public:
  struct Range {
    double low, high; ///< low > high: no finite number
    void add(double number);
    void add(Range const& other);
    bool isEmpty() const { return !(low <= high); }
  };
  struct Result {
    int count = 0;        ///< of rows
    int numNotFinite = 0; ///< of numbers
    int numGroups = 0;    ///< of rows, equally many each
    std::vector<Range> columns;
    std::vector<Range> groups; ///< column by column
  };

  VntTableScan(VntTableEdits& edits, QObject* parent);
  /// The values have changed. A scan that goes on is finished first, so that there is a result now and then
  /// however often they change.
  void follow();
  /// The latest complete one.
  Result const& getResult() const { return m_result; }

 Q_SIGNALS:
  void finished();

 private:
  void begin();
  void step();
  void scan(int count);

  VntTableEdits& m_edits;
  QTimer m_timer;
  Result m_result, m_next;
  std::vector<double> m_numbers;
  int m_done = 0;
  bool m_isRunning = false;
  bool m_isStale = false;
};
