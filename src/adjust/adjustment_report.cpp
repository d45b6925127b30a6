#include "adjust/adjustment_report.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>

#include "cogo/cogo.h"
#include "text/format.h"
#include "text/justify.h"

namespace tervalo {
namespace {

std::string fixed(double v, const char* pattern) { return FormatShown(v, pattern); }

std::string percentText(double fraction) {
  const double percent = fraction * 100;
  return Format(percent, percent == std::round(percent) ? "0" : "0.0##") + " %";
}

const char* typeWords(ObservationType t) {
  switch (t) {
    case ObservationType::Distance: return "distances";
    case ObservationType::Slope: return "slope distances";
    case ObservationType::Angle: return "angles";
    case ObservationType::Direction: return "directions";
    case ObservationType::Azimuth: return "azimuths";
    case ObservationType::Dh: return "height differences";
  }
  return "";
}

const std::string& nameOf(const Network& n, int i) { return n.points[static_cast<std::size_t>(i)].name; }

}  // namespace

std::string adjustmentVerdict(const Network& network, const Adjustment& a) {
  std::string said = a.dof == 0 ? "No redundancy: nothing to test"
                                : std::string("Global test ") + (a.passed ? "passed" : "FAILED") + " (chi-square " + fixed(a.chiSquare, "0.00") +
                                      (a.passed ? " within " : " outside ") + fixed(a.lower, "0.00") + " to " + fixed(a.upper, "0.00") + ")";
  if (a.flagged) {
    const Observation& o = network.observations[static_cast<std::size_t>(*a.flagged - 1)];
    const AdjustedObservation& v = a.observations[static_cast<std::size_t>(*a.flagged - 1)];
    said += "; the " + observationName(network, o) + " is flagged as the likely blunder (w = " + fixed(v.standardized, "0.00") + ")";
  } else {
    said += "; no observation flagged";
  }
  const auto failed = std::count_if(a.relative.begin(), a.relative.end(), [](const RelativeEllipse& r) { return !r.passed; });
  if (!a.relative.empty())
    said += failed ? "; " + std::to_string(failed) + " of " + std::to_string(a.relative.size()) + " pairs beyond the relative precision allowed"
                   : "; every pair within the relative precision allowed";
  return said + ".";
}

std::vector<std::string> adjustmentReport(const Network& network, const Adjustment& a, const std::string& title) {
  const std::string unit = network.units == "m" ? "m" : "ft";
  std::vector<std::string> out{"                LEAST-SQUARES ADJUSTMENT", "", "  Network: " + title, "  Units: " + std::string(unit == "m" ? "metres" : "feet")};

  // What went in.
  int held = 0, weighted = 0, free = 0;
  for (const NetworkStation& p : network.points) (p.fixed ? held : (p.sigma || p.sigmaZ) ? weighted : free) += 1;
  out.push_back("  Points: " + std::to_string(network.points.size()) + " (" + std::to_string(held) + " held, " + std::to_string(weighted) +
                " weighted, " + std::to_string(free) + " free)");
  std::map<ObservationType, int> kinds;
  for (const Observation& o : network.observations) ++kinds[o.type];
  std::string list;
  for (const auto& [type, count] : kinds) list += (list.empty() ? "" : ", ") + std::to_string(count) + " " + typeWords(type);
  out.push_back("  Observations: " + std::to_string(network.observations.size()) + " (" + list + ")");
  out.emplace_back("");

  out.push_back("  STATISTICS");
  out.push_back("  Degrees of freedom " + std::to_string(a.dof) + ", " + std::to_string(a.iterations) + " iterations");
  out.push_back("  Reference variance " + fixed(a.variance, "0.0000") + " (standard deviation of unit weight " + fixed(std::sqrt(a.variance), "0.0000") +
                "; 1 a priori)");
  if (a.dof > 0)
    out.push_back("  Chi-square test at " + percentText(network.significance) + ": " + fixed(a.chiSquare, "0.000") + " against " +
                  fixed(a.lower, "0.000") + " to " + fixed(a.upper, "0.000") + ": " + (a.passed ? "passed" : "FAILED"));
  out.push_back("  Standardized residuals (Baarda's w) flagged above " + fixed(a.critical, "0.00") + " (" + percentText(network.snooping) +
                ", two-sided), the largest first, one at a time");
  out.push_back("  Standard deviations and ellipses scaled by the reference variance");
  out.emplace_back("");

  // The residuals, the largest standardized first.
  out.push_back("  RESIDUALS (seconds for angles, directions and azimuths; " + unit + " for the rest)");
  std::vector<AdjustedObservation> sorted = a.observations;
  std::stable_sort(sorted.begin(), sorted.end(), [](const auto& x, const auto& y) { return std::fabs(x.standardized) > std::fabs(y.standardized); });
  std::size_t width = 11;
  for (const Observation& o : network.observations) width = std::max(width, textLength(observationName(network, o)) + 2);
  out.push_back("  " + leftJustify("Observation", static_cast<int>(width)) + rightJustify("Residual", 10) + rightJustify("w", 8) +
                rightJustify("Redund", 8));
  for (const AdjustedObservation& o : sorted)
    out.push_back("  " + leftJustify(observationName(network, network.observations[static_cast<std::size_t>(o.place - 1)]), static_cast<int>(width)) +
                  rightJustify(fixed(o.residual, "0.0000"), 10) + rightJustify(fixed(o.standardized, "0.00"), 8) +
                  rightJustify(fixed(o.redundancy, "0.00"), 8) + (o.flagged ? "  << likely blunder" : ""));
  out.emplace_back("");

  std::size_t name = 7;
  for (const AdjustedPoint& p : a.points) name = std::max(name, textLength(p.name) + 2);
  if (std::any_of(a.points.begin(), a.points.end(), [](const AdjustedPoint& p) { return p.northing.has_value(); })) {
    out.push_back("  ADJUSTED COORDINATES (95 % ellipse: semi-axes and the azimuth of the major)");
    out.push_back("  " + leftJustify("Point", static_cast<int>(name)) + rightJustify("Northing", 14) + rightJustify("Easting", 14) +
                  rightJustify("sN", 9) + rightJustify("sE", 9) + rightJustify("a", 9) + rightJustify("b", 9) + rightJustify("Azimuth", 12));
    for (const AdjustedPoint& p : a.points) {
      if (!p.northing) continue;
      std::string line = "  " + leftJustify(p.name, static_cast<int>(name)) + rightJustify(fixed(*p.northing, "0.0000"), 14) +
                         rightJustify(fixed(*p.easting, "0.0000"), 14);
      if (p.moved && p.sn + p.se > 0)
        line += rightJustify(fixed(p.sn, "0.0000"), 9) + rightJustify(fixed(p.se, "0.0000"), 9) + rightJustify(fixed(p.ellipse95.a, "0.0000"), 9) +
                rightJustify(fixed(p.ellipse95.b, "0.0000"), 9) + rightJustify(angleText(p.ellipse95.azimuth, 0), 12);
      else
        line += "    held";
      out.push_back(line);
    }
    out.emplace_back("");
  }
  if (std::any_of(a.points.begin(), a.points.end(), [](const AdjustedPoint& p) { return p.elevation.has_value(); })) {
    out.push_back("  ADJUSTED ELEVATIONS");
    out.push_back("  " + leftJustify("Point", static_cast<int>(name)) + rightJustify("Elevation", 14) + rightJustify("sZ", 9));
    for (const AdjustedPoint& p : a.points)
      if (p.elevation)
        out.push_back("  " + leftJustify(p.name, static_cast<int>(name)) + rightJustify(fixed(*p.elevation, "0.0000"), 14) +
                      (p.sz ? rightJustify(fixed(*p.sz, "0.0000"), 9) : std::string("    held")));
    out.emplace_back("");
  }
  if (!a.relative.empty()) {
    out.push_back("  RELATIVE PRECISION (95 % relative ellipse against 0.07 ft or 2 cm plus 50 ppm)");
    out.push_back("  " + leftJustify("From", static_cast<int>(name)) + leftJustify("To", static_cast<int>(name)) + rightJustify("a", 9) +
                  rightJustify("b", 9) + rightJustify("Azimuth", 12) + rightJustify("Allowed", 10) + "  Result");
    for (const RelativeEllipse& r : a.relative)
      out.push_back("  " + leftJustify(nameOf(network, r.from), static_cast<int>(name)) + leftJustify(nameOf(network, r.to), static_cast<int>(name)) +
                    rightJustify(fixed(r.ellipse95.a, "0.0000"), 9) + rightJustify(fixed(r.ellipse95.b, "0.0000"), 9) +
                    rightJustify(angleText(r.ellipse95.azimuth, 0), 12) + rightJustify(fixed(r.allowed, "0.0000"), 10) +
                    (r.passed ? "  passed" : "  FAILED"));
    out.emplace_back("");
  }
  const bool good = a.passed && !a.flagged;
  out.push_back(good ? "  The network passed its tests."
                     : "  The network did NOT pass: look at the flagged observation, remove or reweight it, and adjust again.");
  return out;
}

Picture networkPicture(const Network& network, const Adjustment& a) {
  Picture p;
  p.mapUnits = network.units == "m" ? "m" : "ft";
  const auto at = [&](int i) -> std::optional<PicturePoint> {
    const AdjustedPoint& q = a.points[static_cast<std::size_t>(i)];
    if (!q.northing) return std::nullopt;
    return PicturePoint{*q.easting, *q.northing};
  };
  const auto line = [&](int from, int to, const Observation& o) {
    const auto x = at(from), y = at(to);
    if (!x || !y) return;
    const bool flagged = a.flagged && *a.flagged == o.place;
    PictureLine l{{*x, *y}, flagged ? Ink::Alert : Ink::Quiet, o.type == ObservationType::Direction || o.type == ObservationType::Azimuth};
    l.heavy = flagged;
    l.tip = observationName(network, o);
    p.lines.push_back(std::move(l));
  };
  for (const Observation& o : network.observations) {
    if (o.type == ObservationType::Dh) continue;
    if (o.type == ObservationType::Angle) {
      line(o.at, o.back, o);
      line(o.at, o.fore, o);
    } else {
      line(o.from, o.to, o);
    }
  }
  // The enlargement: a round factor that makes the largest ellipse about a tenth of the network.
  double minX = 1e300, maxX = -1e300, minY = 1e300, maxY = -1e300, largest = 0;
  for (std::size_t i = 0; i < a.points.size(); ++i)
    if (const auto q = at(static_cast<int>(i))) {
      minX = std::min(minX, q->x), maxX = std::max(maxX, q->x), minY = std::min(minY, q->y), maxY = std::max(maxY, q->y);
      if (a.points[i].moved) largest = std::max(largest, a.points[i].ellipse95.a);
    }
  const double extent = std::max(maxX - minX, maxY - minY);
  double enlarge = 1;
  if (largest > 0 && extent > 0) {
    const double wanted = extent / 10 / largest;
    const double decade = std::pow(10.0, std::floor(std::log10(wanted)));
    for (double step : {1.0, 2.0, 5.0, 10.0})
      if (step * decade <= wanted) enlarge = step * decade;
  }
  for (std::size_t i = 0; i < a.points.size(); ++i) {
    const auto q = at(static_cast<int>(i));
    if (!q) continue;
    const AdjustedPoint& s = a.points[i];
    PictureMark m = cornerMark(*q, s.moved ? CornerKind::Computed : CornerKind::Entered);
    m.tip = s.name + (s.moved ? "  sN " + fixed(s.sn, "0.0000") + "  sE " + fixed(s.se, "0.0000") : "  held");
    p.marks.push_back(m);
    p.texts.push_back({*q, s.name, Ink::Main, Place::AboveRight});
    if (!s.moved || s.ellipse95.a <= 0) continue;
    PictureLine e;
    e.ink = Ink::Accent;
    e.tip = s.name + ": 95 % ellipse " + fixed(s.ellipse95.a, "0.0000") + " by " + fixed(s.ellipse95.b, "0.0000");
    const double theta = s.ellipse95.azimuth * std::numbers::pi / 180;  // of the major axis, from north
    for (int k = 0; k <= 72; ++k) {
      const double t = 2 * std::numbers::pi * k / 72;
      const double major = s.ellipse95.a * enlarge * std::cos(t), minor = s.ellipse95.b * enlarge * std::sin(t);
      // The major axis along the azimuth (east = sin, north = cos), the minor across it.
      e.points.push_back({q->x + major * std::sin(theta) + minor * std::cos(theta), q->y + major * std::cos(theta) - minor * std::sin(theta)});
    }
    p.lines.push_back(std::move(e));
  }
  p.caption = "95 % error ellipses enlarged " + Format(enlarge, "#,##0") + " times";
  if (p.empty()) p.hint = "A levelling network: nothing to draw in plan.";
  return p;
}

std::vector<ProjectPoint> adjustedPoints(const Adjustment& a, const std::string& source) {
  std::vector<ProjectPoint> out;
  for (const AdjustedPoint& p : a.points) {
    if (!p.moved || !p.northing) continue;
    ProjectPoint q;
    q.number = p.name;
    q.northing = *p.northing;
    q.easting = *p.easting;
    q.elevation = p.elevation;
    q.description = "ADJUSTED";
    q.feature = "CTRL";
    q.source = source;
    out.push_back(q);
  }
  return out;
}

}  // namespace tervalo
