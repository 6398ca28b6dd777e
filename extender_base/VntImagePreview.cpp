#include "extender_base/VntImagePreview.h"

#include <QDragEnterEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>

#include "extender_base/VntImages.h"

namespace {

constexpr int LONGEST = 1024, SQUARE = 8, LARGEST_PIXEL = 32;

} // namespace

VntImagePreview::VntImagePreview(QWidget* parent) : QWidget(parent) {
  setFocusPolicy(Qt::StrongFocus);
  setAcceptDrops(true);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void VntImagePreview::setImage(SbImage const& image, int slice) {
  if (image.getSharedBytes() == m_image.getSharedBytes() && image.getSize() == m_image.getSize() &&
      image.getNumComponents() == m_image.getNumComponents() && slice == m_slice)
    return;
  m_image = image;
  m_slice = slice;
  m_reduced = toQImage(image, slice, LONGEST);
  m_drawn = QPixmap();
  update();
}

void VntImagePreview::draw(QSize size) {
  if (m_reduced.isNull()) {
    m_drawn = QPixmap();
    return;
  }
  // The image's own proportions: the reduced one is cut differently in the two directions.
  QSize shown(m_image.getWidth(), m_image.getHeight());
  QSize const largest = shown.width() <= LONGEST && shown.height() <= LONGEST ? shown * LARGEST_PIXEL : shown;
  shown.scale(size.boundedTo(largest), Qt::KeepAspectRatio);
  shown = shown.expandedTo(QSize(1, 1));
  double const ratio = devicePixelRatioF();
  QSize const pixels = shown * ratio;
  bool const isSmaller = pixels.width() < m_reduced.width() || pixels.height() < m_reduced.height();
  QPixmap drawn(pixels);
  QPainter painter(&drawn);
  if (m_reduced.hasAlphaChannel()) {
    QPixmap squares(2 * SQUARE, 2 * SQUARE);
    squares.fill(QColor(0xcc, 0xcc, 0xcc));
    QPainter square(&squares);
    for (int at : {0, SQUARE}) square.fillRect(at, at, SQUARE, SQUARE, QColor(0x99, 0x99, 0x99));
    square.end();
    painter.drawTiledPixmap(drawn.rect(), squares);
  }
  painter.drawImage(0, 0,
                    m_reduced.scaled(pixels, Qt::IgnoreAspectRatio,
                                     isSmaller ? Qt::SmoothTransformation : Qt::FastTransformation));
  painter.end();
  drawn.setDevicePixelRatio(ratio);
  m_drawn = drawn;
}

void VntImagePreview::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  QRect const inside = rect().adjusted(2, 2, -2, -2);
  QSize const drawn = m_drawn.deviceIndependentSize().toSize();
  if (m_drawn.isNull() || (drawn.width() != inside.width() && drawn.height() != inside.height()) ||
      drawn.width() > inside.width() || drawn.height() > inside.height())
    draw(inside.size());
  if (m_drawn.isNull()) {
    painter.setPen(palette().color(QPalette::Disabled, QPalette::WindowText));
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap, tr("No image"));
  } else {
    QRect target(QPoint(0, 0), m_drawn.deviceIndependentSize().toSize());
    target.moveCenter(inside.center());
    target.moveTop(inside.top());
    painter.setOpacity(isEnabled() ? 1 : 0.5);
    painter.drawPixmap(target.topLeft(), m_drawn);
  }
  if (!hasFocus()) return;
  QStyleOptionFocusRect option;
  option.initFrom(this);
  style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
}

bool VntImagePreview::event(QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride) {
    // Before the window copies and pastes nodes.
    auto const* const key = static_cast<QKeyEvent*>(event);
    if (key->matches(QKeySequence::Copy) || key->matches(QKeySequence::Paste)) event->accept();
  }
  if (event->type() == QEvent::EnabledChange || event->type() == QEvent::FocusIn ||
      event->type() == QEvent::FocusOut)
    update();
  return QWidget::event(event);
}

void VntImagePreview::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy))
    Q_EMIT copyWanted();
  else if (event->matches(QKeySequence::Paste))
    Q_EMIT pasteWanted();
  else
    QWidget::keyPressEvent(event);
}

void VntImagePreview::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->hasImage() || event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void VntImagePreview::dropEvent(QDropEvent* event) {
  event->acceptProposedAction();
  Q_EMIT dropped(event->mimeData());
}
