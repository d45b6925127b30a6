#include "alignment/alignment.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include <boost/math/quadrature/gauss.hpp>

#include "hcurve/curve.h"
#include "text/format.h"
#include "text/number.h"
#include "text/station.h"

namespace tervalo {
namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kDegree = kPi / 180;

double wrap(double a) {  // into (-π, π]
  a = std::fmod(a, 2 * kPi);
  if (a <= -kPi) a += 2 * kPi;
  if (a > kPi) a -= 2 * kPi;
  return a;
}

double normalDegrees(double radians) {
  double d = std::fmod(radians / kDegree, 360.0);
  if (d < 0) d += 360;
  return d;
}

std::string piName(int i) { return "PI " + std::to_string(i + 1); }

std::string number(double v) { return Format(v, "0.000"); }

// ∫ (cos, sin) of a heading quadratic in t over [0, l], in pieces short
// enough in turning that the Gauss rule is exact to the last digit.
void integrateHeading(double a0, double a1, double a2, double l, double& n, double& e) {
  n = e = 0;
  const double turn = std::fabs(a1 * l) + std::fabs(a2 * l * l);
  const int pieces = 1 + static_cast<int>(turn / 0.25);
  for (int i = 0; i < pieces; ++i) {
    const double from = l * i / pieces, to = l * (i + 1) / pieces;
    n += boost::math::quadrature::gauss<double, 20>::integrate([&](double t) { return std::cos(a0 + a1 * t + a2 * t * t); }, from, to);
    e += boost::math::quadrature::gauss<double, 20>::integrate([&](double t) { return std::sin(a0 + a1 * t + a2 * t * t); }, from, to);
  }
}

// The direction of an element at `l` from its start, radians, unwrapped.
double headingAt(const Element& e, double l) {
  switch (e.kind) {
    case ElementKind::Line: return e.azimuth;
    case ElementKind::Arc: return e.azimuth + e.k0 * l * e.arcScale;
    case ElementKind::Spiral: break;
  }
  return e.azimuth + e.k0 * l + (e.k1 - e.k0) / (2 * e.length) * l * l;
}

}  // namespace

void clothoidPoint(double l, double radius, double spiralLength, double& x, double& y) {
  integrateHeading(0, 0, 1 / (2 * radius * spiralLength), l, x, y);
}

Pose poseOn(const Element& el, double l) {
  Pose p;
  const double heading = headingAt(el, l);
  switch (el.kind) {
    case ElementKind::Line:
      p.northing = el.northing + l * std::cos(el.azimuth);
      p.easting = el.easting + l * std::sin(el.azimuth);
      break;
    case ElementKind::Arc: {
      p.northing = el.northing + (std::sin(heading) - std::sin(el.azimuth)) / el.k0;
      p.easting = el.easting + (std::cos(el.azimuth) - std::cos(heading)) / el.k0;
      break;
    }
    case ElementKind::Spiral: {
      const double a2 = (el.k1 - el.k0) / (2 * el.length);
      double n = 0, e = 0;
      integrateHeading(el.azimuth, el.k0, a2, l, n, e);
      p.northing = el.northing + n;
      p.easting = el.easting + e;
      break;
    }
  }
  p.azimuth = normalDegrees(heading);
  return p;
}

std::optional<double> parseStation(const std::string& text) {
  std::string t;
  for (char c : text)
    if (c != ' ') t += c;
  if (t.empty()) return std::nullopt;
  if (t.find('+') == std::string::npos) return finiteNumber(t);
  const bool negative = t[0] == '-';
  const std::string body = negative ? t.substr(1) : t;
  const std::size_t plus = body.find('+');
  if (plus == 0 || plus + 1 >= body.size() || body.find('+', plus + 1) != std::string::npos) return std::nullopt;
  const auto whole = finiteNumber(body.substr(0, plus));
  const auto within = finiteNumber(body.substr(plus + 1));
  if (!whole || !within || *whole < 0 || *within < 0 || *whole != std::floor(*whole)) return std::nullopt;
  const double value = stationToNumber(body).number;
  return negative ? -value : value;
}

