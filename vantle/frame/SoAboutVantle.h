#pragma once

#include <QDialog>

/// What this program is, modal.
class SoAboutVantle : public QDialog {
  Q_OBJECT
 public:
  explicit SoAboutVantle(QWidget* parent = nullptr);
};
