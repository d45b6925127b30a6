#include "grading/grade_sketch.h"

#include <algorithm>
#include <cmath>

#include "text/format.h"
#include "text/number.h"

namespace tervalo {
GradeSketch gradingSketch(const GradingInput& in, const GradingResult& r) {
  GradeSketch s;
  const double hand = in.side == "Left" ? -1 : 1;
  // Both outlines with their elevations, before any exaggeration.
  auto outline = [](double startElev, const std::vector<Segment>& segments) {
    std::vector<PicturePoint> points{{0, startElev}};
    for (const Segment& g : segments) points.push_back({points.back().x + g.width, points.back().y + g.slope * g.width});
    return points;
  };
  // The subgrade from the elevation the result worked with (0 when blank, as the window shows it).
  const double subStart = in.subElev;
  std::vector<PicturePoint> finished = outline(in.clElev, in.finished), subgrade = outline(subStart, in.subgrade);
  const PicturePoint shoulder{r.ptAoffset, r.ptBelev};
  const PicturePoint pi{r.grdOffset, r.grdElev};

  double minX = 0, maxX = 1, minY = in.clElev, maxY = in.clElev;
  auto extent = [&](const PicturePoint& p) {
    minX = std::min(minX, p.x), maxX = std::max(maxX, p.x), minY = std::min(minY, p.y), maxY = std::max(maxY, p.y);
  };
  for (const auto& p : finished) extent(p);
  for (const auto& p : subgrade) extent(p);
  if (!r.parallel) extent(pi);
  if (r.meetDiffers) extent({r.meetOffset, r.meetElev});
  // Elevations drawn taller, so that a section some feet deep and many wide fills the picture.
  s.exaggeration = verticalExaggeration(maxX - minX, maxY - minY);
  auto drawn = [&](PicturePoint p) { return PicturePoint{hand * p.x, (p.y - minY) * s.exaggeration}; };
  auto line = [&](std::vector<PicturePoint> points, Ink ink, bool dashed) {
    for (auto& p : points) p = drawn(p);
    s.picture.lines.push_back({points, ink, dashed});
  };
  line(finished, Ink::Main, false);
  line(subgrade, Ink::Accent, false);
  line({finished.back(), shoulder}, Ink::Quiet, false);  // the topsoil at the shoulder
  line({{0, minY}, {0, std::max(maxY, in.clElev)}}, Ink::Quiet, true);  // the centerline
  s.picture.texts.push_back({drawn({0, in.clElev}), "CL " + Format(in.clElev, "#0.000"), Ink::Main, Place::Above});
  // What each outline is, written along its first segment.
  auto middle = [](const std::vector<PicturePoint>& points) {
    return PicturePoint{(points[0].x + points[1].x) / 2, (points[0].y + points[1].y) / 2};
  };
  if (finished.size() > 1) s.picture.texts.push_back({drawn(middle(finished)), "Finished", Ink::Quiet, Place::Above});
  if (subgrade.size() > 1) s.picture.texts.push_back({drawn(middle(subgrade)), "Subgrade", Ink::Accent, Place::Below});
  if (in.topSoil != 0) s.picture.texts.push_back({drawn(shoulder), "Topsoil", Ink::Quiet, Place::Right});
  if (!r.parallel) {
    line({shoulder, pi}, Ink::Main, true);
    line({subgrade.back(), pi}, Ink::Accent, true);
    s.picture.marks.push_back(markAt(drawn(pi)));
    s.picture.texts.push_back({drawn(pi), "P.I. " + Format(std::fabs(r.grdOffset), "#0.000") + " / " + Format(r.grdElev, "#0.000"),
                               Ink::Main, r.meetDiffers ? Place::Above : Place::Below});
  }
  if (r.meetDiffers) {
    // Where the slopes really meet, when the subgrade's outer point is not at the shoulder's offset.
    const PicturePoint meet{r.meetOffset, r.meetElev};
    line({subgrade.back(), meet}, Ink::Alert, true);
    s.picture.marks.push_back(markAt(drawn(meet), Ink::Alert));
    s.picture.texts.push_back({drawn(meet), "Slopes meet " + Format(std::fabs(r.meetOffset), "#0.000") + " / " +
                                                Format(r.meetElev, "#0.000"),
                               Ink::Alert, Place::Below});
  }
  s.picture.caption = in.side + " side, vertical scale " + CStr(s.exaggeration) + " times the horizontal";
  return s;
}

}  // namespace tervalo
