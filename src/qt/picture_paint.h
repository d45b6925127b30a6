#pragma once
// The one painter of the program's pictures: true to scale, y up, in the
// colours of the window's palette (so a dark theme reads as well as a
// light one), with the labels in the window's own font. The same painter
// draws on screen, into picture files and on paper.

#include <QFontMetricsF>
#include <QPointF>
#include <QRectF>
#include <vector>

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

}  // namespace tervalo
