#include "hcurve/curve.h"

#include <cmath>

#include "text/angle.h"
#include "text/errors.h"
#include "text/number.h"

namespace tervalo {
namespace {

double divide(double a, double b, const char* what) {
  if (b == 0) throw RunTimeError(std::string(a == 0 ? "Overflow" : "Division by zero") + ": " + what);
  return a / b;
}

double root(double x, const char* what) {
  if (x < 0) throw RunTimeError(std::string("Invalid procedure call or argument: ") + what);
  return std::sqrt(x);
}

// The arcsine and arccosine as the program builds them from the arctangent.
double asinOf(double x, const char* what) { return std::atan(divide(x, root(1 - x * x, what), what)); }
double acosOf(double x, const char* what) { return std::atan(divide(-x, root(1 - x * x, what), what)) + 2 * std::atan(1.0); }

// Packed ddd.mmssss to decimal degrees, through the angle's text.
double unpack(double packed) {
  std::string text = CStr(packed);
  return Val(dmsToDecimal(text));
}

}  // namespace

int countGiven(const CurveElements& e) {
  int n = 0;
  for (double v : {e.delta, e.degree, e.tangent, e.length, e.radius, e.external, e.midOrdinate, e.chord}) n += v > 0;
  return n;
}

std::string verifyPair(const CurveElements& e) {
  const std::string combination = "Invalid combination of input data.";
  if (e.degree != 0 && e.radius != 0) return combination;
  if (e.tangent != 0 && (e.midOrdinate != 0 || e.length != 0)) return combination;
  if (e.length != 0 && (e.midOrdinate != 0 || e.external != 0 || e.chord != 0)) return combination;
  if (e.delta == 180.0) return "Invalid delta angle.";
  if (e.degree >= 180) return "Invalid degree of curve.";
  if (e.external != 0 && e.chord != 0) return combination;
  return "";
}

CurveSolution solveCurve(CurveElements e, const CurveOptions& o) {
  const double rad = o.pi / 180;
  CurveSolution out;
  auto stop = [&](CurveFault f) {
    out.e = e;
    out.fault = f;
    return out;
  };

  if (e.degree > 0) {
    if (o.packedAngles) e.degree = unpack(e.degree);
    if (o.metric) return stop(CurveFault::MetricDegree);
    e.radius = o.chordDefinition ? divide(50, std::sin(e.degree / 2 * rad), "a degree of curve of 0")
                                 : divide(100, e.degree * rad, "a degree of curve of 0");
  }
  if (e.delta > 0 && o.packedAngles) e.delta = unpack(e.delta);

  if (!(e.delta > 0)) {
    if (e.radius > 0) {
      if (e.tangent > 0) {
        e.delta = 2 * std::atan(e.tangent / e.radius) / rad;
      } else if (e.length > 0) {
        const double d = o.chordDefinition ? 2 * asinOf(50 / e.radius, "a radius under 50 for a 100-foot chord") / rad
                                           : 100 / (e.radius * rad);
        e.delta = e.length / 100 * d;
      } else if (e.external > 0) {
        e.delta = 2 * acosOf(e.radius / (e.external + e.radius), "the external") / rad;
      } else if (e.midOrdinate > 0) {
        e.delta = 2 * acosOf((e.radius - e.midOrdinate) / e.radius, "a middle ordinate beyond the diameter") / rad;
      } else if (e.chord > 0) {
        e.delta = 2 * asinOf(e.chord / (2 * e.radius), "a chord longer than the diameter") / rad;
      }
    } else if (e.tangent > 0) {
      if (e.external > 0)
        e.delta = 4 * std::atan(e.external / e.tangent) / rad;
      else if (e.chord > 0)
        e.delta = 2 * acosOf(e.chord / (2 * e.tangent), "a chord longer than twice the tangent") / rad;
    } else if (e.midOrdinate > 0) {
      if (e.external > 0) {
        if (e.midOrdinate > e.external) return stop(CurveFault::MidOrdinateOverExternal);
        e.delta = 2 * acosOf(e.midOrdinate / e.external, "the middle ordinate and external") / rad;
      } else if (e.chord > 0) {
        e.delta = 4 * std::atan(2 * e.midOrdinate / e.chord) / rad;
      }
    }
  }

  if (!(e.radius > 0)) {
    const double half = e.delta / 2 * rad;
    if (e.tangent > 0) {
      e.radius = divide(e.tangent, std::tan(half), "a central angle of 0");
    } else if (e.length > 0) {
      e.degree = divide(e.delta, e.length, "a length of 0") * 100;
      // The chord formula here is reached only when the chord box reports
      // the value of a set option button (-1), which a check box never does:
      // with chord definition R still comes from the arc formula, as it always has.
      const int chordBoxValue = o.chordDefinition ? 1 : 0;
      e.radius = chordBoxValue == -1 ? divide(50, std::sin(e.degree / 2 * rad), "a degree of curve of 0")
                                     : divide(100, e.degree * rad, "a degree of curve of 0");
    } else if (e.external > 0) {
      e.radius = divide(e.external, 1 / std::cos(half) - 1, "a central angle of 0");
    } else if (e.midOrdinate > 0) {
      e.radius = divide(e.midOrdinate, 1 - std::cos(half), "a central angle of 0");
    } else if (e.chord > 0) {
      e.radius = divide(e.chord / 2, std::sin(half), "a central angle of 0");
    }
  }

  if (o.chordDefinition) {
    // Half the 100-foot chord: a smaller radius has no chord-definition degree.
    if (e.radius < 50) return stop(CurveFault::ChordRadiusUnder50);
    e.degree = 2 * asinOf(50 / e.radius, "the radius") / rad;
  } else {
    e.degree = divide(100, e.radius * rad, "a radius of 0");
  }

  const double half = e.delta / 2 * rad;
  e.length = divide(e.delta, e.degree, "a degree of curve of 0") * 100;
  e.tangent = e.radius * std::tan(half);
  e.external = e.tangent * std::tan(e.delta / 4 * rad);
  e.midOrdinate = e.radius * (1 - std::cos(half));
  e.chord = 2 * e.radius * std::sin(half);
  out.e = e;
  return out;
}

CurveOnGround curveOnGround(const CurveElements& e, double piNorthing, double piEasting, double backAzimuth, bool right) {
  const double radian = std::atan(1.0) / 45;
  const double back = backAzimuth * radian;
  const double ahead = (backAzimuth + (right ? e.delta : -e.delta)) * radian;
  const double toCentre = (backAzimuth + (right ? 90 : -90)) * radian;
  CurveOnGround g;
  g.pcNorthing = piNorthing - e.tangent * std::cos(back);
  g.pcEasting = piEasting - e.tangent * std::sin(back);
  g.ptNorthing = piNorthing + e.tangent * std::cos(ahead);
  g.ptEasting = piEasting + e.tangent * std::sin(ahead);
  g.centreNorthing = g.pcNorthing + e.radius * std::cos(toCentre);
  g.centreEasting = g.pcEasting + e.radius * std::sin(toCentre);
  return g;
}

CurveStations placeStations(double station, GivenPoint given, double tangent, double length) {
  CurveStations s;
  switch (given) {
    case GivenPoint::PI:
      s.pi = station;
      s.pc = s.pi - tangent;
      s.pt = s.pc + length;
      break;
    case GivenPoint::PC:
      s.pc = station;
      s.pt = s.pc + length;
      s.pi = s.pc + tangent;
      break;
    case GivenPoint::PT:
      s.pt = station;
      s.pc = s.pt - length;
      s.pi = s.pc + tangent;
      break;
  }
  return s;
}

}  // namespace tervalo
