#include "vantle/inspect/SoHeaderView.h"

#include <QMouseEvent>

SoHeaderView::SoHeaderView(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {}

void SoHeaderView::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::RightButton) Q_EMIT rightClicked(event->globalPosition().toPoint());
  QHeaderView::mouseReleaseEvent(event);
}
