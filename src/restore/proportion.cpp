#include "restore/proportion.h"

#include <array>
#include <cmath>

#include "text/format.h"

namespace tervalo {
namespace {

constexpr double kDegree = 3.14159265358979323846 / 180;

// A position in cardinal coordinates: east and north of the true meridian.
struct Cardinal {
  double e = 0, n = 0;
};

struct Frame {
  double cosB = 1, sinB = 0;
  Cardinal in(Position p) const { return {p.x * cosB - p.y * sinB, p.x * sinB + p.y * cosB}; }
  Position out(Cardinal c) const { return {c.e * cosB + c.n * sinB, -c.e * sinB + c.n * cosB}; }
};

std::string chains(double c) { return Format(c, "0.00") + " ch"; }

// A control as the rule's words name it: its number, or its direction.
std::string named(const Control& c, const char* direction) {
  return (c.point.empty() ? std::string("the ") + direction + " control" : c.point) + " (" + chains(c.record) + ")";
}

void requireRecord(const Control& c, const char* direction) {
  if (!(c.record > 0) || !std::isfinite(c.record))
    throw RestoreError(std::string("the record distance to the ") + direction + " control must be more than 0 chains");
}

// Single proportion on the straight line from `first` to `second`: the
// lost corner is at r1 / (r1 + r2) of the measured line from the first.
// Lengths of the line as measured and as recorded are in proportion, so
// every part of it takes its share of the difference.
Position alongLine(const Control& first, const Control& second, const char* firstName, const char* secondName) {
  requireRecord(first, firstName);
  requireRecord(second, secondName);
  if (first.at.x == second.at.x && first.at.y == second.at.y)
    throw RestoreError(std::string("the ") + firstName + " and " + secondName + " controls are one point");
  const double t = first.record / (first.record + second.record);
  return {first.at.x + (second.at.x - first.at.x) * t, first.at.y + (second.at.y - first.at.y) * t};
}

// One cardinal coordinate by single proportion between two controls, that
// coordinate only (double proportion): the coordinate of the first plus
// its share r1 / (r1 + r2) of the difference.
double proportioned(double first, double second, const Control& a, const Control& b) {
  return first + (second - first) * a.record / (a.record + b.record);
}

}  // namespace

const char* methodName(RestoreMethod method) {
  switch (method) {
    case RestoreMethod::Auto: return "auto";
    case RestoreMethod::Single: return "single";
    case RestoreMethod::Double: return "double";
    case RestoreMethod::ThreePoint: return "three-point";
    case RestoreMethod::TwoPoint: return "two-point";
    case RestoreMethod::OnePoint: return "one-point";
  }
  return "auto";
}

std::optional<RestoreMethod> methodNamed(const std::string& name) {
  for (RestoreMethod m : {RestoreMethod::Auto, RestoreMethod::Single, RestoreMethod::Double, RestoreMethod::ThreePoint,
                          RestoreMethod::TwoPoint, RestoreMethod::OnePoint})
    if (name == methodName(m)) return m;
  return std::nullopt;
}

Restored restoreCorner(const LostCorner& c, double basis, double chain) {
  if (!(c.index > 0) || !std::isfinite(c.index)) throw RestoreError("the index must be a number more than 0");
  if (!std::isfinite(basis)) throw RestoreError("the basis must be a number of degrees");
  const bool n = c.north.has_value(), s = c.south.has_value(), e = c.east.has_value(), w = c.west.has_value();
  const int count = n + s + e + w;
  if (count == 0) throw RestoreError("no control corner is given");

  // The method the controls call for.
  RestoreMethod fits = RestoreMethod::OnePoint;
  if (count == 4) fits = RestoreMethod::Double;
  else if (count == 3) fits = RestoreMethod::ThreePoint;
  else if (count == 2) fits = (n && s) || (e && w) ? RestoreMethod::Single : RestoreMethod::TwoPoint;
  const RestoreMethod method = c.method == RestoreMethod::Auto ? fits : c.method;
  if (method != fits) {
    const char* wants = method == RestoreMethod::Single     ? "the two controls of one line: north and south, or east and west"
                        : method == RestoreMethod::Double   ? "controls in all four directions"
                        : method == RestoreMethod::ThreePoint ? "controls in three directions"
                        : method == RestoreMethod::TwoPoint ? "one control north or south and one east or west"
                                                            : "one control";
    throw RestoreError(std::string(methodName(method)) + " proportion takes " + wants + ", not the " +
                       std::to_string(count) + " given");
  }

  const Frame frame{std::cos(basis * kDegree), std::sin(basis * kDegree)};
  Restored r;
  r.method = method;
  const auto cardinal = [&frame](const Control& k) { return frame.in(k.at); };
  // A record distance used as a length: chains of the original chain, corrected by the index.
  const auto length = [&](const Control& k, const char* direction) {
    requireRecord(k, direction);
    return k.record * chain * c.index;
  };

  switch (method) {
    case RestoreMethod::Single: {
      // On the straight line between the two controls of one line.
      const bool meridional = n && s;
      const Control& first = meridional ? *c.north : *c.east;
      const Control& second = meridional ? *c.south : *c.west;
      r.at = alongLine(first, second, meridional ? "north" : "east", meridional ? "south" : "west");
      const double measured = std::hypot(second.at.x - first.at.x, second.at.y - first.at.y);
      r.text = std::string("single proportion on the line from ") + named(first, meridional ? "north" : "east") + " to " +
               named(second, meridional ? "south" : "west") + ": " + Format(first.record, "0.00") + " of " +
               Format(first.record + second.record, "0.00") + " chains of record, " +
               Format(measured * first.record / (first.record + second.record), "0.000") + " of the measured " +
               Format(measured, "0.000") + " from " + (first.point.empty() ? "the first control" : first.point);
      break;
    }
    case RestoreMethod::Double: {
      // Northing from the north and south controls, their northings only;
      // easting from the east and west controls, their eastings only.
      const Position onMeridian = alongLine(*c.north, *c.south, "north", "south");
      const Position onParallel = alongLine(*c.east, *c.west, "east", "west");
      const Cardinal north = cardinal(*c.north), south = cardinal(*c.south), east = cardinal(*c.east), west = cardinal(*c.west);
      r.at = frame.out({proportioned(east.e, west.e, *c.east, *c.west), proportioned(north.n, south.n, *c.north, *c.south)});
      r.temporary = {{"on the north-south line", onMeridian}, {"on the east-west line", onParallel}};
      r.text = "double proportion: northing by the north and south controls " + named(*c.north, "north") + " and " +
               named(*c.south, "south") + ", easting by the east and west controls " + named(*c.east, "east") + " and " +
               named(*c.west, "west");
      break;
    }
    case RestoreMethod::ThreePoint: {
      // The pair of opposite controls gives its coordinate by proportion;
      // the lone control gives the other by its record distance.
      Cardinal at;
      if (n && s) {
        r.temporary = {{"on the north-south line", alongLine(*c.north, *c.south, "north", "south")}};
        at.n = proportioned(cardinal(*c.north).n, cardinal(*c.south).n, *c.north, *c.south);
        at.e = e ? cardinal(*c.east).e - length(*c.east, "east") : cardinal(*c.west).e + length(*c.west, "west");
        r.text = "three-point control: northing by the north and south controls " + named(*c.north, "north") + " and " +
                 named(*c.south, "south") + ", easting " + (e ? "west of the east control " + named(*c.east, "east")
                                                                : "east of the west control " + named(*c.west, "west"));
      } else {
        r.temporary = {{"on the east-west line", alongLine(*c.east, *c.west, "east", "west")}};
        at.e = proportioned(cardinal(*c.east).e, cardinal(*c.west).e, *c.east, *c.west);
        at.n = n ? cardinal(*c.north).n - length(*c.north, "north") : cardinal(*c.south).n + length(*c.south, "south");
        r.text = "three-point control: easting by the east and west controls " + named(*c.east, "east") + " and " +
                 named(*c.west, "west") + ", northing " + (n ? "south of the north control " + named(*c.north, "north")
                                                              : "north of the south control " + named(*c.south, "south"));
      }
      r.at = frame.out(at);
      break;
    }
    case RestoreMethod::TwoPoint: {
      // Each coordinate from its own control by the record distance.
      const Cardinal at{e ? cardinal(*c.east).e - length(*c.east, "east") : cardinal(*c.west).e + length(*c.west, "west"),
                        n ? cardinal(*c.north).n - length(*c.north, "north") : cardinal(*c.south).n + length(*c.south, "south")};
      r.at = frame.out(at);
      r.text = std::string("two-point control: northing ") +
               (n ? "south of the north control " + named(*c.north, "north") : "north of the south control " + named(*c.south, "south")) +
               ", easting " + (e ? "west of the east control " + named(*c.east, "east") : "east of the west control " + named(*c.west, "west"));
      break;
    }
    case RestoreMethod::OnePoint:
    case RestoreMethod::Auto: {
      // From the control by the record distance along the record bearing,
      // by default the cardinal direction toward the lost corner.
      const Control& k = n ? *c.north : s ? *c.south : e ? *c.east : *c.west;
      const char* direction = n ? "north" : s ? "south" : e ? "east" : "west";
      const double azimuth = c.azimuth.value_or(n ? 180 : s ? 0 : e ? 270 : 90);
      if (!std::isfinite(azimuth)) throw RestoreError("the record azimuth must be a number of degrees");
      const Cardinal from = cardinal(k);
      const double d = length(k, direction);
      r.at = frame.out({from.e + d * std::sin(azimuth * kDegree), from.n + d * std::cos(azimuth * kDegree)});
      r.text = "one-point control: " + Format(k.record * c.index, "0.00") + " chains from the " + direction + " control" +
               (k.point.empty() ? "" : " " + k.point) + " at azimuth " + Format(azimuth, "0.0000") + " degrees";
      break;
    }
  }
  if (!std::isfinite(r.at.x) || !std::isfinite(r.at.y)) throw RestoreError("the position cannot be computed from these controls");
  return r;
}

}  // namespace tervalo
