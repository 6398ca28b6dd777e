#pragma once

#include <QWidget>

class QCheckBox;

/// The settings of the statistics, and their page in the preferences dialog. The dialog calls read() when it
/// opens and write() on OK and Apply.
class StatisticsPreferences : public QWidget {
  Q_OBJECT
 public:
  enum Column { TYPE, NODES, PLACES, TRIANGLES, MEMORY, COLUMNS };

  StatisticsPreferences();
  static bool isShown(Column column);
  /// Triangles of a shared shape count once instead of once a place.
  static bool isCountedOnce();

 public Q_SLOTS:
  void read();
  void write();

 Q_SIGNALS:
  void changed();

 private:
  QCheckBox* m_countedOnce;
  QCheckBox* m_shown[COLUMNS] = {}; // the first column is always shown
};
