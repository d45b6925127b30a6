#pragma once

#include <QFontMetricsF>
#include <QRectF>
#include <vector>
// The one painter of the program's pictures: true to scale, y up, in the
// colours of the window's palette (so a dark theme reads as well as a
// light one), with the labels in the window's own font.

#include <QWidget>
#include <QPointF>
#include <functional>
#include <optional>

#include "app/picture.h"

class QPainter;

namespace tervalo {

// Where a picture's world lands in a painted area: one scale for both axes,
// centred, with room for the labels, caption and scale bar.
struct PictureFrame {
  double minX = 0, maxY = 0, width = 0, scale = 1, offsetX = 0, offsetY = 0;
  QPointF at(const PicturePoint& p) const { return {offsetX + (p.x - minX) * scale, offsetY + (maxY - p.y) * scale}; }
};
PictureFrame pictureFrame(const Picture& picture, const QRectF& area, const QFont& font, const QPaintDevice* device = nullptr);

// How far a map is zoomed in and moved from fitting its area: each point of
// the fitted picture lands `zoom` times as far from the area's centre, then
// moved by `pan` pixels.
struct PictureZoom {
  double zoom = 1;
  QPointF pan;
  bool fitted() const { return zoom == 1 && pan.isNull(); }
};
PictureFrame zoomedFrame(const PictureFrame& fitted, const QRectF& area, const PictureZoom& zoom);

// Where each label of a picture is written: the room it takes, turned by
// `degrees` about its anchor for a label along a line. Labels never
// overprint one another or what is `taken` already, and keep clear of the
// drawing's lines and marks wherever the room allows; a label along a line
// with no free room is left out.
struct PlacedLabel {
  std::size_t index = 0;  // into picture.texts
  QRectF box;
  double degrees = 0;
};
std::vector<PlacedLabel> placeLabels(const Picture& picture, const PictureFrame& frame, const QRectF& area,
                                     const QFontMetricsF& metrics, std::vector<QRectF> taken = {});

// Paints `picture` fitted into `area`, zoomed and moved by `zoom`.
void paintPicture(QPainter& painter, const Picture& picture, const QRectF& area, const QPalette& palette, const QFont& font,
                  const PictureZoom& zoom = {});

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
