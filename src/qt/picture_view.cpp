#include "qt/picture_view.h"

#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <QMenu>
#include <QPainter>
#include <QStyleOptionFocusRect>
#include <QToolTip>
#include <algorithm>
#include <cmath>

namespace tervalo {

PictureView::PictureView(QWidget* parent) : QWidget(parent) {
  setMinimumSize(300, 300);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  // Reachable by Tab, so that the menu key or Shift+F10 opens its menu and the keys zoom and move a map.
  setFocusPolicy(Qt::StrongFocus);
}

namespace {

// The ground a picture covers, in its own units.
QRectF groundOf(const Picture& picture) {
  QRectF ground;
  bool first = true;
  const auto take = [&](const PicturePoint& p) {
    const QRectF one(p.x, p.y, 0, 0);
    ground = first ? one : ground.united(one);
    first = false;
  };
  for (const auto& l : picture.lines)
    for (const auto& p : l.points) take(p);
  for (const auto& m : picture.marks) take(m.at);
  return ground;
}

double distanceToSegment(const QPointF& p, const QPointF& a, const QPointF& b) {
  const QPointF ab = b - a;
  const double length2 = QPointF::dotProduct(ab, ab);
  const double t = length2 == 0 ? 0 : std::clamp(QPointF::dotProduct(p - a, ab) / length2, 0.0, 1.0);
  const QPointF d = p - (a + t * ab);
  return std::hypot(d.x(), d.y());
}

constexpr double kReach = 10;  // pixels from a mark's centre that still count as on it

}  // namespace

void PictureView::showPicture(const Picture& picture) {
  const bool sameGround = groundOf(picture) == groundOf(picture_) && picture.mapUnits == picture_.mapUnits;
  picture_ = picture;
  if (!sameGround) zoom_ = {};
  update();
}

PictureFrame PictureView::frame() const { return zoomedFrame(pictureFrame(picture_, rect(), font(), this), rect(), zoom_); }

PicturePoint PictureView::worldAt(QPointF at) const {
  const PictureFrame f = frame();
  return {f.minX + (at.x() - f.offsetX) / f.scale, f.maxY - (at.y() - f.offsetY) / f.scale};
}

QPointF PictureView::pointAt(PicturePoint world) const { return frame().at(world); }

void PictureView::zoomBy(double factor, QPointF about) {
  if (!explorable()) return;
  const double zoom = std::clamp(zoom_.zoom * factor, 0.5, 2000.0), k = zoom / zoom_.zoom;
  const QPointF c = QRectF(rect()).center();
  zoom_.pan = (about - c) - (about - c - zoom_.pan) * k;  // the point under `about` stays there
  zoom_.zoom = zoom;
  update();
}

void PictureView::fit() {
  zoom_ = {};
  update();
}

std::string PictureView::tipAt(QPointF at) const {
  if (picture_.empty()) return "";
  const PictureFrame f = frame();
  const PictureMark* nearest = nullptr;
  double best = kReach;
  for (const auto& m : picture_.marks) {
    const QPointF d = f.at(m.at) - at;
    const double distance = std::hypot(d.x(), d.y());
    if (!m.tip.empty() && distance <= best) best = distance, nearest = &m;
  }
  if (nearest) return nearest->tip;
  const PictureLine* line = nullptr;
  best = kReach / 2;
  for (const auto& l : picture_.lines) {
    if (l.tip.empty()) continue;
    for (std::size_t i = 1; i < l.points.size(); ++i) {
      const double distance = distanceToSegment(at, f.at(l.points[i - 1]), f.at(l.points[i]));
      if (distance <= best) best = distance, line = &l;
    }
  }
  return line ? line->tip : "";
}

void PictureView::contextMenuEvent(QContextMenuEvent* event) {
  if (picture_.empty() || !save) return;
  QMenu menu(this);
  menu.addAction("&Save Picture As...", [this] { save(picture_); });
  if (explorable() && !zoom_.fitted()) menu.addAction("Show the &Whole Map", [this] { fit(); });
  menu.exec(event->reason() == QContextMenuEvent::Mouse ? event->globalPos() : mapToGlobal(rect().center()));
}

void PictureView::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier) {
    QContextMenuEvent menu(QContextMenuEvent::Keyboard, rect().center(), mapToGlobal(rect().center()));
    contextMenuEvent(&menu);
    return;
  }
  if (explorable()) {
    const QPointF centre = QRectF(rect()).center();
    const double step = std::min(width(), height()) / 8.0;
    switch (event->key()) {
      case Qt::Key_Plus: case Qt::Key_Equal: zoomBy(1.25, centre); return;
      case Qt::Key_Minus: zoomBy(0.8, centre); return;
      case Qt::Key_Home: case Qt::Key_0: fit(); return;
      case Qt::Key_Left: zoom_.pan += QPointF(step, 0); update(); return;
      case Qt::Key_Right: zoom_.pan -= QPointF(step, 0); update(); return;
      case Qt::Key_Up: zoom_.pan += QPointF(0, step); update(); return;
      case Qt::Key_Down: zoom_.pan -= QPointF(0, step); update(); return;
      default: break;
    }
  }
  QWidget::keyPressEvent(event);
}

void PictureView::wheelEvent(QWheelEvent* event) {
  if (!explorable()) return QWidget::wheelEvent(event);
  zoomBy(std::pow(1.0015, event->angleDelta().y()), event->position());  // a notch of the wheel: a fifth nearer
  event->accept();
}

void PictureView::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return QWidget::mousePressEvent(event);
  pressedAt_ = event->position();
  panAtPress_ = zoom_.pan;
  dragged_ = false;
}

void PictureView::mouseMoveEvent(QMouseEvent* event) {
  if (!pressedAt_ || !(event->buttons() & Qt::LeftButton) || !explorable()) return QWidget::mouseMoveEvent(event);
  const QPointF moved = event->position() - *pressedAt_;
  if (!dragged_ && std::hypot(moved.x(), moved.y()) < 4) return;  // a click that shook
  dragged_ = true;
  setCursor(Qt::ClosedHandCursor);
  zoom_.pan = panAtPress_ + moved;
  update();
}

void PictureView::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || !pressedAt_) return QWidget::mouseReleaseEvent(event);
  pressedAt_.reset();
  unsetCursor();
  if (!dragged_ && clicked && !picture_.empty()) clicked(worldAt(event->position()), kReach / frame().scale);
}

void PictureView::mouseDoubleClickEvent(QMouseEvent* event) {
  if (explorable() && event->button() == Qt::LeftButton) fit();
}

bool PictureView::event(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QWidget::event(event);
  const auto* help = static_cast<QHelpEvent*>(event);
  const std::string tip = tipAt(help->pos());
  if (!tip.empty())
    QToolTip::showText(help->globalPos(), QString::fromStdString(tip), this);
  else
    QToolTip::hideText();
  return true;
}

void PictureView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  paintPicture(painter, picture_, rect(), palette(), font(), zoom_);
  if (hasFocus()) {
    QStyleOptionFocusRect option;
    option.initFrom(this);
    option.rect = rect().adjusted(2, 2, -2, -2);
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
  }
}

}  // namespace tervalo