std::string Alignment::stationText(double station) const {
  const bool metric = input_.units == "m";
  const double unit = metric ? 1000 : 100;
  const double places = metric ? 1000 : 100;
  double v = std::round(std::fabs(station) * places) / places;
  const double whole = std::floor(v / unit + 1e-9);
  const double within = v - whole * unit;
  std::string text = Format(whole, "0") + "+" + Format(std::max(0.0, within), metric ? "000.000" : "00.00");
  return (station < 0 && v > 0 ? "-" : "") + text;
}

Alignment::Alignment(const AlignmentInput& in) : input_(in) {
  const int n = static_cast<int>(in.pis.size());
  if (n < 2) throw AlignmentError("an alignment needs two PIs at least; it has " + std::to_string(n));
  for (int i = 0; i < n; ++i) {
    const AlignmentPi& p = in.pis[static_cast<std::size_t>(i)];
    if (!std::isfinite(p.northing) || !std::isfinite(p.easting)) throw AlignmentError(piName(i) + ": its northing and easting must be numbers");
    if (p.radius && !(*p.radius > 0)) throw AlignmentError(piName(i) + ": a radius of " + number(*p.radius) + "; a curve's radius is more than 0");
    if (p.spiralIn < 0 || p.spiralOut < 0) throw AlignmentError(piName(i) + ": a spiral's length is 0 or more");
    if ((p.spiralIn > 0 || p.spiralOut > 0) && !p.radius) throw AlignmentError(piName(i) + ": spirals lead into a curve: give its radius");
    if ((i == 0 || i == n - 1) && p.radius)
      throw AlignmentError(piName(i) + (i == 0 ? " begins" : " ends") + " the alignment: it has no curve (its radius is for a PI between two tangents)");
    if (i > 0) {
      const AlignmentPi& q = in.pis[static_cast<std::size_t>(i - 1)];
      if (std::hypot(p.northing - q.northing, p.easting - q.easting) < 1e-9)
        throw AlignmentError(piName(i) + " is at the place of " + piName(i - 1));
    }
  }
  const auto leg = [&](int i) {  // from PI i to PI i+1
    const AlignmentPi &a = in.pis[static_cast<std::size_t>(i)], &b = in.pis[static_cast<std::size_t>(i + 1)];
    return std::pair{std::hypot(b.northing - a.northing, b.easting - a.easting), std::atan2(b.easting - a.easting, b.northing - a.northing)};
  };

  // Each interior PI's curve: the tangents it takes from its two legs.
  std::vector<double> tIn(static_cast<std::size_t>(n)), tOut(static_cast<std::size_t>(n));
  std::vector<std::optional<PiCurve>> curveAt(static_cast<std::size_t>(n));
  for (int i = 1; i + 1 < n; ++i) {
    const AlignmentPi& p = in.pis[static_cast<std::size_t>(i)];
    const double delta = wrap(leg(i).second - leg(i - 1).second);
    if (!p.radius || std::fabs(delta) < 1e-12) continue;
    if (std::fabs(delta) > kPi - 1e-9) throw AlignmentError(piName(i) + ": the alignment turns back on itself there");
    const double R = *p.radius, turn = std::fabs(delta);
    PiCurve c;
    c.pi = i;
    c.delta = delta / kDegree;
    c.radius = R;
    double p1 = 0, k1 = 0, p2 = 0, k2 = 0, th1 = 0, th2 = 0;
    const auto spiral = [&](double ls, double& pp, double& kk, double& th) -> std::optional<SpiralData> {
      if (ls <= 0) return std::nullopt;
      SpiralData s;
      s.length = ls;
      th = ls / (2 * R);
      s.theta = th / kDegree;
      clothoidPoint(ls, R, ls, s.x, s.y);
      pp = s.p = s.y - R * (1 - std::cos(th));
      kk = s.k = s.x - R * std::sin(th);
      s.longTangent = s.x - s.y / std::tan(th);
      s.shortTangent = s.y / std::sin(th);
      s.longChord = std::hypot(s.x, s.y);
      return s;
    };
    c.in = spiral(p.spiralIn, p1, k1, th1);
    c.out = spiral(p.spiralOut, p2, k2, th2);
    if (th1 + th2 > turn)
      throw AlignmentError(piName(i) + ": its spirals turn " + Format((th1 + th2) / kDegree, "0.0000") + " degrees together, but the tangents only " +
                           Format(turn / kDegree, "0.0000") + ": a spiral longer than its curve allows");
    c.tangentIn = k1 + ((R + p2) - (R + p1) * std::cos(turn)) / std::sin(turn);
    c.tangentOut = k2 + ((R + p1) - (R + p2) * std::cos(turn)) / std::sin(turn);
    c.circleDelta = (turn - th1 - th2) / kDegree;
    // The circular part as the Horizontal Curve window solves it from its delta and radius.
    CurveElements given;
    given.delta = c.circleDelta;
    given.radius = R;
    CurveOptions options;
    options.chordDefinition = in.chord;
    options.metric = in.units == "m";
    options.pi = 4 * std::atan(1.0);
    if (c.circleDelta > 0) {
      const CurveSolution solved = solveCurve(given, options);
      if (solved.fault == CurveFault::ChordRadiusUnder50)
        throw AlignmentError(piName(i) + ": a radius of " + number(R) + " is under 50, which has no degree of curve by chord definition");
      c.degree = solved.e.degree;
      c.circleLength = solved.e.length;
      c.external = solved.e.external;
      c.midOrdinate = solved.e.midOrdinate;
      c.chord = solved.e.chord;
    } else {
      c.degree = in.chord ? 2 * std::asin(std::min(1.0, 50 / R)) / kDegree : 100 / (R * kDegree);
    }
    tIn[static_cast<std::size_t>(i)] = c.tangentIn;
    tOut[static_cast<std::size_t>(i)] = c.tangentOut;
    curveAt[static_cast<std::size_t>(i)] = c;
  }
  for (int i = 0; i + 1 < n; ++i) {
    const double wanted = tOut[static_cast<std::size_t>(i)] + tIn[static_cast<std::size_t>(i + 1)];
    if (wanted > leg(i).first + 1e-9) {
      const std::string whose = i == 0                                          ? "the curve at " + piName(i + 1) + " runs back past " + piName(i)
                                : i + 2 == n                                    ? "the curve at " + piName(i) + " runs on past " + piName(i + 1)
                                : tOut[static_cast<std::size_t>(i)] == 0        ? "the curve at " + piName(i + 1) + " runs back past " + piName(i)
                                : tIn[static_cast<std::size_t>(i + 1)] == 0     ? "the curve at " + piName(i) + " runs on past " + piName(i + 1)
                                                                                : "the curves at " + piName(i) + " and " + piName(i + 1) + " overlap";
      const bool both = tOut[static_cast<std::size_t>(i)] > 0 && tIn[static_cast<std::size_t>(i + 1)] > 0;
      throw AlignmentError(whose + (both ? ": their tangents take " : ": its tangent takes ") + number(wanted) + " of the " + number(leg(i).first) +
                           " between them");
    }
  }

  // The elements in order, each starting where the one before ends.
  double along = 0;
  Pose here{in.pis[0].northing, in.pis[0].easting, leg(0).second};
  double heading = leg(0).second;
  keys_.push_back({"POT", 0, here.northing, here.easting, 0});
  const auto add = [&](Element e) {
    e.start = along;
    e.northing = here.northing;
    e.easting = here.easting;
    e.azimuth = heading;
    const Pose end = poseOn(e, e.length);
    along += e.length;
    here = end;
    heading = headingAt(e, e.length);
    e.endNorthing = end.northing, e.endEasting = end.easting, e.endAzimuth = heading;
    elements_.push_back(e);
  };
  for (int i = 1; i < n; ++i) {
    const auto [legLength, legAzimuth] = leg(i - 1);
    const double tangent = legLength - tOut[static_cast<std::size_t>(i - 1)] - tIn[static_cast<std::size_t>(i)];
    heading = legAzimuth;
    if (tangent > 1e-9) {
      Element line;
      line.kind = ElementKind::Line;
      line.length = tangent;
      add(line);
    }
    const auto& c = curveAt[static_cast<std::size_t>(i)];
    if (i == n - 1) break;
    if (!c) {
      keys_.push_back({"PI", along, here.northing, here.easting, i});
      continue;
    }
    const double sign = c->delta > 0 ? 1 : -1, k = sign / c->radius;
    const bool spirals = c->in || c->out;
    keys_.push_back({spirals ? "TS" : "PC", along, here.northing, here.easting, i});
    if (c->in) {
      Element s;
      s.kind = ElementKind::Spiral;
      s.length = c->in->length;
      s.k0 = 0, s.k1 = k, s.pi = i;
      add(s);
      keys_.push_back({"SC", along, here.northing, here.easting, i});
    }
    if (c->circleDelta > 0) {
      Element a;
      a.kind = ElementKind::Arc;
      a.length = c->circleLength;
      a.k0 = a.k1 = k, a.pi = i;
      a.arcScale = c->radius * c->circleDelta * kDegree / c->circleLength;
      add(a);
    }
    if (c->out) {
      keys_.push_back({"CS", along, here.northing, here.easting, i});
      Element s;
      s.kind = ElementKind::Spiral;
      s.length = c->out->length;
      s.k0 = k, s.k1 = 0, s.pi = i;
      add(s);
    }
    keys_.push_back({spirals ? "ST" : "PT", along, here.northing, here.easting, i});
    curves_.push_back(*c);
  }
  length_ = along;
  keys_.push_back({"POT", along, here.northing, here.easting, n - 1});

  // The equations, in order along the alignment.
  double offset = in.start;
  for (std::size_t j = 0; j < in.equations.size(); ++j) {
    const StationEquation& q = in.equations[j];
    const double at = q.back - offset;
    const std::string name = "station equation " + std::to_string(j + 1) + " (back " + stationText(q.back) + ", ahead " + stationText(q.ahead) + ")";
    if (at < 0 || at > length_)
      throw AlignmentError(name + ": its back station is not on the alignment, which runs from " + stationText(stationAt(0)) + " to " +
                           stationText(stationAt(length_)) + (j ? " with the equations before it" : ""));
    if (!equationAlong_.empty() && at <= equationAlong_.back())
      throw AlignmentError(name + ": it comes at or before station equation " + std::to_string(j) + ": equations go in the order of stationing");
    equationAlong_.push_back(at);
    offset += q.ahead - q.back;
  }
}

