#include "traverse/traverse_report.h"

#include <algorithm>
#include <cmath>

#include "crs/ground.h"
#include "points/readers.h"
#include "project/point_import.h"
#include "text/angle.h"
#include "text/errors.h"
#include "text/format.h"
#include "text/justify.h"
#include "traverse/traverse_file.h"

namespace tervalo {
namespace {

using Json = nlohmann::ordered_json;

std::string fixed(double v, const char* pattern) { return FormatShown(v, pattern); }

std::string coordinate(double v) { return fixed(v, "0.0000"); }
std::string length(double v) { return fixed(v, "0.000"); }
std::string withSign(const std::string& text) { return text[0] == '-' ? text : "+" + text; }
std::string signedLength(double v) { return withSign(fixed(v, "0.000")); }
std::string seconds(double v) { return withSign(fixed(v, "0.0")) + "\""; }

std::string grouped(double v) { return tervalo::grouped(std::llround(v)); }

const char* ruleWords(AdjustRule rule) {
  switch (rule) {
    case AdjustRule::None: return "none: the coordinates as measured, the angles balanced";
    case AdjustRule::Transit: return "transit rule: corrections in proportion to the latitudes and departures";
    case AdjustRule::Crandall: return "Crandall's method: the directions held, the distances adjusted by least squares";
    case AdjustRule::LeastSquares: return "least squares: every observation weighted by its standard error";
    case AdjustRule::Compass: break;
  }
  return "compass rule: corrections in proportion to the course lengths";
}

const char* ruleTitle(AdjustRule rule) {
  switch (rule) {
    case AdjustRule::None: return "not adjusted";
    case AdjustRule::Transit: return "transit rule";
    case AdjustRule::Crandall: return "Crandall's method";
    case AdjustRule::LeastSquares: return "least squares";
    case AdjustRule::Compass: break;
  }
  return "compass rule";
}

// Each course's combined factor (1:4:1 over its ends and middle where the
// measured traverse puts them) and each side shot's at its station.
void reduceToGrid(TraverseInput& in, const TraverseResult& measured) {
  if (in.crs.none()) throw TraverseError("ground distances are reduced to a coordinate system's grid: choose the system first");
  std::vector<PlanePosition> places;
  PlanePosition at = measured.stations.front().unadjusted;
  for (const CourseResult& k : measured.courses) {
    const PlanePosition to{at.x + k.dep, at.y + k.lat};
    places.push_back(at);
    places.push_back({(at.x + to.x) / 2, (at.y + to.y) / 2});
    places.push_back(to);
    at = to;
  }
  for (const SideShot& shot : in.sideShots) {
    const auto from = std::find_if(measured.stations.begin(), measured.stations.end(),
                                   [&shot](const StationResult& s) { return upper(s.name) == upper(shot.from); });
    places.push_back(from == measured.stations.end() ? measured.stations.front().unadjusted : from->unadjusted);
  }
  const std::vector<PointFactors> f = combinedFactors(in.crs, places);
  for (std::size_t k = 0; k < in.courses.size(); ++k)
    in.courses[k].factor = lineFactor(f[3 * k].combined, f[3 * k + 1].combined, f[3 * k + 2].combined);
  for (std::size_t i = 0; i < in.sideShots.size(); ++i) in.sideShots[i].factor = f[3 * in.courses.size() + i].combined;
}

// The angular misclosure allowed: k seconds times the square root of the angles.
double allowedAngular(const TraverseInput& in, const Closure& c) {
  return in.allowableAngular * std::sqrt(static_cast<double>(std::max(c.angles, 1)));
}

}  // namespace

std::vector<std::string> traverseFaults(const TraverseInput& in, const TraverseResult& r) {
  std::vector<std::string> out;
  const Closure& c = r.closure;
  if (c.precision && *c.precision < in.allowablePrecision)
    out.push_back("The traverse misclosure of 1:" + grouped(*c.precision) + " is worse than the allowable 1:" + grouped(in.allowablePrecision) +
                  ": a blunder is likely (a wrong backsight, a bust shot); the adjusted points are written, marked as failing.");
  if (c.angular && std::fabs(*c.angular) > allowedAngular(in, c))
    out.push_back("The angular misclosure of " + fixed(std::fabs(*c.angular), "0.0") + "\" is more than the allowable " +
                  fixed(allowedAngular(in, c), "0.0") + "\" (" + fixed(in.allowableAngular, "0.0") + "\" times the square root of " +
                  std::to_string(std::max(c.angles, 1)) + "): a blunder in an angle is likely.");
  if (r.leastSquares && !r.leastSquares->passed)
    out.push_back("The least-squares traverse fails the global test: the sum of its weighted squared residuals, " +
                  fixed(r.leastSquares->chiSquare, "0.00") + ", lies outside " + fixed(r.leastSquares->lower, "0.00") + " to " +
                  fixed(r.leastSquares->upper, "0.00") + " (the standard errors given, or a blunder).");
  if (r.leastSquares && !r.leastSquares->flagged.empty()) {
    const auto v = std::find_if(r.leastSquares->residuals.begin(), r.leastSquares->residuals.end(), [](const Residual& x) { return x.flagged; });
    out.push_back("The " + r.leastSquares->flagged + " is flagged as the likely blunder: its standardized residual " +
                  fixed(std::fabs(v->standardized), "0.00") + " is above " + fixed(r.leastSquares->critical, "0.00") +
                  "; remove or reweigh it and adjust again.");
  }
  return out;
}

namespace {

std::vector<std::string> reportLines(const TraverseInput& in, const TraverseResult& r, const std::string& today) {
  const std::string unit = in.units == "m" ? "m" : "ft";
  const Closure& c = r.closure;
  std::vector<std::string> out{"                TRAVERSE CLOSURE AND ADJUSTMENT", "",
                               "  Source: " + (in.source.empty() ? std::string("(coordinates in the traverse)") : in.source),
                               "  Date: " + today + "    Units: " + (in.units == "m" ? "metres" : "feet")};
  const StationResult& start = r.stations.front();
  std::string backsight = in.backsightPoint ? "point " + in.backsightPoint->point : std::string();
  if (in.backsightAzimuth) backsight += (backsight.empty() ? "azimuth " : ", azimuth ") + decimalToDmsCarried(*in.backsightAzimuth);
  if (backsight.empty()) backsight = "none";
  out.push_back("  Start: " + start.name + "  X " + coordinate(start.adjusted.x) + "  Y " + coordinate(start.adjusted.y) +
                "    Backsight: " + backsight);
  const StationResult& end = r.stations.back();
  out.push_back(c.loop ? "  Closed on the start (a loop)"
                       : "  Closed on " + end.name + "  X " + coordinate(end.adjusted.x) + "  Y " + coordinate(end.adjusted.y));
  for (const std::string& note : in.notes) out.push_back("  Raw file: " + note);
  out.emplace_back("");

  int name = 6;
  for (const CourseResult& k : r.courses) name = std::max({name, static_cast<int>(textLength(k.from)) + 2, static_cast<int>(textLength(k.to)) + 2});
  out.push_back("  COURSES");
  out.push_back("  " + leftJustify("From", name) + leftJustify("To", name) + leftJustify("Direction given", 20) +
                rightJustify("Azimuth", 14) + rightJustify("Balanced", 15) + rightJustify("Distance", 12) + rightJustify("Latitude", 12) +
                rightJustify("Departure", 12));
  for (std::size_t k = 0; k < r.courses.size(); ++k) {
    const CourseResult& x = r.courses[k];
    out.push_back("  " + leftJustify(x.from, name) + leftJustify(x.to, name) + leftJustify(directionText(in.courses[k]), 20) +
                  rightJustify(decimalToDmsCarried(x.measured), 14) + rightJustify(decimalToDmsCarried(x.azimuth), 15) +
                  rightJustify(length(x.distance), 12) + rightJustify(signedLength(x.lat), 12) + rightJustify(signedLength(x.dep), 12));
  }
  out.push_back("  Perimeter " + length(c.perimeter) + " " + unit + (in.ground ? " on the grid" : ""));
  out.emplace_back("");
  if (in.ground) {
    out.push_back("  GRID AND GROUND: ground distances reduced to the grid of " + crsTitle(in.crs));
    out.push_back(in.crs.elevation ? "  Project elevation " + fixed(*in.crs.elevation, "0.0") + " " + unit +
                                         " (ellipsoid height); each course's combined factor from its ends and middle, 1:4:1"
                                   : "  No project elevation: the grid scale factor alone; each course's from its ends and middle, 1:4:1");
    out.push_back("  " + leftJustify("From", name) + leftJustify("To", name) + rightJustify("Ground", 12) + rightJustify("Combined", 13) +
                  rightJustify("Grid", 12));
    for (std::size_t k = 0; k < r.courses.size(); ++k) {
      const CourseResult& x = r.courses[k];
      out.push_back("  " + leftJustify(x.from, name) + leftJustify(x.to, name) + rightJustify(length(x.distance / in.courses[k].factor), 12) +
                    rightJustify(fixed(in.courses[k].factor, "0.00000000"), 13) + rightJustify(length(x.distance), 12));
    }
    out.emplace_back("");
  }

  out.push_back("  CLOSURE");
  if (c.angular) {
    out.push_back("  Angular misclosure " + seconds(*c.angular) + " against " + c.angularAgainst +
                  (c.angles > 0 ? ", shared among " + std::to_string(c.angles) + " angles: " + seconds(-*c.angular / c.angles) + " each"
                                : ": no angle to share it among"));
    if (c.angleSum)
      out.push_back("  Sum of the angles " + decimalToDmsCarried(*c.angleSum) + ", a closed figure's " +
                    decimalToDmsCarried(*c.angleSumShould));
  } else {
    out.push_back("  Angular misclosure: none found (no direction known at the end)");
  }
  out.push_back("  Misclosure (computed end less known end): latitude " + signedLength(c.lat) + "  departure " + signedLength(c.dep));
  out.push_back("  Linear misclosure " + fixed(c.length, "0.0000") + " " + unit + " toward " +
                (c.length > 0 ? bearingText(c.direction) : std::string("nowhere")));
  out.push_back("  Precision " + (c.precision ? "1:" + grouped(*c.precision) : std::string("exact (no misclosure)")));
  out.push_back("  Allowable: precision 1:" + grouped(in.allowablePrecision) +
                (c.angular ? "; angular misclosure " + fixed(in.allowableAngular, "0.0") + "\" times the square root of " +
                                 std::to_string(std::max(c.angles, 1)) + " = " + fixed(allowedAngular(in, c), "0.0") + "\""
                           : std::string()));
  for (const std::string& fault : traverseFaults(in, r)) out.push_back("  ** FAILING: " + fault + " **");
  out.emplace_back("");

  out.push_back("  ADJUSTMENT: " + std::string(ruleWords(r.rule)));
  out.push_back("  " + leftJustify("From", name) + leftJustify("To", name) + rightJustify("Corr lat", 11) + rightJustify("Corr dep", 11) +
                rightJustify("Latitude", 12) + rightJustify("Departure", 12) + rightJustify("Distance", 12) + rightJustify("Azimuth", 15));
  for (const CourseResult& x : r.courses)
    out.push_back("  " + leftJustify(x.from, name) + leftJustify(x.to, name) + rightJustify(signedLength(x.cLat), 11) +
                  rightJustify(signedLength(x.cDep), 11) + rightJustify(signedLength(x.lat + x.cLat), 12) +
                  rightJustify(signedLength(x.dep + x.cDep), 12) + rightJustify(length(x.adjustedDistance), 12) +
                  rightJustify(decimalToDmsCarried(x.adjustedAzimuth), 15));
  out.emplace_back("");

  out.push_back("  COORDINATES");
  const bool ellipses = r.leastSquares.has_value();
  out.push_back("  " + leftJustify("Point", name) + rightJustify("X measured", 15) + rightJustify("Y measured", 15) +
                rightJustify("X adjusted", 15) + rightJustify("Y adjusted", 15) +
                (ellipses ? rightJustify("Sx", 8) + rightJustify("Sy", 8) + rightJustify("Major", 8) + rightJustify("Minor", 8) +
                                rightJustify("Az major", 15)
                          : std::string()));
  for (const StationResult& s : r.stations) {
    std::string line = "  " + leftJustify(s.name, name) + rightJustify(coordinate(s.unadjusted.x), 15) +
                       rightJustify(coordinate(s.unadjusted.y), 15) + rightJustify(coordinate(s.adjusted.x), 15) +
                       rightJustify(coordinate(s.adjusted.y), 15);
    if (s.ellipse)
      line += rightJustify(fixed(s.ellipse->sigmaX, "0.000"), 8) + rightJustify(fixed(s.ellipse->sigmaY, "0.000"), 8) +
              rightJustify(fixed(s.ellipse->major, "0.000"), 8) + rightJustify(fixed(s.ellipse->minor, "0.000"), 8) +
              rightJustify(decimalToDmsCarried(s.ellipse->azimuth), 15);
    else if (ellipses)
      line += "    held";
    out.push_back(line);
  }
  if (r.leastSquares) {
    const LeastSquaresReport& ls = *r.leastSquares;
    out.emplace_back("");
    out.push_back("  LEAST SQUARES: " + std::to_string(ls.residuals.size()) + " observations, redundancy " +
                  std::to_string(ls.redundancy) + ", " + std::to_string(ls.iterations) + " iterations");
    out.push_back("  Standard errors given: angles " + fixed(in.sigmaAngle, "0.0") + "\", distances " +
                  fixed(in.sigmaDistance, "0.000") + " " + unit + " + " + fixed(in.ppm, "0.0") + " ppm");
    out.push_back(ls.redundancy > 0 ? "  Reference variance " + fixed(ls.referenceVariance, "0.000") + " (standard error of unit weight " +
                                          fixed(std::sqrt(ls.referenceVariance), "0.000") + ")"
                                    : "  No redundancy: the errors are those given, the residuals zero");
    if (ls.redundancy > 0)
      out.push_back("  Global test (chi-square, 95 %): " + fixed(ls.chiSquare, "0.00") + " against " + fixed(ls.lower, "0.00") + " to " +
                    fixed(ls.upper, "0.00") + ": " + (ls.passed ? "passed" : "FAILED"));
    out.push_back("  Standardized residuals (w) flagged above " + fixed(ls.critical, "0.00"));
    int label = 12;
    for (const Residual& v : ls.residuals) label = std::max(label, static_cast<int>(textLength(v.observation)) + 2);
    out.push_back("  " + leftJustify("Observation", label) + rightJustify("Observed", 16) + rightJustify("Adjusted", 16) +
                  rightJustify("Residual", 11) + rightJustify("Redund", 8) + rightJustify("w", 8));
    for (const Residual& v : ls.residuals)
      out.push_back("  " + leftJustify(v.observation, label) +
                    rightJustify(v.angular ? decimalToDmsCarried(v.observed) : length(v.observed), 16) +
                    rightJustify(v.angular ? decimalToDmsCarried(v.adjusted) : length(v.adjusted), 16) +
                    rightJustify(v.angular ? seconds(v.residual) : signedLength(v.residual), 11) + rightJustify(fixed(v.redundancy, "0.00"), 8) +
                    rightJustify(fixed(v.standardized, "0.00"), 8) + (v.flagged ? "  << likely blunder" : ""));
  }
  if (!r.sideShots.empty()) {
    out.emplace_back("");
    out.push_back("  SIDE SHOTS");
    for (std::size_t i = 0; i < r.sideShots.size(); ++i) {
      const StationResult& s = r.sideShots[i];
      const SideShot& shot = in.sideShots[i];
      out.push_back("  " + leftJustify(s.name, name) + leftJustify(shot.from, name) + rightJustify(decimalToDmsCarried(shot.angleRight), 15) +
                    rightJustify(length(shot.distance), 12) + rightJustify(coordinate(s.adjusted.x), 15) +
                    rightJustify(coordinate(s.adjusted.y), 15) + (shot.note.empty() ? "" : "  " + shot.note));
    }
  }
  out.emplace_back("");
  return out;
}

}  // namespace

TraverseRun runTraverse(const TraverseInput& in, const std::string& today) {
  PointList points = PointList::unbounded();
  if (!in.source.empty()) {
    try {
      points = readWholeFile(in.source);
    } catch (const ProgramFault& e) {
      throw TraverseFileError("the source file \"" + in.source + "\" cannot be read: " + e.what());
    }
  } else if (!in.project.empty()) {
    try {
      points = pointListOf(*openProject(in.project));
    } catch (const ProjectError& e) {
      throw TraverseFileError(std::string("the project cannot be read: ") + e.what());
    }
  }
  const bool haveSource = !in.source.empty() || !in.project.empty();
  TraverseRun run;
  run.result = computeTraverse(in, points, haveSource);
  TraverseInput reduced = in;
  if (in.ground) {
    // Each course's factor where the measured traverse puts it; a second run on the grid.
    reduceToGrid(reduced, run.result);
    run.result = computeTraverse(reduced, points, haveSource);
  }
  const TraverseResult& r = run.result;
  run.report = reportLines(reduced, r, today);
  run.failing = traverseFaults(reduced, r);

  // The adjusted points as a source file: the stations, then the side shots.
  const std::string rule = upper(ruleName(r.rule));
  // The points file is comma-separated: a comma or semicolon in a name or note would split it.
  const auto field = [](std::string text) {
    std::replace_if(text.begin(), text.end(), [](char ch) { return ch == ',' || ch == ';'; }, ' ');
    return text;
  };
  for (const StationResult& s : r.stations)
    run.points.push_back(field(s.name) + "," + coordinate(s.adjusted.x) + "," + coordinate(s.adjusted.y) + "," + (s.known ? "CTRL" : "TRAV") +
                         "," + (s.known ? "CONTROL" : "TRAVERSE ADJUSTED " + rule));
  for (std::size_t i = 0; i < r.sideShots.size(); ++i) {
    const StationResult& s = r.sideShots[i];
    const std::string note = i < in.sideShots.size() ? in.sideShots[i].note : "";
    run.points.push_back(field(s.name) + "," + coordinate(s.adjusted.x) + "," + coordinate(s.adjusted.y) + ",SS," +
                         (note.empty() ? "SIDE SHOT" : field(note)));
  }

  Json points_ = Json::array();
  for (const StationResult& s : r.stations) {
    Json p{{"name", s.name}, {"x", s.adjusted.x}, {"y", s.adjusted.y}, {"unadjusted_x", s.unadjusted.x},
           {"unadjusted_y", s.unadjusted.y}, {"held", s.known}};
    if (const auto z = in.elevations.find(upper(s.name)); z != in.elevations.end()) p["z"] = z->second;
    if (s.ellipse)
      p["ellipse"] = Json{{"sigma_x", s.ellipse->sigmaX}, {"sigma_y", s.ellipse->sigmaY}, {"major", s.ellipse->major},
                          {"minor", s.ellipse->minor}, {"azimuth", s.ellipse->azimuth}};
    points_.push_back(p);
  }
  for (const StationResult& s : r.sideShots) {
    Json p{{"name", s.name}, {"x", s.adjusted.x}, {"y", s.adjusted.y}};
    if (const auto z = in.elevations.find(upper(s.name)); z != in.elevations.end()) p["z"] = z->second;
    p["side_shot"] = true;
    p["note"] = s.note;
    points_.push_back(p);
  }
  const Closure& c = r.closure;
  Json closure{{"loop", c.loop}};
  if (c.angular) closure["angular"] = *c.angular, closure["angles"] = c.angles;
  closure["lat"] = c.lat;
  closure["dep"] = c.dep;
  closure["length"] = c.length;
  closure["perimeter"] = c.perimeter;
  closure["precision"] = c.precision ? Json(*c.precision) : Json(nullptr);
  Json courses = Json::array();
  for (std::size_t k = 0; k < r.courses.size(); ++k) {
    const CourseResult& x = r.courses[k];
    Json course{{"from", x.from}, {"to", x.to}, {"azimuth", x.azimuth}, {"distance", x.distance}, {"lat", x.lat},
                {"dep", x.dep}, {"corr_lat", x.cLat}, {"corr_dep", x.cDep}};
    if (in.ground) course["ground"] = x.distance / reduced.courses[k].factor, course["factor"] = reduced.courses[k].factor;
    courses.push_back(course);
  }
  run.json = Json{{"rule", ruleName(r.rule)}, {"points", points_}, {"closure", closure}, {"courses", courses}};
  if (r.leastSquares)
    run.json["least_squares"] = Json{{"redundancy", r.leastSquares->redundancy},
                                     {"reference_variance", r.leastSquares->referenceVariance},
                                     {"iterations", r.leastSquares->iterations},
                                     {"chi_square", Json{{"value", r.leastSquares->chiSquare},
                                                         {"lower", r.leastSquares->lower},
                                                         {"upper", r.leastSquares->upper},
                                                         {"passed", r.leastSquares->passed}}},
                                     {"flagged", r.leastSquares->flagged.empty() ? Json(nullptr) : Json(r.leastSquares->flagged)}};
  if (!in.notes.empty()) run.json["raw_notes"] = in.notes;
  return run;
}

std::pair<std::filesystem::path, std::filesystem::path> traverseOutputs(const std::filesystem::path& folder, const std::string& stem) {
  return {folder / (stem + "-traverse.rpt"), folder / (stem + "-adjusted.txt")};
}

std::string closureSummary(const TraverseInput& in, const TraverseResult& r) {
  const Closure& c = r.closure;
  return "Misclosure " + fixed(c.length, "0.0000") + " " + (in.units == "m" ? "m" : "ft") + ", precision " +
         (c.precision ? "1:" + grouped(*c.precision) : std::string("exact")) +
         (c.angular ? ", angular " + fixed(*c.angular, "0.0") + "\"" : std::string()) + "; " +
         (r.rule == AdjustRule::None ? std::string("not adjusted.") : std::string("adjusted by ") + ruleTitle(r.rule) + ".");
}

CornerMap traverseMap(const TraverseInput& in, const TraverseResult& r) {
  CornerMap map;
  map.title = "Traverse from " + in.start.point;
  for (const StationResult& s : r.stations) {
    MapPoint p{s.name, s.known ? "CONTROL" : "TRAVERSE STATION", s.known ? "CTRL" : "TRAV", s.adjusted.x, s.adjusted.y, !s.known, -1,
               s.known ? "entered" : "computed"};
    p.number = s.name;
    p.rule = s.known ? "held" : std::string("adjusted by ") + ruleName(r.rule);
    if (const auto z = in.elevations.find(upper(s.name)); z != in.elevations.end()) p.z = z->second;
    map.points.push_back(p);
  }
  for (std::size_t i = 0; i < r.sideShots.size(); ++i) {
    const StationResult& s = r.sideShots[i];
    MapPoint p{s.name, "SIDE SHOT", "SS", s.adjusted.x, s.adjusted.y, true, -1, "computed"};
    p.number = s.name;
    p.rule = s.note;
    if (i < in.sideShots.size()) p.evidence = in.sideShots[i].note;  // what the field notes say was shot
    if (const auto z = in.elevations.find(upper(s.name)); z != in.elevations.end()) p.z = z->second;
    map.points.push_back(p);
  }
  const auto index = [&map](const std::string& name) {
    for (std::size_t i = 0; i < map.points.size(); ++i)
      if (map.points[i].name == name) return i;
    return std::size_t{0};
  };
  for (const CourseResult& k : r.courses) map.lines.push_back({"TRAV", k.from + "-" + k.to, index(k.from), index(k.to)});
  return map;
}

Picture traverseSketch(const TraverseInput& in, const TraverseResult& r) {
  Picture p;
  if (r.stations.empty()) return p;
  p.mapUnits = in.units == "m" ? "m" : "ft";
  std::vector<PicturePoint> path;
  for (const StationResult& s : r.stations) path.push_back({s.adjusted.x, s.adjusted.y});
  if (r.closure.loop) path.push_back(path.front());
  PictureLine courses{path, Ink::Main, false, true, "the traverse as adjusted"};
  p.lines.push_back(courses);
  for (const StationResult& s : r.stations) {
    PictureMark m = cornerMark({s.adjusted.x, s.adjusted.y}, s.known ? CornerKind::Entered : CornerKind::Computed);
    m.tip = s.name + (s.known ? " (held)" : "") + "\nX " + coordinate(s.adjusted.x) + "  Y " + coordinate(s.adjusted.y);
    p.marks.push_back(m);
    p.texts.push_back({{s.adjusted.x, s.adjusted.y}, s.name, Ink::Main, Place::AboveRight});
  }
  for (std::size_t i = 0; i < r.sideShots.size(); ++i) {
    const StationResult& s = r.sideShots[i];
    const auto from = std::find_if(r.stations.begin(), r.stations.end(), [&](const StationResult& t) { return t.name == in.sideShots[i].from; });
    if (from != r.stations.end())
      p.lines.push_back({{{from->adjusted.x, from->adjusted.y}, {s.adjusted.x, s.adjusted.y}}, Ink::Quiet, true, false, s.note});
    PictureMark m = markAt({s.adjusted.x, s.adjusted.y}, Ink::Quiet);
    m.radius = 3;
    m.tip = s.name + ": " + s.note;
    p.marks.push_back(m);
    PictureText label{{s.adjusted.x, s.adjusted.y}, s.name, Ink::Quiet, Place::Right};
    label.ifRoom = true;
    p.texts.push_back(label);
  }
  // The misclosure from the known end to where the measurements put it, enlarged to a tenth of the traverse.
  const Closure& c = r.closure;
  if (c.length > 0) {
    double width = 0;
    for (const PicturePoint& a : path)
      for (const PicturePoint& b : path) width = std::max(width, std::hypot(a.x - b.x, a.y - b.y));
    const double wanted = std::max(width * 0.12, 1e-9) / c.length;
    double enlarge = std::pow(10.0, std::floor(std::log10(wanted)));
    for (double step : {2.0, 5.0, 10.0})
      if (enlarge * step <= wanted) enlarge = std::pow(10.0, std::floor(std::log10(wanted))) * step;
    enlarge = std::max(enlarge, 1.0);
    const StationResult& end = r.stations.back().known && !c.loop ? r.stations.back() : r.stations.front();
    const PicturePoint from{end.adjusted.x, end.adjusted.y};
    const PicturePoint to{from.x + c.dep * enlarge, from.y + c.lat * enlarge};
    p.lines.push_back({{from, to}, Ink::Alert, false, true, "misclosure " + fixed(c.length, "0.000") + " " + p.mapUnits});
    PictureMark tip = markAt(to, Ink::Alert);
    tip.radius = 3;
    tip.filled = true;
    p.marks.push_back(tip);
    p.texts.insert(p.texts.begin(), {to, "misclosure " + fixed(c.length, "0.000") + " " + p.mapUnits + " (x" + fixed(enlarge, "0") + ")",
                                     Ink::Alert, Place::Right});
  }
  p.caption = "Traverse from " + in.start.point + ", " + ruleTitle(r.rule) +
              (c.precision ? "    precision 1:" + grouped(*c.precision) : std::string("    closes exactly")) +
              "\n\u25A0 held   \u25CB adjusted station   \u00B7 side shot";
  return p;
}

}  // namespace tervalo
