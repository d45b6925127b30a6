#include "traverse/traverse.h"

#include <Eigen/Dense>

#include <algorithm>
#include <cctype>
#include <cmath>

#include "text/angle.h"
#include "text/justify.h"
#include "traverse/least_squares.h"

namespace tervalo {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kRadian = kPi / 180;

// Degrees brought within half a turn of zero.
double wrapHalf(double degrees) {
  degrees = std::fmod(degrees, 360);
  if (degrees > 180) degrees -= 360;
  if (degrees <= -180) degrees += 360;
  return degrees;
}

std::string trimmed(std::string t) {
  t.erase(0, t.find_first_not_of(' '));
  t.erase(t.find_last_not_of(' ') + 1);
  return t;
}

bool sameName(const std::string& a, const std::string& b) { return !a.empty() && upper(a) == upper(b); }

}  // namespace

double CourseEntry::horizontal() const {
  if (distance) return *distance * factor;
  if (slope && zenith) return *slope * std::sin(*zenith * kRadian) * factor;
  return 0;
}

const char* ruleName(AdjustRule rule) {
  switch (rule) {
    case AdjustRule::None: return "none";
    case AdjustRule::Transit: return "transit";
    case AdjustRule::Crandall: return "crandall";
    case AdjustRule::LeastSquares: return "least-squares";
    case AdjustRule::Compass: break;
  }
  return "compass";
}

std::optional<AdjustRule> ruleNamed(const std::string& name) {
  for (AdjustRule r : {AdjustRule::None, AdjustRule::Compass, AdjustRule::Transit, AdjustRule::Crandall, AdjustRule::LeastSquares})
    if (name == ruleName(r)) return r;
  return std::nullopt;
}

double normalAzimuth(double degrees) {
  degrees = std::fmod(degrees, 360);
  return degrees < 0 ? degrees + 360 : degrees;
}

double azimuthBetween(const PlanePosition& a, const PlanePosition& b) {
  return normalAzimuth(std::atan2(b.x - a.x, b.y - a.y) / kRadian);
}

std::optional<double> bearingAzimuth(const std::string& text) {
  std::string t = upper(trimmed(text));
  if (t.size() < 3) return std::nullopt;
  const char ns = t.front(), ew = t.back();
  if ((ns != 'N' && ns != 'S') || (ew != 'E' && ew != 'W')) return std::nullopt;
  const auto angle = angleFromText(trimmed(t.substr(1, t.size() - 2)));
  if (!angle || *angle < 0 || *angle > 90) return std::nullopt;
  if (ns == 'N') return ew == 'E' ? *angle : normalAzimuth(360 - *angle);
  return ew == 'E' ? 180 - *angle : 180 + *angle;
}

std::optional<double> deflectionAngle(const std::string& text) {
  std::string t = upper(trimmed(text));
  if (t.size() < 2) return std::nullopt;
  char side = 0;
  if (t.back() == 'R' || t.back() == 'L') {
    side = t.back();
    t.pop_back();
  } else if (t.front() == 'R' || t.front() == 'L') {
    side = t.front();
    t.erase(0, 1);
  }
  const auto angle = angleFromText(trimmed(t));
  if (!side || !angle || *angle < 0 || *angle >= 180) return std::nullopt;
  return side == 'R' ? *angle : -*angle;
}

std::string bearingText(double azimuth) {
  azimuth = normalAzimuth(azimuth);
  const bool north = azimuth <= 90 || azimuth >= 270, east = azimuth < 180;
  const double angle = north ? (east ? azimuth : 360 - azimuth) : (east ? 180 - azimuth : azimuth - 180);
  return std::string(north ? "N " : "S ") + decimalToDmsCarried(angle) + (east ? " E" : " W");
}

