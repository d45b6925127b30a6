#include "vcurve/profile_sketch.h"

#include <algorithm>
#include <cmath>

#include "text/format.h"
#include "text/number.h"
#include "text/station.h"

namespace tervalo {
namespace {

// A round step for about `count` labels over `span`: 1, 2, 2.5 or 5 times a power of ten.
double roundStep(double span, int count) {
  const double raw = std::max(span / count, 1e-9);
  const double power = std::pow(10.0, std::floor(std::log10(raw)));
  for (double f : {1.0, 2.0, 2.5, 5.0, 10.0})
    if (f * power >= raw) return f * power;
  return 10 * power;
}

}  // namespace

ProfileSketch profileSketch(const ProfileInput& in) {
  ProfileSketch s;
  const VerticalCurve& c = in.curve;
  const char* mask = stationMask(in.metric);
  const double shift = in.equation ? in.equation->second - in.equation->first : 0;

  // Listed stations on the drawing's one running station: those after the
  // equation's OUT are taken back by the equation's shift.
  std::vector<double> ticks;
  bool afterEquation = false;
  for (const ListingRow& row : in.listed) {
    if (row.banner.find("EQUATION OUT") != std::string::npos) afterEquation = true;
    if (row.station.find('+') == std::string::npos) continue;
    const double station = stationToNumber(row.station).number;
    ticks.push_back(afterEquation ? station - shift : station);
  }
  double first = c.pvc - c.length / 4, last = c.pvt + c.length / 4;
  for (double t : ticks) first = std::min(first, t), last = std::max(last, t);

  auto grade = [&c](double x) { return calcCurveElev(c, x).elevation; };
  double low = std::min({grade(first), grade(last), c.pviElev, c.pvcElev, c.pvtElev});
  double high = std::max({grade(first), grade(last), c.pviElev, c.pvcElev, c.pvtElev});
  for (double offset : in.profiles)
    if (offset != 0) low = std::min(low, low + offset), high = std::max(high, high + offset);
  s.exaggeration = verticalExaggeration(last - first, high - low);
  const double base = low - (high - low) * 0.1 - 1e-6;
  auto at = [&](double x, double elev) { return PicturePoint{x, (elev - base) * s.exaggeration}; };
  auto stationText = [&](double x) { return Format(in.equation && x >= in.equation->first ? x + shift : x, mask); };
  auto label = [&](const char* name, double x, double elev) {
    return std::string(name) + " " + stationText(x) + " / " + Format(elev, "#0.000");
  };

  // The profile itself: tangents outside the curve, the parabola on it.
  PictureLine entry{{at(first, grade(first)), at(c.pvc, c.pvcElev)}, Ink::Main, false};
  PictureLine exit{{at(c.pvt, c.pvtElev), at(last, grade(last))}, Ink::Main, false};
  PictureLine parabola{{}, Ink::Accent, false};
  constexpr int kSteps = 64;
  for (int i = 0; i <= kSteps; ++i) {
    const double x = c.pvc + c.length * i / kSteps;
    parabola.points.push_back(at(x, grade(x)));
  }
  s.picture.lines.push_back(entry);
  s.picture.lines.push_back(exit);
  s.picture.lines.push_back(parabola);
  // The tangents carried on to the PVI, as built lines are not.
  s.picture.lines.push_back({{at(c.pvc, c.pvcElev), at(c.pvi, c.pviElev), at(c.pvt, c.pvtElev)}, Ink::Quiet, true});
  for (std::size_t k = 0; k < in.profiles.size(); ++k) {
    if (in.profiles[k] == 0) continue;
    PictureLine parallel{{}, Ink::Quiet, true};
    for (int i = 0; i <= kSteps; ++i) {
      const double x = first + (last - first) * i / kSteps;
      parallel.points.push_back(at(x, grade(x) + in.profiles[k]));
    }
    s.picture.texts.push_back({parallel.points.back(), "Profile " + std::to_string(k + 1), Ink::Quiet, Place::Right});
    s.picture.lines.push_back(parallel);
  }

  struct Key {
    const char* name;
    double x, elev;
    Place place;
  };
  const bool sag = c.g1 < c.g2;
  for (const Key& k : {Key{"PVC", c.pvc, c.pvcElev, Place::Left}, Key{"PVI", c.pvi, c.pviElev, sag ? Place::Below : Place::Above},
                       Key{"PVT", c.pvt, c.pvtElev, Place::Right}}) {
    s.picture.marks.push_back(markAt(at(k.x, k.elev)));
    s.picture.texts.push_back({at(k.x, k.elev), label(k.name, k.x, k.elev), Ink::Main, k.place});
  }
  if (c.hasMin || c.hasMax) {
    s.picture.marks.push_back(markAt(at(c.turningStation, c.turningElev), Ink::Accent));
    s.picture.texts.push_back({at(c.turningStation, c.turningElev), label(c.hasMin ? "Low" : "High", c.turningStation, c.turningElev),
                               Ink::Accent, c.hasMin ? Place::Above : Place::Below});
  }

  // Every listed station as a short tick across the profile.
  const double tick = (high - low) * 0.04 + 1e-6;
  for (double x : ticks) s.picture.lines.push_back({{at(x, grade(x) - tick), at(x, grade(x) + tick)}, Ink::Quiet, false});

  // The axes: stations along the bottom, elevations up the left. Their
  // labels take their places first; the curve's labels find room around them.
  std::vector<PictureText> axisTexts;
  s.picture.lines.push_back({{at(first, base), at(last, base)}, Ink::Quiet, false});
  s.picture.lines.push_back({{at(first, base), at(first, high)}, Ink::Quiet, false});
  const double stationStep = roundStep(last - first, 5);
  for (double x = std::ceil(first / stationStep) * stationStep; x <= last; x += stationStep) {
    s.picture.lines.push_back({{at(x, base), at(x, base + tick)}, Ink::Quiet, false});
    axisTexts.push_back({at(x, base), stationText(x), Ink::Quiet, Place::Below});
  }
  const double elevStep = roundStep(high - base, 4);
  for (double e = std::ceil(base / elevStep) * elevStep; e <= high; e += elevStep)
    axisTexts.push_back({at(first, e), Format(e, "#0.0##"), Ink::Quiet, Place::Left});
  if (in.equation) {
    const double x = in.equation->first;
    s.picture.lines.push_back({{at(x, base), at(x, high)}, Ink::Quiet, true});
    axisTexts.push_back({at(x, high), "Equation " + Format(in.equation->first, mask) + " = " + Format(in.equation->second, mask),
                         Ink::Quiet, Place::Above});
  }
  s.picture.texts.insert(s.picture.texts.begin(), axisTexts.begin(), axisTexts.end());
  s.picture.caption = std::string(sag ? "Sag" : "Crest") + " curve, vertical scale " + CStr(s.exaggeration) +
                      " times the horizontal";
  return s;
}

}  // namespace tervalo
