#include "qt/picture_files.h"

#include <QImage>
#include <QPageSize>
#include <QFont>
#include <QPainter>
#include <QPalette>
#include <QPdfWriter>
#include <cctype>

#include "app/output_file.h"
#include "qt/paper.h"
#include "qt/picture_paint.h"
#include "text/errors.h"

namespace tervalo {
namespace {

// Black on white, with the accent a printer renders as a clear blue.
QPalette paperPalette() {
  QPalette paper;
  paper.setColor(QPalette::Base, Qt::white);
  paper.setColor(QPalette::Text, Qt::black);
  paper.setColor(QPalette::Highlight, QColor(0x1f, 0x5f, 0xbf));
  paper.setColor(QPalette::PlaceholderText, QColor(0x60, 0x60, 0x60));
  return paper;
}

// An SVG or PNG picture is laid out as a picture of 750 by 500 on screen,
// in the window's font, and drawn at twice that: its text is as large
// against the picture as on screen, and sharp.
constexpr int kWidth = 750, kHeight = 500;
constexpr int kDotsPerPoint = 2;

}  // namespace

void paintOnPaper(QPainter& painter, const Picture& picture, const QRectF& area, double points) {
  // Painted in units of a 96-dot inch, so that strokes keep their weight on a fine-grained page.
  const double k = painter.device()->logicalDpiX() / 96.0;
  QFont font;
  font.setPixelSize(static_cast<int>(points * 96 / 72 + 0.5));
  painter.save();
  painter.scale(k, k);
  paintPicture(painter, picture, QRectF(area.topLeft() / k, area.size() / k), paperPalette(), font);
  painter.restore();
}

void writePictureFile(const Picture& picture, const std::filesystem::path& file, const QFont& font) {
  std::string ending = file.extension().string();
  for (char& c : ending) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  std::function<bool(const std::filesystem::path&)> write;
  if (ending == ".svg") {
    const PaperModule& module = paper();  // before any file is begun
    write = [&](const std::filesystem::path& temp) {
      return module.writeSvg(QString::fromStdString(temp.string()), QSize(kWidth * kDotsPerPoint, kHeight * kDotsPerPoint),
                             QRect(0, 0, kWidth, kHeight), QString::fromStdString(picture.caption), [&](QPainter& painter) {
                               paintPicture(painter, picture, QRectF(0, 0, kWidth, kHeight), paperPalette(), font);
                             });
    };
  } else if (ending == ".png") {
    write = [&](const std::filesystem::path& temp) {
      QImage image(kWidth * kDotsPerPoint, kHeight * kDotsPerPoint, QImage::Format_ARGB32);
      image.setDevicePixelRatio(kDotsPerPoint);
      QPainter painter(&image);
      paintPicture(painter, picture, QRectF(0, 0, kWidth, kHeight), paperPalette(), font);
      painter.end();
      return image.save(QString::fromStdString(temp.string()), "PNG");
    };
  } else if (ending == ".pdf") {
    write = [&](const std::filesystem::path& temp) {
      QPdfWriter pdf(QString::fromStdString(temp.string()));
      pdf.setPageSize(QPageSize(QPageSize::A4));
      pdf.setPageOrientation(QPageLayout::Landscape);
      pdf.setTitle(QString::fromStdString(picture.caption));
      QPainter painter(&pdf);
      paintOnPaper(painter, picture, QRectF(painter.viewport()), font.pointSizeF() > 0 ? font.pointSizeF() : 9);
      return painter.end();
    };
  } else {
    throw RunTimeError("Cannot write the picture \"" + file.string() + "\": name it with .svg, .png or .pdf.");
  }
  writeFileWith(file, write);
}

}  // namespace tervalo
