#include "kestrava_qt/SoQtViewerIcons.h"

#include <QPainter>
#include <QPainterPath>

namespace {

/// On a field of 20 x 20.
void paint(QPainter& p, SoQtViewerIcons::Icon icon) {
  using namespace SoQtViewerIcons;
  switch (icon) {
    case VIEW:
      p.drawEllipse(QPointF(10, 10), 6.5, 6.5);
      p.drawEllipse(QPointF(10, 10), 6.5, 2.6);
      p.drawEllipse(QPointF(10, 10), 2.6, 6.5);
      break;
    case PICK:
      p.drawPolygon(QPolygonF({{5, 3}, {5, 15}, {8, 12.2}, {10, 17}, {12, 16.2}, {10, 11.5}, {14, 11.5}}));
      break;
    case HOME:
    case SET_HOME:
      p.drawPolyline(QPolygonF({{3, 10}, {10, 3.5}, {17, 10}}));
      p.drawPolyline(QPolygonF({{5, 9}, {5, 16.5}, {15, 16.5}, {15, 9}}));
      if (icon == SET_HOME) {
        p.drawLine(QPointF(10, 8.5), QPointF(10, 14.5));
        p.drawLine(QPointF(7, 11.5), QPointF(13, 11.5));
      }
      break;
    case VIEW_ALL:
      for (int corner = 0; corner < 4; ++corner) {
        p.drawPolyline(QPolygonF({{3, 7}, {3, 3}, {7, 3}}));
        p.translate(20, 0);
        p.rotate(90);
      }
      p.drawRect(QRectF(7.5, 7.5, 5, 5));
      break;
    case SEEK:
      p.drawEllipse(QPointF(10, 10), 5, 5);
      p.drawLine(QPointF(10, 2.5), QPointF(10, 8));
      p.drawLine(QPointF(10, 12), QPointF(10, 17.5));
      p.drawLine(QPointF(2.5, 10), QPointF(8, 10));
      p.drawLine(QPointF(12, 10), QPointF(17.5, 10));
      break;
    case PERSPECTIVE:
      p.drawRect(QRectF(3, 3, 14, 14));
      p.drawRect(QRectF(7, 7, 6, 6));
      p.drawLine(QPointF(3, 3), QPointF(7, 7));
      p.drawLine(QPointF(17, 3), QPointF(13, 7));
      p.drawLine(QPointF(3, 17), QPointF(7, 13));
      p.drawLine(QPointF(17, 17), QPointF(13, 13));
      break;
    case ORTHOGRAPHIC:
      p.drawRect(QRectF(3, 7, 10, 10));
      p.drawPolyline(QPolygonF({{3, 7}, {7, 3}, {17, 3}, {17, 13}, {13, 17}}));
      p.drawLine(QPointF(13, 7), QPointF(17, 3));
      break;
  }
}

}  // namespace

QIcon SoQtViewerIcons::make(Icon icon, QColor const& color) {
  QIcon result;
  for (int scale : {1, 2, 3}) {
    QPixmap pixmap(20 * scale, 20 * scale);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(scale, scale);
    painter.setPen(QPen(color, 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    paint(painter, icon);
    painter.end();
    pixmap.setDevicePixelRatio(scale);
    result.addPixmap(pixmap);
  }
  return result;
}
