#include "township/township_map.h"

#include <cmath>
#include <map>

#include "text/format.h"

namespace tervalo {
namespace {

std::string feet(double v) { return Format(v, "0.00"); }

PicturePoint at(const MapPoint& p) { return {p.x, p.y}; }

// Whether (x, y) lies inside the polygon `ring` (crossings of a ray east).
bool inside(const std::vector<std::pair<double, double>>& ring, double x, double y) {
  bool in = false;
  for (std::size_t i = 0, j = ring.size() - 1; i < ring.size(); j = i++) {
    const auto [xi, yi] = ring[i];
    const auto [xj, yj] = ring[j];
    if ((yi > y) != (yj > y) && x < (xj - xi) * (y - yi) / (yj - yi) + xi) in = !in;
  }
  return in;
}

}  // namespace

Picture townshipMap(const TownshipOutcome& out, int selectedRow) {
  Picture p;
  if (out.map.points.empty()) {
    p.hint = "The map of the township appears here after Run.";
    return p;
  }
  p.mapUnits = "ft";
  // The quarter and sixteenth lines; the section lines come as the sections' outlines.
  for (const MapLine& l : out.map.lines) {
    if (l.feature == "SEC") continue;
    const MapPoint &a = out.map.points[l.from], &b = out.map.points[l.to];
    const bool quarter = l.feature == "EWQ" || l.feature == "NSQ";
    p.lines.push_back({{at(a), at(b)}, quarter ? Ink::Accent : Ink::Quiet, !quarter, false,
                       a.number + " - " + b.number + ": " + feet(std::hypot(b.x - a.x, b.y - a.y)) + " ft"});
  }
  for (const SectionOutline& o : out.outlines) {
    PictureLine outline{{}, o.row == selectedRow ? Ink::Accent : Ink::Main, false, true, "Section " + o.section + " (row " +
                                                                                          std::to_string(o.row + 1) + ")"};
    for (const auto& [x, y] : o.boundary) outline.points.push_back({x, y});
    outline.points.push_back(outline.points.front());
    p.lines.push_back(std::move(outline));
    // Its number inside it, as a plat writes it, clear of every corner.
    PictureText number{{o.labelSpots[0].first, o.labelSpots[0].second}, o.section, o.row == selectedRow ? Ink::Accent : Ink::Main,
                       Place::Centre};
    for (std::size_t i = 1; i < o.labelSpots.size(); ++i) number.elsewhere.push_back({o.labelSpots[i].first, o.labelSpots[i].second});
    p.texts.push_back(std::move(number));
  }
  std::map<std::string, double> apart;  // the disagreeing corners by name
  for (const Disagreement& d : out.disagreements) apart[d.name] = d.difference;
  // Each corner by its status, its number beside it where there is room.
  for (const MapPoint& c : out.map.points) {
    PictureMark m = cornerMark(at(c), c.status == "restored"   ? CornerKind::Restored
                                      : c.status == "computed" ? CornerKind::Computed
                                                               : CornerKind::Entered);
    m.tip = c.name + (c.number.empty() ? "" : "  point " + c.number);
    for (std::size_t i = 0; i < c.otherNumbers.size(); ++i) m.tip += (i == 0 ? " (also " : " ") + c.otherNumbers[i];
    if (!c.otherNumbers.empty()) m.tip += ")";
    m.tip += "\n" + c.description + (c.evidence.empty() ? "" : "\nFound: " + c.evidence) + "\nX " + Format(c.x, "0.0000") +
             "  Y " + Format(c.y, "0.0000") + "\n" + c.status + (c.rule.empty() ? "" : ": " + c.rule);
    if (const auto a = apart.find(c.name); a != apart.end())
      m.tip += "\nThe sections put it " + Format(a->second, "0.000") + " ft apart.";
    p.marks.push_back(std::move(m));
    PictureText label{at(c), c.number.empty() ? c.name : c.number, Ink::Main, Place::AboveRight};
    label.ifRoom = true;
    p.texts.push_back(std::move(label));
  }
  // The corners two sections put apart: ringed, the difference beside them.
  std::map<std::string, std::size_t> byName;
  for (std::size_t i = 0; i < out.map.points.size(); ++i) byName.emplace(out.map.points[i].name, i);
  for (const Disagreement& d : out.disagreements) {
    const MapPoint& c = out.map.points[byName.at(d.name)];
    PictureMark ring = markAt(at(c), Ink::Alert);
    ring.radius = 11;  // its corner's tip tells of it
    p.marks.push_back(std::move(ring));
    p.texts.insert(p.texts.begin(), {at(c), Format(d.difference, "0.000") + " ft", Ink::Alert, Place::Right});
  }
  p.caption = out.map.title + "\n" + cornerLegend() + "   \u25EF apart by more than " +
              Format(kAgreement, "0.00") + " ft";
  return p;
}

MapPick pickOnMap(const TownshipOutcome& out, double x, double y, double tolerance) {
  MapPick pick;
  double best = tolerance;
  for (std::size_t i = 0; i < out.disagreements.size(); ++i)
    for (const MapPoint& c : out.map.points)
      if (c.name == out.disagreements[i].name && std::hypot(c.x - x, c.y - y) <= best) {
        best = std::hypot(c.x - x, c.y - y);
        pick.disagreement = i;
      }
  for (const SectionOutline& o : out.outlines)
    if (o.boundary.size() >= 3 && inside(o.boundary, x, y)) pick.row = o.row;
  if (pick.disagreement) {
    // A disagreement picks the row of the first section that placed it.
    const std::string& section = out.disagreements[*pick.disagreement].positions.front().section;
    for (const SectionOutline& o : out.outlines)
      if (o.section == section) pick.row = o.row;
  }
  return pick;
}

}  // namespace tervalo
