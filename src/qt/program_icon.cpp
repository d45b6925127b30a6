#include "qt/program_icon.h"

#include <QIconEngine>
#include <QPainter>
#include <QPixmap>
#include <array>
#include <map>

namespace tervalo {
namespace {

// The sizes drawn at build time, ascending, as the build lists them.
constexpr std::array kSizes{TERVALO_ICON_SIZES};

class ProgramIconEngine : public QIconEngine {
 public:
  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    const int wanted = std::max(size.width(), size.height());
    // The smallest drawing at least as large, else the largest, scaled to fit.
    int chosen = kSizes.back();
    for (int s : kSizes)
      if (s >= wanted) {
        chosen = s;
        break;
      }
    QPixmap& drawn = read_[chosen];
    if (drawn.isNull()) drawn.load(QString(":/icons/%1.png").arg(chosen), "PNG");
    QPixmap result = drawn.size() == size ? drawn : drawn.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    if (mode == QIcon::Disabled) {
      QPixmap faded(result.size());
      faded.fill(Qt::transparent);
      QPainter painter(&faded);
      painter.setOpacity(0.4);
      painter.drawPixmap(0, 0, result);
      return faded;
    }
    (void)state;
    return result;
  }
  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
    painter->drawPixmap(rect, pixmap(rect.size(), mode, state));
  }
  QSize actualSize(const QSize& size, QIcon::Mode, QIcon::State) override {
    const int side = std::min({size.width(), size.height(), kSizes.back()});
    return {side, side};
  }
  QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override {
    QList<QSize> sizes;
    for (int s : kSizes) sizes << QSize(s, s);
    return sizes;
  }
  QString key() const override { return "tervalo"; }
  QIconEngine* clone() const override { return new ProgramIconEngine(*this); }

 private:
  std::map<int, QPixmap> read_;
};

}  // namespace

QIcon programIcon() { return QIcon(new ProgramIconEngine); }

}  // namespace tervalo
