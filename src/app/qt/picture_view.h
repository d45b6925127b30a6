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

// Paints `picture` fitted into `area`.
void paintPicture(QPainter& painter, const Picture& picture, const QRectF& area, const QPalette& palette, const QFont& font);

// A picture beside a window's results, redrawn whenever its model changes
// it. Its context menu (or Shift+F10, or the menu key) saves it as SVG, PNG
// or PDF through `save`.
class PictureView : public QWidget {
 public:
  explicit PictureView(QWidget* parent);
  void showPicture(const Picture& picture);
  const Picture& picture() const { return picture_; }
  std::function<void(const Picture&)> save;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool event(QEvent* event) override;  // a mark's tip as its tooltip

 private:
  Picture picture_;
};

}  // namespace tervalo
