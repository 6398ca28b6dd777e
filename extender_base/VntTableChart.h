#pragma once

#include <QWidget>

#include "extender_base/VntTableScan.h"

/// A small chart of the numbers of a table, a line for each column; however many there are, a column of
/// pixels shows the range of all that fall there. A click asks for the row below the mouse.
class VntTableChart : public QWidget {
  Q_OBJECT
 public:
  VntTableChart(VntTableEdits& edits, VntTableScan& scan, QWidget* parent);
  /// Marks a row; -1: none.
  void setCurrentRow(int row);
  /// What is written on the row below the mouse; empty when the mouse is not there.
  QString hoverText() const;

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return {40, 0}; }

 Q_SIGNALS:
  void rowClicked(int row);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;

 private:
  QRect plot() const;
  int rowAt(int x) const;
  int xOf(int row) const;
  QColor lineColor(int column) const;
  void drawColumn(QPainter& painter, int column, VntTableScan::Range const& all) const;
  void drawLegend(QPainter& painter) const;

  VntTableEdits& m_edits;
  VntTableScan& m_scan;
  int m_currentRow = -1;
  int m_hoverRow = -1;
};
