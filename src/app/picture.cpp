#include "app/picture.h"

#include <algorithm>
#include <cmath>

namespace tervalo {

PictureMark cornerMark(PicturePoint at, CornerKind kind) {
  PictureMark m = markAt(at, kind == CornerKind::Restored ? Ink::Accent : kind == CornerKind::Computed ? Ink::Quiet : Ink::Main);
  m.shape = kind == CornerKind::Restored ? Shape::Diamond : kind == CornerKind::Computed ? Shape::Circle : Shape::Square;
  m.filled = kind != CornerKind::Computed;
  m.radius = 4.5;
  return m;
}

std::string cornerLegend(bool restored) {
  return restored ? "\u25A0 entered   \u25CB computed   \u25C6 restored" : "\u25A0 entered   \u25CB computed";
}

double verticalExaggeration(double run, double rise) {
  const double wanted = run / 2.5 / std::max(rise, 1e-6);
  double f = 1;
  for (int i = 0; f < wanted && i < 30; ++i) f *= (i % 3 == 1) ? 2.5 : 2;
  return f;
}

double scaleBarLength(double width) {
  const double most = std::max(width, 1e-9) / 4;
  const double decade = std::pow(10.0, std::floor(std::log10(most)));
  for (double step : {5.0, 2.0, 1.0})
    if (step * decade <= most * (1 + 1e-12)) return step * decade;
  return decade;
}

}  // namespace tervalo
