#pragma once

#include <QElapsedTimer>
#include <QLabel>
#include <QPointer>
#include <QTimer>

class QStatusBar;
class SoTreeViewItem;
class SoVantleTreeView;

/// Says in the status bar how many nodes and places the tree has, and the part of it below the current row.
/// It follows changes at a pace of its own, so that thousands of them a second cost nothing, and gives up its
/// room where a message needs it.
class SoTreeStatus : public QLabel {
  Q_OBJECT
 public:
  static constexpr int INTERVAL = 250;       ///< milliseconds between two looks at the tree, at least
  static constexpr int SLOW_INTERVAL = 1000; ///< while places are not built, which takes longer to count
  static constexpr int MAX_PLACES = 500'000; ///< of larger parts only that is said

  SoTreeStatus(SoVantleTreeView* tree, QStatusBar* bar);

  QSize minimumSizeHint() const override { return QSize(0, QLabel::minimumSizeHint().height()); }
  /// "1,204".
  static QString grouped(double number);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void changeLater();
  void followTree();
  QString describeTree() const;
  QString describeBelow(SoTreeViewItem* top) const;
  void makeRoom(QString const& message);

  QPointer<SoVantleTreeView> m_tree;
  QStatusBar* m_bar;
  QTimer m_timer;
  QElapsedTimer m_sinceLast;
  int m_pause = INTERVAL; // milliseconds after the last look
};
