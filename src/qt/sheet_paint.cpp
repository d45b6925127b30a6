#include "qt/sheet_paint.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainterPath>
#include <QPolygonF>

namespace tervalo {

void paintSheet(QPainter& painter, const Sheet& sheet, const QRectF& target, const QColor& ink, const QColor& paper) {
  const double k = std::min(target.width() / sheet.width, target.height() / sheet.height);
  const QPointF corner(target.left() + (target.width() - sheet.width * k) / 2, target.top() + (target.height() - sheet.height * k) / 2);
  const auto at = [&](const PicturePoint& p) { return QPointF(corner.x() + p.x * k, corner.y() + (sheet.height - p.y) * k); };
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillRect(QRectF(corner, QSizeF(sheet.width * k, sheet.height * k)), paper);
  for (const SheetLine& l : sheet.lines) {
    QPolygonF shape;
    for (const PicturePoint& p : l.points) shape << at(p);
    QPen pen(ink, std::max(0.5, l.weight / 25.4 * k));
    pen.setCapStyle(Qt::FlatCap);
    pen.setJoinStyle(Qt::MiterJoin);
    if (l.dashed) pen.setStyle(Qt::DashLine);
    painter.setPen(pen);
    if (l.filled) {
      painter.setBrush(ink);
      painter.drawPolygon(shape);
    } else {
      painter.setBrush(Qt::NoBrush);
      painter.drawPolyline(shape);
    }
  }
  for (const SheetMark& m : sheet.marks) {
    const QPointF c = at(m.at);
    const double r = m.size / 2 * k;
    painter.setPen(QPen(ink, std::max(0.5, 0.25 / 25.4 * k)));
    switch (m.kind) {
      case Monument::Found:
        painter.setBrush(ink);
        painter.drawRect(QRectF(c.x() - r, c.y() - r, 2 * r, 2 * r));
        break;
      case Monument::Set:
        painter.setBrush(paper);
        painter.drawEllipse(c, r, r);
        break;
      case Monument::Computed:
        painter.setBrush(paper);
        painter.drawPolygon(QPolygonF{QPointF(c.x() - r, c.y() + r * 0.8), QPointF(c.x() + r, c.y() + r * 0.8), QPointF(c.x(), c.y() - r)});
        break;
    }
  }
  // Each label drawn large, then scaled to its box: its capitals the box's
  // height, its advance the box's length, whatever the font.
  QFont font("DejaVu Sans");
  font.setStyleHint(QFont::SansSerif);
  font.setPixelSize(100);
  painter.setPen(ink);
  for (const SheetText& t : sheet.texts) {
    font.setBold(t.bold);
    const QFontMetricsF metrics(font);
    const QString text = QString::fromStdString(t.text);
    const double advance = metrics.horizontalAdvance(text), cap = metrics.capHeight();
    if (advance <= 0 || cap <= 0) continue;
    painter.save();
    painter.setFont(font);
    painter.translate(at(t.at));
    painter.rotate(-t.angle);
    painter.scale(t.width * k / advance, t.height * k / cap);
    painter.drawText(QPointF(0, 0), text);
    painter.restore();
  }
  painter.restore();
}

}  // namespace tervalo
