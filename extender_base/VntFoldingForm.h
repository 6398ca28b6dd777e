#pragma once

#include <QFormLayout>

/// A form whose labels move above their rows where there is little room beside them.
class VntFoldingForm : public QFormLayout {
 public:
  /// Beside the labels there is room in a width of `enough` pixels. `widget` null: it is put into a layout.
  explicit VntFoldingForm(int enough, QWidget* widget = nullptr) : QFormLayout(widget), m_enough(enough) {
    setContentsMargins(0, 0, 0, 0);
    setFieldGrowthPolicy(AllNonFixedFieldsGrow);
    setLabelAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  }
  void setGeometry(QRect const& rect) override {
    if (!rect.isEmpty()) setRowWrapPolicy(rect.width() < m_enough ? WrapAllRows : DontWrapRows);
    QFormLayout::setGeometry(rect);
  }

 private:
  int m_enough;
};
