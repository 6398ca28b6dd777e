#pragma once

#include <QFormLayout>

/// A form whose labels move above their rows where there is little room beside them.
class VntFoldingForm : public QFormLayout {
 public:
  /// Its widgets are those of `widget`.
  explicit VntFoldingForm(QWidget* widget = nullptr) : QFormLayout(widget) {
    setContentsMargins(0, 0, 0, 0);
    setFieldGrowthPolicy(AllNonFixedFieldsGrow);
    setLabelAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  }
  void setGeometry(QRect const& rect) override {
    constexpr int ENOUGH = 340; // pixels
    if (!rect.isEmpty()) setRowWrapPolicy(rect.width() < ENOUGH ? WrapAllRows : DontWrapRows);
    QFormLayout::setGeometry(rect);
  }
};
