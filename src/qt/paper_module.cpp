// libtervalo_paper.so: the printer dialog and the SVG writer, the only users
// of Qt's print support and SVG libraries.

#include <QGuiApplication>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QPrintDialog>
#include <QPrinter>
#include <QSvgGenerator>

#include "qt/paper.h"
#include "qt/sheet_paint.h"

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

extern "C" bool tervalo_write_sheet(const tervalo::Sheet* sheet, const char* file, const char* kind, std::string* error) {
  // A program without a window (the command line) paints offscreen.
  if (!QCoreApplication::instance()) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    static int argc = 1;
    static char name[] = "tervalo-cli";
    static char* argv[] = {name, nullptr};
    new QGuiApplication(argc, argv);  // kept to the end of the program
  }
  const QString title = QString::fromStdString(sheet->title);
  if (std::string(kind) == "pdf") {
    QPdfWriter pdf(QString::fromLocal8Bit(file));
    pdf.setTitle(title);
    pdf.setCreator("Tervalo");
    pdf.setResolution(1200);
    const bool landscape = sheet->width > sheet->height;
    pdf.setPageSize(QPageSize(QSizeF(landscape ? sheet->height : sheet->width, landscape ? sheet->width : sheet->height), QPageSize::Inch));
    pdf.setPageOrientation(landscape ? QPageLayout::Landscape : QPageLayout::Portrait);
    pdf.setPageMargins(QMarginsF(0, 0, 0, 0));
    QPainter painter;
    if (!painter.begin(&pdf)) {
      *error = "the PDF cannot be written";
      return false;
    }
    tervalo::paintSheet(painter, *sheet, QRectF(0, 0, pdf.width(), pdf.height()));
    if (!painter.end()) {
      *error = "the PDF cannot be written";
      return false;
    }
    return true;
  }
  const QSize size(static_cast<int>(sheet->width * 96), static_cast<int>(sheet->height * 96));
  if (!writeSvg(QString::fromLocal8Bit(file), size, QRect(QPoint(0, 0), size), title,
                [sheet, size](QPainter& painter) { tervalo::paintSheet(painter, *sheet, QRectF(QPointF(0, 0), QSizeF(size))); })) {
    *error = "the SVG drawing cannot be written";
    return false;
  }
  return true;
}
