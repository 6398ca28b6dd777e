#pragma once

#include <QProgressDialog>

#include "kestrava/io/SoInput.h"

/// Reads a scene with a progress dialog that comes up when the reading takes its time.
class LiveInput : public SoInput {
 public:
  LiveInput(QString const& fileName, QWidget* parent);
  void updateReadPercent(double percent) override;

 private:
  QProgressDialog m_progress;
};
