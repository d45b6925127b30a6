#pragma once
// The one painter of plat sheets: the sheet's lines, monuments and labels
// from inches on the paper to a device, each label fitted to its box, on
// screen and into PDF and SVG alike.

#include <QColor>
#include <QPainter>
#include <QRectF>

#include "parcels/plat.h"

namespace tervalo {

// Paints `sheet` into `target`, the paper's shape kept, in `ink` on `paper`.
void paintSheet(QPainter& painter, const Sheet& sheet, const QRectF& target, const QColor& ink = Qt::black,
                const QColor& paper = Qt::white);

}  // namespace tervalo

// libtervalo_paper.so's writer of a sheet as "pdf" or "svg" into `file`;
// false, with the reason in `error`, when it cannot.
extern "C" bool tervalo_write_sheet(const tervalo::Sheet* sheet, const char* file, const char* kind, std::string* error);
