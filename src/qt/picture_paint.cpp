#include "qt/picture_paint.h"

#include <QPainter>
#include <QPalette>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace tervalo {
namespace {

bool darkGround(const QPalette& palette) { return palette.color(QPalette::Base).lightness() < 128; }

QColor inkColor(Ink ink, const QPalette& palette) {
  switch (ink) {
    case Ink::Accent: return palette.color(QPalette::Highlight);
    case Ink::Quiet: return palette.color(QPalette::PlaceholderText);
    // Amber, lighter on a dark ground so that it reads on either.
    case Ink::Alert: return darkGround(palette) ? QColor(0xff, 0xa0, 0x40) : QColor(0xc0, 0x4a, 0x00);
    case Ink::Main: break;
  }
  return palette.color(QPalette::Text);
}

std::vector<QString> captionLines(const Picture& picture) {
  std::vector<QString> lines;
  for (const QString& line : QString::fromStdString(picture.caption).split('\n'))
    if (!line.isEmpty()) lines.push_back(line);
  return lines;
}

// The label's box turned about its anchor, as much room as it takes.
QRectF turnedBox(const QRectF& box, const QPointF& about, double degrees) {
  QTransform turn;
  turn.translate(about.x(), about.y());
  turn.rotate(degrees);
  turn.translate(-about.x(), -about.y());
  return turn.mapRect(box);
}

// A north arrow in the top right corner; returns the room it takes.
QRectF paintNorthArrow(QPainter& painter, const QRectF& area, const QFontMetricsF& metrics, const QColor& ink) {
  const double h = metrics.height();
  const QRectF room(area.right() - 2.2 * h, area.top() + 4, 2 * h, 3.2 * h);
  const QPointF tip(room.center().x(), room.top() + h + 2);
  QPainterPath arrow;
  arrow.moveTo(tip);
  arrow.lineTo(tip + QPointF(-0.5 * h, 1.8 * h));
  arrow.lineTo(tip + QPointF(0, 1.3 * h));
  arrow.closeSubpath();
  painter.setPen(QPen(ink, 1));
  painter.setBrush(ink);
  painter.drawPath(arrow);
  painter.setBrush(Qt::NoBrush);
  QPainterPath other;
  other.moveTo(tip);
  other.lineTo(tip + QPointF(0.5 * h, 1.8 * h));
  other.lineTo(tip + QPointF(0, 1.3 * h));
  other.closeSubpath();
  painter.drawPath(other);
  painter.drawText(QRectF(room.left(), room.top(), room.width(), h), Qt::AlignCenter, "N");
  return room;
}

// A scale bar of round length in the bottom left corner, above the caption,
// its length written after it; returns the room it takes.
QRectF paintScaleBar(QPainter& painter, const QRectF& area, double bottom, double scale, double mapWidth,
                     const std::string& units, const QFontMetricsF& metrics, const QColor& ink) {
  const double length = scaleBarLength(mapWidth), pixels = length * scale, h = metrics.height();
  const QPointF start(area.left() + 12, bottom - h / 2 - 4);
  painter.setPen(QPen(ink, 1.5));
  painter.drawLine(start, start + QPointF(pixels, 0));
  for (double at : {0.0, pixels / 2, pixels})
    painter.drawLine(start + QPointF(at, -(at == pixels / 2 ? 3 : 5)), start + QPointF(at, at == pixels / 2 ? 0 : 5));
  const QString text = QString::number(length, 'g', 12) + " " + QString::fromStdString(units);
  const QRectF label(start.x() + pixels + 6, start.y() - h / 2, metrics.horizontalAdvance(text) + 2, h);
  painter.drawText(label, Qt::AlignLeft | Qt::AlignVCenter, text);
  return QRectF(start.x(), label.top(), label.right() - start.x(), h);
}

}  // namespace

