// libtervalo_paper.so: the printer dialog and the SVG writer, the only users
// of Qt's print support and SVG libraries.

#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QSvgGenerator>

#include "qt/paper.h"

namespace {

bool writeSvg(const QString& file, const QSize& size, const QRect& viewBox, const QString& title,
              const std::function<void(QPainter&)>& paint) {
  QSvgGenerator svg;
  svg.setFileName(file);
  svg.setSize(size);
  svg.setViewBox(viewBox);
  svg.setTitle(title);
  QPainter painter;
  if (!painter.begin(&svg)) return false;
  paint(painter);
  return painter.end();
}

tervalo::PrintOutcome print(const QString& title, QWidget* parent, const std::function<void(QPagedPaintDevice&)>& paint,
                            QString& pdfFile) {
  QPrinter printer(QPrinter::HighResolution);
  printer.setDocName(title);
  QPrintDialog dialog(&printer, parent);
  dialog.setWindowTitle("Print " + title);
  if (dialog.exec() != QDialog::Accepted) return tervalo::PrintOutcome::Cancelled;
  if (printer.outputFormat() == QPrinter::PdfFormat && !printer.outputFileName().isEmpty()) {
    pdfFile = printer.outputFileName();
    return tervalo::PrintOutcome::IntoPdfFile;
  }
  paint(printer);
  return tervalo::PrintOutcome::Printed;
}

const tervalo::PaperModule kModule{writeSvg, print};

}  // namespace

extern "C" const tervalo::PaperModule* tervalo_paper_module() { return &kModule; }
