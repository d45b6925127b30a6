// tervalo_icon_png SVG FOLDER SIZE...: the program's icon as one PNG per size
// (FOLDER/SIZE.png), made at build time so that the program itself needs no
// SVG renderer to show its windows' icon.

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <cstdio>

int main(int argc, char** argv) {
  if (argc < 4) {
    std::fprintf(stderr, "usage: tervalo_icon_png SVG FOLDER SIZE...\n");
    return 2;
  }
  QGuiApplication app(argc, argv);
  QSvgRenderer svg(QString::fromLocal8Bit(argv[1]));
  if (!svg.isValid()) {
    std::fprintf(stderr, "tervalo_icon_png: %s is not a drawing\n", argv[1]);
    return 1;
  }
  for (int i = 3; i < argc; ++i) {
    const int size = QByteArray(argv[i]).toInt();
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    svg.render(&painter);
    painter.end();
    const QString file = QString::fromLocal8Bit(argv[2]) + "/" + QString::number(size) + ".png";
    if (size <= 0 || !image.save(file, "PNG")) {
      std::fprintf(stderr, "tervalo_icon_png: cannot write %s\n", qPrintable(file));
      return 1;
    }
  }
  return 0;
}
