#pragma once
// A picture in a window: painted by the one painter, explored as a map.

#include <QWidget>
#include <QPointF>
#include <functional>
#include <optional>

#include "qt/picture_paint.h"

namespace tervalo {

// A picture beside a window's results, redrawn whenever its model changes
// it. Its context menu (or Shift+F10, or the menu key) saves it as SVG, PNG
// or PDF through `save`. A map is explored: the wheel (or + and -) zooms
// about the pointer, dragging (or the arrow keys) moves it, Home or a
// double click fits it again; resting the pointer on a mark or a line shows
// what it is.
class PictureView : public QWidget {
 public:
  explicit PictureView(QWidget* parent);
  // A new picture keeps the zoom while it covers the same ground (the same
  // section after a change); another ground is shown whole.
  void showPicture(const Picture& picture);
  const Picture& picture() const { return picture_; }
  std::function<void(const Picture&)> save;
  // A click on the map (not a drag): where, in the picture's units, and how
  // far from there still counts as on a thing (ten pixels).
  std::function<void(PicturePoint at, double tolerance)> clicked;

  const PictureZoom& zoom() const { return zoom_; }
  // Zooms by `factor` about `about` (a point of the widget).
  void zoomBy(double factor, QPointF about);
  void fit();
  // The tip of the mark or line nearest `at` (a point of the widget) within ten pixels, or "".
  std::string tipAt(QPointF at) const;
  // The picture's point under `at`, and where a point of the picture is shown.
  PicturePoint worldAt(QPointF at) const;
  QPointF pointAt(PicturePoint world) const;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  bool event(QEvent* event) override;  // a mark's or line's tip as its tooltip

 private:
  bool explorable() const { return !picture_.mapUnits.empty() && !picture_.empty(); }
  PictureFrame frame() const;
  Picture picture_;
  PictureZoom zoom_;
  std::optional<QPointF> pressedAt_;  // where the left button went down
  QPointF panAtPress_;
  bool dragged_ = false;
};

}  // namespace tervalo