PictureFrame pictureFrame(const Picture& picture, const QRectF& area, const QFont& font, const QPaintDevice* device) {
  const QFontMetricsF metrics(font, device);
  double minX = std::numeric_limits<double>::max(), maxX = -minX, minY = minX, maxY = -minX;
  auto take = [&](const PicturePoint& p) {
    minX = std::min(minX, p.x), maxX = std::max(maxX, p.x), minY = std::min(minY, p.y), maxY = std::max(maxY, p.y);
  };
  for (const auto& l : picture.lines)
    for (const auto& p : l.points) take(p);
  for (const auto& m : picture.marks) take(m.at);
  PictureFrame f;
  if (picture.empty()) return f;
  // Room for labels on every side and the caption (and scale bar) below;
  // one scale for both axes.
  // (labels are kept inside the picture anyway, so a narrow one spends less on them)
  const double side = metrics.height() * 1.5 + 8 + std::min(metrics.horizontalAdvance("PT 000+00.0000") / 2, area.width() * 0.06);
  const double captionRoom = metrics.height() * (static_cast<double>(captionLines(picture).size()) + (picture.mapUnits.empty() ? 0 : 1.6));
  const double top = metrics.height() * (picture.mapUnits.empty() ? 1.5 : 2.0) + 8;
  const QRectF inner = area.adjusted(side, top, -side, -(metrics.height() * 1.5 + 8) - captionRoom);
  const double span = std::max({maxX - minX, maxY - minY, 1e-9});
  f.scale = std::max(1e-12, std::min(inner.width() / std::max(maxX - minX, span * 1e-3),
                                     inner.height() / std::max(maxY - minY, span * 1e-3)));
  f.minX = minX;
  f.maxY = maxY;
  f.width = maxX - minX;
  f.offsetX = inner.left() + (inner.width() - (maxX - minX) * f.scale) / 2;
  f.offsetY = inner.top() + (inner.height() - (maxY - minY) * f.scale) / 2;
  return f;
}

PictureFrame zoomedFrame(const PictureFrame& fitted, const QRectF& area, const PictureZoom& zoom) {
  if (zoom.fitted()) return fitted;
  const QPointF c = area.center();
  PictureFrame f = fitted;
  f.scale = fitted.scale * zoom.zoom;
  f.offsetX = c.x() + (fitted.offsetX - c.x()) * zoom.zoom + zoom.pan.x();
  f.offsetY = c.y() + (fitted.offsetY - c.y()) * zoom.zoom + zoom.pan.y();
  f.width = fitted.width / zoom.zoom;  // what the area shows across, for the scale bar
  return f;
}

