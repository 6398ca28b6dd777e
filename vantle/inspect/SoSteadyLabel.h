#pragma once

#include <QLabel>
#include <QWidget>

/// Holds a label whose text changes as often as the scene does: the window is laid out anew when the text
/// gets longer or shorter, and not for every other number.
class SoSteadyLabel : public QWidget {
 public:
  /// Takes the label over.
  explicit SoSteadyLabel(QLabel* label) : QWidget(label->parentWidget()), m_label(label) {
    setSizePolicy(label->sizePolicy());
    label->setParent(this);
  }

  QSize sizeHint() const override { return m_label->sizeHint(); }
  QSize minimumSizeHint() const override { return m_label->minimumSizeHint(); }
  bool hasHeightForWidth() const override { return m_label->hasHeightForWidth(); }
  int heightForWidth(int width) const override { return m_label->heightForWidth(width); }

 protected:
  void resizeEvent(QResizeEvent*) override { m_label->resize(size()); }
  bool event(QEvent* event) override {
    // The label asks for it with every text.
    if (event->type() == QEvent::LayoutRequest) {
      qsizetype const length = m_label->text().size();
      if (std::exchange(m_length, length) != length) updateGeometry();
      return true;
    }
    return QWidget::event(event);
  }

 private:
  QLabel* m_label;
  qsizetype m_length = 0;
};