Alignment::Alignment(const AlignmentInput& in, std::vector<Element> elements, std::vector<double> equationAlong)
    : input_(in), elements_(std::move(elements)), equationAlong_(std::move(equationAlong)) {
  if (elements_.empty()) throw AlignmentError("the alignment has no elements");
  double along = 0;
  const auto kindName = [](const Element& e) { return e.kind == ElementKind::Line ? 'L' : e.kind == ElementKind::Arc ? 'C' : 'S'; };
  for (std::size_t i = 0; i < elements_.size(); ++i) {
    Element& e = elements_[i];
    if (!(e.length > 0)) throw AlignmentError("element " + std::to_string(i + 1) + ": a length of " + number(e.length) + "; it must be more than 0");
    e.start = along;
    const Pose end = poseOn(e, e.length);
    e.endNorthing = end.northing, e.endEasting = end.easting, e.endAzimuth = headingAt(e, e.length);
    // Where two elements meet: TS, SC, CS, ST, PC, PT, or a curve joining a curve (PCC, or a spiral's own).
    std::string name = "POT";
    if (i > 0) {
      const char a = kindName(elements_[i - 1]), b = kindName(e);
      name = a == 'L' && b == 'S' ? "TS" : a == 'S' && b == 'C' ? "SC" : a == 'C' && b == 'S' ? "CS" : a == 'S' && b == 'L' ? "ST"
           : a == 'L' && b == 'C' ? "PC" : a == 'C' && b == 'L' ? "PT" : a == 'C' && b == 'C' ? "PCC" : a == 'S' && b == 'S' ? "SS" : "POT";
    }
    if (i == 0 || name != "POT") keys_.push_back({name, along, e.northing, e.easting, -1});
    along += e.length;
  }
  length_ = along;
  const Element& last = elements_.back();
  keys_.push_back({"POT", along, last.endNorthing, last.endEasting, -1});
  for (std::size_t j = 0; j < equationAlong_.size(); ++j)
    if (equationAlong_[j] < -1e-6 || equationAlong_[j] > length_ + 1e-6 || (j > 0 && equationAlong_[j] <= equationAlong_[j - 1]))
      throw AlignmentError("station equation " + std::to_string(j + 1) + ": it does not stand on the alignment in the order of stationing");
}

