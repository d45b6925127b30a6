#include "app/qt/picture_view.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <limits>

namespace tervalo {
namespace {

QColor inkColor(Ink ink, const QPalette& palette) {
  switch (ink) {
    case Ink::Accent: return palette.color(QPalette::Highlight);
    case Ink::Quiet: return palette.color(QPalette::PlaceholderText);
    case Ink::Main: break;
  }
  return palette.color(QPalette::Text);
}

}  // namespace

void paintPicture(QPainter& painter, const Picture& picture, const QRectF& area, const QPalette& palette, const QFont& font) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillRect(area, palette.color(QPalette::Base));
  painter.setFont(font);
  const QFontMetricsF metrics(font);
  if (picture.empty()) {
    painter.setPen(palette.color(QPalette::PlaceholderText));
    painter.drawText(area, Qt::AlignCenter | Qt::TextWordWrap, QString::fromStdString(picture.hint));
    painter.restore();
    return;
  }
  double minX = std::numeric_limits<double>::max(), maxX = -minX, minY = minX, maxY = -minX;
  auto take = [&](const PicturePoint& p) {
    minX = std::min(minX, p.x), maxX = std::max(maxX, p.x), minY = std::min(minY, p.y), maxY = std::max(maxY, p.y);
  };
  for (const auto& l : picture.lines)
    for (const auto& p : l.points) take(p);
  for (const auto& m : picture.marks) take(m.at);
  // Room for labels on every side and the caption below; one scale for both axes.
  const double margin = metrics.height() * 1.5 + 8;
  const QRectF inner = area.adjusted(margin + metrics.horizontalAdvance("PT 000+00.0000") / 2, margin,
                                     -margin - metrics.horizontalAdvance("PT 000+00.0000") / 2, -margin - metrics.height());
  const double span = std::max({maxX - minX, maxY - minY, 1e-9});
  const double scale = std::min(inner.width() / std::max(maxX - minX, span * 1e-3), inner.height() / std::max(maxY - minY, span * 1e-3));
  const double offsetX = inner.left() + (inner.width() - (maxX - minX) * scale) / 2;
  const double offsetY = inner.top() + (inner.height() - (maxY - minY) * scale) / 2;
  auto at = [&](const PicturePoint& p) { return QPointF(offsetX + (p.x - minX) * scale, offsetY + (maxY - p.y) * scale); };

  for (const auto& l : picture.lines) {
    QPen pen(inkColor(l.ink, palette), l.ink == Ink::Accent ? 2.5 : 1.5);
    if (l.dashed) pen.setStyle(Qt::DashLine);
    painter.setPen(pen);
    QPainterPath path;
    for (std::size_t i = 0; i < l.points.size(); ++i)
      i == 0 ? path.moveTo(at(l.points[i])) : path.lineTo(at(l.points[i]));
    painter.drawPath(path);
  }
  for (const auto& m : picture.marks) {
    painter.setPen(QPen(inkColor(m.ink, palette), 1.5));
    painter.setBrush(palette.color(QPalette::Base));
    painter.drawEllipse(at(m.at), 4, 4);
  }
  // Labels never overprint: each takes its own place when that is free, else
  // the first free one of the others, moved further out step by step.
  std::vector<QRectF> taken;
  for (const auto& t : picture.texts) {
    painter.setPen(inkColor(t.ink, palette));
    const QString text = QString::fromStdString(t.text);
    const QPointF p = at(t.at);
    const double width = metrics.horizontalAdvance(text), height = metrics.height();
    auto box = [&](Place place, double gap) {
      switch (place) {
        case Place::Above: return QRectF(p.x() - width / 2, p.y() - gap - height, width, height);
        case Place::Below: return QRectF(p.x() - width / 2, p.y() + gap, width, height);
        case Place::Left: return QRectF(p.x() - gap - width, p.y() - height / 2, width, height);
        case Place::Right: break;
      }
      return QRectF(p.x() + gap, p.y() - height / 2, width, height);
    };
    QRectF chosen = box(t.place, 6);
    bool found = false;
    for (double gap = 6; !found && gap < 6 + 6 * height; gap += height / 2)
      for (Place place : {t.place, Place::Above, Place::Below, Place::Right}) {
        const QRectF candidate = box(place, gap);
        if (area.contains(candidate) &&
            std::none_of(taken.begin(), taken.end(), [&](const QRectF& r) { return r.intersects(candidate); })) {
          chosen = candidate;
          found = true;
          break;
        }
      }
    // Never cut at the picture's edge.
    chosen.moveLeft(std::clamp(chosen.left(), area.left(), std::max(area.left(), area.right() - chosen.width())));
    chosen.moveTop(std::clamp(chosen.top(), area.top(), std::max(area.top(), area.bottom() - chosen.height())));
    taken.push_back(chosen);
    painter.drawText(chosen, Qt::AlignLeft | Qt::AlignVCenter, text);
  }
  painter.setPen(palette.color(QPalette::Text));
  painter.drawText(QRectF(area.left(), area.bottom() - metrics.height() - 6, area.width(), metrics.height() + 4),
                   Qt::AlignCenter, QString::fromStdString(picture.caption));
  painter.restore();
}

PictureView::PictureView(QWidget* parent) : QWidget(parent) {
  setMinimumSize(300, 300);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void PictureView::showPicture(const Picture& picture) {
  picture_ = picture;
  update();
}

void PictureView::contextMenuEvent(QContextMenuEvent* event) {
  if (picture_.empty() || !save) return;
  QMenu menu(this);
  menu.addAction("&Save Picture As...", [this] { save(picture_); });
  menu.exec(event->globalPos());
}

void PictureView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  paintPicture(painter, picture_, rect(), palette(), font());
}

}  // namespace tervalo