TraverseResult computeTraverse(const TraverseInput& in, const PointList& points, bool haveSource) {
  const auto find = [&](const KnownStation& k, const std::string& what) -> PlanePosition {
    if (k.at) return *k.at;
    if (k.point.empty()) throw TraverseError(what + ": give its point number, or its x and y");
    if (!haveSource)
      throw TraverseError(what + " names point " + k.point + ", which is in no source file (the traverse names none)");
    for (const std::string& wanted : {k.point, upper(k.point)})
      for (const PointRecord& p : points.records)
        if (!p.name.empty() && p.name == wanted) return {p.x, p.y};
    throw TraverseError(what + " names point " + k.point + ", which is not in the source file");
  };
  if (in.start.point.empty()) throw TraverseError("the start: give its point number (the name the station goes by)");
  if (in.courses.empty()) throw TraverseError("give at least one course");
  const PlanePosition start = find(in.start, "the start");
  std::optional<double> backAz = in.backsightAzimuth;
  std::optional<PlanePosition> backsightAt;
  if (in.backsightPoint && !backAz) {
    backsightAt = find(*in.backsightPoint, "the backsight");
    backAz = azimuthBetween(start, *backsightAt);
  }

  // The stations in the order met; the last course reaches the closing point.
  std::vector<std::string> names{in.start.point};
  const std::size_t n = in.courses.size();
  const bool loop = sameName(in.close.point, in.start.point) && !in.close.at;
  for (std::size_t k = 0; k < n; ++k) {
    const CourseEntry& c = in.courses[k];
    const std::string place = "course " + std::to_string(k + 1) + (c.to.empty() ? "" : " (to " + c.to + ")");
    if (c.to.empty()) throw TraverseError(place + ": name the station it reaches");
    if (!c.distance && !(c.slope && c.zenith)) throw TraverseError(place + ": give its distance, or its slope distance and zenith");
    if (!(c.horizontal() > 0) || !std::isfinite(c.horizontal())) throw TraverseError(place + ": a course of zero length");
    const bool last = k + 1 == n;
    for (const std::string& earlier : names)
      if (sameName(earlier, c.to) && !(last && loop))
        throw TraverseError(place + ": returns to station " + earlier + " before the end: a traverse visits each station once");
    if (last && !sameName(c.to, in.close.point))
      throw TraverseError(place + ": the last course reaches " + c.to + ", but the traverse closes on " +
                          (in.close.point.empty() ? std::string("a point not named") : in.close.point));
    if ((c.turn == Turn::AngleRight || c.turn == Turn::Deflection) && k == 0 && !backAz)
      throw TraverseError(place + ": an angle turned at the start needs the backsight: give \"backsight\"");
    names.push_back(last && loop ? in.start.point : c.to);
  }
  const PlanePosition knownEnd = loop ? start : find(in.close, "the closing point");

  // The azimuths as observed, with every angle corrected by `share`.
  const auto azimuths = [&](double share) {
    std::vector<double> az;
    for (std::size_t k = 0; k < n; ++k) {
      const CourseEntry& c = in.courses[k];
      const double back = k == 0 ? backAz.value_or(0) : az[k - 1] + 180;
      switch (c.turn) {
        case Turn::Azimuth:
        case Turn::Bearing: az.push_back(normalAzimuth(c.angle)); break;
        case Turn::AngleRight: az.push_back(normalAzimuth(back + c.angle + share)); break;
        case Turn::Deflection: az.push_back(normalAzimuth(back + 180 + c.angle + share)); break;
      }
    }
    return az;
  };
  const std::vector<double> measured = azimuths(0);

  TraverseResult out;
  out.rule = in.adjust;
  Closure& closure = out.closure;
  closure.loop = loop;
  // The angular closure: the closing direction as the angles carry it, less
  // the known one. Only angles after the last fixed azimuth reach it.
  std::optional<double> computedClose, knownClose;
  std::size_t chainFrom = 0;  // the first course whose angle reaches the close
  for (std::size_t k = 0; k < n; ++k)
    if (in.courses[k].turn == Turn::Azimuth || in.courses[k].turn == Turn::Bearing) chainFrom = k + 1;
  const bool backsightIsLastStation = loop && in.backsightPoint && in.backsightAzimuth && n >= 2 &&
                                      sameName(in.backsightPoint->point, in.courses[n - 2].to);
  if (in.closeAngle) {
    computedClose = normalAzimuth(measured.back() + 180 + *in.closeAngle);
    if (in.closeAzimuth) {
      knownClose = in.closeAzimuth;
      closure.angularAgainst = "the closing azimuth";
    } else if (loop) {
      knownClose = measured.front();  // the first course's direction, from the start
      chainFrom = std::max<std::size_t>(chainFrom, 1);
      closure.angularAgainst = "the first course";
    } else {
      throw TraverseError("close: a closing angle needs the closing azimuth it is turned to");
    }
  } else if (in.closeAzimuth) {
    computedClose = normalAzimuth(measured.back() + 180);
    knownClose = in.closeAzimuth;
    closure.angularAgainst = "the closing azimuth";
  } else if (backsightIsLastStation) {
    computedClose = normalAzimuth(measured.back() + 180);
    knownClose = in.backsightAzimuth;
    closure.angularAgainst = "the backsight";
  }
  std::vector<double> balanced = measured;
  if (computedClose) {
    const double misclosure = wrapHalf(*computedClose - *knownClose);
    closure.angular = misclosure * 3600;
    for (std::size_t k = chainFrom; k < n; ++k)
      if (in.courses[k].turn == Turn::AngleRight || in.courses[k].turn == Turn::Deflection) ++closure.angles;
    if (in.closeAngle) ++closure.angles;
    // A loop turned by angles right alone: their sum, and the sum a closed figure's angles have.
    const bool allRight = std::all_of(in.courses.begin() + static_cast<std::ptrdiff_t>(chainFrom), in.courses.end(),
                                      [](const CourseEntry& c) { return c.turn == Turn::AngleRight; });
    if (loop && allRight && (backsightIsLastStation || closure.angularAgainst == "the first course")) {
      double sum = in.closeAngle.value_or(0);
      for (std::size_t k = chainFrom; k < n; ++k) sum += in.courses[k].angle;
      const double figure = closure.angles;
      const double interior = (figure - 2) * 180, exterior = (figure + 2) * 180;
      closure.angleSum = sum;
      closure.angleSumShould = std::abs(sum - interior) <= std::abs(sum - exterior) ? interior : exterior;
    }
    // Shared equally among the angles that reach the close.
    if (closure.angles > 0) {
      const double share = -misclosure / closure.angles;
      std::vector<double> corrected;
      for (std::size_t k = 0; k < n; ++k) {
        const CourseEntry& c = in.courses[k];
        const bool angle = c.turn == Turn::AngleRight || c.turn == Turn::Deflection;
        const double back = k == 0 ? backAz.value_or(0) : corrected[k - 1] + 180;
        const double s = angle && k >= chainFrom ? share : 0;
        corrected.push_back(c.turn == Turn::AngleRight ? normalAzimuth(back + c.angle + s)
                            : c.turn == Turn::Deflection ? normalAzimuth(back + 180 + c.angle + s)
                                                         : normalAzimuth(c.angle));
      }
      balanced = corrected;
    }
  }

  // Latitudes and departures of the balanced courses, and the linear misclosure.
  PlanePosition at = start;
  std::vector<PlanePosition> unadjusted{start};
  for (std::size_t k = 0; k < n; ++k) {
    CourseResult c;
    c.from = names[k];
    c.to = names[k + 1];
    c.measured = measured[k];
    c.azimuth = balanced[k];
    c.distance = in.courses[k].horizontal();
    c.lat = c.distance * std::cos(c.azimuth * kRadian);
    c.dep = c.distance * std::sin(c.azimuth * kRadian);
    at = {at.x + c.dep, at.y + c.lat};
    unadjusted.push_back(at);
    closure.perimeter += c.distance;
    out.courses.push_back(c);
  }
  closure.lat = at.y - knownEnd.y;
  closure.dep = at.x - knownEnd.x;
  closure.length = std::hypot(closure.lat, closure.dep);
  closure.direction = closure.length > 0 ? normalAzimuth(std::atan2(closure.dep, closure.lat) / kRadian) : 0;
  if (closure.length > 0) closure.precision = closure.perimeter / closure.length;

  // The corrections to each course by the rule chosen.
  std::vector<PlanePosition> adjusted;
  std::vector<std::optional<ErrorEllipse>> ellipses;  // least squares: each station's
  switch (in.adjust) {
    case AdjustRule::None:
      break;
    case AdjustRule::Compass:
      for (CourseResult& c : out.courses) {
        c.cLat = -closure.lat * c.distance / closure.perimeter;
        c.cDep = -closure.dep * c.distance / closure.perimeter;
      }
      break;
    case AdjustRule::Transit: {
      double lats = 0, deps = 0;
      for (const CourseResult& c : out.courses) lats += std::abs(c.lat), deps += std::abs(c.dep);
      for (CourseResult& c : out.courses) {
        c.cLat = lats > 0 ? -closure.lat * std::abs(c.lat) / lats : 0;
        c.cDep = deps > 0 ? -closure.dep * std::abs(c.dep) / deps : 0;
      }
      break;
    }
    case AdjustRule::Crandall: {
      // The directions held, each distance changed by least squares with
      // its variance in proportion to its length.
      const Eigen::Index m = static_cast<Eigen::Index>(n);
      Eigen::MatrixXd a(2, m);
      Eigen::VectorXd d(m);
      for (Eigen::Index k = 0; k < m; ++k) {
        const CourseResult& c = out.courses[static_cast<std::size_t>(k)];
        a(0, k) = std::cos(c.azimuth * kRadian);
        a(1, k) = std::sin(c.azimuth * kRadian);
        d(k) = c.distance;
      }
      const Eigen::Matrix2d normal = a * d.asDiagonal() * a.transpose();
      if (std::abs(normal.determinant()) < 1e-12 * normal.squaredNorm())
        throw TraverseError("Crandall's method needs courses in more than one direction");
      const Eigen::Vector2d multipliers = normal.inverse() * Eigen::Vector2d(-closure.lat, -closure.dep);
      const Eigen::VectorXd change = d.asDiagonal() * a.transpose() * multipliers;
      for (Eigen::Index k = 0; k < m; ++k) {
        CourseResult& c = out.courses[static_cast<std::size_t>(k)];
        c.cLat = change(k) * a(0, k);
        c.cDep = change(k) * a(1, k);
      }
      break;
    }
    case AdjustRule::LeastSquares: {
      // Every station a point of the network; the start, a known closing
      // point and a known backsight held; each course a distance and a
      // direction, each turned angle an angle between its two sightings.
      std::vector<NetworkPoint> network;
      std::vector<int> index;  // of each station in `names`
      for (std::size_t s = 0; s < names.size(); ++s) {
        if (s == names.size() - 1 && loop) {
          index.push_back(0);
          break;
        }
        const bool fixed = s == 0 || (s == names.size() - 1);
        index.push_back(static_cast<int>(network.size()));
        network.push_back({s == names.size() - 1 ? knownEnd : unadjusted[s], fixed, names[s]});
      }
      // The compass rule's stations are where the iteration starts.
      double run = 0;
      for (std::size_t k = 0; k + 1 < n; ++k) {
        run += out.courses[k].distance;
        NetworkPoint& p = network[static_cast<std::size_t>(index[k + 1])];
        p.at = {unadjusted[k + 1].x - closure.dep * run / closure.perimeter, unadjusted[k + 1].y - closure.lat * run / closure.perimeter};
      }
      NetworkDirection backsight{-1, backAz.value_or(0)};
      if (backsightAt) {
        backsight.point = static_cast<int>(network.size());
        network.push_back({*backsightAt, true, in.backsightPoint ? in.backsightPoint->point : "the backsight"});
      } else if (backsightIsLastStation) {
        backsight.point = index[n - 1];
      }
      std::vector<NetworkObservation> obs;
      const double sigmaAngle = in.sigmaAngle > 0 ? in.sigmaAngle : 1;
      for (std::size_t k = 0; k < n; ++k) {
        const CourseEntry& c = in.courses[k];
        const int a = index[k], b = index[k + 1];
        const std::string line = names[k] + "-" + names[k + 1];
        const double d = c.horizontal();
        const double sd = std::hypot(in.sigmaDistance > 0 ? in.sigmaDistance : 0.01, in.ppm * 1e-6 * d);
        obs.push_back({NetworkObservation::Kind::Distance, a, b, {}, {}, d, sd, "distance " + line});
        const NetworkDirection from = k == 0 ? backsight : NetworkDirection{index[k - 1], 0};
        const std::string fromName = k == 0 ? (in.backsightPoint ? in.backsightPoint->point : "the backsight") : names[k - 1];
        switch (c.turn) {
          case Turn::Azimuth:
          case Turn::Bearing:
            obs.push_back({NetworkObservation::Kind::Angle, a, 0, {-1, 0}, {b, 0}, c.angle, sigmaAngle, "azimuth " + line});
            break;
          case Turn::AngleRight:
            obs.push_back({NetworkObservation::Kind::Angle, a, 0, from, {b, 0}, c.angle, sigmaAngle,
                           "angle at " + names[k] + " from " + fromName + " to " + names[k + 1]});
            break;
          case Turn::Deflection:
            obs.push_back({NetworkObservation::Kind::Angle, a, 0, from, {b, 0}, c.angle + 180, sigmaAngle,
                           // observed as the angle right it makes (a deflection plus 180)
                           "angle at " + names[k] + " from " + fromName + " to " + names[k + 1] + " (deflection)"});
            break;
        }
      }
      if (in.closeAngle) {
        const NetworkDirection to = in.closeAzimuth ? NetworkDirection{-1, *in.closeAzimuth} : NetworkDirection{index[1], 0};
        obs.push_back({NetworkObservation::Kind::Angle, index[n], 0, {index[n - 1], 0}, to, *in.closeAngle, sigmaAngle,
                       "closing angle at " + names[n]});
      }
      if (backsightIsLastStation)  // the loop's known direction, held
        obs.push_back({NetworkObservation::Kind::Angle, 0, 0, {-1, 0}, {index[n - 1], 0}, *in.backsightAzimuth, sigmaAngle / 1000,
                       "azimuth " + names[0] + "-" + names[n - 1]});
      const NetworkAdjustment solved = adjustTraverseNetwork(network, obs, in.units);
      out.leastSquares = solved.report;
      for (std::size_t s = 0; s < names.size(); ++s) adjusted.push_back(solved.points[static_cast<std::size_t>(index[s])]);
      for (std::size_t k = 0; k < n; ++k) {
        CourseResult& c = out.courses[k];
        c.cLat = (adjusted[k + 1].y - adjusted[k].y) - c.lat;
        c.cDep = (adjusted[k + 1].x - adjusted[k].x) - c.dep;
      }
      for (std::size_t s = 0; s < names.size(); ++s) ellipses.push_back(solved.ellipses[static_cast<std::size_t>(index[s])]);
      break;
    }
  }

  // The adjusted courses and stations.
  if (in.adjust != AdjustRule::LeastSquares) {
    adjusted = {start};
    for (const CourseResult& c : out.courses) adjusted.push_back({adjusted.back().x + c.dep + c.cDep, adjusted.back().y + c.lat + c.cLat});
    if (in.adjust != AdjustRule::None) adjusted.back() = knownEnd;  // exactly, not to the last bit of the sums
  }
  for (std::size_t k = 0; k < n; ++k) {
    CourseResult& c = out.courses[k];
    c.adjustedDistance = std::hypot(adjusted[k + 1].x - adjusted[k].x, adjusted[k + 1].y - adjusted[k].y);
    c.adjustedAzimuth = azimuthBetween(adjusted[k], adjusted[k + 1]);
  }
  for (std::size_t s = 0; s < names.size(); ++s) {
    if (s == names.size() - 1 && loop) break;
    StationResult st{names[s], s == 0 || s == names.size() - 1, unadjusted[s], adjusted[s]};
    if (s < ellipses.size()) st.ellipse = ellipses[s];
    out.stations.push_back(st);
  }

  // Side shots from the adjusted stations, turned from each station's backsight.
  for (const SideShot& shot : in.sideShots) {
    const auto station = std::find_if(names.begin(), names.end(), [&shot](const std::string& s) { return sameName(s, shot.from); });
    if (station == names.end())
      throw TraverseError("side shot to " + shot.to + ": its station " + shot.from + " is not on the traverse");
    const std::size_t s = static_cast<std::size_t>(station - names.begin());
    if (s == 0 && !backAz) throw TraverseError("side shot to " + shot.to + " from the start needs the backsight");
    const double back = s == 0 ? (backsightIsLastStation ? azimuthBetween(adjusted[0], adjusted[n - 1]) : *backAz)
                               : azimuthBetween(adjusted[s], adjusted[s - 1]);
    const double az = (back + shot.angleRight) * kRadian;
    const PlanePosition p{adjusted[s].x + shot.distance * shot.factor * std::sin(az), adjusted[s].y + shot.distance * shot.factor * std::cos(az)};
    out.sideShots.push_back({shot.to, false, p, p, std::nullopt, "side shot from " + names[s] + (shot.note.empty() ? "" : ": " + shot.note)});
  }
  return out;
}

}  // namespace tervalo
