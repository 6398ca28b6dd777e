#pragma once

#include <QHeaderView>

/// A horizontal header that tells of right clicks.
class SoHeaderView : public QHeaderView {
  Q_OBJECT
 public:
  explicit SoHeaderView(QWidget* parent = nullptr);

 Q_SIGNALS:
  /// On the screen.
  void rightClicked(QPoint const& pos);

 protected:
  void mouseReleaseEvent(QMouseEvent* event) override;
};
