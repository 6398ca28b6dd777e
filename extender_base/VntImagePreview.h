#pragma once

#include <QPixmap>
#include <QWidget>

#include "kestrava/base/SbImage.h"

class QMimeData;

/// An image as large as there is room for, above a checkerboard. Small images are enlarged so that their
/// pixels can be seen. Takes the keys for copying and pasting, and images and files that are dropped on it.
class VntImagePreview : public QWidget {
  Q_OBJECT
 public:
  explicit VntImagePreview(QWidget* parent = nullptr);

  /// The same image and slice again cost nothing.
  void setImage(SbImage const& image, int slice);
  QSize sizeHint() const override { return {160, 120}; }
  QSize minimumSizeHint() const override { return {72, 72}; }

 Q_SIGNALS:
  void copyWanted();
  void pasteWanted();
  void dropped(QMimeData const* data);

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void draw(QSize size);

  SbImage m_image;
  int m_slice = 0;
  QImage m_reduced; // no larger than a preview can be
  QPixmap m_drawn;  // as it is shown, for the present size
};
