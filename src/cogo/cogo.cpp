#include "cogo/cogo.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "crs/ground.h"
#include "parcels/deed.h"
#include "text/angle.h"
#include "project/point_import.h"
#include "text/errors.h"
#include "text/format.h"
#include "text/justify.h"
#include "text/number.h"

namespace tervalo {
namespace {

using Json = nlohmann::ordered_json;

constexpr double kRadian = std::numbers::pi / 180;
constexpr double kTiny = 1e-9;

double normal(double degrees) {
  double a = std::fmod(degrees, 360.0);
  if (a < 0) a += 360;
  return a >= 360 ? a - 360 : a;
}

struct At {
  double n = 0, e = 0;
};

double azimuthOf(At a, At b) { return normal(std::atan2(b.e - a.e, b.n - a.n) / kRadian); }
double distanceOf(At a, At b) { return std::hypot(b.n - a.n, b.e - a.e); }
At along(At a, double azimuth, double d) { return {a.n + d * std::cos(azimuth * kRadian), a.e + d * std::sin(azimuth * kRadian)}; }

std::string length(double v) { return Format(v, "0.0000"); }

// The area of a figure's chord polygon (counter-clockwise positive) with, for
// each arc, the segment between it and its chord: an arc turning right lies
// left of its chord.
struct Figure {
  std::vector<At> corners;
  double segments = 0, perimeter = 0;
  void addArc(double radius, double delta, bool right) {
    const double segment = radius * radius / 2 * (delta - std::sin(delta));
    segments += right ? -segment : segment;
  }
  double area() const {
    double twice = 0;
    for (std::size_t i = 0; i < corners.size(); ++i) {
      const At& p = corners[i];
      const At& q = corners[(i + 1) % corners.size()];
      twice += p.e * q.n - q.e * p.n;
    }
    return std::fabs(twice / 2 + segments);
  }
};

}  // namespace

std::vector<std::string> cogoWords(const std::string& line) {
  std::vector<std::string> words;
  std::string word;
  bool quoted = false, any = false;
  for (char c : line) {
    if (quoted) {
      if (c == '"') {
        quoted = false;
      } else {
        word += c;
      }
      continue;
    }
    if (c == '#') break;
    if (c == '"' && word.empty()) {
      quoted = any = true;
    } else if (c == ' ' || c == '\t' || c == '\r') {
      if (any) words.push_back(word);
      word.clear();
      any = false;
    } else {
      word += c;
      any = true;
    }
  }
  if (quoted) throw CogoError("a quoted text is not closed");
  if (any) words.push_back(word);
  return words;
}

std::optional<double> cogoAngle(const std::string& text) {
  std::string t = text;
  // 45°30'15" as 45-30-15.
  for (const char* mark : {"\u00B0", "'", "\""}) {
    for (std::size_t at = t.find(mark); at != std::string::npos; at = t.find(mark)) t.replace(at, std::string(mark).size(), "-");
  }
  while (!t.empty() && t.back() == '-') t.pop_back();
  if (t.find('-', 1) != std::string::npos) {
    // Degrees and minutes alone (45-30, 45°30') take 0 seconds.
    if (std::count(t.begin() + 1, t.end(), '-') == 1) t += "-0";
    const auto a = angleFromText(t);
    return a && std::isfinite(*a) ? a : std::nullopt;
  }
  // Packed degrees.minutes-seconds: 45.3015 is 45°30'15".
  if (t.empty() || t.find_first_not_of("0123456789.") != std::string::npos || std::count(t.begin(), t.end(), '.') > 1) return std::nullopt;
  const auto dot = t.find('.');
  const std::string whole = t.substr(0, dot);
  std::string rest = dot == std::string::npos ? "" : t.substr(dot + 1);
  if (whole.empty() || whole.size() > 3) return std::nullopt;
  rest.resize(std::max<std::size_t>(rest.size(), 4), '0');
  const double minutes = std::stod(rest.substr(0, 2));
  const double seconds = std::stod(rest.substr(2, 2) + "." + (rest.size() > 4 ? rest.substr(4) : "0"));
  if (minutes >= 60 || seconds >= 60) return std::nullopt;
  return std::stod(whole) + minutes / 60 + seconds / 3600;
}

std::optional<double> cogoBearing(const std::string& text) {
  std::string t;
  for (char c : text)
    if (c != ' ') t += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  if (t.size() < 3) return std::nullopt;
  const char ns = t.front(), ew = t.back();
  if ((ns != 'N' && ns != 'S') || (ew != 'E' && ew != 'W')) return std::nullopt;
  const auto a = cogoAngle(t.substr(1, t.size() - 2));
  if (!a || *a > 90) return std::nullopt;
  if (ns == 'N') return ew == 'E' ? *a : normal(360 - *a);
  return ew == 'E' ? 180 - *a : 180 + *a;
}

std::string angleText(double degrees, int places) {
  places = std::clamp(places, 0, 4);
  const double per = std::pow(10.0, places);
  const double units = std::round(std::fabs(degrees) * 3600 * per);
  const double d = std::floor(units / (3600 * per));
  const double m = std::floor((units - d * 3600 * per) / (60 * per));
  const double s = (units - d * 3600 * per - m * 60 * per) / per;
  return std::string(degrees < 0 && units > 0 ? "-" : "") + Format(d, "0") + "\u00B0" + Format(m, "00") + "'" +
         Format(s, places ? "00." + std::string(static_cast<std::size_t>(places), '0') : "00") + "\"";
}

std::string bearingWords(double azimuth, int places) {
  // Rounded first, so that a bearing a hair off north never reads S 0°00'00" E.
  const double per = 3600 * std::pow(10.0, std::clamp(places, 0, 4));
  const double a = normal(std::round(azimuth * per) / per);
  const bool north = a <= 90 || a >= 270, east = a <= 180 && a > 0;
  const double angle = north ? (a <= 90 ? a : 360 - a) : (a <= 180 ? 180 - a : a - 180);
  return std::string(north ? "N " : "S ") + angleText(angle, places) + (east || a == 0 ? " E" : " W");
}

CogoOptions cogoOptionsOf(const ProjectSettings& settings) {
  CogoOptions o;
  o.crs = settings.crs;
  o.unit = settings.unit;
  if (settings.unit == "m")
    o.metresPerUnit = 1;
  else if (settings.crs.foot == "international")
    o.metresPerUnit = 0.3048;
  else if (settings.crs.foot == "us" || settings.crs.none())
    o.metresPerUnit = 1200.0 / 3937;
  else
    o.metresPerUnit = geo().describe(settings.crs.epsg).metresPerUnit;  // the system's own foot
  return o;
}

struct CogoEngine::Mapcheck {
  At start;
  std::vector<Course> courses;
  std::vector<std::string> names;  // "the LINE on line 4", for a figure that crosses itself
  std::vector<std::string> said;
};

CogoEngine::CogoEngine(std::function<std::optional<ProjectPoint>(const std::string&)> lookup, CogoOptions options)
    : lookup_(std::move(lookup)), options_(std::move(options)) {}

ProjectPoint CogoEngine::point(const std::string& number) {
  const std::string n = upper(number);
  for (const ProjectPoint& p : made_)
    if (p.number == n) return p;
  if (auto p = lookup_(n)) return *p;
  throw CogoError("point " + n + " is not in the project");
}

void CogoEngine::make(ProjectPoint p) {
  p.number = upper(p.number);
  if (const std::string fault = numberFault(p.number); !fault.empty()) throw CogoError(fault);
  const bool held = std::any_of(made_.begin(), made_.end(), [&p](const ProjectPoint& q) { return q.number == p.number; }) ||
                    lookup_(p.number).has_value();
  if (held) throw CogoError("point " + p.number + " is in the project already: give the new point a number of its own");
  if (!std::isfinite(p.northing) || !std::isfinite(p.easting)) throw CogoError("point " + p.number + " would lie nowhere (no finite coordinates)");
  made_.push_back(std::move(p));
}

void CogoEngine::finish() {
  if (mapcheck_) throw CogoError("the MAPCHECK begun on line " + std::to_string(mapcheckLine_) + " has no END");
}

std::optional<Json> CogoEngine::run(const std::string& line, int lineNumber) {
  answer_.clear();
  std::vector<std::string> words = cogoWords(line);
  if (words.empty()) return std::nullopt;
  const std::size_t before = made_.size();
  try {
    const bool opening = !mapcheck_;
    line_ = lineNumber;
    Json result = dispatch(words);
    if (opening && mapcheck_) mapcheckLine_ = lineNumber;
    if (result.is_null()) return std::nullopt;  // a MAPCHECK and its courses answer at END
    Json out{{"line", lineNumber}, {"command", upper(words[0])}};
    out.update(result);
    return out;
  } catch (const DeedError& e) {
    made_.resize(before);
    throw CogoError(e.what());
  } catch (...) {
    made_.resize(before);
    throw;
  }
}

Json CogoEngine::dispatch(const std::vector<std::string>& words) {
  const std::string command = upper(words[0]);
  std::size_t at = 1;
  const auto more = [&](const char* what) -> const std::string& {
    if (at >= words.size()) throw CogoError(command + " wants " + what + " here");
    return words[at++];
  };
  const auto keyword = [&](const char* word) {
    const std::string& w = more(word);
    if (upper(w) != word) throw CogoError(command + " wants " + word + " here, not \"" + w + "\"");
  };
  const auto optional = [&](const char* word) {
    if (at < words.size() && upper(words[at]) == word) {
      ++at;
      return true;
    }
    return false;
  };
  const auto distance = [&](const char* what) {
    const std::string& w = more(what);
    const auto v = finiteNumber(w);
    if (!v) throw CogoError(std::string(what) + " \"" + w + "\" is not a number");
    return *v;
  };
  const auto angle = [&](const char* what) {
    const std::string& w = more(what);
    const auto v = cogoAngle(w);
    if (!v) throw CogoError(std::string(what) + " \"" + w + "\" is not an angle (45-30-15, 45°30'15\" or 45.3015)");
    return *v;
  };
  const auto bearing = [&] {
    // A bearing may be written with blanks: N 45-30-15 E.
    std::string w = more("a bearing");
    if ((upper(w) == "N" || upper(w) == "S") && at + 1 < words.size()) {
      w += more("a bearing");
      w += more("a bearing");
    }
    const auto v = cogoBearing(w);
    if (!v) throw CogoError("the bearing \"" + w + "\" is none (N45-30-15E or N 45-30-15 E)");
    return *v;
  };
  const auto done = [&] {
    if (at < words.size()) throw CogoError(command + " does not take \"" + words[at] + "\" here");
  };
  const auto place = [](const ProjectPoint& p) { return At{p.northing, p.easting}; };
  const auto pointJson = [](const ProjectPoint& p) {
    return Json{{"number", p.number}, {"northing", p.northing}, {"easting", p.easting}, {"elevation", p.elevation ? Json(*p.elevation) : Json(nullptr)}};
  };
  const auto said = [this](const ProjectPoint& p) {
    answer_.push_back("  " + p.number + "  N " + length(p.northing) + "  E " + length(p.easting) +
                      (p.elevation ? "  Z " + Format(*p.elevation, "0.000") : ""));
  };
  const int places = options_.secondsPlaces;
  const std::string unit = options_.unit == "m" ? "m" : "ft";
  // An acre is 43,560 square feet in the project's own foot; in metres, the international acre.
  const auto acres = [&unit](double area) { return unit == "m" ? area / 4046.8564224 : area / 43560.0; };

  if (mapcheck_) {
    Mapcheck& m = *mapcheck_;
    if (command == "END") {
      done();
      requireParcel(m.courses, m.names);
      const FigureClosure c = closureOf(m.courses);
      Json out{{"closure_distance", c.distance},
               {"closure_azimuth", c.azimuth ? Json(*c.azimuth) : Json(nullptr)},
               {"latitude_error", c.latitude},
               {"departure_error", c.departure},
               {"precision", c.precision ? Json(*c.precision) : Json(nullptr)},
               {"perimeter", c.perimeter},
               {"area", c.area},
               {"acres", acres(c.area)}};
      answer_ = m.said;
      // A misclosure within the shown places is 0, never "-0.0000".
      const auto shown = [](double v) { return length(std::fabs(v) < 5e-5 ? 0.0 : v); };
      answer_.push_back("  Misclosure " + shown(c.distance) + (c.azimuth ? " " + bearingWords(*c.azimuth, places) : "") + "  (latitude " +
                        shown(c.latitude) + ", departure " + shown(c.departure) + ")");
      answer_.push_back("  Precision " + (c.precision ? "1:" + grouped(*c.precision) : std::string("exact")) + "  perimeter " +
                        length(c.perimeter) + "  area " + Format(c.area, "0.00") + " sq " + unit + ", " + Format(acres(c.area), "0.0000") +
                        " acres");
      mapcheck_.reset();
      Json result{{"line", mapcheckLine_}, {"command", "MAPCHECK"}};
      result.update(out);
      return result;
    }
    DeedCall call;
    if (command == "LINE") {
      call.azimuth = bearing();
      call.distance = distance("a distance");
      done();
    } else if (command == "CURVE") {
      const std::string side = upper(more("L or R"));
      if (side != "L" && side != "R") throw CogoError("CURVE turns L or R, not \"" + side + "\"");
      call.curve = true;
      call.right = side == "R";
      keyword("RADIUS");
      call.radius = distance("a radius");
      const std::string by = upper(more("ARC, CHORD or DELTA"));
      if (by == "ARC") {
        call.by = DeedCall::By::Arc;
        call.value = distance("an arc length");
      } else if (by == "CHORD") {
        call.by = DeedCall::By::Chord;
        call.value = distance("a chord");
      } else if (by == "DELTA") {
        call.by = DeedCall::By::Delta;
        call.value = angle("a delta");
      } else {
        throw CogoError("CURVE wants ARC, CHORD or DELTA, not \"" + by + "\"");
      }
      if (optional("CHORDBEARING")) call.chordAzimuth = bearing();
      if (optional("RADIAL")) call.radialAzimuth = bearing();
      done();
    } else {
      throw CogoError("within MAPCHECK only LINE, CURVE and END are taken, not " + command);
    }
    const At from = m.courses.empty() ? m.start : At{m.courses.back().toN, m.courses.back().toE};
    const Course c = follow(call, from.n, from.e, m.courses.empty() ? std::nullopt : std::optional(m.courses.back().tangentOut));
    m.courses.push_back(c);
    m.names.push_back("the " + command + " on line " + std::to_string(line_));
    if (c.curve)
      m.said.push_back(std::string("  CURVE ") + (c.right ? "R" : "L") + "  R " + length(c.radius) + "  delta " + angleText(c.delta, places) +
                       "  arc " + length(c.arc) + "  chord " + bearingWords(c.azimuth, places) + " " + length(c.length));
    else
      m.said.push_back("  LINE " + bearingWords(c.azimuth, places) + "  " + length(c.length));
    return nullptr;
  }

  if (command == "POINT") {
    ProjectPoint p;
    p.number = more("the new point's number");
    p.northing = distance("a northing");
    p.easting = distance("an easting");
    if (at < words.size() && finiteNumber(words[at])) p.elevation = distance("an elevation");
    if (at < words.size()) p.description = words[at++];
    done();
    p.source = "COGO POINT";
    make(p);
    said(made_.back());
    return Json{{"point", pointJson(made_.back())}};
  }

  if (command == "INVERSE") {
    std::vector<ProjectPoint> chain;
    while (at < words.size()) chain.push_back(point(words[at++]));
    if (chain.size() < 2) throw CogoError("INVERSE wants two points or more");
    Json legs = Json::array();
    for (std::size_t i = 0; i + 1 < chain.size(); ++i) {
      const ProjectPoint &a = chain[i], &b = chain[i + 1];
      const double d = distanceOf(place(a), place(b));
      const double az = azimuthOf(place(a), place(b));
      Json leg{{"from", a.number}, {"to", b.number}, {"azimuth", az}, {"bearing", bearingWords(az, places)}, {"distance", d}};
      std::string text = "  " + a.number + " to " + b.number + "  " + bearingWords(az, places) + "  az " + angleText(az, places) + "  " + length(d);
      if (a.elevation && b.elevation) {
        const double dz = *b.elevation - *a.elevation;
        leg["slope_distance"] = std::hypot(d, dz);
        leg["dz"] = dz;
        text += "  slope " + length(std::hypot(d, dz)) + "  dZ " + Format(dz, "0.000") + (d > 0 ? "  grade " + Format(dz / d * 100, "0.00") + "%" : "");
      }
      if (!options_.crs.none() && d > 0) {
        try {
          const At mid{(a.northing + b.northing) / 2, (a.easting + b.easting) / 2};
          // The elevation factor at the points' mean elevation where both have one (taken as ellipsoid height), else the grid's alone.
          CrsChoice crs = options_.crs;
          if (a.elevation && b.elevation) crs.elevation = (*a.elevation + *b.elevation) / 2;
          const auto f = combinedFactors(crs, {{a.easting, a.northing}, {mid.e, mid.n}, {b.easting, b.northing}});
          const double combined = lineFactor(f[0].combined, f[1].combined, f[2].combined);
          leg["ground_distance"] = d / combined;
          leg["combined_factor"] = combined;
          text += "  ground " + length(d / combined) + " (combined factor " + Format(combined, "0.00000000") + ")";
        } catch (const CrsError& e) {
          throw CogoError(std::string("no ground distance: ") + e.what());
        }
      }
      answer_.push_back(text);
      legs.push_back(std::move(leg));
    }
    done();
    return Json{{"legs", std::move(legs)}};
  }

  if (command == "LOCATE") {
    ProjectPoint p;
    p.number = more("the new point's number");
    keyword("FROM");
    const ProjectPoint from = point(more("the occupied point"));
    const std::string how = upper(more("AZIMUTH, BEARING or BACKSIGHT"));
    double az = 0;
    if (how == "AZIMUTH") {
      az = angle("an azimuth");
    } else if (how == "BEARING") {
      az = bearing();
    } else if (how == "BACKSIGHT") {
      const ProjectPoint back = point(more("the backsight"));
      if (distanceOf(place(from), place(back)) < kTiny) throw CogoError("the backsight " + back.number + " stands on " + from.number);
      const std::string turn = upper(more("ANGLE or DEFLECTION"));
      if (turn == "ANGLE") {
        az = azimuthOf(place(from), place(back)) + angle("an angle right");
      } else if (turn == "DEFLECTION") {
        std::string w = more("a deflection");
        const char side = w.empty() ? 0 : static_cast<char>(std::toupper(static_cast<unsigned char>(w.back())));
        if (side != 'L' && side != 'R') throw CogoError("a deflection ends in L or R: \"" + w + "\"");
        w.pop_back();
        const auto v = cogoAngle(w);
        if (!v || *v >= 180) throw CogoError("the deflection \"" + w + side + "\" is not an angle below 180°");
        az = azimuthOf(place(back), place(from)) + (side == 'R' ? *v : -*v);
      } else {
        throw CogoError("LOCATE ... BACKSIGHT wants ANGLE or DEFLECTION, not \"" + turn + "\"");
      }
    } else {
      throw CogoError("LOCATE wants AZIMUTH, BEARING or BACKSIGHT, not \"" + how + "\"");
    }
    az = normal(az);
    const std::string measure = upper(more("DISTANCE or SLOPE"));
    double d = 0;
    std::optional<double> dz;
    if (measure == "DISTANCE") {
      d = distance("a distance");
    } else if (measure == "SLOPE") {
      const double s = distance("a slope distance");
      keyword("ZENITH");
      const double z = angle("a zenith angle");
      if (z <= 0 || z >= 180) throw CogoError("a zenith angle lies between 0° and 180°");
      d = s * std::sin(z * kRadian);
      dz = s * std::cos(z * kRadian);
    } else {
      throw CogoError("LOCATE wants DISTANCE or SLOPE, not \"" + measure + "\"");
    }
    if (d < 0) throw CogoError("a distance cannot be less than 0");
    done();
    const At to = along(place(from), az, d);
    p.northing = to.n;
    p.easting = to.e;
    if (dz && from.elevation) p.elevation = *from.elevation + *dz;
    p.source = "COGO LOCATE from " + from.number;
    make(p);
    answer_.push_back("  from " + from.number + "  " + bearingWords(az, places) + "  " + length(d) + (dz ? "  dZ " + Format(*dz, "0.000") : ""));
    said(made_.back());
    return Json{{"point", pointJson(made_.back())}};
  }

  if (command == "INTERSECT") {
    ProjectPoint p;
    p.number = more("the new point's number");
    // Each part: a line (BEARING a brg [OFFSET o]) or a circle (DISTANCE a d).
    struct Part {
      bool line = true;
      At at;
      double azimuth = 0, radius = 0;
      std::string from;
    };
    const auto part = [&]() {
      Part q;
      const std::string kind = upper(more("BEARING or DISTANCE"));
      const ProjectPoint a = point(more("a point"));
      q.from = a.number;
      q.at = place(a);
      if (kind == "BEARING") {
        q.azimuth = bearing();
        if (optional("OFFSET")) q.at = along(q.at, q.azimuth + 90, distance("an offset"));
      } else if (kind == "DISTANCE") {
        q.line = false;
        q.radius = distance("a distance");
        if (q.radius <= 0) throw CogoError("a DISTANCE must be more than 0");
      } else {
        throw CogoError("INTERSECT wants BEARING or DISTANCE, not \"" + kind + "\"");
      }
      return q;
    };
    Part first = part(), second = part();
    std::optional<ProjectPoint> near;
    if (optional("NEAR")) near = point(more("the point to be nearer to"));
    done();
    if (!first.line && second.line) std::swap(first, second);
    std::vector<At> solutions;
    if (first.line && second.line) {
      const double un = std::cos(first.azimuth * kRadian), ue = std::sin(first.azimuth * kRadian);
      const double vn = std::cos(second.azimuth * kRadian), ve = std::sin(second.azimuth * kRadian);
      const double cross = un * ve - ue * vn;
      if (std::fabs(cross) < 1e-12) {
        const double apart = std::fabs((second.at.n - first.at.n) * ue - (second.at.e - first.at.e) * un);
        throw CogoError("the bearings from " + first.from + " and " + second.from + " are parallel (" + bearingWords(first.azimuth, places) + "), " +
                        length(apart) + " apart: they never meet");
      }
      const double t = ((second.at.n - first.at.n) * ve - (second.at.e - first.at.e) * vn) / cross;
      solutions.push_back({first.at.n + t * un, first.at.e + t * ue});
    } else if (first.line) {
      // Along the bearing from its point: P = A + t·u, |P - B| = r.
      const double un = std::cos(first.azimuth * kRadian), ue = std::sin(first.azimuth * kRadian);
      const double wn = first.at.n - second.at.n, we = first.at.e - second.at.e;
      const double b = un * wn + ue * we, c = wn * wn + we * we - second.radius * second.radius;
      const double disc = b * b - c;
      const double passes = std::fabs(wn * ue - we * un);  // how near the line comes to the circle's center
      if (disc < -1e-9)
        throw CogoError("the bearing from " + first.from + " passes " + length(passes) + " from " + second.from + ", farther than the distance " +
                        length(second.radius) + " by " + length(passes - second.radius) + ": they never meet");
      const double root = std::sqrt(std::max(0.0, disc));
      // The first met going from the bearing's point along it: ahead before behind, the nearer first.
      std::vector<double> ts{-b - root, -b + root};
      if (root < 1e-9) ts.pop_back();
      std::sort(ts.begin(), ts.end(), [](double x, double y) { return (x >= -1e-9) != (y >= -1e-9) ? x >= -1e-9 : std::fabs(x) < std::fabs(y); });
      for (double t : ts) solutions.push_back({first.at.n + t * un, first.at.e + t * ue});
    } else {
      const double d = distanceOf(first.at, second.at);
      if (d < kTiny) throw CogoError("the circles about " + first.from + " and " + second.from + " share their center");
      if (d > first.radius + second.radius + 1e-9)
        throw CogoError("the distances from " + first.from + " and " + second.from + " do not reach each other: the points are " + length(d) +
                        " apart, " + length(d - first.radius - second.radius) + " more than the distances together");
      if (d < std::fabs(first.radius - second.radius) - 1e-9)
        throw CogoError("the circle about " + (first.radius < second.radius ? first.from : second.from) + " lies inside the other, " +
                        length(std::fabs(first.radius - second.radius) - d) + " short of meeting it");
      const double a = (first.radius * first.radius - second.radius * second.radius + d * d) / (2 * d);
      const double h = std::sqrt(std::max(0.0, first.radius * first.radius - a * a));
      const double az = azimuthOf(first.at, second.at);
      const At base = along(first.at, az, a);
      solutions.push_back(along(base, az + 90, h));  // right of the line from the first point to the second
      if (h > 1e-9) solutions.push_back(along(base, az - 90, h));
    }
    std::size_t chosen = 0;
    if (near && solutions.size() > 1)
      chosen = distanceOf(solutions[1], place(*near)) < distanceOf(solutions[0], place(*near)) ? 1 : 0;
    p.northing = solutions[chosen].n;
    p.easting = solutions[chosen].e;
    p.source = "COGO INTERSECT from " + first.from + " and " + second.from;
    make(p);
    Json all = Json::array();
    for (std::size_t i = 0; i < solutions.size(); ++i) {
      all.push_back(Json{{"northing", solutions[i].n}, {"easting", solutions[i].e}});
      if (solutions.size() > 1)
        answer_.push_back(std::string(i == chosen ? "  stored:" : "  other: ") + "  N " + length(solutions[i].n) + "  E " + length(solutions[i].e));
    }
    said(made_.back());
    return Json{{"point", pointJson(made_.back())}, {"solutions", std::move(all)}};
  }

  if (command == "STATION" || command == "POINTAT") {
    const bool station = command == "STATION";
    ProjectPoint p;
    p.number = more(station ? "the point to station" : "the new point's number");
    keyword("FROM");
    const ProjectPoint a = point(more("the line's first point"));
    keyword("TO");
    const ProjectPoint b = point(more("the line's second point"));
    const double az = azimuthOf(place(a), place(b));
    if (distanceOf(place(a), place(b)) < kTiny) throw CogoError("the line from " + a.number + " to " + b.number + " has no length");
    if (station) {
      done();
      const ProjectPoint q = point(p.number);
      const double dn = q.northing - a.northing, de = q.easting - a.easting;
      const double s = dn * std::cos(az * kRadian) + de * std::sin(az * kRadian);
      const double o = -dn * std::sin(az * kRadian) + de * std::cos(az * kRadian);
      const At foot = along(place(a), az, s);
      answer_.push_back("  " + q.number + " stands at station " + length(s) + ", offset " + length(o) + (o > 0 ? " right" : o < 0 ? " left" : "") +
                        " of " + a.number + " to " + b.number + "; the foot of its perpendicular N " + length(foot.n) + "  E " + length(foot.e));
      return Json{{"station", s}, {"offset", o}};
    }
    keyword("STATION");
    const double s = distance("a station");
    const double o = optional("OFFSET") ? distance("an offset") : 0;
    done();
    const At to = along(along(place(a), az, s), az + 90, o);
    p.northing = to.n;
    p.easting = to.e;
    p.source = "COGO POINTAT on " + a.number + " to " + b.number;
    make(p);
    said(made_.back());
    return Json{{"point", pointJson(made_.back())}};
  }

  if (command == "DIVIDE") {
    const ProjectPoint a = point(more("the line's first point"));
    const ProjectPoint b = point(more("the line's second point"));
    const std::string& parts = more("how many parts");
    const auto n = finiteNumber(parts);
    if (!n || *n < 2 || *n > 10000 || *n != std::floor(*n)) throw CogoError("DIVIDE makes 2 to 10,000 equal parts, not \"" + parts + "\"");
    keyword("FIRST");
    const std::string first = upper(more("the first new number"));
    done();
    if (first.empty() || first.size() > 15 || first.find_first_not_of("0123456789") != std::string::npos)
      throw CogoError("the new points are numbered on from a whole number, not \"" + first + "\"");
    const long long start = std::stoll(first);
    Json points = Json::array();
    for (int i = 1; i < static_cast<int>(*n); ++i) {
      ProjectPoint p;
      p.number = std::to_string(start + i - 1);
      const double f = i / *n;
      p.northing = a.northing + f * (b.northing - a.northing);
      p.easting = a.easting + f * (b.easting - a.easting);
      if (a.elevation && b.elevation) p.elevation = *a.elevation + f * (*b.elevation - *a.elevation);
      p.source = "COGO DIVIDE " + a.number + " to " + b.number;
      make(p);
      said(made_.back());
      points.push_back(pointJson(made_.back()));
    }
    return Json{{"points", std::move(points)}};
  }

  if (command == "AREA") {
    // The corners in order; a CURVE joins the corner before it to the one after.
    struct Corner {
      ProjectPoint p;
      std::optional<std::pair<double, bool>> curveAfter;  // radius, right
    };
    std::vector<Corner> corners;
    while (at < words.size()) {
      if (upper(words[at]) == "CURVE") {
        ++at;
        if (corners.empty()) throw CogoError("a CURVE joins two corners: name the corner before it first");
        const double r = distance("a radius");
        const std::string side = upper(more("L or R"));
        if (side != "L" && side != "R") throw CogoError("a CURVE turns L or R, not \"" + side + "\"");
        if (r <= 0) throw CogoError("a CURVE's radius must be more than 0");
        corners.back().curveAfter = std::make_pair(r, side == "R");
        continue;
      }
      corners.push_back({point(words[at++]), std::nullopt});
    }
    if (corners.size() < 3) throw CogoError("AREA wants three corners or more");
    Figure f;
    for (std::size_t i = 0; i < corners.size(); ++i) {
      const Corner& c = corners[i];
      const Corner& next = corners[(i + 1) % corners.size()];
      f.corners.push_back(place(c.p));
      const double chord = distanceOf(place(c.p), place(next.p));
      const double az = azimuthOf(place(c.p), place(next.p));
      if (c.curveAfter) {
        const auto [r, right] = *c.curveAfter;
        if (chord > 2 * r + 1e-9)
          throw CogoError("the curve from " + c.p.number + " to " + next.p.number + " cannot span " + length(chord) + " with a radius of " + length(r));
        const double delta = 2 * std::asin(std::min(1.0, chord / (2 * r)));
        f.perimeter += r * delta;
        f.addArc(r, delta, right);
        answer_.push_back("  " + c.p.number + " to " + next.p.number + "  curve " + (right ? "R" : "L") + "  R " + length(r) + "  delta " +
                          angleText(delta / kRadian, places) + "  arc " + length(r * delta) + "  chord " + bearingWords(az, places) + " " + length(chord));
      } else {
        f.perimeter += chord;
        answer_.push_back("  " + c.p.number + " to " + next.p.number + "  " + bearingWords(az, places) + "  " + length(chord));
      }
    }
    const double area = f.area();
    const double hectares = area * options_.metresPerUnit * options_.metresPerUnit / 10000;
    answer_.push_back("  Area " + Format(area, "0.00") + " sq " + unit + ", " + Format(acres(area), "0.0000") + " acres, " + Format(hectares, "0.0000") +
                      " hectares; perimeter " + length(f.perimeter));
    return Json{{"area", area}, {"acres", acres(area)}, {"hectares", hectares}, {"perimeter", f.perimeter}};
  }

  if (command == "MAPCHECK") {
    auto m = std::make_shared<Mapcheck>();
    if (optional("AT")) {
      const ProjectPoint a = point(more("the point the deed starts at"));
      m->start = place(a);
    }
    done();
    mapcheck_ = m;
    return nullptr;
  }
  throw CogoError("there is no command \"" + words[0] + "\"; the commands are POINT, INVERSE, LOCATE, INTERSECT, STATION, POINTAT, DIVIDE, AREA and MAPCHECK");
}

}  // namespace tervalo