double Alignment::stationAt(double along) const {
  double s = input_.start + along;
  for (std::size_t j = 0; j < equationAlong_.size(); ++j)
    if (along >= equationAlong_[j]) s += input_.equations[j].ahead - input_.equations[j].back;
  return s;
}

double Alignment::alongAt(double station) const {
  // Read in the stationing of the last equation whose back station it is at or beyond.
  double offset = input_.start;
  std::size_t region = 0;
  double shift = input_.start;
  for (std::size_t j = 0; j < input_.equations.size(); ++j) {
    shift += input_.equations[j].ahead - input_.equations[j].back;
    if (station >= input_.equations[j].back - 1e-9) region = j + 1, offset = shift;
  }
  const double along = station - offset;
  if (region > 0 && along < equationAlong_[region - 1] - 1e-9) {
    const StationEquation& q = input_.equations[region - 1];
    if (std::fabs(station - q.back) < 1e-9) return equationAlong_[region - 1];  // the back station names the equation's own point
    throw AlignmentError("station " + stationText(station) + " is in the gap of station equation " + std::to_string(region) + " (back " +
                         stationText(q.back) + ", ahead " + stationText(q.ahead) + "): no point of the alignment has it");
  }
  if (along < -1e-9 || along > length_ + 1e-9)
    throw AlignmentError("station " + stationText(station) + " is beyond the alignment, which runs from " + stationText(stationAt(0)) + " to " +
                         stationText(stationAt(length_)));
  return std::clamp(along, 0.0, length_);
}

