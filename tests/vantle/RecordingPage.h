#pragma once

#include <QString>
#include <QWidget>

/// A preference page that notes when it is asked to read ("r") and to write ("w") its settings.
class RecordingPage : public QWidget {
  Q_OBJECT
 public:
  QString log;
 public Q_SLOTS:
  void readSettings() { log += 'r'; }
  void writeSettings() { log += 'w'; }
};