std::vector<PlacedLabel> placeLabels(const Picture& picture, const PictureFrame& frame, const QRectF& area,
                                     const QFontMetricsF& metrics, std::vector<QRectF> taken) {
  std::vector<PlacedLabel> placed;
  // What a label should stand clear of: the strokes drawn and the marks.
  std::vector<QLineF> strokes;
  for (const auto& l : picture.lines)
    for (std::size_t i = 1; i < l.points.size(); ++i) strokes.emplace_back(frame.at(l.points[i - 1]), frame.at(l.points[i]));
  std::vector<QRectF> markRooms;
  for (const auto& m : picture.marks) {
    const QPointF p = frame.at(m.at);
    markRooms.emplace_back(p.x() - m.radius, p.y() - m.radius, 2 * m.radius, 2 * m.radius);
  }
  const auto clearOfMarks = [&](const QRectF& room) {
    const QRectF r = room.adjusted(-1, -1, 1, 1);
    return std::none_of(markRooms.begin(), markRooms.end(), [&](const QRectF& m) { return m.intersects(r); });
  };
  const auto clearOfDrawing = [&](const QRectF& room) {
    const QRectF r = room.adjusted(-1, -1, 1, 1);
    if (!clearOfMarks(room)) return false;
    const QLineF edges[] = {{r.topLeft(), r.topRight()}, {r.topRight(), r.bottomRight()},
                            {r.bottomRight(), r.bottomLeft()}, {r.bottomLeft(), r.topLeft()}};
    return std::none_of(strokes.begin(), strokes.end(), [&](const QLineF& s) {
      if (r.contains(s.p1()) || r.contains(s.p2())) return true;
      return std::any_of(std::begin(edges), std::end(edges),
                         [&](const QLineF& e) { return s.intersects(e, nullptr) == QLineF::BoundedIntersection; });
    });
  };
  const auto free = [&](const QRectF& room) {
    return area.contains(room) && std::none_of(taken.begin(), taken.end(), [&](const QRectF& r) { return r.intersects(room); });
  };
  // Labels never overprint: each takes its own place when that is free, else
  // the first free one of the others, moved further out step by step; first
  // only where it covers no line or mark of the drawing (a label beside its
  // curve, not on it), then anywhere free.
  for (std::size_t i = 0; i < picture.texts.size(); ++i) {
    const PictureText& t = picture.texts[i];
    const QString text = QString::fromStdString(t.text);
    const QPointF p = frame.at(t.at);
    if (!area.contains(p)) continue;  // zoomed in, its point is out of sight
    const double width = metrics.horizontalAdvance(text), height = metrics.height();
    if (t.along != 0) {
      // Along its line and upright: left to right, and bottom to top along a
      // line within ten degrees of north and south (as a plat writes it).
      double degrees = -t.along;
      while (degrees >= 80) degrees -= 180;
      while (degrees < -100) degrees += 180;
      const double first = t.place == Place::Below ? 1 : -1;
      for (double side : {first, -first}) {
        const QRectF box(p.x() - width / 2, side < 0 ? p.y() - 3 - height : p.y() + 3, width, height);
        const QRectF room = turnedBox(box, p, degrees);
        if (free(room)) {
          taken.push_back(room);
          placed.push_back({i, box, degrees});
          break;
        }
      }
      continue;  // a length with no free room is left out rather than written over a name
    }
    if (t.place == Place::Centre) {
      // Over its anchor, or the first of its other anchors where it is clear
      // of the drawing, else of the marks alone; where none is, over its own.
      const auto centred = [&](const PicturePoint& at) {
        const QPointF q = frame.at(at);
        return QRectF(q.x() - width / 2, q.y() - height / 2, width, height);
      };
      std::vector<PicturePoint> anchors{t.at};
      anchors.insert(anchors.end(), t.elsewhere.begin(), t.elsewhere.end());
      std::optional<QRectF> chosen;
      for (const bool clear : {true, false})
        for (const PicturePoint& a : anchors)
          if (!chosen && free(centred(a)) && (clear ? clearOfDrawing(centred(a)) : clearOfMarks(centred(a)))) chosen = centred(a);
      if (!chosen && t.ifRoom) continue;
      taken.push_back(chosen.value_or(centred(t.at)));
      placed.push_back({i, taken.back(), 0});
      continue;
    }
    auto box = [&](Place place, double gap) {
      switch (place) {
        case Place::Above: return QRectF(p.x() - width / 2, p.y() - gap - height, width, height);
        case Place::Below: return QRectF(p.x() - width / 2, p.y() + gap, width, height);
        case Place::Left: return QRectF(p.x() - gap - width, p.y() - height / 2, width, height);
        case Place::AboveRight: return QRectF(p.x() + gap * 0.7, p.y() - gap * 0.7 - height, width, height);
        case Place::Right: case Place::Centre: break;
      }
      return QRectF(p.x() + gap, p.y() - height / 2, width, height);
    };
    QRectF chosen = box(t.place, 6);
    bool found = false;
    for (const bool clear : {true, false}) {
      if (!clear && t.ifRoom) break;
      for (double gap = 6; !found && gap < (t.ifRoom ? 6 + height : 6 + 6 * height); gap += height / 2)
        for (Place place : {t.place, Place::AboveRight, Place::Above, Place::Below, Place::Right, Place::Left}) {
          const QRectF candidate = box(place, gap);
          if (free(candidate) && (!clear || clearOfDrawing(candidate))) {
            chosen = candidate;
            found = true;
            break;
          }
        }
    }
    if (!found && t.ifRoom) continue;
    // Never cut at the picture's edge.
    chosen.moveLeft(std::clamp(chosen.left(), area.left(), std::max(area.left(), area.right() - chosen.width())));
    chosen.moveTop(std::clamp(chosen.top(), area.top(), std::max(area.top(), area.bottom() - chosen.height())));
    taken.push_back(chosen);
    placed.push_back({i, chosen, 0});
  }
  return placed;
}

