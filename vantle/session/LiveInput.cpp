#include "vantle/session/LiveInput.h"

LiveInput::LiveInput(QString const& fileName, QWidget* parent)
    : m_progress(QProgressDialog::tr("Loading ") + fileName, QProgressDialog::tr("Cancel"), 0, 100, parent) {
  m_progress.setCancelButton(nullptr);
  m_progress.setWindowModality(Qt::WindowModal);
  m_progress.setValue(0);
}

// Once the dialog is up, setting the value also repaints; being window-modal it keeps the user's input away
// from the frame meanwhile.
void LiveInput::updateReadPercent(double percent) { m_progress.setValue(static_cast<int>(percent)); }
