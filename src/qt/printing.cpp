#include "qt/printing.h"

#include <QFontMetricsF>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <algorithm>

#include "app/output_file.h"
#include "qt/form_dialog.h"
#include "qt/paper.h"
#include "qt/picture_files.h"

namespace tervalo {

int paintPrintJob(QPagedPaintDevice& device, const PrintJob& job) {
  device.setPageLayout(QPageLayout(QPageSize(QPageSize::Letter), QPageLayout::Portrait, QMarginsF(18, 18, 18, 18)));
  const QRectF page(QPointF(0, 0), device.pageLayout().paintRectPixels(device.logicalDpiX()).size());
  // The fixed-pitch font at 10 points, smaller where the widest line would not fit across.
  QFont font = fixedPitchFont();
  font.setPointSizeF(10);
  const double wanted =
      QFontMetricsF(font, &device).horizontalAdvance(QString(std::max(widestLine(job.lines), 1), QChar('0')));
  if (wanted > page.width()) font.setPointSizeF(std::max(4.0, 10 * page.width() / wanted * 0.98));
  QFont small;
  small.setPointSizeF(8);
  const QFontMetricsF metrics(font, &device), footerMetrics(small, &device);
  const double footer = footerMetrics.height() * 2;
  const int linesPerPage = std::max(1, static_cast<int>((page.height() - footer) / metrics.lineSpacing()));
  std::vector<std::vector<std::string>> pages;
  if (!job.lines.empty() || !job.picture) pages = textPages(job.lines, linesPerPage);
  const int total = static_cast<int>(pages.size()) + (job.picture ? 1 : 0);

  if (pages.empty()) device.setPageOrientation(QPageLayout::Landscape);
  QPainter painter;
  if (!painter.begin(&device)) return 0;
  int number = 0;
  auto pageFooter = [&](const QRectF& area) {
    painter.setFont(small);
    painter.setPen(Qt::black);
    const QRectF line(area.left(), area.bottom() - footerMetrics.height(), area.width(), footerMetrics.height());
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter, QString::fromStdString(job.title));
    painter.drawText(line, Qt::AlignRight | Qt::AlignVCenter, QString("Page %1 of %2").arg(++number).arg(total));
  };
  for (const auto& lines : pages) {
    if (number > 0) device.newPage();
    painter.setFont(font);
    painter.setPen(Qt::black);
    double y = page.top() + metrics.ascent();
    for (const std::string& line : lines) {
      painter.drawText(QPointF(page.left(), y), QString::fromStdString(line));
      y += metrics.lineSpacing();
    }
    pageFooter(page);
  }
  if (job.picture) {
    // The picture on a landscape page of its own.
    if (number > 0) {
      device.setPageOrientation(QPageLayout::Landscape);
      device.newPage();
    }
    const QRectF area(QPointF(0, 0), device.pageLayout().paintRectPixels(device.logicalDpiX()).size());
    paintOnPaper(painter, *job.picture, area.adjusted(0, 0, 0, -footer));
    pageFooter(area);
  }
  painter.end();
  return number;
}

void writePrintPdf(const PrintJob& job, const std::filesystem::path& file) {
  writeFileWith(file, [&job](const std::filesystem::path& temp) {
    QPdfWriter pdf(QString::fromStdString(temp.string()));
    pdf.setTitle(QString::fromStdString(job.title));
    pdf.setCreator("Tervalo");
    pdf.setResolution(600);
    return paintPrintJob(pdf, job) > 0;
  });
}

std::optional<std::filesystem::path> printWithDialog(const PrintJob& job, QWidget* parent) {
  QString pdfFile;
  const auto outcome = paper().print(QString::fromStdString(job.title), parent,
                                     [&job](QPagedPaintDevice& printer) { paintPrintJob(printer, job); }, pdfFile);
  if (outcome != PrintOutcome::IntoPdfFile) return std::nullopt;
  // Into a file: through the whole-file writer, never half a PDF.
  const std::filesystem::path file = pdfFile.toStdString();
  writePrintPdf(job, file);
  return file;
}

}  // namespace tervalo
