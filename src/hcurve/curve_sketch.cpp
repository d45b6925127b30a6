#include "hcurve/curve_sketch.h"

#include <cmath>
#include <initializer_list>

namespace tervalo {

Picture curveSketch(const CurveElements& e, const SketchLabels& labels) {
  Picture p;
  const double delta = e.delta * 3.14159265358979 / 180;  // the curve's turn, in radians
  const double R = e.radius, T = e.tangent;
  // The long chord level, PC on the left: the tangents meet above it at the
  // PI and the arc bows up between them.
  const double half = delta / 2;
  const PicturePoint pc{0, 0}, pi{T * std::cos(half), T * std::sin(half)}, pt{2 * T * std::cos(half), 0};
  const PicturePoint center{pt.x / 2, pi.y - R / std::cos(half)};
  PictureLine arc{{}, Ink::Accent, false};
  constexpr int kSteps = 64;
  for (int i = 0; i <= kSteps; ++i) {
    const double a = -half + delta * i / kSteps;  // from the PC round to the PT
    arc.points.push_back({center.x + R * std::sin(a), center.y + R * std::cos(a)});
  }
  const PicturePoint middle{center.x, center.y + R};
  const PicturePoint chordMiddle{pt.x / 2, 0};
  p.lines.push_back({{pc, pi}, Ink::Main, false});   // back tangent
  p.lines.push_back({{pi, pt}, Ink::Main, false});   // forward tangent
  p.lines.push_back(arc);
  p.lines.push_back({{pc, pt}, Ink::Quiet, true});               // long chord
  p.lines.push_back({{pi, middle}, Ink::Quiet, true});           // external
  p.lines.push_back({{chordMiddle, middle}, Ink::Quiet, true});  // middle ordinate
  struct Key {
    PicturePoint at;
    const char* name;
    const std::string& station;
    Place place;
  };
  for (const Key& k : {Key{pc, "PC", labels.pc, Place::Below}, Key{pi, "PI", labels.pi, Place::Above},
                       Key{pt, "PT", labels.pt, Place::Below}}) {
    p.marks.push_back(markAt(k.at));
    p.texts.push_back({k.at, k.station.empty() ? std::string(k.name) : std::string(k.name) + " " + k.station, Ink::Main, k.place});
  }
  // On either side of the middle ordinate line, so that the two never read as one word.
  p.texts.push_back({{(pi.x + middle.x) / 2, (pi.y + middle.y) / 2}, "E", Ink::Quiet, Place::Right});
  p.texts.push_back({{(chordMiddle.x + middle.x) / 2, (chordMiddle.y + middle.y) / 2}, "M", Ink::Quiet, Place::Left});
  p.caption = "\u0394 " + labels.delta + "   R " + labels.radius;
  return p;
}

}  // namespace tervalo
