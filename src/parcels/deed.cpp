#include "parcels/deed.h"

#include <cmath>
#include <numbers>

#include "text/format.h"

namespace tervalo {
namespace {

constexpr double kRadian = std::numbers::pi / 180;

double normal(double degrees) {
  double a = std::fmod(degrees, 360.0);
  if (a < 0) a += 360;
  return a >= 360 ? a - 360 : a;
}

std::string length(double v) { return Format(v, "0.0000"); }

struct Xy {
  double n = 0, e = 0;
};

std::vector<Xy> traced(const Course& c) {
  std::vector<Xy> out;
  for (const CoursePoint& p : tracedCourse(c)) out.push_back({p.n, p.e});
  return out;
}

double cross(Xy o, Xy a, Xy b) { return (a.e - o.e) * (b.n - o.n) - (a.n - o.n) * (b.e - o.e); }

bool segmentsMeet(Xy a, Xy b, Xy c, Xy d) {
  const double d1 = cross(c, d, a), d2 = cross(c, d, b), d3 = cross(a, b, c), d4 = cross(a, b, d);
  return ((d1 > 0) != (d2 > 0)) && ((d3 > 0) != (d4 > 0)) && d1 != 0 && d2 != 0 && d3 != 0 && d4 != 0;
}

}  // namespace

std::vector<CoursePoint> tracedCourse(const Course& c, int steps) {
  if (!c.curve) return {{c.fromN, c.fromE}, {c.toN, c.toE}};
  const double start = std::atan2(c.fromE - c.centerE, c.fromN - c.centerN);
  const double turn = (c.right ? 1 : -1) * c.delta * kRadian;
  std::vector<CoursePoint> out;
  for (int i = 0; i <= steps; ++i) {
    const double a = start + turn * i / steps;
    out.push_back({c.centerN + c.radius * std::cos(a), c.centerE + c.radius * std::sin(a)});
  }
  out.back() = {c.toN, c.toE};
  return out;
}

Course follow(const DeedCall& call, double n, double e, std::optional<double> before) {
  Course c;
  c.fromN = n;
  c.fromE = e;
  if (!call.curve) {
    if (!(call.distance > 0)) throw DeedError("a line's distance must be more than 0, not " + length(call.distance));
    c.azimuth = normal(call.azimuth);
    c.length = call.distance;
    c.toN = n + call.distance * std::cos(c.azimuth * kRadian);
    c.toE = e + call.distance * std::sin(c.azimuth * kRadian);
    c.tangentOut = c.azimuth;
    return c;
  }
  if (!(call.radius > 0)) throw DeedError("a curve's radius must be more than 0, not " + length(call.radius));
  double delta = 0;  // radians
  switch (call.by) {
    case DeedCall::By::Arc:
      if (!(call.value > 0)) throw DeedError("a curve's arc length must be more than 0, not " + length(call.value));
      delta = call.value / call.radius;
      break;
    case DeedCall::By::Chord:
      if (!(call.value > 0) || call.value > 2 * call.radius)
        throw DeedError("a chord of " + length(call.value) + " is longer than the diameter of a radius of " + length(call.radius) +
                        " (" + length(2 * call.radius) + ")");
      delta = 2 * std::asin(call.value / (2 * call.radius));
      break;
    case DeedCall::By::Delta:
      delta = call.value * kRadian;
      break;
  }
  if (!(delta > 0) || delta >= 2 * std::numbers::pi) throw DeedError("a curve's delta must be more than 0 and less than 360°");
  const double half = delta / 2 / kRadian, sign = call.right ? 1 : -1;
  double chordAzimuth = 0;
  if (call.chordAzimuth) {
    chordAzimuth = *call.chordAzimuth;
  } else if (call.radialAzimuth) {
    // The radial runs from the curve's start to its center: the tangent is a quarter turn from it.
    chordAzimuth = *call.radialAzimuth - sign * 90 + sign * half;
  } else if (before) {
    chordAzimuth = *before + sign * half;
  } else {
    throw DeedError("the first curve needs its chord bearing or radial bearing: there is no course before it to be tangent to");
  }
  c.curve = true;
  c.right = call.right;
  c.radius = call.radius;
  c.delta = delta / kRadian;
  c.arc = call.radius * delta;
  c.azimuth = normal(chordAzimuth);
  c.length = 2 * call.radius * std::sin(delta / 2);
  c.toN = n + c.length * std::cos(c.azimuth * kRadian);
  c.toE = e + c.length * std::sin(c.azimuth * kRadian);
  const double tangentIn = c.azimuth - sign * half;
  c.centerN = n + call.radius * std::cos((tangentIn + sign * 90) * kRadian);
  c.centerE = e + call.radius * std::sin((tangentIn + sign * 90) * kRadian);
  c.tangentOut = normal(c.azimuth + sign * half);
  return c;
}

FigureClosure closureOf(const std::vector<Course>& courses) {
  FigureClosure out;
  if (courses.empty()) return out;
  out.latitude = courses.back().toN - courses.front().fromN;
  out.departure = courses.back().toE - courses.front().fromE;
  out.distance = std::hypot(out.latitude, out.departure);
  double twice = 0, segments = 0;
  for (const Course& c : courses) {
    out.perimeter += c.curve ? c.arc : c.length;
    twice += c.fromE * c.toN - c.toE * c.fromN;
    if (c.curve) {
      // An arc turning right bulges left of its chord.
      const double d = c.delta * kRadian;
      const double segment = c.radius * c.radius / 2 * (d - std::sin(d));
      segments += c.right ? -segment : segment;
    }
  }
  const Course& last = courses.back();
  twice += last.toE * courses.front().fromN - courses.front().fromE * last.toN;
  out.area = std::fabs(twice / 2 + segments);
  if (out.distance > 1e-6) {
    out.azimuth = normal(std::atan2(out.departure, out.latitude) / kRadian);
    out.precision = std::llround(out.perimeter / out.distance);
  }
  return out;
}

std::optional<std::pair<int, int>> crossingCourses(const std::vector<Course>& courses) {
  const int n = static_cast<int>(courses.size());
  std::vector<std::vector<Xy>> traces;
  for (const Course& c : courses) traces.push_back(traced(c));
  for (int i = 0; i < n; ++i)
    for (int j = i + 1; j < n; ++j) {
      const bool adjacent = j == i + 1 || (i == 0 && j == n - 1);
      const auto& a = traces[static_cast<std::size_t>(i)];
      const auto& b = traces[static_cast<std::size_t>(j)];
      for (std::size_t p = 0; p + 1 < a.size(); ++p)
        for (std::size_t q = 0; q + 1 < b.size(); ++q) {
          // Neighbours share a corner: their pieces at it touch and never cross.
          if (adjacent && ((j == i + 1 && p + 2 == a.size() && q == 0) || (i == 0 && j == n - 1 && p == 0 && q + 2 == b.size()))) continue;
          if (segmentsMeet(a[p], a[p + 1], b[q], b[q + 1])) return std::pair{i + 1, j + 1};
        }
    }
  return std::nullopt;
}

void requireParcel(const std::vector<Course>& courses, const std::vector<std::string>& names) {
  if (courses.size() < 3)
    throw DeedError("a parcel needs three courses at least; this figure has " + std::to_string(courses.size()));
  if (const auto crossing = crossingCourses(courses)) {
    const auto name = [&names](int i) {
      return static_cast<std::size_t>(i - 1) < names.size() ? names[static_cast<std::size_t>(i - 1)] : "course " + std::to_string(i);
    };
    throw DeedError("the figure crosses itself: " + name(crossing->first) + " crosses " + name(crossing->second));
  }
}

double squareUnitsPerAcre(const std::string& unit) { return unit == "m" ? 4046.8564224 : 43560.0; }

}  // namespace tervalo