Pose Alignment::at(double along, double offset) const {
  if (along < -1e-9 || along > length_ + 1e-9)
    throw AlignmentError(Format(along, "0.000") + " along is beyond the alignment, which is " + Format(length_, "0.000") + " long");
  along = std::clamp(along, 0.0, length_);
  auto e = std::upper_bound(elements_.begin(), elements_.end(), along, [](double a, const Element& x) { return a < x.start; });
  if (e != elements_.begin()) --e;
  Pose p = poseOn(*e, along - e->start);
  const double right = p.azimuth * kDegree + kPi / 2;
  p.northing += offset * std::cos(right);
  p.easting += offset * std::sin(right);
  return p;
}

std::vector<Projection> Alignment::project(double northing, double easting) const {
  std::vector<Projection> found;
  const auto consider = [&](std::size_t i, double l) {
    const Element& e = elements_[i];
    const Pose p = poseOn(e, l);
    const double a = p.azimuth * kDegree;
    const double dn = northing - p.northing, de = easting - p.easting;
    // Right of the direction of stationing is positive.
    const double offset = de * std::cos(a) - dn * std::sin(a);
    const double along = e.start + l;
    for (const Projection& f : found)
      if (std::fabs(f.along - along) < 1e-7 && std::fabs(f.offset - offset) < 1e-7) return;  // at a joint, once
    found.push_back({along, offset, static_cast<int>(i), e.kind});
  };
  // f(l): the point's distance ahead of the element's normal at l; at the ends from the kept poses.
  const auto aheadOf = [&](double n, double e, double a) { return (northing - n) * std::cos(a) + (easting - e) * std::sin(a); };
  const auto ahead = [&](const Element& e, double l) {
    const Pose p = poseOn(e, l);
    return aheadOf(p.northing, p.easting, p.azimuth * kDegree);
  };
  for (std::size_t i = 0; i < elements_.size(); ++i) {
    const Element& e = elements_[i];
    const double tol = 1e-9 * std::max(1.0, e.length);
    if (e.kind == ElementKind::Line) {
      const double l = (northing - e.northing) * std::cos(e.azimuth) + (easting - e.easting) * std::sin(e.azimuth);
      if (l >= -tol && l <= e.length + tol) consider(i, std::clamp(l, 0.0, e.length));
      continue;
    }
    if (e.kind == ElementKind::Arc) {
      const double right = e.azimuth + kPi / 2;
      const double cn = e.northing + std::cos(right) / e.k0, ce = e.easting + std::sin(right) / e.k0;
      const double dn = northing - cn, de = easting - ce;
      if (std::hypot(dn, de) < 1e-12) continue;  // the centre projects everywhere: no answer
      // The angle turned from the start to the point's radial line, in the turning direction.
      const double startRadial = std::atan2(e.easting - ce, e.northing - cn);
      const double pointRadial = std::atan2(de, dn);
      const double sign = e.k0 > 0 ? 1 : -1;
      double turned = wrap(pointRadial - startRadial) * sign;
      const double total = std::fabs(e.k0) * e.length * e.arcScale;
      if (turned < -1e-12 && turned + 2 * kPi <= total + 1e-12) turned += 2 * kPi;
      const double l = turned / (std::fabs(e.k0) * e.arcScale);
      if (l >= -tol && l <= e.length + tol) consider(i, std::clamp(l, 0.0, e.length));
      continue;
    }
    // A spiral: a root of f between its ends, by bisection sharpened with the secant.
    double a = 0, b = e.length, fa = aheadOf(e.northing, e.easting, e.azimuth), fb = aheadOf(e.endNorthing, e.endEasting, e.endAzimuth);
    if (std::fabs(fa) <= tol) {
      consider(i, 0);
      continue;
    }
    if (std::fabs(fb) <= tol) {
      consider(i, e.length);
      continue;
    }
    if ((fa > 0) == (fb > 0)) continue;
    for (int k = 0; k < 200 && b - a > 1e-13 * std::max(1.0, e.length); ++k) {
      double m = a - fa * (b - a) / (fb - fa);
      if (!(m > a && m < b) || k % 3 == 2) m = (a + b) / 2;
      const double fm = ahead(e, m);
      if (fm == 0) {
        a = b = m;
        break;
      }
      if ((fm > 0) == (fa > 0)) a = m, fa = fm;
      else b = m, fb = fm;
    }
    consider(i, (a + b) / 2);
  }
  if (found.empty()) {
    const Pose first = at(0), last = at(length_);
    const double before = (northing - first.northing) * std::cos(first.azimuth * kDegree) + (easting - first.easting) * std::sin(first.azimuth * kDegree);
    throw AlignmentError(std::string("the point projects onto no element: it lies ") +
                         (before < 0 ? Format(-before, "0.000") + " before the alignment's start at " + stationText(stationAt(0))
                                     : "beyond the alignment's end at " + stationText(stationAt(length_)) + " (" +
                                           Format(std::hypot(northing - last.northing, easting - last.easting), "0.000") + " from it)"));
  }
  std::stable_sort(found.begin(), found.end(), [](const Projection& x, const Projection& y) { return std::fabs(x.offset) < std::fabs(y.offset); });
  return found;
}

}  // namespace tervalo