void paintPicture(QPainter& painter, const Picture& picture, const QRectF& area, const QPalette& palette, const QFont& font,
                  const PictureZoom& zoom) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillRect(area, palette.color(QPalette::Base));
  painter.setFont(font);
  // Measured on the device painted: a PDF page has many more dots to the inch than a screen.
  const QFontMetricsF metrics(font, painter.device());
  if (picture.empty()) {
    painter.setPen(palette.color(QPalette::PlaceholderText));
    painter.drawText(area.adjusted(12, 12, -12, -12), Qt::AlignCenter | Qt::TextWordWrap, QString::fromStdString(picture.hint));
    painter.restore();
    return;
  }
  const PictureFrame frame = zoomedFrame(pictureFrame(picture, area, font, painter.device()), area, zoom);
  painter.setClipRect(area);

  for (const auto& l : picture.lines) {
    QPen pen(inkColor(l.ink, palette), l.heavy ? 2.5 : l.ink == Ink::Accent ? 2 : 1.25);
    if (l.dashed) pen.setStyle(Qt::DashLine);
    painter.setPen(pen);
    QPainterPath path;
    for (std::size_t i = 0; i < l.points.size(); ++i)
      i == 0 ? path.moveTo(frame.at(l.points[i])) : path.lineTo(frame.at(l.points[i]));
    painter.drawPath(path);
  }
  for (const auto& m : picture.marks) {
    const QColor ink = inkColor(m.ink, palette);
    painter.setPen(QPen(ink, 1.5));
    painter.setBrush(m.filled ? ink : palette.color(QPalette::Base));
    if (m.radius > 6) painter.setBrush(Qt::NoBrush);  // a ring round another mark
    const QPointF p = frame.at(m.at);
    if (m.shape == Shape::Square) {
      painter.drawRect(QRectF(p.x() - m.radius, p.y() - m.radius, 2 * m.radius, 2 * m.radius));
    } else if (m.shape == Shape::Diamond) {
      const double r = m.radius * 1.35;  // as much ink as a square of the radius
      painter.drawPolygon(QPolygonF({p + QPointF(0, -r), p + QPointF(r, 0), p + QPointF(0, r), p + QPointF(-r, 0)}));
    } else {
      painter.drawEllipse(p, m.radius, m.radius);
    }
  }
  std::vector<QRectF> taken;  // room already written on
  const QColor mainInk = palette.color(QPalette::Text);
  const auto caption = captionLines(picture);
  const double captionTop = area.bottom() - 6 - metrics.height() * static_cast<double>(caption.size());
  if (!zoom.fitted()) {
    // Zoomed in, the map runs under the caption, the scale bar and the arrow: each on a ground of its own.
    QColor ground = palette.color(QPalette::Base);
    ground.setAlpha(225);
    const double h = metrics.height();
    const QRectF band(area.left(), captionTop - (picture.mapUnits.empty() ? 0 : 1.6 * h), area.width(),
                      area.bottom() - captionTop + (picture.mapUnits.empty() ? 0 : 1.6 * h));
    const QRectF arrow(area.right() - 2.4 * h, area.top(), 2.4 * h, 3.6 * h);
    for (const QRectF& room : {band, arrow}) {
      painter.fillRect(room, ground);
      taken.push_back(room);  // no label is written there
    }
  }
  if (!picture.mapUnits.empty()) {
    painter.save();
    taken.push_back(paintNorthArrow(painter, area, metrics, mainInk));
    taken.push_back(paintScaleBar(painter, area, captionTop, frame.scale, frame.width, picture.mapUnits, metrics, mainInk));
    painter.restore();
  }
  if (!zoom.fitted()) {  // how to get back, while a part of the map is shown
    const QString note = QString("%1\u00D7  (Home: the whole map)").arg(zoom.zoom, 0, 'f', 1);
    const QRectF room(area.left() + 6, area.top() + 4, metrics.horizontalAdvance(note) + 2, metrics.height());
    QColor ground = palette.color(QPalette::Base);
    ground.setAlpha(225);
    painter.fillRect(room.adjusted(-3, -2, 3, 2), ground);
    painter.setPen(palette.color(QPalette::PlaceholderText));
    painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter, note);
    taken.push_back(room);
  }
  // The caption's lines are written on too.
  for (std::size_t i = 0; i < caption.size(); ++i) {
    const double w = metrics.horizontalAdvance(caption[i]);
    taken.emplace_back(area.center().x() - w / 2, captionTop + metrics.height() * static_cast<double>(i), w, metrics.height());
  }
  for (const PlacedLabel& label : placeLabels(picture, frame, area, metrics, taken)) {
    const PictureText& t = picture.texts[label.index];
    painter.setPen(inkColor(t.ink, palette));
    const QString text = QString::fromStdString(t.text);
    if (label.degrees != 0 || t.along != 0) {
      const QPointF p = frame.at(t.at);
      painter.save();
      painter.translate(p);
      painter.rotate(label.degrees);
      painter.translate(-p);
      painter.drawText(label.box, Qt::AlignCenter, text);
      painter.restore();
      continue;
    }
    // On a ground of its own, so a line running under a label does not cross out its figures.
    QColor ground = palette.color(QPalette::Base);
    ground.setAlpha(210);
    painter.fillRect(label.box.adjusted(-1, 0, 1, 0), ground);
    painter.drawText(label.box, Qt::AlignLeft | Qt::AlignVCenter, text);
  }
  painter.setPen(mainInk);
  double y = captionTop;
  for (const QString& line : caption) {
    painter.drawText(QRectF(area.left(), y, area.width(), metrics.height()), Qt::AlignCenter, line);
    y += metrics.height();
  }
  painter.restore();
}

}  // namespace tervalo
