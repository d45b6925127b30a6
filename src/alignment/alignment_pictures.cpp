#include "alignment/alignment_pictures.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "text/format.h"

namespace tervalo {

Picture planPicture(const Alignment& a, std::optional<PicturePoint> asked) {
  Picture p;
  p.mapUnits = a.input().units == "m" ? "m" : "ft";
  for (const Element& e : a.elements()) {
    PictureLine l;
    l.tip = e.kind == ElementKind::Line ? "tangent" : e.kind == ElementKind::Arc ? "circular curve" : "spiral";
    const int pieces = e.kind == ElementKind::Line ? 1 : std::max(24, static_cast<int>(e.length / 10));
    for (int i = 0; i <= pieces; ++i) {
      const Pose q = poseOn(e, e.length * i / pieces);
      l.points.push_back({q.easting, q.northing});
    }
    l.heavy = e.kind != ElementKind::Line;
    p.lines.push_back(std::move(l));
  }
  // A short tick across the line at every full station, labelled where there is room.
  const double step = 100, tick = std::max(1.0, a.length() / 150);
  for (double s = std::ceil(a.stationAt(0) / step - 1e-9) * step; s <= a.stationAt(a.length()) + 1e-9; s += step) {
    double along = 0;
    try {
      along = a.alongAt(s);
    } catch (const AlignmentError&) {
      continue;
    }
    const Pose l = a.at(along, -tick), r = a.at(along, tick);
    p.lines.push_back({{{l.easting, l.northing}, {r.easting, r.northing}}, Ink::Quiet});
    std::string text = a.stationText(s);
    PictureText t{{l.easting, l.northing}, text.substr(0, text.find('+') + 3), Ink::Quiet, Place::Left};
    t.ifRoom = true;
    p.texts.push_back(t);
  }
  for (const KeyPoint& k : a.keyPoints()) {
    PictureMark m = markAt({k.easting, k.northing}, Ink::Accent);
    m.tip = k.name + " " + a.stationText(a.stationAt(k.along));
    p.marks.push_back(m);
    PictureText t{{k.easting, k.northing}, k.name, Ink::Accent, Place::Right};
    t.ifRoom = true;
    p.texts.push_back(t);
  }
  if (asked) {
    PictureMark m = markAt(*asked, Ink::Alert);
    m.shape = Shape::Diamond;
    m.filled = true;
    m.tip = "the point asked about";
    p.marks.push_back(m);
  }
  p.caption = "Plan: " + a.stationText(a.stationAt(0)) + " to " + a.stationText(a.stationAt(a.length())) + ", " + std::to_string(a.keyPoints().size()) +
              " key points";
  return p;
}

Picture profilePicture(const Alignment& a, const Profile& profile) {
  Picture p;
  const std::vector<double>& along = profile.vpiAlong();
  double low = 1e300, high = -1e300;
  for (const Vpi& v : profile.vpis()) low = std::min(low, v.elevation), high = std::max(high, v.elevation);
  const double run = along.back() - along.front();
  const double exaggeration = verticalExaggeration(run, std::max(high - low, 1e-6));
  const auto at = [&](double s, double z) { return PicturePoint{s, (z - low) * exaggeration}; };
  PictureLine grades;
  grades.ink = Ink::Quiet;
  grades.dashed = true;
  grades.tip = "grade lines through the VPIs";
  for (std::size_t i = 0; i < along.size(); ++i) grades.points.push_back(at(along[i], profile.vpis()[i].elevation));
  p.lines.push_back(grades);
  PictureLine finished;
  finished.heavy = true;
  finished.tip = "the profile";
  const int pieces = 400;
  for (int i = 0; i <= pieces; ++i) {
    const double s = along.front() + run * i / pieces;
    finished.points.push_back(at(s, profile.at(s).elevation));
  }
  p.lines.push_back(finished);
  for (std::size_t i = 0; i < along.size(); ++i) {
    const Vpi& v = profile.vpis()[i];
    PictureMark m = markAt(at(along[i], v.elevation), Ink::Accent);
    m.tip = "VPI " + std::to_string(i + 1) + " " + a.stationText(v.station) + "  " + Format(v.elevation, "0.000");
    p.marks.push_back(m);
    PictureText t{at(along[i], v.elevation), "VPI " + std::to_string(i + 1), Ink::Accent, Place::Above};
    t.ifRoom = true;
    p.texts.push_back(t);
  }
  for (const VerticalCurveData& c : profile.curves())
    if (c.turning) {
      PictureMark m = markAt(at(*c.turning, *c.turningElevation), Ink::Main);
      m.shape = Shape::Diamond;
      m.tip = std::string(c.g1 > 0 ? "high" : "low") + " point " + a.stationText(a.stationAt(*c.turning)) + "  " + Format(*c.turningElevation, "0.000");
      p.marks.push_back(m);
    }
  p.caption = "Profile: vertical scale " + Format(exaggeration, "0") + " times the horizontal";
  return p;
}

}  // namespace tervalo
