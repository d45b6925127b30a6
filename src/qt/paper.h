#pragma once
// Printing and SVG drawings in a module of their own (libtervalo_paper.so,
// with Qt's print support and SVG writer), loaded the first time a window
// prints or saves an SVG picture. The program paints; the module gives it
// the printer or the drawing.

#include <QString>
#include <functional>

class QPagedPaintDevice;
class QPainter;
class QRect;
class QSize;
class QWidget;

namespace tervalo {

enum class PrintOutcome { Cancelled, Printed, IntoPdfFile };

struct PaperModule {
  // Paints an SVG drawing of `size` dots over `viewBox` into `file`; false when it cannot be written.
  bool (*writeSvg)(const QString& file, const QSize& size, const QRect& viewBox, const QString& title,
                   const std::function<void(QPainter&)>& paint);
  // Asks for a printer and prints `paint`'s pages on it; where the user chose a
  // PDF file instead, paints nothing and gives the file's name in `pdfFile`.
  PrintOutcome (*print)(const QString& title, QWidget* parent, const std::function<void(QPagedPaintDevice&)>& paint,
                        QString& pdfFile);
};

// The module, loaded on first use; a RunTimeError names the places tried.
const PaperModule& paper();

}  // namespace tervalo

extern "C" const tervalo::PaperModule* tervalo_paper_module();
